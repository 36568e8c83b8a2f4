#pragma once

#include <string>

/// Opens a page of the network, "http://..." in its encoded form, in the user's browser. If the desktop has
/// no program for it, the user is told the address.
void OpenWebPage(const std::string& address);

/// The same for a file, in the program that the desktop has for files of its kind. Any bytes will do as path.
void OpenFile(const std::string& path);
