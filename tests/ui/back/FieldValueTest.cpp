#include <ctime>
#include <filesystem>
#include <string>
#include <vector>

#include "base/Exceptions.h"
#include "base/Times.h"
#include "catalog/Properties.h"
#include "storage/Storage.h"
#include "storage/StorageException.h"
#include "support/FileSizeLimit.h"
#include "ui/back/BackFixture.h"
#include "ui/back/DateText.h"
#include "ui/back/FieldChoices.h"
#include "ui/back/FieldStyle.h"
#include "ui/back/FieldValue.h"
#include "ui/back/FolderValue.h"
#include "ui/back/PhotoFieldSet.h"
#include "ui/back/StampValue.h"
#include "ui/back/TitleValue.h"

namespace {

std::int32_t DayOf(int year, int month, int day) {
  std::tm local{};
  local.tm_year = year - 1900;
  local.tm_mon = month - 1;
  local.tm_mday = day;
  return TimeFromLocal(local);
}

}  // namespace

class FieldValueTest : public CBackFixture {
 protected:
  CFieldValue::ChangeNotice Notice() {
    return [this](FieldNumber field) { Changed.push_back(static_cast<int>(field)); };
  }

  void Give(const CAssetRecord& photo, StampId type, const std::string& text) {
    CStampValue value(photo, type, Notice());
    value.SetText(text);
    value.Commit();
  }

  /// The reference count of a text as it stands in the file; 0 if it isn't there.
  int Uses(const std::string& text) const {
    c4_Storage file(Catalog.GetPath(), c4_Storage::Mode::ReadOnly);
    const c4_View strings = file.GetAs("String[Category:I,Key:I,String:S,RefCount:I]");
    for (int i = 0; i < strings.GetSize(); ++i) {
      if (props::String.Get(strings[i]) == text) return props::RefCount.Get(strings[i]);
    }
    return 0;
  }
};

TEST_F(FieldValueTest, TokensBecomeStampsInTheirOrder) {
  const CAssetRecord photo = AddPhoto("a.jpg");
  Give(photo, StampId::Thing, "Anna; Ben , Carla,");
  EXPECT_EQ(Texts(photo, StampId::Thing), "Anna|Ben|Carla");
  EXPECT_EQ(CStampValue(photo, StampId::Thing, {}).GetText(), "Anna, Ben, Carla");
  EXPECT_EQ(Changed, std::vector<int>{4});

  Give(photo, StampId::Thing, "Anna, Carla");
  EXPECT_EQ(Texts(photo, StampId::Thing), "Anna|Carla") << "the later one moved up";
  EXPECT_EQ(Uses("Ben"), 0);
  Give(photo, StampId::Thing, " ; ");
  EXPECT_EQ(Texts(photo, StampId::Thing), "");
  EXPECT_FALSE(CStampValue(photo, StampId::Thing, {}).HasChoices());
}

TEST_F(FieldValueTest, SharedTextsAreCountedByTheirStamps) {
  const CAssetRecord a = AddPhoto("a.jpg");
  const CAssetRecord b = AddPhoto("b.jpg");
  Give(a, StampId::Thing, "lake, boats");
  Give(b, StampId::Thing, "LAKE");
  EXPECT_EQ(Uses("lake"), 2);
  EXPECT_EQ(CStampValue(b, StampId::Thing, {}).GetText(), "lake") << "the first spelling";

  Give(a, StampId::Thing, "boats, sunset, boats");
  EXPECT_EQ(Texts(a, StampId::Thing), "boats|sunset|boats");
  EXPECT_EQ(Uses("lake"), 1);
  EXPECT_EQ(Uses("boats"), 2);
  Give(b, StampId::Thing, "");
  EXPECT_EQ(Uses("lake"), 0);
  EXPECT_EQ(CStampValue(a, StampId::Thing, {}).GetChoices(), (std::vector<std::string>{"boats", "sunset"}));
}

