#pragma once

#include <QImage>
#include <QPointer>
#include <QProgressBar>
#include <QWidget>

#include "sharing/UploadProgress.h"
#include "ui/controls/PaintedButton.h"
#include "ui/kit/Commands.h"
#include "ui/kit/PaintedGroup.h"

/// A bar of the upload window, with its label over it.
class CUploadBar : public QProgressBar {
 public:
  CUploadBar(const QRect& place, const QString& label, QWidget* parent);

 protected:
  void paintEvent(QPaintEvent* event) override;
};

/// Keeps a window disabled while it lives, and gives it its focus back.
class CDisabledWindow {
 public:
  explicit CDisabledWindow(QWidget& window);
  ~CDisabledWindow();
  CDisabledWindow(const CDisabledWindow&) = delete;
  CDisabledWindow& operator=(const CDisabledWindow&) = delete;

 private:
  QWidget& Window;
  const QPointer<QWidget> Focus;
};

/// Shows how an upload goes: the photo under way, bars for it and for all of them, and a button to stop; Esc
/// stops, too. Made visible, in the middle of the main window, which is disabled until this one goes. Window
/// thread.
class CUploadWindow : public QWidget, public CPaintedGroup, public CUploadProgress, private CCommandTarget {
 public:
  explicit CUploadWindow(QWidget& mainWindow);

  bool SetTotal(int count) override;
  bool SetPhoto(int index, const PhotoToUpload& photo) override;
  bool SetPercent(int percent) override;
  bool IsStopped() const override { return Stopped; }

  QAccessible::Role GetGroupRole() const override { return QAccessible::Dialog; }
  std::vector<GroupPart> ListParts() const override;

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

 private:
  void OnCommand(CommandId id) override;
  void ShowStatus();

  const CDisabledWindow MainWindow;
  UploadStatus Status;
  QImage Thumbnail;
  bool Stopped = false;
  CUploadBar PhotoBar;
  CUploadBar OverallBar;
  CPaintedButton StopButton;
};
