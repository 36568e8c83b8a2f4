#pragma once

#include <cstddef>
#include <iterator>

#include "catalog/PhotoFacts.h"
#include "resources/StringIds.h"
#include "ui/kit/Commands.h"
#include "ui/kit/Flags.h"
#include "ui/kit/FontTable.h"

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

inline constexpr FieldStyle kRatingStyle =
    FieldStyle::Labelled | FieldStyle::RuledLines | FieldStyle::HidesValue;
inline constexpr FieldStyle kTitleStyle =
    FieldStyle::Labelled | FieldStyle::Editable | FieldStyle::PathOrEllipsis | FieldStyle::Wraps;
inline constexpr FieldStyle kCaptionStyle = FieldStyle::Labelled | FieldStyle::Editable | FieldStyle::Wraps;
inline constexpr FieldStyle kListStyle =
    FieldStyle::Labelled | FieldStyle::Editable | FieldStyle::OpensMenu | FieldStyle::HasButton;
inline constexpr FieldStyle kFolderStyle = FieldStyle::Labelled | FieldStyle::PathOrEllipsis;
inline constexpr FieldStyle kFormatStyle = FieldStyle::Labelled;

/// One row of the photo back.
struct FieldForm {
  StampId Fact;       // None for the row with the sizes of picture and file
  CommandId Command;  // goes to the field
  StringId Label;     // its first line
  FieldStyle Style;
  FontId ValueFont;
  bool GapBelow;  // where there is room

  constexpr bool IsSmall() const { return ValueFont == FontId::Caption; }
  constexpr FontId GetLabelFont() const { return IsSmall() ? FontId::CaptionItalic : FontId::LabelItalic; }
};

/// The rows from the top. The Tab key goes through those that can be edited in this order.
inline constexpr FieldForm kFieldForms[] = {
    {StampId::Rating, CommandId::GoToRating, StringId::Rating, kRatingStyle, FontId::Label, false},
    {StampId::Title, CommandId::GoToTitle, StringId::Title, kTitleStyle, FontId::LabelBold, true},
    {StampId::Note, CommandId::GoToCaption, StringId::Caption, kCaptionStyle, FontId::Label, false},
    {StampId::Thing, CommandId::GoToSubjects, StringId::Subjects, kListStyle, FontId::Label, false},
    {StampId::Event, CommandId::GoToEvent, StringId::Event, kListStyle, FontId::Label, false},
    {StampId::PersonalPlace, CommandId::GoToPlace, StringId::Place, kListStyle, FontId::Label, false},
    {StampId::Date, CommandId::GoToDate, StringId::Date, kListStyle, FontId::Label, true},
    {StampId::Folder, CommandId::GoToFolder, StringId::Folder, kFolderStyle, FontId::Caption, false},
    {StampId::None, CommandId{}, StringId::Format, kFormatStyle, FontId::Caption, false},
};

inline constexpr std::size_t kFieldCount = std::size(kFieldForms);

/// The fact whose field a command goes to; None for any other command.
constexpr StampId FieldOfCommand(CommandId command) {
  for (const FieldForm& form : kFieldForms) {
    if (form.Command == command) return form.Fact;
  }
  return StampId::None;
}
