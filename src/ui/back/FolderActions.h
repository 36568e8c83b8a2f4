#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ui/back/FolderChooser.h"

class CStringHistory;

/// The three things that the user can do to the list of photo folders: pick a new folder, choose from all,
/// remove one. Each asks through a chooser and ends without a change if the user cancels. Window thread.
class CFolderActions {
 public:
  /// `list` is the user's list; both are not owned.
  CFolderActions(CStringHistory& list, CFolderChooser& chooser) : List(list), Chooser(chooser) {}

  /// A folder of the file system, picked in the system's browser; nothing on Cancel. For a whole disk the
  /// user is asked once more. Doesn't change the list.
  std::optional<std::string> BrowseForFolder();

  /// The folder, or nothing if it is a whole disk and the user doesn't want that.
  static std::optional<std::string> ConfirmFolder(const std::string& folder);

  /// The pictures folder or one of the list; nothing on Cancel, or if the list is empty, which is told.
  std::optional<std::string> ChooseFromList();

  /// Takes the photos of a folder of the list out of view, as a job, and the folder off the list. Returns the
  /// folder; nothing on Cancel, or if the list is empty, which is told.
  std::optional<std::string> RemoveFromList();

 private:
  bool IsListEmpty() const;
  std::vector<std::string> GetFolders() const;

  CStringHistory& List;
  CFolderChooser& Chooser;
};
