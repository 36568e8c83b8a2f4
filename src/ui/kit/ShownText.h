#pragma once

#include <QAccessible>
#include <QRect>

/// A text that can't be edited where it shows, for tools that read it by characters, words and lines.
class CShownText : public QAccessibleTextInterface {
 public:
  virtual QString GetShownText() const = 0;

  QString text(int start, int end) const final { return GetShownText().mid(start, end - start); }
  int characterCount() const final { return static_cast<int>(GetShownText().size()); }

  int selectionCount() const final { return 0; }
  void selection(int, int* start, int* end) const final { *start = *end = 0; }
  void addSelection(int, int) final {}
  void removeSelection(int) final {}
  void setSelection(int, int, int) final {}
  int cursorPosition() const final { return 0; }
  void setCursorPosition(int) final {}

  QRect characterRect(int) const final { return {}; }
  int offsetAtPoint(const QPoint&) const final { return -1; }
  void scrollToSubstring(int, int) final {}
  QString attributes(int, int* start, int* end) const final {
    *start = 0;
    *end = characterCount();
    return {};
  }
};
