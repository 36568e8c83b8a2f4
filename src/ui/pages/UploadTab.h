#pragma once

#include "ui/pages/PhotoTab.h"

/// The page of the photos to print, or to put into an online album.
class CUploadTab : public CPhotoTab {
 public:
  CUploadTab(CCatalog& catalog, CViewTabBar& bar, CPhotoTabHost& host, QWidget* parent);

  void FillButtonRow(CToolbar& row) override;
  void OnCommand(CommandId id) override;

  /// Uploads all photos of the page to the service and opens its page in the user's browser, to order prints
  /// or to see the album. Each photo leaves the page as soon as it is uploaded. Returns when all that is
  /// over; failures are told.
  void RunUpload(bool orderPrints);

 protected:
  bool IsAlwaysShown() const override { return true; }

 private:
  class CQueue;
};
