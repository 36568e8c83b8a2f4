#pragma once

#include <cstdint>
#include <optional>

#include "catalog/PhotoFacts.h"
#include "catalog/StringHistory.h"
#include "ui/controls/DropControlModel.h"

class CDropControl;

/// The items of the folder control by id.
enum class FolderItem : int {
  SearchAgain = 1,  // actions
  AddFolder = 2,
  MoreFolders = 3,
  RemoveFolder = 4,
  AllFolders = 100,
  MyPictures = 101,
  ActiveDisk = 102,
  FirstListed = 103,  // and up: the folders of the user's list
};

/// The items of the find control by id.
enum class FindItem : int { Anything = 1, FirstHistory = 100 };

/// The items of the sort control by id. The numbers are also what the setting "Sort" holds.
enum class SortId : std::int32_t { Rating = 221, Month = 226, Folder = 232, Title = 233, Roll = 234 };

struct SortOrder {
  SortKind Kind;
  bool Descending;
};

/// The order that an item of the sort control stands for; none for an unknown id.
std::optional<SortOrder> GetSortOrder(SortId id);

/// A history of the catalog as a drop control reads it. It refers to the history.
class CCatalogDropHistory : public CDropHistory {
 public:
  explicit CCatalogDropHistory(CStringHistory& history) : History(history) {}

  int Count() const override { return History.Count(); }
  std::string Get(int index) const override { return History.Get(index); }
  int Add(const std::string& text) override { return History.Add(text); }
  void Promote(int index) override { History.Promote(index); }

 private:
  CStringHistory& History;
};

// These give a control its items and pictures, and let it stand on the one that a session begins with.

void FillFolderControl(CDropControl& control, CDropHistory& folders, bool activeDisk);
void FillFindControl(CDropControl& control, CDropHistory& texts);
void FillRatingControl(CDropControl& control);
void FillSortControl(CDropControl& control);
