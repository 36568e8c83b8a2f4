#include "ui/search/SearchProgressWindow.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QScreen>
#include <algorithm>

#include "base/Texts.h"
#include "ui/kit/Colours.h"
#include "ui/kit/FontTable.h"
#include "ui/kit/InputBlock.h"
#include "ui/kit/Pictures.h"
#include "ui/kit/QtText.h"
#include "ui/kit/SmallWindow.h"

CSearchProgressWindow::CSearchProgressWindow(bool showSplash, QWidget* parent)
    : QWidget(parent, Qt::Dialog | Qt::FramelessWindowHint),
      ShowSplash(showSplash),
      Lines{LoadExpandedString(StringId::SplashProduct), LoadExpandedString(StringId::SplashVersion),
            LoadExpandedString(StringId::SplashLegal1), LoadExpandedString(StringId::SplashLegal2),
            LoadExpandedString(StringId::SplashLegal3)},
      ToldBar(ToQString(LoadExpandedString(StringId::SearchWindowTitle)), this),
      StopButton(*this, this) {
  setObjectName(window_names::kSearchProgress);
  setWindowTitle(ToldBar.accessibleName());
  setAccessibleName(windowTitle());
  setWindowIcon(MakeProgramIcon());
  setFixedSize(kProgressWidth, ProgressHeight(ShowSplash));

  ShapeWindow(*this, ProgressOutline(ShowSplash));

  ToldBar.setGeometry(ProgressFrame(ShowSplash));
  ToldBar.Tell(0, 0, GetBarText());
  setFocusPolicy(Qt::StrongFocus);
  StopButton.setObjectName(QStringLiteral("StopSearching"));
  StopButton.EnableTip(false);
  StopButton.CreateText(ProgressStopButton(ShowSplash), CommandId::StopSearching,
                        ToQString(LoadExpandedString(StringId::StopSearching)), ButtonFlags::None, false);
}

void CSearchProgressWindow::ShowCentered() {
  if (isVisible()) return;
  const QWidget* owner = parentWidget();
  const QRect around = owner != nullptr ? owner->frameGeometry() : screen()->geometry();
  move(around.center() - rect().center());
  show();
  raise();
  activateWindow();
  setFocus();
}

void CSearchProgressWindow::SetTotal(int total) {
  Total = total;
  ToldBar.Tell(0, std::max(Total, 0), GetBarText());
  repaint();
}

void CSearchProgressWindow::SetCurrent(int index, const QImage& picture) {
  Current = index;
  ToldBar.Tell(index + 1, std::max(Total, 0), GetBarText());
  QRegion changed = ProgressBar(ShowSplash);
  if (!picture.isNull()) {
    Pictures[NextSlot] = QPixmap::fromImage(picture);
    changed += ProgressCell(ShowSplash, static_cast<int>(NextSlot));
    NextSlot = (NextSlot + 1) % Pictures.size();
  }
  repaint(changed);
}

std::vector<GroupPart> CSearchProgressWindow::ListParts() const {
  std::vector<GroupPart> parts;
  for (int i = 0; ShowSplash && i < kProductLines; ++i) {
    const QString line = ToQString(Lines[static_cast<std::size_t>(i)]).trimmed();
    if (!line.isEmpty()) parts.push_back({.Text = line, .Place = ProgressProductLine(i, Lines.back())});
  }
  parts.push_back({.Text = GetBarText(), .Place = ProgressBar(ShowSplash)});
  parts.push_back({&ToldBar});
  parts.push_back({&StopButton});
  return parts;
}

void CSearchProgressWindow::paintEvent(QPaintEvent* event) {
  QPainter painter(this);
  painter.setClipRegion(event->region());
  const auto background = ShowSplash ? PictureId::SearchBackgroundWithSplash : PictureId::SearchBackground;
  DrawWindowPicture(painter, *this, background);
  painter.setPen(Qt::black);
  if (ShowSplash) PaintProductLines(painter);
  PaintBar(painter);
  PaintCells(painter);
}

void CSearchProgressWindow::PaintProductLines(QPainter& painter) const {
  painter.setFont(GetFont(FontId::Band));
  for (int i = 0; i < kProductLines; ++i) {
    painter.drawText(ProgressProductLine(i, Lines.back()),
                     Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                     ToQString(Lines[static_cast<std::size_t>(i)]));
  }
}

QString CSearchProgressWindow::GetBarText() const {
  if (Total <= 0 || Current < 0) return ToQString(LoadExpandedString(StringId::PleaseWaitSearching));
  return ToQString(FormatString(StringId::PhotosFoundPleaseWait, Total));
}

void CSearchProgressWindow::PaintBar(QPainter& painter) const {
  // Four lines of one pixel each, whatever the screen's ratio.
  const QRect frame = ProgressFrame(ShowSplash);
  QRegion lines = frame;
  lines -= frame.adjusted(1, 1, -1, -1);
  for (const QRect& line : lines) painter.fillRect(line, Qt::black);

  const QRect bar = ProgressBar(ShowSplash);
  QRect filled = bar;
  filled.setWidth(ProgressFill(bar.width(), Current, Total));
  painter.fillRect(filled, colours::kProgress);
  painter.setFont(GetFont(FontId::Small));  // room for a count of six digits
  painter.drawText(bar, Qt::AlignCenter | Qt::TextSingleLine, GetBarText());
}

void CSearchProgressWindow::PaintCells(QPainter& painter) const {
  for (int i = 0; i < kProgressCells; ++i) {
    const QRect cell = ProgressCell(ShowSplash, i);
    const QPixmap& picture = Pictures[static_cast<std::size_t>(i)];
    painter.fillRect(cell, colours::kEmptyCell);
    if (picture.isNull()) continue;
    painter.drawPixmap(FitIntoProgressCell(picture.deviceIndependentSize().toSize(), cell), picture);
  }
}

void CSearchProgressWindow::OnCommand(CommandId id) {
  if (id == CommandId::StopSearching) RequestStop();
}

void CSearchProgressWindow::keyPressEvent(QKeyEvent* event) {
  StopRequested = event->key() == Qt::Key_Escape;
}

void CSearchProgressWindow::closeEvent(QCloseEvent* event) {
  // The search's owner takes the window away, once the search has stopped.
  RequestStop();
  event->ignore();
}
