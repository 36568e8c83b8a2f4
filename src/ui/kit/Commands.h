#pragma once

/// What the user can ask for, by key, button or menu. The main window carries commands out; everything else
/// only names them.
enum class CommandId : int {
  EndEdit = 1,
  Cancel = 2,
  ToggleUpload = 111,
  // A field of the photo back, by its number.
  GoToRating = 221,
  GoToCaption = 222,
  GoToSubjects = 224,
  GoToEvent = 225,
  GoToDate = 226,
  GoToPlace = 230,
  GoToFolder = 232,
  GoToTitle = 233,
  // A star of the rating control.
  RateByStar1 = 316,
  RateByStar2 = 317,
  RateByStar3 = 318,
  RateByStar4 = 319,
  RotateRight = 327,
  RotateLeft = 328,
  Help = 329,
  ClearAllEmail = 343,
  EmptyTrash = 345,
  Restore = 346,
  AutoFix = 349,
  StopSearching = 363,  // in the search's own window
  OpenFieldList = 394,  // of a field of the photo back
  PreviousPhoto = 1000,
  NextPhoto = 1001,
  NextPage = 1002,
  PreviousPage = 1003,
  ShowInfo = 1005,
  DeletePhoto = 1007,
  ToggleSlideShow = 1008,
  SendPhotos = 1009,
  ToggleFullScreen = 1010,
  ToggleEmail = 1012,
  ClearAllUpload = 1015,
  ClearOneUpload = 1016,
  TipAtStart = 4999,
  FirstPhoto = 5000,
  LastPhoto = 5001,
  NextField = 5010,
  PreviousField = 5012,
  RenamePhoto = 5014,
  CloseWindow = 5018,
  Rate0 = 5027,
  Rate1 = 5028,
  Rate2 = 5029,
  Rate3 = 5030,
  Rate4 = 5031,
  NextGroup = 5037,
  PreviousGroup = 5038,
  NextTab = 5049,
  UploadPhotos = 5076,
  ClearOneEmail = 5077,
  OrderPrints = 5094,
  StopUploading = 10018,  // in the upload's own window
  JoinService = 12028,    // in the login dialog, where 1, EndEdit, is Login
  // In the information window, where 1, EndEdit, closes it.
  OpenWebsite = 12033,
  OpenFeedbackPage = 12034,
  OpenPromotionsPage = 12036,
  OpenHelpPage = 12037,
  AddRecent = 15002,
  // By key alone.
  GoToFind = 20001,
  OpenList = 20002,
  OpenListOrNextGroup = 20003,
  OpenContextMenu = 20004,
  Copy = 57634,
  Cut = 57635,
  Paste = 57637,
  Undo = 57643,
};

/// Where commands arrive.
class CCommandTarget {
 public:
  virtual ~CCommandTarget() = default;
  virtual void OnCommand(CommandId id) = 0;
};

/// The tabs of the main window. The number is also that of the tab's tool tip.
enum class ViewTabId : int { CurrentPhoto = 331, Email = 333, Upload = 340, Trash = 344 };
