#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// The largest thumbnail, in pixels. A photo is never enlarged.
constexpr int kThumbnailBoxWidth = 140;
constexpr int kThumbnailBoxHeight = 105;
constexpr int kThumbnailQuality = 50;

/// What a photo that enters the catalog gives.
struct PreparedPhoto {
  bool WasRead = false;                 // false if the file can't be read now, or memory is short
  std::int32_t CameraDate = 0;          // of the EXIF DateTime; seconds since 1970, 0 for none
  std::vector<std::uint8_t> Thumbnail;  // a JPEG; empty if the file gives no picture
};

/// Whether the file stores its picture otherwise than it is seen, as far as can be told from its headers. Any
/// thread.
bool IsStoredLying(const std::string& path);

/// Reads the file once, for both. A file that is gone, no regular one or damaged gives less or nothing; never
/// an exception. Any thread.
PreparedPhoto PreparePhoto(const std::string& path);
