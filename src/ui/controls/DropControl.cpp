#include "ui/controls/DropControl.h"

#include <QApplication>
#include <QFocusEvent>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QRect>
#include <QScopeGuard>
#include <QSize>
#include <algorithm>
#include <exception>
#include <utility>

#include "base/Exceptions.h"
#include "ui/controls/DropFace.h"
#include "ui/controls/DropList.h"
#include "ui/kit/ClickFocus.h"
#include "ui/kit/Colours.h"
#include "ui/kit/DevicePainter.h"
#include "ui/kit/KeyFocus.h"
#include "ui/kit/QtText.h"
#include "ui/kit/ToolTips.h"

namespace {

/// The three pieces that the picture of a drop control is cut into, side by side.
struct DropSkinPieces {
  QRect Left;
  QRect Middle;  // stretched
  QRect Right;
};

constexpr int kImageWidth = 40;
constexpr int kImageHeight = 22;
constexpr int kLeftPiece = 9;
constexpr int kRightPiece = 30;

constexpr int kTextLeft = 9;
constexpr int kTextTop = 2;
constexpr int kTextRight = 31;
constexpr int kTextBottom = 5;
constexpr int kOpenOffset = 2;

constexpr double kFocusRadius = 4;
constexpr int kShadow = 3;  // of the picture, at the right and at the bottom

constexpr int kAroundLine = 2;
constexpr int kAroundRow = 5;

/// The pieces of one image of the picture, by its position in the picture.
DropSkinPieces CutDropSkin(int image) {
  const int left = image * kImageWidth;
  return {QRect(left, 0, kLeftPiece, kImageHeight), QRect(left + kLeftPiece, 0, 1, kImageHeight),
          QRect(left + kImageWidth - kRightPiece, 0, kRightPiece, kImageHeight)};
}

/// Where they are painted, with an image of `pixelRatio` times its own size over a control of `size`. All
/// device pixels.
DropSkinPieces LayOutDropSkin(QSize size, double pixelRatio) {
  const int left = std::min(ToDevicePixels(kLeftPiece, pixelRatio), size.width());
  const int right = std::min(ToDevicePixels(kRightPiece, pixelRatio), size.width() - left);
  const int middle = size.width() - left - right;
  return {QRect(0, 0, left, size.height()), QRect(left, 0, middle, size.height()),
          QRect(left + middle, 0, right, size.height())};
}

/// Where the control's text stands, in pixels of the layout.
QRect GetDropTextArea(QSize control, bool listOpen) {
  const QRect area = QRect(QPoint(), control).adjusted(kTextLeft, kTextTop, -kTextRight, -kTextBottom);
  return listOpen ? area.translated(kOpenOffset, kOpenOffset) : area;
}

/// The heights of a row of the list and of the control, for the height of a line of its first font.
int GetDropRowHeight(int lineHeight) { return lineHeight + kAroundLine; }

int GetDropControlHeight(int lineHeight) { return GetDropRowHeight(lineHeight) + kAroundRow; }

constexpr FontId kFirstFont = FontId::Panel;
constexpr FontId kSecondFont = FontId::ListItalic;
constexpr FontId kCurrentFont = FontId::PanelBold;
constexpr QColor kPromptColour(113, 117, 125);

// The images of the picture: at rest, with the list open, and both again for a control with an edit box.
constexpr int kOpenImage = 1;
constexpr int kEditImages = 2;

constexpr int kEditMargin = 2;  // that the edit box keeps to the left and the right of its text

int GetLineHeight() { return CFontTable::GetInstance().GetCellHeight(kFirstFont); }

/// White, with ink that stays readable on the yellow selection.
QPalette MakeEditPalette() {
  QPalette palette;
  palette.setColor(QPalette::Base, Qt::white);
  palette.setColor(QPalette::Text, colours::kInk);
  palette.setColor(QPalette::Highlight, colours::kSelection);
  palette.setColor(QPalette::HighlightedText, colours::kInk);
  return palette;
}

/// Runs `work` and returns the exception of a refused write: the choice itself holds, and is reported before
/// that exception is raised again.
std::exception_ptr KeepRefusal(const std::function<void()>& work) {
  try {
    work();
  } catch (const CException&) {
    return std::current_exception();
  }
  return nullptr;
}

}  // namespace

CDropControl::CDropControl(const QString& label, DropStyle style, QWidget* parent)
    : QWidget(parent), Style(style) {
  setAccessibleName(label);
  setMouseTracking(true);
  setFixedHeight(GetHeight());
  setFocusPolicy(Qt::TabFocus);
  KeepFocusOnClick(*this);
}

