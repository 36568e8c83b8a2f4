#include "editing/RenameIntent.h"

#include <array>
#include <charconv>
#include <string_view>
#include <vector>

#include "catalog/Catalog.h"
#include "platform/Files.h"

namespace {

constexpr std::size_t kLargestIntent = 1 << 16;  // bytes

/// The number and the two paths, each closed by a zero byte, which no path holds.
std::optional<PhotoRename> Parse(std::string_view text) {
  std::array<std::string_view, 3> parts;
  for (std::string_view& part : parts) {
    const std::size_t end = text.find('\0');
    if (end == std::string_view::npos) return {};
    part = text.substr(0, end);
    text.remove_prefix(end + 1);
  }
  PhotoRename rename;
  const auto [end, error] = std::from_chars(parts[0].begin(), parts[0].end(), rename.AssetId);
  if (error != std::errc() || end != parts[0].end() || !text.empty()) return {};
  rename.OldPath = parts[1];
  rename.NewPath = parts[2];
  return rename;
}

}  // namespace

CRenameIntent::CRenameIntent(const CCatalog& catalog) : Path(catalog.GetPath() + ".rename") {}

std::error_code CRenameIntent::Write(const PhotoRename& rename) const {
  std::string text;
  for (const std::string& part : {std::to_string(rename.AssetId), rename.OldPath, rename.NewPath}) {
    text += part + '\0';
  }
  return platform::WriteFileAtomically(Path, text.data(), text.size());
}

std::optional<PhotoRename> CRenameIntent::Read() const {
  std::vector<std::uint8_t> bytes;
  if (platform::ReadWholeFile(Path, bytes, kLargestIntent)) return {};
  return Parse({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

void CRenameIntent::Drop() const { static_cast<void>(platform::RemoveFile(Path)); }
