// What opening makes of files that are no storage, or not in a state to be one.

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <future>

#include "StorageTestTools.h"
#include "storage/StorageException.h"
#include "storage/StorageFile.h"
#include "support/FaultyVfs.h"

namespace {

using testing::HasSubstr;
using Mode = c4_Storage::Mode;

const c4_IntProp pNumber("Number");
const c4_StringProp pText("Text");
const c4_BytesProp pBytes("Bytes");

constexpr const char* kDescription = "Thing[Number:I,Text:S,Bytes:B]";
constexpr const char* kDamaged = "it is damaged";

/// Opens the file in a mode and reads the view; the message of the failure, or "".
template <typename Failure = CError>
std::string OpenAndFail(const std::string& path, Mode mode) {
  try {
    c4_Storage storage(path, mode);
    storage.GetAs(kDescription);
    return "";
  } catch (const Failure& error) {
    return error.GetMessage();
  }
}

/// Runs code in a process of its own, without the rights of root; its result is whether it was content.
bool RunWithoutRights(const std::function<bool()>& code) {
  const pid_t child = fork();
  if (child == 0) {
    const uid_t nobody = 65534;
    if (geteuid() == 0 && setuid(nobody) != 0) _exit(2);
    _exit(code() ? 0 : 1);
  }
  int status = 0;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

class CStorageOpeningTest : public CStorageTest {
 protected:
  void MakeStorage(int rows = 200) {
    c4_Storage storage(Path, Mode::ReadWrite);
    c4_View things = storage.GetAs(kDescription);
    for (int i = 0; i < rows; ++i) {
      const c4_Bytes bytes(static_cast<std::size_t>(i * 37 % 9000), 'b');
      things.Add(pNumber[i] + pText["text " + std::to_string(i)] + pBytes[bytes]);
    }
    storage.Commit();
  }

  /// Both modes refuse the file with such a text, as damaged, and leave everything as it was.
  void ExpectDamaged(const std::string& text) {
    const auto before = ReadFolder(Folder);
    for (const Mode mode : {Mode::ReadWrite, Mode::ReadOnly}) {
      const std::string message = OpenAndFail<CDamagedStorage>(Path, mode);
      EXPECT_THAT(message, HasSubstr("\"" + Path + "\""));
      EXPECT_THAT(message, HasSubstr(text));
    }
    EXPECT_TRUE(ReadFolder(Folder) == before) << "something was changed";
  }

  /// Leaves the file in the middle of a large transaction, with its journal, as a kill does.
  void InterruptAChange() {
    const pid_t child = fork();
    if (child == 0) {
      sqlite3* connection = nullptr;
      sqlite3_open(Path.c_str(), &connection);
      sqlite3_exec(connection,
                   "PRAGMA cache_size=5; BEGIN; UPDATE Thing SET Text='half', Bytes=zeroblob(9000);", nullptr,
                   nullptr, nullptr);
      _exit(0);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(std::filesystem::exists(Path + "-journal"));
  }

  /// Leaves a row of many pages in the log of another tool that was killed.
  void LeaveALog() {
    const pid_t child = fork();
    if (child == 0) {
      sqlite3* connection = nullptr;
      sqlite3_open(Path.c_str(), &connection);
      sqlite3_exec(connection,
                   "PRAGMA journal_mode=WAL; PRAGMA wal_autocheckpoint=0;"
                   "INSERT INTO Thing(Number, Text, Bytes) VALUES(1, 'logged', zeroblob(90000))",
                   nullptr, nullptr, nullptr);
      _exit(0);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(std::filesystem::exists(Path + "-wal"));
  }

  void ExpectWhole(const std::string& path, Mode mode) {
    c4_Storage storage(path, mode);
    const c4_View things = storage.GetAs(kDescription);
    ASSERT_EQ(things.GetSize(), 200);
    for (int i = 0; i < 200; ++i) {
      ASSERT_EQ(pText.Get(things[i]), "text " + std::to_string(i));
      ASSERT_EQ(pBytes.Get(things[i]).size(), static_cast<std::size_t>(i * 37 % 9000));
    }
  }

  /// The message of a change that the storage refuses, or "".
  std::string ChangeAndFail() const {
    try {
      c4_Storage storage(Path, Mode::ReadWrite);
      pText.Set(storage.GetAs(kDescription)[0], "changed");
      storage.Commit();
      return "";
    } catch (const CStorageException& exception) {
      return exception.GetMessage();
    }
  }

  void AllowReading() {
    ASSERT_EQ(chmod(Folder.c_str(), 0755), 0);
    ASSERT_EQ(chmod(Path.c_str(), 0644), 0);
  }
};

TEST_F(CStorageOpeningTest, EmptyFileIsDamageAndNoNewStorage) {
  WriteBytes(Path, "");
  ExpectDamaged(kDamaged);
}

TEST_F(CStorageOpeningTest, OtherBytesAreDamage) {
  std::string noise;
  for (int i = 0; i < 20000; ++i) noise += static_cast<char>(i * i % 251 + i / 256);
  for (const std::string& bytes :
       {std::string("x"), std::string("SQLite format 3\0", 16), std::string(100, '\0'),
        std::string("SQLite format 3\0", 16) + noise, noise}) {
    WriteBytes(Path, bytes);
    ExpectDamaged(kDamaged);
  }
}

TEST_F(CStorageOpeningTest, FileCutAnywhereIsDamaged) {
  MakeStorage();
  const std::string whole = ReadBytes(Path);
  ASSERT_GT(whole.size(), 100'000U);
  for (const std::size_t size : {std::size_t{1}, std::size_t{99}, std::size_t{100}, std::size_t{511},
                                 std::size_t{4095}, std::size_t{4096}, std::size_t{5000}, std::size_t{8192},
                                 whole.size() / 2, whole.size() - 4096, whole.size() - 1}) {
    SCOPED_TRACE(size);
    WriteBytes(Path, whole.substr(0, size));
    ExpectDamaged(kDamaged);
    EXPECT_EQ(CopyStorageFile(Path, Folder + "/copy"), std::errc::bad_message);
  }
}

TEST_F(CStorageOpeningTest, OverwrittenPageIsDamageOrAReadThatFails) {
  MakeStorage(40);
  const std::string whole = ReadBytes(Path);
  int refused = 0;
  for (std::size_t page = 0; page < whole.size() / 4096; ++page) {
    std::string bytes = whole;
    for (std::size_t i = 0; i < 4096; ++i) bytes[page * 4096 + i] = static_cast<char>(i * 31 + page);
    WriteBytes(Path, bytes);
    try {
      c4_Storage storage(Path, Mode::ReadOnly);
      const c4_View things = storage.GetAs(kDescription);
      for (int i = 0; i < things.GetSize(); ++i) pBytes.Get(things[i]);
    } catch (const CDamagedStorage&) {
      ++refused;
    } catch (const CStorageException&) {
    }
    ASSERT_TRUE(ReadBytes(Path) == bytes);
  }
  EXPECT_GT(refused, 2);
}

TEST_F(CStorageOpeningTest, FilesOfOtherProgramsAreForeign) {
  RunSql(Path, "CREATE TABLE Songs(Title TEXT); INSERT INTO Songs VALUES('x')");
  ExpectDamaged("another program");
  std::filesystem::remove(Path);
  RunSql(Path, "CREATE VIEW Thing AS SELECT 1 AS Number; PRAGMA application_id=7");
  ExpectDamaged("another program");
}

TEST_F(CStorageOpeningTest, HandMadeFileWithTheViewIsAccepted) {
  RunSql(Path,
         "CREATE TABLE thing(Extra REAL DEFAULT 2.5, number, Text); CREATE TABLE Other(x);"
         "INSERT INTO thing VALUES(1, 42, 'a'), (1, 'text', x'6162'), (1, NULL, NULL), (1, 3.5, 7),"
         " (1, 9999999999, 'z');");
  {
    c4_Storage storage(Path, Mode::ReadWrite);
    const c4_View things = storage.GetAs(kDescription);
    ASSERT_EQ(things.GetSize(), 5);
    const std::vector<std::int32_t> numbers = {42, 0, 0, 0, 0};
    const std::vector<std::string> texts = {"a", "", "", "", "z"};
    for (int i = 0; i < 5; ++i) {
      EXPECT_EQ(pNumber.Get(things[i]), numbers[static_cast<std::size_t>(i)]) << i;
      EXPECT_EQ(pText.Get(things[i]), texts[static_cast<std::size_t>(i)]) << i;
      EXPECT_TRUE(pBytes.Get(things[i]).empty());
    }
    EXPECT_THROW(storage.GetAs("Absent[Number:I]"), CDamagedStorage);
    pBytes.Set(things[0], ToBytes("b"));
    c4_View(things).Add(pText["added"]);
    storage.Commit();
  }
  EXPECT_EQ(RunSql(Path, "SELECT Extra,number,Text,Bytes FROM thing WHERE rowid IN (1,6)"),
            "1.0|42|a|b\n2.5|0|added|");
  EXPECT_EQ(RunSql(Path, "SELECT count(*) FROM Other"), "0");
}

TEST_F(CStorageOpeningTest, FoldersAndPipesAreRefused) {
  std::filesystem::create_directory(Path);
  const std::string pipe = Folder + "/pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  for (const Mode mode : {Mode::ReadWrite, Mode::ReadOnly}) {
    EXPECT_THAT(OpenAndFail(Path, mode), HasSubstr("a folder"));
    EXPECT_THAT(OpenAndFail(pipe, mode), HasSubstr("not a regular file"));
  }
}

TEST_F(CStorageOpeningTest, MissingFileIsMadeOnlyForWriting) {
  EXPECT_THAT(OpenAndFail(Path, Mode::ReadOnly), HasSubstr("No such file"));
  EXPECT_TRUE(ReadFolder(Folder).empty());
  EXPECT_THAT(OpenAndFail(Folder + "/none/x.db", Mode::ReadWrite), HasSubstr("No such file"));
  // A journal or a log that outlived its file isn't the new file's.
  for (const bool logs : {false, true}) {
    MakeStorage();
    logs ? LeaveALog() : InterruptAChange();
    std::filesystem::remove(Path);
    EXPECT_EQ(c4_Storage(Path, Mode::ReadWrite).GetAs(kDescription).GetSize(), 0);
  }
}

TEST_F(CStorageOpeningTest, LockedFileIsRefusedAfterWaiting) {
  MakeStorage();
  sqlite3* other = nullptr;
  ASSERT_EQ(sqlite3_open(Path.c_str(), &other), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(other, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);
  auto writing = std::async(std::launch::async, [this] {
    try {
      c4_Storage storage(Path, Mode::ReadWrite);
      return std::string();
    } catch (const CDamagedStorage&) {
      return std::string("damaged");
    } catch (const CError& error) {
      return error.GetMessage();
    }
  });
  EXPECT_THAT(OpenAndFail(Path, Mode::ReadOnly), HasSubstr("another program is using it"));
  EXPECT_THAT(writing.get(), HasSubstr("another program is using it"));
  ASSERT_EQ(sqlite3_close(other), SQLITE_OK);
  ExpectWhole(Path, Mode::ReadWrite);
}

TEST_F(CStorageOpeningTest, MissingRightsAreToldAndNothingIsLeft) {
  MakeStorage();
  AllowReading();
  const auto before = ReadFolder(Folder);
  const auto looksButChangesNothing = [&](const std::string& reason) {
    for (const Mode mode : {Mode::ReadOnly, Mode::ReadWrite}) ExpectWhole(Path, mode);
    const std::string message = ChangeAndFail();
    return message.find(reason) != std::string::npos && !HasFailure();
  };
  EXPECT_TRUE(RunWithoutRights([&] { return looksButChangesNothing("Permission denied"); }));
  ASSERT_EQ(chmod(Path.c_str(), 0666), 0);
  EXPECT_TRUE(RunWithoutRights([&] { return looksButChangesNothing("its folder may not be written"); }));
  EXPECT_TRUE(RunWithoutRights([&] {
    return OpenAndFail(Folder + "/new.db", Mode::ReadWrite).find("Permission denied") != std::string::npos;
  })) << "new file";
  ASSERT_EQ(chmod(Path.c_str(), 0600), 0);
  EXPECT_TRUE(RunWithoutRights([&] {
    return OpenAndFail(Path, Mode::ReadOnly).find("Permission denied") != std::string::npos;
  })) << "file may not be read";
  EXPECT_TRUE(ReadFolder(Folder) == before);
}

TEST_F(CStorageOpeningTest, FullDiskOrAnotherReaderKeepsNobodyFromLooking) {
  MakeStorage();
  sqlite3* reader = nullptr;
  ASSERT_EQ(sqlite3_open(Path.c_str(), &reader), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(reader, "BEGIN; SELECT * FROM Thing", nullptr, nullptr, nullptr), SQLITE_OK);
  ExpectWhole(Path, Mode::ReadWrite);
  ASSERT_EQ(sqlite3_close(reader), SQLITE_OK);

  CFaultyVfs vfs;
  vfs.SetPlan([](const std::string& step, const std::string& path) {
    return step == "write" || path.ends_with("-journal") ? GetFaultOf(step, true) : SQLITE_OK;
  });
  ExpectWhole(Path, Mode::ReadWrite);
  EXPECT_NE(ChangeAndFail(), "");
}

TEST_F(CStorageOpeningTest, LogOfAnotherToolIsPartOfTheFile) {
  MakeStorage(1);
  LeaveALog();
  EXPECT_EQ(OpenAndFail(Path, Mode::ReadOnly), "");
  EXPECT_FALSE(CopyStorageFile(Path, Folder + "/copy"));
  RunSql(Path, "PRAGMA journal_mode=WAL");
  sqlite3* reader = nullptr;  // keeps the log in use
  ASSERT_EQ(sqlite3_open(Path.c_str(), &reader), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(reader, "BEGIN; SELECT * FROM Thing", nullptr, nullptr, nullptr), SQLITE_OK);
  {
    c4_Storage storage(Path, Mode::ReadWrite);
    c4_View things = storage.GetAs(kDescription);
    for (int round = 0; round < 3; ++round) {
      things.Add(pText["ours"] + pBytes[c4_Bytes(90000, 'b')]);
      storage.Commit();
    }
  }
  ASSERT_EQ(sqlite3_close(reader), SQLITE_OK);
  EXPECT_EQ(OpenAndFail(Path, Mode::ReadWrite), "");
  EXPECT_EQ(RunSql(Path, "SELECT count(*) FROM Thing; PRAGMA journal_mode"), "5\ndelete");
}

TEST_F(CStorageOpeningTest, FileThatGoesWhileItIsOpenTakesNoChangeAndShowsItsRows) {
  MakeStorage();
  const std::string whole = ReadBytes(Path);
  RunSql(Folder + "/other.db", "CREATE TABLE Songs(Title TEXT)");
  const std::string other = ReadBytes(Folder + "/other.db");
  const auto replace = [&](const std::string& bytes) {
    WriteBytes(Folder + "/new", bytes);
    std::filesystem::rename(Folder + "/new", Path);
  };
  const std::vector<std::function<void()>> accidents = {
      [&] { WriteBytes(Path, ""); },
      [&] { std::filesystem::resize_file(Path, whole.size() / 2); },
      [&] { WriteBytes(Path, other); },
      [&] { WriteBytes(Path, std::string(whole.size(), 'x')); },
      [&] { replace(whole); },
      [&] { replace(other); },
      [&] { std::filesystem::remove(Path); },
  };
  for (std::size_t i = 0; i < accidents.size(); ++i) {
    SCOPED_TRACE(i);
    replace(whole);
    c4_Storage storage(Path, Mode::ReadWrite);
    const c4_View things = storage.GetAs(kDescription);
    accidents[i]();
    const auto before = ReadFolder(Folder);
    for (int round = 0; round < 2; ++round) {
      EXPECT_THROW(
          {
            pText.Set(things[3], "lost");
            storage.Commit();
          },
          CStorageException);
      ASSERT_EQ(things.GetSize(), 200);
      EXPECT_EQ(pText.Get(things[3]), "text 3");
    }
    EXPECT_TRUE(ReadFolder(Folder) == before);
  }
}

TEST_F(CStorageOpeningTest, LinkIsFollowedAndKept) {
  std::filesystem::create_directory(Folder + "/far");
  const std::string target = Folder + "/far/real.db";
  std::filesystem::create_symlink("far/real.db", Path);
  EXPECT_THAT(OpenAndFail(Path, Mode::ReadWrite), HasSubstr("No such file")) << "its disk may be away";
  EXPECT_TRUE(std::filesystem::is_empty(Folder + "/far"));
  std::filesystem::remove(Path);
  MakeStorage();
  std::filesystem::rename(Path, target);
  std::filesystem::create_symlink("far/real.db", Path);
  MakeStorage(1);
  EXPECT_TRUE(std::filesystem::is_symlink(Path));
  EXPECT_EQ(RunSql(target, "SELECT count(*) FROM Thing"), "201");
}

TEST_F(CStorageOpeningTest, InterruptedChangeIsUndoneFirst) {
  for (const Mode mode : {Mode::ReadWrite, Mode::ReadOnly}) {
    std::filesystem::remove(Path);
    MakeStorage();
    InterruptAChange();
    ExpectWhole(Path, mode);
    EXPECT_EQ(ReadFolder(Folder).size(), 1U);
  }
}

TEST_F(CStorageOpeningTest, InterruptedChangeThatCannotBeUndoneIsTold) {
  MakeStorage();
  InterruptAChange();
  AllowReading();
  ASSERT_EQ(chmod((Path + "-journal").c_str(), 0644), 0);
  const auto before = ReadFolder(Folder);
  EXPECT_TRUE(RunWithoutRights(
      [&] { return OpenAndFail(Path, Mode::ReadOnly).find("interrupted change") != std::string::npos; }));
  EXPECT_TRUE(ReadFolder(Folder) == before);
}

TEST_F(CStorageOpeningTest, CopyAndSettingAsideTakeTheJournalIntoAccount) {
  MakeStorage();
  InterruptAChange();
  const std::string journal = ReadBytes(Path + "-journal");
  const std::string half = ReadBytes(Path);
  const std::string copy = Folder + "/copy.db";
  ASSERT_FALSE(CopyStorageFile(Path, copy));
  ExpectWhole(copy, Mode::ReadOnly);
  EXPECT_EQ(CopyStorageFile(Path, copy), std::errc::file_exists);
  EXPECT_EQ(SetStorageFileAside(Path, copy), std::errc::file_exists);

  WriteBytes(Path, half);
  WriteBytes(Path + "-journal", journal);
  const std::string aside = Folder + "/aside.db";
  WriteBytes(aside + "-journal", "of a file that went long ago");
  ASSERT_FALSE(SetStorageFileAside(Path, aside));
  ExpectWhole(aside, Mode::ReadWrite);
  EXPECT_EQ(ReadFolder(Folder).size(), 2U);  // the copy and the file aside
}

TEST_F(CStorageOpeningTest, JournalThatCannotBePlayedBackIsSetAsideWithItsFile) {
  MakeStorage();
  InterruptAChange();
  const std::map<std::string, std::string> expected = {{"aside", ReadBytes(Path)},
                                                       {"aside-journal", ReadBytes(Path + "-journal")}};
  {
    CFaultyVfs vfs;
    vfs.SetPlan([](const std::string& step, const std::string& path) {
      return step == "open" && path.ends_with("-journal") ? SQLITE_CANTOPEN : SQLITE_OK;
    });
    ASSERT_FALSE(SetStorageFileAside(Path, Folder + "/aside"));
  }
  EXPECT_TRUE(ReadFolder(Folder) == expected);
  ExpectWhole(Folder + "/aside", Mode::ReadWrite);
}

TEST_F(CStorageOpeningTest, DamagedFileIsSetAsideButNotCopied) {
  const std::string copy = Folder + "/copy";
  EXPECT_EQ(CopyStorageFile(Path, copy), std::errc::no_such_file_or_directory);
  for (const std::size_t size : {0U, 5U, 5000U}) {
    WriteBytes(Path, std::string(size, 'x'));
    EXPECT_EQ(CopyStorageFile(Path, copy), std::errc::bad_message);
    ASSERT_FALSE(SetStorageFileAside(Path, Folder + "/" + std::to_string(size)));
  }
  EXPECT_EQ(ReadFolder(Folder), (std::map<std::string, std::string>{
                                    {"0", ""}, {"5", "xxxxx"}, {"5000", std::string(5000, 'x')}}));
}

}  // namespace
