#pragma once

#include <QApplication>
#include <exception>

/// The application object, with the guard around every event handler. No exception may travel through
/// the frames of the event loop, so the guard stops it where the event is delivered: of a storage that
/// refused a write the text is shown and the program goes on; anything else is kept, the loop ends, and
/// RethrowFailure raises it again in the caller of the loop.
class CApplication : public QApplication {
 public:
  CApplication(int& argumentCount, char** arguments);

  /// Raises what the guard has kept, once. To be called when a loop has ended.
  void RethrowFailure();

  /// Null where there is none, or where it is of another kind.
  static CApplication* GetInstance();

  bool notify(QObject* receiver, QEvent* event) override;

 private:
  void Keep(std::exception_ptr failure);

  std::exception_ptr Failure;  // the first one
};
