#pragma once

#include <string>
#include <system_error>
#include <vector>

/// Other programs.
namespace platform {

/// The path of the program that PATH leads to, or of `name` itself if it holds a "/". Empty if there is none
/// that the user may run.
std::string FindProgram(const std::string& name);

/// Starts a program that goes on whatever becomes of this process: in a session of its own, without this
/// process's descriptors, with nothing to read from or write to. `command` is its path and its arguments,
/// byte for byte. An error if it can't be started; how it ends isn't told.
std::error_code StartProgram(const std::vector<std::string>& command);

}  // namespace platform
