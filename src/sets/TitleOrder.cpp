#include "sets/TitleOrder.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string>
#include <tuple>

#include "catalog/Properties.h"
#include "platform/Ascii.h"
#include "platform/TextCompare.h"

namespace {

struct Title {
  std::string OrderKey;
  std::int32_t Date;
  int Row;
};

bool IsAsciiTitle(const c4_View& photos, int row) {
  return platform::IsAscii(photos.GetTextAt(props::Filename, row));
}

}  // namespace

bool AreAsciiTitles(const c4_View& photos) {
  for (int row = 0; row < photos.GetSize(); ++row) {
    if (!IsAsciiTitle(photos, row)) return false;
  }
  return true;
}

std::vector<int> OrderByLetters(const c4_View& sortedByTitle, bool descending) {
  // ASCII titles stand in order, which is most of them nearly everywhere.
  std::vector<Title> ascii, others, all;
  for (int row = 0; row < sortedByTitle.GetSize(); ++row) {
    (IsAsciiTitle(sortedByTitle, row) ? ascii : others)
        .push_back({platform::MakeLetterOrderKey(sortedByTitle.GetTextAt(props::Filename, row)),
                    sortedByTitle.GetIntegerAt(props::CachedDate, row), row});
  }
  const auto isBefore = [descending](const Title& left, const Title& right) {
    const Title& low = descending ? right : left;
    const Title& high = descending ? left : right;
    return std::tie(low.OrderKey, low.Date) < std::tie(high.OrderKey, high.Date);
  };
  std::stable_sort(others.begin(), others.end(), isBefore);
  std::merge(std::make_move_iterator(ascii.begin()), std::make_move_iterator(ascii.end()),
             std::make_move_iterator(others.begin()), std::make_move_iterator(others.end()),
             std::back_inserter(all), isBefore);
  std::vector<int> rows;
  rows.reserve(all.size());
  for (const Title& title : all) rows.push_back(title.Row);
  return rows;
}
