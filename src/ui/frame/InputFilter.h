#pragma once

#include <QObject>
#include <QPoint>
#include <functional>

#include "ui/frame/Keys.h"

class QKeyEvent;
class QWidget;
class QWindow;
struct Command;

/// Whom the filter tells of input.
struct InputHandlers {
  std::function<void(const Command& command, bool isRepeat)> OnAccelerator;
  std::function<void(QPoint place)> OnPointerMoved;  // to that place on the screen
  std::function<void()> OnPanelClicked;              // before the panel has the click
};

/// Sees every key and pointer event of the main window before any part of it does: it finds the commands'
/// accelerators, reports the moves of the pointer in full-screen mode, whatever lies below it, and swallows
/// all input while it is blocked. Dialogs, menus and lists, windows of their own, are left alone, but for the
/// repeats of a key that was pressed elsewhere.
///
/// A click on the panel is told before the panel has it, since it acts on the photo that the strip is about
/// to rest on. A double click counts as one only if both clicks are on the same part.
class CInputFilter : public QObject {
 public:
  /// `window` is the main window, `panel` the photo back in it.
  CInputFilter(QWidget& window, QWidget& panel, InputHandlers handlers);
  ~CInputFilter() override;

  void SetBlocked(bool on) { Blocked = on; }
  bool IsBlocked() const { return Blocked; }

  /// Whether the key was down already.
  bool IsRepeat(const QKeyEvent& press) const { return Keys.IsRepeat(press); }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  bool IsOfWindow(const QObject* object) const;
  bool AdmitKey(QWindow& receiving, const QKeyEvent& event);
  /// False for a double click on what has come under the pointer by the first click.
  bool AdmitClick(const QObject& watched, const QEvent& event);
  bool RunAccelerator(const QKeyEvent& event);

  QWidget& Window;
  QWidget& Panel;
  const InputHandlers Handlers;
  CHeldKeys Keys;
  bool Blocked = false;
  bool ClickArrives = false;             // the window has got it, its widgets haven't yet
  const QObject* ClickedPart = nullptr;  // by the last single click; only compared
};
