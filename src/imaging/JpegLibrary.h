#pragma once

#include <csetjmp>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <span>
#include <vector>
// jpeglib.h needs <cstdio> before it.
#include <jerror.h>
#include <jpeglib.h>

/// What every use of the JPEG library needs, for code inside the imaging folder: its errors, limits on what
/// one file may cost, files in memory.

/// The library's errors. It is C and must not be unwound by an exception, so its fatal errors jump back to
/// RunGuarded, which returns false. A jump over an object with a destructor is undefined in C++: a guarded
/// step, and everything that it calls, holds none while it is inside the library.
struct JpegErrors {
  JpegErrors();
  JpegErrors(const JpegErrors&) = delete;
  JpegErrors& operator=(const JpegErrors&) = delete;

  jpeg_error_mgr Manager{};
  std::jmp_buf Jump{};
  bool RanDry = false;      // the entropy-coded data of a scan has ended too early
  bool Flawed = false;      // something in the file couldn't be decoded, or was skipped
  bool LostHeader = false;  // the same before the first scan
};

/// Runs a step that calls the library on an object whose `err` is `errors.Manager` and whose `client_data`
/// is `errors`. Returns what the step returns, or false if the library gave up.
template <typename Step>
bool RunGuarded(JpegErrors& errors, const Step& step) {
  if (setjmp(errors.Jump) != 0) return false;
  return step();
}

/// Whether a picture, of which the header has been read, is small enough to be worked on.
bool IsAffordable(const jpeg_decompress_struct& info);

/// Bytes that the coefficients of all channels take, in whole units as the library holds them.
std::uint64_t GetCoefficientBytes(const jpeg_decompress_struct& info);

/// Adds up what the scans of a file cost. The library itself would work for minutes on a few forged bytes.
class CScanBudget {
 public:
  explicit CScanBudget(std::size_t fileBytes);

  /// To be called for each scan, right after its header. False if that scan is one too many.
  bool Allows(const jpeg_decompress_struct& info);

  /// The same for scan `number`, counted from 1, of `blocks` blocks.
  bool Allows(int number, std::uint64_t blocks);

  bool IsSpent() const { return Spent; }

 private:
  const std::uint64_t MaxBlockVisits;
  std::uint64_t BlockVisits = 0;
  bool Spent = false;
};

/// A comment or application data of a file.
struct JpegHeader {
  int Marker = 0;
  std::span<const std::uint8_t> Data;
};

/// A file to read. After its last byte the library gets synthetic EOI markers, so that what a truncated file
/// has is decoded. Must outlive the library's object, and the bytes must outlive both.
class CJpegSource {
 public:
  explicit CJpegSource(std::span<const std::uint8_t> bytes);
  CJpegSource(const CJpegSource&) = delete;
  CJpegSource& operator=(const CJpegSource&) = delete;

  jpeg_source_mgr* GetManager() { return &Manager; }

  /// Keeps all headers from now on; to be called guarded, before the library reads. The library's own list
  /// takes quadratic time: minutes for a file that is full of headers.
  void KeepHeaders(j_decompress_ptr info);

  /// In the order of the file.
  const std::vector<JpegHeader>& GetHeaders() const { return Manager.Headers; }

  /// The bytes that the library hasn't read.
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
  /// `expected` bytes are allocated at first.
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
