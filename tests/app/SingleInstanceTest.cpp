#include <unistd.h>

#include <QLocalSocket>
#include <future>
#include <memory>

#include "app/SingleInstance.h"
#include "support/ScratchFolder.h"
#include "ui/WindowTest.h"

namespace {

using Claimed = CSingleInstance::Claimed;

/// Another process, as far as the lock and the socket can tell.
std::future<Claimed> StartAnother(const std::string& runtimeFolder, const std::string& catalog = {},
                                  const StartRequest& request = {}) {
  return std::async(std::launch::async,
                    [=] { return CSingleInstance(runtimeFolder, catalog).Claim(request); });
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
  auto first = std::make_unique<CSingleInstance>(scratch.GetPath(), "");
  StartRequest received;
  first->OnAnotherStart = [&](const StartRequest& given) { received = given; };
  ASSERT_EQ(first->Claim({}), Claimed::ByThis);
  const StartRequest request{"token-17", std::vector<std::string>(3000, "/" + std::string(1000, 'x'))};
  EXPECT_EQ(Wait(StartAnother(scratch.GetPath(), {}, request)), Claimed::ByOneInFront);
  EXPECT_EQ(received.ActivationToken, "token-17");
  EXPECT_EQ(received.Paths, request.Paths);

  QElapsedTimer timer;
  timer.start();
  CSingleInstance second(scratch.GetPath(), "");  // on this thread, so the first one can't answer
  EXPECT_EQ(second.Claim({}), Claimed::ByOneOutOfReach);
  EXPECT_EQ(second.GetHolder(), "process " + std::to_string(::getpid()));
  EXPECT_GE(timer.elapsed(), 2000);
  EXPECT_LT(timer.elapsed(), 6000);

  std::future<Claimed> third = StartAnother(scratch.GetPath());
  QThread::msleep(200);  // without an event loop: no answer
  first.reset();
  EXPECT_EQ(Wait(std::move(third)), Claimed::ByThis);
}

TEST(SingleInstance, AStrangerThatStallsOrTalksNonsenseIsLeftAlone) {
  const CScratchFolder scratch;
  CSingleInstance first(scratch.GetPath(), "");
  int starts = 0;
  first.OnAnotherStart = [&](const StartRequest&) { ++starts; };
  ASSERT_EQ(first.Claim({}), Claimed::ByThis);
  QLocalSocket stalling, talking;
  for (QLocalSocket* socket : {&stalling, &talking}) {
    socket->connectToServer(QString::fromStdString(scratch.File("vellumar.socket")));
    ASSERT_TRUE(socket->waitForConnected());
  }
  stalling.write("\0", 1);
  talking.write("GET / HTTP/1.1\r\n");
  EXPECT_TRUE(QTest::qWaitFor([&] { return talking.state() == QLocalSocket::UnconnectedState; }));
  EXPECT_EQ(Wait(StartAnother(scratch.GetPath())), Claimed::ByOneInFront);
  EXPECT_EQ(starts, 1);
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
  first.OnAnotherStart = [&](const StartRequest&) { ++starts; };
  ASSERT_EQ(first.Claim({}), Claimed::ByThis);
  EXPECT_EQ(Wait(StartAnother(scratch.GetPath(), catalog)), Claimed::ByOneInFront);
  EXPECT_EQ(Wait(StartAnother(scratch.GetPath(), link)), Claimed::ByOneInFront);
  EXPECT_EQ(starts, 2);
  EXPECT_EQ(Wait(StartAnother(scratch.GetPath(), scratch.File("data/other.db"))), Claimed::ByThis);
  // As a session on another machine looks that shares the disk.
  std::ofstream(catalog + ".lock") << "4711\nnas\n" << scratch.File("vellumar.socket") << "\n";
  CSingleInstance next(scratch.GetPath(), catalog);
  EXPECT_EQ(next.Claim({}), Claimed::ByOneOutOfReach);
  EXPECT_EQ(next.GetHolder(), "process 4711 on nas");
}

TEST(SingleInstance, AFolderThatTakesNoLockDoesNotKeepTheProgramFromStarting) {
  const CScratchFolder scratch;
  const std::string precious = scratch.Write("precious", "kept");
  std::filesystem::create_symlink(precious, scratch.File("my.db.lock"));
  CSingleInstance instance("/nowhere/at/all", scratch.File("my.db"));
  EXPECT_EQ(instance.Claim({}), Claimed::ByThis);
  EXPECT_EQ(ReadBytes(precious), "kept");
}
