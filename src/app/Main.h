#pragma once

#include <string>

/// The program, from its command line to its exit code: 0 for every early way out and after a reported
/// failure, kNormalExitCode after a normal session. Needs the application object. The text "/activedisk"
/// anywhere in the command line chooses to run from a removable disk.
int Main(const std::string& commandLine);
