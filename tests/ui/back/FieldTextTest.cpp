#include <filesystem>

#include "base/Times.h"
#include "ui/HomeFixture.h"
#include "ui/back/Completion.h"
#include "ui/back/DateText.h"
#include "ui/back/PhotoFieldSet.h"
#include "ui/back/TokenList.h"

namespace {

using FieldText = CStoresFixture;

/// The two sides of "left=right".
std::pair<std::string, std::string> Split(const std::string& row) {
  return {row.substr(0, row.find('=')), row.substr(row.find('=') + 1)};
}

}  // namespace

TEST(Completion, TheTokenBeforeTheCaretBecomesTheFirstChoiceThatBeginsSo) {
  const std::vector<std::string> choices = {"Émile", "lake", "Lakeside", "New York", "\xE2\x84\xAAnut"};
  for (const char* row : {"new= York", "la=ke", "lakes=ide", "lake=", "york=", "émi=le", "kn=ut",
                          "e\xCC\x81m=ile", "a;  new= York", "a, =", "="}) {
    const auto [text, remainder] = Split(row);
    EXPECT_EQ(CCompletion(choices, ",;").Complete(text, text.size()), remainder) << row;
  }
  EXPECT_EQ(CCompletion(choices, ",;").Complete("new, a", 3), " York");
  EXPECT_EQ(CCompletion(choices, ",;").Complete("newt", 3), "") << "it goes on behind the caret";
  EXPECT_EQ(CCompletion(choices).Complete("a, new", 6), "") << "one text, no list";
  CTokenList list("  Anna ;Émile,, van der Meer , ;", GetListSeparators());
  list.Remove("émile");
  EXPECT_EQ(list.GetText(), "Anna, van der Meer");
  CCompletion completion(choices, ",;");
  completion.Complete("la, new", 7);
  EXPECT_EQ(completion.TakeOverSpelling(" LAKE ;new york,, Newt"), " LAKE ;New York,, Newt");
}

TEST_F(FieldText, ATitleBecomesAFreeNameWithThePhotosExtension) {
  const CAssetRecord photo = AddPhoto("img.JPG");
  CPhotoFieldSet values(photo, {});
  for (const char* taken : {"taken.JPG", "taken-2.JPG", "IMG.JPG", "fixed.JPG.orig", "folder.JPG/x"}) {
    Scratch.Write(std::string("Pictures/") + taken, "other");
  }
  std::filesystem::create_symlink(InHome("gone.JPG"), InHome("Pictures/lost.JPG"));
  for (const char* row : {"b=b.JPG", "a:b=a_b.JPG", "\\/*?\"<>|x=________x.JPG", "a\nb=a_b.JPG",
                          ".hidden=_hidden.JPG", " \t =refused", " b c .jpg =b c.JPG", "b.png=b.png.JPG",
                          "St. Moritz=St. Moritz.JPG", "img=img.JPG", "IMG=IMG-2.JPG", "taken=taken-3.JPG",
                          "lost=lost-2.JPG", "folder=folder-2.JPG", "fixed=fixed-2.JPG"}) {
    auto [text, name] = Split(row);
    EXPECT_EQ(values.Get(StampId::Title).ValidateText(text) ? text : "refused", name);
  }
  std::string longest(400, 'x');
  EXPECT_TRUE(values.Get(StampId::Title).ValidateText(longest) && longest.size() <= 250) << "room for .orig";
}

TEST(DateText, ATypedDayStaysThatDayInEveryLocaleAndTimeZone) {
  // In Dublin summer time is the standard time and winter a step back from it.
  for (const char* zone : {"UTC", "Europe/Dublin", "America/Sao_Paulo", "Asia/Kolkata"}) {
    const CEnvironmentVariable timeZone("TZ", zone);
    for (const char* typed : {"1/15/2004", "7/15/2004", "10/17/2004"}) {
      const std::int32_t time = ReadEditDate(typed, "en_US");
      EXPECT_EQ(FormatLocalTime(time, "%#m/%#d/%Y"), typed) << zone;
      EXPECT_TRUE(IsSameDay(time, time + 3600));
      EXPECT_FALSE(IsSameDay(time, time + 24 * 3600));
    }
    const std::int32_t day = ReadEditDate("8/19/2003", "en_US");
    for (const char* row :
         {"en_US=8/19/03", "en_GB=19/8/03", "de_DE=19.8.03", "ja_JP=03/8/19", "C=8/19/03"}) {
      const auto [locale, form] = Split(row);
      EXPECT_EQ(FormatEditDate(day, locale), form);
      EXPECT_EQ(ReadEditDate(form, locale), day);
    }
  }
  for (const char* typed : {"1/2/1969", "1/20/2038", "1/1/9999"}) EXPECT_EQ(ReadEditDate(typed, "en_US"), 0);
}
