#pragma once

#include "resources/StringIds.h"

/// The text of that id in UTF-8, placeholders and line feeds as they stand; null for an id that isn't in
/// the table.
const char* FindString(StringId id);
