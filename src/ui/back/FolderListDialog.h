#pragma once

#include <QDialog>
#include <QListWidget>
#include <QPushButton>
#include <string>
#include <vector>

#include "ui/back/FolderChooser.h"

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
