// What a storage keeps from one run to the next, whole and in part.

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <random>

#include "StorageTestTools.h"
#include "storage/StorageDescription.h"
#include "storage/StorageException.h"
#include "support/FaultSteps.h"
#include "support/FaultyVfs.h"

namespace {

using Mode = c4_Storage::Mode;

const c4_IntProp pNumber("Number");
const c4_StringProp pText("Text");
const c4_BytesProp pBytes("Bytes");

constexpr const char* kDescription = "Thing[Number:I,Text:S,Bytes:B]";

using CDescriptionTest = CStorageTest;

TEST_F(CDescriptionTest, GivesNameAndColumnsInOrder) {
  const ViewDescription view = ParseViewDescription("Asset[AssetID:I,Location_2:S,ID:B]");
  EXPECT_EQ(view.Name, "Asset");
  ASSERT_EQ(view.Columns.size(), 3U);
  EXPECT_EQ(view.Columns[1].Name, "Location_2");
  EXPECT_EQ(view.Columns[1].Type, c4_Type::Text);
  EXPECT_EQ(view.Columns[2].Type, c4_Type::Bytes);
}

TEST_F(CDescriptionTest, AnythingElseIsRefused) {
  for (const char* bad : {"",
                          "A",
                          "A[",
                          "A[]",
                          "A[x]",
                          "A[x:]",
                          "A[x:Q]",
                          "A[x:I",
                          "A[x:I,]",
                          "A[x:I]]",
                          "[x:I]",
                          "A [x:I]",
                          "A[x:i]",
                          "A[x:I,X:S]",
                          "A[rowid:I]",
                          "A[OID:I]",
                          "1A[x:I]",
                          "A[x-y:I]",
                          "sqlite_a[x:I]",
                          "A\"[x:I]",
                          "A[\xc3\xa9:I]",
                          "A[x:I];DROP TABLE A"}) {
    EXPECT_THROW(ParseViewDescription(bad), CError) << bad;
  }
}

using CStorageKeepTest = CStorageTest;

TEST_F(CStorageKeepTest, OneTableAViewThatSqliteReads) {
  {
    c4_Storage storage(Path, Mode::ReadWrite);
    c4_View things = storage.GetAs(kDescription);
    things.Add(pNumber[-2147483647 - 1] + pText["it's \"quoted\" \xc3\xa9"] + pBytes[ToBytes("\x01\xff")]);
    things.Add(pText["only text"] + c4_IntProp("Absent")[5]);
    storage.GetAs("Empty[Ordinary:I]");
    storage.Commit();
  }
  EXPECT_EQ(RunSql(Path, "SELECT rowid,Number,Text,hex(Bytes),typeof(Bytes) FROM Thing"),
            "1|-2147483648|it's \"quoted\" \xc3\xa9|01FF|blob\n2|0|only text||blob");
  EXPECT_EQ(RunSql(Path, "SELECT name,type FROM pragma_table_info('Thing')"),
            "Number|INTEGER\nText|TEXT\nBytes|BLOB");
  EXPECT_EQ(RunSql(Path, "SELECT count(*) FROM Empty"), "0");
}

TEST_F(CStorageKeepTest, AnyBytesAreATextAndAnyLengthABlock) {
  const std::string odd("nul\0 \xff\xfe\xed\xa0\x80", 9);
  const c4_Bytes large(3'000'000, 0xab);
  {
    c4_Storage storage(Path, Mode::ReadWrite);
    storage.GetAs(kDescription).Add(pText[odd] + pBytes[large]);
    storage.Commit();
  }
  c4_Storage storage(Path, Mode::ReadOnly);
  const c4_View things = storage.GetAs(kDescription);
  EXPECT_EQ(pText.Get(things[0]), odd);
  EXPECT_TRUE(pBytes.Get(things[0]) == large);
  EXPECT_EQ(things.Find(pText[odd]), 0);
  EXPECT_EQ(things.Find(pText["nul"]), -1);
}

TEST_F(CStorageKeepTest, WhatWasNotCommittedIsDropped) {
  c4_RowRef row;
  c4_View view;
  {
    c4_Storage storage(Path, Mode::ReadWrite);
    view = storage.GetAs(kDescription);
    row = view.Add(pNumber[1]);
    storage.Commit();
    view.Add(pNumber[2]);
    pNumber.Set(row, 5);
  }
  // Views and rows outlive their storage, as empty ones.
  EXPECT_EQ(view.GetSize(), 0);
  EXPECT_FALSE(row.IsValid());
  EXPECT_EQ(pNumber.Get(row), 0);
  pNumber.Set(row, 6);
  EXPECT_FALSE(view.Add(pNumber[3]).IsValid());
  view.SetSize(4);
  view.AddProperty(c4_IntProp("More"));
  EXPECT_EQ(view.SortOn({pNumber}).GetSize(), 0);
  EXPECT_EQ(RunSql(Path, "SELECT Number FROM Thing"), "1");
}

TEST_F(CStorageKeepTest, CommitWithoutChangesLeavesTheFileAlone) {
  c4_Storage storage(Path, Mode::ReadWrite);
  c4_View things = storage.GetAs(kDescription);
  const c4_RowRef row = things.Add(pNumber[7] + pText["same"]);
  storage.Commit();
  CFaultyVfs vfs;
  vfs.SetPlan([](const std::string&, const std::string&) { return SQLITE_IOERR; });
  storage.Commit();
  pNumber.Set(row, 7);
  pText.Set(row, "same");
  things.SetSize(1);
  things.RemoveAt(1, 5);
  things.RemoveAt(-3, 3);
  things.AddProperty(pNumber);
  storage.Commit();
  storage.Rollback();
  EXPECT_EQ(pNumber.Get(row), 7);
}

TEST_F(CStorageKeepTest, ColumnsAreAddedAndUnknownOnesKept) {
  RunSql(Path,
         "CREATE TABLE Thing(Number INTEGER, Legacy TEXT DEFAULT 'old'); INSERT INTO Thing(Number) VALUES(4);"
         "CREATE TABLE Stranger(x); INSERT INTO Stranger VALUES(9)");
  const c4_IntProp pMore("More");
  const c4_StringProp pLegacy("Legacy");
  {
    c4_Storage storage(Path, Mode::ReadOnly);  // where it can't be added it reads as empty
    const c4_View things = storage.GetAs(kDescription);
    EXPECT_EQ(pText.Get(things[0]), "");
    EXPECT_EQ(things.Find(pText[""]), 0);
  }
  {
    c4_Storage storage(Path, Mode::ReadWrite);
    c4_View things = storage.GetAs(kDescription);
    const c4_View byMore = things.SortOnReverse({pMore}, {pMore});  // before there is such a property
    things.Add(pNumber[5]);
    pMore.Set(things[1], 1);
    EXPECT_EQ(pMore.Get(things[1]), 0);
    things.AddProperty(pMore);
    pMore.Set(things[1], 1);
    EXPECT_EQ(pMore.Get(byMore[0]), 1);
    EXPECT_EQ(pLegacy.Get(storage.GetAs("THING[legacy:S]")[0]), "old");
    EXPECT_EQ(pMore.Get(things[1]), 1);
    EXPECT_THROW(storage.GetAs("Thing[Text:I]"), CError);
    storage.Commit();
  }
  EXPECT_EQ(RunSql(Path, "SELECT Number,Legacy,Text,More FROM Thing"), "4|old||0\n5|old||1");
  EXPECT_EQ(RunSql(Path, "SELECT x FROM Stranger"), "9");
}

TEST_F(CStorageKeepTest, UndoneViewsAndPropertiesAreMadeAgain) {
  c4_Storage storage(Path, Mode::ReadWrite);
  c4_View things = storage.GetAs(kDescription);
  things.Add(pNumber[1]);
  storage.Rollback();  // the table itself is gone from the file
  EXPECT_EQ(things.GetSize(), 0);
  const c4_RowRef row = things.Add(pNumber[2]);
  storage.Commit();
  const c4_StringProp pMore("More");
  pNumber.Set(row, 3);
  things.AddProperty(pMore);
  pMore.Set(row, "x");
  storage.Rollback();
  EXPECT_EQ(pNumber.Get(row), 2);
  EXPECT_EQ(pMore.Get(row), "");
  pMore.Set(row, "y");
  storage.Commit();
  EXPECT_EQ(RunSql(Path, "SELECT Number,More FROM Thing"), "2|y");
}

TEST_F(CStorageKeepTest, ChangesOfAnotherProcessAreTakenInBeforeTheNextOwn) {
  c4_Storage storage(Path, Mode::ReadWrite);
  c4_View things = storage.GetAs(kDescription);
  const c4_View sorted = things.SortOn({pNumber});
  things.SetSize(3);
  storage.Commit();
  const c4_RowRef gone = things[0];
  const c4_RowRef kept = things[2];
  RunSql(Path, "INSERT INTO Thing(Number) VALUES(-5); DELETE FROM Thing WHERE rowid=1");
  pNumber.Set(gone, 1);
  pNumber.Set(kept, 8);
  EXPECT_FALSE(gone.IsValid());
  EXPECT_EQ(things.GetIndexOf(kept), 1);
  EXPECT_EQ(sorted.GetIndexOf(kept), 2);
  EXPECT_EQ(pNumber.Get(sorted[0]), -5);
  storage.Commit();
  EXPECT_EQ(RunSql(Path, "SELECT rowid,Number FROM Thing"), "2|0\n3|8\n4|-5");
}

TEST_F(CStorageKeepTest, ReadingModeChangesNothing) {
  c4_Storage(Path, Mode::ReadWrite).Commit();
  const std::string before = ReadBytes(Path);
  c4_Storage storage(Path, Mode::ReadOnly);
  c4_View things = storage.GetAs(kDescription);
  EXPECT_EQ(things.GetSize(), 0);
  EXPECT_THROW(things.Add(pNumber[1]), CStorageException);
  EXPECT_EQ(things.GetSize(), 0);
  storage.Commit();
  EXPECT_TRUE(ReadBytes(Path) == before);
}

TEST_F(CStorageKeepTest, OnePropertyNameMayHaveATypeInEachView) {
  c4_Storage storage(Path, Mode::ReadWrite);
  c4_View cache = storage.GetAs("Cache[ID:I]");
  c4_View people = storage.GetAs("People[ID:B]");
  const c4_RowRef number = cache.Add(c4_IntProp("ID")[3]);
  const c4_RowRef person = people.Add(c4_BytesProp("id")[ToBytes("xyz")]);
  EXPECT_EQ(c4_IntProp("ID").Get(number), 3);
  EXPECT_EQ(c4_BytesProp("ID").Get(person), ToBytes("xyz"));
  EXPECT_EQ(c4_IntProp("ID").Get(person), 0);
}

class CCompactTest : public CStorageTest {
 protected:
  CCompactTest() {
    RunSql(Path, "CREATE TABLE Thing(Number, Text, Bytes)");  // of another program, and without its mark
    c4_Storage storage(Path, Mode::ReadWrite);
    c4_View things = storage.GetAs(kDescription);
    for (int i = 0; i < 200; ++i) things.Add(pNumber[i] + pBytes[c4_Bytes(500, 'x')]);
    storage.Commit();
    things.RemoveAt(10, 180);
    storage.Commit();
  }

