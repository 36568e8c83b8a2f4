#pragma once

#include <string>
#include <string_view>

#include "sets/PhotoFilter.h"

/// Passes the photos of a folder and of those below it. Upper and lower case make no difference, unless the
/// disk holds folders of both spellings.
class CFolderFilter : public CPhotoFilter {
 public:
  explicit CFolderFilter(const std::string& folder);

  bool Matches(const CAssetRecord& record) const override;
  const std::string& GetFolder() const { return Folder; }  // with its closing "/"

 private:
  bool IsBelow(std::string_view folder) const;

  const std::string Folder;
  // The last folder asked about and its answer: photos of one folder mostly come one after the other.
  mutable std::string LastFolder;
  mutable bool LastAnswer = false;
};
