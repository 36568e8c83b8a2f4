#include "discovery/SearchProgress.h"

#include <utility>

#include "base/Messages.h"
#include "storage/StorageException.h"

void CSearchProgress::TellRefusal(const CStorageException& refusal) {
  if (std::exchange(RefusalTold, true)) return;
  ShowMessage(refusal.GetMessage(), false, MessageParent::ProgressWindow);
}
