#include <QPushButton>
#include <chrono>
#include <stdexcept>
#include <thread>

#include "base/Exceptions.h"
#include "storage/DataThread.h"
#include "ui/WindowTest.h"
#include "ui/kit/Job.h"
#include "ui/search/SearchProgressWindow.h"

namespace {

using std::chrono::milliseconds;

/// A job that lasts until the flag is set.
auto Until(const std::atomic<bool>& flag) {
  return [&flag] {
    while (!flag) std::this_thread::sleep_for(milliseconds(1));
  };
}

}  // namespace

TEST(Job, RunsOnAThreadOfItsOwnWithTheDataLent) {
  const std::thread::id here = std::this_thread::get_id();
  AssertDataThread();  // this thread owns it
  RunJob([&] {
    AssertDataThread();
    EXPECT_NE(std::this_thread::get_id(), here);
    EXPECT_TRUE(IsJobRunning());
    RunOnWindowThread([&] { EXPECT_EQ(std::this_thread::get_id(), here); });
    EXPECT_THROW(RunOnWindowThread([] { throw CException("no"); }), CException);
  });
  EXPECT_THROW(RunJob([] { throw CError("the disk is gone"); }), CError);
  EXPECT_THROW(RunJob([] { throw std::bad_alloc(); }), std::bad_alloc);
  EXPECT_FALSE(IsJobRunning());
  AssertDataThread();
}

TEST(Job, ManyShortOnesEndAsSoonAsTheyAreDone) {
  QElapsedTimer timer;
  timer.start();
  for (int i = 0; i < 300; ++i) RunJob([] {});
  EXPECT_LT(timer.elapsed(), 10'000) << "an end that doesn't wake the window thread would hang here";
}

TEST(Job, OnlyTheProgressWindowGetsInput) {
  CFontTable fonts(false);
  QPushButton elsewhere;
  elsewhere.show();
  CSearchProgressWindow progress(false);
  progress.show();
  auto* stop = progress.findChild<QAbstractButton*>("StopSearching");
  int clicks = 0;
  QObject::connect(&elsewhere, &QPushButton::clicked, [&] { ++clicks; });

  std::atomic<bool> done = false;
  QTimer::singleShot(0, [&] {
    elsewhere.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&progress)) << "keys go to it after a click into another window";
    QTest::mouseClick(&elsewhere, Qt::LeftButton);
    QTest::keyClick(&elsewhere, Qt::Key_Space);
    QTest::mouseClick(stop, Qt::LeftButton);
    done = true;
  });
  RunJob(Until(done));
  EXPECT_EQ(clicks, 0);
  EXPECT_TRUE(progress.IsStopRequested());

  QTest::mouseClick(&elsewhere, Qt::LeftButton);
  EXPECT_EQ(clicks, 1) << "input must come back with the end of the job";
}

TEST(Job, StopReachesItAndPutOffWorkComesAfterIt) {
  std::vector<std::string> order;
  std::atomic<bool> stopped = false;
  QTimer::singleShot(0, [&] {
    RunAfterJob([&] { order.push_back("afterwards"); });
    StopJob();
  });
  RunJob(
      [&] {
        Until(stopped)();
        order.push_back("job");
      },
      [&] { stopped = true; });
  QTest::qWait(1);
  EXPECT_EQ(order, (std::vector<std::string>{"job", "afterwards"}));
  StopJob();  // without one it does nothing
}

TEST(Job, FailureOfAHandlerStopsItAndReachesTheCaller) {
  CScriptedMessages messages;
  std::atomic<bool> stopped = false;
  bool finished = false;
  QTimer::singleShot(0, [] { throw CError("broken"); });
  const auto job = [&] {
    Until(stopped)();
    finished = true;
  };
  EXPECT_THROW(RunJob(job, [&] { stopped = true; }), CError);
  EXPECT_TRUE(finished) << "the job must have ended before its caller goes on";
}

TEST(Job, OutlastsTheEndOfTheLoopAroundIt) {
  CApplication& application = *CApplication::GetInstance();
  std::atomic<bool> done = false;
  bool finished = false;
  QTimer::singleShot(0, [&] {
    QTimer::singleShot(0, [&] {
      application.EndLoop(3);
      QTimer::singleShot(20, [&] { done = true; });
    });
    RunJob([&] {
      Until(done)();
      finished = true;
    });
  });
  EXPECT_EQ(application.RunLoop(), 3);
  EXPECT_TRUE(finished);
}
