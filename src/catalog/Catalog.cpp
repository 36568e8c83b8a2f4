#include "catalog/Catalog.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <utility>

#include "base/Exceptions.h"
#include "base/Folders.h"
#include "base/PathIdentity.h"
#include "base/Paths.h"
#include "catalog/CatalogUpgrade.h"
#include "catalog/Properties.h"
#include "platform/Files.h"
#include "platform/TextCompare.h"
#include "platform/Unicode.h"
#include "storage/Row.h"

namespace {

constexpr const char* kAssetView =
    "Asset[AssetID:I,LocationType:I,Location:S,Filename:S,RollID:I,ID:B,CachedRating:I,CachedDate:I,"
    "Missing:I,Tossed:I,ToEmail:I,ToRemotePrint:I]";
constexpr const char* kStampView = "Stamp[StampType:I,SortedString:S,AssetID:I,IndexInt:I,PersonID:I]";
constexpr const char* kPeopleView = "People[PersonID:I,ID:B,Fullname:S,Email:S]";
constexpr const char* kStringView = "String[Category:I,Key:I,String:S,RefCount:I]";
constexpr const char* kSingletonsView =
    "Singletons[NextAssetID:I,NextPersonID:I,CurrentPersonID:I,NextStringKey:I,DBVersion:I,"
    "CurrentRollID:I,DBGUID:B,CurrentPhotoFolder:S]";
constexpr const char* kStampStructView =
    "StampStruct[StampType:I,StampName:S,Sortable:I,StampStyle:I,StampFormat:I]";

CCatalog* instance = nullptr;

std::size_t HashSpelling(const std::string& path) {
  return std::hash<std::string>()(platform::FoldCase(path));
}

}  // namespace

std::int32_t ReadDBVersion(const std::string& path) {
  if (!FileExists(path, true)) return 0;
  c4_Storage storage(path, c4_Storage::Mode::ReadOnly);
  storage.GetAs("Singletons[DBVersion:I]");  // raises if the file is another program's
  return storage.ReadFirstInteger("Singletons", props::DBVersion)
      .value_or(std::numeric_limits<std::int32_t>::max());
}

CCatalog::CCatalog() { instance = this; }

CCatalog::~CCatalog() {
  try {
    Close();
  } catch (const CThrowable&) {
    // Every operation has committed its own changes; there is nothing left to lose here.
    DropViews();
  }
  if (instance == this) instance = nullptr;
}

CCatalog* CCatalog::GetInstance() { return instance; }

bool CCatalog::Open(const std::string& path) {
  if (Opened) return false;
  Path = path;
  OpenViews();
  Upgrade();
  return Opened;
}

void CCatalog::Close() {
  if (!Opened) return;
  Commit();
  DropViews();
}

void CCatalog::OpenViews() {
  Storage = std::make_unique<c4_Storage>(Path, c4_Storage::Mode::ReadWrite);
  Assets = Storage->GetAs(kAssetView);
  Stamps = Storage->GetAs(kStampView);
  People = Storage->GetAs(kPeopleView);
  Strings = Storage->GetAs(kStringView);
  Singletons = Storage->GetAs(kSingletonsView);
  StampStruct = Storage->GetAs(kStampStructView);
  Commit();
  AssetsByPath = Assets.SortOn({props::Location, props::Filename});
  AssetsById = Assets.SortOn({props::AssetID});
  Opened = true;
  AddFirstRows();
}

void CCatalog::DropViews() {
  Assets = Stamps = People = Strings = Singletons = StampStruct = AssetsByPath = AssetsById = c4_View();
  KnownFolders.Clear();
  IdsBySpelling.reset();
  Storage.reset();
  Opened = false;
}

void CCatalog::AddFirstRows() {
  CAutoCommitPause pause(*this);
  if (Singletons.IsEmpty()) {
    Singletons.Add(props::NextAssetID[1] + props::NextPersonID[1] + props::CurrentPersonID[1] +
                   props::NextStringKey[0] + props::DBVersion[kCatalogVersion] + props::CurrentRollID[-1] +
                   props::DBGUID[CGuid::Generate().ToBytes()]);
  }
  if (!GetDBGUID().IsValid()) RenewDBGUID();
  if (!GetPerson(-1).IsValid()) {
    const CPersonRecord person = AddPerson("Vellumar User", "");
    props::CurrentPersonID.Set(Singletons[0], props::PersonID.Get(person.GetRow()));
  }
  for (const CStampType& type : GetStampTypeTable()) {
    if (!EnsureStampType(type, false)) throw CError("There is a configuration problem with the database.");
  }
  if (Strings.IsEmpty()) AddFirstStrings();
  pause.Commit();
}

