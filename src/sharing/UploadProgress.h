#pragma once

#include <cstdint>
#include <string>

class CAssetRecord;

/// A photo that waits for its upload.
struct PhotoToUpload {
  std::int32_t AssetID = -1;
  std::string Path;         // the whole path
  std::string Caption;      // its title: the file name without extension
  std::string Description;  // the caption that the user typed; may be empty
  std::string Info;         // its size in pixels, if that is known, and in units of 1000 bytes; see ReadInfo
};

/// All but Info, which takes a look at the file.
PhotoToUpload DescribePhotoToUpload(const CAssetRecord& photo);

/// The Info of a photo's file. May take long.
std::string ReadInfo(const std::string& path);

/// Where an upload reports to and asks whether to go on: the progress window in the program, a script in
/// tests. The reports answer whether to go on too: false if the user has asked to stop.
class CUploadProgress {
 public:
  virtual ~CUploadProgress() = default;

  virtual bool SetTotal(int count) = 0;

  /// `index` counts from 0.
  virtual bool SetPhoto(int index, const PhotoToUpload& photo) = 0;

  /// 0 to 100 of the current photo. Called after each turn of the event loop, mostly with the value that is
  /// shown already.
  virtual bool SetPercent(int percent) = 0;

  virtual bool IsStopped() const = 0;
};

/// What a progress window shows, without the window: it passes the reports on to here and paints the fields.
struct UploadStatus {
  void SetTotal(int count);
  void SetPhoto(int index, const PhotoToUpload& photo);
  void SetPercent(int percent);

  int Count = 0;
  int Index = -1;
  int PhotoPercent = 0;
  int OverallPercent = 0;
  std::string Title;     // of the photo
  std::string TopLine;   // which photo of how many
  std::string InfoLine;  // its size
};

/// How far the request of one photo has come.
struct TransferState {
  bool Connected = false;
  std::uint64_t Queued = 0;  // bytes of the request that are sent or wait to be sent
  std::uint64_t Total = 0;   // bytes of the request
  int Status = 0;
  std::uint32_t ResponseLength = 0;  // or kNoContentLength
  std::uint64_t ResponseReceived = 0;
  std::int64_t SinceQueued = 0;  // milliseconds since all was found queued for the first time
};

/// True once only time tells how far the request has come: all is queued, and no response can be measured.
bool IsEstimated(const TransferState& state);

/// 0 to 100. While the request is on its way this is an estimate of one byte a millisecond.
int GetTransferPercent(const TransferState& state);
