#include "storage/DataThread.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace {

/// The default id means no thread.
std::atomic<std::thread::id> dataOwner;

}  // namespace

CDataThreadScope::CDataThreadScope() : Lender(dataOwner.exchange(std::this_thread::get_id())) {}

CDataThreadScope::~CDataThreadScope() { dataOwner.store(Lender); }

void AssertDataThread() {
#ifndef NDEBUG
  std::thread::id owner = dataOwner.load(std::memory_order_relaxed);
  if (owner == std::this_thread::get_id()) return;
  if (owner == std::thread::id() && dataOwner.compare_exchange_strong(owner, std::this_thread::get_id())) {
    return;
  }
  std::fputs("A view was used by a thread that doesn't own the data.\n", stderr);
  std::abort();
#endif
}