CDropControl::~CDropControl() {
  // Their events during destruction must not reach this object.
  if (EditBox) EditBox->removeEventFilter(this);
  if (List) List->OnClosed = nullptr;
}

int CDropControl::GetHeight() { return GetDropControlHeight(GetLineHeight()); }

QRect CDropControl::GetTextArea() const {
  return GetDropTextArea(size(), Model.GetState() == DropState::ListOpen);
}

QRect CDropControl::GetEditArea() const {
  return GetDropTextArea(size(), false).adjusted(-kEditMargin, 0, kEditMargin, 0);
}

CDropList* CDropControl::GetOpenList() const { return List && List->isVisible() ? List.get() : nullptr; }

void CDropControl::Refresh() {
  const QString before = std::exchange(ToldText, GetSpelledText());
  if (ToldText != before && QAccessible::isActive()) {
    QAccessibleTextUpdateEvent event(this, 0, before, ToldText);
    QAccessible::updateAccessibility(&event);
  }
  update();
}

QString CDropControl::GetSpelledText() const {
  return SpellDropText(Model.GetShownText().empty() ? Prompt : Model.GetShownText(), Images);
}

std::vector<GroupPart> CDropControl::ListParts() const {
  std::vector<GroupPart> parts;
  if (EditBox) parts.push_back({EditBox.get()});
  if (GetOpenList() != nullptr) parts.push_back({GetOpenList()});
  return parts;
}

QAccessibleInterface* CDropControl::MakeFace() { return MakeDropFace(*this); }

void CDropControl::TellExpanded() {
  if (!QAccessible::isActive()) return;
  QAccessible::State changed;
  changed.expanded = true;
  QAccessibleStateChangeEvent event(this, changed);
  QAccessible::updateAccessibility(&event);
}

void CDropControl::OpenList(bool byKey) {
  EndEdit();
  if (!List) {
    List = std::make_unique<CDropList>(*this, Has(DropStyle::Images) ? Images : DropImages(),
                                       Has(DropStyle::ShortensPaths));
    List->OnClosed = [this](int row) { CloseList(row); };
  }
  const int current = Model.GetSelected();
  std::vector<CDropList::Row> rows;
  for (const CDropControlModel::Row& row : Model.GetRows()) {
    const bool isCurrent = static_cast<int>(rows.size()) == current;
    const bool isFlagged = HasFlag(row.Flags, DropItemFlags::SecondFont);
    const FontId font = isCurrent ? kCurrentFont : isFlagged ? kSecondFont : kFirstFont;
    rows.push_back({row.Shown.empty() ? Prompt : row.Shown, GetFont(font),
                    HasFlag(row.Flags, DropItemFlags::LineBelow)});
  }
  Model.OpenList();
  Refresh();
  List->Open(std::move(rows), current, GetDropRowHeight(GetLineHeight()), byKey);
  TellExpanded();
}

void CDropControl::OpenListByKey() {
  EndEdit();
  GiveFocus(*this, Qt::OtherFocusReason);
  OpenList(true);
}

void CDropControl::CloseList(int row) {
  bool changed = true;
  const std::exception_ptr refusal = KeepRefusal([&] { changed = Model.CloseList(row); });
  Refresh();
  TellExpanded();
  TellFocus();  // which the list had in the eyes of a tool
  if (changed && OnChange) OnChange();
  if (refusal) std::rethrow_exception(refusal);
}

void CDropControl::StepChoice(int step) {
  // A choice changes the order of a history, and may begin a search.
  if (Has(DropStyle::History)) return OpenListByKey();
  const std::vector<CDropControlModel::Row> rows = Model.GetRows();
  const int row = Model.GetSelected() + step;
  if (row < 0 || row >= static_cast<int>(rows.size())) return;
  if (HasFlag(rows[static_cast<std::size_t>(row)].Flags, DropItemFlags::Action)) return;
  Model.OpenList();
  CloseList(row);
}

void CDropControl::Activate() { Has(DropStyle::EditBox) ? OpenEdit() : OpenListByKey(); }

void CDropControl::OpenEdit() {
  if (EditBox) return EditBox->setFocus();
  if (OnEditBegins) OnEditBegins();
  EditBox = std::make_unique<QLineEdit>(this);
  EditBox->setObjectName(objectName() + QStringLiteral("Edit"));
  EditBox->setAccessibleName(accessibleName());
  EditBox->setFrame(false);
  EditBox->setFont(GetFont(kFirstFont));
  EditBox->setPalette(MakeEditPalette());
  EditBox->setGeometry(GetEditArea());
  EditBox->setText(ToQString(Model.GetText()));
  EditBox->installEventFilter(this);
  Model.OpenEdit();
  EditBox->show();
  EditBox->setFocus(Qt::MouseFocusReason);
  if (Has(DropStyle::SelectsWhole)) EditBox->selectAll();
}

