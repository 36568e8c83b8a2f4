#pragma once

#include <string>

class CAssetRecord;

/// Passes the photos of a folder and of those below it. Upper and lower case make no difference, unless the
/// disk holds folders of both spellings.
class CFolderFilter {
 public:
  explicit CFolderFilter(const std::string& folder);

  bool Matches(const CAssetRecord& record) const;
  const std::string& GetFolder() const { return Folder; }  // with its closing "/"

 private:
  std::string Folder;
};
