// Thousands of random operations on a storage, each followed by a comparison of every live view with a
// plain model of it.

#include <algorithm>
#include <functional>
#include <memory>
#include <random>

#include "StorageTestTools.h"

namespace {

const c4_IntProp pSerial("Serial");
const c4_IntProp pSmall("Small");  // few different values
const c4_IntProp pWide("Wide");    // many
const c4_StringProp pText("Text");
const c4_BytesProp pBytes("Bytes");

constexpr const char* kDescription = "Thing[Serial:I,Small:I,Text:S,Bytes:B,Wide:I]";

struct ModelRow {
  std::int32_t Serial = 0;
  std::int32_t Small = 0;
  std::int32_t Wide = 0;
  std::string Text;
  c4_Bytes Bytes;
};

using Rows = std::vector<ModelRow>;

std::string Fold(std::string text) {
  for (char& byte : text) {
    if (byte >= 'A' && byte <= 'Z') byte = static_cast<char>(byte - 'A' + 'a');
  }
  return text;
}

template <typename Below>
Rows Sorted(Rows rows, const Below& below) {
  std::stable_sort(rows.begin(), rows.end(), below);
  return rows;
}

template <typename Passes>
Rows Chosen(Rows rows, const Passes& passes) {
  std::erase_if(rows, [&](const ModelRow& row) { return !passes(row); });
  return rows;
}

bool TextBelow(const ModelRow& a, const ModelRow& b) { return Fold(a.Text) < Fold(b.Text); }
bool IsOne(const ModelRow& row) { return row.Small == 1; }

bool NumbersBelow(const ModelRow& a, const ModelRow& b) {
  return a.Small != b.Small ? a.Small < b.Small : a.Wide < b.Wide;
}

bool MixedBelow(const ModelRow& a, const ModelRow& b) {  // Small down, Text up, Wide down
  if (a.Small != b.Small) return a.Small > b.Small;
  if (Fold(a.Text) != Fold(b.Text)) return TextBelow(a, b);
  return a.Wide > b.Wide;
}

bool TextDownBelow(const ModelRow& a, const ModelRow& b) {
  if (Fold(a.Text) != Fold(b.Text)) return TextBelow(b, a);
  return a.Wide < b.Wide;
}

/// A view and what it must hold.
struct LiveView {
  std::string Name;
  c4_View View;
  std::function<Rows(const Rows&)> Expected;
};

std::vector<LiveView> MakeViews(const c4_View& base) {
  const c4_View byText = base.SortOn({pText});
  const c4_View ones = base.Select(pSmall[1]);
  const c4_View byNumbers = base.SortOn({pSmall, pWide});
  const auto textSorted = [](const Rows& rows) { return Sorted(rows, TextBelow); };
  const auto onlyOnes = [](const Rows& rows) { return Chosen(rows, IsOne); };
  return {
      {"base", base, [](const Rows& rows) { return rows; }},
      {"text", byText, textSorted},
      {"ones", ones, onlyOnes},
      {"numbers", byNumbers, [](const Rows& rows) { return Sorted(rows, NumbersBelow); }},
      {"mixed", base.SortOnReverse({pSmall, pText, pWide}, {pSmall, pWide}),
       [](const Rows& rows) { return Sorted(rows, MixedBelow); }},
      {"text down", base.SortOnReverse({pText, pWide}, {pText}),
       [](const Rows& rows) { return Sorted(rows, TextDownBelow); }},
      {"ones of text", byText.Select(pSmall[1]),
       [=](const Rows& rows) { return onlyOnes(textSorted(rows)); }},
      {"text of ones", ones.SortOn({pText}), [=](const Rows& rows) { return textSorted(onlyOnes(rows)); }},
      {"small of text", byText.SortOn({pSmall}),
       [=](const Rows& rows) {
         return Sorted(textSorted(rows),
                       [](const ModelRow& a, const ModelRow& b) { return a.Small < b.Small; });
       }},
      {"a text of ones of numbers", byNumbers.Select(pSmall[1]).Select(pText["ab"]),
       [=](const Rows& rows) {
         return Chosen(Sorted(onlyOnes(rows), NumbersBelow),
                       [](const ModelRow& row) { return Fold(row.Text) == "ab"; });
       }},
      {"wide and bytes", base.Select(pWide[7] + pBytes[ToBytes("x")]),
       [](const Rows& rows) {
         return Chosen(rows, [](const ModelRow& row) { return row.Wide == 7 && row.Bytes == ToBytes("x"); });
       }},
  };
}

class CModelRun {
 public:
  CModelRun(std::string path, unsigned seed, std::int32_t wideRange)
      : Path(std::move(path)), Random(seed), WideRange(wideRange) {
    Open();
  }

  void AddRows(int count) {
    for (int i = 0; i < count; ++i) AddRow();
    Check("first rows");
  }

