#pragma once

#include <QMenu>
#include <QString>
#include <QWidget>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "ui/back/Completion.h"
#include "ui/back/FieldBox.h"
#include "ui/back/FieldForms.h"
#include "ui/back/FieldValue.h"
#include "ui/kit/Commands.h"

class CFieldText;
class CPaintedButton;
struct FieldChoice;

/// The time within which the desktop makes a window active again after a menu over it has closed.
inline constexpr std::chrono::milliseconds kWindowReturns(300);

/// One row of the photo back: a label, a value and, after it, a button that opens the list of earlier texts
/// or of the kinds of dates. A text that can be edited is edited in place. When the
/// edit box loses the focus its text is written to the catalog; only Cancel before that takes it back. A menu
/// or a list that opens ends no edit; leaving the window does.
///
/// While a job runs a field shows what it holds, and the end of an edit waits for the job's.
class CPhotoField : public QWidget, private CFieldListener, private CFieldBoxOwner, private CCommandTarget {
 public:
  CPhotoField(const FieldForm& form, QWidget* parent);
  ~CPhotoField() override;

  /// Shows a value, not owned; null for none. An open edit goes on with the new value.
  void SetValue(CFieldValue* value);
  CFieldValue* GetValue() const { return Value; }

  /// Shows a text in a field that has no value.
  void SetShownText(const QString& text);
  QString GetShownText() const;

  /// Begins to edit the text, in a field that can be edited and has a value.
  void StartEdit();
  /// Opens the list of the field that is being edited. False in a field without one.
  bool OpenListByKey();
  /// Called when an edit or the menu is about to open; it may give the field another value.
  std::function<void()> OnEditBegins;
  bool IsEditing() const;
  /// Writes what was typed, if it is another text; the box stays open.
  void CommitEdit();
  /// Commits and ends an edit, wherever the focus is; if `windowLeft` is set it goes to the window.
  void CloseEdit(bool windowLeft);
  /// Puts the text back that the edit began with, and selects it.
  void Cancel();

  /// Renews the text from the value.
  void ShowText();

  void SetLabelText(const QString& text);
  const QString& GetLabelText() const { return LabelText; }
  /// The width of the label's text.
  int GetNaturalLabelWidth() const;
  /// -1 for the natural width.
  void SetLabelWidth(int width);
  int GetLabelWidth() const { return LabelWidth >= 0 ? LabelWidth : GetNaturalLabelWidth(); }
  void SetLines(int count);

  /// The menu that is open, else null.
  QMenu* GetMenu() const;
  /// Null in a field without one.
  CPaintedButton* GetButton() const { return Button.get(); }
  CFieldText& GetTextWindow() const { return *Text; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  /// The focus that Tab brings begins an edit.
  void focusInEvent(QFocusEvent* event) override;

 private:
  void OnValueChanged() override;
  void OnPutIn() override;
  bool OnReplacing(const QString& character) override;
  void OnBoxLeft(bool windowLeft) override;
  void OnCommand(CommandId id) override;

  /// Whether an edit or the menu may open now.
  bool BeginEdit();
  void FinishEdit(bool windowLeft);
  void EndEdit();
  void TakeText(const std::string& text);
  void TakeNumber(const std::string& text);
  void TakeDate(const std::string& text);
  void Store();

  QString MakeShownText() const;
  QString MakeEditText() const;
  std::string GetTextNow() const;
  void SetBoxText(const std::string& text);

  void RefreshButton();
  void OpenMenu(bool byKey);
  void OnMenuClosed();
  void Choose(const FieldChoice& choice);
  void Layout();

  const FieldForm Form;
  const FieldStyle Style;
  CFieldValue* Value = nullptr;
  QString LabelText;
  int LabelWidth = -1;
  bool Updating = false;                  // the field itself is changing the value
  std::optional<CCompletion> Completion;  // of this edit, made when it is first needed

  std::unique_ptr<CFieldText> Text;
  std::unique_ptr<CPaintedButton> Button;
  std::unique_ptr<QMenu> Menu;  // the last one that was open
};
