#include <sqlite3.h>

#include <chrono>
#include <cstdio>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "Benchmarks.h"
#include "Measure.h"
#include "catalog/AssetRecord.h"
#include "catalog/Catalog.h"
#include "catalog/StampList.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kSmallCatalog = 1000;  // photos
constexpr int kLargeCatalog = 100000;
constexpr int kStampsPerPhoto = 3;
constexpr int kOpenings = 7;
constexpr int kRounds = 200;         // of picks, each timed as a whole
constexpr int kPicksPerRound = 200;  // random photos
constexpr int kRatings = 300;

// Names as a camera gives them, a hundred to a folder.
std::string PathOf(int index) {
  char path[80];
  std::snprintf(path, sizeof path, "/home/someone/Pictures/roll %04d/IMG_%05d.jpg", index / 100, index);
  return path;
}

void FillCatalog(const std::string& path, int photos) {
  constexpr std::int32_t kFirstDate = 1000000000;
  constexpr std::int32_t kSecondsApart = 3001;
  CCatalog catalog;
  catalog.Open(path);
  CAutoCommitPause pause(catalog);
  for (int i = 0; i < photos; ++i) {
    CAssetRecord photo = catalog.AddAsset(PathOf(i));
    const std::int32_t date = kFirstDate + i * kSecondsApart % 700000000;
    photo.GetStamps(StampId::FileCreateDate).SetDate(date, 0, StampId::None);
    photo.GetStamps(StampId::CameraDate).SetDate(date, 0, StampId::None);
    photo.GetStamps(StampId::Date).SetDate(date, 0, StampId::CameraDate);
  }
  pause.Commit();
  if (catalog.GetStamps().GetSize() != photos * kStampsPerPhoto) {
    throw std::runtime_error("the catalog has not the stamps that it should have");
  }
}

using Database = std::unique_ptr<sqlite3, decltype(&sqlite3_close)>;
using Statement = std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)>;

// What no reader can do without: every row of every table, every column fetched by its type.
std::size_t StepThroughTable(sqlite3* database, const std::string& table) {
  sqlite3_stmt* prepared = nullptr;
  const std::string query = "select * from \"" + table + "\"";
  if (sqlite3_prepare_v2(database, query.c_str(), -1, &prepared, nullptr) != SQLITE_OK) {
    throw std::runtime_error(sqlite3_errmsg(database));
  }
  const Statement statement(prepared, sqlite3_finalize);
  const int columns = sqlite3_column_count(prepared);
  std::size_t sum = 0;
  while (sqlite3_step(prepared) == SQLITE_ROW) {
    for (int column = 0; column < columns; ++column) {
      switch (sqlite3_column_type(prepared, column)) {
        case SQLITE_INTEGER:
          sum += static_cast<std::size_t>(sqlite3_column_int(prepared, column));
          break;
        case SQLITE_TEXT:
          sum += *sqlite3_column_text(prepared, column);
          sum += static_cast<std::size_t>(sqlite3_column_bytes(prepared, column));
          break;
        default:
          sum += sqlite3_column_blob(prepared, column) == nullptr ? 0U : 1U;
          sum += static_cast<std::size_t>(sqlite3_column_bytes(prepared, column));
          break;
      }
    }
  }
  return sum;
}

double TimePlainLoop(const std::string& path) {
  const Clock::time_point start = Clock::now();
  sqlite3* opened = nullptr;
  const int result = sqlite3_open_v2(path.c_str(), &opened, SQLITE_OPEN_READONLY, nullptr);
  const Database database(opened, sqlite3_close);
  if (result != SQLITE_OK) throw std::runtime_error("can't open " + path);
  std::size_t sum = 0;
  for (const char* table : {"Asset", "Stamp", "People", "String", "Singletons", "StampStruct"}) {
    sum += StepThroughTable(opened, table);
  }
  const double seconds = SecondsSince(start);
  if (sum == 0) throw std::runtime_error("nothing in " + path);
  return seconds;
}

