#pragma once

#include <string>

#include "app/Arguments.h"

/// The program, from its command line to its exit code: 0 for every early way out and after a reported
/// failure, kNormalExitCode after a normal session. Needs the application object.
/// `activationToken` is what the desktop gave this process to bring its window to the front.
int Main(const Arguments& commandLine, const std::string& activationToken = {});
