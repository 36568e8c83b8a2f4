#include "platform/Mounts.h"

#include <sys/sysmacros.h>

#include <algorithm>
#include <array>
#include <charconv>

#include "platform/Files.h"

namespace platform {
namespace {

// Sorted. "fuse.portal" shows files of other places a second time.
constexpr auto kPseudoTypes = std::to_array<std::string_view>(
    {"binfmt_misc", "bpf",        "cgroup",      "cgroup2",    "configfs",  "debugfs", "devpts", "devtmpfs",
     "efivarfs",    "fuse.lxcfs", "fuse.portal", "fusectl",    "hugetlbfs", "mqueue",  "nsfs",   "proc",
     "pstore",      "ramfs",      "rpc_pipefs",  "securityfs", "selinuxfs", "sysfs",   "tracefs"});
static_assert(std::is_sorted(kPseudoTypes.begin(), kPseudoTypes.end()));

constexpr std::array<std::string_view, 3> kPseudoPlaces = {"/dev", "/proc", "/sys"};

std::string_view NextField(std::string_view& line) {
  line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
  const std::string_view field = line.substr(0, line.find(' '));
  line.remove_prefix(field.size());
  return field;
}

bool IsOctal(char c) { return c >= '0' && c <= '7'; }

/// Blanks, tabs, line feeds and backslashes of a path stand in the table as "\040" and the like.
std::string Unescape(std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isEscape = text[i] == '\\' && text.size() - i > 3 && text[i + 1] <= '3' &&
                          IsOctal(text[i + 1]) && IsOctal(text[i + 2]) && IsOctal(text[i + 3]);
    if (isEscape) {
      const int code = (text[i + 1] - '0') * 64 + (text[i + 2] - '0') * 8 + (text[i + 3] - '0');
      result += static_cast<char>(static_cast<unsigned char>(code));
      i += 3;
    } else {
      result += text[i];
    }
  }
  return result;
}

bool ParseDevice(std::string_view text, std::uint64_t& device) {
  unsigned int majorNumber = 0;
  unsigned int minorNumber = 0;
  const char* const end = text.data() + text.size();
  const auto first = std::from_chars(text.data(), end, majorNumber);
  if (first.ec != std::errc() || first.ptr == end || *first.ptr != ':') return false;
  const auto second = std::from_chars(first.ptr + 1, end, minorNumber);
  if (second.ec != std::errc() || second.ptr != end) return false;
  device = makedev(majorNumber, minorNumber);
  return true;
}

/// A line is: id, parent, device, root, mount point, options, any number of tags, "-", type, ...
bool ParseLine(std::string_view line, Mount& mount) {
  NextField(line);
  NextField(line);
  if (!ParseDevice(NextField(line), mount.Device)) return false;
  NextField(line);
  mount.Path = Unescape(NextField(line));
  NextField(line);
  while (!line.empty() && NextField(line) != "-") continue;
  mount.Type = Unescape(NextField(line));
  return mount.Path.starts_with('/') && !mount.Type.empty();
}

std::vector<Mount> ReadMounts() {
  std::vector<std::uint8_t> table;
  if (ReadWholeFile("/proc/self/mountinfo", table)) return {};
  return ParseMountTable(std::string_view(reinterpret_cast<const char*>(table.data()), table.size()));
}

}  // namespace

std::vector<Mount> ParseMountTable(std::string_view table) {
  std::vector<Mount> mounts;
  while (!table.empty()) {
    const std::size_t end = std::min(table.find('\n'), table.size());
    Mount mount;
    if (ParseLine(table.substr(0, end), mount)) mounts.push_back(std::move(mount));
    table.remove_prefix(std::min(end + 1, table.size()));
  }
  return mounts;
}

bool IsPseudoMount(const Mount& mount) {
  if (std::binary_search(kPseudoTypes.begin(), kPseudoTypes.end(), mount.Type)) return true;
  // Containers put plain memory file systems there.
  return std::any_of(kPseudoPlaces.begin(), kPseudoPlaces.end(), [&mount](std::string_view place) {
    return mount.Path == place || (mount.Path.starts_with(place) && mount.Path[place.size()] == '/');
  });
}

std::vector<std::string> DiskRoots() {
  std::vector<std::string> roots = {"/"};
  for (const Mount& mount : ReadMounts()) {
    if (IsPseudoMount(mount) || std::find(roots.begin(), roots.end(), mount.Path) != roots.end()) continue;
    FileStatus status;
    // Single files can be mounted too.
    if (!GetStatus(mount.Path, status) && status.IsFolder) roots.push_back(mount.Path);
  }
  return roots;
}

PseudoFileSystems::PseudoFileSystems() : PseudoFileSystems(ReadMounts()) {}

PseudoFileSystems::PseudoFileSystems(const std::vector<Mount>& mounts) {
  for (const Mount& mount : mounts) {
    if (IsPseudoMount(mount)) Devices.push_back(mount.Device);
  }
  // Containers mount single files of real disks there too.
  for (const Mount& mount : mounts) {
    if (!IsPseudoMount(mount)) std::erase(Devices, mount.Device);
  }
  std::sort(Devices.begin(), Devices.end());
}

bool PseudoFileSystems::Contains(std::uint64_t device) const {
  return std::binary_search(Devices.begin(), Devices.end(), device);
}

}  // namespace platform
