// A disk that fails, or a process that is killed, at the n-th step of a change, for every n.

#include <csignal>
#include <functional>

#include "StorageFixture.h"
#include "support/FaultSteps.h"
#include "support/FaultyVfs.h"

using testing::HasSubstr;
using testing::StartsWith;

namespace {

/// A view with others derived from it.
struct Opened {
  explicit Opened(const std::string& path)
      : Storage(path, Mode::ReadWrite),
        Things(Storage.GetAs(kDescription)),
        ByText(Things.SortOn({pText})),
        Ones(ByText.Select(pNumber[1])) {}

  std::string ShowAll() const { return Show(Things) + "/" + Show(ByText) + "/" + Show(Ones); }

  c4_Storage Storage;
  c4_View Things;
  c4_View ByText;
  c4_View Ones;
};

/// Changes of every kind; `size` makes them larger than SQLite's memory for pages.
void Change(Opened& opened, std::size_t size) {
  opened.Things.Add(pNumber[1] + pText["new"] + pBytes[c4_Bytes(size, 'n')]);
  pText.Set(opened.Things[1], "AAA");
  pBytes.Set(opened.Things[0], c4_Bytes(size, 'm'));
  pNumber.Set(opened.ByText[0], 1);
  opened.Ones.RemoveAt(1);
  opened.Things.SetSize(6);
  opened.Storage.Commit();
}

enum class FaultKind { Full, Error, ErrorsFromThenOn, Kill };

class CStorageFaultTest : public CStorageTest {
 protected:
  using Work = std::function<void(Opened&)>;

  CStorageFaultTest() {
    Opened opened(Path);
    for (const int number : {3, 1, 2, 1, 5}) {
      const c4_Bytes bytes(3000, static_cast<std::uint8_t>('a' + number));
      opened.Things.Add(pNumber[number] + pText["text" + std::to_string(number)] + pBytes[bytes]);
    }
    opened.Storage.Commit();
    Before = opened.ShowAll();
  }

  /// Does the work with a fault at the n-th step that writes. Whether that step was reached.
  bool WorkWithFault(const Work& work, int step, FaultKind kind) {
    Opened opened(Path);
    int count = 0;
    Vfs.SetPlan([&](const std::string& name, const std::string&) {
      if (name == "deleted" && kind != FaultKind::Kill) return SQLITE_OK;
      if (name != "read") ++count;
      const bool suffers =
          kind == FaultKind::ErrorsFromThenOn ? count >= step : name != "read" && count == step;
      if (suffers && kind == FaultKind::Kill) raise(SIGKILL);
      return suffers ? GetFaultOf(name, kind == FaultKind::Full) : SQLITE_OK;
    });
    if (const std::string failure = FailureOf([&] { work(opened); }); !failure.empty()) {
      EXPECT_THAT(failure, AllOf(StartsWith("refused"), HasSubstr(Path)));
      // What is held in memory is shown even while the disk answers nothing.
      EXPECT_EQ(pText.Get(opened.Things[1]), "text1");
      EXPECT_EQ(pNumber.Get(opened.ByText[4]), 5);
      Vfs.SetPlan(nullptr);
      EXPECT_EQ(opened.ShowAll(), Before);
      EXPECT_EQ(Opened(Path).ShowAll(), Before);
      work(opened);
    }
    Vfs.SetPlan(nullptr);
    return count >= step;
  }

