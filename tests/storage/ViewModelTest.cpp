// Thousands of random operations on a storage, each followed by a comparison of every live view with a
// plain model of it.

#include <algorithm>
#include <memory>
#include <random>
#include <tuple>

#include "StorageFixture.h"

namespace {

const c4_IntProp pSmall("Small");  // few different values

constexpr const char* kModelView = "Thing[Small:I,Text:S,Bytes:B,Number:I]";

struct ModelRow {
  std::int32_t Small = 0;
  std::int32_t Number = 0;
  std::string Text;
  std::string Folded;  // the text in small letters
  c4_Bytes Bytes;
  c4_RowRef Ref;
};

using Rows = std::vector<ModelRow>;
using Order = bool (*)(const ModelRow&, const ModelRow&);

bool BySmall(const ModelRow& a, const ModelRow& b) { return a.Small < b.Small; }
bool BySmallDown(const ModelRow& a, const ModelRow& b) { return b.Small < a.Small; }
bool ByText(const ModelRow& a, const ModelRow& b) { return a.Folded < b.Folded; }
bool ByNumbers(const ModelRow& a, const ModelRow& b) {
  return std::tie(a.Small, a.Number) < std::tie(b.Small, b.Number);
}
bool ByMixed(const ModelRow& a, const ModelRow& b) {
  return std::tie(b.Small, b.Folded, a.Number) < std::tie(a.Small, a.Folded, b.Number);
}

bool All(const ModelRow&) { return true; }
bool IsOne(const ModelRow& row) { return row.Small == 1; }
bool IsOneA(const ModelRow& row) { return row.Small == 1 && row.Folded == "a"; }
bool IsSevenX(const ModelRow& row) { return row.Number == 7 && row.Bytes == ToBytes("x"); }

/// A view and what it must hold: the rows that pass, sorted by one order after the other.
struct LiveView {
  Rows Expect(Rows rows) const {
    std::erase_if(rows, [this](const ModelRow& row) { return !Passes(row); });
    for (const Order order : Orders) std::stable_sort(rows.begin(), rows.end(), order);
    return rows;
  }

  c4_View View;
  bool (*Passes)(const ModelRow&);
  std::vector<Order> Orders;
};

std::vector<LiveView> MakeViews(const c4_View& base) {
  const c4_View byText = base.SortOn({pText});
  const c4_View byNumbers = base.SortOn({pSmall, pNumber});
  return {
      {base, All, {}},
      {byText, All, {ByText}},
      {byNumbers, All, {ByNumbers}},
      {base.SortOnReverse({pSmall, pText, pNumber}, {pSmall, pText}), All, {ByMixed}},
      {base.Select(pSmall[1]).SortOn({pText}), IsOne, {ByText}},
      {byText.Select(pSmall[1]), IsOne, {ByText}},
      {byText.SortOn({pSmall}), All, {ByText, BySmall}},
      {byNumbers.Select(pSmall[1]).Select(pText["a"]), IsOneA, {ByNumbers}},
      {base.Select(pNumber[7] + pBytes[ToBytes("x")]), IsSevenX, {}},
  };
}

class CModelRun {
 public:
  CModelRun(std::string path, unsigned seed, std::int32_t range)
      : Path(std::move(path)), Random(seed), Range(range) {
    Open();
  }

  void Run(int firstRows, int steps) {
    for (int i = 0; i < firstRows; ++i) AddRow();
    Commit();
    for (int i = 0; i < steps && !testing::Test::HasFailure(); ++i) {
      const int kind = Pick(100);
      SCOPED_TRACE("step " + std::to_string(i) + " of kind " + std::to_string(kind));
      const Rows before = Model;
      Step(kind);
      // An index that forgets a change shows too many rows or too few.
      for (const ModelRow& row : before) {
        const auto hasNumber = [&](const ModelRow& other) { return other.Number == row.Number; };
        const auto count = std::count_if(Model.begin(), Model.end(), hasNumber);
        ASSERT_EQ(Base().Select(pNumber[row.Number]).GetSize(), count);
      }
      for (const LiveView& live : Views) CheckView(live);
      // A view that was searched often without a change in between searches in another way.
      for (int search = Pick(4) == 0 ? 8 : 1; search > 0; --search) CheckSearch();
    }
  }

 private:
  int Pick(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(Random); }

  template <typename T>
  T& PickFrom(std::vector<T>& list) {
    return list[static_cast<std::size_t>(Pick(static_cast<int>(list.size())))];
  }

  /// Its text is short, so that there are equal ones, or longer than what is compared at once.
  ModelRow PickRow() {
    std::string text = Pick(3) == 0 ? "/home/user/pictures/" : "";
    std::string folded = text;
    for (int i = Pick(3); i > 0; --i) {
      const auto letter = static_cast<std::size_t>(Pick(7));
      text += "aAbB_\0\xff"[letter];
      folded += "aabb_\0\xff"[letter];
    }
    return {Pick(3), Pick(Range), text, folded, ToBytes(Pick(2) == 0 ? "x" : "yy"), {}};
  }

  void Open() {
    Storage = std::make_unique<c4_Storage>(Path, Mode::ReadWrite);
    Views = MakeViews(Storage->GetAs(kModelView));
    for (int i = 0; ModelRow & row : Model) row.Ref = Base()[i++];
    Committed = Model;
  }

