// What opening makes of files that are no storage, or not in a state to be one.

#include <sys/stat.h>

#include <cerrno>
#include <fstream>
#include <functional>
#include <memory>

#include "StorageFixture.h"
#include "storage/StorageFile.h"
#include "support/FaultSteps.h"
#include "support/FaultyVfs.h"

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

class CStorageOpeningTest : public CStorageTest {
 protected:
  using OtherProgram = std::unique_ptr<sqlite3, decltype(&sqlite3_close)>;

  CStorageOpeningTest() {
    c4_Storage storage(Path, Mode::ReadWrite);
    c4_View things = storage.GetAs(kDescription);
    for (std::size_t i = 0; i < 200; ++i) {
      things.Add(pText["text " + std::to_string(i)] + pBytes[c4_Bytes(i * 37 % 9000, 'b')]);
    }
    storage.Commit();
    Shown = Show(things);
    Whole = ReadBytes(Path);
  }

  static std::string ShowFile(const std::string& path, Mode mode) {
    return Show(c4_Storage(path, mode).GetAs(kDescription));
  }
  static std::string OpenAndFail(const std::string& path, Mode mode) {
    return FailureOf([&] { ShowFile(path, mode); });
  }
  /// The change isn't committed.
  std::string ChangeAndFail() const {
    c4_Storage storage(Path, Mode::ReadWrite);
    const c4_View things = storage.GetAs(kDescription);
    pText.Set(things[0], "text 0");  // no change needs no journal
    return FailureOf([&] { pText.Set(things[0], "changed"); });
  }

  /// Both modes refuse the file with such a text, as damaged, and leave everything as it was.
  void ExpectDamaged(const std::string& text = "it is damaged") {
    const auto before = ReadFolder();
    for (const Mode mode : {Mode::ReadWrite, Mode::ReadOnly}) {
      EXPECT_THAT(OpenAndFail(Path, mode), AllOf(HasSubstr("damaged: The file \"" + Path), HasSubstr(text)));
    }
    EXPECT_TRUE(ReadFolder() == before) << "something was changed";
  }

  /// A program that has run the statements and keeps the file open.
  OtherProgram OpenElsewhere(const char* statements) const {
    sqlite3* connection = nullptr;
    EXPECT_EQ(sqlite3_open(Path.c_str(), &connection), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(connection, statements, nullptr, nullptr, nullptr), SQLITE_OK);
    return {connection, sqlite3_close};
  }

  /// Runs statements in a program that is then killed, and leaves a journal or a log.
  void RunAndDie(const char* statements) const {
    RunInChild([&] { return OpenElsewhere(statements).release() == nullptr; });
    ASSERT_TRUE(fs::exists(Path + "-journal") || fs::exists(Path + "-wal"));
  }
  static constexpr const char* kHalfAChange =
      "PRAGMA cache_size=5; BEGIN; UPDATE Thing SET Text='half', Bytes=zeroblob(9000)";
  static constexpr const char* kLoggedChange =
      "PRAGMA journal_mode=WAL; INSERT INTO Thing(Text, Bytes) VALUES('logged', zeroblob(90000))";

  std::string Shown;
  std::string Whole;
};

TEST_F(CStorageOpeningTest, OtherBytesAndCutFilesAreDamage) {
  const std::string header("SQLite format 3\0", 16), noise(20000, 'x');
  for (const std::string& bytes : {std::string(), std::string(100, '\0'), header, header + noise, noise,
                                   std::string(Whole).replace(4096, 4096, noise, 0, 4096)}) {
    WriteFile(bytes);
    ExpectDamaged();
  }
  for (const std::size_t left : {1UL, 100UL, 511UL, 4096UL, 5000UL, Whole.size() - 1}) {
    SCOPED_TRACE(left);
    WriteFile(Whole.substr(0, left));
    ExpectDamaged();
    EXPECT_EQ(CopyStorageFile(Path, Folder + "/copy"), std::errc::bad_message);
  }
}

