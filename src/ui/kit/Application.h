#pragma once

#include <QApplication>
#include <exception>
#include <functional>

#include "ui/kit/KeyFocus.h"

/// The application object, with the guard around every event handler. No exception may travel through
/// the frames of the event loop, so the guard stops it where the event is delivered: of a storage that
/// refused a write the text is shown and the program goes on; anything else is kept, what is running is asked
/// to stop (OnFailure), the loop ends, and its caller gets the exception.
class CApplication : public QApplication {
 public:
  CApplication(int& argumentCount, char** arguments);

  /// Handles events until EndLoop, and returns what that was given; raises what the guard has kept.
  int RunLoop();

  /// Ends RunLoop. Does nothing while it doesn't run.
  void EndLoop(int exitCode);

  /// Whether the guard has kept an exception that nobody has got yet.
  bool HasFailed() const { return Failure != nullptr; }

  /// Raises what the guard has kept, once. For waits outside RunLoop.
  void RethrowFailure();

  /// Called when the guard has kept an exception. A job that runs has itself stopped by it.
  std::function<void()> OnFailure;

  /// Null where there is none, or where it is of another kind.
  static CApplication* GetInstance();

  const CKeyFocus& GetKeyFocus() const { return KeyFocus; }

  bool notify(QObject* receiver, QEvent* event) override;

  /// Runs what may raise under the same guard. To be used where it can be, for an exception leaves the frames
  /// of Qt that it passes without taking back what they hold.
  void RunGuarded(const std::function<void()>& work);

 private:
  void Keep(std::exception_ptr failure);

  std::exception_ptr Failure;  // the first one
  bool LoopRuns = false;
  CKeyFocus KeyFocus;
};
