#include <gmock/gmock.h>
#include <sys/stat.h>

#include "base/Exceptions.h"
#include "base/Folders.h"
#include "base/Messages.h"
#include "base/PathIdentity.h"
#include "base/Paths.h"
#include "support/EnvironmentVariable.h"
#include "support/FaultSteps.h"
#include "support/ScratchFolder.h"

namespace {

TEST(FileExists, IsFalseOnlyForWhatIsMissing) {
  const CScratchFolder folder;
  const std::string file = folder.Write("photo.jpg", "x");
  EXPECT_TRUE(FileExists(file, false));
  EXPECT_FALSE(FileExists(folder.GetPath(), false));
  EXPECT_TRUE(FileExists(folder.GetPath(), true));
  EXPECT_FALSE(FileExists(folder.GetPath() + "/none.jpg", true));
  EXPECT_FALSE(FileExists(file + "/below.jpg", true));
  const std::string dangling = folder.File("dangling.jpg");
  const std::string loop = folder.File("loop.jpg");
  ASSERT_EQ(::symlink("nowhere", dangling.c_str()), 0);
  ASSERT_EQ(::symlink("loop.jpg", loop.c_str()), 0);
  EXPECT_FALSE(FileExists(dangling, true));
  EXPECT_TRUE(FileExists(loop, false));
  EXPECT_TRUE(FileExists(folder.GetPath() + "/" + std::string(300, 'n'), false));

  ASSERT_EQ(::chmod(folder.GetPath().c_str(), 0700), 0);
  EXPECT_TRUE(RunAsNobody([&] { return FileExists(folder.GetPath() + "/none.jpg", false); }) ||
              ::getuid() != 0);
}

/// A home folder of its own and a record of the messages.
class PicturesFolder : public testing::Test, public CMessageBox {
 protected:
  PicturesFolder() {
    SetMessageBox(this);
    ForgetMyPicturesFolder();
  }
  ~PicturesFolder() override {
    SetMessageBox(nullptr);
    ForgetMyPicturesFolder();
  }
  bool Show(const std::string&, const std::string& text, bool, MessageParent) override {
    Texts.push_back(text);
    return true;
  }

