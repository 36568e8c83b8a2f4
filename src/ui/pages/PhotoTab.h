#pragma once

#include <QTimer>
#include <QWidget>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "catalog/AssetRecord.h"
#include "resources/PictureIds.h"
#include "resources/StringIds.h"
#include "sets/ListPhotoSet.h"
#include "sets/QuerySet.h"
#include "ui/kit/Commands.h"
#include "ui/kit/FileDrag.h"
#include "ui/kit/PaintedItems.h"
#include "ui/kit/SharpPictures.h"
#include "ui/pages/GridPicture.h"
#include "ui/pages/PhotoGrid.h"

class CCatalog;
class CDevicePainter;
class CToolbar;
class CViewTabBar;

/// What a page of photos asks of the main window. Every call comes on the window thread, with the page in
/// order: the host may call it back.
class CPhotoTabHost {
 public:
  virtual ~CPhotoTabHost() = default;

  /// The marks of these photos have changed.
  virtual void OnMarksChanged(const CAssetIdSet& photos) = 0;
  /// Brings the photo under the lens, as the guest of the strip's set if its filters hide it.
  virtual void ShowInStrip(std::int32_t assetId) = 0;
  /// Photos have come back from the trash, or left the catalog.
  virtual void RebuildStrip() = 0;
  /// The data is about to be lent to a job.
  virtual void PrepareForJob() = 0;
  /// While it is on, the window takes no input and no command, and closes only afterwards.
  virtual void SetInputBlocked(bool on) = 0;
  /// Whether the window is about to close.
  virtual bool IsClosing() const = 0;
};

/// What makes one page of photos differ from the others.
struct PhotoTabForm {
  const char* WindowName;
  ViewTabId Tab;
  int Order;  // of the tab in the bar
  PictureId Icon;
  int IconFrames;
  StringId Caption;
  PhotoFlag Flag;  // a photo is on the page because it holds this
  SetKind Kind;
  StringId Help1{};  // shown while the page is empty; StringId{} for none
  StringId Help2{};
};

/// A page that shows all photos of one flag as a grid of thumbnails, sized so that all of them are on view:
/// a work list that lasts, since the flag is in the catalog. Base of the pages behind the current photo's.
/// Only these pages change the flags. Each change is one transaction; an operation for several photos takes a
/// time that grows with the number of photos. Raises CStorageException, with the page as the catalog is then.
class CPhotoTab : public QWidget, public CPaintedItems {
 public:
  CPhotoTab(const PhotoTabForm& form, CCatalog& catalog, CViewTabBar& bar, CPhotoTabHost& host,
            QWidget* parent);
  ~CPhotoTab() override;

  /// Puts the page's buttons into an empty row.
  virtual void FillButtonRow(CToolbar& row) = 0;
  /// A command of the page's buttons; others are ignored.
  virtual void OnCommand(CommandId id) = 0;

  /// Reads from the catalog which photos are on the page.
  void LoadSet();
  ViewTabId GetTab() const { return Form.Tab; }
  PhotoFlag GetFlag() const { return Form.Flag; }
  int GetCount() const { return Photos.GetCount(); }
  std::vector<std::string> GetPaths() const { return Photos.GetPaths(); }

  /// Takes the page's flag away from the photo, and the photo off the page.
  void RemovePhoto(const CAssetRecord& photo) { SetFlags({{photo.GetAssetID()}}, false); }
  /// The flags of these photos may have changed: shows those that belong here, new ones in the order given.
  void FollowFlags(std::span<const std::int32_t> assetIds);

  /// -1 for none.
  int GetSelected() const { return Selected; }
  void SetSelected(int index);
  /// Selects the photo, or nothing if it isn't on the page.
  void SelectPhoto(std::int32_t assetId);
  /// As a double click on the selected photo does.
  void OpenSelected();
  /// As a click on it does. False if the strip shows it already, or can't.
  bool ShowSelected();

  /// The photo's thumbnail or path is another now.
  void RefreshThumbnail(std::int32_t assetId);

  /// Gives the bar the page's tab, or takes it away.
  void UpdatePresence();

  const CSharpPictures& GetSharpPictures() const { return SharpPictures; }

  // Its photos, for assistive tools.
  int CountItems() const override { return GetCount(); }
  int GetItemKey(int index) const override { return Photos.GetAssetId(index); }
  int FindItem(int key) const override { return Photos.IndexOf(key); }
  PaintedItem DescribeItem(int index) const override;
  QRect PlaceItem(int index) const override { return Grid.GetCell(index); }
  int GetCurrentItem() const override { return Selected; }
  void ActivateItem(int index) override { NavigateTo(index); }

 protected:
  /// Whether the bar has the tab also while the page is empty.
  virtual bool IsAlwaysShown() const { return GetCount() > 0; }
  /// Selects the photo and brings it under the lens. False on a page whose photos the strip doesn't show.
  virtual bool NavigateTo(int index);
  virtual void OpenPhoto();
  /// After a change of this page's photos by its commands, also one that failed; the page shows it already.
  virtual void OnPhotosChanged() {}

  CCatalog& GetCatalog() const { return Catalog; }
  CPhotoTabHost& GetHost() const { return Host; }
  const CListPhotoSet& GetPhotos() const { return Photos; }
  std::vector<std::int32_t> ListPhotos() const;
  /// Gives photos the page's flag, and shows them behind the others, or takes it away.
  void SetFlags(std::span<const std::int32_t> assetIds, bool on);
  /// Makes a change to photos of the page and then shows what the catalog says, also if the change failed.
  void ChangePhotos(std::span<const std::int32_t> assetIds, const std::function<void()>& change);

  // Commands of the lists of photos to send.
  void ClearOne();
  void ClearAll();
  /// Adds the newest roll; the next time that before it.
  void AddRecent();

  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;

 private:
  bool BelongsHere(const CAssetRecord& photo) const;
  void ShowMembers(int firstChanged, std::int32_t selectedId);
  void LayOut(int firstChanged);
  void PaintSomeCells();
  /// Lets sharp pictures be made of the cells for which thumbnails aren't enough on this screen.
  void SharpenCells();
  void UpdateCaption();
  void PaintHelp(CDevicePainter& painter) const;
  void TellAccessibleName();

  const PhotoTabForm Form;
  CCatalog& Catalog;
  CViewTabBar& Bar;
  CPhotoTabHost& Host;
  CListPhotoSet Photos{true};
  PhotoGrid Grid;
  CGridPicture Picture{Photos};
  QTimer PaintTimer;  // runs while cells wait to be painted
  CSharpPictures SharpPictures;
  CFileDrag Drag{*this};  // of the photo that was pressed
  std::int32_t PressedId = -1;
  int Selected = -1;
  std::int32_t CurrentPhoto = -1;  // that the page was told of last
  std::int32_t RecentRoll = -1;    // what AddRecent adds next; -1 for the newest roll
};
