#pragma once

#include <QRect>
#include <QSize>

/// Where the parts of the main window stand, in pixels of the layout.
struct MainLayout {
  QRect Strip;
  QRect TabBar;
  QRect ToolRow;
  QRect PhotoBack;
  QRect HelpButton;
  QRect Logo;
};

MainLayout LayOutMainWindow(QSize client, int stripHeight, QSize helpButton);

/// The button row in full-screen mode, by the width of its content.
QRect FullScreenToolRow(QSize client, int contentWidth);

/// The smallest size of the main window.
QSize MinimumMainWindowSize(bool smallScreen);