TEST_F(CStorageOpeningTest, FileOfAnotherProgramIsForeignUnlessItHasTheView) {
  for (const char* content : {"CREATE TABLE Songs(Title TEXT)", "CREATE VIEW Thing AS SELECT 1 AS Number"}) {
    fs::remove(Path);
    Sql(content);
    ExpectDamaged("another program");
  }
  fs::remove(Path);
  Sql("CREATE TABLE thing(Extra REAL DEFAULT 2.5, number, Text); "
      "INSERT INTO thing VALUES(1, 42, 'a'), (1, 'text', x'6162'), (1, NULL, NULL), (1, 3.5, 7),"
      " (1, 9999999999, 'z');");
  c4_Storage storage(Path, Mode::ReadWrite);
  c4_View things = storage.GetAs(kDescription);
  EXPECT_EQ(Show(things), "42 a 0; 0  0; 0  0; 0  0; 0 z 0; ");
  EXPECT_THROW(storage.GetAs("Absent[Number:I]"), CDamagedStorage);
  pBytes.Set(things[0], ToBytes("b"));
  things.Add(pText["added"]);
  storage.Commit();
  EXPECT_THAT(Sql("SELECT Extra,number,Text,Bytes FROM thing WHERE rowid IN (1,6)"),
              ElementsAre("1.0|42|a|b", "2.5|0|added|"));
}

TEST_F(CStorageOpeningTest, FoldersAndPipesAreRefusedAndMissingFilesMadeForWriting) {
  const std::string pipe = Folder + "/pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  for (const Mode mode : {Mode::ReadWrite, Mode::ReadOnly}) {
    EXPECT_THAT(OpenAndFail(Folder, mode), HasSubstr("a folder"));
    EXPECT_THAT(OpenAndFail(pipe, mode), HasSubstr("not a regular file"));
  }
  EXPECT_THAT(OpenAndFail(Folder + "/none", Mode::ReadOnly), HasSubstr("No such file"));
  EXPECT_FALSE(fs::exists(Folder + "/none"));
  // A journal or a log that outlived its file isn't the new file's.
  for (const char* statements : {kHalfAChange, kLoggedChange}) {
    WriteFile(Whole);
    RunAndDie(statements);
    fs::remove(Path);
    EXPECT_EQ(ShowFile(Path, Mode::ReadWrite), "");
  }
}

TEST_F(CStorageOpeningTest, OtherProgramsAndFullDisksKeepNobodyFromLookingUnlessTheyLock) {
  OtherProgram other = OpenElsewhere("BEGIN EXCLUSIVE");
  EXPECT_EQ(OpenAndFail(Path, Mode::ReadWrite),
            "error: The file \"" + Path + "\" can't be opened: another program is using it.");
  other.reset();
  other = OpenElsewhere("BEGIN; SELECT * FROM Thing");
  EXPECT_EQ(ShowFile(Path, Mode::ReadWrite), Shown);
  CFaultyVfs vfs;
  vfs.SetPlan([](const std::string& step, const std::string& path) {
    errno = ENOENT;  // of the library's last try, to open what isn't there for reading
    return step == "write" || path.ends_with("-journal") ? GetFaultOf(step, true) : SQLITE_OK;
  });
  EXPECT_EQ(ShowFile(Path, Mode::ReadWrite), Shown);
  const CFailingStep full(1, true);
  EXPECT_THAT(ChangeAndFail(), HasSubstr("the disk is full"));
}

TEST_F(CStorageOpeningTest, MissingRightsAreToldAndNothingIsLeft) {
  const auto before = ReadFolder();
  ASSERT_EQ(chmod(Folder.c_str(), 0755), 0);
  for (const unsigned rights : {0644U, 0666U, 0600U}) {
    ASSERT_EQ(chmod(Path.c_str(), rights), 0);
    EXPECT_TRUE(RunAsNobody([&] {
      const char* reason = rights == 0666 ? "its folder may not be written" : "Permission denied";
      EXPECT_THAT(rights == 0600 ? OpenAndFail(Path, Mode::ReadOnly) : ChangeAndFail(), HasSubstr(reason));
      EXPECT_TRUE(rights == 0600 || ShowFile(Path, Mode::ReadWrite) == Shown);
      EXPECT_THAT(OpenAndFail(Folder + "/new.db", Mode::ReadWrite), HasSubstr("Permission denied"));
      return !HasFailure();
    }));
  }
  EXPECT_TRUE(ReadFolder() == before);
}

TEST_F(CStorageOpeningTest, LogOfAnotherToolIsPartOfTheFile) {
  RunAndDie(kLoggedChange);
  const std::string logged = Shown + "0 logged " + '\0' + "90000; ";
  EXPECT_EQ(ShowFile(Path, Mode::ReadOnly), logged);
  EXPECT_FALSE(CopyStorageFile(Path, Folder + "/copy"));
  EXPECT_EQ(ShowFile(Folder + "/copy", Mode::ReadOnly), logged);
  EXPECT_EQ(ShowFile(Path, Mode::ReadWrite), logged);
  EXPECT_THAT(Sql("PRAGMA journal_mode"), ElementsAre("delete"));
}

