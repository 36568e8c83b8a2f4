#pragma once

#include <string>
#include <vector>

/// What the command line asks for.
struct Arguments {
  bool WantsHelp = false;
  bool WantsVersion = false;
  bool ActiveDisk = false;         // run from a removable disk
  std::string Unknown;             // the first option that isn't known; empty if all are
  std::vector<std::string> Paths;  // photos and folders, as bytes; relative ones are left as they are
};

/// Reads the words behind the program's name; looks at no file. Up to a word "--", the text "/activedisk"
/// anywhere in a word chooses the removable disk, and a word that begins with "-" is an option. All others
/// are paths. A file: URL of this machine becomes its path, with escapes decoded; any other URL is kept as it
/// is. Empty words are left out.
Arguments ParseArguments(const std::vector<std::string>& words);