  void RunSteps(int count) {
    for (int i = 0; i < count && !testing::Test::HasFailure(); ++i)
      Check(Step() + ", step " + std::to_string(i));
  }

 private:
  int Pick(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(Random); }

  std::string PickText() {
    static const std::vector<std::string> kTexts = {"",
                                                    "a",
                                                    "A",
                                                    "ab",
                                                    "AB",
                                                    "Ab",
                                                    "abc",
                                                    std::string("a\0", 2),
                                                    std::string("a\0b", 3),
                                                    "\xff\xfe",
                                                    "_x",
                                                    "Zz",
                                                    "zz",
                                                    "z_",
                                                    "long text that doesn't fit",
                                                    "Long text that doesn't fiT too",
                                                    "[",
                                                    "\xc3\xa9"};
    if (Pick(3) > 0) return kTexts[static_cast<std::size_t>(Pick(static_cast<int>(kTexts.size())))];
    return "/home/user/Pictures/2004/" + std::to_string(Pick(50));
  }

  ModelRow PickRow() {
    return {++LastSerial, Pick(3), Pick(WideRange), PickText(), ToBytes(Pick(2) == 0 ? "x" : "yy")};
  }

  void Open() {
    Storage = std::make_unique<c4_Storage>(Path, c4_Storage::Mode::ReadWrite);
    Views = MakeViews(Storage->GetAs(kDescription));
    Refs.clear();
    for (std::size_t i = 0; i < Model.size(); ++i) {
      Refs[Model[i].Serial] = Base().GetAt(static_cast<int>(i));
    }
  }

  c4_View& Base() { return Views[0].View; }

  void AddRow() {
    const ModelRow row = PickRow();
    Refs[row.Serial] = Base().Add(pSerial[row.Serial] + pSmall[row.Small] + pWide[row.Wide] +
                                  pText[row.Text] + pBytes[row.Bytes]);
    Model.push_back(row);
  }

  std::string Step() {
    const int kind = Pick(100);
    if (kind < 30) return AddRow(), "add";
    if (kind < 75 && !Model.empty()) return SetOne();
    if (kind < 88) return RemoveSome();
    if (kind < 90) return Resize();
    if (kind < 94) return Storage->Commit(), Committed = Model, "commit";
    if (kind < 97) return Storage->Rollback(), Model = Committed, "rollback";
    if (kind < 98) return Model = Committed, Storage.reset(), Open(), "reopen";
    Views = MakeViews(Base());
    return "make the views anew";
  }

  std::string SetOne() {
    ModelRow& row = Model[static_cast<std::size_t>(Pick(static_cast<int>(Model.size())))];
    const c4_RowRef ref = Refs[row.Serial];
    switch (Pick(4)) {
      case 0:
        pSmall.Set(ref, row.Small = Pick(3));
        return "set small";
      case 1:
        pWide.Set(ref, row.Wide = Pick(WideRange));
        return "set wide";
      case 2:
        pText.Set(ref, row.Text = PickText());
        return "set text";
      default:
        pBytes.Set(ref, row.Bytes = ToBytes(Pick(2) == 0 ? "x" : ""));
        return "set bytes";
    }
  }

  std::string RemoveSome() {
    const LiveView& live = Views[static_cast<std::size_t>(Pick(static_cast<int>(Views.size())))];
    const Rows rows = live.Expected(Model);
    if (rows.empty()) return "remove nothing";
    const int first = Pick(static_cast<int>(rows.size()));
    const int count = Pick(10) == 0 ? Pick(40) : 1 + Pick(2);
    c4_View view = live.View;
    view.RemoveAt(first, count);
    for (int i = first; i < first + count && i < static_cast<int>(rows.size()); ++i) {
      std::erase_if(
          Model, [&](const ModelRow& row) { return row.Serial == rows[static_cast<std::size_t>(i)].Serial; });
    }
    return "remove " + std::to_string(count) + " from " + live.Name;
  }

  std::string Resize() {
    const int size = Pick(12) == 0 ? 0 : std::max(0, static_cast<int>(Model.size()) + Pick(12) - 6);
    Base().SetSize(size);
    while (static_cast<int>(Model.size()) < size) {
      const c4_RowRef ref = Base().GetAt(static_cast<int>(Model.size()));
      Model.push_back({++LastSerial, 0, 0, "", {}});
      pSerial.Set(ref, LastSerial);
      Refs[LastSerial] = ref;
    }
    Model.resize(static_cast<std::size_t>(size));
    return "resize";
  }

  void Check(const std::string& after) {
    for (const LiveView& live : Views) {
      SCOPED_TRACE(live.Name + " after " + after);
      CheckView(live.View, live.Expected(Model));
      if (testing::Test::HasFailure()) return;
    }
    CheckSearch(after);
    for (const auto& [serial, ref] : Refs) {
      const bool there =
          std::any_of(Model.begin(), Model.end(), [&](const ModelRow& row) { return row.Serial == serial; });
      ASSERT_EQ(ref.IsValid(), there) << "row " << serial << " after " << after;
    }
  }

