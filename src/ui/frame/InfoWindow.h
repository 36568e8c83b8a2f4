#pragma once

class QWidget;

/// Shows the product's name and version and the ways to help, feedback, offers and web site, in the middle of
/// the main window, until the user closes it. Does nothing while another dialog is open.
void ShowInfoWindow(QWidget& mainWindow);
