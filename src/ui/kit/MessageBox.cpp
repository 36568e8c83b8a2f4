#include "ui/kit/MessageBox.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>

#include "ui/kit/InputBlock.h"
#include "ui/kit/Job.h"
#include "ui/kit/QtText.h"

namespace {

QWidget* FindShown(const QString& name) {
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (window->objectName() == name && window->isVisible()) return window;
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
  QWidget* main = FindShown(window_names::kMainFrame);
  if (parent != MessageParent::ProgressWindow && (main == nullptr || main->isEnabled())) return main;
  for (const QString& name : {window_names::kSearchProgress, window_names::kUploadProgress}) {
    if (QWidget* progress = FindShown(name)) return progress;
  }
  return main;
}

bool CWindowMessageBox::Show(const std::string& title, const std::string& text, bool okCancel,
                             MessageParent parent) {
  bool answer = false;
  RunOnWindowThread([&] { answer = ShowBox(title, text, okCancel, FindMessageParent(parent)); });
  return answer;
}
