#include "catalog/Catalog.h"

#include <limits>

#include "base/Exceptions.h"
#include "base/Folders.h"
#include "catalog/CatalogUpgrade.h"
#include "catalog/Properties.h"
#include "platform/Files.h"

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
  GetViews();
  Opened = true;
  AddFirstRows();
}

void CCatalog::GetViews() {
  Assets = Storage->GetAs(kAssetView);
  Stamps = Storage->GetAs(kStampView);
  People = Storage->GetAs(kPeopleView);
  Strings = Storage->GetAs(kStringView);
  Singletons = Storage->GetAs(kSingletonsView);
  StampStruct = Storage->GetAs(kStampStructView);
  Commit();
  AssetsByPath = Assets.SortOn({props::Location, props::Filename});
  AssetsById = Assets.SortOn({props::AssetID});
}

void CCatalog::DropViews() {
  Assets = Stamps = People = Strings = Singletons = StampStruct = AssetsByPath = AssetsById = c4_View();
  KnownFolders.Clear();
  Spellings.reset();
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

void CCatalog::Upgrade() { CCatalogUpgrade(*this).Run(); }

void CCatalog::Defragment() {
  // An earlier version that was killed left this file. It is in nobody's way if it can't be removed.
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
