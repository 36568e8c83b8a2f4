#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What a mail of photos and its attachments are called. Pure functions.

/// The text on one line, in valid UTF-8: "_" stands for each control character, each stray byte and each "\",
/// which some mail programs take for the beginning of a control character.
std::string MakePlainText(std::string_view text);

/// The name that the recipient of a photo sees: the photo's own, with the extension ".jpg" in place of one
/// that doesn't mean JPEG. It is plain text and fits a file system.
std::string GetAttachmentName(std::string_view photoPath);

/// Where the copies of photos stand in `folder`, in the order of the photos: each under its attachment name.
/// One whose name is taken stands in a folder of its own within.
std::vector<std::string> GetCopyPaths(const std::vector<std::string>& photoPaths, const std::string& folder);

/// The subject given, else the name of a single photo without extension, else how many there are.
std::string GetMailSubject(const std::vector<std::string>& photoPaths,
                           const std::optional<std::string>& subject);

/// What the mail says below the user's own words.
std::string GetMailFooter();
