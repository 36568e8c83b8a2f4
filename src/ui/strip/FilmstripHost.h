#pragma once

#include <string>

#include "ui/kit/Commands.h"
#include "ui/kit/ViewTabs.h"

class CAssetRecord;

/// What the strip tells and asks the main window. The buttons of its lens send their commands to it, too.
/// Every call comes on the window thread, with the strip in order: the host may call it back.
class CFilmstripHost : public CCommandTarget {
 public:
  /// Another photo rests under the lens, or the same one has to be shown anew; null if there is none. The
  /// record belongs to the strip and lives until its next move.
  virtual void OnCurrentPhotoChanged(const CAssetRecord* record) = 0;

  virtual void OnSlideShowStateChanged() = 0;

  /// A mark of a cell was clicked; with `extendRange` Shift was held.
  virtual void ToggleInTab(const CAssetRecord& photo, ViewTabId tab, bool extendRange) = 0;

  virtual void SelectTab(ViewTabId tab) = 0;

  /// The short name of a folder.
  virtual std::string GetFolderLabel(const std::string& folder) const = 0;
};
