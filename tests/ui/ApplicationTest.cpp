#include <stdexcept>

#include "storage/StorageException.h"
#include "ui/Application.h"
#include "ui/WindowTest.h"

namespace {

/// Runs an event loop whose first handler does `work`. Returns its exit code; raises what the guard kept.
int RunLoopWith(const std::function<void()>& work) {
  QTimer::singleShot(0, [&] {
    QTimer::singleShot(20, [] { QCoreApplication::exit(7); });
    work();
  });
  const int code = QApplication::exec();
  CApplication::GetInstance()->RethrowFailure();
  return code;
}

}  // namespace

TEST(Application, RefusedWriteIsToldAndTheProgramGoesOn) {
  CNotedMessages messages;
  EXPECT_EQ(RunLoopWith([] { throw CStorageException("/data/vellumar.db: no space left"); }), 7);
  ASSERT_EQ(messages.Shown.size(), 1U);
  EXPECT_EQ(messages.Shown[0].Text, "/data/vellumar.db: no space left");
}

TEST(Application, OtherExceptionsEndTheLoopAndReachItsCaller) {
  CNotedMessages messages;
  try {
    RunLoopWith([] { throw CError("broken"); });
    FAIL();
  } catch (const CThrowable& failure) {
    EXPECT_EQ(failure.GetMessage(), "broken");
  }
  EXPECT_THROW(RunLoopWith([] { throw std::bad_alloc(); }), std::bad_alloc);
  EXPECT_TRUE(messages.Shown.empty());
  EXPECT_EQ(RunLoopWith([] {}), 7) << "a failure is raised once";
}
