#pragma once

#include <QScrollBar>
#include <QTimer>
#include <QWidget>
#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "catalog/AssetRecord.h"
#include "imaging/PixelBuffer.h"
#include "ui/back/FieldForms.h"
#include "ui/kit/PaintedGroup.h"

class CPhotoField;
class CPhotoFieldSet;
class QPainter;

/// Paints a panel of that colour with rounded corners, lit from the top left. All in pixels of the screen.
void DrawPanel(QPainter& painter, const QRectF& area, double radius, const QColor& colour);

/// The panel on which the user reads and edits what is known about the current photo, above the filter bar.
/// It holds no annotation of its own: a value is in the catalog as soon as its field has been left, by
/// whatever way. While a job runs the panel shows what it holds. Where it is too low for its content it
/// scrolls, and what has the focus comes into view.
class CPhotoBack : public QWidget, public CPaintedGroup {
 public:
  explicit CPhotoBack(QWidget* parent = nullptr);
  ~CPhotoBack() override;

  // What the panel tells and asks the main window; each may be empty. Who is told may call SetPhoto.

  /// The user is about to edit a field, to choose from its list, or to change the stars by key.
  std::function<void()> OnEditBegins;
  /// That fact about the current photo has been written.
  std::function<void(StampId fact)> OnStampChanged;
  /// The current photo's file has another name now. Called before OnStampChanged.
  std::function<void()> OnPhotoRenamed;
  /// The size in pixels of the current photo's picture as it was decoded, 0 by 0 without one.
  std::function<ImageSize()> GetPictureSize;

  /// The bar at the panel's bottom, a child of it, which is as wide as the panel and paints its own ground.
  void SetFilterBar(QWidget* bar, int height);

  /// Writes what is being edited, to the photo that is left, and shows that photo's fields; none hides them.
  void SetPhoto(const std::optional<CAssetRecord>& photo);

  /// Renews the "Format" field, once the current photo's picture is there and after a change of its file.
  void UpdateFormat();

  /// Null for a fact that has no field.
  CPhotoField* GetField(StampId fact) const;
  /// The row with the sizes of picture and file.
  CPhotoField& GetFormatField() const { return *Fields.back(); }

  /// Begins to edit that field, if there is a photo. From a field that can't be edited the focus goes to the
  /// main window.
  void FocusField(StampId fact);

  /// Writes what is being edited; the edit goes on.
  void CommitEdits();
  /// Puts the text back that is being edited, and selects it.
  void CancelEdits();
  bool IsEditing() const;

  /// Leaves the field that is being edited for the next or the previous one, round and round.
  void FocusNextField(bool forward);
  /// Where Tab leads to: the stars and the fields that can be edited, from the top.
  std::vector<QWidget*> ListFocusStops() const;
  /// Opens the list of the field that is being edited. False if there is none.
  bool OpenListByKey();

  /// Rates the current photo, 0 to 4. Without one nothing happens.
  void SetRating(int value);

  std::vector<GroupPart> ListParts() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;

 private:
  class CRatingField;

  void CreateFields();
  void WatchProgram();
  void ShowFields(bool shown);
  void Layout();
  void LayOutScrollBar(int contentHeight);
  void ScrollTo(const QWidget* focus);
  void GiveValues();
  void OnCommitted(StampId fact);
  void CloseEdits();

  QScrollBar ScrollBar{Qt::Vertical, this};  // how far the content is moved up; outlives the fields
  std::optional<CAssetRecord> Photo;
  std::unique_ptr<CPhotoFieldSet> Current;                       // outlives the fields, which show it
  std::array<std::unique_ptr<CPhotoField>, kFieldCount> Fields;  // as kFieldForms
  std::unique_ptr<CRatingField> Rating;
  QWidget* FilterBar = nullptr;  // a child
  int FilterBarHeight = 0;
  bool Shown = false;  // whether the fields are
  QTimer ProgramLeft;  // runs from when the program was left until the edits are ended
};
