// A disk that fails at the n-th step of a change, for every n.

#include <cerrno>
#include <functional>

#include "StorageTestTools.h"
#include "platform/Faults.h"
#include "storage/StorageException.h"
#include "support/FaultyVfs.h"

using testing::HasSubstr;

namespace {

const c4_IntProp pNumber("Number");
const c4_StringProp pText("Text");
const c4_BytesProp pBytes("Bytes");

constexpr const char* kDescription = "Thing[Number:I,Text:S,Bytes:B]";

/// A view with others derived from it, and all that they show as one text.
struct Opened {
  explicit Opened(const std::string& path)
      : Storage(path, c4_Storage::Mode::ReadWrite),
        Things(Storage.GetAs(kDescription)),
        ByText(Things.SortOn({pText})),
        Ones(ByText.Select(pNumber[1])) {}

  std::string Show() const {
    std::string text;
    for (const c4_View& view : {Things, ByText, Ones}) {
      for (int i = 0; i < view.GetSize(); ++i) {
        const c4_Bytes bytes = pBytes.Get(view[i]);
        text += std::to_string(pNumber.Get(view[i])) + std::string(pText.Get(view[i])) + ":" +
                std::to_string(bytes.size()) + std::string(bytes.begin(), bytes.begin() + !bytes.empty()) +
                " ";
      }
      text += "/ ";
    }
    return text;
  }

  c4_Storage Storage;
  c4_View Things;
  c4_View ByText;
  c4_View Ones;
};

class CStorageFaultTest : public CStorageTest {
 protected:
  void MakeFirstRows() {
    Opened opened(Path);
    for (const int number : {3, 1, 2, 1, 5}) {
      const c4_Bytes bytes(3000, static_cast<std::uint8_t>('a' + number));
      opened.Things.Add(pNumber[number] + pText["text" + std::to_string(number)] + pBytes[bytes]);
    }
    opened.Storage.Commit();
    Before = opened.Show();
  }

  /// Changes of every kind; `size` makes them larger than SQLite's memory for pages.
  static void Change(Opened& opened, std::size_t size) {
    opened.Things.Add(pNumber[1] + pText["new"] + pBytes[c4_Bytes(size, 'n')]);
    pText.Set(opened.Things[1], "AAA");
    pBytes.Set(opened.Things[0], c4_Bytes(size, 'm'));
    pNumber.Set(opened.ByText[0], 1);
    opened.Ones.RemoveAt(1);
    opened.Things.SetSize(6);
    opened.Storage.Commit();
  }

  /// Whether the change went through with a fault at the n-th step that `suffers` picks.
  bool ChangeWithFault(Opened& opened, int step, bool full, bool lasting, std::size_t size) {
    int count = 0;
    Vfs.SetPlan([&](const std::string& name, const std::string&) {
      if (name == "read" || name == "deleted") return SQLITE_OK;
      ++count;
      return count == step || (lasting && count > step) ? GetFaultOf(name, full) : SQLITE_OK;
    });
    bool done = true;
    try {
      Change(opened, size);
    } catch (const CStorageException& exception) {
      done = false;
      EXPECT_THAT(exception.GetMessage(), HasSubstr(Path));
    }
    Vfs.SetPlan(nullptr);
    Reached = count >= step;
    return done;
  }

  void RunAllSteps(bool full, bool lasting, std::size_t size, int stride) {
    MakeFirstRows();
    const std::string bytes = ReadBytes(Path);
    Reached = true;
    for (int step = 1; Reached; step += stride) {
      SCOPED_TRACE("step " + std::to_string(step));
      WriteBytes(Path, bytes);
      std::string after;
      {
        Opened opened(Path);
        if (!ChangeWithFault(opened, step, full, lasting, size)) {
          ASSERT_EQ(opened.Show(), Before);
          ASSERT_EQ(RunSql(Path, "PRAGMA integrity_check"), "ok");
          Change(opened, size);
        }
        after = opened.Show();
        ASSERT_NE(after, Before);
      }
      ASSERT_EQ(Opened(Path).Show(), after);
      ASSERT_EQ(ReadFolder(Folder).size(), 1U) << "something was left beside the file";
    }
  }

