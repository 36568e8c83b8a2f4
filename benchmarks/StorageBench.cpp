#include <sqlite3.h>
#include <strings.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <limits>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "Benchmarks.h"
#include "Measure.h"
#include "storage/Storage.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kSmall = 1000;  // photos
constexpr int kLarge = 100000;
constexpr int kStampsPerPhoto = 3;
constexpr int kRepetitions = 7;
constexpr int kRounds = 100;  // of lookups
constexpr int kLookupsARound = 400;
constexpr int kCommits = 60;

const c4_IntProp pAssetID("AssetID");
const c4_IntProp pStampType("StampType");
const c4_IntProp pIndexInt("IndexInt");
const c4_IntProp pRollID("RollID");
const c4_IntProp pCachedDate("CachedDate");
const c4_IntProp pCachedRating("CachedRating");
const c4_IntProp pLocationType("LocationType");
const c4_StringProp pLocation("Location");
const c4_StringProp pFilename("Filename");
const c4_StringProp pSortedString("SortedString");
const c4_BytesProp pID("ID");

constexpr const char* kAssets =
    "Asset[AssetID:I,LocationType:I,Location:S,Filename:S,RollID:I,ID:B,CachedRating:I,CachedDate:I,"
    "Missing:I,Tossed:I,ToEmail:I,ToRemotePrint:I]";
constexpr const char* kStamps = "Stamp[StampType:I,SortedString:S,AssetID:I,IndexInt:I,PersonID:I]";

struct PhotoKey {
  std::string Location;
  std::string Filename;
  std::int32_t Date;
  std::int32_t Rating;
};

/// Photos as a few years' use leaves them: folders and files not in the order of the alphabet.
PhotoKey MakePhoto(int index) {
  std::mt19937 random(static_cast<unsigned>(index / 120));
  const unsigned folder = static_cast<unsigned>(random() % 5000);
  PhotoKey key;
  key.Location = "/home/someone/Pictures/20" + std::to_string(10 + folder % 15) + "/Trip " +
                 std::to_string(folder) + "/";
  key.Filename = "IMG_" + std::to_string(10000 + (index * 7919) % 90000) + ".JPG";
  key.Date =
      1'100'000'000 + static_cast<std::int32_t>((static_cast<unsigned>(index) * 2654435761U) % 500'000'000U);
  key.Rating = index * 31 % 5;
  return key;
}

void FillStorage(const std::string& path, int photos) {
  c4_Storage storage(path, c4_Storage::Mode::ReadWrite);
  c4_View assets = storage.GetAs(kAssets);
  c4_View stamps = storage.GetAs(kStamps);
  for (int i = 0; i < photos; ++i) {
    const PhotoKey key = MakePhoto(i);
    assets.Add(pAssetID[i + 1] + pLocationType[1] + pLocation[key.Location] + pFilename[key.Filename] +
               pRollID[i / 500] + pID[c4_Bytes(16, static_cast<std::uint8_t>(i))] +
               pCachedRating[key.Rating] + pCachedDate[key.Date]);
    for (const int type : {7, 9, 6}) {
      stamps.Add(pStampType[type] + pSortedString[std::to_string(20'000'000'000'000 + key.Date)] +
                 pAssetID[i + 1] + pIndexInt[type == 6 ? 9 : 0]);
    }
  }
  storage.Commit();
}

double TimeOnce(const std::function<void()>& work) {
  const Clock::time_point start = Clock::now();
  work();
  return SecondsSince(start);
}

void Check(bool right, const char* what) {
  if (!right) throw std::runtime_error(what);
}

/// The two sides of a ratio, each the shortest of several runs, run in turns.
struct Sides {
  double Ours = std::numeric_limits<double>::max();
  double Plain = std::numeric_limits<double>::max();

  void Measure(const std::function<void()>& ours, const std::function<void()>& plain) {
    for (int i = 0; i < kRepetitions; ++i) {
      Plain = std::min(Plain, TimeOnce(plain));
      Ours = std::min(Ours, TimeOnce(ours));
    }
  }
};