  std::string ReadRows() const { return RunSql(Path, "SELECT rowid,* FROM Thing"); }
};

TEST_F(CCompactTest, RowsAndViewsStayFreeSpaceAndOpenChangesGo) {
  const std::string rows = ReadRows();
  const auto size = std::filesystem::file_size(Path);
  const std::string link = Folder + "/link.db";
  std::filesystem::create_hard_link(Path, link);
  std::filesystem::permissions(Path, std::filesystem::perms::owner_all);
  c4_Storage storage(Path, Mode::ReadWrite);
  c4_View things = storage.GetAs(kDescription);
  const c4_RowRef last = things[19];
  things.SetSize(3);
  storage.Compact();
  EXPECT_EQ(things.GetSize(), 20);
  EXPECT_EQ(pNumber.Get(last), 199);
  EXPECT_EQ(pBytes.Get(last).size(), 500U);
  EXPECT_EQ(ReadRows(), rows);
  EXPECT_LT(std::filesystem::file_size(Path), size / 2);
  EXPECT_TRUE(std::filesystem::equivalent(Path, link));
  EXPECT_EQ(std::filesystem::status(Path).permissions(), std::filesystem::perms::owner_all);
  storage.GetAs("More[Number:I]").Add(pNumber[1]);  // the file is ours now
  storage.Commit();
  EXPECT_EQ(RunSql(link, "SELECT Number FROM More"), "1");
}

TEST_F(CCompactTest, FaultOrKillAtAnyStepLeavesTheRows) {
  const std::string rows = ReadRows();
  const std::string before = ReadBytes(Path);
  CFaultyVfs vfs;
  /// Whether the step was reached.
  const auto compact = [&](int step, bool kill) {
    c4_Storage storage(Path, Mode::ReadWrite);
    c4_View things = storage.GetAs(kDescription);
    int count = 0;
    vfs.SetPlan([&](const std::string& name, const std::string& path) {
      if (name == "read" || !path.starts_with(Path) || ++count != step) return SQLITE_OK;
      if (kill) raise(SIGKILL);
      return GetFaultOf(name, true);
    });
    try {
      storage.Compact();
    } catch (const CStorageException&) {
    }
    vfs.SetPlan(nullptr);
    things.Add(pNumber[1]);
    EXPECT_EQ(things.GetSize(), 21);
    EXPECT_EQ(pNumber.Get(things[19]), 199);
    return count >= step;
  };
  for (const bool kill : {false, true}) {
    bool reached = true;
    for (int step = 1; reached; ++step) {
      SCOPED_TRACE(step);
      WriteBytes(Path, before);
      reached = kill ? IsKilled([&] { compact(step, true); }) : compact(step, false);
      ASSERT_EQ(ReadRows(), rows);
    }
    EXPECT_LT(std::filesystem::file_size(Path), before.size() / 2);
  }
}

/// A process that commits numbered edits until it is killed, and says after each that it is done.
class CStorageKillTest : public CStorageTest {
 protected:
  static constexpr int kRowsAnEdit = 3;

