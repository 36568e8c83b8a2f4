#include "ui/back/FolderChooser.h"

#include <QApplication>
#include <QDialog>
#include <QFileDialog>
#include <QFontMetricsF>
#include <QKeyEvent>
#include <QListWidget>
#include <QPushButton>
#include <QStyle>
#include <QTextDocument>
#include <QUrl>

#include "base/Folders.h"
#include "base/Texts.h"
#include "ui/controls/DropText.h"
#include "ui/kit/FilePath.h"
#include "ui/kit/QtText.h"

namespace {

// In dialog units.
constexpr QSize kDialog(210, 114);
constexpr QRect kList(7, 7, 196, 79);
constexpr QRect kChooseButton(97, 93, 50, 14);
constexpr QRect kCancelButton(153, 93, 50, 14);

// A dialog unit is a part of a letter of the dialog's font: a quarter of its width, an eighth of its height.
constexpr double kUnitsToWidth = 4;
constexpr double kUnitsToHeight = 8;

/// From dialog units to pixels.
QRect ToPixels(const QRect& units, const QFontMetricsF& font) {
  const double x = font.averageCharWidth() / kUnitsToWidth;
  const double y = font.height() / kUnitsToHeight;
  return QRectF(units.x() * x, units.y() * y, units.width() * x, units.height() * y).toRect();
}

/// Lets the user choose one of the photo folders, to show it or to remove it from the list.
class CFolderListDialog : public QDialog {
 public:
  CFolderListDialog(const std::vector<std::string>& folders, FolderChoice purpose, QWidget* parent);

  /// The position of the chosen folder; -1 before a choice and after Cancel.
  int GetChosen() const { return Chosen; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void FillList(const std::vector<std::string>& folders);
  void Choose();

  QListWidget List;
  QPushButton ChooseButton;
  QPushButton CancelButton;
  int Chosen = -1;
};

CFolderListDialog::CFolderListDialog(const std::vector<std::string>& folders, FolderChoice purpose,
                                     QWidget* parent)
    : QDialog(parent), List(this), ChooseButton(this), CancelButton(this) {
  const bool removing = purpose == FolderChoice::Remove;
  const auto load = [](StringId id) { return ToQString(LoadExpandedString(id)); };
  setObjectName(QStringLiteral("FolderList"));
  setWindowTitle(load(removing ? StringId::RemoveFolderTitle : StringId::MoreFoldersTitle));
  const QFontMetricsF metrics(font());
  setFixedSize(ToPixels(QRect(QPoint(), kDialog), metrics).size());
  List.setGeometry(ToPixels(kList, metrics));
  List.setAccessibleName(windowTitle());
  List.installEventFilter(this);
  FillList(folders);

  ChooseButton.setText(load(removing ? StringId::RemoveFolderButton : StringId::ChooseButton));
  ChooseButton.setGeometry(ToPixels(kChooseButton, metrics));
  ChooseButton.setDefault(true);
  ChooseButton.setEnabled(false);
  CancelButton.setText(load(StringId::Cancel));
  CancelButton.setGeometry(ToPixels(kCancelButton, metrics));
  CancelButton.setAutoDefault(false);

  connect(&List, &QListWidget::itemSelectionChanged, this,
          [this] { ChooseButton.setEnabled(!List.selectedItems().isEmpty()); });
  connect(&List, &QListWidget::itemDoubleClicked, this, [this] { Choose(); });
  connect(&ChooseButton, &QPushButton::clicked, this, [this] { Choose(); });
  connect(&CancelButton, &QPushButton::clicked, this, &QDialog::reject);
}

void CFolderListDialog::FillList(const std::vector<std::string>& folders) {
  // The bar takes its room from the entries, whether it shows or not.
  const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, &List);
  const int margin = style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, &List) + 1;
  const int room = List.width() - 2 * List.frameWidth() - bar - 2 * margin;
  for (const std::string& folder : folders) {
    const QString path = ToQString(folder);
    auto* item = new QListWidgetItem(ShortenPath(path, room, QFontMetricsF(List.font())), &List);
    item->setToolTip(Qt::mightBeRichText(path) ? path.toHtmlEscaped() : path);
  }
}

bool CFolderListDialog::eventFilter(QObject* watched, QEvent* event) {
  // The first arrow key selects the entry that has the focus; the list would go on to the next.
  if (event->type() == QEvent::KeyPress && List.selectedItems().isEmpty() && List.currentItem() != nullptr) {
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key == Qt::Key_Down || key == Qt::Key_Up) {
      List.currentItem()->setSelected(true);
      return true;
    }
  }
  return QDialog::eventFilter(watched, event);
}

void CFolderListDialog::Choose() {
  if (List.selectedItems().isEmpty()) return;
  Chosen = List.row(List.selectedItems().front());
  accept();
}

}  // namespace

std::optional<std::string> CWindowFolderChooser::Browse() {
  const QUrl address = QFileDialog::getExistingDirectoryUrl(
      QApplication::activeWindow(), ToQString(LoadExpandedString(StringId::AddFolderToList)),
      QUrl::fromLocalFile(ToQString(GetMyPicturesFolder())), QFileDialog::ShowDirsOnly,
      {QStringLiteral("file")});
  if (address.isEmpty()) return std::nullopt;
  return GetPathOfAddress(address);
}

int CWindowFolderChooser::Choose(const std::vector<std::string>& folders, FolderChoice purpose) {
  CFolderListDialog dialog(folders, purpose, QApplication::activeWindow());
  dialog.exec();
  return dialog.GetChosen();
}
