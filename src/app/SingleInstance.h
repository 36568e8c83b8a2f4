#pragma once

#include <QLocalServer>
#include <functional>
#include <string>
#include <vector>

#include "base/StartRequest.h"
#include "platform/Descriptor.h"
#include "platform/FileLock.h"

/// Allows one process per user session, and one per catalog. The first process holds kernel locks, which are
/// released however it ends; a later one asks it through a local socket to come to the front. Window thread.
class CSingleInstance {
 public:
  enum class Claimed {
    ByThis,           // this process is the first one and stays it
    ByOneInFront,     // another one runs and has come to the front
    ByOneOutOfReach,  // another one runs and hasn't answered for three seconds
  };

  /// One lock and the socket are in `runtimeFolder`, which is private to the user; the others are beside the
  /// catalog and, if that is a link, beside its target. Either argument may be empty for none.
  CSingleInstance(const std::string& runtimeFolder, const std::string& catalogPath);

  /// Another process that runs is handed the request. A lock file that can't be made, because the disk is
  /// full or read-only, counts as free: the catalog there can't be written either.
  Claimed Claim(const StartRequest& request);

  /// Text that names the process that didn't answer: "process 4711 on host".
  const std::string& GetHolder() const { return Holder; }

  /// Called in the first process when another one was started, with what that one hands over.
  std::function<void(const StartRequest& request)> OnAnotherStart;

 private:
  struct NamedLock {
    std::string Path;
    platform::FileLock Lock;
  };

  bool TryLocks();
  void LookAtHolder(const NamedLock& lock);
  void Listen();
  void Answer();
  bool HandOver(const std::string& request, int patience) const;

  const std::string SocketPath;  // of this process, if it is the first; empty for none
  std::vector<NamedLock> Locks;
  std::string Holder;        // of the first lock that another process holds
  std::string HolderSocket;  // empty if it is out of reach
  platform::ShortPath ListenPath;
  QLocalServer Server;
};
