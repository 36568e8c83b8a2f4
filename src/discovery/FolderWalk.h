#pragma once

#include <set>
#include <string>
#include <utility>
#include <vector>

#include "catalog/AssetRecord.h"
#include "discovery/FoundFile.h"
#include "platform/FolderListing.h"
#include "platform/Mounts.h"

class CCatalog;
class CSearchProgress;
class CThumbnailCache;
struct PreparedPhoto;

/// One search of one folder: a walk that reads the file system and counts, and an update that brings in what
/// the walk found. Photos that were missing and are found are back after the walk. A folder that the catalog
/// knows by another path, over a link or a mount, is walked as the folder of that path.
class CFolderWalk {
 public:
  /// Walks at once. `progress` may be null. CStorageException if the catalog can't be written.
  CFolderWalk(std::string root, CCatalog& catalog, CThumbnailCache& cache, CSearchProgress* progress);

  int GetFoundCount() const { return Found; }
  int GetPendingCount() const { return static_cast<int>(Pending.size()); }

  /// Brings the pending files in, in the order of their paths, as one transaction. False if the user stopped
  /// it; what was done until then stays. Any exception undoes all of it.
  bool Update();

 private:
  void WalkAll();
  void Walk(const std::string& folder);
  bool Enter(const std::string& folder);
  void LookAtFile(const std::string& folder, const platform::FolderEntry& entry);
  CAssetRecord FindByOtherPath(std::string& path);
  CAssetRecord ImportFile(const CFoundFile& found, const PreparedPhoto& prepared);
  bool IsStopped() const;

  CCatalog& Catalog;
  CThumbnailCache& Cache;
  CSearchProgress* const Progress;
  const std::string Root;
  const platform::PseudoFileSystems PseudoFileSystems;
  std::set<std::pair<std::uint64_t, std::uint64_t>> VisitedFolders;  // device and inode
  std::vector<std::string> LinkedFolders;                            // found, and entered after all others
  std::vector<CFoundFile> Pending;                                   // by path, byte for byte
  int Found = 0;                                                     // photo files seen
  bool AddedNew = false;
  bool LookedForMissing = false;
};
