#pragma once

#include <string>
#include <string_view>

/// The program that the user's desktop has for a type of file or address, such as "x-scheme-handler/mailto":
/// the one that the user has chosen, else one that says it takes the type. The path of what it runs; empty if
/// there is none. Follows the desktop's rules for associations and for the entries of programs.
std::string FindDefaultProgram(std::string_view type);
