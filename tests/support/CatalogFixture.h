#pragma once

#include <gtest/gtest.h>

#include "base/Folders.h"
#include "catalog/Catalog.h"
#include "catalog/StampList.h"
#include "catalog/ThumbnailCache.h"
#include "support/EnvironmentVariable.h"
#include "support/ScratchFolder.h"
#include "support/Sql.h"

/// A home in a scratch folder with a pictures folder, and in it the catalog and the thumbnails, open. The
/// time zone is one that has summer time.
class CCatalogFixture : public testing::Test {
 protected:
  CCatalogFixture() {
    std::filesystem::create_directory(Pictures());
    ForgetMyPicturesFolder();
    OpenStores();
  }
  ~CCatalogFixture() override { ForgetMyPicturesFolder(); }

  void OpenStores() {
    ASSERT_TRUE(Catalog.Open(CatalogPath));
    Cache.Open(CachePath, Catalog.GetDBGUID());
  }
  void CloseStores() {
    Cache.Close();
    Catalog.Close();
  }

  /// How many transactions changed the catalog's file, by the counter in its header.
  int CountCommits() const {
    int count = 0;
    for (const char byte : ReadBytes(CatalogPath).substr(24, 4)) {
      count = count * 256 + static_cast<unsigned char>(byte);
    }
    return count;
  }

  /// A row alone: no file is needed and none is looked at.
  CAssetRecord AddRow(const std::string& path, std::int32_t date = 0, std::int32_t rating = 0) {
    CAssetRecord record = Catalog.AddAsset(path);
    if (date != 0) record.GetStamps(StampId::Date).SetDate(date, 0, StampId::None);
    if (rating != 0) record.GetStamps(StampId::Rating).SetNumber(rating, 0);
    return record;
  }

  /// SQL on the catalog's file; a test that calls them links SQLite.
  std::vector<std::string> Sql(const std::string& statements) const {
    return RunSql(CatalogPath, statements);
  }
  std::string SqlOne(const std::string& query) const { return RunSqlForOne(CatalogPath, query); }

  std::string Pictures() const { return Scratch.GetPath() + "/Pictures"; }

  const CScratchFolder Scratch;
  const std::string CatalogPath = Scratch.GetPath() + "/vellumar.db";
  const std::string CachePath = Scratch.GetPath() + "/vellumar.thumbs";
  const CEnvironmentVariable Home{"HOME", Scratch.GetPath()}, Config{"XDG_CONFIG_HOME", std::nullopt};
  const CEnvironmentVariable Zone{"TZ", "Europe/Berlin"};
  CCatalog Catalog;
  CThumbnailCache Cache;
};
