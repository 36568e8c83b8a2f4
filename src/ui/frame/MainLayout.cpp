#include "ui/frame/MainLayout.h"

namespace {

constexpr int kMargin = 5;
constexpr int kToolRowHeight = 55;
constexpr int kFullScreenToolsMargins = 50;  // both sides together
constexpr int kPhotoBackTop = 34;
constexpr int kPhotoBackLeft = 270;  // from the window's right edge
constexpr int kPhotoBackWidth = 267;
constexpr int kHelpMargin = 3;
constexpr QSize kLogo(265, 35);

}  // namespace

MainLayout LayOutMainWindow(QSize client, int stripHeight, QSize helpButton) {
  const int stripTop = client.height() - stripHeight;
  MainLayout layout;
  layout.Strip = QRect(0, stripTop, client.width(), stripHeight);
  layout.PhotoBack = QRect(client.width() - kPhotoBackLeft, kPhotoBackTop, kPhotoBackWidth,
                           stripTop - kPhotoBackTop - kMargin);
  layout.TabBar = QRect(kMargin, kMargin, layout.PhotoBack.left() - 2 * kMargin,
                        stripTop - kMargin - kToolRowHeight - kMargin);
  layout.ToolRow = QRect(layout.TabBar.left(), layout.TabBar.top() + layout.TabBar.height(),
                         layout.TabBar.width(), kToolRowHeight);
  layout.HelpButton = QRect(
      QPoint(client.width() - kHelpMargin - helpButton.width(), (kPhotoBackTop - helpButton.height()) / 2),
      helpButton);
  layout.Logo = QRect(QPoint(layout.PhotoBack.left(), kMargin), kLogo);
  return layout;
}

QRect FullScreenToolRow(QSize client, int contentWidth) {
  const int width = contentWidth + kFullScreenToolsMargins;
  return {client.width() - width, client.height() - kToolRowHeight, width, kToolRowHeight};
}

QSize MinimumMainWindowSize(bool smallScreen) { return {800, smallScreen ? 550 : 600}; }
