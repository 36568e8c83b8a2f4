#pragma once

#include "ui/pages/PhotoTab.h"

/// The page of the photos to mail.
class CEmailTab : public CPhotoTab {
 public:
  CEmailTab(CCatalog& catalog, CViewTabBar& bar, CPhotoTabHost& host, QWidget* parent);

  void FillButtonRow(CToolbar& row) override;
  void OnCommand(CommandId id) override;

  /// Opens a mail with all photos of the page, which stay there. Raises CStorageException.
  void SendPhotos();

 protected:
  bool IsAlwaysShown() const override { return true; }
};