TEST_F(FieldValueTest, SingleTextsAndNumbersGoWhenTheyAreEmptied) {
  const CAssetRecord photo = AddPhoto("a.jpg");
  Give(photo, StampId::Note, "a, b; c");
  EXPECT_EQ(Texts(photo, StampId::Note), "a, b; c") << "a caption is no list";
  CStampValue note(photo, StampId::Note, {});
  EXPECT_FALSE(note.IsMultiple());
  note.Clear();
  note.Commit();
  EXPECT_EQ(photo.GetStamps(StampId::Note).Count(), 0);

  CStampValue rating(photo, StampId::Rating, {});
  EXPECT_EQ(rating.GetKind(), FieldKind::Number);
  rating.SetNumber(3);
  rating.Commit();
  EXPECT_EQ(photo.GetCachedRating(), 3);
  rating.Clear();
  rating.Commit();
  EXPECT_EQ(photo.GetStamps(StampId::Rating).Count(), 0);
  EXPECT_EQ(photo.GetCachedRating(), 0);
}

TEST_F(FieldValueTest, ARefusedWriteLeavesAllTokensAsTheyWere) {
  const CAssetRecord photo = AddPhoto("a.jpg");
  Give(photo, StampId::Thing, "lake");
  CStampValue value(photo, StampId::Thing, Notice());
  value.SetText("boats, sunset, wind");
  Changed.clear();
  {
    const CFileSizeLimit full(1);
    EXPECT_THROW(value.Commit(), CStorageException);
  }
  value.Reload();
  EXPECT_EQ(value.GetText(), "lake");
  EXPECT_EQ(Uses("lake"), 1);
  EXPECT_EQ(Uses("boats"), 0);
  EXPECT_TRUE(Changed.empty());
}

TEST_F(FieldValueTest, ValuesOfAPhotoThatIsGoneAreEmpty) {
  const CAssetRecord photo = AddPhoto("a.jpg");
  Give(photo, StampId::Thing, "lake");
  CPhotoFieldSet set(photo, Notice());
  Catalog.DeleteAsset(photo.GetAssetID());
  for (const auto& value : set.GetValues()) {
    value->SetText("x");
    value->Commit();
    value->Reload();
    EXPECT_EQ(value->GetText(), "");
  }
  EXPECT_EQ(Uses("x"), 0);
}

TEST_F(FieldValueTest, DatesKeepWhereTheyCameFrom) {
  const CAssetRecord photo = AddPhoto("a.jpg", DayOf(2003, 1, 9));
  CStampValue date(photo, StampId::Date, {});
  EXPECT_EQ(date.GetKind(), FieldKind::Date);
  const auto kinds = [&] {
    std::string text;
    for (const FieldChoice& kind : ListChoices(date, {})) {
      text += kind.Text + (kind.Checked ? " on" : " off") + (kind.Enabled ? "; " : " disabled; ");
    }
    return text;
  };
  EXPECT_EQ(kinds(), "Camera date off disabled; File date on; Edited date off disabled; ");
  ChooseDate(date, StampId::CameraDate);
  EXPECT_EQ(date.GetDate(), DayOf(2003, 1, 9)) << "there is no such date";

  date.SetDate(DayOf(2004, 2, 3));
  date.SetNumber(static_cast<int>(StampId::UserDate));
  date.Commit();
  EXPECT_EQ(photo.GetCachedDate(), DayOf(2004, 2, 3));
  EXPECT_EQ(kinds(), "Camera date off disabled; File date off; Edited date on; ");
  ChooseDate(date, StampId::FileCreateDate);
  date.Commit();
  EXPECT_EQ(photo.GetCachedDate(), DayOf(2003, 1, 9));
  EXPECT_EQ(kinds(), "Camera date off disabled; File date on; Edited date off; ");
}

TEST_F(FieldValueTest, ChoicesAreAddedToAListAndTakenOut) {
  const CAssetRecord photo = AddPhoto("a.jpg");
  Give(photo, StampId::Thing, "boats, lake & sea");
  CStampValue value(photo, StampId::Thing, {});
  const auto choices = ListChoices(value, "LAKE & SEA, other");
  ASSERT_EQ(choices.size(), 2U);
  EXPECT_FALSE(choices[0].Checked);
  EXPECT_TRUE(choices[1].Checked);
  EXPECT_EQ(ApplyChoice(value, "lake & sea", "boats"), "lake & sea, boats");
  EXPECT_EQ(ApplyChoice(value, "Boats, lake & sea", "boats"), "lake & sea");
  EXPECT_EQ(ApplyChoice(value, "", "boats"), "boats");
  EXPECT_EQ(ApplyChoice(CStampValue(photo, StampId::Note, {}), "a", "b"), "b") << "one text is replaced";
}

