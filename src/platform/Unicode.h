#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Text as UTF-8. File names may hold bytes that are no valid UTF-8: each such byte counts as a character
/// of its own and goes through every operation unchanged.
namespace platform {

/// The whole text in lower case, whatever the user's language.
std::string ToLower(std::string_view text);

/// The text by Unicode's simple case folding, for comparison alone: texts that differ in case are equal by
/// it, also where lower case holds them apart, as it does the two small sigmas.
std::string FoldCase(std::string_view text);

/// True if the two are equal by FoldCase.
bool EqualNoCase(std::string_view a, std::string_view b);

/// The number of characters (code points and stray bytes).
std::size_t CountCharacters(std::string_view text);

/// The bytes of the character that begins at `offset`: 1 to 4, and 0 at the end of the text.
std::size_t CharacterLength(std::string_view text, std::size_t offset);

/// The first character, empty if the text is.
std::string_view FirstCharacter(std::string_view text);

/// The longest start of `text` of at most `limit` bytes that cuts no character.
std::string_view Truncated(std::string_view text, std::size_t limit);

bool IsValidUtf8(std::string_view text);

}  // namespace platform
