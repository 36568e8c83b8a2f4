#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "imaging/JpegGuard.h"

/// Bytes in memory as the JPEG library wants files; for code inside the imaging folder.

/// A comment or application data of a file, as it lies there.
struct JpegHeader {
  int Marker = 0;
  std::span<const std::uint8_t> Data;
};

/// A file to read. Behind its end stands a made-up end of the picture, once and again, so a file that is cut
/// short goes as far as it does. Must outlive the library's object, and the bytes must outlive both.
class CJpegSource {
 public:
  explicit CJpegSource(std::span<const std::uint8_t> bytes);
  CJpegSource(const CJpegSource&) = delete;
  CJpegSource& operator=(const CJpegSource&) = delete;

  jpeg_source_mgr* GetManager() { return &Manager; }

  /// Keeps all headers from now on; to be called guarded, before the library reads. The library's own list of
  /// them is walked to its end for each that is added, which takes minutes for a file that is full of them.
  void KeepHeaders(j_decompress_ptr info);

  /// In the order of the file.
  const std::vector<JpegHeader>& GetHeaders() const { return Manager.Headers; }

  /// What the library hasn't asked for yet.
  std::span<const std::uint8_t> GetRest() const;

 private:
  struct WatchedManager : jpeg_source_mgr {
    bool RanOut = false;
    std::vector<JpegHeader> Headers;
  };

  static boolean TakeHeader(j_decompress_ptr info);
  static bool Keep(WatchedManager& manager, const JpegHeader& header) noexcept;

  WatchedManager Manager{};
};

/// A block of bytes that grows as the library fills it. Must outlive the library's object.
class CJpegDestination {
 public:
  /// `expected` bytes are taken at first.
  explicit CJpegDestination(std::size_t expected);
  CJpegDestination(const CJpegDestination&) = delete;
  CJpegDestination& operator=(const CJpegDestination&) = delete;

  jpeg_destination_mgr* GetManager() { return &Manager; }

  /// What was written, once the library has finished.
  std::vector<std::uint8_t> Take();

 private:
  struct OwnedManager : jpeg_destination_mgr {
    CJpegDestination* Owner = nullptr;
  };

  static CJpegDestination& From(j_compress_ptr info) {
    return *static_cast<OwnedManager*>(info->dest)->Owner;
  }

  void Continue(j_compress_ptr info, std::size_t used);
  bool Grow() noexcept;

  OwnedManager Manager{};
  const std::size_t Expected;
  std::vector<std::uint8_t> Bytes;
  std::size_t Used = 0;
};
