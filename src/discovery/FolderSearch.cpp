#include "discovery/FolderSearch.h"

#include <algorithm>
#include <optional>

#include "base/Exceptions.h"
#include "base/Folders.h"
#include "base/Messages.h"
#include "base/PathIdentity.h"
#include "base/Paths.h"
#include "base/Texts.h"
#include "catalog/Catalog.h"
#include "catalog/ThumbnailCache.h"
#include "discovery/FolderHistory.h"
#include "discovery/FolderWalk.h"
#include "discovery/SearchProgress.h"
#include "platform/Mounts.h"
#include "sets/QuerySet.h"

namespace {

// More pending photos than this in a folder that isn't on the user's list are asked about first.
constexpr int kUnaskedPhotos = 3000;

}  // namespace

CFolderSearch::CFolderSearch() = default;
CFolderSearch::~CFolderSearch() = default;

CFolderSearch& CFolderSearch::GetInstance() {
  static CFolderSearch search;
  return search;
}

void CFolderSearch::Reset() {
  ActiveDisk = false;
  Progress = nullptr;
  History.reset();
  SearchedFolders.clear();
}

CStringHistory& CFolderSearch::GetHistory() {
  if (!History) History = std::make_unique<CFolderHistory>(*CCatalog::GetInstance());
  return *History;
}

bool CFolderSearch::SearchFolder(const std::string& folder, bool force, int* foundOut, int* pendingOut) {
  bool ended = false;
  TellRefusal(Progress, [&] { ended = SearchUnlessDone(folder, force, foundOut, pendingOut); });
  return ended;
}

bool CFolderSearch::SearchUnlessDone(const std::string& folder, bool force, int* foundOut, int* pendingOut) {
  if (!force && SearchedFolders.contains(folder)) return false;
  bool ended = false;
  try {
    ended = Search(folder, foundOut, pendingOut);
  } catch (const CStorageException&) {
    // Thumbnails can be made again: the search is repeated with a new file for them.
    SearchedFolders.insert(folder);  // tried again when the user asks for it
    if (!CThumbnailCache::GetInstance()->RenewIfDamaged()) throw;
    ended = Search(folder, foundOut, pendingOut);
  } catch (const CException&) {
    return false;  // The folder counts as not searched, so the next search tries again.
  }
  SearchedFolders.insert(folder);
  return ended;
}

bool CFolderSearch::Search(const std::string& folder, int* foundOut, int* pendingOut) {
  CFolderWalk walk(folder, *CCatalog::GetInstance(), *CThumbnailCache::GetInstance(), Progress);
  if (foundOut != nullptr) *foundOut = walk.GetFoundCount();
  if (pendingOut != nullptr) *pendingOut = walk.GetPendingCount();
  if (!MayBringIn(walk.GetPendingCount(), folder)) return false;
  return walk.GetPendingCount() == 0 || walk.Update();
}

bool CFolderSearch::MayBringIn(int pending, const std::string& folder) {
  if (pending <= kUnaskedPhotos || GetHistory().Contains(folder)) return true;
  return ShowMessage(Format(LoadExpandedString(StringId::ManyPhotosQuestion), pending, folder), true,
                     MessageParent::ProgressWindow);
}

bool CFolderSearch::SearchAllFolders(bool force) {
  bool anyEnded = false;
  // A disk that refuses one folder refuses all.
  TellRefusal(Progress, [&] {
    for (int i = 0; i < GetHistory().Count(); ++i) {
      anyEnded |= SearchUnlessDone(GetHistory().Get(i), force);
    }
    anyEnded |= SearchUnlessDone(GetMyPicturesFolder(), force);
    if (ActiveDisk) anyEnded |= SearchUnlessDone(GetActiveDiskPhotoFolder(), false);
  });
  return anyEnded;
}

std::string CFolderSearch::FirstSearch() {
  std::optional<std::string> folder;
  TellRefusal(Progress, [&] { folder = SearchStartingFolder(); });
  return folder ? *folder : GetMyPicturesFolder();
}

