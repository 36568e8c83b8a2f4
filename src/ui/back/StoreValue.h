#pragma once

class CFieldValue;

/// Commits a value. If it can't be stored the value is what is stored again, and the user is told
/// as soon as events are handled; nothing is raised for that. A shared value stays until this returns, but
/// whoever is told of the commit may give the caller another value meanwhile.
void StoreValue(CFieldValue& value);
