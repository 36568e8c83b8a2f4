#include "ui/back/PhotoBack.h"

#include <QApplication>
#include <QPainterPath>
#include <QPointer>
#include <QScopeGuard>
#include <QWheelEvent>
#include <algorithm>

#include "base/Texts.h"
#include "platform/Files.h"
#include "ui/back/FieldText.h"
#include "ui/back/PhotoBackLayout.h"
#include "ui/back/PhotoField.h"
#include "ui/back/PhotoFieldSet.h"
#include "ui/controls/RatingControl.h"
#include "ui/kit/ClickFocus.h"
#include "ui/kit/Colours.h"
#include "ui/kit/DevicePainter.h"
#include "ui/kit/FontTable.h"
#include "ui/kit/Job.h"
#include "ui/kit/QtText.h"
#include "ui/kit/ToolTips.h"

namespace {

constexpr double kCornerRadius = 5;
constexpr int kStarsLeft = 2;  // from the end of the label

constexpr int kScrollBarWidth = 10;
constexpr int kScrollBarMargin = 2;

constexpr std::uint64_t kBytesPerUnit = 1024;
constexpr std::uint64_t kMostKilobytes = 1000;

std::string MakeFileSize(std::uint64_t bytes) {
  const std::uint64_t kilobytes = bytes / kBytesPerUnit;
  return kilobytes < kMostKilobytes
             ? FormatString(StringId::SizeInKilobytes, kilobytes)
             : FormatString(StringId::SizeInMegabytes, static_cast<double>(kilobytes) / kBytesPerUnit);
}

/// "2560 x 1600 (617 KB)"; 0 bytes if there is no file.
std::string MakeFormatLine(ImageSize size, const std::string& path) {
  platform::FileStatus status;
  const std::uint64_t bytes = platform::GetStatus(path, status) ? 0 : status.Size;
  return FormatString(StringId::PictureSize, size.Width, size.Height) + " (" + MakeFileSize(bytes) + ")";
}

PhotoBackMetrics GetMetrics() {
  const CFontTable& fonts = CFontTable::GetInstance();
  return {fonts.GetCellHeight(FontId::Label), fonts.GetCellHeight(FontId::Caption),
          CRatingControl::kSize.height()};
}

}  // namespace

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

/// The stars, over the value that keeps the rating.
class CPhotoBack::CRatingField : public CRatingOwner, private CFieldListener {
 public:
  explicit CRatingField(QWidget* parent) : Control(*this, parent) {}
  ~CRatingField() override { SetValue(nullptr); }

  /// Not owned; null for none.
  void SetValue(CFieldValue* value) {
    if (Value != nullptr) Value->SetListener(nullptr);
    Value = value;
    if (Value != nullptr) Value->SetListener(this);
    Control.Refresh();
  }

  int GetRating() const override { return Value != nullptr ? Value->GetNumber() : 0; }
  void SetRating(int rating) override {
    if (Value != nullptr) Value->SetNumber(rating);
  }
  void Commit() override {
    if (Value != nullptr) StoreValue(*Value);
    Control.Refresh();
  }

  CRatingControl& GetControl() { return Control; }

 private:
  void OnValueChanged() override { Control.Refresh(); }

  CRatingControl Control;
  CFieldValue* Value = nullptr;
};

CPhotoBack::CPhotoBack(QWidget* parent) : QWidget(parent) {
  setObjectName(QStringLiteral("PhotoBack"));
  setAccessibleName(ToQString(LoadText(StringId::ToldPhotoBack)));
  setFocusPolicy(Qt::NoFocus);
  CreateFields();
  Rating = std::make_unique<CRatingField>(this);
  KeepFocusOnClick(ScrollBar);
  connect(&ScrollBar, &QScrollBar::valueChanged, this, &CPhotoBack::Layout);
  connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) { ScrollTo(now); });
  Rating->GetControl().OnKeyRating = [this] {
    if (OnEditBegins) OnEditBegins();
  };
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
  ScrollBar.raise();
  Layout();
}