  const CScratchFolder Home;
  const CEnvironmentVariable HomeVariable{"HOME", Home.GetPath()};
  const CEnvironmentVariable Config{"XDG_CONFIG_HOME", std::nullopt};
  std::vector<std::string> Texts;
};

TEST_F(PicturesFolder, IsTheUsersOwnAndKept) {
  Home.File("Pictures/x");
  EXPECT_EQ(GetMyPicturesFolder(), Home.GetPath() + "/Pictures");
  std::filesystem::remove(Home.GetPath() + "/Pictures");
  EXPECT_EQ(GetMyPicturesFolder(), Home.GetPath() + "/Pictures");
  EXPECT_TRUE(Texts.empty());
}

TEST_F(PicturesFolder, IsMadeInTheDocumentsFolderAndSaidOnce) {
  Home.File("Documents/x");
  EXPECT_EQ(GetMyPicturesFolder(), Home.GetPath() + "/Documents/My Pictures");
  EXPECT_TRUE(std::filesystem::is_directory(Home.GetPath() + "/Documents/My Pictures"));
  ASSERT_EQ(Texts.size(), 1U);
  EXPECT_THAT(Texts[0],
              testing::StartsWith("Vellumar Photo Organizer cannot find your photo collection.\n\n"));
  ForgetMyPicturesFolder();
  EXPECT_EQ(GetMyPicturesFolder(), Home.GetPath() + "/Documents/My Pictures");
  EXPECT_EQ(Texts.size(), 1U);
}

TEST_F(PicturesFolder, IsMadeWithTheDocumentsFolderThatIsOnlyNamed) {
  Home.Write(".config/user-dirs.dirs", "XDG_DOCUMENTS_DIR=\"$HOME/Papers\"\n");
  EXPECT_EQ(GetMyPicturesFolder(), Home.GetPath() + "/Papers/My Pictures");
  ForgetMyPicturesFolder();
  Home.Write(".config/user-dirs.dirs", "XDG_DOCUMENTS_DIR=\"/nosuchdisk/Papers\"\n");
  EXPECT_EQ(GetMyPicturesFolder(), Home.GetPath() + "/My Pictures") << "on a disk that is away";
  EXPECT_TRUE(std::filesystem::is_directory(Home.GetPath() + "/My Pictures"));
  EXPECT_EQ(Texts.size(), 2U);
}

TEST_F(PicturesFolder, IsNotAnnouncedWhereItCannotBeMade) {
  const CFailingStep fault(1);
  EXPECT_EQ(GetMyPicturesFolder(), Home.GetPath() + "/My Pictures");
  EXPECT_TRUE(Texts.empty());
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
  EXPECT_EQ(FindPresentSpelling("/PROC/version"), "");
  scratch.Write("ÉTÉ/x", "");
  EXPECT_FALSE(isFormer("/ÉTÉ/A.jpg", "/Été/a.jpg")) << "both folders stand";
  EXPECT_FALSE(IsSameFolder(root + "/ÉTÉ", root + "/Été"));
  std::filesystem::create_hard_link(root + "/Été/a.jpg", root + "/Été/A.jpg");
  EXPECT_FALSE(isFormer("/Été/A.jpg", "/Été/a.jpg")) << "two names of one file";
  std::filesystem::create_directory_symlink(root + "/Été", root + "/link");
  EXPECT_TRUE(IsSameFolder(root + "/link/", root + "/Été"));
  EXPECT_FALSE(IsSameFolder(root + "/usb/A", root + "/usb/a")) << "a disk that is away";
}

TEST(Folders, OfTheProgramStandWhereItRuns) {
  const std::string program = GetProgramFolder();
  EXPECT_TRUE(std::filesystem::exists(program + "base_test")) << program;
  const auto above = std::filesystem::path(program).parent_path().parent_path();
  EXPECT_EQ(GetActiveDiskPhotoFolder(), (above / "My Pictures").string());
  const CEnvironmentVariable data("XDG_DATA_HOME", "/data");
  EXPECT_EQ(GetApplicationDataFolder(), "/data/Vellumar Photo Organizer");
}

TEST(CheckDiskWritable, ReplacesAndRemovesItsFile) {
  const CScratchFolder folder;
  EXPECT_TRUE(CheckDiskWritable(folder.GetPath()));
  const std::string stale = folder.Write("x###x", "left behind");
  EXPECT_TRUE(CheckDiskWritable(folder.GetPath() + "/"));
  EXPECT_FALSE(std::filesystem::exists(stale));
  const std::string precious = folder.Write("precious", "kept");
  std::filesystem::create_symlink(precious, stale);
  EXPECT_TRUE(CheckDiskWritable(folder.GetPath()));
  EXPECT_EQ(ReadBytes(precious), "kept");
  std::filesystem::remove(precious);
  EXPECT_FALSE(CheckDiskWritable(folder.GetPath() + "/none"));
  EXPECT_FALSE(CheckDiskWritable(folder.Write("file", "x")));
  {
    const CFailingStep fault(2);
    EXPECT_FALSE(CheckDiskWritable(folder.GetPath()));
  }
  ASSERT_EQ(::chmod(folder.GetPath().c_str(), 0555), 0);
  EXPECT_TRUE(RunAsNobody([&folder] { return !CheckDiskWritable(folder.GetPath()); }));
  EXPECT_TRUE(std::filesystem::exists(folder.GetPath() + "/file"));
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.GetPath()), {}), 1);
}

TEST(Paths, AreCutAndJoinedAtTheirLastSlash) {
  const PathParts parts = SplitPath("/p/a.b/photo.JPG");
  EXPECT_EQ(parts.Folder, "/p/a.b/");
  EXPECT_EQ(parts.Name, "photo.JPG");
  EXPECT_EQ(SplitPath("bare").Folder, "");
  EXPECT_EQ(SplitPath("/p/").Name, "");
  EXPECT_EQ(GetExtension("/p/a.b/photo"), "");
  EXPECT_EQ(GetExtension("/p/photo.tar.JPG"), ".JPG");
  EXPECT_EQ(GetExtension("/p/.hidden"), "");
  EXPECT_EQ(GetExtension("photo."), ".");
  EXPECT_EQ(GetBaseName("/p/photo.tar.JPG"), "photo.tar");
  EXPECT_EQ(GetBaseName("/p.x/.hidden"), ".hidden");
  EXPECT_EQ(JoinPath("/p", "a"), "/p/a");
  EXPECT_EQ(JoinPath("/p/", "/a"), "/p/a");
  EXPECT_EQ(JoinPath("/", "a"), "/a");
  EXPECT_EQ(JoinPath("", "/a"), "/a");
  EXPECT_EQ(WithClosingSlash("/"), "/");
  EXPECT_EQ(WithClosingSlash(""), "");
  EXPECT_EQ(WithoutClosingSlash("/p//"), "/p");
  EXPECT_EQ(WithoutClosingSlash("/"), "/");
  EXPECT_EQ(ToPlatformPath("\\a\\b"), "/a/b");
}

}  // namespace
