#pragma once

#include <thread>

/// The catalog and the caches belong to one thread at a time. This object lends them to the thread that
/// constructs it, until it is destroyed; the lender must wait meanwhile. In debug builds every call into a
/// view from another thread stops the program.
class CDataThreadScope {
 public:
  CDataThreadScope();
  ~CDataThreadScope();
  CDataThreadScope(const CDataThreadScope&) = delete;
  CDataThreadScope& operator=(const CDataThreadScope&) = delete;

 private:
  std::thread::id Lender;
};

/// Stops the program if the caller isn't the thread that owns the data. The first thread that asks owns
/// it. Does nothing in release builds.
void AssertDataThread();
