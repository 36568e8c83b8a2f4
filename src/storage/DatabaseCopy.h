#pragma once

#include "storage/Connection.h"

/// Replaces everything in `to` by what `from` holds, durably. CDatabaseError; `to` is then as it was.
void CopyDatabase(sqlite3* from, sqlite3* to);