CPhotoField* CPhotoBack::GetField(StampId fact) const {
  if (fact == StampId::None) return nullptr;
  for (std::size_t i = 0; i < kFieldCount; ++i) {
    if (kFieldForms[i].Fact == fact) return Fields[i].get();
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
  Current = std::make_unique<CPhotoFieldSet>(*Photo, [this](StampId fact) { OnCommitted(fact); });
  for (std::size_t i = 0; i < kFieldCount; ++i) {
    const StampId fact = kFieldForms[i].Fact;
    if (fact == StampId::Rating) {
      Rating->SetValue(&Current->Get(fact));
    } else if (fact != StampId::None) {
      Fields[i]->SetValue(&Current->Get(fact));
    }
  }
}

void CPhotoBack::ShowFields(bool shown) {
  if (Shown != shown) {
    Shown = shown;
    Layout();
  }
  for (const auto& field : Fields) field->setVisible(shown);
  Rating->GetControl().setVisible(shown);
}

void CPhotoBack::UpdateFormat() {
  if (!Photo) return;
  const ImageSize size = GetPictureSize ? GetPictureSize() : ImageSize();
  GetFormatField().SetShownText(ToQString(MakeFormatLine(size, Photo->GetPath())));
}

void CPhotoBack::OnCommitted(StampId fact) {
  if (fact == StampId::Title && OnPhotoRenamed) OnPhotoRenamed();
  if (OnStampChanged) OnStampChanged(fact);
}

void CPhotoBack::SetRating(int value) {
  Rating->SetRating(value);
  Rating->Commit();
}

// The edits.

void CPhotoBack::FocusField(StampId fact) {
  CPhotoField* field = GetField(fact);
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
  const auto current =
      std::find_if(Fields.begin(), Fields.end(), [](const auto& field) { return field->IsEditing(); });
  if (current == Fields.end()) return;
  auto row = static_cast<std::size_t>(current - Fields.begin());
  do {
    row = (row + (forward ? 1 : kFieldCount - 1)) % kFieldCount;
  } while (!HasFlag(kFieldForms[row].Style, FieldStyle::Editable));
  Fields[row]->StartEdit();
}

std::vector<GroupPart> CPhotoBack::ListParts() const {
  std::vector<GroupPart> parts;
  for (std::size_t i = 0; Shown && i < kFieldCount; ++i) {
    const CPhotoField& field = *Fields[i];
    const bool isRating = kFieldForms[i].Fact == StampId::Rating;
    const QWidget* value = &field.GetTextWindow();
    if (isRating) value = &Rating->GetControl();
    const QRect label(field.pos(), QSize(field.GetLabelWidth(), field.height()));
    parts.push_back({.Text = field.GetLabelText().trimmed(), .Place = label, .Names = value});
    parts.push_back({value});
    if (field.GetButton() != nullptr) parts.push_back({field.GetButton()});
  }
  if (FilterBar != nullptr) parts.push_back({FilterBar});
  return parts;
}

std::vector<QWidget*> CPhotoBack::ListFocusStops() const {
  std::vector<QWidget*> stops = {&Rating->GetControl()};
  for (std::size_t i = 0; i < kFieldCount; ++i) {
    if (HasFlag(kFieldForms[i].Style, FieldStyle::Editable)) stops.push_back(Fields[i].get());
  }
  return stops;
}

bool CPhotoBack::OpenListByKey() {
  return std::any_of(Fields.begin(), Fields.end(), [](const auto& field) { return field->OpenListByKey(); });
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
  LayOutScrollBar(Shown ? layout.ContentHeight : std::max(FilterBarHeight, height()));
  const int offset = ScrollBar.value();
  GetField(StampId::Title)->SetLines(layout.Room.TitleLines);
  GetField(StampId::Note)->SetLines(layout.Room.CaptionLines);
  for (std::size_t i = 0; i < kFieldCount; ++i) {
    Fields[i]->setGeometry(layout.Fields[i].translated(0, -offset));
  }
  const CPhotoField& rating = *GetField(StampId::Rating);
  Rating->GetControl().move(rating.x() + rating.GetLabelWidth() + kStarsLeft, rating.y());
  if (FilterBar != nullptr) {
    const int end = height() + ScrollBar.maximum() - offset;
    FilterBar->setGeometry(0, end - FilterBarHeight, width(), FilterBarHeight);
  }
}

void CPhotoBack::LayOutScrollBar(int contentHeight) {
  ScrollBar.setGeometry(width() - kScrollBarMargin - kScrollBarWidth, kScrollBarMargin, kScrollBarWidth,
                        height() - 2 * kScrollBarMargin);
  ScrollBar.setSingleStep(GetMetrics().ValueLine);
  ScrollBar.setPageStep(height());
  ScrollBar.setRange(0, contentHeight - height());
  ScrollBar.setVisible(contentHeight > height());
}

void CPhotoBack::ScrollTo(const QWidget* focus) {
  if (focus == nullptr || !isAncestorOf(focus)) return;
  const int offset = ScrollBar.value();
  const int top = focus->mapTo(this, QPoint()).y() + offset;
  ScrollBar.setValue(
      ScrollToShow(top - kFieldPadding, top + focus->height() + kFieldPadding, offset, height()));
}

void CPhotoBack::wheelEvent(QWheelEvent* event) {
  const bool overEdit = std::any_of(Fields.begin(), Fields.end(), [](const auto& field) {
    return field->IsEditing() && field->underMouse();
  });
  if (ScrollBar.maximum() == 0 || overEdit) return event->ignore();
  QCoreApplication::sendEvent(&ScrollBar, event);
  event->accept();  // at the end of the content the wheel doesn't begin to move the strip
}

void CPhotoBack::paintEvent(QPaintEvent*) {
  CDevicePainter painter(*this);
  DrawPanel(painter.GetPainter(), painter.GetArea(), kCornerRadius * painter.GetPixelRatio(),
            colours::kPhotoBack);
}
