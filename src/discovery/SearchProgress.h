#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <utility>

#include "base/Exceptions.h"
#include "base/Messages.h"

/// One photo that a search has just dealt with. The references last for the call alone.
struct PhotoProgress {
  int Index = 0;                            // position in the pending list, from 0
  const std::string& Path;                  // the whole path
  std::span<const std::uint8_t> Thumbnail;  // a JPEG of at most 140 by 105 pixels; empty if there is none
  bool ShowThumbnail = true;
};

/// Where a folder search reports to and asks whether to go on. The progress window stands behind it in the
/// program, a script in tests.
///
/// Thread: the one that runs the search. The calls hand over values and return when the other side has
/// taken them; they never touch catalog or cache.
class CSearchProgress {
 public:
  virtual ~CSearchProgress() = default;

  /// Phase two begins, with that many files to look at. False if the user has asked to stop.
  virtual bool SetTotal(int count) = 0;

  /// A photo is done. False if the user has asked to stop.
  virtual bool Progress(const PhotoProgress& photo) = 0;

  /// Whether the user has asked to stop. Cheap: the walk asks before each directory entry.
  virtual bool IsStopped() const = 0;

  bool RefusalTold = false;  // by TellRefusal
};

/// Runs `work`. A write that the disk refuses ends it and is told to the user, once for each `progress`,
/// which may be null: what the disk refuses next has the same cause.
inline void TellRefusal(CSearchProgress* progress, const std::function<void()>& work) {
  try {
    work();
  } catch (const CStorageException& refusal) {
    if (progress != nullptr && std::exchange(progress->RefusalTold, true)) return;
    ShowMessage(refusal.GetMessage(), false, MessageParent::ProgressWindow);
  }
}
