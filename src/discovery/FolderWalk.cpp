#include "discovery/FolderWalk.h"

#include <algorithm>
#include <utility>

#include "base/Paths.h"
#include "catalog/Catalog.h"
#include "catalog/ThumbnailCache.h"
#include "discovery/SearchProgress.h"
#include "imaging/ImageFile.h"
#include "platform/Unicode.h"
#include "platform/WholeFiles.h"

namespace {

// A folder whose search pattern, the folder and four characters, is this long or longer is left out.
constexpr std::size_t kMaximumPatternLength = 260;
constexpr std::size_t kPatternLength = 4;

}  // namespace

CFolderWalk::CFolderWalk(std::string root, CCatalog& catalog, CThumbnailCache& cache,
                         CSearchProgress* progress)
    : Catalog(catalog), Cache(cache), Progress(progress), Root(std::move(root)) {
  CAutoCommitPause pause(Catalog);
  WalkAll();
  pause.Commit();
  std::sort(Pending.begin(), Pending.end(),
            [](const CFoundFile& a, const CFoundFile& b) { return a.Path < b.Path; });
}

bool CFolderWalk::IsStopped() const { return Progress != nullptr && Progress->IsStopped(); }

bool CFolderWalk::Enter(const std::string& folder) {
  if (platform::CountCharacters(folder) + kPatternLength >= kMaximumPatternLength) return false;
  platform::FileStatus status;
  if (platform::GetStatus(folder, status) || PseudoFileSystems.Contains(status.Device)) return false;
  return VisitedFolders.emplace(status.Device, status.Inode).second;
}

void CFolderWalk::WalkAll() {
  Walk(Root);
  // Links come last: the folder of a link is mostly in the tree itself, and its photos get the path there.
  while (!LinkedFolders.empty()) {
    const std::vector<std::string> folders = std::exchange(LinkedFolders, {});
    for (const std::string& folder : folders) Walk(folder);
  }
}

void CFolderWalk::Walk(const std::string& folder) {
  if (IsStopped() || !Enter(folder)) return;
  std::vector<platform::FolderEntry> entries;
  // A folder that can't be read counts as empty.
  platform::ListFolder(folder, entries, [this] { return IsStopped(); });
  for (const platform::FolderEntry& entry : entries) {
    if (IsStopped()) return;
    if (entry.Name.starts_with('.')) {
      // What a kill has left of a photo that was being written.
      const bool isFile = entry.IsRegular && !entry.IsLink;
      if (isFile && platform::IsUnfinishedName(entry.Name)) {
        platform::RemoveIfAbandoned(JoinPath(folder, entry.Name));
      }
      continue;
    }
    if (entry.IsFolder && entry.IsLink) {
      LinkedFolders.push_back(JoinPath(folder, entry.Name));
    } else if (entry.IsFolder) {
      Walk(JoinPath(folder, entry.Name));
    } else if (entry.IsRegular) {
      LookAtFile(folder, entry);
    }
  }
}

void CFolderWalk::LookAtFile(const std::string& folder, const platform::FolderEntry& entry) {
  if (ImageTypeOfFile(entry.Name) == ImageType::None) return;
  ++Found;
  std::string path = JoinPath(folder, entry.Name);
  std::optional<std::int32_t> known;
  CAssetRecord record = Catalog.FindAssetByPath(path);
  if (!record.IsValid()) record = FindByOtherPath(path);
  if (record.IsValid()) {
    record.SetMissing(MissingState::InPlace);
    if (record.GetPath() != path) record.SetPath(path);  // the file was renamed to another case
    known = record.GetAssetID();
    if (Cache.Has(*known)) return;
  }
  Pending.push_back({path, entry.Status.Created, entry.Status.Modified, known});
}

CAssetRecord CFolderWalk::FindByOtherPath(std::string& path) {
  CKnownFolders& folders = Catalog.GetKnownFolders();
  if (!std::exchange(LookedForMissing, true)) folders.LookForMissing();
  const PathParts parts = SplitPath(path);
  folders.Look(parts.Folder);
  const std::vector<std::string> others = folders.GetOtherPaths(parts.Folder);
  // A new photo takes the first of them, so that the photos of a folder stay together.
  for (auto other = others.rbegin(); other != others.rend(); ++other) {
    path = JoinPath(*other, parts.Name);
    CAssetRecord record = Catalog.FindAssetByPath(path);
    if (record.IsValid()) return record;
  }
  return {};
}

bool CFolderWalk::Update() { return CPhotoImport(Catalog, Cache, Progress).Run(Pending); }
