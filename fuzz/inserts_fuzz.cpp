// Any message text and any live values through the insert expansion. A
// text without "[" comes back as it is; with plain values (no "[" in them)
// no insert code is left in the result.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "settings/inserts.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size) {
  using namespace quorvex;
  FuzzedDataProvider in(data, size);
  InsertValues v;
  v.now.year = in.ConsumeIntegralInRange(1, 9999);
  v.now.month = in.ConsumeIntegralInRange(1, 12);
  v.now.day = in.ConsumeIntegralInRange(1, 31);
  v.now.hour = in.ConsumeIntegralInRange(0, 23);
  v.now.minute = in.ConsumeIntegralInRange(0, 59);
  v.now.second = in.ConsumeIntegralInRange(0, 59);
  v.pending = in.ConsumeIntegral<int>();
  v.session = in.ConsumeIntegral<std::int64_t>();
  v.aol_left = in.ConsumeIntegral<std::int64_t>();
  v.cpu_left = in.ConsumeIntegral<std::int64_t>();
  v.del_left = in.ConsumeIntegral<std::int64_t>();
  v.handle = in.ConsumeRandomLengthString(12);
  v.LAscii = in.ConsumeRandomLengthString(12);
  v.RAscii = in.ConsumeRandomLengthString(12);
  const std::string text = in.ConsumeRemainingBytesAsString();
  const std::string out = ExpandInserts(text, v);
  auto fail = [](const char* what) {
    std::fprintf(stderr, "inserts: %s\n", what);
    std::abort();
  };
  if (text.find('[') == std::string::npos && out != text)
    fail("a text without codes changed");
  const bool plain =
      (v.handle + v.LAscii + v.RAscii).find('[') == std::string::npos &&
      text.find(']') == std::string::npos;
  if (plain) {
    for (const InsertMenuItem& item : kInsertMenuItems)
      if (out.find(item.code) != std::string::npos)
        fail("an insert code was left in");
  }
  return 0;
}