  c4_View& Base() { return Views[0].View; }

  void AddRow() {
    ModelRow& row = Model.emplace_back(PickRow());
    row.Ref = Base().Add(pSmall[row.Small] + pNumber[row.Number] + pText[row.Text] + pBytes[row.Bytes]);
  }

  void Step(int kind) {
    if (kind < 30 || Model.empty()) return AddRow();
    if (kind < 75) return SetOne();
    if (kind < 88) return RemoveSome();
    if (kind < 92) return Commit();
    if (kind == 92) {
      Base().SetSize(0);
      Model.clear();
    } else if (kind < 97) {
      Storage->Rollback();
      Model = Committed;
    } else if (kind == 97) {
      Model = Committed;
      Storage.reset();
      Open();
    } else {
      Views = MakeViews(Base());
    }
  }

  void Commit() {
    Storage->Commit();
    Committed = Model;
  }

  void SetOne() {
    ModelRow& row = PickFrom(Model);
    const ModelRow other = PickRow();
    const int kind = Pick(5);
    if (kind == 0) pSmall.Set(row.Ref, row.Small = other.Small);
    if (kind == 1) pNumber.Set(row.Ref, other.Number);  // and back
    if (kind == 1) pNumber.Set(row.Ref, row.Number);
    if (kind == 4) pNumber.Set(row.Ref, row.Number = other.Number);
    if (kind == 2) pText.Set(row.Ref, row.Text = other.Text);
    if (kind == 2) row.Folded = other.Folded;
    if (kind == 3) pBytes.Set(row.Ref, row.Bytes = other.Bytes);
  }

  void RemoveSome() {
    LiveView& live = PickFrom(Views);
    const Rows rows = live.Expect(Model);
    const int size = static_cast<int>(rows.size());
    const int first = Pick(size + 2) - 1;  // may be out of range
    const int count = Pick(10) == 0 ? Pick(40) : 1 + Pick(2);
    live.View.RemoveAt(first, count);
    const int begin = std::max(first, 0);
    const int end = std::max(std::min(first + count, size), begin);
    for (int i = begin; i < end; ++i) EXPECT_FALSE(rows[static_cast<std::size_t>(i)].Ref.IsValid());
    EXPECT_EQ(std::erase_if(Model, [](const ModelRow& row) { return !row.Ref.IsValid(); }), end - begin);
  }

  void CheckView(const LiveView& live) {
    const c4_View& view = live.View;
    const Rows rows = live.Expect(Model);
    ASSERT_EQ(view.GetSize(), static_cast<int>(rows.size()));
    for (int i = 0; i < view.GetSize(); ++i) {
      const ModelRow& row = rows[static_cast<std::size_t>(i)];
      ASSERT_EQ(view.GetIndexOf(row.Ref), i);
      ASSERT_EQ(view.GetIntegerAt(pSmall, i), row.Small);
      ASSERT_EQ(pNumber.Get(view[i]), row.Number);
      ASSERT_EQ(view.GetTextAt(pText, i), row.Text);
      ASSERT_TRUE(i % 16 != 0 || pBytes.Get(view[i]) == row.Bytes) << "at " << i;
    }
    // A row that isn't in this view has no index in it.
    for (const ModelRow& row : Model) ASSERT_EQ(view.GetIndexOf(row.Ref) >= 0, live.Passes(row));
    const ModelRow wanted = PickRow();
    const int start = Pick(5);
    const auto from = rows.begin() + std::min<std::ptrdiff_t>(start, std::ssize(rows));
    const auto found = std::find_if(from, rows.end(), [&](const ModelRow& row) {
      return row.Number == wanted.Number && row.Folded == wanted.Folded;
    });
    const auto expected = found == rows.end() ? -1 : found - rows.begin();
    ASSERT_EQ(view.Find(pNumber[wanted.Number] + pText[wanted.Text], start), expected);
  }

  void CheckSearch() {
    const ModelRow wanted = PickRow();
    const auto expect = [&](std::size_t view, const c4_Row& values, Order order) {
      const auto isBelow = [&](const ModelRow& row) { return order(row, wanted); };
      ASSERT_EQ(Views[view].View.Search(values), std::count_if(Model.begin(), Model.end(), isBelow)) << view;
    };
    const c4_Row small = pSmall[wanted.Small];
    const c4_Row number = pNumber[wanted.Number];
    const c4_Row text = pText[wanted.Text];
    expect(1, text, ByText);
    expect(2, number + small, ByNumbers);
    expect(3, small + number + text, ByMixed);
    expect(3, small, BySmallDown);
  }

  std::string Path;
  std::mt19937 Random;
  std::int32_t Range;  // of Number
  std::unique_ptr<c4_Storage> Storage;
  std::vector<LiveView> Views;
  Rows Model;
  Rows Committed;
};

class CViewModelTest : public CStorageTest {};

TEST_F(CViewModelTest, LiveViewsFollowEveryChange) {
  for (unsigned seed = 1; seed <= 3 && !HasFailure(); ++seed) {
    CModelRun(Path + std::to_string(seed), seed, 12).Run(0, 1000);
  }
  CModelRun(Path, 77, 2000).Run(600, 60);  // enough for indexes, counting sorts and search guides
}

}  // namespace
