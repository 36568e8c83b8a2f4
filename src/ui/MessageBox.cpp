#include "ui/MessageBox.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>

#include "ui/Job.h"
#include "ui/MainFrame.h"
#include "ui/QtText.h"
#include "ui/SearchProgressWindow.h"

namespace {

template <typename Window>
QWidget* FindShown() {
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (dynamic_cast<Window*>(window) != nullptr && window->isVisible()) return window;
  }
  return nullptr;
}

bool ShowBox(const std::string& title, const std::string& text, bool okCancel, QWidget* parent) {
  QMessageBox box(parent);
  box.setWindowTitle(ToQString(title));
  box.setTextFormat(Qt::PlainText);
  box.setText(ToQString(text));
  const QPushButton* ok = box.addButton(QMessageBox::Ok);
  if (okCancel) {
    box.setIcon(QMessageBox::Warning);
    QPushButton* cancel = box.addButton(QMessageBox::Cancel);
    box.setDefaultButton(cancel);
    box.setEscapeButton(cancel);
  }
  box.exec();
  return !okCancel || box.clickedButton() == ok;
}

}  // namespace

QWidget* FindMessageParent(MessageParent parent) {
  QWidget* window = parent == MessageParent::ProgressWindow ? FindShown<CSearchProgressWindow>() : nullptr;
  return window != nullptr ? window : FindShown<CMainFrame>();
}

bool CWindowMessageBox::Show(const std::string& title, const std::string& text, bool okCancel,
                             MessageParent parent) {
  bool answer = false;
  RunOnWindowThread([&] { answer = ShowBox(title, text, okCancel, FindMessageParent(parent)); });
  return answer;
}