TEST_F(FieldValueTest, ATitleBecomesAFreeNameWithThePhotosExtension) {
  const CAssetRecord photo = AddPhoto("a.JPG");
  AddPhoto("taken.JPG");
  AddPhoto("taken-2.JPG");
  CTitleValue title(photo, {});
  const auto nameFor = [&](std::string text) { return title.ValidateText(text) ? text : "refused"; };
  EXPECT_EQ(nameFor("b"), "b.JPG");
  EXPECT_EQ(nameFor("a:b"), "a_b.JPG");
  EXPECT_EQ(nameFor("\\/:*?\"<>|x"), "_________x.JPG");
  EXPECT_EQ(nameFor("new\nline"), "new_line.JPG");
  EXPECT_EQ(nameFor(".hidden"), "_hidden.JPG");
  EXPECT_EQ(nameFor(".."), "_..JPG");
  EXPECT_EQ(nameFor(""), "refused");
  EXPECT_EQ(nameFor(" \t "), "refused");
  EXPECT_EQ(nameFor("  b c .jpg "), "b c.JPG");
  EXPECT_EQ(nameFor("taken"), "taken-3.JPG");
  EXPECT_EQ(nameFor("b.jpg"), "b.JPG");
  EXPECT_EQ(nameFor("b.jpeg"), "b.JPG");
  EXPECT_EQ(nameFor("b.png"), "b.png.JPG");
  EXPECT_EQ(nameFor("St. Moritz"), "St. Moritz.JPG");
  EXPECT_EQ(nameFor("Zürich 東京"), "Zürich 東京.JPG");
  std::string longest;
  for (int i = 0; i < 200; ++i) longest += "ü";
  EXPECT_LE(nameFor(longest).size(), 250U) << "with room for .orig";
  EXPECT_TRUE(nameFor(longest).ends_with("ü.JPG"));
}

TEST_F(FieldValueTest, WhateverStandsUnderANameTakesIt) {
  const CAssetRecord photo = AddPhoto("img.jpg");
  const std::string folder = Scratch.GetPath() + "/Pictures/";
  CTitleValue title(photo, {});
  const auto nameFor = [&](std::string text) { return title.ValidateText(text) ? text : "refused"; };
  EXPECT_EQ(nameFor("IMG"), "IMG.jpg");
  EXPECT_EQ(nameFor("img"), "img.jpg") << "its own name";
  AddPhoto("IMG.jpg");
  EXPECT_EQ(nameFor("IMG"), "IMG-2.jpg");
  EXPECT_EQ(nameFor("img"), "img.jpg");

  std::filesystem::create_symlink(folder + "gone.jpg", folder + "lost.jpg");
  EXPECT_EQ(nameFor("lost"), "lost-2.jpg");
  std::filesystem::create_symlink(folder + "img.jpg", folder + "Img.jpg");
  EXPECT_EQ(nameFor("Img"), "Img-2.jpg");
  std::filesystem::create_hard_link(folder + "img.jpg", folder + "iMG.jpg");
  EXPECT_EQ(nameFor("iMG"), "iMG-2.jpg") << "two names of one file";
  std::filesystem::create_directory(folder + "folder.jpg");
  EXPECT_EQ(nameFor("folder"), "folder-2.jpg");
  Scratch.Write("Pictures/fixed.jpg.orig", "of another photo");
  EXPECT_EQ(nameFor("fixed"), "fixed-2.jpg");
}

