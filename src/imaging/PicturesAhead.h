#pragma once

#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "imaging/Image.h"
#include "imaging/PictureMemory.h"
#include "platform/Files.h"

/// A few photos that are decoded before anybody asks for them, one after the other on a thread of its own.
/// The thread knows files alone. What is held is bounded by GetAheadMemory: a photo for which there is no
/// room is left out. All operations are for one thread, that of the owner.
class CPicturesAhead {
 public:
  CPicturesAhead() = default;
  /// Waits for the photo that is being decoded.
  ~CPicturesAhead();
  CPicturesAhead(const CPicturesAhead&) = delete;
  CPicturesAhead& operator=(const CPicturesAhead&) = delete;

  /// Decodes JPEG files for a box, in that order. Those that are held or begun already for a box as large
  /// stay; all others are given up.
  void Prepare(const std::vector<std::string>& paths, ImageSize box);
  void GiveUp() { Prepare({}, {}); }

  /// Whether Take has no more to wait for and gives a picture, unless the file has changed.
  bool Has(const std::string& path) const;

  /// Hands over the picture of a file; waits for it if it is being decoded. Null if there is none, or the
  /// file is another than it was before it was read.
  std::unique_ptr<CImage> Take(const std::string& path);

 private:
  enum class State { Waiting, Begun, Ready };

  struct Picture {
    std::string Path;
    ImageSize Box;
    State Progress = State::Waiting;
    platform::FileStatus Status;  // of the file before it was read
    std::unique_ptr<CMemoryShare> Share;
    std::unique_ptr<CImage> Image;  // null if it gives none
  };

  std::vector<Picture>::iterator Find(const std::string& path);
  void Work(const std::stop_token& stop);
  static void Decode(Picture& picture);

  mutable std::mutex Mutex;  // of Pictures
  std::condition_variable_any Changed;
  std::vector<Picture> Pictures;
  std::jthread Worker;  // from the first use on
};
