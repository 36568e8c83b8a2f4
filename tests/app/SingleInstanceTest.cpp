#include <atomic>
#include <memory>
#include <thread>

#include "app/SingleInstance.h"
#include "support/EnvironmentVariable.h"
#include "support/ScratchFolder.h"
#include "ui/WindowTest.h"

namespace {

/// Another process, as far as the lock and the socket can tell.
class CAnotherStart {
 public:
  explicit CAnotherStart(const std::string& folder) {
    Thread = std::thread([this, folder] {
      CSingleInstance instance(folder);
      IsFirst = instance.Claim();
      Done = true;
    });
  }
  ~CAnotherStart() { Thread.join(); }

  bool IsDone() const { return Done; }
  bool WasFirst() const { return IsFirst; }

 private:
  std::atomic<bool> Done = false;
  std::atomic<bool> IsFirst = false;
  std::thread Thread;
};

}  // namespace

TEST(SingleInstance, SecondHandsOverItsTokenAndGivesWay) {
  const CScratchFolder scratch;
  const CEnvironmentVariable token("XDG_ACTIVATION_TOKEN", "token-17");
  CSingleInstance first(scratch.GetPath());
  QByteArray received;
  int starts = 0;
  first.OnAnotherStart = [&](const QByteArray& given) {
    received = given;
    ++starts;
  };
  ASSERT_TRUE(first.Claim());
  for (int i = 1; i <= 2; ++i) {
    const CAnotherStart second(scratch.GetPath());
    EXPECT_TRUE(QTest::qWaitFor([&] { return second.IsDone(); }, 2000)) << "an answer must not take long";
    EXPECT_FALSE(second.WasFirst());
    EXPECT_EQ(starts, i);
  }
  EXPECT_EQ(received, "token-17");
}

TEST(SingleInstance, FirstThatDoesNotAnswerIsNotWaitedForLong) {
  const CScratchFolder scratch;
  CSingleInstance first(scratch.GetPath());
  ASSERT_TRUE(first.Claim());
  QElapsedTimer timer;
  timer.start();
  CSingleInstance second(scratch.GetPath());  // on this thread, so the first one can't answer
  EXPECT_FALSE(second.Claim());
  EXPECT_GE(timer.elapsed(), 2000);
  EXPECT_LT(timer.elapsed(), 6000);
}

TEST(SingleInstance, TakesOverFromOneThatEndsMeanwhile) {
  const CScratchFolder scratch;
  auto first = std::make_unique<CSingleInstance>(scratch.GetPath());
  ASSERT_TRUE(first->Claim());
  const CAnotherStart second(scratch.GetPath());
  QThread::msleep(200);  // without an event loop: no answer
  first.reset();
  EXPECT_TRUE(QTest::qWaitFor([&] { return second.IsDone(); }, 4000));
  EXPECT_TRUE(second.WasFirst());
}

TEST(SingleInstance, WhatAKilledOneLeavesDoesNotBlock) {
  const CScratchFolder scratch;
  scratch.Write("vellumar.lock", "");
  scratch.Write("vellumar.socket", "");
  CSingleInstance next(scratch.GetPath());
  EXPECT_TRUE(next.Claim());
}

TEST(SingleInstance, AFolderThatTakesNoLockDoesNotKeepTheProgramFromStarting) {
  CSingleInstance instance("/nowhere/at/all");
  EXPECT_TRUE(instance.Claim());
}
