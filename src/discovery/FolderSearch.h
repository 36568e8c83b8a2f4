#pragma once

#include <memory>
#include <set>
#include <string>
#include <vector>

class CSearchProgress;
class CStringHistory;

/// Finds the photo files under a folder and brings the new ones into the catalog. One object for the life of
/// the process. A search is one blocking call, on whatever thread the data is lent to; the catalog and the
/// thumbnail cache must be open.
class CFolderSearch {
 public:
  static CFolderSearch& GetInstance();

  bool ActiveDisk = false;              // running from a removable disk; set once at start
  CSearchProgress* Progress = nullptr;  // where searches report to, if anywhere; not owned

  /// Searches a folder and those below it. Without `force` a folder already searched in this session is
  /// skipped. The counts, where asked for, are those of the photo files seen and of those that needed work.
  /// True if the search ran to its end; false if it was skipped, stopped by the user or failed. A disk that
  /// refuses to be written undoes the search and is told to the user.
  bool SearchFolder(const std::string& folder, bool force, int* foundOut = nullptr,
                    int* pendingOut = nullptr);

  /// The folders of the user's list and the standard ones. True if one of the searches ran to its end.
  bool SearchAllFolders(bool force);

  /// The search at start. Returns the folder that the session opens on; empty means all.
  std::string FirstSearch();

  /// Looks whether each photo's file is in place, and where its folder leads to. The user can't stop it: what
  /// wasn't looked at would be taken for present. A disk that refuses to be written is told to the user.
  void UpdateMissingFlags();

  /// Takes the photos under a folder of the list out of view, but for those that are shown without it: in the
  /// standard folders, or in another folder of the list that holds this one.
  void MarkFolderRemoved(const std::string& folder);

  /// A folder's name as it is shown: short below the photo root, whole elsewhere.
  std::string GetFolderLabel(const std::string& folder) const;

  /// The folders that the user added. Made on first use.
  CStringHistory& GetHistory();

  /// Forgets what belongs to the catalog and the session, before another catalog is opened.
  void Reset();

 private:
  CFolderSearch();
  ~CFolderSearch();
  bool SearchUnlessDone(const std::string& folder, bool force, int* foundOut = nullptr,
                        int* pendingOut = nullptr);
  bool Search(const std::string& folder, int* foundOut, int* pendingOut);
  std::string SearchStartingFolder();
  void FollowRenamedFolders();
  bool MayBringIn(int pending, const std::string& folder);
  std::vector<std::string> GetFoldersThatShow(const std::string& folder);

  std::unique_ptr<CStringHistory> History;
  std::set<std::string> SearchedFolders;  // in this session
};

/// True for "/" and the mount points of the disks, by whatever path.
bool IsDiskRoot(const std::string& path);
