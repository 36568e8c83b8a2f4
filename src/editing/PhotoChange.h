#pragma once

#include <functional>

/// What a command that changes a photo's file has come to.
enum class PhotoChange {
  None,        // nothing was done, and nothing is to be shown anew
  ShownImage,  // done, or tried in vain; the image given is what the file holds
  FileAlone,   // the file has changed behind the image given, which is to be loaded again
};

/// Called once, when the work begins and the user has nothing more to answer but what the command itself
/// asks: the moment for a wait cursor, which the caller takes away at the end. May be empty.
using WorkBegins = std::function<void()>;
