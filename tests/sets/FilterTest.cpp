#include "sets/SetFixture.h"

namespace {

class FilterTest : public CSetFixture {
 protected:
  FilterTest() : Set(&Catalog, SetKind::Available) {}

  Ids Rebuilt() {
    Set.Rebuild();
    return IdsOf(Set);
  }
  Ids WithText(const std::string& text) {
    Set.SetTextFilter(text);
    return Rebuilt();
  }

  CQuerySet Set;
};

TEST_F(FilterTest, RatingsAndRolls) {
  Set.SetRatingFilter(RatingFilterCode::ThreeOrBetter);
  EXPECT_EQ((Ids{1, 3, 4, 5, 7}), Rebuilt());
  Set.SetRatingFilter(RatingFilterCode::NoRating);
  EXPECT_EQ((Ids{2, 8, 10}), Rebuilt());
  Set.SetRatingFilter(RatingFilterCode::ThreeStars);
  EXPECT_EQ((Ids{1, 7}), Rebuilt());
  Set.SetRatingFilter(static_cast<RatingFilterCode>(99));
  EXPECT_EQ(10U, Rebuilt().size()) << "the range of an unknown code is 0 to 4";
  Set.SetRatingFilter(RatingFilterCode::Any);
  Set.SetRollFilter(1, -1);
  EXPECT_EQ((Ids{4, 5, 6, 7, 8, 9, 10}), Rebuilt());
  Set.SetRollFilter(-1, 0);
  EXPECT_EQ((Ids{1, 2, 3}), Rebuilt());
  Set.SetRatingFilter(RatingFilterCode::FourStars);
  EXPECT_EQ((Ids{3}), Rebuilt()) << "a photo must pass every filter";
  EXPECT_EQ("\x01\x01 or better", GetRatingFilterText(RatingFilterCode::TwoOrBetter));
  EXPECT_EQ("", GetRatingFilterText(static_cast<RatingFilterCode>(99)));
}

TEST_F(FilterTest, FoldersAreKnownByWholeNamesAndTheirCaseByTheDisk) {
  Set.SetFolderFilter(Root + "Photos");
  EXPECT_EQ((Ids{1, 2, 3, 4, 5, 7, 8, 9}), Rebuilt());
  EXPECT_EQ(Root + "Photos/", Set.GetFolderFilter());
  Set.SetFolderFilter(Root + "PHOTOS/2002/");
  EXPECT_EQ((Ids{}), Rebuilt()) << "a disk that is away tells nothing";
  Scratch.File("PHOTOS/2002/x");
  EXPECT_EQ((Ids{1, 2, 3, 7}), Rebuilt()) << "renamed";
  Scratch.File("photos/üBER/x");
  Set.SetFolderFilter(Root + "photos/üBER");
  EXPECT_EQ((Ids{4, 5}), Rebuilt());
  Scratch.File("Photos/2002/x");
  Set.SetFolderFilter(Root + "PHOTOS/2002/");
  EXPECT_EQ((Ids{}), Rebuilt()) << "the disk holds both";
  Set.SetFolderFilter("");
  EXPECT_EQ(10U, Rebuilt().size());
}

TEST_F(FilterTest, AnyWordInNameOrAnnotationFindsAPhoto) {
  Catalog.FindAssetById(8).GetStamps(StampId::Event).SetText("Beach day", 0);
  Catalog.FindAssetById(9).GetStamps(StampId::Note).SetText("At the PARTY, über alles", 0);
  Catalog.FindAssetById(10).GetStamps(StampId::Thing).Add("boats");
  Catalog.FindAssetById(10).GetStamps(StampId::Thing).Add("Lake");

  EXPECT_EQ((Ids{1, 2, 3, 8}), WithText("sun  beach"));
  EXPECT_EQ((Ids{6, 9}), WithText(" art "));
  EXPECT_EQ("art", Set.GetTextFilter());
  EXPECT_EQ((Ids{10}), WithText("lake"));
  EXPECT_EQ((Ids{9}), WithText("ÜBER")) << "folders are not searched";
  EXPECT_EQ((Ids{5}), WithText("Ähre"));
  EXPECT_EQ((Ids{}), WithText("2002")) << "dates and folders are not searched";
  EXPECT_EQ((Ids{}), WithText("\"beach day\"")) << "quotes mean nothing";
  EXPECT_EQ(10U, WithText("jpg").size());
  EXPECT_EQ(10U, WithText("   ").size());
  EXPECT_EQ("", Set.GetTextFilter());

  EXPECT_EQ((Ids{10}), WithText("boats"));
  Catalog.FindAssetById(1).GetStamps(StampId::PersonalPlace).SetText("where the Boats are", 0);
  EXPECT_EQ((Ids{1, 10}), WithText("boats")) << "each rebuild reads the annotations anew";
}

TEST_F(FilterTest, HitsBeginAndEndBetweenCharacters) {
  const CTextMatcher stray("\xbc");  // a byte of "ü", by itself no character
  EXPECT_FALSE(
      stray.TextHits("Gr\xc3\xbc\xc3\x9f"
                     "e"));
  EXPECT_TRUE(
      stray.TextHits("a\xbc"
                     "b"));
  const CTextMatcher lead("\xc3");
  EXPECT_FALSE(lead.TextHits("\xc3\xbc"));
  EXPECT_TRUE(lead.TextHits("\xc3"));
  EXPECT_TRUE(CTextMatcher("ü").TextHits("\xfc ÜBEL"));
  EXPECT_TRUE(CTextMatcher("zürich").TextHits("Zu\xcc\x88rich.jpg")) << "as a Mac writes it";
  EXPECT_TRUE(CTextMatcher("Zu\xcc\x88rich").TextHits("in ZÜRICH"));
  EXPECT_FALSE(
      CTextMatcher("ü").TextHits("b\xfc"
                                 "cher"));
  EXPECT_TRUE(
      CTextMatcher("cher").TextHits("b\xfc"
                                    "CHER"));
  EXPECT_FALSE(CTextMatcher("abc").TextHits("ab"));
  EXPECT_EQ((Ids{8}), WithText("cher"));
}

}  // namespace
