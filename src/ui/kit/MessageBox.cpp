#include "ui/kit/MessageBox.h"

#include <QApplication>
#include <QFontMetrics>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>

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
  SetBoxText(box, ToQString(text));
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

// Of a box: as wide as the toolkit makes a text, and what stands beside and below it, in lines.
constexpr int kUsualWidth = 400;
constexpr int kLinesBeside = 8;
constexpr int kLinesBelow = 7;

}  // namespace

void SetBoxText(QMessageBox& box, const QString& text) {
  box.setTextFormat(Qt::PlainText);
  box.setText(text);
  const QFontMetrics metrics = box.fontMetrics();
  const QSize room = box.screen()->availableSize() - QSize(kLinesBeside, kLinesBelow) * metrics.lineSpacing();
  const QRect usual(0, 0, kUsualWidth, QWIDGETSIZE_MAX);
  if (metrics.boundingRect(usual, Qt::TextWordWrap, text).height() <= room.height()) return;
  auto* label = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
  if (label != nullptr) label->setMinimumWidth(room.width());
}

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
