#include "ui/kit/Application.h"

#include <utility>

#include "base/Exceptions.h"
#include "base/Messages.h"
#include "ui/kit/Look.h"

CApplication::CApplication(int& argumentCount, char** arguments) : QApplication(argumentCount, arguments) {
  // The main window ends the loop when it is closed; the progress window is closed before, and more than
  // once.
  setQuitOnLastWindowClosed(false);
  ApplyLook();
}

CApplication* CApplication::GetInstance() { return dynamic_cast<CApplication*>(instance()); }

bool CApplication::notify(QObject* receiver, QEvent* event) {
  bool handled = false;
  RunGuarded([&] { handled = QApplication::notify(receiver, event); });
  return handled;
}

void CApplication::RunGuarded(const std::function<void()>& work) {
  try {
    try {
      work();
    } catch (const CStorageException& exception) {
      ShowMessage(exception.GetMessage());
    }
  } catch (...) {
    Keep(std::current_exception());
  }
}

int CApplication::RunLoop() {
  LoopRuns = true;
  const int exitCode = exec();
  LoopRuns = false;
  RethrowFailure();
  return exitCode;
}

void CApplication::EndLoop(int exitCode) {
  // An exit without a loop would be remembered, and the next message box would close as soon as it opens.
  if (LoopRuns) exit(exitCode);
}

void CApplication::RethrowFailure() {
  if (Failure) std::rethrow_exception(std::exchange(Failure, nullptr));
}

void CApplication::Keep(std::exception_ptr failure) {
  if (!Failure) Failure = std::move(failure);
  if (OnFailure) OnFailure();
  EndLoop(0);
}
