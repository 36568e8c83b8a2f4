#pragma once

#include <QObject>

#include "ui/frame/HeldKeys.h"

class QKeyEvent;
class QWindow;
class CMainFrame;

/// Sees every key and pointer event of the main window before any part of it does: it finds the commands'
/// accelerators, reports the moves of the pointer in full-screen mode, whatever lies below it, and swallows
/// all input while it is blocked. Dialogs, menus and lists, windows of their own, are left alone, but for the
/// repeats of a key that was pressed elsewhere.
///
/// What is clicked on the panel acts on the photo that the strip is about to rest on, as what a key does; and
/// a double click is one where both clicks are on the same part.
class CInputFilter : public QObject {
 public:
  explicit CInputFilter(CMainFrame& frame);
  ~CInputFilter() override;

  void SetBlocked(bool on) { Blocked = on; }

  /// Whether the key was down already.
  bool IsRepeat(const QKeyEvent& press) const { return Keys.IsRepeat(press); }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  bool IsOfFrame(const QObject* object) const;
  bool AdmitKey(QWindow& window, const QKeyEvent& event);
  /// False for a double click on what has come under the pointer by the first click.
  bool AdmitClick(const QObject& watched, const QEvent& event);
  bool RunAccelerator(const QKeyEvent& event);

  CMainFrame& Frame;
  CHeldKeys Keys;
  bool Blocked = false;
  bool ClickArrives = false;             // at the window; its widgets haven't had it
  const QObject* ClickedPart = nullptr;  // by the last single click; to compare with
};
