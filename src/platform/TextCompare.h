#pragma once

#include <string>
#include <string_view>

/// Texts compared by their letters, which is how people compare them: a capital letter is its small one, and
/// an accent makes the same letter whether it is written into one character or behind it as a mark. The
/// user's language makes no difference. Texts are UTF-8; stray bytes are equal to themselves alone.
namespace platform {

/// The form that all texts of the same letters have in common: in small letters and composed.
std::string FoldLetters(std::string_view text);
/// The same into `folded`, whose room is used again.
void FoldLetters(std::string_view text, std::string& folded);

bool EqualLetters(std::string_view a, std::string_view b);

/// The letter that the text begins with, folded; empty if the text is.
std::string GetFirstLetter(std::string_view text);

/// Texts in the order of their keys, byte by byte, stand by their first letter, each with an accent right
/// behind the plain one, then by the other letters without their accents, then with them. Texts of the same
/// letters have one key. That of an ASCII text orders as its folded form does.
std::string MakeLetterOrderKey(std::string_view text);

}  // namespace platform