TEST_F(CStorageOpeningTest, FileThatGoesWhileItIsOpenTakesNoChangeAndShowsItsRows) {
  RunSql(Folder + "/other.db", "CREATE TABLE Songs(Title TEXT)");
  const std::string other = ReadBytes(Folder + "/other.db");
  const auto replace = [&](const std::string& bytes) { fs::rename(Scratch.Write("new", bytes), Path); };
  const std::vector<std::function<void()>> accidents = {
      [&] { WriteFile(""); }, [&] { fs::resize_file(Path, Whole.size() - 1); }, [&] { WriteFile(other); },
      [&] { replace(Whole); }, [&] { fs::remove(Path); }};
  for (std::size_t i = 0; i < accidents.size(); ++i) {
    SCOPED_TRACE(i);
    replace(Whole);
    c4_Storage storage(Path, Mode::ReadWrite);
    const c4_View things = storage.GetAs(kDescription);
    accidents[i]();
    const auto before = ReadFolder();
    for (int round = 0; round < 2; ++round) {
      const std::string failure = FailureOf([&] { pText.Set(things[3], "lost"); });
      EXPECT_THAT(failure, HasSubstr(i < 3 ? "refused" : "it was moved, removed or replaced"));
      EXPECT_EQ(things.GetSize(), 200);
      EXPECT_EQ(pText.Get(things[3]), "text 3");
    }
    EXPECT_TRUE(ReadFolder() == before);
  }
}

TEST_F(CStorageOpeningTest, LinkIsFollowedAndKept) {
  const std::string target = Folder + "/far/real.db";
  fs::create_directory(Folder + "/far");
  fs::rename(Path, Folder + "/kept");
  fs::create_symlink("far/real.db", Path);
  EXPECT_THAT(OpenAndFail(Path, Mode::ReadWrite), HasSubstr("No such file")) << "its disk may be away";
  EXPECT_TRUE(fs::is_empty(Folder + "/far"));
  fs::rename(Folder + "/kept", target);
  c4_Storage storage(Path, Mode::ReadWrite);
  storage.GetAs(kDescription).SetSize(203);
  storage.Commit();
  EXPECT_TRUE(fs::is_symlink(Path));
  EXPECT_EQ(RunSqlForOne(target, "SELECT count(*) FROM Thing"), "203");
}

TEST_F(CStorageOpeningTest, InterruptedChangeIsUndoneByOpeningCopyingAndSettingAside) {
  for (const Mode mode : {Mode::ReadWrite, Mode::ReadOnly}) {
    RunAndDie(kHalfAChange);
    EXPECT_EQ(ShowFile(Path, mode), Shown);
    EXPECT_EQ(ReadFolder().size(), 1U);
  }
  RunAndDie(kHalfAChange);
  const std::string journal = ReadBytes(Path + "-journal");
  const std::string half = ReadBytes(Path);
  const std::string copy = Folder + "/copy.db";
  ASSERT_FALSE(CopyStorageFile(Path, copy));
  EXPECT_EQ(ShowFile(copy, Mode::ReadOnly), Shown);
  EXPECT_EQ(CopyStorageFile(Path, copy), std::errc::file_exists);
  EXPECT_EQ(SetStorageFileAside(Path, copy), std::errc::file_exists);
  for (const bool canPlayBack : {true, false}) {
    WriteFile(half);
    Scratch.Write("test.db-journal", journal);
    const std::string aside = Folder + (canPlayBack ? "/aside" : "/aside with journal");
    std::ofstream(aside + "-journal") << "of a file that went long ago";
    CFaultyVfs vfs;
    vfs.SetPlan([&](const std::string& step, const std::string& path) {
      return !canPlayBack && step == "open" && path.ends_with("-journal") ? SQLITE_CANTOPEN : SQLITE_OK;
    });
    ASSERT_FALSE(SetStorageFileAside(Path, aside));
    vfs.SetPlan(nullptr);
    EXPECT_EQ(fs::exists(aside + "-journal"), !canPlayBack);
    EXPECT_EQ(ShowFile(aside, Mode::ReadWrite), Shown);
  }
  EXPECT_EQ(CopyStorageFile(Path, Folder + "/other"), std::errc::no_such_file_or_directory);
  WriteFile(std::string(5000, 'x'));
  ASSERT_FALSE(SetStorageFileAside(Path, Folder + "/damaged"));
  EXPECT_EQ(ReadFolder().size(), 4U) << "the copy and what was set aside";
}

}  // namespace
