#include "catalog/PhotoFacts.h"

#include <algorithm>
#include <vector>

namespace {

// Bits of a style.
constexpr std::int32_t kPlain = 0;
constexpr std::int32_t kRating = 1;
constexpr std::int32_t kChoices = 2;

/// All that the program does with one fact.
struct PhotoFact {
  StampId Id;
  const char* Name;  // of the stamp type; null for what is no stamp
  StampFormat Format;
  std::int32_t Style;
  bool Sortable;
  bool Searched;   // by the text filter
  SortKind Order;  // the order of photos that depends on it
};

// Catalogs have the stamp types in this order.
constexpr PhotoFact kFacts[] = {
    {StampId::Rating, "Rating", StampFormat::Number, kRating, true, false, SortKind::Rating},
    {StampId::Note, "Note", StampFormat::Text, kPlain, false, true, SortKind::None},
    {StampId::Person, "Person", StampFormat::Person, kChoices, true, true, SortKind::None},
    {StampId::Thing, "Thing", StampFormat::SharedText, kChoices, true, true, SortKind::None},
    {StampId::Event, "Event", StampFormat::SharedText, kChoices, true, true, SortKind::None},
    {StampId::Date, "Date", StampFormat::DateWithSource, kPlain, true, false, SortKind::Month},
    {StampId::FileCreateDate, "FileCreateDate", StampFormat::Date, kPlain, true, false, SortKind::None},
    {StampId::CameraDate, "CameraDate", StampFormat::Date, kPlain, true, false, SortKind::None},
    {StampId::PersonalPlace, "PersonalPlace", StampFormat::SharedText, kChoices, true, true, SortKind::None},
    {StampId::UserDate, "UserDate", StampFormat::Date, kPlain, true, false, SortKind::None},
    {StampId::Folder, nullptr, StampFormat::Invalid, kPlain, false, false, SortKind::Folder},
    {StampId::Title, nullptr, StampFormat::Invalid, kPlain, false, false, SortKind::Title},
};

/// Null if it isn't in the list.
const PhotoFact* Find(StampId id) {
  const auto found = std::find_if(std::begin(kFacts), std::end(kFacts),
                                  [id](const PhotoFact& fact) { return fact.Id == id; });
  return found != std::end(kFacts) ? found : nullptr;
}

}  // namespace

bool CStampType::HasListOfChoices() const { return IsKnown() && (Style & kChoices) != 0; }

std::span<const CStampType> GetStampTypeTable() {
  static const std::vector<CStampType> kTable = [] {
    std::vector<CStampType> types;
    for (const PhotoFact& fact : kFacts) {
      if (fact.Name == nullptr) continue;
      types.push_back(
          {static_cast<std::int32_t>(fact.Id), fact.Name, fact.Sortable, fact.Style, fact.Format});
    }
    return types;
  }();
  return kTable;
}

bool IsSearched(StampId type) {
  // Asked for each stamp of the catalog.
  static constexpr std::uint64_t kSearched = [] {
    std::uint64_t types = 0;
    for (const PhotoFact& fact : kFacts) {
      types |= std::uint64_t{fact.Searched} << static_cast<unsigned>(fact.Id);
    }
    return types;
  }();
  const auto number = static_cast<std::uint32_t>(type);
  return number < 64 && ((kSearched >> number) & 1) != 0;
}

bool DependsOn(SortKind order, StampId fact) {
  const PhotoFact* known = Find(fact);
  return known != nullptr && order != SortKind::None && known->Order == order;
}
