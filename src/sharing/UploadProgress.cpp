#include "sharing/UploadProgress.h"

#include <algorithm>
#include <cmath>

#include "base/Texts.h"
#include "catalog/AssetRecord.h"
#include "catalog/StampList.h"
#include "imaging/ImageFile.h"
#include "platform/Files.h"
#include "sharing/HttpResponseParser.h"

namespace {

constexpr std::uint64_t kBytesPerUnit = 1000;

// The bar of a photo: queuing, then the estimated transfer, then the response.
constexpr double kQueuedPercent = 10;
constexpr std::int64_t kEstimatedPercent = 85;
constexpr double kResponsePercent = 5;
constexpr double kSentPercent = kQueuedPercent + static_cast<double>(kEstimatedPercent);

double GetExactPercent(const TransferState& state) {
  if (!state.Connected) return 0;
  if (state.Queued != state.Total) {
    const double queued = static_cast<double>(state.Queued);
    return state.Total == 0 ? 0 : queued / static_cast<double>(state.Total) * kQueuedPercent;
  }
  if (IsEstimated(state)) {
    if (state.Total == 0) return kQueuedPercent;
    const std::int64_t share = state.SinceQueued * kEstimatedPercent / static_cast<std::int64_t>(state.Total);
    return kQueuedPercent + static_cast<double>(std::min(kEstimatedPercent, share));
  }
  if (state.ResponseLength == 0) return kSentPercent;
  return kSentPercent + kResponsePercent * static_cast<double>(state.ResponseReceived) / state.ResponseLength;
}

}  // namespace

PhotoToUpload DescribePhotoToUpload(const CAssetRecord& photo) {
  return {photo.GetAssetID(),
          photo.GetPath(),
          photo.GetTitle(),
          photo.GetStamps(StampId::Note).Get(0).GetText(),
          {}};
}

std::string ReadInfo(const std::string& path) {
  platform::FileStatus status;
  const std::uint64_t bytes = platform::GetStatus(path, status) ? 0 : status.Size;
  std::string fileSize = FormatString(StringId::SizeInThousandBytes, bytes / kBytesPerUnit);
  const ImageSize size = ReadImageSize(path);
  if (size.Width <= 0 || size.Height <= 0) return fileSize;
  return FormatString(StringId::PictureSize, size.Width, size.Height) + ", " + fileSize;
}

void UploadStatus::SetTotal(int count) {
  Count = count;
  Index = -1;
  TopLine = FormatString(StringId::PhotosToUpload, count);
  InfoLine.clear();
}

void UploadStatus::SetPhoto(int index, const PhotoToUpload& photo) {
  Index = index;
  SetPercent(0);
  Title = photo.Caption;
  TopLine = FormatString(StringId::PhotoOfCount, index + 1, Count);
  InfoLine = photo.Info;
}

void UploadStatus::SetPercent(int percent) {
  PhotoPercent = percent;
  OverallPercent = Count > 0 ? (percent + Index * 100) / Count : 0;
}

bool IsEstimated(const TransferState& state) {
  const bool isMeasured = state.Status != 0 && state.ResponseLength != kNoContentLength;
  return state.Connected && state.Queued == state.Total && !isMeasured;
}

int GetTransferPercent(const TransferState& state) {
  return static_cast<int>(std::lround(GetExactPercent(state)));
}
