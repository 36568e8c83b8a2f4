#include "ui/controls/PaintedButton.h"

#include <QFocusEvent>
#include <QFontMetricsF>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScopeGuard>
#include <algorithm>
#include <memory>
#include <utility>

#include "ui/controls/ButtonFace.h"
#include "ui/kit/Colours.h"
#include "ui/kit/DevicePainter.h"
#include "ui/kit/KeyFocus.h"
#include "ui/kit/Pictures.h"
#include "ui/kit/ToolTips.h"

namespace {

constexpr int kRepeatMs = 50;

/// The time that a button is held before it repeats. The setting has the steps 0 to 3; no desktop tells it
/// through the toolkit, so it is the usual 1.
constexpr int kKeyboardDelay = 1;
constexpr int kDelayMs = (kKeyboardDelay * 5 + 5) * kRepeatMs;

// A text button's looks, side by side: normal, pressed, default, default pressed.
constexpr int kSkinSide = 17;
constexpr int kSkinCorner = 8;
constexpr int kPressedOffset = 2;

constexpr double kFocusRadius = 5;
// What isn't plate but shadow, at the right and at the bottom.
constexpr QSize kPictureShadow(0, 3);
constexpr int kRoundShadow = 1;  // all around
constexpr QSize kTextShadow(2, 2);

// The ends of a picture in a button of another width; what is left out, or repeated, lies between them and
// the middle.
constexpr int kPictureEnd = 6;

/// Space or Enter, without another key.
bool IsPressKey(const QKeyEvent& event) {
  const bool isOne =
      event.key() == Qt::Key_Space || event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
  return isOne && (event.modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
}

}  // namespace

CPaintedButton::CPaintedButton(CCommandTarget& target, QWidget* parent)
    : QAbstractButton(parent), Target(target) {
  setFocusPolicy(Qt::NoFocus);
  setMouseTracking(true);
  // Mouse and keys are handled here; this is the press of an assistive tool.
  connect(this, &QAbstractButton::clicked, this, [this] { Fire(); });
}

QAccessibleInterface* CPaintedButton::MakeFace() { return MakeButtonFace(*this); }

CPaintedButton::~CPaintedButton() {
  if (!Tip) return;
  Tip->hide();
  Tip->deleteLater();  // not at once: its parent may be deleting its children, the tip among them
}

void CPaintedButton::Create(QPoint corner, CommandId id, ButtonFlags flags, PictureId picture,
                            int imageCount) {
  TextForm = false;
  Start(id, flags);
  SetPicture(picture, imageCount, true);
  move(corner);
}

void CPaintedButton::CreateText(const QRect& place, CommandId id, const QString& text, ButtonFlags flags,
                                bool defaultLook) {
  TextForm = true;
  DefaultLook = defaultLook;
  Start(id, flags);
  TakeFocusByTab();
  TakeTexts(text, {});
  setGeometry(place);
}

void CPaintedButton::Start(CommandId id, ButtonFlags flags) {
  Command = id;
  Press = CButtonPress(flags);
  Press.SetEnabled(isEnabled());
}

void CPaintedButton::SetPicture(PictureId picture, int imageCount, bool resizeToImage) {
  if (picture != Picture || imageCount != ImageCount) TakePicture(picture, imageCount);
  if (resizeToImage) resize(ImageSize);
}

void CPaintedButton::TakePicture(PictureId picture, int imageCount) {
  Picture = picture;
  ImageCount = imageCount;
  const QSize whole = GetPictureSize(picture);
  ImageSize = whole.isEmpty() ? QSize(0, 0) : QSize(whole.width() / imageCount, whole.height());
  const CaptionAndTip texts = LoadCaptionAndTip(static_cast<StringId>(picture));
  TakeTexts(texts.Caption, texts.Tip);
  update();
}

void CPaintedButton::TakeTexts(const QString& caption, const QString& tip) {
  setText(caption);
  if (!caption.isEmpty()) setAccessibleName(caption);
  if (!HasTipString) TellTexts(tip);
  if (Tip && Tip->isVisible()) ShowTip(true);
}

void CPaintedButton::SetTipString(StringId id) {
  HasTipString = true;
  TellTexts(LoadCaptionAndTip(id).Tip);
}

void CPaintedButton::TellTexts(const QString& tip) {
  TipText = tip;
  SetToolTip(*this, tip);
  const TipParts parts = DivideTip(tip);
  KeyName = parts.Key;
  if (!GetText().isEmpty()) return setAccessibleDescription(parts.Text);
  setAccessibleName(parts.Text);
  setAccessibleDescription({});
}

void CPaintedButton::EnableTip(bool on) {
  TipEnabled = on;
  ShowTip(on && TipStays() && isVisible());
}

void CPaintedButton::SetTipSide(TipSide side) {
  Side = side;
  PlaceStayingTip();
}

void CPaintedButton::SetCaptionForm(FontId font, int widest) {
  if (font == CaptionFont && widest == WidestCaption) return;
  CaptionFont = font;
  WidestCaption = widest;
  PlaceStayingTip();
}

CButtonTip& CPaintedButton::GetTip() {
  // Deleted by its parent, which may be destroyed before this button.
  if (!Tip) Tip = std::make_unique<CButtonTip>(TipStays() ? parentWidget() : window()).release();
  return *Tip;
}

QString CPaintedButton::GetShownCaption() const {
  const QFontMetricsF metrics(GetFont(CaptionFont));
  return WidestCaption > 0 ? metrics.elidedText(GetText(), Qt::ElideRight, WidestCaption) : GetText();
}

void CPaintedButton::ShowTip(bool on) {
  if (!on || !TipEnabled || GetText().isEmpty() || (TipStays() && parentWidget() == nullptr)) {
    if (Tip) Tip->hide();
    return;
  }
  CButtonTip& tip = GetTip();
  tip.SetSide(Side);
  tip.SetFont(CaptionFont);
  tip.SetText(GetShownCaption());
  tip.ShowAt(TipStays() ? geometry() : QRect(mapTo(window(), QPoint()), size()));
}

void CPaintedButton::PlaceStayingTip() {
  if (TipStays() && isVisible()) ShowTip(true);
}

void CPaintedButton::ApplyState() {
  const auto run = [this](QBasicTimer& timer, bool on, int interval) {
    if (on && !timer.isActive()) timer.start(interval, this);
    if (!on) timer.stop();
  };
  run(DelayTimer, Press.IsDelayRunning(), kDelayMs);
  run(RepeatTimer, Press.IsRepeatRunning(), kRepeatMs);
  update();
}

void CPaintedButton::Fire() {
  if (!TipStays()) ShowTip(false);
  Target.OnCommand(Command);  // may delete this button
}

bool CPaintedButton::event(QEvent* event) {
  if (event->type() == QEvent::WindowDeactivate) {
    // The release of a held button may be sent to another window.
    Press.Cancel();
    ApplyState();
  }
  if (event->type() == QEvent::ToolTip && GetShownCaption() != GetText()) {
    const QString text = TipText.isEmpty() ? GetText() : GetText() + u'\n' + TipText;
    AnswerToolTip(static_cast<QHelpEvent&>(*event), text, *this, rect());
    return true;
  }
  const bool passOn = !isEnabled() && event->isPointerEvent();
  const bool taken = QAbstractButton::event(event);  // whose command may delete this button
  if (!passOn) return taken;
  event->ignore();  // the mouse over a disabled button is its parent's
  return false;
}

void CPaintedButton::mousePressEvent(QMouseEvent* event) {
  event->setAccepted(event->button() == Qt::LeftButton);
  if (!event->isAccepted()) return;
  const bool fire = Press.Press();
  ApplyState();
  if (fire) Fire();
}

void CPaintedButton::mouseMoveEvent(QMouseEvent* event) {
  if (Press.IsHeld()) {
    Press.Move(rect().contains(event->position().toPoint()));
    ApplyState();
    return;
  }
  if (!TipStays() && (!Tip || !Tip->isVisible())) ShowTip(true);
  if (event->buttons() != Qt::NoButton || ImageCount <= static_cast<int>(ButtonState::Hover)) return;
  if (GetState() == ButtonState::Hover) return;
  Press.Hover();
  update();
}

void CPaintedButton::mouseReleaseEvent(QMouseEvent* event) {
  event->setAccepted(event->button() == Qt::LeftButton);
  if (!event->isAccepted() || !Press.IsHeld()) return;
  if (GetState() != ButtonState::Pressed && !TipStays()) ShowTip(false);
  EndPress();
}

void CPaintedButton::EndPress() {
  const bool fire = Press.Release();
  ApplyState();
  if (!fire) return;
  const auto settle = qScopeGuard([button = QPointer<CPaintedButton>(this)] {
    if (!button) return;
    button->Press.Settle();
    button->update();
  });
  Fire();
}

void CPaintedButton::keyPressEvent(QKeyEvent* event) {
  event->setAccepted(IsPressKey(*event));
  // A held key may come as a release and a press of the same time.
  const bool isRepeat =
      event->isAutoRepeat() || (KeyReleaseTime != 0 && event->timestamp() == KeyReleaseTime);
  if (!event->isAccepted() || isRepeat || Press.IsHeld()) return;
  if (event->key() != Qt::Key_Space) return Fire();
  HeldBySpace = true;
  const bool fire = Press.Press();
  ApplyState();
  if (fire) Fire();
}

void CPaintedButton::keyReleaseEvent(QKeyEvent* event) {
  event->setAccepted(IsPressKey(*event) || (HeldBySpace && event->key() == Qt::Key_Space));
  if (!event->isAccepted() || event->isAutoRepeat()) return;
  KeyReleaseTime = event->timestamp();
  if (event->key() == Qt::Key_Space && std::exchange(HeldBySpace, false)) EndPress();
}

void CPaintedButton::focusOutEvent(QFocusEvent*) {
  if (std::exchange(HeldBySpace, false)) Press.Cancel();
  ApplyState();
}

void CPaintedButton::leaveEvent(QEvent*) {
  if (!TipStays()) ShowTip(false);
  Press.Leave();
  update();
}

void CPaintedButton::timerEvent(QTimerEvent* event) {
  if (event->timerId() == DelayTimer.timerId()) {
    const bool fire = Press.EndDelay();
    ApplyState();
    if (fire) Fire();
  } else if (event->timerId() == RepeatTimer.timerId()) {
    Fire();
  } else {
    QAbstractButton::timerEvent(event);
  }
}

void CPaintedButton::changeEvent(QEvent* event) {
  QAbstractButton::changeEvent(event);
  if (event->type() != QEvent::EnabledChange) return;
  Press.SetEnabled(isEnabled());
  ApplyState();
}

void CPaintedButton::showEvent(QShowEvent*) { PlaceStayingTip(); }

void CPaintedButton::hideEvent(QHideEvent*) {
  HideToolTip(*this);
  ShowTip(false);
  Press.Cancel();
  ApplyState();
}

void CPaintedButton::moveEvent(QMoveEvent*) {
  HideToolTip(*this);
  PlaceStayingTip();
}

void CPaintedButton::resizeEvent(QResizeEvent*) { PlaceStayingTip(); }

void CPaintedButton::paintEvent(QPaintEvent*) {
  CDevicePainter painter(*this);
  if (TextForm) {
    PaintText(painter);
  } else {
    PaintPicture(painter);
  }
  if (ShowsFocus(*this)) PaintFocus(painter);
}

void CPaintedButton::PaintPicture(CDevicePainter& painter) {
  const QRect area = painter.GetArea();
  if (ImageSize.isEmpty()) {
    const QWidget* around = parentWidget() != nullptr ? parentWidget() : this;
    painter.Fill(area, around->palette().color(around->backgroundRole()));
    return;
  }
  const int state = static_cast<int>(GetState());
  const QRect image(QPoint((state < ImageCount ? state : 0) * ImageSize.width(), 0), ImageSize);
  if (width() == ImageSize.width()) {
    painter.DrawPart(Picture, image, {area.topLeft(), QSize(area.width(), painter.Scaled(image.height()))});
    return;
  }
  // Columns of the picture, from `first` on, to the button from `left` to `right`.
  const auto draw = [&](int first, int columns, int left, int right) {
    const int begin = painter.Scaled(left);
    const int end = right == width() ? area.width() : painter.Scaled(right);
    painter.DrawPart(Picture, {image.left() + first, image.top(), columns, image.height()},
                     {begin, 0, end - begin, area.height()});
  };
  const int middle = std::min(width(), image.width()) - 2 * kPictureEnd;
  const int lastOfPicture = image.width() - kPictureEnd;
  const int last = width() - kPictureEnd;
  const int left = (width() - middle) / 2;
  draw(0, kPictureEnd, 0, kPictureEnd);
  if (width() > image.width()) {
    draw(kPictureEnd, 1, kPictureEnd, left);
    draw(lastOfPicture - 1, 1, left + middle, last);
  }
  draw((image.width() - middle) / 2, middle, left, left + middle);
  draw(lastOfPicture, kPictureEnd, last, width());
}

void CPaintedButton::PaintText(CDevicePainter& painter) {
  const bool pressed = GetState() == ButtonState::Pressed;
  const int look = (DefaultLook ? 2 : 0) + (pressed ? 1 : 0);
  const QRect area = painter.GetArea();
  DrawNineParts(painter, {PictureId::TextButtons, {look * kSkinSide, 0, kSkinSide, kSkinSide}, kSkinCorner},
                area);
  const int offset = painter.Scaled(1);
  const int shift = pressed ? painter.Scaled(kPressedOffset) : 0;
  const QRect place = area.translated(shift, shift);
  const int flags = Qt::AlignCenter | Qt::TextSingleLine;
  const QFont& font = GetFont(FontId::Note);
  painter.DrawText(place.translated(offset, offset), flags, font, Qt::white, GetText());
  painter.DrawText(place, flags, font, colours::kInk, GetText());
}

void CPaintedButton::PaintFocus(CDevicePainter& painter) const {
  if (Round) {
    const int edge = painter.Scaled(kRoundShadow);
    return DrawFocusFrame(painter, painter.GetArea().adjusted(edge, edge, -edge, -edge), width() / 2.0);
  }
  const QSize shadow = TextForm ? kTextShadow : kPictureShadow;
  const QRect plate =
      painter.GetArea().adjusted(0, 0, -painter.Scaled(shadow.width()), -painter.Scaled(shadow.height()));
  DrawFocusFrame(painter, plate, kFocusRadius);
}
