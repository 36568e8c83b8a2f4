#include "ui/back/PhotoBack.h"

#include <QGuiApplication>
#include <QPainterPath>
#include <QPointer>
#include <QScopeGuard>
#include <algorithm>

#include "base/Texts.h"
#include "ui/back/FormatLine.h"
#include "ui/back/PhotoBackLayout.h"
#include "ui/back/PhotoField.h"
#include "ui/back/PhotoFieldSet.h"
#include "ui/back/RatingField.h"
#include "ui/kit/Colours.h"
#include "ui/kit/DevicePainter.h"
#include "ui/kit/FontTable.h"
#include "ui/kit/Job.h"
#include "ui/kit/QtText.h"
#include "ui/kit/ToolTips.h"

namespace {

constexpr double kCornerRadius = 5;
constexpr int kStarsLeft = 2;  // from the end of the label

/// A panel lit from the top left.
void DrawPanel(QPainter& painter, const QRectF& area, double radius, const QColor& colour) {
  painter.setRenderHint(QPainter::Antialiasing);
  QPainterPath panel;
  panel.addRoundedRect(area, radius, radius);
  painter.fillPath(panel, colour);
  painter.setClipPath(panel);
  painter.setPen(QColor(255, 255, 255, 205));
  painter.drawPath(panel.translated(0.5, 0.5));
  painter.setPen(QColor(49, 53, 67, 51));
  painter.drawPath(panel.translated(-0.5, -0.5));
  painter.setClipping(false);
}

PhotoBackMetrics GetMetrics() {
  const CFontTable& fonts = CFontTable::GetInstance();
  return {fonts.GetCellHeight(FontId::Label), fonts.GetCellHeight(FontId::Caption),
          CRatingControl::kSize.height()};
}

}  // namespace

CPhotoBack::CPhotoBack(QWidget* parent) : QWidget(parent) {
  setObjectName(QStringLiteral("PhotoBack"));
  setAccessibleName(QStringLiteral("About the photo"));
  setFocusPolicy(Qt::NoFocus);
  CreateFields();
  Rating = std::make_unique<CRatingField>(this);
  ShowFields(false);
  WatchProgram();
}

CPhotoBack::~CPhotoBack() = default;

// While a menu is open the box that is edited isn't told that the program has been left.
void CPhotoBack::WatchProgram() {
  ProgramLeft.setSingleShot(true);
  ProgramLeft.setInterval(kWindowReturns);
  connect(&ProgramLeft, &QTimer::timeout, this, &CPhotoBack::CloseEdits);
  connect(qGuiApp, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
    state == Qt::ApplicationInactive ? ProgramLeft.start() : ProgramLeft.stop();
  });
}

void CPhotoBack::CreateFields() {
  int labelWidth = 0;
  for (std::size_t i = 0; i < kFieldCount; ++i) {
    auto field = std::make_unique<CPhotoField>(kFieldForms[i], this);
    field->SetLabelText(LoadCaptionAndTip(kFieldForms[i].Label).Caption + u' ');
    field->OnEditBegins = [this] {
      if (OnEditBegins) OnEditBegins();
    };
    labelWidth = std::max(labelWidth, field->GetNaturalLabelWidth());
    Fields[i] = std::move(field);
  }
  for (const auto& field : Fields) field->SetLabelWidth(labelWidth);
}

void CPhotoBack::SetFilterBar(QWidget* bar, int height) {
  FilterBar = bar;
  FilterBarHeight = height;
  Layout();
}

CPhotoField* CPhotoBack::GetField(int number) const {
  if (number == static_cast<int>(FieldNumber::None)) return nullptr;
  for (std::size_t i = 0; i < kFieldCount; ++i) {
    if (static_cast<int>(kFieldForms[i].Number) == number) return Fields[i].get();
  }
  return nullptr;
}

// The photo.

void CPhotoBack::SetPhoto(const std::optional<CAssetRecord>& photo) {
  CommitEdits();
  Photo = photo;
  if (!photo) {
    GiveValues();
    ShowFields(false);
    return;
  }
  setUpdatesEnabled(false);
  const auto update = qScopeGuard([this] { setUpdatesEnabled(true); });
  if (!Shown) Layout();
  GiveValues();
  UpdateFormat();
  ShowFields(true);
}

