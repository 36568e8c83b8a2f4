#pragma once

#include <string>
#include <string_view>

/// Compares texts by letters, as people do: case doesn't count, and composed and decomposed forms of an
/// accented letter are equal. The user's language makes no difference. Texts are UTF-8; an invalid byte is
/// equal only to itself.
namespace platform {

/// The form that all texts of the same letters share: lower case, composed.
std::string FoldLetters(std::string_view text);
/// The same, into `folded`, whose memory is reused.
void FoldLetters(std::string_view text, std::string& folded);

bool EqualLetters(std::string_view a, std::string_view b);

/// The letter that the text begins with, folded; empty if the text is.
std::string GetFirstLetter(std::string_view text);

/// A key for sorting: compared byte by byte, keys order texts by their first letter (an accented one right
/// after the plain one), then by the other letters without accents, then with accents. Texts of the same
/// letters have the same key. Keys of ASCII texts order as the folded texts do.
std::string MakeLetterOrderKey(std::string_view text);

}  // namespace platform
