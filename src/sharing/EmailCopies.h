#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

/// Hears how far the copies for a mail are, and says whether to go on. Called on the thread that makes them.
class CEmailProgress {
 public:
  virtual ~CEmailProgress() = default;

  /// So many photos of all are done.
  virtual void Progress(std::size_t done, std::size_t count) = 0;

  /// Whether the user has asked to stop.
  virtual bool IsStopped() const = 0;
  /// No more comes, but perhaps a message.
  virtual void End() {}
};

/// Writes a copy of a photo that fits 800 by 600 pixels, never enlarged, as a new JPEG of quality 65. It
/// carries no EXIF and no colour profile, as nothing that the program encodes does. The file is whole, or not
/// there. False if the photo can't be decoded. CStorageException if the file can't be written. Any thread.
bool MakeEmailCopy(const std::string& photoPath, const std::string& copyPath);

/// Makes the copies of photos in `folder` on all cores, as many at a time. The paths of the copies in the
/// order of the photos; those that can't be decoded are left out. None if `progress`, which may be null, has
/// stopped it, which leaves what was made. CStorageException.
std::optional<std::vector<std::string>> MakeEmailCopies(const std::vector<std::string>& photoPaths,
                                                        const std::string& folder, CEmailProgress* progress);
