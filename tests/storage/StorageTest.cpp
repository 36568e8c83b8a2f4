// What a storage keeps from one run to the next, whole and in part.

#include <memory>

#include "StorageFixture.h"

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

TEST_F(CStorageKeepTest, AnyBytesAreATextAndAnyLengthAValue) {
  const std::string odd("nul\0 \xff\xfe\xed\xa0\x80", 9);
  const c4_Bytes large(3'000'000, 0xab);
  Open();
  Things.Add(pText[odd] + pBytes[large] + pNumber[-2147483647 - 1]);
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
  EXPECT_EQ(Sql("SELECT rowid,Number,typeof(Text),typeof(Bytes) FROM Thing")[0], "1|-2147483648|text|blob");
  EXPECT_THAT(Sql("SELECT type FROM pragma_table_info('Thing')"), ElementsAre("INTEGER", "TEXT", "BLOB"));
}

TEST_F(CStorageKeepTest, ColumnsAreAddedAlsoAfterAnUndoAndUnknownOnesKept) {
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
  Things.AddProperty(pMore);
  pMore.Set(Things[0], 8);
  Storage->Rollback();  // of rows that were loaded in the middle of the transaction
  EXPECT_EQ(Things.GetSize(), 1);
  EXPECT_EQ(pMore.Get(Things[0]), 0);
  const c4_RowRef added = Things.Add(pNumber[5]);
  pMore.Set(added, 1);
  for (const char* refused : {"Thing[Text:I]", "A", "A[]", "A[x:Q]", "A[x:I", "A[x:I,X:S]", "A[oid:I]"}) {
    EXPECT_THROW(Storage->GetAs(refused), CError) << refused;
  }
  Storage->Commit();
  EXPECT_THAT(Sql("SELECT Number,Legacy,Text,More FROM Thing"), ElementsAre("4|old||0", "5|||1"));
  EXPECT_THAT(Sql("SELECT x FROM Stranger"), ElementsAre("9"));
}

TEST_F(CStorageKeepTest, ViewsFollowAnUndoAndAnotherProcessAndOutliveTheirStorage) {
  Open();
  const c4_View sorted = Things.SortOn({pNumber});
  const c4_RowRef undone = Things.Add(pNumber[1]);
  Storage->Rollback();  // the table itself is gone from the file
  EXPECT_EQ(Things.GetSize(), 0);
  Things.SetSize(3);
  EXPECT_FALSE(undone.IsValid());
  Storage->Commit();
  const c4_RowRef gone = Things[0];
  const c4_RowRef kept = Things[2];
  Sql("INSERT INTO Thing(Number) VALUES(-5); DELETE FROM Thing WHERE rowid=2");
  pNumber.Set(gone, 1);
  pNumber.Set(kept, 8);
  EXPECT_FALSE(gone.IsValid());
  EXPECT_EQ(Things.GetIndexOf(kept), 1);
  EXPECT_EQ(Show(sorted), "-5  0; 0  0; 8  0; ");
  Storage->Commit();
  pNumber.Set(kept, 5);
  Storage.reset();
  pNumber.Set(kept, 6);
  Things.SetSize(4);
  Things.AddProperty(pMore);
  EXPECT_FALSE(kept.IsValid() || Things.Add(pNumber[3]).IsValid());
  EXPECT_EQ(sorted.GetSize() + Things.GetSize() + pNumber.Get(kept), 0);
  EXPECT_THAT(Sql("SELECT rowid,Number FROM Thing"), ElementsAre("3|0", "4|8", "5|-5"));
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
  Things.SetSize(3);
  Storage->Compact();
  EXPECT_EQ(Show(Things), shown);
  EXPECT_LT(std::filesystem::file_size(Path), size / 2);
  EXPECT_TRUE(std::filesystem::equivalent(Path, Folder + "/link"));
  Storage->GetAs("More[Number:I]");  // the file is ours now
}

}  // namespace
