#include "base/SettingsFile.h"

#include <cstdint>
#include <vector>

#include "platform/Files.h"

namespace {

constexpr std::size_t kLargestFile = std::size_t{1} << 24;

std::error_code ReadText(const std::string& path, std::string& text) {
  std::vector<std::uint8_t> bytes;
  const std::error_code error = platform::ReadWholeFile(path, bytes, kLargestFile);
  text.assign(bytes.begin(), bytes.end());
  return error;
}

}  // namespace

std::string ReadSettingsFile(const std::string& path) {
  std::string text;
  return ReadText(path, text) ? std::string() : text;
}

void EditSettingsFile(const std::string& path, const std::function<std::string(const std::string&)>& edit) {
  if (path.empty()) return;
  std::string text;
  const std::error_code error = ReadText(path, text);
  if (error && error != std::errc::no_such_file_or_directory) return;
  const std::string edited = edit(text);
  if (!error && edited == text) return;
  // A failed write is lost: the settings are no reason to disturb the user.
  static_cast<void>(platform::WriteFileAtomically(path, edited.data(), edited.size()));
}
