#include "storage/DatabaseCopy.h"

#include <sqlite3.h>

namespace {

struct Finisher {
  void operator()(sqlite3_backup* backup) const {
    // Reached only after a failure of a step, which is what gets reported.
    static_cast<void>(sqlite3_backup_finish(backup));
  }
};

}  // namespace

void CopyDatabase(sqlite3* from, sqlite3* to) {
  std::unique_ptr<sqlite3_backup, Finisher> backup(sqlite3_backup_init(to, "main", from, "main"));
  if (!backup) throw CDatabaseError(sqlite3_extended_errcode(to), to);
  const int stepped = sqlite3_backup_step(backup.get(), -1);
  const int finished = sqlite3_backup_finish(backup.release());
  if (stepped != SQLITE_DONE) throw CDatabaseError(stepped, nullptr);
  if (finished != SQLITE_OK) throw CDatabaseError(finished, to);
}
