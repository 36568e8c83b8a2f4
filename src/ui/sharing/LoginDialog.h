#pragma once

#include "sharing/ServiceDesktop.h"

class QWidget;

/// Asks for the user's name and password at the service, in the middle of the main window, and offers the
/// page where one joins it. False if the user cancels. The password isn't kept in the dialog's fields.
bool ShowLoginDialog(QWidget& mainWindow, CServiceDesktop& desktop, LoginEntry& entry);
