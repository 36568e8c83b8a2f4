#include "discovery/FolderHistory.h"

#include "base/PathIdentity.h"
#include "catalog/Catalog.h"

namespace {

constexpr const char* kCategory = "FolderFilterHistory";
constexpr int kNoLimit = 0;
constexpr bool kByAge = false;

}  // namespace

CFolderHistory::CFolderHistory(CCatalog& owner)
    : CStringHistory(owner, kCategory, kNoLimit, kByAge), Owner(owner) {}

int CFolderHistory::Find(const std::string& folder) const {
  // The paths alone first: they need no look at the disk.
  for (int i = 0; i < Count(); ++i) {
    if (Get(i) == folder) return i;
  }
  for (int i = 0; i < Count(); ++i) {
    if (IsSameFolder(Get(i), folder)) return i;
  }
  return -1;
}

int CFolderHistory::Add(const std::string& folder) {
  const std::int32_t category = Owner.GetCategory(kCategory);
  const int present = Find(folder);
  if (present < 0) {
    Owner.AddSpelling(category, folder);
    return Count() - 1;
  }
  if (IsFormerSpelling(Get(present), folder)) {
    Owner.ReplaceString(Owner.GetStringKeyAt(category, present, kByAge), folder, true);
  }
  return present;
}

bool CFolderHistory::Remove(const std::string& folder) {
  const int present = Find(folder);
  return present >= 0 && RemoveAt(present);
}

bool CFolderHistory::Contains(const std::string& folder) const { return Find(folder) >= 0; }
