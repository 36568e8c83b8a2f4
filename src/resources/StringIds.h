#pragma once

/// Every text of the string table, by number. The numbers of captions are also those of their commands
/// and pictures.
enum class StringId : int {
  ApplicationDataFolder = 103,
  ThumbnailFile = 105,
  RegistryKey = 106,
  CatalogFile = 107,
  SettingsFile = 115,
  PicturesFolderName = 116,
  PicturesFolderCreated = 117,
  DiskNotWritable = 118,
  MainWindowTitle = 128,
  FatalProblem = 134,
  DateFormat = 143,
  DateWithWeekdayFormat = 236,
  CameraDate = 334,
  SplashProduct = 2000,
  SplashVersion = 2001,
  SplashLegal1 = 2002,
  SplashLegal2 = 2003,
  SplashLegal3 = 2004,
  PleaseWaitSearching = 2007,
  PhotosFoundPleaseWait = 2008,
  CannotSaveEditedPhoto = 2009,
  FileDate = 5015,
  EditedDate = 5017,
  CannotCopyOriginal = 5060,
  SearchWindowTitle = 5089,
  MessageTitle = 5093,
  PrivateBuild = 5100,
  CatalogTooNew = 5139,
};