  void RunAllSteps(const Work& work, FaultKind kind, int stride = 1) {
    const std::string bytes = ReadBytes(Path);
    Opened whole(Path);
    work(whole);
    const std::string after = whole.ShowAll();
    bool isDone = false;
    bool reached = true;
    for (int step = 1; reached && !HasFailure(); step += stride) {
      SCOPED_TRACE("kind " + std::to_string(static_cast<int>(kind)) + ", step " + std::to_string(step));
      WriteFile(bytes);
      const auto run = [&] { return WorkWithFault(work, step, kind); };
      reached = kind == FaultKind::Kill ? IsKilled(run) : run();
      // What is done when the process is killed at a step is done at all later ones.
      const std::string shown = Opened(Path).ShowAll();
      isDone = isDone || shown == after;
      EXPECT_EQ(shown, isDone ? after : Before);
      EXPECT_THAT(Sql("PRAGMA integrity_check"), testing::ElementsAre("ok"));
      EXPECT_TRUE(kind == FaultKind::Kill || ReadFolder().size() == 1)
          << "something was left beside the file";
    }
    EXPECT_TRUE(isDone);
    WriteFile(bytes);
  }

  CFaultyVfs Vfs;
  std::string Before;
};

TEST_F(CStorageFaultTest, FaultOrKillAtAnyStepLeavesTheLastCommitOrTheWholeWork) {
  const Work change = [](Opened& opened) { Change(opened, 4000); };
  const Work compact = [](Opened& opened) { opened.Storage.Compact(); };
  for (const FaultKind kind :
       {FaultKind::Full, FaultKind::Error, FaultKind::ErrorsFromThenOn, FaultKind::Kill}) {
    RunAllSteps(change, kind);
    RunAllSteps(compact, kind);
  }
  RunAllSteps([](Opened& opened) { Change(opened, 10'000'000); }, FaultKind::Error, 2999);
}

TEST_F(CStorageFaultTest, CommitWhoseLastFlushFailedIsTheSameInMemoryAndInTheFile) {
  Opened opened(Path);
  Vfs.SetPlan([](const std::string& step, const std::string&) {
    return step == "deleted" ? GetFaultOf(step, false) : SQLITE_OK;
  });
  EXPECT_THROW(Change(opened, 100), CStorageException);
  Vfs.SetPlan(nullptr);
  EXPECT_EQ(Opened(Path).ShowAll(), opened.ShowAll());
  opened.Things.Add(pNumber[8]);
  opened.Storage.Commit();
  EXPECT_EQ(Opened(Path).ShowAll(), opened.ShowAll());
}

TEST_F(CStorageFaultTest, BytesThatCannotBeReadRaiseAndUndo) {
  Change(*std::make_unique<Opened>(Path), 50'000);
  const std::string before = Opened(Path).ShowAll();
  Opened opened(Path);  // long bytes aren't among the pages that it has read
  pText.Set(opened.Things[1], "changed");
  Vfs.SetPlan([](const std::string& step, const std::string&) {
    return step == "read" ? SQLITE_IOERR_READ : SQLITE_OK;
  });
  EXPECT_THROW(pBytes.Get(opened.Things[0]), CStorageException);
  Vfs.SetPlan(nullptr);
  // SQLite has given the transaction up, so the views must have done so too.
  EXPECT_EQ(opened.ShowAll(), before);
  pText.Set(opened.Things[1], "changed again");
  opened.Storage.Commit();
  EXPECT_EQ(pText.Get(Opened(Path).Things[1]), "changed again");
}

TEST_F(CStorageFaultTest, NewFileIsWholeOrAbsent) {
  std::string failure = "none yet";
  for (int step = 1; !failure.empty(); ++step) {
    SCOPED_TRACE(step);
    std::filesystem::remove(Path);
    int count = 0;
    Vfs.SetPlan([&](const std::string& name, const std::string&) {
      return ++count == step ? GetFaultOf(name, true) : SQLITE_OK;
    });
    failure = FailureOf([&] { c4_Storage(Path, Mode::ReadWrite); });
    EXPECT_THAT(failure, AnyOf("", AllOf(StartsWith("error"), HasSubstr(Path))));
    Vfs.SetPlan(nullptr);
    for (const auto& [name, bytes] : ReadFolder()) ASSERT_THAT(name, StartsWith("test.db"));
    if (std::filesystem::exists(Path)) c4_Storage(Path, Mode::ReadWrite).GetAs(kDescription);
  }
}

}  // namespace
