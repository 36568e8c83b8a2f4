#include "ui/sharing/UploadWindow.h"

#include <QApplication>
#include <QCloseEvent>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QRegion>
#include <utility>

#include "catalog/Catalog.h"
#include "imaging/Image.h"
#include "ui/kit/Colours.h"
#include "ui/kit/DevicePainter.h"
#include "ui/kit/FontTable.h"
#include "ui/kit/InputBlock.h"
#include "ui/kit/Pictures.h"
#include "ui/kit/QtText.h"
#include "ui/kit/SmallWindow.h"
#include "ui/kit/ToolTips.h"

namespace {

// Pixels.
constexpr QSize kWindow(308, 193);
constexpr QRect kOutline[] = {
    {3, 0, 302, 1}, {1, 1, 306, 2}, {0, 3, 308, 187}, {1, 190, 306, 2}, {3, 192, 302, 1}};
constexpr QRect kThumbnail(17, 54, 139, 105);
constexpr QRect kTopLine(171, 51, 120, 14);
constexpr QRect kInfoLine(171, 65, 120, 14);
constexpr QRect kPhotoBar(171, 82, 120, 17);
constexpr QRect kOverallBar(171, 110, 120, 17);
constexpr QRect kTitle(17, 160, 139, 14);
constexpr QRect kStopButton(176, 154, 107, 21);

constexpr int kTextFlags = Qt::AlignCenter | Qt::TextSingleLine;

QRegion MakeOutline() {
  QRegion outline;
  for (const QRect& part : kOutline) outline += part;
  return outline;
}

QImage LoadThumbnail(std::int32_t assetId, double pixelRatio) {
  CCatalog* catalog = CCatalog::GetInstance();
  if (catalog == nullptr) return {};
  const auto stored = catalog->FindAssetById(assetId).LoadThumbnail();
  return stored ? FitToImage(*stored, kThumbnail.size(), pixelRatio, Enlarging::Allowed) : QImage();
}

/// A line that is too long is shortened in the middle, so that the end of a name still shows.
void DrawLine(QPainter& painter, const QRect& place, const std::string& text) {
  const QString line = painter.fontMetrics().elidedText(ToQString(text), Qt::ElideMiddle, place.width());
  painter.drawText(place, kTextFlags, line);
}

}  // namespace

CUploadBar::CUploadBar(const QRect& place, const QString& label, QWidget* parent) : QProgressBar(parent) {
  setGeometry(place);
  setFormat(label);
  setAccessibleName(label);
}

void CUploadBar::paintEvent(QPaintEvent*) {
  CDevicePainter painter(*this);
  const QRect area = painter.GetArea();
  const int line = painter.Scaled(1);
  QRect filled = area.adjusted(line, line, -line, -line);
  painter.Fill(area, colours::kOutline);
  painter.Fill(filled, colours::kEmptyCell);
  filled.setWidth(filled.width() * value() / 100);
  painter.Fill(filled, colours::kProgress);
  painter.DrawText(area, kTextFlags, GetFont(FontId::Band), Qt::black, format());
}

CDisabledWindow::CDisabledWindow(QWidget& window) : Window(window), Focus(window.focusWidget()) {
  Window.setEnabled(false);
}

CDisabledWindow::~CDisabledWindow() {
  Window.setEnabled(true);
  if (Focus) Focus->setFocus();
}

CUploadWindow::CUploadWindow(QWidget& mainWindow)
    : QWidget(&mainWindow, Qt::Dialog | Qt::FramelessWindowHint),
      MainWindow(mainWindow),
      PhotoBar(kPhotoBar, LoadWindowText(StringId::UploadingPhoto), this),
      OverallBar(kOverallBar, LoadWindowText(StringId::OverallProgress), this),
      StopButton(*this, this) {
  setObjectName(window_names::kUploadProgress);
  setWindowTitle(LoadWindowText(StringId::UploadWindowTitle));
  setAccessibleName(windowTitle());
  setWindowIcon(MakeProgramIcon());
  setFixedSize(kWindow);
  setEnabled(true);  // the main window isn't

  ShapeWindow(*this, MakeOutline());
  setFocusPolicy(Qt::StrongFocus);
  StopButton.EnableTip(false);
  StopButton.CreateText(kStopButton, CommandId::StopUploading, LoadWindowText(StringId::StopUploading),
                        ButtonFlags::None, false);
  CentreOn(*this, mainWindow);
  show();
  activateWindow();
  setFocus();
}

bool CUploadWindow::SetTotal(int count) {
  Status.SetTotal(count);
  ShowStatus();
  return !Stopped;
}

bool CUploadWindow::SetPhoto(int index, const PhotoToUpload& photo) {
  Status.SetPhoto(index, photo);
  Thumbnail = LoadThumbnail(photo.AssetID, devicePixelRatioF());
  ShowStatus();
  return !Stopped;
}

bool CUploadWindow::SetPercent(int percent) {
  Status.SetPercent(percent);
  PhotoBar.setValue(Status.PhotoPercent);
  OverallBar.setValue(Status.OverallPercent);
  return !Stopped;
}

void CUploadWindow::ShowStatus() {
  PhotoBar.setValue(Status.PhotoPercent);
  OverallBar.setValue(Status.OverallPercent);
  PhotoBar.setAccessibleDescription(ToQString(Status.Title));
  OverallBar.setAccessibleDescription(ToQString(Status.TopLine));
  update();
}

std::vector<GroupPart> CUploadWindow::ListParts() const {
  std::vector<GroupPart> parts;
  const std::pair<const std::string&, const QRect&> lines[] = {
      {Status.TopLine, kTopLine}, {Status.InfoLine, kInfoLine}, {Status.Title, kTitle}};
  for (const auto& [text, place] : lines) {
    if (!text.empty()) parts.push_back({.Text = ToQString(text), .Place = place});
  }
  for (const QWidget* part :
       {static_cast<const QWidget*>(&PhotoBar), static_cast<const QWidget*>(&OverallBar),
        static_cast<const QWidget*>(&StopButton)}) {
    parts.push_back({part});
  }
  return parts;
}

bool CUploadWindow::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QWidget::event(event);
  auto& help = static_cast<QHelpEvent&>(*event);
  const bool onTitle = kTitle.contains(help.pos()) || kThumbnail.contains(help.pos());
  AnswerToolTip(help, onTitle ? ToQString(Status.Title) : QString(), *this, kTitle | kThumbnail);
  return true;
}

void CUploadWindow::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  DrawWindowPicture(painter, *this, PictureId::UploadBackground);
  if (Thumbnail.isNull()) {
    painter.fillRect(kThumbnail, colours::kEmptyCell);
  } else {
    QRect place(QPoint(), Thumbnail.deviceIndependentSize().toSize());
    place.moveCenter(kThumbnail.center());
    painter.drawImage(place, Thumbnail);
  }
  painter.setPen(Qt::black);
  painter.setFont(GetFont(FontId::Band));
  DrawLine(painter, kTopLine, Status.TopLine);
  DrawLine(painter, kInfoLine, Status.InfoLine);
  DrawLine(painter, kTitle, Status.Title);
}

void CUploadWindow::OnCommand(CommandId id) {
  if (id == CommandId::StopUploading) Stopped = true;
}

void CUploadWindow::keyPressEvent(QKeyEvent* event) {
  const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (event->key() == Qt::Key_Escape) Stopped = true;
  if (isEnter && StopButton.hasFocus() && !event->isAutoRepeat()) StopButton.click();
}

void CUploadWindow::closeEvent(QCloseEvent* event) {
  // The run takes the window away once it has stopped.
  Stopped = true;
  event->ignore();
}