  [[noreturn]] void EditForever(int reports) {
    c4_Storage storage(Path, Mode::ReadWrite);
    c4_View things = storage.GetAs(kDescription);
    c4_View counter = storage.GetAs("Counter[Number:I]");
    if (counter.IsEmpty()) counter.SetSize(1);
    for (int edit = pNumber.Get(counter[0]) + 1;; ++edit) {
      pNumber.Set(counter[0], edit);
      for (int i = 0; i < kRowsAnEdit; ++i) {
        const c4_Bytes bytes(static_cast<std::size_t>(edit % 7 * 1500), static_cast<std::uint8_t>(edit));
        things.Add(pNumber[edit] + pText["edit " + std::to_string(edit)] + pBytes[bytes]);
      }
      if (things.GetSize() > 60) things.RemoveAt(0, kRowsAnEdit);
      storage.Commit();
      if (write(reports, &edit, sizeof edit) != sizeof edit) _exit(1);
    }
  }

  /// The number of the last edit that was reported before the kill.
  int RunAndKill(std::chrono::microseconds delay, int last) {
    std::array<int, 2> pipes{};
    EXPECT_EQ(pipe(pipes.data()), 0);
    const pid_t child = fork();
    if (child == 0) EditForever(pipes[1]);
    close(pipes[1]);
    usleep(static_cast<useconds_t>(delay.count()));
    kill(child, SIGKILL);
    int edit = 0;
    while (read(pipes[0], &edit, sizeof edit) == sizeof edit) last = edit;
    close(pipes[0]);
    waitpid(child, nullptr, 0);
    return last;
  }

