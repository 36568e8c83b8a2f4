#pragma once

#include <QString>
#include <memory>

class QFont;
class QWidget;

/// What the edit box of a field tells the field.
class CFieldBoxOwner {
 public:
  virtual ~CFieldBoxOwner() = default;

  /// Something was put in before the caret, by a key, an input method or the clipboard; not for what was
  /// deleted or set. Told by boxes of one line.
  virtual void OnPutIn() = 0;
  /// A character is about to replace the selection. True if the owner has dealt with it.
  virtual bool OnReplacing(const QString& character) = 0;
  /// The box has lost the focus, other than to a menu of its own; `windowLeft` if the whole window has.
  virtual void OnBoxLeft(bool windowLeft) = 0;
};

/// The box in which the text of a field is edited: one line, or several. It takes every character of every
/// language, through input methods too; line feeds that are dropped or pasted into it turn into blanks, and
/// Enter is left to the window. Positions count QChars.
class CFieldBox {
 public:
  virtual ~CFieldBox() = default;

  virtual QWidget& GetWidget() = 0;

  virtual QString GetText() const = 0;
  /// The caret goes to the end, and there is nothing to undo.
  virtual void SetText(const QString& text) = 0;
  virtual int GetCaret() const = 0;
  virtual bool HasSelection() const = 0;
  virtual void SelectAll() = 0;
  /// Puts a text behind the caret and selects it.
  virtual void AddSelected(const QString& text) = 0;
};

/// Makes a box as a hidden child of `parent`, which deletes it. Each box has an owner of its own.
CFieldBox* MakeFieldBox(CFieldBoxOwner& owner, bool severalLines, const QFont& font, QWidget* parent);