  void CheckView(const c4_View& view, const Rows& expected) {
    ASSERT_EQ(view.GetSize(), static_cast<int>(expected.size()));
    for (int i = 0; i < view.GetSize(); ++i) {
      const ModelRow& row = expected[static_cast<std::size_t>(i)];
      const c4_RowRef ref = view.GetAt(i);
      ASSERT_EQ(pSerial.Get(ref), row.Serial) << "at " << i;
      ASSERT_EQ(pSmall.Get(ref), row.Small);
      ASSERT_EQ(pWide.Get(ref), row.Wide);
      ASSERT_EQ(pText.Get(ref), row.Text);
      ASSERT_TRUE(i % 16 != 0 || pBytes.Get(ref) == row.Bytes) << "at " << i;
      ASSERT_TRUE(i % 4 != 0 || view.GetIndexOf(Refs[row.Serial]) == i) << "at " << i;
    }
    CheckFind(view, expected);
  }

  void CheckFind(const c4_View& view, const Rows& rows) {
    const ModelRow wanted = PickRow();
    const int start = Pick(5);
    const auto find = [&](const auto& passes) {
      const auto from = rows.begin() + std::min<std::ptrdiff_t>(start, std::ssize(rows));
      const auto found = std::find_if(from, rows.end(), passes);
      return found == rows.end() ? -1 : static_cast<int>(found - rows.begin());
    };
    ASSERT_EQ(view.Find(pWide[wanted.Wide], start),
              find([&](const ModelRow& row) { return row.Wide == wanted.Wide; }));
    ASSERT_EQ(view.Find(pSmall[wanted.Small] + pText[wanted.Text], start), find([&](const ModelRow& row) {
                return row.Small == wanted.Small && Fold(row.Text) == Fold(wanted.Text);
              }));
    ASSERT_EQ(view.Find(pWide[-1]), -1);
    // A row that isn't in this view has no index in it.
    for (const auto& [serial, ref] : Refs) {
      if (Pick(20) > 0) continue;
      ASSERT_EQ(view.GetIndexOf(ref) >= 0, std::any_of(rows.begin(), rows.end(), [&](const ModelRow& row) {
                  return row.Serial == serial;
                }));
    }
  }

  template <typename Below>
  static int CountBelow(const Rows& rows, const Below& below) {
    return static_cast<int>(std::count_if(rows.begin(), rows.end(), below));
  }

  void CheckSearch(const std::string& after) {
    // A view that was searched often without a change in between searches in another way.
    for (int i = Pick(4) == 0 ? 8 : 1; i > 0 && !testing::Test::HasFailure(); --i) CheckOneSearch(after);
  }

  void CheckOneSearch(const std::string& after) {
    const ModelRow wanted = PickRow();
    const auto below = [&](auto order) {
      return [&wanted, order](const ModelRow& row) { return order(row, wanted); };
    };
    ASSERT_EQ(Views[1].View.Search(pText[wanted.Text]), CountBelow(Model, below(TextBelow))) << after;
    ASSERT_EQ(Views[3].View.Search(pWide[wanted.Wide] + pSmall[wanted.Small]),
              CountBelow(Model, below(NumbersBelow)));
    ASSERT_EQ(Views[4].View.Search(pSmall[wanted.Small] + pWide[wanted.Wide] + pText[wanted.Text]),
              CountBelow(Model, below(MixedBelow)));
    ASSERT_EQ(Views[5].View.Search(pText[wanted.Text] + pWide[wanted.Wide]),
              CountBelow(Model, below(TextDownBelow)));
    ASSERT_EQ(Views[4].View.Search(pSmall[wanted.Small]),
              CountBelow(Model, [&](const ModelRow& row) { return row.Small > wanted.Small; }));
  }

  std::string Path;
  std::mt19937 Random;
  std::int32_t WideRange;
  std::int32_t LastSerial = 0;
  std::unique_ptr<c4_Storage> Storage;
  std::vector<LiveView> Views;
  Rows Model;
  Rows Committed;
  std::map<std::int32_t, c4_RowRef> Refs;  // of all rows of this session, removed ones too
};

using CViewModelTest = CStorageTest;

TEST_F(CViewModelTest, SmallViewsFollowEveryChange) {
  for (unsigned seed = 1; seed <= 3; ++seed) {
    SCOPED_TRACE(seed);
    CModelRun run(Path + std::to_string(seed), seed, 12);
    run.RunSteps(1000);
    if (HasFailure()) return;
  }
}

TEST_F(CViewModelTest, LargeViewsWithIndexesFollowEveryChange) {
  CModelRun run(Path, 77, 2000);
  run.AddRows(1200);  // enough for indexes, counting sorts and search guides
  run.RunSteps(100);
}

}  // namespace
