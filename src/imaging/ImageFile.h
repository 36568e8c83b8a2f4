#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "imaging/Image.h"

/// Photos by their files' names: which variant of CImage a file takes, and no exceptions.

/// The format that an extension, with its dot, stands for, without regard to case: ".jpg" and ".jpeg" are
/// JPEG, anything else is None.
ImageType ImageTypeFromExtension(std::string_view extension);

/// The same for the extension of a path.
ImageType ImageTypeOfFile(std::string_view path);

/// Decodes a photo for a box; 0 by 0 asks for the full picture. A JPEG, or a TIFF by its extension ".tif"
/// or ".tiff". Null if it is of no such type, in which case it isn't opened, or can't be decoded. If
/// `isTooLarge` is given, it becomes true if the photo takes more memory or work than the program gives to
/// one, otherwise false.
std::unique_ptr<CImage> LoadImageFile(const std::string& path, int boxWidth, int boxHeight,
                                      bool* isTooLarge = nullptr);

/// As LoadImageFile for a file that has been read already; `path` tells its type.
std::unique_ptr<CImage> LoadImageBytes(const std::string& path, std::span<const std::uint8_t> bytes,
                                       int boxWidth, int boxHeight);

/// A photo's size in pixels, from its header alone; 0 by 0 if it isn't known.
ImageSize ReadImageSize(const std::string& path);
