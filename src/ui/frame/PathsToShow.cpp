#include "ui/frame/PathsToShow.h"

#include <QApplication>
#include <QScopedValueRollback>
#include <algorithm>
#include <atomic>
#include <iterator>
#include <set>
#include <utility>

#include "base/Messages.h"
#include "base/PathIdentity.h"
#include "base/Paths.h"
#include "base/Texts.h"
#include "sets/PhotoSet.h"
#include "ui/back/FilterBar.h"
#include "ui/frame/MainFrame.h"
#include "ui/kit/FileDrag.h"
#include "ui/kit/Job.h"
#include "ui/pages/PhotoTab.h"

namespace {

constexpr int kPause = 100;  // milliseconds between two looks whether something is still going on
constexpr std::size_t kToldPaths = 10;

/// Some paths for a message, each on a line of its own.
std::string ListPaths(const std::vector<std::string>& paths) {
  std::string lines;
  for (std::size_t i = 0; i < std::min(paths.size(), kToldPaths); ++i) {
    std::string line = paths[i];
    std::ranges::replace_if(
        line, [](char byte) { return static_cast<unsigned char>(byte) < ' '; }, '?');
    lines += (i > 0 ? "\n" : "") + line;
  }
  if (paths.size() <= kToldPaths) return lines;
  return lines + "\n" + FormatString(StringId::AndMore, static_cast<int>(paths.size() - kToldPaths));
}

std::string GetFolder(const NamedPath& named) {
  return named.Kind == NamedKind::Folder ? named.Path : WithoutClosingSlash(SplitPath(named.Path).Folder);
}

bool IsNew(const NamedPath& named) {
  return named.Kind == NamedKind::NewPhoto || named.Kind == NamedKind::Folder;
}

bool IsOutside(const NamedPath& named) { return IsNew(named) && named.ShownFolder.empty(); }

const NamedPath* FindFirst(const std::vector<NamedPath>& named, NamedKind kind) {
  const auto found = std::ranges::find(named, kind, &NamedPath::Kind);
  return found != named.end() ? &*found : nullptr;
}

}  // namespace

CPathsToShow::CPathsToShow(CMainFrame& frame) : Frame(frame) {
  Timer.setSingleShot(true);
  QObject::connect(&Timer, &QTimer::timeout, &Frame, [this] { ShowWaiting(); });
}

void CPathsToShow::Add(std::vector<std::string> paths) {
  if (paths.empty()) return;
  std::ranges::move(paths, std::back_inserter(Waiting));
  Timer.start(0);
}

bool CPathsToShow::MayShow() const {
  return !Showing && Frame.isVisible() && !IsJobRunning() && !Frame.IsInputBlocked() &&
         QApplication::activeModalWidget() == nullptr && QApplication::activePopupWidget() == nullptr &&
         !CFileDrag::IsRunning();
}

void CPathsToShow::ShowWaiting() {
  if (Waiting.empty() || Frame.IsClosing()) return;
  if (!MayShow()) return Timer.start(kPause);
  const std::vector<std::string> paths = std::exchange(Waiting, {});
  const QScopedValueRollback<bool> showing(Showing, true);
  Show(paths);
  Frame.update();
}

void CPathsToShow::Show(const std::vector<std::string>& paths) {
  Frame.GetParts().FilterBar->CommitEdit();
  Frame.FocusMainWindow();
  std::vector<NamedPath> named = LookUp(paths);
  if (Frame.IsClosing()) return;
  if (!MayAddFolders(named)) std::erase_if(named, &IsOutside);
  const bool isComplete = BringInAll(named);
  if (Frame.IsClosing()) return;
  std::vector<std::string> wanted;
  std::ranges::transform(named, std::back_inserter(wanted), &NamedPath::Path);
  named = LookUp(wanted);
  if (Frame.IsClosing()) return;
  if (const NamedPath* folder = FindFirst(named, NamedKind::Folder)) ShowFolder(*folder);
  if (const NamedPath* photo = FindFirst(named, NamedKind::Photo)) ShowPhoto(*photo);

  std::vector<std::string> notShown;
  for (const NamedPath& path : named) {
    const bool isMissing = path.Kind == NamedKind::NewPhoto && isComplete;
    if (path.Kind == NamedKind::Nothing || isMissing) notShown.push_back(path.Path);
  }
  if (notShown.empty() || Frame.IsClosing()) return;
  ShowMessage(FormatString(StringId::PathsNotShown, ListPaths(notShown)));
}

