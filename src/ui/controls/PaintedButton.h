#pragma once

#include <QAbstractButton>
#include <QBasicTimer>
#include <QPointer>
#include <QSize>

#include "resources/PictureIds.h"
#include "resources/StringIds.h"
#include "ui/controls/ButtonPress.h"
#include "ui/controls/ButtonTip.h"
#include "ui/kit/AssistiveTools.h"
#include "ui/kit/Commands.h"

class CDevicePainter;

/// Every push button of the windows. It paints itself, either from a picture that holds its looks side by
/// side, or as a plate with a text, and sends its command straight to a target. A picture button also has a
/// caption, beside or under it, and a tool tip.
///
/// It never takes the focus by a click. A text button takes it by Tab, a picture button if its row lets it
/// (TakeFocusByTab). With the focus it is pressed by Space and Enter, and leaves all other keys to its
/// parent.
///
/// Made in two steps: the object, then one of the Create operations. The target outlives it.
class CPaintedButton : public QAbstractButton, public CFaceMaker {
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

  void TakeFocusByTab() { setFocusPolicy(Qt::TabFocus); }
  /// The plate in the picture is a circle; so is the frame that shows the focus.
  void SetRound() { Round = true; }

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
  /// The key that the tool tip names; empty if it names none.
  const QString& GetKeyName() const { return KeyName; }
  ButtonState GetState() const { return Press.GetState(); }
  /// While a command is sent: whether it comes of the button being held, not of a click.
  bool IsRepeating() const { return Press.IsRepeatRunning(); }
  CommandId GetCommand() const { return Command; }
  bool HasDefaultLook() const { return DefaultLook; }
  /// The size of one image, in pixels of the layout.
  const QSize& GetImageSize() const { return ImageSize; }

  QAccessibleInterface* MakeFace() override;

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void timerEvent(QTimerEvent* event) override;
  void changeEvent(QEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void moveEvent(QMoveEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  bool TipStays() const { return HasFlag(Press.GetFlags(), ButtonFlags::TipStays); }
  /// What of the caption has room.
  QString GetShownCaption() const;
  void Start(CommandId id, ButtonFlags flags);
  void ApplyState();
  void EndPress();
  void Fire();
  void TakePicture(PictureId picture, int imageCount);
  void TakeTexts(const QString& caption, const QString& tip);
  void TellTexts(const QString& tip);
  CButtonTip& GetTip();
  void ShowTip(bool on);
  void PlaceStayingTip();
  void PaintPicture(CDevicePainter& painter);
  void PaintText(CDevicePainter& painter);
  void PaintFocus(CDevicePainter& painter) const;

  CCommandTarget& Target;
  CommandId Command{};
  CButtonPress Press;
  QBasicTimer DelayTimer;
  QBasicTimer RepeatTimer;

  PictureId Picture{};
  int ImageCount = 0;
  QSize ImageSize;
  bool HasTipString = false;
  QString TipText;  // of the tool tip, which is kept with it in another form
  QString KeyName;

  bool HeldBySpace = false;
  quint64 KeyReleaseTime = 0;  // 0: unknown

  bool TextForm = false;
  bool DefaultLook = false;
  bool Round = false;

  QPointer<CButtonTip> Tip;  // a child of another widget, made when it is first shown
  bool TipEnabled = true;
  TipSide Side = TipSide::Above;
  FontId CaptionFont = FontId::Note;
  int WidestCaption = 0;  // 0: any width
};
