#pragma once

#include <sqlite3.h>

#include <functional>
#include <string>

/// Stands between SQLite and the disk while it lives: before each step it asks what the step is to suffer.
/// The steps are "open", "read", "write", "sync", "truncate", "delete" and "deleted", the last one after
/// the file has gone.
class CFaultyVfs {
 public:
  /// Answers with SQLITE_OK or with the error that the step is to end with.
  using Plan = std::function<int(const std::string& step, const std::string& path)>;

  CFaultyVfs();
  ~CFaultyVfs();
  CFaultyVfs(const CFaultyVfs&) = delete;
  CFaultyVfs& operator=(const CFaultyVfs&) = delete;

  void SetPlan(Plan plan);
};

/// The error that a disk gives at a step; `full` where it can be "no space".
int GetFaultOf(const std::string& step, bool full);
