#pragma once

#include <string>
#include <vector>

/// Where the user's and the program's folders are, by the XDG base and user directories. Paths have no
/// closing "/"; none is made by asking. An empty answer means that the system names no such folder.
/// The environment is read at each call.
namespace platform {

/// HOME, else the home folder of the user's account.
std::string HomeFolder();

/// The folder of the running executable, links resolved.
std::string ExecutableFolder();

/// XDG_DATA_HOME, else ~/.local/share.
std::string DataHome();

/// XDG_CONFIG_HOME, else ~/.config.
std::string ConfigHome();

/// XDG_CACHE_HOME, else ~/.cache.
std::string CacheHome();

/// Where the desktop looks for settings: ConfigHome, then XDG_CONFIG_DIRS.
std::vector<std::string> ConfigFolders();

/// Where the desktop looks for data such as the entries of programs: DataHome, then XDG_DATA_DIRS.
std::vector<std::string> DataFolders();

/// XDG_RUNTIME_DIR, private to the user; where it isn't set, a private folder in the temporary folder,
/// which is made. Empty if that can't be had.
std::string RuntimeFolder();

/// TMPDIR, else /tmp.
std::string TemporaryFolder();

/// The user's pictures folder: as the user dirs name it, else ~/Pictures. `known` tells whether the user
/// dirs name it or it stands.
std::string PicturesFolder(bool& known);

/// The user's documents folder: as the user dirs name it, else ~/Documents if it stands, else the home
/// folder. Empty if there is no home folder.
std::string DocumentsFolder();

}  // namespace platform
