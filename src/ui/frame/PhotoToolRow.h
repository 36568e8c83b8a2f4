#pragma once

class CToolbar;

/// What the buttons of the current photo tab go by.
struct PhotoToolState {
  bool HasPhoto = false;
  bool HasOriginalCopy = false;
  bool ToEmail = false;
  bool ToUpload = false;
  bool SlideShowRuns = false;
  bool FullScreen = false;
};

/// Puts the buttons of the current photo tab into an empty row.
void FillPhotoToolRow(CToolbar& row);

/// Gives each button the picture and the state that fit now.
void UpdatePhotoToolRow(CToolbar& row, const PhotoToolState& state);
