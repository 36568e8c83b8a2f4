#pragma once

#include <set>
#include <string>
#include <utility>
#include <vector>

#include "catalog/AssetRecord.h"
#include "discovery/PhotoImport.h"
#include "platform/Files.h"
#include "platform/Mounts.h"

/// One search of one folder: a walk that lists the photo files that need work, and an update that imports
/// them. The walk marks photos of the catalog that it finds as present. If the catalog knows a folder by
/// another path, over a link or a mount, the photos in it get that path.
class CFolderWalk {
 public:
  /// Walks at once. `progress` may be null. CStorageException if the catalog can't be written.
  CFolderWalk(std::string root, CCatalog& catalog, CThumbnailCache& cache, CSearchProgress* progress);

  int GetFoundCount() const { return Found; }
  int GetPendingCount() const { return static_cast<int>(Pending.size()); }

  /// Imports the pending files, in the order of their paths; see CPhotoImport::Run.
  bool Update();

 private:
  void WalkAll();
  void Walk(const std::string& folder);
  bool Enter(const std::string& folder);
  void LookAtFile(const std::string& folder, const platform::FolderEntry& entry);
  CAssetRecord FindByOtherPath(std::string& path);
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
  bool LookedForMissing = false;
};
