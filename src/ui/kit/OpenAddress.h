#pragma once

#include <string>

/// Opens a page of the network, "http://..." in its encoded form, in the user's browser. If the desktop has
/// no program for it, the user is told the address.
void OpenWebPage(const std::string& address);

/// The same for an address that isn't encoded yet, in which "%" and "#" stand for themselves. It may hold a
/// secret, so a failure is neither told nor logged. False if the desktop has no program for it.
bool TryOpenWebPage(const std::string& address);

/// The same as OpenWebPage for a file, in the program that the desktop has for files of its kind. Any bytes
/// will do as path.
void OpenFile(const std::string& path);

/// The address of a file, "file://..." in its encoded form. Any bytes will do as path.
std::string GetAddressOfFile(const std::string& path);
