#pragma once

#include "catalog/StringHistory.h"

/// The folders that the user added, the latest first, without limit. Unlike other lists it holds folders
/// apart whose paths differ in the case of their letters alone, where the disk does; only if one of the
/// spellings stands on the disk they are one entry. Paths have no closing "/".
class CFolderHistory : public CStringHistory {
 public:
  explicit CFolderHistory(CCatalog& owner);

  int Add(const std::string& folder) override;
  bool Remove(const std::string& folder) override;
  bool Contains(const std::string& folder) const override;

 private:
  int Find(const std::string& folder) const;

  CCatalog& Owner;
};
