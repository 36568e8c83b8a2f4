#include <stdexcept>

#include "base/Exceptions.h"
#include "ui/WindowTest.h"
#include "ui/kit/Application.h"

namespace {

/// Runs the event loop with a handler that does `work`. Returns its exit code; raises what the guard kept.
int RunLoopWith(const std::function<void()>& work) {
  CApplication& application = *CApplication::GetInstance();
  QTimer end;
  QObject::connect(&end, &QTimer::timeout, [&] { application.EndLoop(7); });
  end.start(20);
  QTimer::singleShot(0, &end, work);
  return application.RunLoop();
}

}  // namespace

TEST(Application, RefusedWriteIsToldAndOtherExceptionsEndTheLoop) {
  CScriptedMessages messages;
  EXPECT_EQ(RunLoopWith([] { throw CStorageException("/data/vellumar.db: no space left"); }), 7);
  ASSERT_EQ(messages.Texts.size(), 1U);
  EXPECT_EQ(messages.Texts[0], "/data/vellumar.db: no space left");
  EXPECT_THROW(RunLoopWith([] { throw CError("broken"); }), CError);
  EXPECT_THROW(RunLoopWith([] { throw std::bad_alloc(); }), std::bad_alloc);
  EXPECT_EQ(messages.Texts.size(), 1U);
  EXPECT_EQ(RunLoopWith([] {}), 7) << "a failure is raised once";
}

TEST(Application, EndsNoLoopThatDoesNotRun) {
  CApplication::GetInstance()->EndLoop(1);
  QEventLoop loop;
  QTimer::singleShot(5, &loop, [&] { loop.exit(1); });
  EXPECT_EQ(loop.exec(), 1) << "an exit that is remembered closes every later message box";
}