std::size_t StepThroughTable(sqlite3* database, const std::string& table) {
  sqlite3_stmt* statement = nullptr;
  const std::string query = "SELECT * FROM " + table;
  Check(sqlite3_prepare_v2(database, query.c_str(), -1, &statement, nullptr) == SQLITE_OK, "can't prepare");
  const int columns = sqlite3_column_count(statement);
  std::size_t sum = 0;
  while (sqlite3_step(statement) == SQLITE_ROW) {
    for (int column = 0; column < columns; ++column) {
      if (sqlite3_column_type(statement, column) == SQLITE_INTEGER) {
        sum += static_cast<std::size_t>(sqlite3_column_int(statement, column));
      } else {
        const auto* bytes = static_cast<const unsigned char*>(sqlite3_column_blob(statement, column));
        const int size = sqlite3_column_bytes(statement, column);
        if (size > 0) sum += bytes[size - 1];
      }
    }
  }
  Check(sqlite3_finalize(statement) == SQLITE_OK, "can't finish");
  return sum;
}

void RunPlainLoop(const std::string& path) {
  sqlite3* database = nullptr;
  Check(sqlite3_open_v2(path.c_str(), &database, SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX, nullptr) ==
            SQLITE_OK,
        "can't open");
  Check(StepThroughTable(database, "Asset") + StepThroughTable(database, "Stamp") > 0, "nothing was read");
  Check(sqlite3_close(database) == SQLITE_OK, "can't close");
}

void OpenWithSortedViews(const std::string& path) {
  c4_Storage storage(path, c4_Storage::Mode::ReadWrite);
  const c4_View assets = storage.GetAs(kAssets);
  const c4_View stamps = storage.GetAs(kStamps);
  const c4_View byPath = assets.SortOn({pLocation, pFilename});
  const c4_View byId = assets.SortOn({pAssetID});
  Check(byPath.GetSize() == kLarge && byId.GetSize() == kLarge, "rows are missing");
  Check(stamps.GetSize() == kLarge * kStampsPerPhoto, "stamps are missing");
}

void MeasureOpening(const std::string& path) {
  Sides sides;
  sides.Measure([&] { OpenWithSortedViews(path); }, [&] { RunPlainLoop(path); });
  std::printf("  opening %d photos and %d stamps with both sorted views: %.0f ms, plain loop: %.0f ms\n",
              kLarge, kLarge * kStampsPerPhoto, sides.Ours * 1e3, sides.Plain * 1e3);
  PrintRatio("opening / plain loop", sides.Ours / sides.Plain, Limit::AtMost, 3);
}

/// SortOn against std::sort over the same keys, held as values in a vector.
template <typename Key, typename Below>
void MeasureSort(const char* name, const c4_View& view, const c4_Properties& properties,
                 const std::vector<Key>& keys, const Below& below) {
  Sides sides;
  std::vector<Key> copy;
  for (int i = 0; i < kRepetitions; ++i) {
    copy = keys;
    sides.Plain = std::min(sides.Plain, TimeOnce([&] { std::sort(copy.begin(), copy.end(), below); }));
    sides.Ours =
        std::min(sides.Ours, TimeOnce([&] { Check(view.SortOn(properties).GetSize() == kLarge, "rows"); }));
  }
  std::printf("  SortOn of %d rows by %s: %.1f ms, std::sort: %.1f ms\n", kLarge, name, sides.Ours * 1e3,
              sides.Plain * 1e3);
  PrintRatio(std::string("SortOn by ") + name + " / std::sort", sides.Ours / sides.Plain, Limit::AtMost, 4);
}

void MeasureSorts(const std::string& path) {
  c4_Storage storage(path, c4_Storage::Mode::ReadOnly);
  const c4_View assets = storage.GetAs(kAssets);
  std::vector<std::pair<std::int32_t, std::int32_t>> numbers;
  std::vector<std::pair<std::string, std::string>> paths;
  for (int i = 0; i < kLarge; ++i) {
    const PhotoKey key = MakePhoto(i);
    numbers.emplace_back(key.Rating, key.Date);
    paths.emplace_back(key.Location, key.Filename);
  }
  MeasureSort("two integers", assets, {pCachedRating, pCachedDate}, numbers, std::less<>());
  MeasureSort("two texts", assets, {pLocation, pFilename}, paths, [](const auto& left, const auto& right) {
    const int order = strcasecmp(left.first.c_str(), right.first.c_str());
    return order != 0 ? order < 0 : strcasecmp(left.second.c_str(), right.second.c_str()) < 0;
  });
  MeasureSort("text and integer", assets, {pFilename, pCachedDate}, paths,
              [](const auto& left, const auto& right) {
                return strcasecmp(left.second.c_str(), right.second.c_str()) < 0;
              });
}

