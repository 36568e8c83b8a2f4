#pragma once

#include <functional>
#include <string>

class CPhotoSet;

/// The short name of a folder.
using FolderLabel = std::function<std::string(const std::string& folder)>;

/// What a photo's place in the order of its set is called: its month's date, its folder, its title, its
/// rating or its place in its roll. Empty for a set in no order, and for an index out of range.
std::string GetGroupLabel(const CPhotoSet& set, int index, const FolderLabel& folderLabel);
