#pragma once

#include <QAbstractButton>
#include <QBasicTimer>
#include <QPointer>
#include <QSize>

#include "resources/PictureIds.h"
#include "resources/StringIds.h"
#include "ui/kit/ButtonTip.h"
#include "ui/kit/Commands.h"
#include "ui/kit/Flags.h"

class CDevicePainter;

/// The numbers are the positions of the looks in a button's picture.
enum class ButtonState : int { Normal = 0, Pressed = 1, Hover = 2, Disabled = 3 };

/// How a button behaves; combined with `|`.
enum class ButtonFlags : unsigned {
  None = 0,
  FireOnPress = 1,              // on mouse down; else on mouse up inside the button
  RepeatWhileHeld = 2,          // the command
  StayPressedUntilHandled = 4,  // for a command that takes a while
  TipStays = 8,                 // the caption is on view with the button, not only under the pointer
};

template <>
inline constexpr bool kIsFlagSet<ButtonFlags> = true;

/// What the mouse does to a button: its state, when the command fires, when it repeats. It knows neither
/// window nor clock: after each call its owner runs the two timers as asked, and sends the command if the
/// call returned true.
class CButtonPress {
 public:
  explicit CButtonPress(ButtonFlags flags = ButtonFlags::None) : Flags(flags) {}

  ButtonFlags GetFlags() const { return Flags; }
  ButtonState GetState() const { return State; }
  /// From mouse down to mouse up, wherever the pointer goes meanwhile.
  bool IsHeld() const { return Held; }

  bool Press();
  /// The pointer moves over the button while nothing is held.
  void Hover();
  /// The pointer moves while the button is held.
  void Move(bool inside);
  bool Release();
  /// The command that Release asked for has been handled.
  void Settle();
  void Leave();
  /// Enabling and disabling, and what takes the mouse away, end a press without a command.
  void SetEnabled(bool on);
  void Cancel();

  bool IsDelayRunning() const { return DelayPending && State == ButtonState::Pressed; }
  /// The delay before repetition is over.
  bool EndDelay();
  /// While this holds the command fires at every tick.
  bool IsRepeatRunning() const { return Repeating && State == ButtonState::Pressed; }

 private:
  ButtonFlags Flags;
  ButtonState State = ButtonState::Normal;
  bool Held = false;
  bool DelayPending = false;
  bool Repeating = false;
};

/// Every push button of the windows. It paints itself, either from a picture that holds its looks side by
/// side, or as a plate with a text, and sends its command straight to a target. A picture button also has a
/// caption, beside or under it, and a tool tip. To assistive tools it is a button that can be pressed; it
/// never takes the focus by itself.
///
/// Made in two steps: the object, then one of the Create operations. The target outlives it.
class CPaintedButton : public QAbstractButton {
 public:
  CPaintedButton(CCommandTarget& target, QWidget* parent);
  ~CPaintedButton() override;

  /// A picture button with its top left corner there, in the parent's coordinates, and of the size of one
  /// of its `imageCount` images: normal, pressed, under the pointer, disabled. A look without an image is
  /// the first one. The text with the picture's number gives caption and tool tip.
  void Create(QPoint corner, CommandId id, ButtonFlags flags, PictureId picture, int imageCount);

  /// A text button; `defaultLook` marks the one that a dialog suggests.
  void CreateText(const QRect& place, CommandId id, const QString& text, ButtonFlags flags, bool defaultLook);

  /// Changes the images, the caption and, unless a string was set for it, the tool tip. With `resize` the
  /// button takes the size of an image; one of another width leaves out or repeats columns beside the middle.
  void SetPicture(PictureId picture, int imageCount, bool resize);

  /// Takes the tool tip from another string.
  void SetTipString(StringId id);

  /// Whether the caption shows at all; it does at first.
  void EnableTip(bool on);
  void SetTipSide(TipSide side);

  /// How the caption is written: in which font, and shortened with an ellipsis to at most that many
  /// pixels.
  void SetCaptionForm(FontId font, int widest);

  /// The caption of a picture button, the text of a text button.
  QString GetText() const { return text(); }
  ButtonState GetState() const { return Press.GetState(); }
  /// While a command is sent: whether it comes of the button being held, not of a click.
  bool IsRepeating() const { return Press.IsRepeatRunning(); }
  CommandId GetCommand() const { return Command; }
  /// The size of one image, in pixels of the layout.
  const QSize& GetImageSize() const { return ImageSize; }

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void timerEvent(QTimerEvent* event) override;
  void changeEvent(QEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void moveEvent(QMoveEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  bool TipStays() const { return HasFlag(Press.GetFlags(), ButtonFlags::TipStays); }
  void Start(CommandId id, ButtonFlags flags);
  void ApplyState();
  void Fire();
  void TakePicture(PictureId picture, int imageCount);
  void TakeTexts(const QString& caption, const QString& tip);
  CButtonTip& GetTip();
  void ShowTip(bool on);
  void PlaceStayingTip();
  void PaintPicture(CDevicePainter& painter);
  void PaintText(CDevicePainter& painter);

  CCommandTarget& Target;
  CommandId Command{};
  CButtonPress Press;
  QBasicTimer DelayTimer;
  QBasicTimer RepeatTimer;

  PictureId Picture{};
  int ImageCount = 0;
  QSize ImageSize;
  bool HasTipString = false;

  bool TextForm = false;
  bool DefaultLook = false;

  QPointer<CButtonTip> Tip;  // a child of another widget, made when it is first shown
  bool TipEnabled = true;
  TipSide Side = TipSide::Above;
  FontId CaptionFont = FontId::Note;
  int WidestCaption = 0;  // 0: any width
};
