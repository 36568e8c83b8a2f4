#include <gmock/gmock.h>

#include "base/Folders.h"
#include "base/PathIdentity.h"
#include "support/EnvironmentVariable.h"
#include "support/FaultSteps.h"
#include "support/ScratchFolder.h"
#include "support/ScriptedMessages.h"

namespace {

TEST(FileExists, IsFalseOnlyForWhatIsMissing) {
  const CScratchFolder folder;
  std::filesystem::create_symlink("nowhere", folder.File("dangling.jpg"));
  std::filesystem::create_symlink("loop.jpg", folder.File("loop.jpg"));
  EXPECT_TRUE(FileExists(folder.Write("photo.jpg", "x"), false));
  EXPECT_FALSE(FileExists(folder.GetPath(), false));
  EXPECT_TRUE(FileExists(folder.GetPath(), true));
  EXPECT_FALSE(FileExists(folder.GetPath() + "/photo.jpg/below.jpg", true));
  EXPECT_FALSE(FileExists(folder.GetPath() + "/dangling.jpg", true));
  EXPECT_TRUE(FileExists(folder.GetPath() + "/loop.jpg", false));
  EXPECT_TRUE(FileExists(folder.GetPath() + "/" + std::string(300, 'n'), false));
}

TEST(PicturesFolder, IsTheUsersOwnOrMadeAndSaidOnce) {
  // A file of the home folder, its contents, and the folder that is found or made.
  const char* const cases[][3] = {
      {"Pictures/x", "", "/Pictures"},
      {"Documents/x", "", "/Documents/My Pictures"},
      {".config/user-dirs.dirs", "XDG_DOCUMENTS_DIR=\"/nosuchdisk/Papers\"\n", "/My Pictures"}};
  for (const auto& [present, contents, folder] : cases) {
    const CScratchFolder home;
    const CEnvironmentVariable variable("HOME", home.GetPath());
    const CEnvironmentVariable config("XDG_CONFIG_HOME", std::nullopt);
    const CScriptedMessages shown;
    home.Write(present, contents);
    for (int start = 0; start < 2; ++start) {
      ForgetMyPicturesFolder();
      EXPECT_EQ(GetMyPicturesFolder(), home.GetPath() + folder);
      EXPECT_TRUE(std::filesystem::is_directory(home.GetPath() + folder));
      EXPECT_EQ(shown.Texts.size(), std::string_view(folder) == "/Pictures" ? 0U : 1U) << folder;
    }
  }
  ForgetMyPicturesFolder();
}

TEST(PathIdentity, IsThatOfBytesUnlessTheDiskSaysOtherwise) {
  const CScratchFolder scratch;
  const std::string root = scratch.GetPath();
  const auto isFormer = [&root](const char* former, const char* path) {
    return IsFormerSpelling(root + former, root + path);
  };
  scratch.Write("Été/a.jpg", "");
  EXPECT_TRUE(isFormer("/ÉTÉ/A.jpg", "/Été/a.jpg"));
  EXPECT_FALSE(isFormer("/Été/a.jpg", "/ÉTÉ/A.jpg")) << "nothing of that name stands";
  EXPECT_FALSE(isFormer("/Été/a.jpg", "/Été/a.jpg"));
  EXPECT_TRUE(IsSameFolder(root + "/ÉTÉ", root + "/Été/"));
  EXPECT_EQ(FindPresentSpelling(root + "/ÉTÉ/A.jpg"), root + "/Été/a.jpg");
  EXPECT_FALSE(IsFormerSpelling("/PROC/version", "/proc/version")) << "a disk of another name";
  scratch.Write("ÉTÉ/x", "");
  EXPECT_FALSE(isFormer("/ÉTÉ/A.jpg", "/Été/a.jpg")) << "both folders stand";
  EXPECT_FALSE(IsSameFolder(root + "/ÉTÉ", root + "/Été"));
  std::filesystem::create_hard_link(root + "/Été/a.jpg", root + "/Été/A.jpg");
  EXPECT_FALSE(isFormer("/Été/A.jpg", "/Été/a.jpg")) << "two names of one file";
  std::filesystem::create_directory_symlink(root + "/Été", root + "/link");
  EXPECT_TRUE(IsSameFolder(root + "/link/", root + "/Été"));
  EXPECT_FALSE(IsSameFolder(root + "/usb/A", root + "/usb/a")) << "a disk that is away";
}

TEST(CheckDiskWritable, ReplacesAndRemovesItsFile) {
  const CScratchFolder folder;
  const std::string precious = folder.Write("precious", "kept");
  std::filesystem::create_symlink(precious, folder.File("x###x"));
  EXPECT_TRUE(CheckDiskWritable(folder.GetPath()));
  EXPECT_EQ(ReadBytes(precious), "kept");
  EXPECT_FALSE(CheckDiskWritable(folder.GetPath() + "/none") || CheckDiskWritable(precious));
  const CFailingStep fault(2);
  EXPECT_FALSE(CheckDiskWritable(folder.GetPath()));
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.GetPath()), {}), 1);
}

}  // namespace
