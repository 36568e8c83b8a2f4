#include <gmock/gmock.h>
#include <sys/stat.h>

#include "base/ProfileFile.h"
#include "base/Settings.h"
#include "support/FaultSteps.h"
#include "support/ScratchFolder.h"

namespace {

/// The registry or the ini file.
class BothStores : public testing::TestWithParam<bool> {
 protected:
  /// A new object each time: nothing that a test sees may come from one's memory.
  std::unique_ptr<CSettings> Settings() const {
    if (GetParam()) return std::make_unique<CRegistrySettings>(Path);
    return std::make_unique<CIniSettings>(Path);
  }

  const CScratchFolder Folder;
  const std::string Path = Folder.GetPath() + "/store";
};

INSTANTIATE_TEST_SUITE_P(Stores, BothStores, testing::Bool());

TEST_P(BothStores, GiveTheirDefaultsThenEachValueWhole) {
  std::array<std::uint8_t, 5> room{};
  std::size_t size = room.size();
  EXPECT_FALSE(Settings()->HasValue("Sort") || Settings()->GetBool("Sort"));
  EXPECT_EQ(Settings()->GetString("Sort"), "");
  EXPECT_EQ(Settings()->GetInt("Sort"), -1);
  EXPECT_EQ(Settings()->GetIntOrZero("Sort"), 0);
  EXPECT_FALSE(Settings()->GetBinary("Sort", room, size) || size != 0);
  EXPECT_FALSE(std::filesystem::exists(Path)) << "reading makes no file";

  Settings()->SetBool("DontShowEmailWarning", true);
  Settings()->SetBool("DontShowAddFolderTip", false);
  Settings()->SetInt("Sort", -2147483647 - 1);
  EXPECT_EQ(Settings()->GetInt("sort"), -2147483647 - 1) << "names are compared without regard to case";
  EXPECT_TRUE(Settings()->GetBool("DontShowEmailWarning"));
  EXPECT_TRUE(Settings()->HasValue("DontShowAddFolderTip"));
  EXPECT_FALSE(Settings()->GetBool("DontShowAddFolderTip"));

  for (const std::string text : {"", "  blanks\t", "\"quoted\"", "a=b;c\\d\"e%1", "Zoë\xFF\x80", "[prefs]"}) {
    Settings()->SetString("Login", text);
    EXPECT_EQ(Settings()->GetString("Login"), text);
    EXPECT_TRUE(Settings()->HasValue("Login"));
  }
  const std::array<std::uint8_t, 5> data = {0x00, 0x0A, 0xFF, 0x80, 0x7F};
  Settings()->SetBinary("Window", data);
  EXPECT_TRUE(Settings()->GetBinary("Window", room, size = room.size()));
  EXPECT_EQ(room, data);
}

TEST_P(BothStores, LoseNoValueByFaultKillOrAFileThatCannotBeRead) {
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

  ASSERT_EQ(::chmod(Folder.GetPath().c_str(), 0777), 0);
  ASSERT_EQ(::chmod(Path.c_str(), 0200), 0);
  EXPECT_TRUE(RunAsNobody([this] {
                Settings()->SetInt("Sort", 1);
                return !Settings()->HasValue("Login");
              }) ||
              ::getuid() != 0);
  ASSERT_EQ(::chmod(Path.c_str(), 0600), 0);
  EXPECT_EQ(Settings()->GetString("Login"), "ann");
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
  EXPECT_EQ(settings.GetString("a\"b"), "") << "a value is read as its own type alone";
  settings.SetInt("Sort", 1);
  EXPECT_EQ(ReadBytes(path), damaged + "\n\"Sort\"=dword:00000001\n");
  settings.SetString("sort", "a\r\n\"Login\"=dword:00000001\nb");
  EXPECT_EQ(settings.GetString("Sort"), "a\r\n\"Login\"=dword:00000001\nb") << "it stays one value";
  EXPECT_FALSE(settings.HasValue("Login"));
}

TEST(IniSettings, ReadsWhatOthersWrote) {
  const CScratchFolder folder;
  const CIniSettings settings(
      folder.Write("prefs.ini",
                   "\xEF\xBB\xBF; by hand\r\nSort=1\r\n[Other]\r\nSort=2\r\n\r\n[ PREFS ]\r\n"
                   "; Sort=3\r\n  sort \t=  \"12\"  \r\nSort=4\r\nlogin='ann '\r\nno key\r\n"
                   "Hex=0x1F rest\r\nEmpty=\r\nMarker=X@@@@x\r\n"));
  EXPECT_EQ(settings.GetInt("Sort"), 12) << "a text of digits reads as an integer";
  EXPECT_EQ(settings.GetString("Login"), "ann ");
  EXPECT_EQ(settings.GetInt("Hex"), 31);
  EXPECT_TRUE(settings.HasValue("Empty"));
  EXPECT_FALSE(settings.HasValue("Marker")) << "the marker is compared without regard to case";
}

TEST(ProfileFile, ChangesOneLineAndKeepsAllOthers) {
  const char* const cases[][2] = {
      {"; x\r\n[other]\r\nSort=1\r\n[Prefs]\r\nfree text\r\n SORT = 2 \r\nSort=3\r\n[last]\r\nSort=4",
       "; x\r\n[other]\r\nSort=1\r\n[Prefs]\r\nfree text\r\n SORT =9\r\nSort=3\r\n[last]\r\nSort=4"},
      {"[a]\nx=1", "[a]\nx=1\n[prefs]\nSort=9\n"},
      {"[PREFS]\r\nx=1\r\n\r\n[b]\r\n", "[PREFS]\r\nx=1\r\nSort=9\r\n\r\n[b]\r\n"},
      {"[prefs]\n[b]\n[prefs]\nSort=2\n", "[prefs]\n[b]\n[prefs]\nSort=9\n"}};
  for (const auto& [before, after] : cases) {
    CProfileFile file(before);
    for (const char* key : {"", "a=b", "[a", ";a", " a", "a\nb"}) file.SetValue("prefs", key, "refused");
    file.SetValue("prefs", "Sort", "9\n[other]\nx=1");
    EXPECT_EQ(file.GetText(), after);
  }
}

}  // namespace