  int Check(int reported) {
    EXPECT_EQ(RunSql(Path, "PRAGMA integrity_check"), "ok");
    c4_Storage storage(Path, Mode::ReadWrite);
    const c4_View things = storage.GetAs(kDescription);
    const int last = pNumber.Get(storage.GetAs("Counter[Number:I]")[0]);
    EXPECT_GE(last, reported);
    EXPECT_LE(last, reported + 1);
    EXPECT_EQ(things.GetSize() % kRowsAnEdit, 0);
    for (int i = 0; i < things.GetSize(); ++i) {
      const int edit = last - (things.GetSize() - 1 - i) / kRowsAnEdit;
      EXPECT_EQ(pNumber.Get(things[i]), edit);
      EXPECT_EQ(pText.Get(things[i]), "edit " + std::to_string(edit));
      EXPECT_EQ(pBytes.Get(things[i]),
                c4_Bytes(static_cast<std::size_t>(edit % 7 * 1500), static_cast<std::uint8_t>(edit)));
    }
    return last;
  }
};

TEST_F(CStorageKillTest, NoEditThatReturnedIsLost) {
  std::mt19937 random(7);
  int last = 0;
  for (int round = 0; round < 40 && !HasFailure(); ++round) {
    SCOPED_TRACE(round);
    const std::chrono::microseconds delay(std::uniform_int_distribution<int>(0, 60'000)(random));
    const int reported = RunAndKill(delay, last);
    if (std::filesystem::exists(Path)) last = Check(reported);
  }
  EXPECT_GT(last, 40);
}

}  // namespace
