#pragma once

#include "platform/Descriptor.h"

namespace platform {

/// Gives a file the extended attributes of another, as far as the file system knows them and the user may
/// set them. They are a courtesy: what can't be copied is left out. For the code of this folder.
void CopyExtendedAttributes(const Descriptor& from, const Descriptor& to);

}  // namespace platform
