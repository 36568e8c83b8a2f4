#pragma once

#include <QByteArray>
#include <QLocalServer>
#include <functional>
#include <string>
#include <vector>

#include "platform/Descriptor.h"
#include "platform/FileLock.h"

/// Lets one process at a time run in a user's session, and one on a catalog, from wherever it was started.
/// The first one holds locks that the kernel takes back when it ends, however it ends; a later one asks it
/// through a local socket to come to the front. Window thread.
class CSingleInstance {
 public:
  enum class Claimed {
    ByThis,           // the process is the first one, which it then stays
    ByOneInFront,     // another one runs and has come to the front
    ByOneOutOfReach,  // another one runs and hasn't answered for three seconds
  };

  /// One lock and the socket stand in `runtimeFolder`, which is private to the user, the others beside the
  /// catalog and, where that is a link, beside the file that it leads to. Either may be empty for none.
  CSingleInstance(const std::string& runtimeFolder, const std::string& catalogPath);

  /// A lock that can't be had, as on a disk that is full or can't be written, counts as free: nothing can be
  /// written to a catalog there.
  Claimed Claim();

  /// The process that is out of reach, for the eye: "process 4711 on host".
  const std::string& GetHolder() const { return Holder; }

  /// Called in the first process when another one has been started, with what the desktop gave that one
  /// for bringing a window to the front, or an empty text.
  std::function<void(const QByteArray& activationToken)> OnAnotherStart;

 private:
  struct NamedLock {
    std::string Path;
    platform::FileLock Lock;
  };

  bool TryLocks();
  void LookAtHolder(const NamedLock& lock);
  void Listen();
  void Answer();
  bool AskFirstToShow(int patience) const;

  const std::string SocketPath;  // of this process, if it is the first; empty for none
  std::vector<NamedLock> Locks;
  std::string Holder;        // of the first lock that another process holds
  std::string HolderSocket;  // empty if it is out of reach
  platform::ShortPath ListenPath;
  QLocalServer Server;
};