  static std::string FailureOf(const std::function<void()>& change) {
    try {
      change();
      return "none";
    } catch (const CStorageException& exception) {
      return exception.GetMessage();
    }
  }

  CFaultyVfs Vfs;
  std::string Before;
  bool Reached = false;
};

TEST_F(CStorageFaultTest, FullDiskAtAnyStepLeavesTheLastCommit) { RunAllSteps(true, false, 4000, 1); }

TEST_F(CStorageFaultTest, DiskFullFromAnyStepOnLeavesTheLastCommit) { RunAllSteps(true, true, 4000, 1); }

TEST_F(CStorageFaultTest, ErrorAtAnyStepLeavesTheLastCommit) { RunAllSteps(false, false, 4000, 1); }

TEST_F(CStorageFaultTest, ErrorsFromAnyStepOnLeaveTheLastCommit) { RunAllSteps(false, true, 4000, 1); }

TEST_F(CStorageFaultTest, ErrorInATransactionLargerThanThePageCacheLeavesTheLastCommit) {
  RunAllSteps(false, false, 10'000'000, 2999);
}

TEST_F(CStorageFaultTest, CommitWhoseLastFlushFailedIsTheSameInMemoryAndInTheFile) {
  MakeFirstRows();
  Opened opened(Path);
  Vfs.SetPlan([](const std::string& step, const std::string&) {
    return step == "deleted" ? GetFaultOf(step, false) : SQLITE_OK;
  });
  EXPECT_THROW(Change(opened, 100), CStorageException);
  Vfs.SetPlan(nullptr);
  EXPECT_EQ(Opened(Path).Show(), opened.Show());
  opened.Things.Add(pNumber[8]);
  opened.Storage.Commit();
  EXPECT_EQ(Opened(Path).Show(), opened.Show());
}

TEST_F(CStorageFaultTest, DiskThatIsGoneForAWhileGivesTheRowsBack) {
  MakeFirstRows();
  Opened opened(Path);
  const c4_RowRef row = opened.Things[1];
  Vfs.SetPlan([](const std::string& step, const std::string&) { return GetFaultOf(step, false); });
  EXPECT_THROW(pText.Set(row, "x"), CStorageException);
  EXPECT_EQ(pText.Get(row), "text1");
  EXPECT_EQ(pNumber.Get(opened.ByText[4]), 5);
  EXPECT_THROW(opened.Things.Add(pNumber[1]), CStorageException);
  Vfs.SetPlan(nullptr);
  EXPECT_EQ(opened.Show(), Before);
  pText.Set(row, "x");
  opened.Storage.Commit();
  EXPECT_EQ(pText.Get(Opened(Path).Things[1]), "x");
}

TEST_F(CStorageFaultTest, FileThatAnotherProgramDestroysIsToldAtEachChange) {
  MakeFirstRows();
  const std::string bytes = ReadBytes(Path);
  for (const std::size_t left : {std::size_t{0}, std::size_t{100}, std::size_t{4096}, bytes.size() - 1}) {
    WriteBytes(Path, bytes);
    Opened opened(Path);
    std::filesystem::resize_file(Path, left);
    for (int i = 0; i < 2; ++i) EXPECT_THROW(pText.Set(opened.Things[1], "x"), CStorageException) << left;
    EXPECT_EQ(pText.Get(opened.Things[1]), "text1") << "what is held in memory stays";
    EXPECT_EQ(ReadBytes(Path), bytes.substr(0, left)) << "its bytes stay";
  }
  WriteBytes(Path, bytes);
  Opened opened(Path);
  std::filesystem::rename(Path, Path + ".away");
  EXPECT_THAT(FailureOf([&] { pText.Set(opened.Things[1], "x"); }), HasSubstr("moved, removed"));
}

TEST_F(CStorageFaultTest, JournalThatCannotBeMadeIsToldWithItsCause) {
  MakeFirstRows();
  Opened opened(Path);
  Vfs.SetPlan([](const std::string& step, const std::string& path) {
    errno = ENOENT;  // of the library's last try, to open what isn't there for reading
    return step == "open" && path.ends_with("-journal") ? SQLITE_CANTOPEN : SQLITE_OK;
  });
  std::errc cause = std::errc::no_space_on_device;
  platform::SetFaultPlan([&cause](std::string_view, std::string_view) { return make_error_code(cause); });
  EXPECT_THAT(FailureOf([&] { pText.Set(opened.Things[1], "x"); }), HasSubstr("the disk is full"));
  cause = std::errc::read_only_file_system;
  EXPECT_THAT(FailureOf([&] { pText.Set(opened.Things[1], "x"); }), HasSubstr("Read-only file system"));
  platform::SetFaultPlan({});
}

TEST_F(CStorageFaultTest, BytesThatCannotBeReadRaiseAndUndo) {
  MakeFirstRows();
  {
    Opened opened(Path);
    pBytes.Set(opened.Things[4], c4_Bytes(50'000, 'z'));
    opened.Storage.Commit();
  }
  Opened opened(Path);  // long bytes aren't among the pages that it has read
  pText.Set(opened.Things[0], "changed");
  Vfs.SetPlan([](const std::string& step, const std::string&) {
    return step == "read" ? SQLITE_IOERR_READ : SQLITE_OK;
  });
  EXPECT_THROW(pBytes.Get(opened.Things[4]), CStorageException);
  Vfs.SetPlan(nullptr);
  // SQLite has given the transaction up, so the views must have done so too.
  EXPECT_EQ(pText.Get(opened.Things[0]), "text3");
  EXPECT_EQ(pBytes.Get(opened.Things[4]).size(), 50'000U);
  pText.Set(opened.Things[0], "changed again");
  opened.Storage.Commit();
  EXPECT_EQ(pText.Get(Opened(Path).Things[0]), "changed again");
}

TEST_F(CStorageFaultTest, NewFileIsWholeOrAbsent) {
  for (const bool full : {true, false}) {
    bool made = false;
    for (int step = 1; !made; ++step) {
      SCOPED_TRACE(step);
      int count = 0;
      Vfs.SetPlan([&](const std::string& name, const std::string&) {
        return ++count == step ? GetFaultOf(name, full) : SQLITE_OK;
      });
      try {
        c4_Storage storage(Path, c4_Storage::Mode::ReadWrite);
        made = true;
      } catch (const CError& error) {
        EXPECT_THAT(error.GetMessage(), HasSubstr(Path));
      }
      Vfs.SetPlan(nullptr);
      const auto files = ReadFolder(Folder);
      for (const auto& [name, bytes] : files) ASSERT_THAT(name, testing::StartsWith("test.db"));
      if (files.empty()) continue;
      ASSERT_FALSE(files.at("test.db").empty());
      c4_Storage(Path, c4_Storage::Mode::ReadWrite).GetAs(kDescription);
      std::filesystem::remove(Path);
    }
  }
}

TEST_F(CStorageFaultTest, NewFileThatCannotBeNamedLeavesNothing) {
  platform::SetFaultPlan([](std::string_view operation, std::string_view) {
    return operation == "rename" ? make_error_code(std::errc::no_space_on_device) : std::error_code();
  });
  EXPECT_THROW(c4_Storage(Path, c4_Storage::Mode::ReadWrite), CError);
  platform::SetFaultPlan(nullptr);
  EXPECT_TRUE(ReadFolder(Folder).empty());
}

}  // namespace
