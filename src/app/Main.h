#pragma once

#include "app/Arguments.h"

/// The program, from its command line to its exit code: 0 for every early way out and after a reported
/// failure, kNormalExitCode after a normal session. Needs the application object.
int Main(const Arguments& commandLine);
