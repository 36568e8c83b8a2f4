#pragma once

#include <string>
#include <string_view>

/// upload.log: what the service answered to each attempt to upload a photo. It stands in the program's folder
/// if that can be written to, else in the folder of the catalog. A log that can't be written stops nothing.
class CUploadLog {
 public:
  CUploadLog();

  /// Before the wait for the answer.
  void BeginAttempt(const std::string& photoPath) const;

  /// `status` 0 or `isAnswered` false: there was no response.
  void EndAttempt(bool isAnswered, int status, std::string_view response) const;

 private:
  void Write(std::string_view text) const;

  std::string Path;
};
