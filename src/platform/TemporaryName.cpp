#include "platform/TemporaryName.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <cstdint>

#include "platform/Faults.h"
#include "platform/Files.h"

namespace platform {
namespace {

constexpr int kTries = 100;

std::error_code MakeRandomSuffix(std::string& suffix) {
  std::array<std::uint8_t, kSuffixLength> random{};
  if (::getrandom(random.data(), random.size(), 0) != static_cast<ssize_t>(random.size())) return LastError();
  suffix.clear();
  for (const std::uint8_t byte : random) suffix += kSuffixLetters[byte % kSuffixLetters.size()];
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
    if (error == std::errc::file_exists) continue;
    if (error) return error;
    Path = path;
    bool isOurs = false;
    if (const auto failure = Lock(isOurs)) return failure;
    if (isOurs) return {};
  }
  return make_error_code(std::errc::file_exists);
}

/// False in `isOurs` if a search has taken the new file for an abandoned one in this very moment.
std::error_code TemporaryName::Lock(bool& isOurs) {
  const int copy = ::fcntl(File.Get(), F_DUPFD_CLOEXEC, 0);
  if (copy < 0) return LastError();
  Locked = Descriptor(copy);
  const bool isTaken = ::flock(copy, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
  struct stat raw {};
  if (::fstat(copy, &raw) != 0) return LastError();
  isOurs = raw.st_nlink > 0 && !isTaken;
  return {};
}

}  // namespace platform
