#pragma once

#include <string>

class QUrl;

/// The path, as bytes, that an address stands for which the toolkit has made of a file; empty for one that is
/// no file's of this machine. Where the toolkit has put replacement signs for bytes that aren't text, the one
/// folder with that look is taken.
std::string GetPathOfAddress(const QUrl& address);
