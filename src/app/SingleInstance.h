#pragma once

#include <QByteArray>
#include <QLocalServer>
#include <functional>
#include <string>

#include "platform/FileLock.h"

/// Lets one process at a time run for a user. The first one holds a lock that the kernel takes back when
/// it ends, however it ends; a later one asks it through a local socket to come to the front. Window
/// thread.
class CSingleInstance {
 public:
  /// Lock and socket stand in `folder`, which is private to the user. Without one, an empty `folder`, every
  /// process is the first.
  explicit CSingleInstance(const std::string& folder);

  /// True if this process is the first one, which it then stays. False if another one runs; that one has
  /// been asked to come to the front, and has answered or let three seconds pass. Where no lock can be
  /// had at all the answer is true, for the catalog has a lock of its own.
  bool Claim();

  /// Called in the first process when another one has been started, with what the desktop gave that one
  /// for bringing a window to the front, or an empty text.
  std::function<void(const QByteArray& activationToken)> OnAnotherStart;

 private:
  enum class Ownership { Mine, Anothers };

  Ownership TryLock();
  void Listen();
  void Answer();
  bool AskFirstToShow(int patience) const;

  std::string LockPath;
  QString SocketPath;
  platform::FileLock Lock;
  QLocalServer Server;
};
