#pragma once

#include <QString>

#include "base/Messages.h"

class QMessageBox;
class QWidget;

/// Shows messages in boxes of the desktop. A message of a running job is handed to the window thread,
/// and the job waits for the answer.
class CWindowMessageBox : public CMessageBox {
 public:
  bool Show(const std::string& title, const std::string& text, bool okCancel, MessageParent parent) override;
};

/// The window that a message box stands on: a progress window if it shows and either is asked for or has the
/// main window disabled, else the main window if it shows, else null for none.
QWidget* FindMessageParent(MessageParent parent);

/// Gives a box a plain text. One that large letters would make too high for the screen becomes wide instead.
void SetBoxText(QMessageBox& box, const QString& text);
