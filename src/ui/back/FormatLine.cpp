#include "ui/back/FormatLine.h"

#include "base/Texts.h"
#include "platform/Files.h"

namespace {

constexpr std::uint64_t kBytesPerUnit = 1024;
constexpr std::uint64_t kMostKilobytes = 1000;

std::string MakeFileSize(std::uint64_t bytes) {
  const std::uint64_t kilobytes = bytes / kBytesPerUnit;
  return kilobytes < kMostKilobytes
             ? FormatString(StringId::SizeInKilobytes, kilobytes)
             : FormatString(StringId::SizeInMegabytes, static_cast<double>(kilobytes) / kBytesPerUnit);
}

}  // namespace

std::string MakeFormatLine(ImageSize size, std::uint64_t fileSize) {
  return FormatString(StringId::PictureSize, size.Width, size.Height) + " (" + MakeFileSize(fileSize) + ")";
}

std::string ReadFormatLine(ImageSize size, const std::string& path) {
  platform::FileStatus status;
  const bool isThere = !platform::GetStatus(path, status);
  return MakeFormatLine(size, isThere ? status.Size : 0);
}
