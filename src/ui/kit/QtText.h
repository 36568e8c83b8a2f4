#pragma once

#include <QString>
#include <string>
#include <string_view>

/// Texts of the floors below are UTF-8; a stray byte of a file's name shows as a replacement sign.
inline QString ToQString(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}
