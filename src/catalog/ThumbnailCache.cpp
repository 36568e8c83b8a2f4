#include "catalog/ThumbnailCache.h"

#include "base/Exceptions.h"
#include "imaging/Image.h"
#include "imaging/PreparedPhoto.h"
#include "platform/WholeFiles.h"
#include "storage/StorageFile.h"

namespace {

const c4_IntProp kID("ID");
const c4_BytesProp kThumbnail("Thumbnail");
const c4_IntProp kUpright("Upright");  // 1: made when the program knew how photos stand
const c4_BytesProp kForeignDBGUID("ForeignDBGUID");

constexpr int kMaxSetAside = 1000;

CThumbnailCache* instance = nullptr;

/// Gives a damaged file a name that is free. False if that can't be done.
bool SetAside(const std::string& path) {
  for (int n = 1; n <= kMaxSetAside; ++n) {
    const std::error_code error = SetStorageFileAside(path, path + ".damaged[" + std::to_string(n) + "]");
    if (error != std::errc::file_exists) return !error;
  }
  return false;
}

}  // namespace

CThumbnailCache::CThumbnailCache() { instance = this; }

CThumbnailCache::~CThumbnailCache() {
  if (instance == this) instance = nullptr;
}

CThumbnailCache* CThumbnailCache::GetInstance() { return instance; }

void CThumbnailCache::Open(const std::string& path, const CGuid& catalogGuid) {
  Close();
  Path = platform::FollowLinks(path);
  CatalogGuid = catalogGuid;
  try {
    TryToOpen(false);
  } catch (const CStorageException&) {
    // The program works without thumbnails; the first change raises the error.
  }
}

/// Sets a damaged file aside. CStorageException, with the cache closed, if there is no file to be had.
void CThumbnailCache::TryToOpen(bool damaged) {
  try {
    if (!damaged && OpenUnlessDamaged()) return;
    Drop();
    if (!SetAside(Path)) throw CError("The file \"" + Path + "\" is damaged and can't be set aside.");
    OpenPaired();
  } catch (const CError& error) {
    Drop();
    throw CStorageException(error.GetMessage());
  } catch (...) {
    Drop();
    throw;
  }
}

bool CThumbnailCache::OpenUnlessDamaged() {
  try {
    OpenPaired();
    return true;
  } catch (const CDamagedStorage&) {
    return false;
  } catch (const CStorageException& exception) {
    if (!exception.IsDamage()) throw;
    return false;
  }
}

bool CThumbnailCache::RenewIfDamaged() {
  if (!Damaged) return false;
  TryToOpen(true);
  return true;
}

void CThumbnailCache::OpenPaired() {
  Damaged = false;
  Storage = std::make_unique<c4_Storage>(Path, c4_Storage::Mode::ReadWrite);
  Singletons = Storage->GetAs("Singletons[ForeignDBGUID:B]");
  Cache = Storage->GetAs("Cache[ID:I,Thumbnail:B,Upright:I]");
  Commit();
  Pair();
}

void CThumbnailCache::Pair() {
  const c4_Bytes wanted = CatalogGuid.ToBytes();
  if (Singletons.IsEmpty()) {
    Singletons.Add(kForeignDBGUID[wanted]);
    Commit();
  } else if (CGuid::FromBytes(kForeignDBGUID.Get(Singletons[0])).ToString() != CatalogGuid.ToString()) {
    // Emptied first: a kill in between leaves no thumbnail under another catalog's numbers.
    Cache.SetSize(0);
    Commit();
    kForeignDBGUID.Set(Singletons[0], wanted);
    Commit();
  }
  CacheByID = Cache.SortOn({kID});
}

void CThumbnailCache::Close() {
  Drop();
  Path.clear();
}

void CThumbnailCache::Drop() {
  CacheByID = {};
  Cache = {};
  Singletons = {};
  Storage.reset();
}

void CThumbnailCache::Store(std::int32_t assetId, const CJpegImage* image) {
  StoreBytes(assetId, image ? image->SaveToMemory(kThumbnailQuality) : c4_Bytes{});
}

template <typename Change>
void CThumbnailCache::Run(const Change& change) {
  try {
    if (!Storage && !Path.empty()) TryToOpen(false);
    change();
    CommitIfAuto();
  } catch (const CStorageException& exception) {
    Damaged = Damaged || exception.IsDamage();
    throw;
  }
}

void CThumbnailCache::StoreBytes(std::int32_t assetId, std::span<const std::uint8_t> bytes) {
  Run([&] {
    const int row = FindRow(assetId);
    if (row >= 0) {
      kThumbnail.Set(Cache[row], bytes);
      kUpright.Set(Cache[row], 1);
    } else {
      Cache.Add(kID[assetId] + kThumbnail[bytes] + kUpright[1]);
    }
  });
}

void CThumbnailCache::StorePrepared(std::int32_t assetId, const PreparedPhoto& photo) {
  if (photo.WasRead) {
    StoreBytes(assetId, photo.Thumbnail);
  } else {
    // A search that was undone can have left the thumbnail of another photo under this number.
    Remove(assetId);
  }
}

std::vector<std::int32_t> CThumbnailCache::GetUncertain() const {
  std::vector<std::int32_t> photos;
  for (int row = 0; row < Cache.GetSize(); ++row) {
    if (Cache.GetIntegerAt(kUpright, row) == 0) photos.push_back(Cache.GetIntegerAt(kID, row));
  }
  return photos;
}

bool CThumbnailCache::IsUncertain(std::int32_t assetId) const {
  const int row = FindRow(assetId);
  return row >= 0 && Cache.GetIntegerAt(kUpright, row) == 0;
}

void CThumbnailCache::MarkCertain(std::int32_t assetId) {
  Run([&] {
    if (const int row = FindRow(assetId); row >= 0) kUpright.Set(Cache[row], 1);
  });
}

void CThumbnailCache::Remove(std::int32_t assetId) {
  Run([&] { Cache.RemoveAt(FindRow(assetId)); });
}

std::unique_ptr<CJpegImage> CThumbnailCache::Load(std::int32_t assetId) const {
  const int row = FindRow(assetId);
  if (row < 0) return nullptr;
  try {
    const c4_Bytes bytes = kThumbnail.Get(Cache[row]);
    if (bytes.empty()) return nullptr;
    auto image = std::make_unique<CJpegImage>();
    image->LoadMemory(bytes, 0, 0);
    return image;
  } catch (...) {
    return nullptr;  // counts as missing; the next one that is stored replaces it
  }
}

int CThumbnailCache::FindRow(std::int32_t assetId) const {
  const int position = CacheByID.Search(kID[assetId]);
  if (position >= CacheByID.GetSize()) return -1;
  const c4_RowRef row = CacheByID[position];
  return kID.Get(row) == assetId ? Cache.GetIndexOf(row) : -1;
}