void MeasureOpening(const std::string& path) {
  std::vector<double> plain;
  std::vector<double> ours;
  for (int i = 0; i < kOpenings; ++i) {
    plain.push_back(TimePlainLoop(path));
    CCatalog catalog;
    const Clock::time_point start = Clock::now();
    catalog.Open(path);
    ours.push_back(SecondsSince(start));
  }
  std::printf("  opening %d photos with %d stamps: %.0f ms; plain loop over the columns: %.0f ms\n",
              kLargeCatalog, kLargeCatalog * kStampsPerPhoto, Median(ours) * 1e3, Median(plain) * 1e3);
  PrintRatio("opening / plain loop", Median(ours) / Median(plain), Limit::AtMost, 3);
}

struct OperationTimes {
  double FindByPath = 0;  // seconds each
  double GetStamps = 0;
  double Rate = 0;
};

// The median over the rounds of the mean over a round's picks: a single pick is too short for the clock. The
// picks are copied together beforehand, so that fetching them isn't measured too.
template <typename Key, typename Operation>
double TimePicks(const std::vector<Key>& keys, std::mt19937& random, const Operation& operation) {
  std::uniform_int_distribution<std::size_t> pick(0, keys.size() - 1);
  std::vector<double> rounds;
  for (int round = 0; round < kRounds; ++round) {
    std::vector<Key> picks;
    picks.reserve(kPicksPerRound);
    for (int i = 0; i < kPicksPerRound; ++i) picks.push_back(keys[pick(random)]);
    const Clock::time_point start = Clock::now();
    for (const Key& key : picks) operation(key);
    rounds.push_back(SecondsSince(start) / kPicksPerRound);
  }
  return Median(rounds);
}

OperationTimes MeasureOperations(const std::string& path, int photos) {
  CCatalog catalog;
  catalog.Open(path);
  std::mt19937 random(1);
  std::vector<std::string> paths;
  std::vector<std::int32_t> ids;
  for (int i = 0; i < photos; ++i) {
    paths.push_back(PathOf(i));
    ids.push_back(catalog.FindAssetByPath(paths.back()).GetAssetID());
  }
  OperationTimes times;
  times.FindByPath = TimePicks(paths, random, [&](const std::string& picked) {
    if (!catalog.FindAssetByPath(picked).IsValid()) {
      throw std::runtime_error("a photo is not found by its path");
    }
  });
  times.GetStamps = TimePicks(ids, random, [&](std::int32_t id) {
    const CAssetRecord photo = catalog.FindAssetById(id);
    if (photo.GetStamps(StampId::CameraDate).Count() != 1) throw std::runtime_error("a stamp is missing");
  });

  std::uniform_int_distribution<std::size_t> pick(0, ids.size() - 1);
  std::vector<double> ratings;
  for (int i = 0; i < kRatings; ++i) {
    CAssetRecord photo = catalog.FindAssetById(ids[pick(random)]);
    const Clock::time_point start = Clock::now();
    photo.GetStamps(StampId::Rating).SetNumber(1 + i % 4, 0);
    ratings.push_back(SecondsSince(start));
  }
  times.Rate = Median(ratings);
  return times;
}

}  // namespace

void RunCatalogBench() {
  const CScratchFolder scratch("catalog");
  const std::string small = scratch.GetPath() + "/small.db";
  const std::string large = scratch.GetPath() + "/large.db";
  FillCatalog(small, kSmallCatalog);
  const Clock::time_point start = Clock::now();
  FillCatalog(large, kLargeCatalog);
  std::printf("  filling %d photos, one transaction: %.1f s\n", kLargeCatalog, SecondsSince(start));

  MeasureOpening(large);
  const OperationTimes few = MeasureOperations(small, kSmallCatalog);
  const OperationTimes many = MeasureOperations(large, kLargeCatalog);
  std::printf(
      "  at %d and at %d photos: find by path %.2f and %.2f us, stamps of a photo %.2f and %.2f us, "
      "a committed rating %.2f and %.2f ms\n",
      kSmallCatalog, kLargeCatalog, few.FindByPath * 1e6, many.FindByPath * 1e6, few.GetStamps * 1e6,
      many.GetStamps * 1e6, few.Rate * 1e3, many.Rate * 1e3);
  PrintRatio("FindAssetByPath, large / small", many.FindByPath / few.FindByPath, Limit::AtMost, 3);
  PrintRatio("GetStamps, large / small", many.GetStamps / few.GetStamps, Limit::AtMost, 3);
  PrintRatio("committed rating, large / small", many.Rate / few.Rate, Limit::AtMost, 3);
}
