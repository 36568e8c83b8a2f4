#pragma once

class CCatalog;
class CPhotoSet;

/// Where the strip goes after the main set has changed.
enum class StripPosition : int {
  KeepPhoto = -1,   // the photo that is current now, if the set still has it
  StartOfSet = -2,  // the last photo of a set sorted by month, else the first
};

/// What the filter bar needs of the main window. All calls come on the window thread, while no job runs.
class CFilterBarHost {
 public:
  virtual ~CFilterBarHost() = default;

  virtual CCatalog& GetCatalog() = 0;
  /// The set that the strip shows.
  virtual CPhotoSet& GetPhotoSet() = 0;

  /// The set was rebuilt.
  virtual void RefreshStrip(StripPosition position) = 0;
  /// Goes to a photo of the set without a slide.
  virtual void MoveStrip(int index) = 0;

  /// The user is about to type a text to find.
  virtual void OnEditBegins() = 0;
  /// Gives the focus to the main window, which ends any edit.
  virtual void FocusMainWindow() = 0;

  /// The data is about to be lent to a job: what is being edited is committed, a slide show stops.
  virtual void PrepareForJob() = 0;
  /// Photos may have come, gone or come back.
  virtual void OnFoldersSearched() = 0;
};
