#pragma once

class QWidget;

/// Tells what is sent and with which programs, unless the user has asked not to be told again; that wish is
/// kept in the settings. False if the user would rather not send.
bool ShowEmailDialog(QWidget* parent);
