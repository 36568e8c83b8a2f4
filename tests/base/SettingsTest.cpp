
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <array>

#include "base/Settings.h"
#include "support/FaultSteps.h"
#include "support/ScratchFolder.h"

using testing::ElementsAre;

namespace {

using MakeSettings = std::unique_ptr<CSettings> (*)(const std::string& path);

template <typename Store>
std::unique_ptr<CSettings> Make(const std::string& path) {
  return std::make_unique<Store>(path);
}

class BothStores : public testing::TestWithParam<MakeSettings> {
 protected:
  /// A new object each time: nothing that a test sees may come from one's memory.
  std::unique_ptr<CSettings> Settings() const { return GetParam()(Path()); }
  std::string Path() const { return Folder.GetPath() + "/store"; }

  const CScratchFolder Folder;
};

INSTANTIATE_TEST_SUITE_P(Stores, BothStores, testing::Values(&Make<CRegistrySettings>, &Make<CIniSettings>),
                         [](const auto& tested) { return tested.index == 0 ? "Registry" : "Ini"; });

TEST_P(BothStores, ANewStoreHasNothing) {
  const auto settings = Settings();
  EXPECT_FALSE(settings->HasValue("Sort"));
  EXPECT_EQ(settings->GetString("Sort"), "");
  EXPECT_EQ(settings->GetInt("Sort"), -1);
  EXPECT_FALSE(settings->GetBool("Sort"));
  EXPECT_EQ(settings->GetIntOrZero("Sort"), 0);
  std::size_t size = 4;
  EXPECT_FALSE(settings->GetBinary("Sort", {}, size));
  EXPECT_EQ(size, 0U);
  EXPECT_FALSE(std::filesystem::exists(Path())) << "reading makes no file";
}

TEST_P(BothStores, EachValueIsThereForTheNextObject) {
  Settings()->SetIntValue("Sort", 226);
  Settings()->SetBool("DontShowEmailWarning", true);
  Settings()->SetBool("DontShowAddFolderTip", false);
  Settings()->SetInt("Sort", -2147483647 - 1);
  Settings()->SetInt("None", -1);
  const auto settings = Settings();
  EXPECT_EQ(settings->GetInt("sort"), -2147483647 - 1) << "names are compared without regard to case";
  EXPECT_EQ(settings->GetInt("DontShowEmailWarning"), 1);
  EXPECT_TRUE(settings->GetBool("DontShowEmailWarning"));
  EXPECT_TRUE(settings->HasValue("DontShowAddFolderTip"));
  EXPECT_FALSE(settings->GetBool("DontShowAddFolderTip") || settings->GetBool("None"));
  EXPECT_TRUE(settings->HasValue("None"));
  EXPECT_EQ(settings->GetIntOrZero("None"), 0);
}

TEST_P(BothStores, TextsAndBlocksReadBackWhole) {
  for (const std::string text :
       {"", "  blanks at both ends\t", "\"quoted\"", "a=b;c\\d\"e%1", "Zoë\xFF\x80", "[prefs]"}) {
    Settings()->SetString("Login", text);
    EXPECT_EQ(Settings()->GetString("Login"), text);
    EXPECT_TRUE(Settings()->HasValue("Login"));
  }
  const std::array<std::uint8_t, 5> data = {0x00, 0x0A, 0xFF, 0x80, 0x7F};
  Settings()->SetBinary("Window", data);
  std::array<std::uint8_t, 5> room{};
  std::size_t size = room.size();
  EXPECT_TRUE(Settings()->GetBinary("Window", room, size));
  EXPECT_EQ(room, data);
}

TEST_P(BothStores, AStoreThatCannotBeReadIsNotOverwritten) {
  ASSERT_EQ(::chmod(Folder.GetPath().c_str(), 0777), 0);
  Settings()->SetString("Login", "ann");
  ASSERT_EQ(::chmod(Path().c_str(), 0200), 0);
  EXPECT_TRUE(RunAsNobody([this] {
                Settings()->SetInt("Sort", 1);
                return !Settings()->HasValue("Login");
              }) ||
              ::getuid() != 0);
  ASSERT_EQ(::chmod(Path().c_str(), 0600), 0);
  EXPECT_EQ(Settings()->GetString("Login"), "ann");
}

TEST_P(BothStores, FaultOrKillInAWriteLeavesTheOldValuesOrTheNew) {
  Settings()->SetString("Login", "ann");
  bool killed = true;
  for (int step = 1; killed; ++step) {
    const int before = Settings()->GetInt("Sort");
    killed = RunAndKillAtStep(step, [this, step] { Settings()->SetInt("Sort", step * 100); });
    {
      const CFailingStep fault(1, true);
      Settings()->SetInt("Sort", 1);
    }
    EXPECT_THAT(Settings()->GetInt("Sort"), testing::AnyOf(before, step * 100));
    EXPECT_EQ(Settings()->GetString("Login"), "ann");
  }
  EXPECT_GE(Settings()->GetInt("Sort"), 500);
}

TEST(RegistrySettings, ReadsAValueAsItsOwnTypeAlone) {
  const CScratchFolder folder;
  CRegistrySettings settings(folder.File("settings"));
  settings.SetString("Text", "12");
  settings.SetInt("Number", 12);
  EXPECT_EQ(settings.GetInt("Text"), -1);
  EXPECT_EQ(settings.GetString("Number"), "");
  settings.SetString("number", "a\r\n\"Sort\"=dword:00000001\nb");
  EXPECT_EQ(settings.GetString("Number"), "a\r\n\"Sort\"=dword:00000001\nb") << "it stays one value";
  EXPECT_FALSE(settings.HasValue("Sort"));
}

TEST(RegistrySettings, LivesWithDamagedLinesAndKeepsThem) {
  const CScratchFolder folder;
  const std::string damaged =
      "no value\n\"Sort\n\"Sort\"\n\"Sort\"=dword:xyz\n\"Sort\"=dword:123456789\n\"Sort\"=hex:1,,2\n"
      "\"Sort\"=\"open\n\"Sort\\\n\"a\\\"b\"=dword:7 \r\n\"Empty\"=hex:";
  const std::string path = folder.Write("settings", damaged);
  CRegistrySettings settings(path);
  EXPECT_FALSE(settings.HasValue("Sort"));
  EXPECT_EQ(settings.GetInt("a\"b"), 7);
  settings.SetInt("Sort", 1);
  EXPECT_EQ(ReadBytes(path), damaged + "\n\"Sort\"=dword:00000001\n");
}

TEST(IniSettings, ReadsWhatOthersWrote) {
  const CScratchFolder folder;
  const std::string path =
      folder.Write("prefs.ini",
                   "\xEF\xBB\xBF; by hand\r\nSort=1\r\n[Other]\r\nSort=2\r\n\r\n[ PREFS ]\r\n"
                   "; Sort=3\r\n  sort \t=  \"12\"  \r\nSort=4\r\nlogin='ann '\r\nno key\r\n"
                   "Hex=0x1F rest\r\nEmpty=\r\nWord=twelve\r\nMarker=X@@@@x\r\n");
  const CIniSettings settings(path);
  EXPECT_EQ(settings.GetInt("Sort"), 12) << "a text of digits reads as an integer";
  EXPECT_EQ(settings.GetString("Sort"), "12");
  EXPECT_EQ(settings.GetString("Login"), "ann ");
  EXPECT_EQ(settings.GetInt("Hex"), 31);
  EXPECT_EQ(settings.GetInt("Empty"), -1);
  EXPECT_TRUE(settings.HasValue("Empty"));
  EXPECT_EQ(settings.GetInt("Word"), 0);
  EXPECT_FALSE(settings.HasValue("Marker")) << "the marker is compared without regard to case";
}

}  // namespace
