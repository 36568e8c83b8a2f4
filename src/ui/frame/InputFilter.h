#pragma once

#include <QObject>

class QKeyEvent;
class CMainFrame;

/// Sees every key and pointer event of the main window before any part of it does: it finds the commands'
/// accelerators, reports the moves of the pointer in full-screen mode, whatever lies below it, and swallows
/// all input while it is blocked. Dialogs, menus and lists, windows of their own, are left alone.
class CInputFilter : public QObject {
 public:
  explicit CInputFilter(CMainFrame& frame);
  ~CInputFilter() override;

  void SetBlocked(bool on) { Blocked = on; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  bool IsOfFrame(const QObject* object) const;
  bool RunAccelerator(const QKeyEvent& event);

  CMainFrame& Frame;
  bool Blocked = false;
};
