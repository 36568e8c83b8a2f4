#pragma once

#include "ui/pages/PhotoTab.h"

/// The page of the photos to print, or to put into an online album.
class CUploadTab : public CPhotoTab {
 public:
  CUploadTab(CCatalog& catalog, CViewTabBar& bar, CPhotoTabHost& host, QWidget* parent);

  void FillButtonRow(CToolbar& row) override;
  void OnCommand(CommandId id) override;

 protected:
  bool IsAlwaysShown() const override { return true; }
};
