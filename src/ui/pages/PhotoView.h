#pragma once

#include <QImage>
#include <QWidget>
#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "catalog/AssetRecord.h"
#include "imaging/PicturesAhead.h"
#include "ui/kit/AssistiveTools.h"
#include "ui/kit/FileDrag.h"
#include "ui/marks/PhotoMarks.h"

/// The page of the current photo: the photo as large as the page lets it be, with the marks that the user
/// gave it; the whole screen in full-screen mode. It holds the photo's bitmap for the whole window. A photo
/// is decoded when it is set, or when the page first shows, unless that was done ahead; a paint only copies.
/// To assistive tools it is a picture with the photo's title and caption.
class CPhotoView : public QWidget, public CFaceMaker {
 public:
  explicit CPhotoView(QWidget* parent = nullptr);
  ~CPhotoView() override;

  /// Called for a double click on the page.
  std::function<void()> OnDoubleClick;

  /// The files of the photos that are likely to be set next, the likeliest first. They are decoded ahead
  /// while the page shows, and given up when others are named or a job begins.
  void SetNeighbours(std::vector<std::string> paths);
  void GiveUpNeighbours() { SetNeighbours({}); }

  /// Whether the photo would show without being decoded first.
  bool IsReady(const CAssetRecord& photo) const;

  /// Shows that photo; none shows a text instead.
  void SetPhoto(const std::optional<CAssetRecord>& photo);
  const std::optional<CAssetRecord>& GetPhoto() const { return Photo; }

  /// Decodes the photo again if the bitmap held is too small for the page and the file has more, or if
  /// there is none; `force` does so in any case, as after a change of the file.
  void Reload(bool force);

  /// The photo as it is held; null if there is none, it can't be decoded or the page hasn't shown it yet.
  const CImage* GetImage() const { return Image.get(); }

  /// Hands the image over to be changed, loaded now if the page hasn't shown it yet; null as GetImage. What
  /// the page paints stays.
  std::unique_ptr<CImage> TakeImage();
  /// Shows an image of the photo set, which TakeImage has given.
  void SetImage(std::unique_ptr<CImage> image);

  /// The photo's file has another name now.
  void OnPhotoRenamed();

  /// Takes over the photo's marks.
  void UpdateFlags();
  /// The photo's caption or rating has changed, of which tools are told.
  void TellDescription();

  struct Look {
    bool Margin = true;  // without one the photo goes to the page's edges and throws no shadow
    bool CentreVertically = false;
    friend bool operator==(const Look&, const Look&) = default;
  };
  void SetLook(const Look& look);

  /// What stands there instead of a picture; empty if there is one.
  QString GetMissingText() const;
  QAccessibleInterface* MakeFace() override;

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void changeEvent(QEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;

 private:
  QSize GetDeviceSize() const;
  int GetDeviceMargin() const;
  void Fit();
  void LookAhead();

  std::optional<CAssetRecord> Photo;
  std::string Path;
  std::unique_ptr<CImage> Image;
  bool IsTooLarge = false;  // which is why there is no image
  QImage Picture;           // the image, fitted to the page as it is now
  QRect Place;              // of the picture, in device pixels
  Look TheLook;
  std::array<bool, std::size(kPhotoMarks)> ShownFlags{};
  std::vector<std::string> Neighbours;
  CPicturesAhead Ahead;
  CFileDrag Drag{*this};
};
