#include <QListWidget>
#include <QPushButton>
#include <QUrl>
#include <filesystem>

#include "support/ScratchFolder.h"
#include "ui/WindowTest.h"
#include "ui/back/FolderChooser.h"
#include "ui/back/FolderListDialog.h"

namespace {

const std::vector<std::string> kFolders = {
    "/home/anna/Pictures",
    "/home/anna/A very long folder name/with many names below it/and further ones/Scans of the attic", "/m"};

QPushButton* FindButton(CFolderListDialog& dialog, const QString& text) {
  for (auto* button : dialog.findChildren<QPushButton*>()) {
    if (button->text() == text) return button;
  }
  return nullptr;
}

}  // namespace

TEST(FolderListDialog, NothingIsChosenBeforeAnEntryIsSelected) {
  CFolderListDialog dialog(kFolders, FolderChoice::Show, nullptr);
  dialog.show();
  EXPECT_EQ(dialog.windowTitle(), "More Folders");
  QPushButton* choose = FindButton(dialog, "&Choose");
  ASSERT_NE(choose, nullptr);
  EXPECT_FALSE(choose->isEnabled());
  QTest::keyClick(&dialog, Qt::Key_Return);
  EXPECT_TRUE(dialog.isVisible());
  auto* list = dialog.findChild<QListWidget*>();
  list->item(2)->setSelected(true);
  EXPECT_TRUE(choose->isEnabled());
  choose->click();
  EXPECT_FALSE(dialog.isVisible());
  EXPECT_EQ(dialog.GetChosen(), 2);
}

TEST(FolderListDialog, DoubleClickChoosesAndCancelDoesNot) {
  CFolderListDialog dialog(kFolders, FolderChoice::Remove, nullptr);
  dialog.show();
  EXPECT_EQ(dialog.windowTitle(), "Remove Folder From List");
  EXPECT_NE(FindButton(dialog, "&Remove"), nullptr);
  auto* list = dialog.findChild<QListWidget*>();
  const QPoint second = list->visualItemRect(list->item(1)).center();
  QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, second);
  FindButton(dialog, "Cancel")->click();
  EXPECT_EQ(dialog.GetChosen(), -1);
  dialog.show();
  QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, second);
  QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, second);
  EXPECT_FALSE(dialog.isVisible());
  EXPECT_EQ(dialog.GetChosen(), 1);
}

TEST(FolderListDialog, KeysChooseToo) {
  CFolderListDialog dialog({"/only"}, FolderChoice::Show, nullptr);
  dialog.show();
  dialog.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
  auto* list = dialog.findChild<QListWidget*>();
  list->setFocus();
  QTest::keyClick(list, Qt::Key_Down);
  QTest::keyClick(list, Qt::Key_Return);
  EXPECT_EQ(dialog.GetChosen(), 0);
}

TEST(FolderListDialog, LongPathsAreShortenedToTheList) {
  CFolderListDialog dialog(kFolders, FolderChoice::Show, nullptr);
  dialog.show();
  const auto* list = dialog.findChild<QListWidget*>();
  EXPECT_EQ(list->item(0)->text(), "/home/anna/Pictures");
  EXPECT_TRUE(list->item(1)->text().startsWith("/home/anna"));
  EXPECT_TRUE(list->item(1)->text().endsWith(QStringLiteral("\u2026/Scans of the attic")));
  EXPECT_LE(list->sizeHintForColumn(0), list->viewport()->width());
}

TEST(FolderChooser, AddressGivesTheBytesOfThePath) {
  const CScratchFolder scratch;
  const std::string folder = scratch.GetPath() +
                             "/b\xfc"
                             "cher";
  std::filesystem::create_directory(folder);
  const auto pathOf = [](const QString& address) { return GetPathOfAddress(QUrl(address)); };
  const QString parent = QString::fromStdString("file://" + scratch.GetPath());
  EXPECT_EQ(pathOf(parent + "/b%FCcher"), folder);
  EXPECT_EQ(pathOf(parent + "/a%20b%25"), scratch.GetPath() + "/a b%");
  EXPECT_EQ(GetPathOfAddress(QUrl::fromLocalFile(parent.mid(7) + QStringLiteral("/b\uFFFDcher"))), folder)
      << "as a dialog that has lost the byte names it";
  std::filesystem::create_directory(scratch.GetPath() +
                                    "/b\xfd"
                                    "cher");
  EXPECT_NE(GetPathOfAddress(QUrl::fromLocalFile(parent.mid(7) + QStringLiteral("/b\uFFFDcher"))), folder)
      << "two folders look alike";
  EXPECT_EQ(pathOf("http://example.com/a"), "");
}