void CCatalog::AddFirstStrings() {
  // The key of a stamp type's name must be the type's number, for it is the category of the type's texts.
  // The dummy stands in for the number that no type has any more.
  AddString(kCategoryOfCategories, "Category");
  constexpr int kPositionOfDummy = 7;
  for (int i = 0; i < StampStruct.GetSize(); ++i) {
    if (i == kPositionOfDummy) AddString(kCategoryOfCategories, "<dummy>");
    AddString(kCategoryOfCategories, std::string(props::StampName.Get(StampStruct[i])));
  }
}

void CCatalog::Upgrade() {
  const std::int32_t version = GetDBVersion();
  if (version >= kCatalogVersion) return;
  CAutoCommitPause pause(*this);
  if (version < 1 && props::RefCount.Get(Strings[0]) == 0) {
    // Texts without counts are of no use.
    Strings.SetSize(0);
    AddFirstStrings();
  }
  UpgradePhotos(*this, version);
  if (version < 8) RenewDBGUID();
  SetDBVersion(kCatalogVersion);
  pause.Commit();
  Defragment();
}

void CCatalog::Defragment() {
  // Left by an earlier version that was killed. Harmless if it can't be removed.
  static_cast<void>(platform::RemoveFile(Path + ".defragged"));
  try {
    Storage->Compact();
  } catch (...) {
    // The catalog goes on as it was.
  }
}

std::int32_t CCatalog::GetDBVersion() const { return props::DBVersion.Get(Singletons[0]); }

void CCatalog::SetDBVersion(std::int32_t value) {
  props::DBVersion.Set(Singletons[0], value);
  CommitIfAuto();
}

CGuid CCatalog::GetDBGUID() const { return CGuid::FromBytes(props::DBGUID.Get(Singletons[0])); }

void CCatalog::RenewDBGUID() {
  Singletons.AddProperty(props::DBGUID);
  props::DBGUID.Set(Singletons[0], CGuid::Generate().ToBytes());
  CommitIfAuto();
}

std::int32_t CCatalog::Successor(std::int32_t number) {
  if (number == std::numeric_limits<std::int32_t>::max()) throw CError("The catalog has no numbers left.");
  return number + 1;
}

std::int32_t CCatalog::Alloc(const c4_IntProp& counter) {
  const std::int32_t value = counter.Get(Singletons[0]);
  counter.Set(Singletons[0], Successor(value));
  CommitIfAuto();
  return value;
}

std::int32_t CCatalog::AllocAssetID() { return Alloc(props::NextAssetID); }
std::int32_t CCatalog::AllocPersonID() { return Alloc(props::NextPersonID); }
std::int32_t CCatalog::AllocStringKey() { return Alloc(props::NextStringKey); }

std::int32_t CCatalog::GetCurrentRollID() const { return props::CurrentRollID.Get(Singletons[0]); }

void CCatalog::AdvanceRoll() { Alloc(props::CurrentRollID); }

std::string CCatalog::GetCurrentPhotoFolder() const {
  return std::string(props::CurrentPhotoFolder.Get(Singletons[0]));
}

void CCatalog::SetCurrentPhotoFolder(const std::string& folder) {
  props::CurrentPhotoFolder.Set(Singletons[0], folder);
  CommitIfAuto();
}

CStampType CCatalog::GetStampType(StampId type) const {
  const int position = StampStruct.Find(props::StampType[static_cast<std::int32_t>(type)]);
  if (position < 0) return {};
  const c4_RowRef row = StampStruct[position];
  return {props::StampType.Get(row), std::string(props::StampName.Get(row)), props::Sortable.Get(row) != 0,
          props::StampStyle.Get(row), static_cast<StampFormat>(props::StampFormat.Get(row))};
}

bool CCatalog::EnsureStampType(const CStampType& type, bool overwrite) {
  const CStampType present = GetStampType(static_cast<StampId>(type.Type));
  if (present == type) return true;
  if (present.IsKnown() && !overwrite) return false;
  CAutoCommitPause pause(*this);
  StampStruct.RemoveAt(StampStruct.Find(props::StampType[type.Type]));
  StampStruct.Add(props::StampType[type.Type] + props::StampName[type.Name] + props::Sortable[type.Sortable] +
                  props::StampStyle[type.Style] + props::StampFormat[static_cast<std::int32_t>(type.Format)]);
  pause.Commit();
  return true;
}

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
  if (!IdsBySpelling) {
    IdsBySpelling.emplace();
    for (int i = 0; i < Assets.GetSize(); ++i) {
      const CAssetRecord record(this, Assets[i]);
      AddToSpellings(record.GetPath(), record.GetAssetID());
    }
  }
  const auto [first, last] = IdsBySpelling->equal_range(HashSpelling(path));
  for (auto entry = first; entry != last; ++entry) {
    CAssetRecord record = FindAssetById(entry->second);
    if (record.IsValid() && IsFormerSpelling(record.GetPath(), path)) return record;
  }
  return {};
}