TEST_F(FieldValueTest, ACommittedTitleRenamesTheFile) {
  const CAssetRecord photo = AddPhoto("a.jpg");
  const std::string folder = Scratch.GetPath() + "/Pictures/";
  CTitleValue title(photo, Notice());
  title.SetText("b.jpg");
  title.Commit();
  EXPECT_EQ(photo.GetPath(), folder + "b.jpg");
  EXPECT_TRUE(std::filesystem::exists(folder + "b.jpg"));
  EXPECT_FALSE(std::filesystem::exists(folder + "a.jpg"));
  EXPECT_EQ(title.GetText(), "b");
  EXPECT_EQ(Changed, std::vector<int>{13});

  // A name that has been taken meanwhile.
  Scratch.Write("Pictures/c.jpg", "other");
  title.SetText("c.jpg");
  EXPECT_THROW(title.Commit(), CException);
  title.Reload();
  EXPECT_EQ(title.GetText(), "b");
  EXPECT_EQ(ReadBytes(folder + "c.jpg"), "other");

  CFolderValue label(photo);
  EXPECT_EQ(label.GetText(), "Pictures");
}

TEST(FieldStyleTest, WhatFollowsFromTheRestIsAdded) {
  EXPECT_EQ(static_cast<unsigned>(Normalized(field_styles::kRating)), 0x484U | 0x20U);
  EXPECT_EQ(static_cast<unsigned>(Normalized(field_styles::kTitle)), 0x93U | 0x04U);
  EXPECT_EQ(static_cast<unsigned>(Normalized(field_styles::kCaption)), 0x91U | 0x04U);
  EXPECT_EQ(static_cast<unsigned>(Normalized(field_styles::kList)), 0x381U | 0x24U);
  EXPECT_EQ(static_cast<unsigned>(Normalized(field_styles::kFolder)), 0x82U | 0x20U);
  const FieldStyle framed = FieldStyle::Editable | FieldStyle::WhiteFrame;
  EXPECT_FALSE(HasFlag(Normalized(framed), FieldStyle::RuledLines));
}

TEST(DateTextTest, TheEditFormHasTheOrderOfTheLocaleAndReadsBack) {
  EXPECT_EQ(FormatEditDate(DayOf(2003, 8, 9), "en_US"), "8/9/03");
  EXPECT_EQ(FormatEditDate(DayOf(2003, 8, 9), "en_GB"), "9/8/03");
  EXPECT_EQ(FormatEditDate(DayOf(2003, 8, 9), "de_DE"), "9.8.03");
  EXPECT_EQ(FormatEditDate(DayOf(2003, 8, 9), "ja_JP"), "03/8/9");
  EXPECT_EQ(FormatEditDate(DayOf(2003, 8, 9), "C"), "8/9/03");
  EXPECT_EQ(FormatEditDate(0, "de_DE"), "");
  for (const char* locale : {"en_US", "en_GB", "de_DE", "fr_FR", "ja_JP", "ko_KR", "hu_HU", "fa_IR", "ar_EG",
                             "nl_NL", "sv_SE", "bg_BG", "C"}) {
    for (const std::int32_t day :
         {DayOf(1970, 1, 2), DayOf(1999, 12, 31), DayOf(2004, 2, 29), DayOf(2037, 11, 10)}) {
      EXPECT_EQ(ReadEditDate(FormatEditDate(day, locale), locale), day) << locale;
    }
  }
}

TEST(DateTextTest, ATypedDayStaysThatDayInEveryTimeZone) {
  // In Dublin summer time is the standard time and winter a step back from it.
  for (const char* zone : {"UTC", "Europe/Dublin", "Europe/Berlin", "America/Sao_Paulo", "Asia/Kolkata"}) {
    const CEnvironmentVariable timeZone("TZ", zone);
    for (const char* typed : {"1/15/2004", "7/15/2004", "10/17/2004"}) {
      const std::int32_t time = ReadEditDate(typed, "en_US");
      EXPECT_EQ(FormatLocalTime(time, "%#m/%#d/%Y"), typed) << zone;
      EXPECT_TRUE(IsSameDay(time, time + 3600));
      EXPECT_FALSE(IsSameDay(time, time + 24 * 3600));
    }
  }
  EXPECT_EQ(ReadEditDate("1/2/1969", "en_US"), 0);
  EXPECT_EQ(ReadEditDate("1/20/2038", "en_US"), 0) << "beyond 32 bits";
  EXPECT_EQ(ReadEditDate("1/1/9999", "en_US"), 0);
}
