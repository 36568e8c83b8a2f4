#include "platform/TemporaryName.h"

#include <fcntl.h>
#include <sys/random.h>

#include <array>
#include <cerrno>
#include <cstdint>

#include "platform/Faults.h"
#include "platform/Files.h"

namespace platform {
namespace {

constexpr int kTries = 100;

std::error_code MakeRandomSuffix(std::string& suffix) {
  constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyz234567";
  std::array<std::uint8_t, 10> random{};
  if (::getrandom(random.data(), random.size(), 0) != static_cast<ssize_t>(random.size())) return LastError();
  suffix.clear();
  for (const std::uint8_t byte : random) suffix += kLetters[byte % kLetters.size()];
  return {};
}

}  // namespace

TemporaryName::~TemporaryName() {
  // What made the file useless is the error to report, not a removal that fails as well.
  if (!Path.empty()) static_cast<void>(RemoveFile(Path));
}

std::error_code TemporaryName::Create(std::string_view folder, std::string_view prefix, unsigned mode) {
  for (int i = 0; i < kTries; ++i) {
    std::string suffix;
    if (const auto error = MakeRandomSuffix(suffix)) return error;
    std::string path(folder);
    if (!path.empty() && !path.ends_with('/')) path += '/';
    path.append(prefix).append(suffix);
    if (const auto error = AskFaultPlan("create", path)) return error;
    const std::error_code error = File.Open(path, O_WRONLY | O_CREAT | O_EXCL, mode);
    if (!error) Path = path;
    if (error != std::errc::file_exists) return error;
  }
  return make_error_code(std::errc::file_exists);
}

}  // namespace platform
