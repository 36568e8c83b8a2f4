#pragma once

#include <string>
#include <string_view>

/// A path cut behind its last "/".
struct PathParts {
  std::string Folder;  // with its closing "/"; empty for a bare name
  std::string Name;    // name with extension
};

PathParts SplitPath(std::string_view path);

/// The extension of the path's name with its dot; empty without one. A dot that begins the name begins
/// no extension.
std::string GetExtension(std::string_view path);

/// Folder and name with one "/" between them.
std::string JoinPath(std::string_view folder, std::string_view name);

/// The path with a closing "/"; an empty one stays empty.
std::string WithClosingSlash(std::string_view path);

/// The path without closing "/", but for the root.
std::string WithoutClosingSlash(std::string_view path);

/// A path of the string table, which are written with "\", in the form of this system.
std::string ToPlatformPath(std::string_view path);
