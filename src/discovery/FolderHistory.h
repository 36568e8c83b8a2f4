#pragma once

#include "catalog/StringHistory.h"

/// The folders that the user added, the latest first, without limit. Unlike other lists it doesn't compare
/// texts but folders: paths that mean one folder (IsSameFolder) are one entry. Paths have no closing "/".
class CFolderHistory : public CStringHistory {
 public:
  explicit CFolderHistory(CCatalog& owner);

  /// A folder that is on the list keeps its path, unless that was a former spelling.
  int Add(const std::string& folder) override;
  bool Remove(const std::string& folder) override;
  bool Contains(const std::string& folder) const override;

 private:
  int Find(const std::string& folder) const;

  CCatalog& Owner;
};
