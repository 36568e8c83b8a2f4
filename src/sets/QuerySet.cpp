#include "sets/QuerySet.h"

#include "catalog/Catalog.h"
#include "catalog/Properties.h"

namespace {

c4_View SourceOf(const CCatalog& catalog, SetKind kind) {
  if (kind == SetKind::All) return catalog.GetAssets();
  const auto inPlace = static_cast<std::int32_t>(MissingState::InPlace);
  return catalog.GetAssets().Select(props::Missing[inPlace] + props::Tossed[0]);
}

}  // namespace

CQuerySet::CQuerySet(CCatalog* catalog, SetKind kind) : Catalog(catalog) {
  if (catalog == nullptr || kind == SetKind::Invalid) {
    Invalidate();
    return;
  }
  Source = SourceOf(*catalog, kind);
  Rebuild();
}

void CQuerySet::Rebuild() {
  if (!IsValid()) return;
  Members.clear();
  const c4_View sorted = Source.SortOn({props::AssetID});
  Members.reserve(static_cast<std::size_t>(sorted.GetSize()));
  for (int i = 0; i < sorted.GetSize(); ++i) {
    const CAssetRecord record(Catalog, sorted[i]);
    if (Matches(record)) Members.push_back(record.GetAssetID());
  }
}
