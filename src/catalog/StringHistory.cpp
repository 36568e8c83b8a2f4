#include "catalog/StringHistory.h"

#include <algorithm>

#include "base/Exceptions.h"
#include "catalog/Catalog.h"

CStringHistory::CStringHistory(CCatalog& owner, const std::string& categoryName, int limit, bool sorted)
    : Owner(&owner), CategoryName(categoryName), Limit(limit), Sorted(sorted) {
  try {
    Category = Owner->GetCategory(CategoryName);
  } catch (const CStorageException&) {
    // The list is empty for now. The program goes on without it.
  }
}

/// -1 if there is none yet.
std::int32_t CStringHistory::GetCategory() const {
  return Category >= 0 ? Category : Owner->FindCategory(CategoryName);
}

int CStringHistory::Count() const {
  const int count = Owner->CountStrings(GetCategory());
  return Limit > 0 ? std::min(count, Limit) : count;
}

std::string CStringHistory::Get(int index) const {
  return Owner->GetString(Owner->GetStringKeyAt(GetCategory(), index, Sorted));
}

int CStringHistory::Add(const std::string& text) {
  const std::int32_t present = Owner->FindStringKey(GetCategory(), text);
  if (present >= 0) return Owner->GetStringIndex(GetCategory(), present, Sorted);
  if (Limit > 0 && Count() >= Limit) {
    Owner->ReplaceString(Owner->GetStringKeyAt(GetCategory(), Limit - 1, Sorted), text, true);
    return Limit - 1;
  }
  Category = Owner->GetCategory(CategoryName);
  Owner->AddString(Category, text);
  return Count() - 1;
}

bool CStringHistory::Promote(int index) {
  if (index < 0 || index >= Count()) return false;
  if (index == 0) return true;
  CAutoCommitPause pause(*Owner);
  // The keys keep their places; each text moves to the next key.
  std::vector<std::int32_t> keys;
  for (int i = 0; i <= index; ++i) keys.push_back(Owner->GetStringKeyAt(GetCategory(), i, Sorted));
  const std::string promoted = Owner->GetString(keys.back());
  for (std::size_t i = keys.size() - 1; i > 0; --i) {
    Owner->ReplaceString(keys[i], Owner->GetString(keys[i - 1]), true);
  }
  Owner->ReplaceString(keys.front(), promoted, true);
  pause.Commit();
  return true;
}

bool CStringHistory::Remove(const std::string& text) {
  const std::int32_t key = Owner->FindStringKey(GetCategory(), text);
  if (key < 0) return false;
  Owner->ReleaseString(key);
  return true;
}

bool CStringHistory::RemoveAt(int index) {
  const std::int32_t key = Owner->GetStringKeyAt(GetCategory(), index, Sorted);
  if (key < 0) return false;
  Owner->ReleaseString(key);
  return true;
}

bool CStringHistory::Contains(const std::string& text) const {
  return Owner->FindStringKey(GetCategory(), text) >= 0;
}
