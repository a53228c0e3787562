#include "win32/win32_registry.h"

#include <gtest/gtest.h>
#include <windows.h>

#include "win32/code_page.h"

namespace quorvex::win32 {
namespace {

class Win32RegistryTest : public testing::Test {
 protected:
  ~Win32RegistryTest() override { reg.DeleteApp("QuorvexTest"); }
  Win32Registry reg;
};

TEST_F(Win32RegistryTest, KeepsTextsWhereTheClassicRuntimeKeepsThem) {
  reg.Save("QuorvexTest", "Settings", "LAscii", "°·²• ");
  reg.Save("QuorvexTest", "Banning", "Warn", "True");
  EXPECT_EQ(reg.Get("QuorvexTest", "Settings", "LAscii"), "°·²• ");
  // Names ignore case, as the registry does.
  EXPECT_EQ(reg.Get("quorvextest", "SETTINGS", "lascii"), "°·²• ");
  EXPECT_EQ(reg.Get("QuorvexTest", "Settings", "Missing"), std::nullopt);
  EXPECT_EQ(reg.GetSetting("QuorvexTest", "Nope", "x", "dflt"), "dflt");

  // A value an older program wrote with the 8-bit function reads as the
  // same text.
  HKEY key;
  ASSERT_EQ(::RegOpenKeyExA(HKEY_CURRENT_USER,
                            "Software\\VB and VBA Program Settings\\"
                            "QuorvexTest\\Settings",
                            0, KEY_READ | KEY_WRITE, &key),
            ERROR_SUCCESS);
  const char old[] = "\xB0\x95 hi";
  ::RegSetValueExA(key, "RAscii", 0, REG_SZ, reinterpret_cast<const BYTE*>(old),
                   sizeof old);
  ::RegCloseKey(key);
  EXPECT_EQ(reg.Get("QuorvexTest", "Settings", "RAscii"), "°• hi");

  reg.DeleteKey("QuorvexTest", "Settings", "LAscii");
  reg.DeleteKey("QuorvexTest", "Gone", "x");  // missing: no error
  const auto dump = reg.Dump("QuorvexTest");
  ASSERT_EQ(dump.size(), 2u);
  EXPECT_EQ(dump.at("Settings").size(), 1u);
  EXPECT_EQ(dump.at("Banning").at("Warn"), "True");

  // Deleting the application takes keys at any depth with it, also where
  // the system deletes only keys without subkeys.
  ASSERT_EQ(::RegCreateKeyExA(HKEY_CURRENT_USER,
                              "Software\\VB and VBA Program Settings\\"
                              "QuorvexTest\\Banning\\Deeper\\Deepest",
                              0, nullptr, 0, KEY_WRITE, nullptr, &key, nullptr),
            ERROR_SUCCESS);
  ::RegSetValueExA(key, "x", 0, REG_SZ, reinterpret_cast<const BYTE*>(old),
                   sizeof old);
  ::RegCloseKey(key);
  reg.DeleteApp("QuorvexTest");
  EXPECT_TRUE(reg.Dump("QuorvexTest").empty());
  EXPECT_EQ(reg.Get("QuorvexTest", "Banning", "Warn"), std::nullopt);
  EXPECT_NE(::RegOpenKeyExA(HKEY_CURRENT_USER,
                            "Software\\VB and VBA Program Settings\\"
                            "QuorvexTest",
                            0, KEY_READ, &key),
            ERROR_SUCCESS);
  // The other applications' keys beside it stay.
  reg.Save("QuorvexTest2", "Settings", "x", "1");
  reg.DeleteApp("QuorvexTest");
  EXPECT_EQ(reg.Get("QuorvexTest2", "Settings", "x"), "1");
  reg.DeleteApp("QuorvexTest2");
}

}  // namespace
}  // namespace quorvex::win32
