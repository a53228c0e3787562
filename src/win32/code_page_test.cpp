#include "win32/code_page.h"

#include <gtest/gtest.h>

#include "model/utf8.h"

namespace quorvex::win32 {
namespace {

TEST(CodePageTest, TheProgramsOwnSignsRoundTripThroughOneByteEach) {
  // Signs the program's texts hold, the code page's 0x80-0x9F block at
  // both ends, and Latin-1.
  const struct {
    const char* utf8;
    const char* bytes;
  } cases[] = {{"°", "\xB0"},
               {"·", "\xB7"},
               {"²", "\xB2"},
               {"•", "\x95"},
               {"€", "\x80"},
               {"Ÿ", "\x9F"},
               {"‘’“”", "\x91\x92\x93\x94"},
               {"é ÿ", "\xE9 \xFF"},
               {"a\tb", "a\tb"}};
  for (const auto& c : cases) {
    EXPECT_EQ(Utf8ToCp1252(c.utf8), c.bytes) << c.utf8;
    EXPECT_EQ(Cp1252ToUtf8(c.bytes), c.utf8) << c.utf8;
  }
}

TEST(CodePageTest, EveryByteComesBackAndUnknownCharactersBecomeQuestionMarks) {
  std::string all;
  for (int b = 1; b < 256; ++b) all.push_back(static_cast<char>(b));
  EXPECT_EQ(Utf8ToCp1252(Cp1252ToUtf8(all)), all);
  // Undefined bytes are their control characters.
  EXPECT_EQ(Cp1252ToUtf8("\x81"), "\xC2\x81");
  // Not in the code page; then broken UTF-8 (a lone continuation byte, a
  // cut sequence, an overlong slash), one "?" per bad byte.
  EXPECT_EQ(Utf8ToCp1252("Ω☺x"), "??x");
  EXPECT_EQ(Utf8ToCp1252("a\x80"
                         "b\xE2\x82"),
            "a?b??");
  EXPECT_EQ(Utf8ToCp1252("\xC0\xAF"), "??");
}

TEST(CodePageTest, WideTextsConvertBothWays) {
  const std::string text = "Grüße • 𝄞";
  const std::wstring wide = Utf8ToWide(text);
  EXPECT_EQ(wide.size(), 10u);  // the clef takes two units
  EXPECT_EQ(WideToUtf8(wide), text);
  // What an 8-bit reader sees of it.
  EXPECT_EQ(WideThroughCp1252(wide), "Grüße • ?");
  EXPECT_EQ(WideToUtf8(std::wstring(1, static_cast<wchar_t>(0xD800))),
            "\xEF\xBF\xBD");
  // A window shows a text with one character where the program counts
  // one, malformed bytes included (outside the plane of two-byte units).
  const std::string malformed =
      "a\xA6\xFC"
      "e\xE2\x82\xC3\xA9!";
  EXPECT_EQ(Utf8ToWide(malformed).size(), Utf8Characters(malformed));
  EXPECT_EQ(WideThroughCp1252(Utf8ToWide(malformed)), "a??e??\xC3\xA9!");
}

}  // namespace
}  // namespace quorvex::win32
