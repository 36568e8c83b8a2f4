#include "platform/ShortPath.h"

#include <fcntl.h>

namespace platform {

ShortPath::ShortPath(const std::string& path) : Path(path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos || Folder.Open(path.substr(0, slash + 1), O_PATH | O_DIRECTORY)) return;
  Path = "/proc/self/fd/" + std::to_string(Folder.Get()) + path.substr(slash);
}

}  // namespace platform
