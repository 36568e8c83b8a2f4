// What a storage keeps from one run to the next, whole and in part.

#include <memory>
#include <sstream>
#include <thread>

#include "StorageFixture.h"
#include "storage/DataThread.h"
#include "storage/StorageDescription.h"
#include "support/FaultyVfs.h"

using testing::ElementsAre;

namespace {

const c4_IntProp pMore("More");

class CStorageKeepTest : public CStorageTest {
 protected:
  void Open(Mode mode = Mode::ReadWrite) {
    Storage.reset();
    Storage = std::make_unique<c4_Storage>(Path, mode);
    Things = Storage->GetAs(kDescription);
  }

  std::unique_ptr<c4_Storage> Storage;
  c4_View Things;
};

TEST_F(CStorageKeepTest, DescriptionGivesColumnsInOrderAndTakesNothingElse) {
  const ViewDescription view = ParseViewDescription("Asset[AssetID:I,Location_2:S,ID:B]");
  ASSERT_EQ(view.Columns.size(), 3U);
  EXPECT_EQ(view.Name + "." + view.Columns[1].Name, "Asset.Location_2");
  EXPECT_EQ(view.Columns[1].Type, c4_Type::Text);
  EXPECT_EQ(view.Columns[2].Type, c4_Type::Bytes);
  std::istringstream refused(
      "A A[ A[] A[x] A[x:] A[x:Q] A[x:I A[x:I,] A[x:I]] [x:I] A[x:i] A[x:I,X:S] A[rowid:I] A[OID:I] 1A[x:I] "
      "A[x-y:I] sqlite_a[x:I] A\"[x:I] A[\xc3\xa9:I] A[x:I];DROP");
  for (std::string bad; refused >> bad;) EXPECT_THROW(ParseViewDescription(bad), CError) << bad;
  EXPECT_THROW(ParseViewDescription(""), CError);
  EXPECT_THROW(ParseViewDescription("A [x:I]"), CError);
}

TEST_F(CStorageKeepTest, OneTableAViewThatSqliteReads) {
  Open();
  Things.Add(pNumber[-2147483647 - 1] + pText["it's \"quoted\" \xc3\xa9"] + pBytes[ToBytes("\x01\xff")]);
  Things.Add(pText["only text"] + pMore[5]);
  Storage->GetAs("People[Number:B]").SetSize(1);  // one name, another type
  Storage->Commit();
  EXPECT_THAT(Sql("SELECT rowid,Number,Text,hex(Bytes),typeof(Bytes) FROM Thing"),
              ElementsAre("1|-2147483648|it's \"quoted\" \xc3\xa9|01FF|blob", "2|0|only text||blob"));
  EXPECT_THAT(Sql("SELECT name,type FROM pragma_table_info('Thing')"),
              ElementsAre("Number|INTEGER", "Text|TEXT", "Bytes|BLOB"));
  EXPECT_THAT(Sql("SELECT typeof(Number) FROM People"), ElementsAre("blob"));
}

TEST_F(CStorageKeepTest, AnyBytesAreATextAndAnyLengthAValue) {
  const std::string odd("nul\0 \xff\xfe\xed\xa0\x80", 9);
  const c4_Bytes large(3'000'000, 0xab);
  Open();
  Things.Add(pText[odd] + pBytes[large]);
  for (const char* end : {"b", "C", "a", "B"}) Things.Add(pText[std::string(600, 'p') + end]);
  // Long texts that are replaced make the column move those that stay.
  for (int i = 0; i < 200; ++i) pText.Set(Things.Add({}), std::string(1000, 'x') + std::to_string(i));
  for (int i = 5; i < 205; ++i) pText.Set(Things[i], "");
  Storage->Commit();
  Open(Mode::ReadOnly);
  EXPECT_EQ(pText.Get(Things[0]), odd);
  EXPECT_TRUE(pBytes.Get(Things[0]) == large);
  EXPECT_EQ(Things.Find(pText[odd]), 0);
  EXPECT_EQ(Things.Find(pText["nul"]), -1);
  const c4_View sorted = Things.SortOn({pText});
  std::string ends;
  for (int i = 201; i < 205; ++i) ends += pText.Get(sorted[i]).substr(600);
  EXPECT_EQ(ends, "abBC");
}

TEST_F(CStorageKeepTest, WhatWasNotCommittedIsDropped) {
  Open();
  const c4_RowRef row = Things.Add(pNumber[1]);
  Storage->Commit();
  Things.Add(pNumber[2]);
  pNumber.Set(row, 5);
  Storage.reset();
  // Views and rows outlive their storage, as empty ones.
  EXPECT_EQ(Things.GetSize(), 0);
  EXPECT_FALSE(row.IsValid());
  EXPECT_EQ(pNumber.Get(row), 0);
  pNumber.Set(row, 6);
  EXPECT_FALSE(Things.Add(pNumber[3]).IsValid());
  Things.SetSize(4);
  Things.AddProperty(pMore);
  EXPECT_EQ(Things.SortOn({pNumber}).GetSize(), 0);
  EXPECT_THAT(Sql("SELECT Number FROM Thing"), ElementsAre("1"));
}

TEST_F(CStorageKeepTest, CommitWithoutChangesLeavesTheFileAlone) {
  Open();
  const c4_RowRef row = Things.Add(pNumber[7] + pText["same"]);
  Storage->Commit();
  CFaultyVfs vfs;
  vfs.SetPlan([](const std::string&, const std::string&) { return SQLITE_IOERR; });
  pNumber.Set(row, 7);
  pText.Set(row, "same");
  Things.RemoveAt(1, 5);
  Things.RemoveAt(-3, 3);
  Things.AddProperty(pNumber);
  Storage->Commit();
  Storage->Rollback();
  EXPECT_EQ(pNumber.Get(row), 7);
}

TEST_F(CStorageKeepTest, ColumnsAreAddedAndUnknownOnesKept) {
  Sql("CREATE TABLE Thing(Number INTEGER, Legacy TEXT DEFAULT 'old'); INSERT INTO Thing(Number) VALUES(4);"
      "CREATE TABLE Stranger(x); INSERT INTO Stranger VALUES(9)");
  const std::string before = ReadBytes(Path);
  Open(Mode::ReadOnly);  // where a column can't be added it reads as empty
  EXPECT_EQ(Show(Things), "4  0; ");
  EXPECT_EQ(Things.Find(pText[""]), 0);
  EXPECT_THROW(Things.Add(pNumber[1]), CStorageException);
  EXPECT_EQ(Things.GetSize(), 1);
  Storage->Commit();
  EXPECT_TRUE(ReadBytes(Path) == before);

  Open();
  const c4_View byMore = Things.SortOnReverse({pMore}, {pMore});  // before there is such a property
  const c4_RowRef added = Things.Add(pNumber[5]);
  pMore.Set(added, 1);
  EXPECT_EQ(pMore.Get(added), 0);
  Things.AddProperty(pMore);
  pMore.Set(added, 1);
  EXPECT_EQ(byMore.GetIndexOf(added), 0);
  EXPECT_EQ(c4_StringProp("Legacy").Get(Storage->GetAs("THING[legacy:S]")[0]), "old");
  EXPECT_EQ(pMore.Get(added), 1);
  EXPECT_THROW(Storage->GetAs("Thing[Text:I]"), CError);
  Storage->Commit();
  EXPECT_THAT(Sql("SELECT Number,Legacy,Text,More FROM Thing"), ElementsAre("4|old||0", "5|old||1"));
  EXPECT_THAT(Sql("SELECT x FROM Stranger"), ElementsAre("9"));
}

TEST_F(CStorageKeepTest, UndoneViewsAndPropertiesAreMadeAgain) {
  Open();
  Things.Add(pNumber[1]);
  Storage->Rollback();  // the table itself is gone from the file
  EXPECT_EQ(Things.GetSize(), 0);
  const c4_RowRef row = Things.Add(pNumber[2]);
  Storage->Commit();
  pNumber.Set(row, 3);
  Things.AddProperty(pMore);
  pMore.Set(row, 8);
  Storage->Rollback();
  EXPECT_EQ(pNumber.Get(row), 2);
  EXPECT_EQ(pMore.Get(row), 0);
  pMore.Set(row, 9);
  Storage->Commit();
  EXPECT_THAT(Sql("SELECT Number,More FROM Thing"), ElementsAre("2|9"));
}

TEST_F(CStorageKeepTest, ChangesOfAnotherProcessAreTakenInBeforeTheNextOwn) {
  Open();
  const c4_View sorted = Things.SortOn({pNumber});
  Things.SetSize(3);
  Storage->Commit();
  const c4_RowRef gone = Things[0];
  const c4_RowRef kept = Things[2];
  Sql("INSERT INTO Thing(Number) VALUES(-5); DELETE FROM Thing WHERE rowid=1");
  pNumber.Set(gone, 1);
  pNumber.Set(kept, 8);
  EXPECT_FALSE(gone.IsValid());
  EXPECT_EQ(Things.GetIndexOf(kept), 1);
  EXPECT_EQ(Show(sorted), "-5  0; 0  0; 8  0; ");
  Storage->Commit();
  EXPECT_THAT(Sql("SELECT rowid,Number FROM Thing"), ElementsAre("2|0", "3|8", "4|-5"));
}

TEST_F(CStorageKeepTest, DataAreLentToOneThreadAtATime) {
  Open();
  std::thread([&] {
    const CDataThreadScope scope;
    Things.Add(pNumber[5]);
  }).join();
  EXPECT_EQ(pNumber.Get(Things[0]), 5);  // they came back
#ifndef NDEBUG
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_DEATH(std::thread([&] { Things.GetSize(); }).join(), "doesn't own the data");
#endif
}

TEST_F(CStorageKeepTest, CompactingDropsFreeSpaceAndOpenChangesAlone) {
  Sql("CREATE TABLE Thing(Number, Text, Bytes)");  // as another program makes it, without our mark
  std::filesystem::create_hard_link(Path, Folder + "/link");
  Open();
  for (int i = 0; i < 200; ++i) Things.Add(pNumber[i] + pBytes[c4_Bytes(500, 'x')]);
  Storage->Commit();
  Things.RemoveAt(10, 180);
  Storage->Commit();
  const auto size = std::filesystem::file_size(Path);
  const auto rows = Sql("SELECT rowid,* FROM Thing");
  const std::string shown = Show(Things);
  const c4_RowRef last = Things[19];
  Things.SetSize(3);
  Storage->Compact();
  EXPECT_EQ(Show(Things), shown);
  EXPECT_EQ(pNumber.Get(last), 199);
  EXPECT_EQ(Sql("SELECT rowid,* FROM Thing"), rows);
  EXPECT_LT(std::filesystem::file_size(Path), size / 2);
  EXPECT_TRUE(std::filesystem::equivalent(Path, Folder + "/link"));
  Storage->GetAs("More[Number:I]");  // the file is ours now
}

}  // namespace
