#include "ui/frame/InfoWindow.h"

#include <QApplication>
#include <QDialog>
#include <QKeyEvent>
#include <QPainter>
#include <algorithm>
#include <array>
#include <memory>
#include <string>

#include "base/Folders.h"
#include "base/Texts.h"
#include "ui/controls/PaintedButton.h"
#include "ui/kit/FontTable.h"
#include "ui/kit/OpenAddress.h"
#include "ui/kit/SmallWindow.h"
#include "ui/search/SearchProgressLayout.h"

namespace {

struct InfoRow {
  CommandId Command;
  StringId Button;
  StringId Text;
  StringId Address;
};

constexpr auto kRows = std::to_array<InfoRow>({
    {CommandId::OpenHelpPage, StringId::HelpButton, StringId::HelpText, StringId::HelpFile},
    {CommandId::OpenFeedbackPage, StringId::FeedbackButton, StringId::FeedbackText, StringId::FeedbackPage},
    {CommandId::OpenPromotionsPage, StringId::FreePrintsButton, StringId::FreePrintsText,
     StringId::PromotionsPage},
    {CommandId::OpenWebsite, StringId::WebsiteButton, StringId::WebsiteText, StringId::WebsitePage},
    {CommandId::EndEdit, StringId::Close, StringId::CloseText, StringId{}},
});

constexpr QSize kWindow(400, 330);
constexpr QRect kHeading(25, 95, 350, 26);
constexpr QRect kVersion(25, 123, 350, 17);
constexpr QRect kLegal(25, 141, 350, 30);
constexpr QRect kFirstButton(25, 184, 95, 20);
constexpr QRect kFirstText(125, 180, 260, 28);  // room for two lines
constexpr int kRowPitch = 28;

constexpr const char* kHelpFolder = "../share/vellumar/";  // where the program is installed

std::string FindHelpPage() {
  const std::string name = LoadText(StringId::HelpFile);
  const std::string beside = GetProgramFolder() + name;
  const std::string installed = GetProgramFolder() + kHelpFolder + name;
  return !FileExists(beside, false) && FileExists(installed, false) ? installed : beside;
}

class CInfoWindow : public QDialog, private CCommandTarget {
 public:
  explicit CInfoWindow(QWidget& mainWindow);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void AddRow(int position);
  void OnCommand(CommandId id) override;

  std::array<std::unique_ptr<CPaintedButton>, kRows.size()> Buttons;
};

CInfoWindow::CInfoWindow(QWidget& mainWindow) : QDialog(&mainWindow, Qt::Dialog | Qt::FramelessWindowHint) {
  setObjectName(QStringLiteral("InfoWindow"));
  setWindowTitle(LoadWindowText(StringId::Information));
  setAccessibleName(windowTitle());
  setFixedSize(kWindow);
  ShapeWindow(*this, ProgressOutline(true));  // of the same picture

  AddWindowText(*this, kHeading, FontId::Heading, windowTitle());
  AddWindowText(*this, kVersion, FontId::Panel,
                LoadWindowText(StringId::SplashProduct) + ", " + LoadWindowText(StringId::SplashVersion));
  AddWindowText(*this, kLegal, FontId::Band,
                LoadWindowText(StringId::SplashLegal1) + ' ' + LoadWindowText(StringId::SplashLegal2) + ' ' +
                    LoadWindowText(StringId::SplashLegal3));
  for (int i = 0; i < std::ssize(kRows); ++i) AddRow(i);
  Buttons.back()->setFocus();
  CentreOn(*this, mainWindow);
}

void CInfoWindow::AddRow(int position) {
  const InfoRow& row = kRows[static_cast<std::size_t>(position)];
  const int down = position * kRowPitch;
  AddWindowText(*this, kFirstText.translated(0, down), FontId::Band, LoadWindowText(row.Text));
  auto& button = Buttons[static_cast<std::size_t>(position)];
  CCommandTarget& target = *this;
  button = std::make_unique<CPaintedButton>(target, this);
  button->EnableTip(false);
  button->CreateText(kFirstButton.translated(0, down), row.Command, LoadWindowText(row.Button),
                     ButtonFlags::None, row.Command == CommandId::EndEdit);
  button->setAccessibleDescription(LoadWindowText(row.Text));
}

void CInfoWindow::OnCommand(CommandId id) {
  if (id == CommandId::EndEdit) return accept();
  if (id == CommandId::OpenHelpPage) return OpenFile(FindHelpPage());
  const auto row = std::ranges::find(kRows, id, &InfoRow::Command);
  if (row != kRows.end()) OpenWebPage("http://" + LoadExpandedString(row->Address));
}

void CInfoWindow::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Down:
    case Qt::Key_Right:
      focusNextChild();
      break;
    case Qt::Key_Up:
    case Qt::Key_Left:
      focusPreviousChild();
      break;
    default:
      QDialog::keyPressEvent(event);  // Esc closes
  }
}

void CInfoWindow::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  DrawWindowPicture(painter, *this, PictureId::SearchBackgroundWithSplash);
}

}  // namespace

void ShowInfoWindow(QWidget& mainWindow) {
  if (QApplication::activeModalWidget() != nullptr) return;
  CInfoWindow window(mainWindow);
  window.exec();
}
