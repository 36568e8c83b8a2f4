#include "base/PathIdentity.h"
#include "base/Paths.h"
#include "catalog/Catalog.h"
#include "catalog/Properties.h"
#include "storage/Row.h"

CAssetRecord CCatalog::AddAsset(const std::string& path) {
  const PathParts parts = SplitPath(path);
  CAutoCommitPause pause(*this);
  const c4_RowRef row = Assets.Add(
      props::AssetID[AllocAssetID()] + props::Location[parts.Folder] + props::Filename[parts.Name] +
      props::LocationType[static_cast<std::int32_t>(LocationType::FolderAndName)] +
      props::RollID[Successor(GetCurrentRollID())] + props::ID[CGuid::Generate().ToBytes()]);
  AddToSpellings(path, props::AssetID.Get(row));
  pause.Commit();
  return MakeRecord(row);
}

CAssetRecord CCatalog::FindAssetByPath(const std::string& path) {
  const PathParts parts = SplitPath(path);
  if (parts.Name.empty()) return {};
  // The rows that differ in the case of ASCII letters alone stand together.
  for (int i = AssetsByPath.Search(props::Location[parts.Folder] + props::Filename[parts.Name]);
       i < AssetsByPath.GetSize(); ++i) {
    const c4_RowRef row = AssetsByPath[i];
    const std::string_view folder = props::Location.Get(row);
    const std::string_view name = props::Filename.Get(row);
    if (folder == parts.Folder && name == parts.Name) return MakeRecord(row);
    if (!TextsAreEqual(folder, parts.Folder) || !TextsAreEqual(name, parts.Name)) break;
  }
  return FindFormerSpelling(path);
}

CAssetRecord CCatalog::FindFormerSpelling(const std::string& path) {
  if (!Spellings) {
    Spellings.emplace();
    for (int i = 0; i < Assets.GetSize(); ++i) {
      const CAssetRecord record(this, Assets[i]);
      Spellings->Add(record.GetPath(), record.GetAssetID());
    }
  }
  for (const std::int32_t assetId : Spellings->Find(path)) {
    CAssetRecord record = FindAssetById(assetId);
    if (record.IsValid() && IsFormerSpelling(record.GetPath(), path)) return record;
  }
  return {};
}

void CCatalog::AddToSpellings(const std::string& path, std::int32_t assetId) {
  if (Spellings) Spellings->Add(path, assetId);
}

CAssetRecord CCatalog::FindAssetById(std::int32_t assetId) {
  const c4_RowRef row = AssetsById[AssetsById.Search(props::AssetID[assetId])];
  return props::AssetID.Get(row) == assetId ? MakeRecord(row) : CAssetRecord();
}

bool CCatalog::DeleteAsset(std::int32_t assetId) {
  const CAssetRecord record = FindAssetById(assetId);
  if (!record.IsValid()) return false;
  CAutoCommitPause pause(*this);
  c4_View stamps = Stamps.Select(props::AssetID[assetId]);
  stamps.RemoveAt(0, stamps.GetSize());
  Assets.RemoveAt(Assets.GetIndexOf(record.GetRow()));
  pause.Commit();
  return true;
}
