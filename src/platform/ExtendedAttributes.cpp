#include "platform/ExtendedAttributes.h"

#include <sys/types.h>
#include <sys/xattr.h>

#include <string_view>
#include <vector>

namespace platform {

void CopyExtendedAttributes(const Descriptor& from, const Descriptor& to) {
  const ssize_t room = ::flistxattr(from.Get(), nullptr, 0);
  if (room <= 0) return;
  std::vector<char> names(static_cast<std::size_t>(room));
  const ssize_t length = ::flistxattr(from.Get(), names.data(), names.size());
  if (length <= 0) return;

  std::vector<char> value;
  const char* const end = names.data() + length;
  for (const char* name = names.data(); name < end; name += std::string_view(name).size() + 1) {
    const ssize_t size = ::fgetxattr(from.Get(), name, nullptr, 0);
    if (size < 0) continue;
    value.resize(static_cast<std::size_t>(size));
    const ssize_t got = ::fgetxattr(from.Get(), name, value.data(), value.size());
    if (got < 0) continue;
    static_cast<void>(::fsetxattr(to.Get(), name, value.data(), static_cast<std::size_t>(got), 0));
  }
}

}  // namespace platform
