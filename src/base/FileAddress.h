#pragma once

#include <string>
#include <string_view>

/// The path, as bytes, that a file's address on this machine stands for: file:/path, file:///path or
/// file://localhost/path, with its escapes decoded. An escape that is none, or stands for the byte 0, which
/// no path has, is kept as text. Empty for any other text. Looks at no file.
std::string ReadFileAddress(std::string_view address);
