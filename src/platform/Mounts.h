#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// What is mounted where.
namespace platform {

struct Mount {
  std::string Path;  // byte for byte, without closing "/" but for the root
  std::string Type;  // of the file system, such as "ext4"
  std::uint64_t Device = 0;
};

/// Reads a table in the form of /proc/self/mountinfo. Lines that don't follow it are skipped.
std::vector<Mount> ParseMountTable(std::string_view table);

/// True for a mount that holds no files of the user: /proc, /sys, /dev and what else the kernel or the
/// desktop makes up.
bool IsPseudoMount(const Mount& mount);

/// "/" first, then the mount points of the real file systems in the order of their mounting, each once.
std::vector<std::string> DiskRoots();

/// The pseudo file systems, read once when it is made: asking is cheap enough for each folder of a walk.
class PseudoFileSystems {
 public:
  PseudoFileSystems();
  explicit PseudoFileSystems(const std::vector<Mount>& mounts);

  /// `device` as in FileStatus.
  bool Contains(std::uint64_t device) const;

 private:
  std::vector<std::uint64_t> Devices;  // sorted
};

}  // namespace platform
