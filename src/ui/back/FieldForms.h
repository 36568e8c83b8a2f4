#pragma once

#include <array>
#include <cstddef>

#include "resources/StringIds.h"
#include "ui/back/FieldNumber.h"
#include "ui/back/FieldStyle.h"
#include "ui/kit/FontTable.h"

/// One row of the photo back.
struct FieldForm {
  FieldNumber Number;
  StringId Label;  // its first line
  FieldStyle Style;
  FontId ValueFont;
  FontId LabelFont;
};

inline constexpr std::size_t kFieldCount = 9;

/// The position of a row, from the top.
enum class FieldRow : std::size_t {
  Rating,
  Title,
  Caption,
  Subjects,
  Event,
  Place,
  Date,
  Folder,
  Format,
};

namespace field_styles {

inline constexpr FieldStyle kRating = FieldStyle::Labelled | FieldStyle::RuledLines | FieldStyle::HidesValue;
inline constexpr FieldStyle kTitle =
    FieldStyle::Labelled | FieldStyle::Editable | FieldStyle::PathOrEllipsis | FieldStyle::Wraps;
inline constexpr FieldStyle kCaption = FieldStyle::Labelled | FieldStyle::Editable | FieldStyle::Wraps;
inline constexpr FieldStyle kList =
    FieldStyle::Labelled | FieldStyle::Editable | FieldStyle::OpensMenu | FieldStyle::HasButton;
inline constexpr FieldStyle kFolder = FieldStyle::Labelled | FieldStyle::PathOrEllipsis;
inline constexpr FieldStyle kFormat = FieldStyle::Labelled;

}  // namespace field_styles

/// The rows from the top.
inline constexpr std::array<FieldForm, kFieldCount> kFieldForms{{
    {FieldNumber::Rating, StringId::Rating, field_styles::kRating, FontId::Label, FontId::LabelItalic},
    {FieldNumber::Title, StringId::Title, field_styles::kTitle, FontId::LabelBold, FontId::LabelItalic},
    {FieldNumber::Caption, StringId::Caption, field_styles::kCaption, FontId::Label, FontId::LabelItalic},
    {FieldNumber::Subjects, StringId::Subjects, field_styles::kList, FontId::Label, FontId::LabelItalic},
    {FieldNumber::Event, StringId::Event, field_styles::kList, FontId::Label, FontId::LabelItalic},
    {FieldNumber::Place, StringId::Place, field_styles::kList, FontId::Label, FontId::LabelItalic},
    {FieldNumber::Date, StringId::Date, field_styles::kList, FontId::Label, FontId::LabelItalic},
    {FieldNumber::Folder, StringId::Folder, field_styles::kFolder, FontId::Caption, FontId::CaptionItalic},
    {FieldNumber::None, StringId::Format, field_styles::kFormat, FontId::Caption, FontId::CaptionItalic},
}};

/// The rows that the Tab key goes through, in its order.
inline constexpr std::array kEditableRows = {FieldRow::Title, FieldRow::Caption, FieldRow::Subjects,
                                             FieldRow::Event, FieldRow::Place,   FieldRow::Date};