void CPhotoBack::GiveValues() {
  // The fields let go of the former values before those are deleted.
  Rating->SetValue(nullptr);
  const std::unique_ptr<CPhotoFieldSet> former = std::move(Current);
  if (!Photo) {
    for (const auto& field : Fields) field->SetValue(nullptr);
    return;
  }
  Current = std::make_unique<CPhotoFieldSet>(*Photo, [this](FieldNumber field) { OnCommitted(field); });
  for (const auto& value : Current->GetValues()) {
    if (value->GetNumberOfField() == FieldNumber::Rating) {
      Rating->SetValue(value.get());
    } else if (CPhotoField* field = GetField(static_cast<int>(value->GetNumberOfField()))) {
      field->SetValue(value.get());
    }
  }
}

void CPhotoBack::ShowFields(bool shown) {
  Shown = shown;
  for (const auto& field : Fields) field->setVisible(shown);
  Rating->GetControl().setVisible(shown);
}

void CPhotoBack::UpdateFormat() {
  if (!Photo) return;
  const ImageSize size = GetPictureSize ? GetPictureSize() : ImageSize();
  GetField(FieldRow::Format)->SetShownText(ToQString(ReadFormatLine(size, Photo->GetPath())));
}

void CPhotoBack::OnCommitted(FieldNumber field) {
  if (field == FieldNumber::Title && OnPhotoRenamed) OnPhotoRenamed();
  if (OnStampChanged) OnStampChanged(static_cast<StampId>(field));
}

void CPhotoBack::SetRating(int value) {
  Rating->SetRating(value);
  Rating->Commit();
}

// The edits.

void CPhotoBack::FocusField(int number) {
  CPhotoField* field = GetField(number);
  if (field == nullptr || !Photo || !isVisible()) return;
  field->StartEdit();
  if (!field->IsEditing()) window()->setFocus();
}

void CPhotoBack::CommitEdits() {
  for (const auto& field : Fields) field->CommitEdit();
}

void CPhotoBack::CloseEdits() {
  RunAfterJob([panel = QPointer<CPhotoBack>(this)] {
    if (!panel) return;
    for (const auto& field : panel->Fields) field->CloseEdit(true);
  });
}

void CPhotoBack::CancelEdits() {
  for (const auto& field : Fields) field->Cancel();
}

bool CPhotoBack::IsEditing() const {
  return std::any_of(Fields.begin(), Fields.end(), [](const auto& field) { return field->IsEditing(); });
}

void CPhotoBack::FocusNextField(bool forward) {
  const auto current = std::find_if(kEditableRows.begin(), kEditableRows.end(),
                                    [this](FieldRow row) { return GetField(row)->IsEditing(); });
  if (current == kEditableRows.end()) return;
  const std::size_t count = kEditableRows.size();
  const auto position = static_cast<std::size_t>(current - kEditableRows.begin());
  GetField(kEditableRows[(position + (forward ? 1 : count - 1)) % count])->StartEdit();
}

// The window.

void CPhotoBack::resizeEvent(QResizeEvent*) { Layout(); }

void CPhotoBack::hideEvent(QHideEvent*) {
  RunAfterJob([panel = QPointer<CPhotoBack>(this)] {
    if (panel) panel->CommitEdits();
  });
}

void CPhotoBack::Layout() {
  const PhotoBackLayout layout = LayOutPhotoBack(size(), FilterBarHeight, GetMetrics());
  GetField(FieldRow::Title)->SetLines(layout.Room.TitleLines);
  GetField(FieldRow::Caption)->SetLines(layout.Room.CaptionLines);
  for (std::size_t i = 0; i < kFieldCount; ++i) Fields[i]->setGeometry(layout.Fields[i]);
  const QRect rating = layout.Fields[static_cast<std::size_t>(FieldRow::Rating)];
  Rating->GetControl().move(rating.left() + GetField(FieldRow::Rating)->GetLabelWidth() + kStarsLeft,
                            rating.top());
  if (FilterBar != nullptr) {
    FilterBar->setGeometry(0, height() - FilterBarHeight, width(), FilterBarHeight);
  }
}

void CPhotoBack::paintEvent(QPaintEvent*) {
  CDevicePainter painter(*this);
  DrawPanel(painter.GetPainter(), painter.GetArea(), kCornerRadius * painter.GetPixelRatio(),
            colours::kPhotoBack);
}
