#pragma once

#include <QWidget>
#include <functional>
#include <memory>

#include "ui/controls/DropControlModel.h"
#include "ui/controls/DropText.h"
#include "ui/kit/Flags.h"
#include "ui/kit/FontTable.h"
#include "ui/kit/PaintedGroup.h"

class CDropList;
class QLineEdit;

/// What a drop control can do; combined with `|`.
enum class DropStyle : unsigned {
  None = 0,
  EditBox = 1,        // its text can be typed
  ShortensPaths = 2,  // a text with "/" is shortened in the middle
  Images = 4,         // characters below 32 at a text's ends are small pictures
  History = 8,        // a typed text is remembered in its histories
  SelectsWhole = 32,  // the edit box opens with its text selected, else with the caret where the click was
};

template <>
inline constexpr bool kIsFlagSet<DropStyle> = true;

/// A box that shows what was chosen and opens a list to choose from; with an edit box it also takes typed
/// text. A click in the text of such a control opens the edit box, a click anywhere else the list. The edit
/// box has the keyboard's focus while it is open, and losing that ends the edit: the typed text is then the
/// control's. Opening the list ends no edit but the control's own.
///
/// By Tab the focus comes to the control itself. Then Space opens the list, Up and Down go along the items of
/// a list that is fixed, and Activate(), which the window calls for Enter, opens the edit box or else the
/// list.
class CDropControl : public QWidget, public CPaintedGroup {
 public:
  /// `label` names the control to assistive tools. Its height is its own, its width that of a layout.
  CDropControl(const QString& label, DropStyle style, QWidget* parent);
  ~CDropControl() override;

  /// The pictures of a control that has Images.
  void SetImages(const DropImages& images) { Images = images; }
  /// What the control shows while its text is empty.
  void SetPrompt(const std::string& prompt) { Prompt = prompt; }

  /// Called after another item, or an action, has been picked.
  std::function<void()> OnChange;
  /// Called when an edit is over, in whatever way.
  std::function<void()> OnEditEnd;
  /// Called when the edit box is about to open.
  std::function<void()> OnEditBegins;

  /// To be followed by Refresh() where a call changes what the control shows.
  CDropControlModel& GetModel() { return Model; }
  void Refresh();

  /// Opens the list, with a row marked, and takes the focus.
  void OpenListByKey();
  /// Opens the edit box, or the list of a control that has none.
  void Activate();

  bool IsEditing() const { return EditBox != nullptr; }
  /// Puts back the text from before the edit, and selects it. The edit goes on.
  void RestoreText();
  /// Ends the edit by giving the focus to the window.
  void EndEdit();

  /// The open list, else null.
  CDropList* GetOpenList() const;

  // For assistive tools.
  bool HasEditBox() const { return Has(DropStyle::EditBox); }
  QString GetSpelledText() const;
  std::vector<GroupPart> ListParts() const override;
  QAccessibleInterface* MakeFace() override;

  static int GetHeight();

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  bool Has(DropStyle style) const { return HasFlag(Style, style); }
  QRect GetTextArea() const;
  DropTextStyle GetTextStyle() const;
  QRect GetEditArea() const;
  void OpenList(bool byKey);
  void CloseList(int row);
  void StepChoice(int step);
  void OpenEdit();
  void TellExpanded();
  void FinishEdit();

  const DropStyle Style;
  DropImages Images;
  std::string Prompt;
  CDropControlModel Model;
  QString ToldText;                    // when the control was refreshed last
  std::unique_ptr<CDropList> List;     // made when it is first opened
  std::unique_ptr<QLineEdit> EditBox;  // while the text is edited
};
