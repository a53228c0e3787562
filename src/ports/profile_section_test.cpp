#include "ports/profile_section.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ports/memory_registry.h"

namespace quorvex {
namespace {

TEST(ProfileSectionTest, ValuesAreCutWhereTheBufferEnds) {
  const std::string fits(kProfileValueChars, 'x');
  EXPECT_EQ(CutProfileValue(fits), fits);
  EXPECT_EQ(CutProfileValue(fits + "y"), fits);
  EXPECT_EQ(CutProfileValue(std::string(100000, 'z')).size(),
            kProfileValueChars);
  // Characters, not bytes: a two-byte letter is kept whole or left out.
  std::string accents;
  for (size_t i = 0; i < kProfileValueChars + 1; ++i) accents += "\xC3\xA9";
  EXPECT_EQ(CutProfileValue(accents),
            accents.substr(0, 2 * kProfileValueChars));
  EXPECT_EQ(CutProfileValue(fits.substr(1) + "\xC3\xA9" + "x"),
            fits.substr(1) + "\xC3\xA9");
  // A byte that is no character of its own counts as one, as a window
  // shows it: a damaged value of stray bytes is cut too.
  EXPECT_EQ(CutProfileValue(std::string(5000, '\xA6')).size(),
            kProfileValueChars);
}

TEST(ProfileSectionTest, ReadsOneSectionIgnoringCase) {
  MemoryProfileFile profiles;
  profiles.WriteString("f", "quorvex", "ChatName", std::string(5000, 'r'));
  profiles.WriteString("f", "quorvex", "TOTALBANNED", "2");
  profiles.WriteString("f", "other", "Banned 0", "elsewhere");
  profiles.WriteString("f", "quorvex", "banned 1", "zed");
  const ProfileSection section(profiles.Dump("f"), "QUORVEX");
  EXPECT_EQ(section.Get("chatname"), std::string(kProfileValueChars, 'r'));
  EXPECT_EQ(section.Get("missing"), "");
  EXPECT_EQ(section.Numbered("Banned ", section.Get("TotalBanned")),
            (std::vector<std::string>{"", "zed"}));
  EXPECT_TRUE(section.Numbered("Banned ", "two").empty());
  EXPECT_TRUE(ProfileSection(profiles.Dump("f"), "none")
                  .Numbered("Banned ", "5")
                  .empty());
}

}  // namespace
}  // namespace quorvex