std::vector<NamedPath> CPathsToShow::LookUp(const std::vector<std::string>& paths) const {
  Frame.PrepareForJob();
  std::vector<NamedPath> named;
  std::atomic<bool> stopped = false;
  RunJob(
      [&] {
        CPathLookUp lookUp(Frame.GetCatalog());
        for (const std::string& path : paths) {
          if (!stopped) named.push_back(lookUp.LookUp(path));
        }
      },
      [&stopped] { stopped = true; });
  return named;
}

bool CPathsToShow::MayAddFolders(const std::vector<NamedPath>& named) {
  std::vector<std::string> folders;
  for (const NamedPath& path : named) {
    const std::string folder = GetFolder(path);
    if (IsOutside(path) && std::ranges::find(folders, folder) == folders.end()) folders.push_back(folder);
  }
  if (folders.empty()) return true;
  return ShowMessage(FormatString(StringId::AddNamedFoldersQuestion, ListPaths(folders)), true);
}

bool CPathsToShow::BringInAll(std::vector<NamedPath> named) {
  // A folder comes before those below it, which need no entry of their own then.
  std::ranges::stable_sort(named, {}, [](const NamedPath& path) { return GetFolder(path).size(); });
  std::set<std::string> done;
  bool isComplete = true;
  for (const NamedPath& path : named) {
    if (Frame.IsClosing()) return false;
    if (IsNew(path) && done.insert(GetFolder(path)).second) isComplete &= BringIn(path.Path);
  }
  return isComplete;
}

bool CPathsToShow::BringIn(const std::string& path) {
  const std::vector<NamedPath> now = LookUp({path});
  if (now.empty() || !IsNew(now.front())) return true;
  const NamedPath& named = now.front();
  CFilterBar& bar = *Frame.GetParts().FilterBar;
  if (IsOutside(named)) return bar.AddFolder(GetFolder(named));
  if (named.Kind == NamedKind::NewPhoto) return bar.SearchAgain(GetFolder(named));
  return IsSameFolder(named.Path, named.ShownFolder) || bar.AddFolder(named.Path);
}

void CPathsToShow::ShowFolder(const NamedPath& folder) {
  CFilterBar& bar = *Frame.GetParts().FilterBar;
  if (!IsSameFolder(folder.Path, folder.ShownFolder)) return;  // it wasn't added
  if (!bar.SelectFolder(folder.ShownFolder)) bar.AddFolder(folder.ShownFolder);
}

void CPathsToShow::ShowPhoto(const NamedPath& photo) {
  const MainParts& parts = Frame.GetParts();
  const CAssetRecord record = Frame.GetCatalog().FindAssetById(photo.AssetID);
  if (record.GetFlag(PhotoFlag::Tossed)) {
    Frame.ToggleFullScreen(FullScreenChange::Normal);
    Frame.SelectTab(ViewTabId::Trash);
    return parts.GetPhotoTab(ViewTabId::Trash)->SelectPhoto(photo.AssetID);
  }
  const CPhotoSet& set = *parts.PhotoSet;
  if (!set.Matches(record) || set.IndexOf(photo.AssetID) < 0) parts.FilterBar->Reveal(record);
  Frame.SelectTab(ViewTabId::CurrentPhoto);
  Frame.ShowInStrip(photo.AssetID);
}