void CDropControl::RestoreText() {
  if (!EditBox) return;
  EditBox->setText(ToQString(Model.GetText()));
  EditBox->selectAll();
}

void CDropControl::EndEdit() {
  if (!EditBox) return;
  window()->setFocus(Qt::OtherFocusReason);
  FinishEdit();  // where the window isn't active, or doesn't take the focus
}

void CDropControl::FinishEdit() {
  if (!EditBox) return;
  QLineEdit* const box = EditBox.release();
  box->removeEventFilter(this);
  // Hiding would pass the focus on to the next in the chain.
  if (window()->focusWidget() == box) window()->setFocus(Qt::OtherFocusReason);
  box->hide();
  box->deleteLater();  // it may be handling an event
  const auto refresh = qScopeGuard([this] { Refresh(); });
  const bool isBlank = box->text().trimmed().isEmpty();
  const std::string text = isBlank ? std::string() : box->text().toStdString();
  const std::exception_ptr refusal = KeepRefusal([&] { Model.CloseEdit(text, Has(DropStyle::History)); });
  if (OnEditEnd) OnEditEnd();
  if (refusal) std::rethrow_exception(refusal);
}

bool CDropControl::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::FocusOut && !IsLostToPopup(*static_cast<QFocusEvent*>(event))) FinishEdit();
  return QWidget::eventFilter(watched, event);
}

DropTextStyle CDropControl::GetTextStyle() const {
  return {GetFont(kFirstFont), Model.GetShownText().empty() ? kPromptColour : colours::kInk,
          Has(DropStyle::Images) ? Images : DropImages(), false, Has(DropStyle::ShortensPaths)};
}

bool CDropControl::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QWidget::event(event);
  const QString tip = FindCutText(Model.GetShownText(), GetTextStyle(), GetTextArea().width());
  AnswerToolTip(static_cast<QHelpEvent&>(*event), tip, *this, rect());
  return true;
}

void CDropControl::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return QWidget::mousePressEvent(event);
  const QPoint point = event->position().toPoint();
  if (!Has(DropStyle::EditBox) || !GetTextArea().contains(point)) return OpenList(false);
  OpenEdit();
  if (Has(DropStyle::SelectsWhole)) return;
  QMouseEvent inBox(event->type(), event->position() - EditBox->pos(), event->globalPosition(),
                    event->button(), event->buttons(), event->modifiers());
  QApplication::sendEvent(EditBox.get(), &inBox);
}

void CDropControl::keyPressEvent(QKeyEvent* event) {
  const bool isBare = (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
  if (IsEditing() || !isBare) return event->ignore();
  switch (event->key()) {
    case Qt::Key_Space:
      return OpenListByKey();
    case Qt::Key_Up:
      return StepChoice(-1);
    case Qt::Key_Down:
      return StepChoice(1);
    default:
      event->ignore();
  }
}

void CDropControl::mouseMoveEvent(QMouseEvent* event) {
  if (!Has(DropStyle::EditBox)) return;
  setCursor(GetTextArea().contains(event->position().toPoint()) ? Qt::IBeamCursor : Qt::ArrowCursor);
}

void CDropControl::resizeEvent(QResizeEvent*) {
  if (EditBox) EditBox->setGeometry(GetEditArea());
}

void CDropControl::paintEvent(QPaintEvent*) {
  CDevicePainter painter(*this);
  const bool open = Model.GetState() == DropState::ListOpen;
  const int image = (open ? kOpenImage : 0) + (Has(DropStyle::EditBox) ? kEditImages : 0);
  const DropSkinPieces from = CutDropSkin(image);
  const DropSkinPieces to = LayOutDropSkin(painter.GetArea().size(), painter.GetPixelRatio());
  painter.DrawPart(PictureId::DropControl, from.Left, to.Left);
  painter.DrawPart(PictureId::DropControl, from.Middle, to.Middle);
  painter.DrawPart(PictureId::DropControl, from.Right, to.Right);
  const std::string& shown = Model.GetShownText();
  DrawDropText(painter, painter.Scaled(GetTextArea()), shown.empty() ? Prompt : shown, GetTextStyle());
  const int shadow = painter.Scaled(kShadow);
  if (ShowsFocus(*this)) {
    DrawFocusFrame(painter, painter.GetArea().adjusted(0, 0, -shadow, -shadow), kFocusRadius);
  }
}
