#include "sim/file_registry.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <type_traits>

#include "ports/memory_registry.h"
#include "testing/temp_folder.h"

namespace quorvex {
namespace {

namespace fs = std::filesystem;

class FolderTest : public testing::Test {
 protected:
  const TempFolder folder_{"qv_registry_"};
};
using FileRegistryTest = FolderTest;

// Both registries follow the same rules; the file one only adds the file.
template <typename T>
class RegistryTest : public FolderTest {
 protected:
  std::unique_ptr<Registry> Make() {
    if constexpr (std::is_same_v<T, FileRegistry>) {
      return std::make_unique<FileRegistry>(this->folder_ / "registry.json");
    } else {
      return std::make_unique<MemoryRegistry>();
    }
  }
};

using RegistryTypes = testing::Types<MemoryRegistry, FileRegistry>;
TYPED_TEST_SUITE(RegistryTest, RegistryTypes);

TYPED_TEST(RegistryTest, NamesMatchIgnoringCaseAndKeepTheirFirstSpelling) {
  auto reg = this->Make();
  EXPECT_EQ(reg->Get("Quorvex", "Settings", "Handle"), std::nullopt);
  EXPECT_EQ(reg->GetSetting("Quorvex", "Settings", "Handle", "srv"), "srv");
  reg->Save("Quorvex", "Settings", "Handle", "bot");
  reg->Save("QUORVEX", "settings", "HANDLE", "srv");
  reg->Save("quorvex", "Settings", "ListSize", "");
  EXPECT_EQ(reg->Get("quorvex", "SETTINGS", "handle"), "srv");
  Registry::Sections want = {
      {"Settings", {{"Handle", "srv"}, {"ListSize", ""}}}};  // "" is kept
  EXPECT_EQ(reg->Dump("QUORVEX"), want);

  reg->DeleteKey("quorvex", "SETTINGS", "handle");
  reg->DeleteKey("Quorvex", "Settings", "Missing");
  EXPECT_EQ(reg->Get("Quorvex", "Settings", "Handle"), std::nullopt);

  reg->Save("Quorvex", "Banning", "Max", "3");
  reg->Save("Other", "Settings", "Handle", "kept");
  reg->DeleteApp("QUORVEX");
  EXPECT_TRUE(reg->Dump("Quorvex").empty());
  EXPECT_EQ(reg->Get("Quorvex", "Banning", "Max"), std::nullopt);
  EXPECT_EQ(reg->Get("other", "settings", "handle"), "kept");
  // Written anew after the wipe, with the new spelling.
  reg->Save("quorvex", "settings", "Loaded", "5");
  EXPECT_EQ(reg->Dump("Quorvex"),
            (Registry::Sections{{"settings", {{"Loaded", "5"}}}}));
}

// A batch makes its changes in order, as Save and DeleteKey one by one.
TYPED_TEST(RegistryTest, ABatchActsInOrder) {
  auto reg = this->Make();
  reg->Save("Quorvex", "ChatMsgs", "Chat Msg0", "old");
  reg->Save("Quorvex", "ChatMsgs", "Chat Msg5", "stale");
  reg->Write("Quorvex", {{"chatmsgs", "chat msg0", std::nullopt},
                         {"ChatMsgs", "Chat Msg5", std::nullopt},
                         {"ChatMsgs", "ChatMsgTotal", "1"},
                         {"ChatMsgs", "Chat Msg0", "new"},
                         {"Mail", "Mail Msg", "first"},
                         {"MAIL", "mail msg", "second"}});
  EXPECT_EQ(reg->Dump("quorvex"),
            (Registry::Sections{
                {"ChatMsgs", {{"Chat Msg0", "new"}, {"ChatMsgTotal", "1"}}},
                {"Mail", {{"Mail Msg", "second"}}}}));
  if constexpr (std::is_same_v<TypeParam, FileRegistry>) {
    FileRegistry again(this->folder_ / "registry.json");
    EXPECT_EQ(again.Dump("Quorvex"), reg->Dump("Quorvex"));
  }
}

TEST_F(FileRegistryTest, SettingsOutliveTheInstanceOrAWriteThrows) {
  const fs::path file = folder_ / "config" / "quorvex" / "registry.json";
  {
    FileRegistry reg(file);
    EXPECT_FALSE(fs::exists(file));  // nothing written by reading
    reg.Save("Quorvex", "Settings", "LAscii", "\xC2\xB7\xE2\x80\xA2[");
    reg.Save("Quorvex", "ChatMsgs", "Line \"1\"", "a\nb\\c");
  }
  EXPECT_EQ(std::distance(fs::directory_iterator(file.parent_path()),
                          fs::directory_iterator()),
            1);

  FileRegistry again(file);
  EXPECT_EQ(again.Get("QUORVEX", "settings", "lascii"),
            "\xC2\xB7\xE2\x80\xA2[");
  EXPECT_EQ(again.Get("Quorvex", "ChatMsgs", "line \"1\""), "a\nb\\c");
  // The first spelling survives the round trip.
  EXPECT_EQ(again.Dump("quorvex").at("Settings").count("LAscii"), 1u);

  // A file where the registry's folder should be: the write fails loudly.
  TempFolder::Write(folder_ / "blocked", "not a folder");
  FileRegistry blocked(folder_ / "blocked" / "registry.json");
  EXPECT_THROW(blocked.Save("Quorvex", "Settings", "Handle", "srv"),
               std::runtime_error);
}

TEST_F(FileRegistryTest, ABadFileIsAnErrorNamingTheFile) {
  const fs::path file = folder_ / "registry.json";
  auto message = [&](const std::string& text) -> std::string {
    TempFolder::Write(file, text);
    try {
      FileRegistry reg(file);
    } catch (const std::runtime_error& e) {
      return e.what();
    }
    return "(loaded)";
  };
  const std::pair<std::string, std::string> cases[] = {
      {"{\"Quorvex\": {\"Settings\": ", "parse error"},
      {R"({"Quorvex": {"Settings": {"ListSize": 250}}})",
       "\"ListSize\" is not text"},
      {"[1, 2]", "not an object"},
      {R"({"Quorvex": {"Settings": {}, "SETTINGS": {}}})",
       "differ only in case"},
      {"", ""}};
  for (const auto& [text, why] : cases) {
    const std::string m = message(text);
    EXPECT_NE(m.find(file.string()), std::string::npos) << m;
    EXPECT_NE(m.find(why), std::string::npos) << m;
  }
  // The bad file is left for the user to look at.
  EXPECT_TRUE(fs::exists(file));

  EXPECT_EQ(message(R"({"Quorvex": {"Settings": {"Handle": "srv"}}})"),
            "(loaded)");
}

}  // namespace
}  // namespace quorvex
