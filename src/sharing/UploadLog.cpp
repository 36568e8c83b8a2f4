#include "sharing/UploadLog.h"

#include <ctime>

#include "base/Exceptions.h"
#include "base/Folders.h"
#include "base/Format.h"
#include "base/Paths.h"
#include "platform/Files.h"
#include "platform/LocalTime.h"

namespace {

constexpr std::string_view kFileName = "upload.log";

std::string FindFolder() {
  if (CheckDiskWritable(GetProgramFolder())) return GetProgramFolder();
  try {
    return GetApplicationDataFolder();
  } catch (const CError&) {
    return {};
  }
}

}  // namespace

CUploadLog::CUploadLog() {
  const std::string folder = FindFolder();
  if (!folder.empty()) Path = JoinPath(folder, kFileName);
}

void CUploadLog::BeginAttempt(const std::string& photoPath) const {
  std::tm now{};
  platform::ToLocalTime(std::time(nullptr), now);
  Write(Format("\n======== Downloading photo %s on %s %s:\n", photoPath,
               platform::FormatTime(now, "%m/%d/%y"), platform::FormatTime(now, "%H:%M:%S")));
}

void CUploadLog::EndAttempt(bool isAnswered, int status, std::string_view response) const {
  if (isAnswered && status != 0) {
    Write(Format("Response code = %d\n", status));
    Write(response);
  } else {
    Write("No response received\n");
  }
  Write("\n==================================\n");
}

void CUploadLog::Write(std::string_view text) const {
  if (!Path.empty()) static_cast<void>(platform::AppendToFile(Path, text));
}
