#include <unistd.h>

#include <future>
#include <memory>

#include "app/SingleInstance.h"
#include "support/EnvironmentVariable.h"
#include "support/ScratchFolder.h"
#include "ui/WindowTest.h"

namespace {

using Claimed = CSingleInstance::Claimed;

/// Another process, as far as the lock and the socket can tell.
std::future<Claimed> StartAnother(const std::string& runtimeFolder, const std::string& catalog = {}) {
  return std::async(std::launch::async, [=] { return CSingleInstance(runtimeFolder, catalog).Claim(); });
}

/// The answer must not take long.
Claimed Wait(std::future<Claimed> start) {
  EXPECT_TRUE(QTest::qWaitFor(
      [&] { return start.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }, 4000));
  return start.get();
}

}  // namespace

TEST(SingleInstance, SecondGivesWayToOneThatAnswersAndTakesOverFromOneThatEnds) {
  const CScratchFolder scratch;
  const CEnvironmentVariable token("XDG_ACTIVATION_TOKEN", "token-17");
  auto first = std::make_unique<CSingleInstance>(scratch.GetPath(), "");
  QByteArray received;
  first->OnAnotherStart = [&](const QByteArray& given) { received = given; };
  ASSERT_EQ(first->Claim(), Claimed::ByThis);
  EXPECT_EQ(Wait(StartAnother(scratch.GetPath())), Claimed::ByOneInFront);
  EXPECT_EQ(received, "token-17");

  QElapsedTimer timer;
  timer.start();
  CSingleInstance second(scratch.GetPath(), "");  // on this thread, so the first one can't answer
  EXPECT_EQ(second.Claim(), Claimed::ByOneOutOfReach);
  EXPECT_EQ(second.GetHolder(), "process " + std::to_string(::getpid()));
  EXPECT_GE(timer.elapsed(), 2000);
  EXPECT_LT(timer.elapsed(), 6000);

  std::future<Claimed> third = StartAnother(scratch.GetPath());
  QThread::msleep(200);  // without an event loop: no answer
  first.reset();
  EXPECT_EQ(Wait(std::move(third)), Claimed::ByThis);
}

TEST(SingleInstance, OneHoldsACatalogForAllSessions) {
  const CScratchFolder scratch;
  const std::string catalog = scratch.Write("data/my.db", "");
  const std::string link = scratch.File("elsewhere/link.db");
  std::filesystem::create_symlink(catalog, link);
  const std::string away =
      scratch.File(std::string(120, 'r').append("/x"));  // longer than a socket's address
  CSingleInstance first(std::filesystem::path(away).parent_path(), catalog);
  int starts = 0;
  first.OnAnotherStart = [&](const QByteArray&) { ++starts; };
  ASSERT_EQ(first.Claim(), Claimed::ByThis);
  EXPECT_EQ(Wait(StartAnother(scratch.GetPath(), catalog)), Claimed::ByOneInFront);
  EXPECT_EQ(Wait(StartAnother(scratch.GetPath(), link)), Claimed::ByOneInFront);
  EXPECT_EQ(starts, 2);
  EXPECT_EQ(Wait(StartAnother(scratch.GetPath(), scratch.File("data/other.db"))), Claimed::ByThis);
  // As a session on another machine looks that shares the disk.
  std::ofstream(catalog + ".lock") << "4711\nnas\n" << scratch.File("vellumar.socket") << "\n";
  CSingleInstance next(scratch.GetPath(), catalog);
  EXPECT_EQ(next.Claim(), Claimed::ByOneOutOfReach);
  EXPECT_EQ(next.GetHolder(), "process 4711 on nas");
}

TEST(SingleInstance, AFolderThatTakesNoLockDoesNotKeepTheProgramFromStarting) {
  const CScratchFolder scratch;
  const std::string precious = scratch.Write("precious", "kept");
  std::filesystem::create_symlink(precious, scratch.File("my.db.lock"));
  CSingleInstance instance("/nowhere/at/all", scratch.File("my.db"));
  EXPECT_EQ(instance.Claim(), Claimed::ByThis);
  EXPECT_EQ(ReadBytes(precious), "kept");
}