void CCatalog::AddToSpellings(const std::string& path, std::int32_t assetId) {
  if (IdsBySpelling) IdsBySpelling->emplace(HashSpelling(path), assetId);
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

std::int32_t CCatalog::FindStringKey(std::int32_t category, const std::string& text) const {
  const c4_RowRef row = Strings[Strings.Find(props::Category[category] + props::String[text])];
  if (row.IsValid()) return props::Key.Get(row);
  // The storage ignores the case of ASCII letters only.
  const c4_View strings = Strings.Select(props::Category[category]);
  const std::string wanted = platform::FoldLetters(text);
  std::string folded;
  for (int i = 0; i < strings.GetSize(); ++i) {
    platform::FoldLetters(strings.GetTextAt(props::String, i), folded);
    if (folded == wanted) return strings.GetIntegerAt(props::Key, i);
  }
  return -1;
}

c4_RowRef CCatalog::FindString(std::int32_t key) const { return Strings[Strings.Find(props::Key[key])]; }

std::int32_t CCatalog::AddString(std::int32_t category, const std::string& text) {
  const std::int32_t key = FindStringKey(category, text);
  if (key < 0) return AddSpelling(category, text);
  CAutoCommitPause pause(*this);
  const c4_RowRef row = FindString(key);
  props::RefCount.Set(row, Successor(props::RefCount.Get(row)));
  pause.Commit();
  return key;
}

std::int32_t CCatalog::AddSpelling(std::int32_t category, const std::string& text) {
  CAutoCommitPause pause(*this);
  const std::int32_t key = AllocStringKey();
  Strings.Add(props::Category[category] + props::Key[key] + props::String[text] + props::RefCount[1]);
  pause.Commit();
  return key;
}

std::int32_t CCatalog::FindCategory(const std::string& name) const {
  return FindStringKey(kCategoryOfCategories, name);
}

std::int32_t CCatalog::GetCategory(const std::string& name) {
  const std::int32_t key = FindCategory(name);
  return key >= 0 ? key : AddString(kCategoryOfCategories, name);
}

std::string CCatalog::GetString(std::int32_t key) const {
  return std::string(props::String.Get(FindString(key)));
}

void CCatalog::ReleaseString(std::int32_t key) {
  const c4_RowRef row = FindString(key);
  if (!row.IsValid()) return;
  const std::int32_t count = props::RefCount.Get(row);
  if (count > 1) {
    props::RefCount.Set(row, count - 1);
  } else {
    Strings.RemoveAt(Strings.GetIndexOf(row));
  }
  CommitIfAuto();
}

bool CCatalog::ReplaceString(std::int32_t key, const std::string& text, bool force) {
  const c4_RowRef row = FindString(key);
  if (!row.IsValid() || (!force && props::RefCount.Get(row) != 1)) return false;
  props::String.Set(row, text);
  CommitIfAuto();
  return true;
}

int CCatalog::CountStrings(std::int32_t category) const {
  return Strings.Select(props::Category[category]).GetSize();
}

std::vector<std::int32_t> CCatalog::ListStringKeys(std::int32_t category, bool byText) const {
  const c4_View strings = Strings.Select(props::Category[category]);
  std::vector<std::pair<std::string, std::int32_t>> ordered;
  for (int i = 0; i < strings.GetSize(); ++i) {
    const std::string_view text = strings.GetTextAt(props::String, i);
    ordered.emplace_back(byText ? platform::MakeLetterOrderKey(text) : "",
                         strings.GetIntegerAt(props::Key, i));
  }
  std::sort(ordered.begin(), ordered.end());
  std::vector<std::int32_t> keys;
  for (const auto& [order, key] : ordered) keys.push_back(key);
  return keys;
}

std::int32_t CCatalog::GetStringKeyAt(std::int32_t category, int index, bool byText) const {
  const std::vector<std::int32_t> keys = ListStringKeys(category, byText);
  return index >= 0 && index < std::ssize(keys) ? keys[static_cast<std::size_t>(index)] : -1;
}

int CCatalog::GetStringIndex(std::int32_t category, std::int32_t key, bool byText) const {
  const std::vector<std::int32_t> keys = ListStringKeys(category, byText);
  const auto found = std::find(keys.begin(), keys.end(), key);
  return found != keys.end() ? static_cast<int>(found - keys.begin()) : -1;
}

void CCatalog::ListStrings(std::int32_t category, std::vector<std::string>& list, bool byText) const {
  list.clear();
  for (const std::int32_t key : ListStringKeys(category, byText)) list.push_back(GetString(key));
}

CPersonRecord CCatalog::AddPerson(const std::string& fullname, const std::string& email) {
  CAutoCommitPause pause(*this);
  const c4_RowRef row = People.Add(props::PersonID[AllocPersonID()] + props::ID[CGuid::Generate().ToBytes()] +
                                   props::Fullname[fullname] + props::Email[email]);
  pause.Commit();
  return {this, row};
}

CPersonRecord CCatalog::GetPerson(std::int32_t personId) {
  const std::int32_t wanted = personId == -1 ? props::CurrentPersonID.Get(Singletons[0]) : personId;
  return {this, People[People.Find(props::PersonID[wanted])]};
}
