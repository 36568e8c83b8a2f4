#include "ui/back/FieldBox.h"

#include <QFocusEvent>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QPaintEvent>
#include <QPalette>
#include <QPlainTextEdit>
#include <QScopedValueRollback>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>

#include "ui/kit/Colours.h"

namespace {

bool IsEnter(int key) { return key == Qt::Key_Return || key == Qt::Key_Enter; }

QString WithoutLineFeeds(QString text) {
  text.replace(QStringLiteral("\r\n"), QStringLiteral(" "));
  for (const QChar feed :
       {QChar(u'\n'), QChar(u'\r'), QChar(QChar::LineSeparator), QChar(QChar::ParagraphSeparator)}) {
    text.replace(feed, u' ');
  }
  return text;
}

QPalette MakePalette(const QWidget& widget) {
  QPalette palette = widget.palette();
  palette.setColor(QPalette::Base, Qt::transparent);
  palette.setColor(QPalette::Text, colours::kInk);
  palette.setColor(QPalette::Highlight, colours::kSelection);
  palette.setColor(QPalette::HighlightedText, colours::kInk);
  return palette;
}

/// What both kinds of boxes tell their owner.
template <typename Editor>
class CWatchedEditor : public Editor, public CFieldBox {
 public:
  CWatchedEditor(CFieldBoxOwner& owner, const QFont& font, QWidget* parent) : Editor(parent), Owner(owner) {
    this->setFont(font);
    this->setPalette(MakePalette(*this));
    this->setFocusPolicy(Qt::ClickFocus);
    this->hide();
  }

  QWidget& GetWidget() override { return *this; }

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    if (IsEnter(event->key())) return event->ignore();
    const QString typed = event->text();
    if (typed.size() == 1 && HasSelection() && Owner.OnReplacing(typed)) return;
    Editor::keyPressEvent(event);
  }

  void inputMethodEvent(QInputMethodEvent* event) override {
    const QString& committed = event->commitString();
    const bool isTyped = committed.size() == 1 && event->preeditString().isEmpty();
    // Input methods and keyboards on the screen send plain characters this way too.
    if (isTyped && event->replacementLength() == 0 && HasSelection() && Owner.OnReplacing(committed)) {
      return event->accept();
    }
    Editor::inputMethodEvent(event);
  }

  void focusOutEvent(QFocusEvent* event) override {
    Editor::focusOutEvent(event);
    if (event->reason() == Qt::PopupFocusReason) return;
    Owner.OnBoxLeft(event->reason() == Qt::ActiveWindowFocusReason);
  }

  CFieldBoxOwner& GetOwner() const { return Owner; }

 private:
  CFieldBoxOwner& Owner;
};

class CLineBox final : public CWatchedEditor<QLineEdit> {
 public:
  CLineBox(CFieldBoxOwner& owner, const QFont& font, QWidget* parent) : CWatchedEditor(owner, font, parent) {
    setFrame(false);
    setTextMargins(-kInnerMargin, 0, -kInnerMargin, 0);
    connect(this, &QLineEdit::textEdited, this, &CLineBox::NoteEdit);
    const auto noteStart = [this] { EditStart = hasSelectedText() ? selectionStart() : cursorPosition(); };
    connect(this, &QLineEdit::cursorPositionChanged, this, noteStart);
    connect(this, &QLineEdit::selectionChanged, this, noteStart);
  }

  QString GetText() const override {
    // Only a text that was changed loses its line feeds.
    return isModified() ? WithoutLineFeeds(text()) : text();
  }
  void SetText(const QString& text) override { setText(text); }
  int GetCaret() const override { return cursorPosition(); }
  bool HasSelection() const override { return hasSelectedText(); }
  void SelectAll() override { selectAll(); }
  void AddSelected(const QString& text) override {
    const QScopedValueRollback silent(Silent, true);
    const int caret = cursorPosition();
    insert(text);
    setSelection(caret + static_cast<int>(text.size()), -static_cast<int>(text.size()));
  }

 protected:
  void inputMethodEvent(QInputMethodEvent* event) override {
    {
      // The base class moves the caret before it signals the edit.
      const QScopedValueRollback silent(Silent, true);
      CWatchedEditor::inputMethodEvent(event);
    }
    if (!event->commitString().isEmpty() && event->preeditString().isEmpty()) GetOwner().OnPutIn();
  }

 private:
  /// A change that only deletes leaves the caret where the change began, or before.
  void NoteEdit() {
    if (!Silent && cursorPosition() > EditStart) GetOwner().OnPutIn();
  }

  static constexpr int kInnerMargin = 2;  // that the toolkit leaves at each side

  int EditStart = 0;  // where the next change begins
  bool Silent = false;
};

class CWrappedBox final : public CWatchedEditor<QPlainTextEdit> {
 public:
  CWrappedBox(CFieldBoxOwner& owner, const QFont& font, QWidget* parent)
      : CWatchedEditor(owner, font, parent) {
    setFrameShape(QFrame::NoFrame);
    setTabChangesFocus(true);
    document()->setDocumentMargin(0);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setAutoFillBackground(false);
  }

  QString GetText() const override {
    // toPlainText would turn blanks that don't break into plain ones.
    return document()->toRawText().replace(QChar(QChar::ParagraphSeparator), u'\n');
  }
  void SetText(const QString& text) override {
    setPlainText(text);
    moveCursor(QTextCursor::End);
  }
  int GetCaret() const override { return textCursor().position(); }
  bool HasSelection() const override { return textCursor().hasSelection(); }
  void SelectAll() override { selectAll(); }
  void AddSelected(const QString& text) override {
    QTextCursor cursor = textCursor();
    const int caret = cursor.position();
    cursor.insertText(text);
    cursor.setPosition(caret, QTextCursor::KeepAnchor);
    setTextCursor(cursor);
  }

 protected:
  void paintEvent(QPaintEvent* event) override {
    // Without this, the lower parts of letters of the line above would show.
    const QRect lines = viewport()->rect().adjusted(0, FindFirstLine(), 0, 0);
    QPaintEvent whole(event->rect() & lines);
    QPlainTextEdit::paintEvent(&whole);
  }

  void insertFromMimeData(const QMimeData* source) override {
    textCursor().insertText(WithoutLineFeeds(source->text()));
    ensureCursorVisible();
  }

 private:
  /// The top of the first line that isn't cut at the upper edge.
  int FindFirstLine() const {
    const QTextBlock block = firstVisibleBlock();
    const double top = blockBoundingGeometry(block).translated(contentOffset()).top();
    for (int i = 0; i < block.layout()->lineCount(); ++i) {
      const double line = top + block.layout()->lineAt(i).y();
      if (line >= 0) return static_cast<int>(line);
    }
    return 0;
  }
};

}  // namespace

CFieldBox* MakeFieldBox(CFieldBoxOwner& owner, bool severalLines, const QFont& font, QWidget* parent) {
  if (severalLines) return new CWrappedBox(owner, font, parent);
  return new CLineBox(owner, font, parent);
}
