#include "sets/QuerySet.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <map>
#include <tuple>

#include "base/Texts.h"
#include "catalog/Catalog.h"
#include "catalog/Properties.h"
#include "platform/Ascii.h"
#include "platform/TextCompare.h"
#include "sets/GroupKey.h"
#include "storage/Row.h"

namespace {

c4_View SourceOf(const CCatalog& catalog, SetKind kind) {
  const c4_View assets = catalog.GetAssets();
  const c4_Row inPlace = props::Missing[static_cast<std::int32_t>(MissingState::InPlace)];
  switch (kind) {
    case SetKind::All:
      return assets;
    case SetKind::ToEmail:
      return assets.Select(inPlace + props::ToEmail[1]);
    case SetKind::Deleted:
      return assets.Select(props::Tossed[1]);
    case SetKind::ToRemotePrint:
      return assets.Select(inPlace + props::ToRemotePrint[1]);
    case SetKind::Available:
    case SetKind::Invalid:
      break;
  }
  return assets.Select(inPlace + props::Tossed[0]);
}

struct SortColumns {
  c4_Properties Ascending;
  c4_Properties Descending;  // those that run from high to low in descending order
};

/// By SortKind.
const std::array<SortColumns, 6>& GetSortColumns() {
  using namespace props;
  static const std::array<SortColumns, 6> kColumns{
      SortColumns{{AssetID}, {CachedDate, AssetID}},
      SortColumns{{CachedDate, CachedRating}, {CachedDate}},
      SortColumns{{Location, CachedDate}, {CachedDate, Location}},
      SortColumns{{Filename, CachedDate}, {CachedDate, Filename}},
      SortColumns{{CachedRating, CachedDate}, {CachedDate, CachedRating}},
      SortColumns{{RollID, CachedDate}, {CachedDate}},
  };
  return kColumns;
}

/// A storage sorts texts without regard to ASCII case, so the photos of folders that differ in case alone
/// come out mixed. This puts them together again, folder by folder, and else keeps their order. `folders` are
/// those of the members.
void HoldFoldersApart(const std::vector<std::string_view>& folders, std::vector<CPhotoSetEntry>& members) {
  for (std::size_t begin = 0, end = 0; begin < members.size(); begin = end) {
    bool areMixed = false;
    for (end = begin + 1; end < members.size() && TextsAreEqual(folders[end], folders[begin]); ++end) {
      areMixed |= folders[end] != folders[begin];
    }
    if (!areMixed) continue;
    std::map<std::string_view, std::vector<CPhotoSetEntry>> apart;
    for (std::size_t i = begin; i < end; ++i) apart[folders[i]].push_back(members[i]);
    auto next = members.begin() + static_cast<std::ptrdiff_t>(begin);
    for (const auto& [folder, photos] : apart) next = std::copy(photos.begin(), photos.end(), next);
  }
}

struct Title {
  std::string OrderKey;
  std::int32_t Date;
  int Row;
};

bool IsAsciiTitle(const c4_View& photos, int row) {
  return platform::IsAscii(photos.GetTextAt(props::Filename, row));
}

/// Whether all titles are ASCII, which the storage sorts by letters.
bool AreAsciiTitles(const c4_View& photos) {
  for (int row = 0; row < photos.GetSize(); ++row) {
    if (!IsAsciiTitle(photos, row)) return false;
  }
  return true;
}

/// The rows of a view that the storage has sorted by title and date, in the order of the titles' letters. All
/// titles of one first letter stand together.
std::vector<int> OrderByLetters(const c4_View& sortedByTitle, bool descending) {
  // ASCII titles are sorted already; usually that is most of them.
  std::vector<Title> ascii, others, all;
  for (int row = 0; row < sortedByTitle.GetSize(); ++row) {
    (IsAsciiTitle(sortedByTitle, row) ? ascii : others)
        .push_back({platform::MakeLetterOrderKey(sortedByTitle.GetTextAt(props::Filename, row)),
                    sortedByTitle.GetIntegerAt(props::CachedDate, row), row});
  }
  const auto isBefore = [descending](const Title& left, const Title& right) {
    const Title& low = descending ? right : left;
    const Title& high = descending ? left : right;
    return std::tie(low.OrderKey, low.Date) < std::tie(high.OrderKey, high.Date);
  };
  std::stable_sort(others.begin(), others.end(), isBefore);
  std::merge(std::make_move_iterator(ascii.begin()), std::make_move_iterator(ascii.end()),
             std::make_move_iterator(others.begin()), std::make_move_iterator(others.end()),
             std::back_inserter(all), isBefore);
  std::vector<int> rows;
  rows.reserve(all.size());
  for (const Title& title : all) rows.push_back(title.Row);
  return rows;
}

}  // namespace

CQuerySet::CQuerySet(CCatalog* catalog, SetKind kind)
    : Kind(catalog != nullptr ? kind : SetKind::Invalid), Catalog(catalog) {
  if (Kind == SetKind::Invalid) {
    Invalidate();
    return;
  }
  Source = SourceOf(*catalog, kind);
  Rebuild();
}

bool CQuerySet::CanSort(SortKind kind, bool) const {
  return IsValid() && kind >= SortKind::None && kind <= SortKind::Roll;
}

void CQuerySet::Rebuild() {
  if (!IsValid()) return;
  CPhotoSet::Rebuild();
  const SortColumns& columns = GetSortColumns()[static_cast<std::size_t>(GetSortKind())];
  const c4_View sorted = IsDescending() ? Source.SortOnReverse(columns.Ascending, columns.Descending)
                                        : Source.SortOn(columns.Ascending);
  // The filters look at the rows in the order of memory, which is much faster than in sorted order.
  const bool areAll = !HasFilters();
  const CAssetIdSet matches = FindMatches();
  CGroupKeyFinder groupKeys(GetSortKind());
  std::vector<int> rows;  // none: as they are sorted
  if (GetSortKind() == SortKind::Title && !AreAsciiTitles(Source)) {
    rows = OrderByLetters(sorted, IsDescending());
  }
  Members.clear();
  std::vector<std::string_view> folders;
  Members.reserve(static_cast<std::size_t>(sorted.GetSize()));
  for (int i = 0; i < sorted.GetSize(); ++i) {
    const int row = rows.empty() ? i : rows[static_cast<std::size_t>(i)];
    const std::int32_t assetId = sorted.GetIntegerAt(props::AssetID, row);
    if (!areAll && !matches.Contains(assetId)) continue;
    if (GetSortKind() == SortKind::Folder) folders.push_back(sorted.GetTextAt(props::Location, row));
    Members.push_back({assetId, groupKeys.Find(CAssetRecord(Catalog, sorted[row]))});
  }
  if (GetSortKind() == SortKind::Folder) HoldFoldersApart(folders, Members);
  Members.shrink_to_fit();
}

CAssetIdSet CQuerySet::FindMatches() const {
  CAssetIdSet matches;
  if (!HasFilters()) return matches;
  for (int i = 0; i < Source.GetSize(); ++i) {
    const CAssetRecord record(Catalog, Source[i]);
    if (Matches(record)) matches.Add(record.GetAssetID());
  }
  return matches;
}

std::string CQuerySet::GetName() const {
  if (HasName()) return CPhotoSet::GetName();
  // The kind for printing has no name of its own.
  if (Kind == SetKind::ToRemotePrint) return LoadExpandedString(StringId::UnknownSet);
  const std::string name = LoadExpandedString(static_cast<StringId>(Kind));
  return name.empty() ? LoadExpandedString(StringId::UnknownSet) : name;
}