/// Lookups of random photos of one storage, some at a time.
class CLookups {
 public:
  CLookups(const std::string& path, int photos)
      : Storage(path, c4_Storage::Mode::ReadOnly),
        Assets(Storage.GetAs(kAssets)),
        Stamps(Storage.GetAs(kStamps)),
        ByPath(Assets.SortOn({pLocation, pFilename})) {
    std::mt19937 random(5);
    for (int i = 0; i < kRounds * kLookupsARound; ++i) {
      Picks.push_back(static_cast<int>(random() % static_cast<unsigned>(photos)));
      Keys.push_back(MakePhoto(Picks.back()));
    }
    // What is made at the first lookups isn't measured.
    Search(0);
    Select(0);
  }

  void Search(int round) const {
    for (int i = round * kLookupsARound; i < (round + 1) * kLookupsARound; ++i) {
      const PhotoKey& key = Keys[static_cast<std::size_t>(i)];
      const int at = ByPath.Search(pLocation[key.Location] + pFilename[key.Filename]);
      Check(Assets.GetIndexOf(ByPath[at]) >= 0, "a path isn't found");
    }
  }

  void Select(int round) const {
    for (int i = round * kLookupsARound; i < (round + 1) * kLookupsARound; ++i) {
      const c4_View found = Stamps.Select(pStampType[6] + pAssetID[Picks[static_cast<std::size_t>(i)] + 1]);
      Check(found.GetSize() == 1, "a stamp isn't found");
    }
  }

 private:
  c4_Storage Storage;
  c4_View Assets;
  c4_View Stamps;
  c4_View ByPath;
  std::vector<int> Picks;
  std::vector<PhotoKey> Keys;
};

/// Plain is the small storage here, Ours the large one; each lookup is made once.
void MeasureLookups(const std::string& smallPath, const std::string& largePath) {
  const CLookups few(smallPath, kSmall);
  const CLookups many(largePath, kLarge);
  Sides search;
  Sides select;
  for (int round = 1; round < kRounds; ++round) {
    search.Plain = std::min(search.Plain, TimeOnce([&] { few.Search(round); }) / kLookupsARound);
    search.Ours = std::min(search.Ours, TimeOnce([&] { many.Search(round); }) / kLookupsARound);
    select.Plain = std::min(select.Plain, TimeOnce([&] { few.Select(round); }) / kLookupsARound);
    select.Ours = std::min(select.Ours, TimeOnce([&] { many.Select(round); }) / kLookupsARound);
  }
  std::printf(
      "  at %d and at %d photos: Search by path %.2f and %.2f us, Select of a stamp %.2f and %.2f us\n",
      kSmall, kLarge, search.Plain * 1e6, search.Ours * 1e6, select.Plain * 1e6, select.Ours * 1e6);
  PrintRatio("Search by path, large / small", search.Ours / search.Plain, Limit::AtMost, 3);
  PrintRatio("Select of stamps, large / small", select.Ours / select.Plain, Limit::AtMost, 3);
}

/// One committed change at a time, to each storage in turns: a disk that is busy for a while is so for both.
void MeasureCommits(const std::string& smallPath, const std::string& largePath) {
  c4_Storage small(smallPath, c4_Storage::Mode::ReadWrite);
  c4_Storage large(largePath, c4_Storage::Mode::ReadWrite);
  const c4_View smallAssets = small.GetAs(kAssets).SortOn({pCachedRating});
  const c4_View largeAssets = large.GetAs(kAssets).SortOn({pCachedRating});
  Sides sides;
  for (int i = 0; i < kCommits; ++i) {
    const auto change = [i](c4_Storage& storage, const c4_View& view) {
      pCachedRating.Set(view[view.GetSize() * i / kCommits], 10 + i);
      storage.Commit();
    };
    sides.Plain = std::min(sides.Plain, TimeOnce([&] { change(small, smallAssets); }));
    sides.Ours = std::min(sides.Ours, TimeOnce([&] { change(large, largeAssets); }));
  }
  std::printf("  at %d and at %d photos: a committed change %.2f and %.2f ms\n", kSmall, kLarge,
              sides.Plain * 1e3, sides.Ours * 1e3);
  PrintRatio("committed change, large / small", sides.Ours / sides.Plain, Limit::AtMost, 3);
}

}  // namespace

void RunStorageBench() {
  const CScratchFolder scratch("storage");
  const std::string small = scratch.GetPath() + "/small.db";
  const std::string large = scratch.GetPath() + "/large.db";
  FillStorage(small, kSmall);
  std::printf("  filling %d photos, one transaction: %.1f s\n", kLarge,
              TimeOnce([&] { FillStorage(large, kLarge); }));
  MeasureOpening(large);
  MeasureSorts(large);
  MeasureLookups(small, large);
  MeasureCommits(small, large);
}
