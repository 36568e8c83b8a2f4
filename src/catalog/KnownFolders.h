#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

/// Where the folders of the catalog's photos lead to on the disk, so that a folder which is reached by
/// several paths, over links or mounts, is known by all of them. Looking can take long, on disks that sleep
/// or are far away: only jobs do it, and what they saw serves the sets of the window thread.
class CKnownFolders {
 public:
  /// Looks where a folder and those above it lead to, unless they were looked at before.
  void Look(std::string_view folder);

  /// Looks again at folders that didn't exist: their disk may be mounted now.
  void LookForMissing();

  /// The other paths that lead to this folder, among the folders looked at; without closing "/". What is
  /// found is checked on the disk again.
  std::vector<std::string> GetOtherPaths(std::string_view folder) const;

  void Clear();

 private:
  using Identity = std::pair<std::uint64_t, std::uint64_t>;  // device and inode
  static constexpr Identity kNowhere{};

  std::unordered_map<std::string, Identity> Identities;  // by path without closing "/"
  std::multimap<Identity, std::string> Paths;            // of the folders that stand
};
