#include <malloc.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <functional>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "Benchmarks.h"
#include "Measure.h"
#include "catalog/Catalog.h"
#include "catalog/Properties.h"
#include "catalog/StampList.h"
#include "sets/QuerySet.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kPhotos = 100000;
constexpr int kStampsPerPhoto = 3;
constexpr int kRepetitions = 9;
constexpr int kChanges = 300;

constexpr std::array kWords{"beach", "harbour", "grandmother", "birthday", "lake",   "mountain",
                            "snow",  "garden",  "children",    "holiday",  "sunset", "boat"};

/// Photos over ten years in a thousand folders, in no order; each with a date, a rating and a caption.
void FillCatalog(const std::string& path) {
  std::mt19937 random(4);
  const auto below = [&random](int limit) {
    return std::uniform_int_distribution<int>(0, limit - 1)(random);
  };
  CCatalog catalog;
  catalog.Open(path);
  CAutoCommitPause pause(catalog);
  for (int i = 0; i < kPhotos; ++i) {
    char name[96];
    std::snprintf(name, sizeof name, "/home/someone/Pictures/trip %04d/%s %05d.jpg", below(1000),
                  kWords[static_cast<std::size_t>(below(kWords.size()))], below(kPhotos));
    CAssetRecord photo = catalog.AddAsset(name);
    photo.GetStamps(StampId::Date).SetDate(1000000000 + below(300000000), 0, StampId::None);
    photo.GetStamps(StampId::Rating).SetNumber(below(5), 0);
    const std::string first = kWords[static_cast<std::size_t>(below(kWords.size()))];
    const std::string second = kWords[static_cast<std::size_t>(below(kWords.size()))];
    photo.GetStamps(StampId::Note)
        .SetText("The " + first + " behind the " + second + ", " + std::to_string(i), 0);
    if (i % 1000 == 999) catalog.AdvanceRoll();
  }
  pause.Commit();
}

double TimeMedian(const std::function<void()>& work) {
  std::vector<double> seconds;
  for (int i = 0; i < kRepetitions; ++i) {
    const Clock::time_point start = Clock::now();
    work();
    seconds.push_back(SecondsSince(start));
  }
  return Median(seconds);
}

/// std::sort of the keys that a sort looks at, in the order of import.
template <typename Key>
double TimePlainSort(const CCatalog& catalog, const std::function<Key(const c4_RowRef&)>& keyOf) {
  const c4_View assets = catalog.GetAssets();
  std::vector<Key> keys;
  for (int i = 0; i < assets.GetSize(); ++i) keys.push_back(keyOf(assets[i]));
  std::vector<double> seconds;
  for (int i = 0; i < kRepetitions; ++i) {
    std::vector<Key> sorted = keys;
    const Clock::time_point start = Clock::now();
    std::sort(sorted.begin(), sorted.end());
    seconds.push_back(SecondsSince(start));
  }
  return Median(seconds);
}

double TimePlainSort(const CCatalog& catalog, const c4_IntProp& first, const c4_IntProp& second) {
  return TimePlainSort<std::pair<std::int32_t, std::int32_t>>(
      catalog, [&](const c4_RowRef& row) { return std::pair(first.Get(row), second.Get(row)); });
}

double TimePlainSort(const CCatalog& catalog, const c4_StringProp& first, const c4_IntProp& second) {
  return TimePlainSort<std::pair<std::string, std::int32_t>>(
      catalog, [&](const c4_RowRef& row) { return std::pair(std::string(first.Get(row)), second.Get(row)); });
}

struct MeasuredSort {
  const char* Name;
  SortKind Kind;
  bool Descending;
  double Plain;  // seconds
};

void Compare(CQuerySet& set, const std::string& what, const MeasuredSort& sort, double limit) {
  set.SetSort(sort.Kind, sort.Descending);
  const double seconds = TimeMedian([&set] { set.Rebuild(); });
  std::printf("  %s, %s: %.1f ms for %d photos; std::sort of the keys: %.1f ms\n", sort.Name, what.c_str(),
              seconds * 1e3, set.GetCount(), sort.Plain * 1e3);
  PrintRatio(std::string(sort.Name) + ", " + what + " / std::sort", seconds / sort.Plain, Limit::AtMost,
             limit);
}

