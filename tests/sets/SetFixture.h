#pragma once

#include <ctime>
#include <string>
#include <vector>

#include "sets/QuerySet.h"
#include "support/CatalogFixture.h"

using Ids = std::vector<std::int32_t>;

/// A catalog of some years: nested folders, photos of one moment, months that repeat, three rolls.
class CSetFixture : public CCatalogFixture {
 protected:
  CSetFixture() {
    CAutoCommitPause pause(Catalog);
    // AssetID, in the order of adding: 1 to 10.
    Add("Photos/2002/sunset.jpg", Day(2002, 8, 31, 23), 3);
    Add("Photos/2002/Beach.jpg", Day(2002, 9, 1, 0), 0);
    Add("Photos/2002/beach2.jpg", Day(2002, 9, 1, 0), 4);
    Catalog.AdvanceRoll();
    Add("Photos/Über/Zug.jpg", Day(2003, 8, 9, 14), 4);
    Add("Photos/Über/ähre.jpg", Day(2003, 8, 9, 14), 4);
    Add("Photos2/party.jpg", Day(2003, 8, 30, 9), 1);
    Catalog.AdvanceRoll();
    Add("Photos/2002/Sub/anna.jpg", Day(2002, 9, 30, 23), 3);
    Add("Photos/b\xfc"
        "cher.jpg",
        Day(2001, 1, 1, 0), 0);  // a name in another encoding
    Add("Photos/zebra.jpg", Day(2002, 9, 30, 23), 2);
    Add("aaa.jpg", Day(2003, 12, 31, 23), 0);
    pause.Commit();
  }

  void Add(const std::string& name, std::int32_t date, std::int32_t rating) {
    AddRow(Root + name, date, rating);
  }

  static std::int32_t Day(int year, int month, int day, int hour) {
    std::tm local{};
    local.tm_year = year - 1900;
    local.tm_mon = month - 1;
    local.tm_mday = day;
    local.tm_hour = hour;
    local.tm_isdst = -1;
    return static_cast<std::int32_t>(std::mktime(&local));
  }

  static Ids IdsOf(const CPhotoSet& set) {
    Ids ids;
    for (int i = 0; i < set.GetCount(); ++i) ids.push_back(set.GetAssetId(i));
    return ids;
  }

  /// The first photo of each group.
  static Ids StartsOf(const CPhotoSet& set) {
    Ids starts;
    for (int i = 0; i < set.GetCount(); ++i) {
      if (set.IsGroupStart(i)) starts.push_back(set.GetAssetId(i));
    }
    return starts;
  }

  Ids Sorted(SortKind kind, bool descending = false) {
    CQuerySet set(&Catalog, SetKind::Available);
    EXPECT_TRUE(set.SetSort(kind, descending));
    set.Rebuild();
    return IdsOf(set);
  }

  const std::string Root = Scratch.GetPath() + "/";
};
