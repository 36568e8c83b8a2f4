#pragma once

#include <string>
#include <string_view>

/// What is said to the service about one photo, in the order of the form.
struct UploadForm {
  std::string Path;  // of the file
  std::string AlbumName;
  int WatermarkSize = 0;
  int ProductID = 0;
  int Quantity = 0;
  bool DirectPrint = false;
  std::string Caption;
  std::string Description;
};

/// The part of a request's body that stands before the file's bytes.
std::string MakeUploadPreamble(const std::string& memberId, const UploadForm& form, bool debug);

/// The part behind them.
std::string MakeUploadTrailer();

/// The value of the header Content-Type.
std::string MakeUploadContentType();