void MeasureRebuilds(CCatalog& catalog) {
  constexpr double kPlainLimit = 4, kTextLimit = 8;
  using namespace props;
  const std::array sorts{
      MeasuredSort{"month", SortKind::Month, false, TimePlainSort(catalog, CachedDate, CachedRating)},
      MeasuredSort{"folder", SortKind::Folder, false, TimePlainSort(catalog, Location, CachedDate)},
      MeasuredSort{"title", SortKind::Title, false, TimePlainSort(catalog, Filename, CachedDate)},
      MeasuredSort{"rating", SortKind::Rating, true, TimePlainSort(catalog, CachedRating, CachedDate)},
      MeasuredSort{"roll", SortKind::Roll, false, TimePlainSort(catalog, RollID, CachedDate)},
  };
  CQuerySet set(&catalog, SetKind::Available);
  for (const MeasuredSort& sort : sorts) Compare(set, "no filter", sort, kPlainLimit);
  set.SetFolderFilter("/home/someone/Pictures/trip 0042");
  Compare(set, "folder filter", sorts[0], kPlainLimit);
  set.ClearFolderFilter();
  set.SetRatingFilter(RatingFilterCode::ThreeOrBetter);
  Compare(set, "rating filter", sorts[0], kPlainLimit);
  set.ClearRatingFilter();
  set.SetTextFilter("sunset harbour");
  Compare(set, "two words", sorts[0], kTextLimit);
}

/// What one change costs with sorted and selected views alive, against the same without them and against a
/// rebuild of one.
void MeasureChanges(CCatalog& catalog) {
  const auto timeChanges = [&catalog] {
    std::mt19937 random(5);
    CAutoCommitPause pause(catalog);  // without the disk's share, which would hide the rest
    const Clock::time_point start = Clock::now();
    for (int i = 0; i < kChanges; ++i) {
      CAssetRecord photo = catalog.FindAssetById(1 + static_cast<std::int32_t>(random() % kPhotos));
      photo.GetStamps(StampId::Rating).SetNumber(static_cast<std::int32_t>(random() % 5), 0);
      photo.SetFlag(PhotoFlag::Tossed, i % 2 == 0);
    }
    return SecondsSince(start) / kChanges;
  };
  const double alone = timeChanges();
  const c4_View selected = catalog.GetAssets().Select(props::Missing[0] + props::Tossed[0]);
  const c4_View sorted = selected.SortOnReverse({props::CachedRating, props::CachedDate},
                                                {props::CachedRating, props::CachedDate});
  const double watched = timeChanges();
  const double rebuild = TimeMedian([&selected] {
    static_cast<void>(selected.SortOnReverse({props::CachedRating, props::CachedDate},
                                             {props::CachedRating, props::CachedDate}));
  });
  std::printf(
      "  a rating and a flag: %.3f ms, with a sorted and a selected view alive: %.3f ms; sorting anew: "
      "%.1f ms\n",
      alone * 1e3, watched * 1e3, rebuild * 1e3);
  PrintRatio("a change with live views / sorting anew", watched / rebuild, Limit::AtMost, 0.2);
}

std::size_t HeldMemory() {
  ::malloc_trim(0);
  const auto info = ::mallinfo2();
  return info.uordblks + info.hblkhd;
}

/// Bytes of the texts themselves.
std::size_t TextBytes(const CCatalog& catalog) {
  std::size_t bytes = 0;
  const c4_View assets = catalog.GetAssets(), stamps = catalog.GetStamps();
  for (int i = 0; i < assets.GetSize(); ++i) {
    bytes += props::Location.Get(assets[i]).size() + props::Filename.Get(assets[i]).size();
  }
  for (int i = 0; i < stamps.GetSize(); ++i) bytes += props::SortedString.Get(stamps[i]).size();
  return bytes;
}

void MeasureMemory(const std::string& path) {
  const std::size_t before = HeldMemory();
  CCatalog catalog;
  catalog.Open(path);
  CQuerySet set(&catalog, SetKind::Available);
  set.SetSort(SortKind::Month, false);
  set.Rebuild();
  static_cast<void>(catalog.FindAssetById(1).GetStamps(StampId::Rating).Count());  // makes the index
  const double perPhoto = static_cast<double>(HeldMemory() - before - TextBytes(catalog)) / kPhotos;
  std::printf("  memory of catalog and set: %.0f bytes a photo beyond its texts\n", perPhoto);
  PrintRatio("bytes a photo / 400", perPhoto / 400, Limit::AtMost, 1);
}

}  // namespace

void RunSetBench() {
  const CScratchFolder scratch("sets");
  const std::string path = scratch.GetPath() + "/vellumar.db";
  FillCatalog(path);
  MeasureMemory(path);
  CCatalog catalog;
  catalog.Open(path);
  if (catalog.GetStamps().GetSize() != kPhotos * kStampsPerPhoto) {
    throw std::runtime_error("stamps are missing");
  }
  MeasureRebuilds(catalog);
  MeasureChanges(catalog);
}
