#include <gmock/gmock.h>

#include "base/Folders.h"
#include "base/PathIdentity.h"
#include "base/Paths.h"
#include "support/EnvironmentVariable.h"
#include "support/FaultSteps.h"
#include "support/ScratchFolder.h"
#include "support/ScriptedMessages.h"

namespace {

TEST(FileExists, IsFalseOnlyForWhatIsMissing) {
  const CScratchFolder folder;
  const std::string file = folder.Write("photo.jpg", "x");
  std::filesystem::create_symlink("nowhere", folder.File("dangling.jpg"));
  std::filesystem::create_symlink("loop.jpg", folder.File("loop.jpg"));
  EXPECT_TRUE(FileExists(file, false));
  EXPECT_FALSE(FileExists(folder.GetPath(), false));
  EXPECT_TRUE(FileExists(folder.GetPath(), true));
  for (const char* missing : {"/none.jpg", "/photo.jpg/below.jpg", "/dangling.jpg"}) {
    EXPECT_FALSE(FileExists(folder.GetPath() + missing, true)) << missing;
  }
  EXPECT_TRUE(FileExists(folder.GetPath() + "/loop.jpg", false));
  EXPECT_TRUE(FileExists(folder.GetPath() + "/" + std::string(300, 'n'), false));
}

TEST(PicturesFolder, IsTheUsersOwnOrMadeAndSaidOnce) {
  struct Case {
    const char* Present;   // a file in the home folder
    const char* Contents;  // of the file
    const char* Folder;
    std::size_t Messages;
  };
  const Case cases[] = {
      {"Pictures/x", "", "/Pictures", 0},
      {"Documents/x", "", "/Documents/My Pictures", 1},
      {".config/user-dirs.dirs", "XDG_DOCUMENTS_DIR=\"$HOME/Papers\"\n", "/Papers/My Pictures", 1},
      {".config/user-dirs.dirs", "XDG_DOCUMENTS_DIR=\"/nosuchdisk/Papers\"\n", "/My Pictures", 1}};
  for (const auto& [present, contents, folder, messages] : cases) {
    const CScratchFolder home;
    const CEnvironmentVariable variable("HOME", home.GetPath());
    const CEnvironmentVariable config("XDG_CONFIG_HOME", std::nullopt);
    const CScriptedMessages shown;
    home.Write(present, contents);
    {
      ForgetMyPicturesFolder();
      const CFailingStep fault(1, true);
      GetMyPicturesFolder();
      EXPECT_TRUE(shown.Texts.empty()) << "where it can't be made it isn't announced";
    }
    for (int start = 0; start < 2; ++start) {
      ForgetMyPicturesFolder();
      EXPECT_EQ(GetMyPicturesFolder(), home.GetPath() + folder);
      EXPECT_TRUE(std::filesystem::is_directory(home.GetPath() + folder));
      EXPECT_EQ(shown.Texts.size(), messages) << folder;
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
  {
    const CFailingStep fault(2);
    EXPECT_FALSE(CheckDiskWritable(folder.GetPath()));
  }
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.GetPath()), {}), 1);
}

TEST(Paths, AreCutAndJoinedAtTheirLastSlash) {
  const PathParts parts = SplitPath("/p/a.b/photo.JPG");
  EXPECT_EQ(parts.Folder, "/p/a.b/");
  EXPECT_EQ(parts.Name, "photo.JPG");
  EXPECT_EQ(GetExtension("/p/a.b/photo"), "");
  EXPECT_EQ(GetExtension("/p/photo.tar.JPG"), ".JPG");
  EXPECT_EQ(GetExtension("/p/.hidden"), "");
  EXPECT_EQ(GetExtension("photo."), ".");
  EXPECT_EQ(JoinPath("/p/", "/a"), "/p/a");
  EXPECT_EQ(JoinPath("", "/a"), "/a");
  EXPECT_EQ(WithClosingSlash(""), "");
  EXPECT_EQ(WithoutClosingSlash("/p//"), "/p");
}

}  // namespace
