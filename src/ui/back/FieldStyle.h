#pragma once

#include "ui/kit/Flags.h"

/// How a field looks and behaves; combined with `|`. The numbers are bits.
enum class FieldStyle : unsigned {
  Editable = 1U << 0U,
  PathOrEllipsis = 1U << 1U,  // a path in a single line is shortened in its middle, any other text at its end
  RuledLines = 1U << 2U,      // one under each line of text
  WhiteFrame = 1U << 3U,
  Wraps = 1U << 4U,      // at words, over several lines
  SelectAll = 1U << 5U,  // of the text when the edit begins; else the caret goes to its end or to the click
  Labelled = 1U << 7U,
  OpensMenu = 1U << 8U,
  HasButton = 1U << 9U,  // after the text
  HidesValue = 1U << 10U,
};

template <>
inline constexpr bool kIsFlagSet<FieldStyle> = true;

/// Adds what follows from the rest: an editable text without a white frame is ruled, one that doesn't wrap is
/// selected as a whole.
constexpr FieldStyle Normalized(FieldStyle style) {
  if (HasFlag(style, FieldStyle::Editable) && !HasFlag(style, FieldStyle::WhiteFrame)) {
    style = style | FieldStyle::RuledLines;
  }
  return HasFlag(style, FieldStyle::Wraps) ? style : style | FieldStyle::SelectAll;
}
