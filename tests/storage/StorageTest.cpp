// What a storage keeps from one run to the next, whole and in part.

#include <memory>
#include <thread>

#include "StorageFixture.h"
#include "storage/DataThread.h"

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
  for (int i = 0; i < 200; ++i) pText.Set(Things[1], std::string(1000, 'x') + std::to_string(i));
  pText.Set(Things[1], std::string(600, 'p') + "b");
  std::string ends;
  const c4_View sorted = Things.SortOn({pText});
  for (int i = 0; i < 5; ++i) ends += pText.Get(sorted[i]).back();
  EXPECT_EQ(ends, odd.back() + std::string("abBC"));
  Storage->Commit();
  Open(Mode::ReadOnly);
  EXPECT_EQ(Things.Find(pText[odd]), 0);
  EXPECT_EQ(Things.Find(pText["nul"]), -1);
  EXPECT_TRUE(pBytes.Get(Things[0]) == large);
}

TEST_F(CStorageKeepTest, ViewsAndRowsOutliveTheirStorageAsEmptyOnes) {
  Open();
  const c4_RowRef row = Things.Add(pNumber[1]);
  Storage->Commit();
  pNumber.Set(row, 5);
  Storage.reset();
  pNumber.Set(row, 6);
  Things.SetSize(4);
  Things.AddProperty(pMore);
  EXPECT_FALSE(row.IsValid() || Things.Add(pNumber[3]).IsValid());
  EXPECT_EQ(Things.SortOn({pNumber}).GetSize() + Things.GetSize() + pNumber.Get(row), 0);
  EXPECT_THAT(Sql("SELECT Number FROM Thing"), ElementsAre("1"));
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
  Things.SetSize(2);
  EXPECT_EQ(c4_StringProp("Legacy").Get(Storage->GetAs("THING[legacy:S]")[0]), "old");
  Storage->Rollback();  // of rows that were loaded in the middle of the transaction
  EXPECT_EQ(Things.GetSize(), 1);
  const c4_View byMore = Things.SortOnReverse({pMore}, {pMore});  // before there is such a property
  const c4_RowRef added = Things.Add(pNumber[5]);
  pMore.Set(added, 1);
  EXPECT_EQ(pMore.Get(added), 0);
  Things.AddProperty(pMore);
  pMore.Set(added, 1);
  EXPECT_EQ(byMore.GetIndexOf(added), 0);
  for (const char* refused : {"Thing[Text:I]", "A", "A[]", "A[x:Q]", "A[x:I", "A[x:I,X:S]", "A[oid:I]"}) {
    EXPECT_THROW(Storage->GetAs(refused), CError) << refused;
  }
  Storage->Commit();
  EXPECT_THAT(Sql("SELECT Number,Legacy,Text,More FROM Thing"), ElementsAre("4|old||0", "5|||1"));
  EXPECT_THAT(Sql("SELECT x FROM Stranger"), ElementsAre("9"));
}

TEST_F(CStorageKeepTest, UndoneViewsAndPropertiesAreMadeAgain) {
  Open();
  const c4_RowRef undone = Things.Add(pNumber[1]);
  Storage->Rollback();  // the table itself is gone from the file
  EXPECT_EQ(Things.GetSize(), 0);
  const c4_RowRef row = Things.Add(pNumber[2]);
  EXPECT_FALSE(undone.IsValid());
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
    Things.SetSize(1);
  }).join();
  EXPECT_EQ(Things.GetSize(), 1);  // they came back
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
  const std::string shown = Show(Things);
  const c4_RowRef last = Things[19];
  Things.SetSize(3);
  Storage->Compact();
  EXPECT_EQ(Show(Things), shown);
  EXPECT_EQ(pNumber.Get(last), 199);
  EXPECT_LT(std::filesystem::file_size(Path), size / 2);
  EXPECT_TRUE(std::filesystem::equivalent(Path, Folder + "/link"));
  Storage->GetAs("More[Number:I]");  // the file is ours now
}

}  // namespace
