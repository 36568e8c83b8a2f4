#pragma once

#include <QTimer>
#include <string>
#include <vector>

#include "discovery/NamedPath.h"

class CMainFrame;

/// The photos and folders that a command line has named, that of this process or of one that was started
/// later, and those that were dropped on the window. They are shown as soon as nothing else is going on, and
/// wait for the end of a job, an upload, a drag, a dialog or an open list; what is being edited is committed.
/// Window thread.
///
/// The first photo named comes under the lens, on the page of the current photo, and only those filters that
/// hide it are taken away; one that is deleted is selected in the trash. Without a photo the first folder
/// named is shown. The user is asked once whether folders that aren't in view anywhere are to be added, and
/// is told once what can't be shown.
class CPathsToShow {
 public:
  explicit CPathsToShow(CMainFrame& frame);

  /// Absolute paths, as bytes.
  void Add(std::vector<std::string> paths);

  /// Whether paths wait, or are being shown.
  bool IsBusy() const { return Showing || !Waiting.empty(); }

 private:
  bool MayShow() const;
  void ShowWaiting();
  void Show(const std::vector<std::string>& paths);

  /// What the paths lead to now. None behind the one at which closing the window has stopped it.
  std::vector<NamedPath> LookUp(const std::vector<std::string>& paths) const;
  /// Asks about all folders that aren't shown yet. False if the user doesn't want them.
  static bool MayAddFolders(const std::vector<NamedPath>& named);
  /// Searches the folders of new photos and adds folders. False if the user stops one of them.
  bool BringInAll(std::vector<NamedPath> named);
  bool BringIn(const std::string& path);
  void ShowFolder(const NamedPath& folder);
  void ShowPhoto(const NamedPath& photo);

  CMainFrame& Frame;
  QTimer Timer;
  std::vector<std::string> Waiting;
  bool Showing = false;
};
