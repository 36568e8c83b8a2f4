#pragma once

#include <string_view>

/// The order of texts in a storage: by bytes, with the ASCII capital letters taken as small ones. Any
/// bytes are a text, NUL and broken UTF-8 included; a text stands before its own continuations.
int CompareTexts(std::string_view left, std::string_view right);

bool TextsAreEqual(std::string_view left, std::string_view right);
