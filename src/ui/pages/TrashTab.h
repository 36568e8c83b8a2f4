#pragma once

#include "ui/pages/PhotoTab.h"

/// The page of the deleted photos. Their files are where they were, until the trash is emptied.
class CTrashTab : public CPhotoTab {
 public:
  CTrashTab(CCatalog& catalog, CViewTabBar& bar, CPhotoTabHost& host, QWidget* parent);

  void FillButtonRow(CToolbar& row) override;
  void OnCommand(CommandId id) override;

  /// Takes the selected photo out of the trash.
  void Restore();
  /// Moves the files of all photos here to the desktop's trash, and forgets the photos.
  void EmptyTrash();

 protected:
  // A deleted photo isn't in the strip.
  bool NavigateTo(int index) override {
    SetSelected(index);
    return false;
  }
  void OpenPhoto() override {}
  // What has come back from the trash, or left the catalog.
  void OnPhotosChanged() override { GetHost().RebuildStrip(); }
};
