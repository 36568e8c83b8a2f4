#include "catalog/StampType.h"

#include <array>

namespace {

constexpr std::int32_t kPlain = 0;
constexpr std::int32_t kRatingStyle = 1;
constexpr std::int32_t kHasChoices = 2;

CStampType MakeType(StampId id, const char* name, bool sortable, std::int32_t style, StampFormat format) {
  return {static_cast<std::int32_t>(id), name, sortable, style, format};
}

}  // namespace

std::span<const CStampType> GetStampTypeTable() {
  static const std::array kTable{
      MakeType(StampId::Rating, "Rating", true, kRatingStyle, StampFormat::Number),
      MakeType(StampId::Note, "Note", false, kPlain, StampFormat::Text),
      MakeType(StampId::Person, "Person", true, kHasChoices, StampFormat::Person),
      MakeType(StampId::Thing, "Thing", true, kHasChoices, StampFormat::SharedText),
      MakeType(StampId::Event, "Event", true, kHasChoices, StampFormat::SharedText),
      MakeType(StampId::Date, "Date", true, kPlain, StampFormat::DateWithSource),
      MakeType(StampId::FileCreateDate, "FileCreateDate", true, kPlain, StampFormat::Date),
      MakeType(StampId::CameraDate, "CameraDate", true, kPlain, StampFormat::Date),
      MakeType(StampId::PersonalPlace, "PersonalPlace", true, kHasChoices, StampFormat::SharedText),
      MakeType(StampId::UserDate, "UserDate", true, kPlain, StampFormat::Date),
  };
  return kTable;
}
