#pragma once

/// The pictures, each a file resources/pictures/<number>.svg. A picture of several images holds them side by
/// side, of equal width. That of a button has the number of the button's text.
enum class PictureId : int {
  ProgramIcon = 128,
  LensTop = 302,
  LensLeft = 303,
  LensRight = 304,
  LensBottom = 305,
  PlaySlideShow = 306,
  StopSlideShow = 307,
  ViewNormal = 308,
  ViewFullScreen = 309,
  EmptyStar = 313,    // rest, pressed, pointer
  FilledStar = 314,   // rest, pressed, pointer
  RotateRight = 327,  // buttons: rest, pressed
  RotateLeft = 328,
  Help = 329,
  EmailMark = 336,  // on the large photo
  ClearAllEmail = 343,
  EmptyTrash = 345,
  Restore = 346,
  NextPhoto = 353,
  PreviousPhoto = 354,
  BandStars = 356,        // 0 to 4 stars
  CurrentPhotoTab = 358,  // tabs: not selected, selected
  UploadPhoto = 360,
  EmailStripMarks = 362,  // strip marks: off, on, off under the pointer, on under the pointer
  Emailing = 380,         // of the dialog before a mail
  ServiceSign = 383,
  PanelCorners = 393,  // 3 by 3 tiles
  FieldButton = 394,   // rest, pressed
  DeletePhoto = 1007,
  SendPhotos = 1009,
  EmailPhoto = 1012,
  ClearAllUpload = 1015,
  ClearOneUpload = 1016,
  DoNotUploadPhoto = 1017,
  DoNotEmailPhoto = 5005,
  NextGroup = 5037,
  PreviousGroup = 5038,
  UndoAutoFix = 5040,
  EmailTab = 5042,   // tabs: without photos not selected and selected, with photos the same
  UploadTab = 5044,  // as EmailTab
  TrashTab = 5047,
  RatingItems = 5059,  // of drop lists: a star, an empty star
  SortItems = 5061,    // month, rating, folder, title, roll, the dark star of a yellow row
  FolderItems = 5063,  // all folders, the pictures folder, a folder, search, add a folder, remove one
  SearchBackground = 5065,
  UploadStripMarks = 5069,
  UploadPhotos = 5076,
  ClearOneEmail = 5077,
  OrderPrints = 5094,
  PhotoShadow = 5105,          // five pieces
  TabTiles = 5107,             // eleven tiles
  ThumbnailShadow = 5112,      // in the strip
  PageThumbnailShadow = 5114,  // on a page
  PushBar = 5116,              // left end, middle, right end
  Separators = 5118,  // before the first cell, between cells, between groups, after the last; three rows each
  RatingItemsOnYellow = 5120,
  TextButtons = 5121,  // rest, pressed, default, default pressed
  UploadMark = 10029,  // on the large photo
  SearchBackgroundWithSplash = 10032,
  UploadBackground = 10033,
  Logo = 10045,
  AutoFix = 10046,
  AddRecent = 15002,

  // Pictures that belong to no command, text or field are numbered from 20000.
  DropControl = 20010,  // at rest, open; with an edit box at rest, open
};
