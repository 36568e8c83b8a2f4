#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "base/Guid.h"
#include "catalog/AssetRecord.h"
#include "catalog/KnownFolders.h"
#include "catalog/PhotoFacts.h"
#include "storage/CommittingStore.h"
#include "storage/View.h"

/// The version of the schema, and of its meaning, that this program writes.
inline constexpr std::int32_t kCatalogVersion = 10;

/// Reads the version of the catalog file at `path` without opening it as the catalog; a missing file, or one
/// without a version, reads as 0, and what is no integer of 32 bits as a version newer than any. An
/// interrupted run's changes are undone first. Raises CError if the file is no catalog, or damaged.
std::int32_t ReadDBVersion(const std::string& path);

/// The program's memory of the user's photos: one storage of six views, its first rows, its upgrades and its
/// numbers. Every operation that changes it is one transaction, committed when it returns unless auto commit
/// is off. Main window's thread, or the thread that the data is lent to.
class CCatalog : public CCommittingStore {
 public:
  /// Records the object as the one that GetInstance() gives; opens nothing.
  CCatalog();
  virtual ~CCatalog();

  /// Null where there is no catalog object.
  static CCatalog* GetInstance();

  /// Opens or makes the catalog at `path` and upgrades an older one. False if it is open already. Raises
  /// CError if the file is no catalog of ours, or damaged or locked. One of this version can be looked at
  /// where it can't be written.
  bool Open(const std::string& path);
  /// Commits and closes.
  void Close();
  /// The path of the catalog's file.
  const std::string& GetPath() const { return Path; }

  /// Rewrites the file, in its place, without its free space. If that can't be done the catalog goes on as it
  /// is. Changes that aren't committed are undone.
  void Defragment();

  // The singletons.
  std::int32_t GetDBVersion() const;
  void SetDBVersion(std::int32_t value);
  CGuid GetDBGUID() const;
  void RenewDBGUID();
  std::int32_t AllocAssetID();
  std::int32_t AllocPersonID();
  std::int32_t AllocStringKey();
  std::int32_t GetCurrentRollID() const;  // number of the last finished roll, -1 before the first
  void AdvanceRoll();
  std::string GetCurrentPhotoFolder() const;  // empty stands for all folders
  void SetCurrentPhotoFolder(const std::string& folder);

  // The views, live. Callers may select and sort them and change rows through them.
  c4_View GetAssets() const { return Assets; }
  c4_View GetStamps() const { return Stamps; }
  c4_View GetPeople() const { return People; }

  CStampType GetStampType(StampId type) const;
  /// Adds the type if there is none of that number. One that differs is replaced if `overwrite` is set, else
  /// the answer is false.
  bool EnsureStampType(const CStampType& type, bool overwrite);

  // Photos.
  CAssetRecord AddAsset(const std::string& path);
  /// The photo with this path, else one whose path is a former spelling of it (IsFormerSpelling). Binary
  /// search, then a look into an index.
  CAssetRecord FindAssetByPath(const std::string& path);
  CAssetRecord FindAssetById(std::int32_t assetId);
  /// Removes the row and its stamps; the texts that they share stay listed. False if there is no such photo.
  bool DeleteAsset(std::int32_t assetId);

  /// What jobs have seen of the folders that photos are in.
  CKnownFolders& GetKnownFolders() { return KnownFolders; }

  // Shared texts and lists, by category. Texts are compared by their letters (TextCompare.h).
  std::int32_t AddString(std::int32_t category, const std::string& text);
  /// Adds the text as it is spelled, though the category may hold it in another spelling.
  std::int32_t AddSpelling(std::int32_t category, const std::string& text);
  std::int32_t FindStringKey(std::int32_t category, const std::string& text) const;
  /// -1 if there is none of that name.
  std::int32_t FindCategory(const std::string& name) const;
  /// The category of that name, entered if need be.
  std::int32_t GetCategory(const std::string& name);
  std::string GetString(std::int32_t key) const;
  void ReleaseString(std::int32_t key);
  /// False, with nothing changed, if there is no such key, or it is used more than once and not `force`.
  bool ReplaceString(std::int32_t key, const std::string& text, bool force);
  int CountStrings(std::int32_t category) const;
  /// -1 out of range. In order of text, or of key, which is that of age.
  std::int32_t GetStringKeyAt(std::int32_t category, int index, bool byText) const;
  int GetStringIndex(std::int32_t category, std::int32_t key, bool byText) const;
  void ListStrings(std::int32_t category, std::vector<std::string>& list, bool byText) const;

  // People.
  CPersonRecord AddPerson(const std::string& fullname, const std::string& email);
  /// -1 stands for the current person.
  CPersonRecord GetPerson(std::int32_t personId);

 private:
  friend class CAssetRecord;
  static constexpr std::int32_t kCategoryOfCategories = 0;

  void OpenViews();
  void DropViews();
  void AddFirstRows();
  void AddFirstStrings();
  void Upgrade();
  static std::int32_t Successor(std::int32_t number);
  std::int32_t Alloc(const c4_IntProp& counter);
  std::vector<std::int32_t> ListStringKeys(std::int32_t category, bool byText) const;
  c4_RowRef FindString(std::int32_t key) const;
  CAssetRecord FindFormerSpelling(const std::string& path);
  void AddToSpellings(const std::string& path, std::int32_t assetId);
  CAssetRecord MakeRecord(const c4_RowRef& row) {
    return row.IsValid() ? CAssetRecord(this, row) : CAssetRecord();
  }

  bool Opened = false;
  std::string Path;
  c4_View Assets, Stamps, People, Strings, Singletons, StampStruct;
  c4_View AssetsByPath;  // sorted on Location, Filename
  c4_View AssetsById;    // sorted on AssetID
  CKnownFolders KnownFolders;
  // Photos by the hash of their path without case; made when a path is looked for that no photo has. Entries
  // are only ever added: a photo may have gone, or have another path by now.
  std::optional<std::unordered_multimap<std::size_t, std::int32_t>> IdsBySpelling;
};