void CFolderSearch::FollowRenamedFolders() {
  CCatalog& catalog = *CCatalog::GetInstance();
  CAutoCommitPause pause(catalog);
  for (int i = 0; i < GetHistory().Count(); ++i) {
    const std::string stored = GetHistory().Get(i);
    const std::string present = FindPresentSpelling(stored);
    if (present.empty() || present == stored) continue;
    GetHistory().Add(present);
    if (catalog.GetCurrentPhotoFolder() == stored) catalog.SetCurrentPhotoFolder(present);
  }
  pause.Commit();
}

std::string CFolderSearch::SearchStartingFolder() {
  FollowRenamedFolders();
  if (ActiveDisk) {
    int found = 0;
    SearchFolder(GetActiveDiskPhotoFolder(), true, &found);
    if (found != 0) return GetActiveDiskPhotoFolder();
  }
  std::string folder =
      GetHistory().Count() == 0 ? GetMyPicturesFolder() : CCatalog::GetInstance()->GetCurrentPhotoFolder();
  if (folder.empty()) {
    SearchAllFolders(true);
    return folder;
  }
  if (FileExists(folder, false) || !FileExists(folder, true)) folder = GetMyPicturesFolder();
  SearchFolder(folder, false);
  return folder;
}

void CFolderSearch::UpdateMissingFlags() {
  CCatalog* const catalog = CCatalog::GetInstance();
  CQuerySet photos(catalog, SetKind::All);
  // After a refusal the flags are those of the last time, and the next start looks again.
  TellRefusal(Progress, [&] {
    CAutoCommitPause pause(*catalog);
    for (int i = 0; i < photos.GetCount(); ++i) {
      CAssetRecord record = photos.GetAsset(i);
      catalog->GetKnownFolders().Look(record.GetFolder());
      if (record.GetMissing() == MissingState::FolderRemoved) continue;
      record.SetMissing(FileExists(record.GetPath(), false) ? MissingState::InPlace : MissingState::Gone);
    }
    pause.Commit();
  });
}

std::vector<std::string> CFolderSearch::GetFoldersThatShow(const std::string& folder) {
  std::vector<std::string> others = {GetMyPicturesFolder()};
  if (ActiveDisk) others.push_back(GetActiveDiskPhotoFolder());
  for (int i = 0; i < GetHistory().Count(); ++i) {
    const std::string entry = GetHistory().Get(i);
    if (entry != folder && CFolderFilter(entry).Holds(WithClosingSlash(folder))) others.push_back(entry);
  }
  return others;
}

void CFolderSearch::MarkFolderRemoved(const std::string& folder) {
  CCatalog* const catalog = CCatalog::GetInstance();
  CQuerySet photos(catalog, SetKind::All);
  photos.SetFolderFilter(folder);
  photos.Rebuild();
  std::vector<std::unique_ptr<CFolderFilter>> others;
  for (const std::string& other : GetFoldersThatShow(folder)) {
    others.push_back(std::make_unique<CFolderFilter>(other));
  }
  CAutoCommitPause pause(*catalog);
  for (int i = 0; i < photos.GetCount(); ++i) {
    CAssetRecord record = photos.GetAsset(i);
    const bool isShown = std::any_of(others.begin(), others.end(),
                                     [&record](const auto& other) { return other->Matches(record); });
    if (!isShown) record.SetMissing(MissingState::FolderRemoved);
  }
  pause.Commit();
}

std::string CFolderSearch::GetFolderLabel(const std::string& folder) const {
  const std::string path = WithoutClosingSlash(folder);
  const std::string base = ActiveDisk ? GetActiveDiskPhotoFolder() : GetMyPicturesFolder();
  if (path == base) return ActiveDisk ? LoadExpandedString(StringId::ActiveDiskPhotos) : SplitPath(base).Name;
  const std::string below = WithClosingSlash(base);
  return path.starts_with(below) ? path.substr(below.size()) : path;
}

bool IsDiskRoot(const std::string& path) {
  const std::vector<std::string> roots = platform::DiskRoots();
  return std::any_of(roots.begin(), roots.end(),
                     [&path](const std::string& root) { return IsSameFolder(root, path); });
}
