#include <gmock/gmock.h>
#include <sys/stat.h>

#include <cstdlib>
#include <random>

#include "base/Exceptions.h"
#include "imaging/ForgedJpegs.h"
#include "imaging/JpegCoefficients.h"
#include "imaging/JpegTurn.h"
#include "imaging/PictureMemory.h"
#include "storage/StorageException.h"
#include "support/FaultSteps.h"
#include "support/FileSizeLimit.h"
#include "support/ScratchFolder.h"

using testing::ElementsAreArray;

namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;

const JpegRecipe kKinds[] = {
    {},
    {.HorizontalSampling = 2},
    {.HorizontalSampling = 2, .VerticalSampling = 2},
    {.VerticalSampling = 2},
    {.HorizontalSampling = 4},
    {.VerticalSampling = 4},
    {.HorizontalSampling = 4, .VerticalSampling = 2},
    {.HorizontalSampling = 3, .VerticalSampling = 2},
    {.Samplings = {{2, 2}, {2, 1}, {1, 2}}},
    {.Samplings = {{1, 1}, {2, 2}, {1, 1}}},
    {.Colors = StoredColors::Grey},
    {.Colors = StoredColors::Grey, .Samplings = {{2, 2}}},
    {.Colors = StoredColors::Grey, .Progressive = true},
    {.Colors = StoredColors::TwoChannels, .Samplings = {{2, 1}, {1, 1}}},
    {.Colors = StoredColors::Rgb},
    {.Colors = StoredColors::Cmyk},
    {.Colors = StoredColors::Cmyk, .AdobeMarker = false},
    {.Colors = StoredColors::Ycck, .HorizontalSampling = 2, .VerticalSampling = 2},
    {.HorizontalSampling = 2, .VerticalSampling = 2, .Progressive = true},
    {.Colors = StoredColors::Ycck, .HorizontalSampling = 2, .Progressive = true},
    {.HorizontalSampling = 2, .VerticalSampling = 2, .Arithmetic = true},
    {.VerticalSampling = 2, .Progressive = true, .Arithmetic = true},
    {.HorizontalSampling = 2, .VerticalSampling = 2, .RestartInterval = 3},
    {.HorizontalSampling = 2, .Progressive = true, .RestartInterval = 7},
};

// What the library doesn't put into one scan, and jpegtran refuses.
const JpegRecipe kSeparateKinds[] = {
    {.HorizontalSampling = 4, .VerticalSampling = 4},
    {.HorizontalSampling = 4, .VerticalSampling = 4, .Progressive = true},
};

JpegRecipe WithSize(JpegRecipe recipe, int width, int height) {
  recipe.Width = width;
  recipe.Height = height;
  return recipe;
}

Bytes Turn(const Bytes& jpeg, int angle) { return TurnJpeg(jpeg, angle).value_or(Bytes()); }

Bytes ReadVector(const std::string& path) {
  const std::string bytes = ReadBytes(path);
  return {bytes.begin(), bytes.end()};
}

std::string AsText(const Bytes& bytes) { return {bytes.begin(), bytes.end()}; }

class CJpegtran {
 public:
  bool IsThere() const { return std::system("jpegtran -version >/dev/null 2>&1") == 0; }

  Bytes Turn(const Bytes& jpeg, int angle) const {
    const std::string from = Scratch.Write("from.jpg", AsText(jpeg));
    const std::string to = Scratch.File("to.jpg");
    const std::string command =
        "jpegtran -rotate " + std::to_string(angle) + " -trim -copy all -outfile " + to + " " + from;
    return std::system(command.c_str()) == 0 ? ReadVector(to) : Bytes();
  }

 private:
  CScratchFolder Scratch;
};

void ExpectAsJpegtran(const CJpegtran& jpegtran, const JpegRecipe& recipe, const std::string& which) {
  const Bytes jpeg = MakeNoisyJpeg(recipe);
  const JpegForm form = ReadForm(jpeg);
  for (const int angle : {90, 180, 270}) {
    const Bytes turned = Turn(jpeg, angle);
    const Bytes expected = jpegtran.Turn(jpeg, angle);
    ASSERT_FALSE(turned.empty() || expected.empty()) << which << " by " << angle;
    EXPECT_TRUE(ReadCoefficients(expected) == ReadCoefficients(turned)) << which << " by " << angle;
    const JpegForm turnedForm = ReadForm(turned);
    EXPECT_EQ(form.Progressive, turnedForm.Progressive) << which;
    EXPECT_EQ(form.Arithmetic, turnedForm.Arithmetic) << which;
    EXPECT_EQ(form.RestartInterval > 0, turnedForm.RestartInterval > 0) << which;
    EXPECT_THAT(turnedForm.Headers, ElementsAreArray(form.Headers)) << which;
  }
}

/// The file with bytes put in right behind its first marker.
Bytes WithHeaders(const Bytes& jpeg, const std::vector<std::string>& headers) {
  Bytes result(jpeg.begin(), jpeg.begin() + 2);
  for (const std::string& header : headers) {
    const std::size_t length = header.size() + 1;
    result.insert(result.end(), {0xFF, static_cast<std::uint8_t>(header[0]),
                                 static_cast<std::uint8_t>(length >> 8), static_cast<std::uint8_t>(length)});
    result.insert(result.end(), header.begin() + 1, header.end());
  }
  result.insert(result.end(), jpeg.begin() + 2, jpeg.end());
  return result;
}

std::vector<std::string> NamesIn(const std::string& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) names.push_back(entry.path().filename().string());
  return names;
}

}  // namespace

TEST(JpegTurnTest, CoefficientsOfEveryKindMoveAsJpegtranMovesThem) {
  const CJpegtran jpegtran;
  if (!jpegtran.IsThere()) GTEST_SKIP() << "there is no jpegtran to compare with";
  for (const JpegRecipe& kind : kKinds) {
    const auto number = std::to_string(&kind - kKinds);
    ExpectAsJpegtran(jpegtran, WithSize(kind, 96, 192), "whole blocks, kind " + number);
    ExpectAsJpegtran(jpegtran, WithSize(kind, 151, 93), "odd sizes, kind " + number);
    ExpectAsJpegtran(jpegtran, WithSize(kind, 5, 70), "less than a block, kind " + number);
  }
  ExpectAsJpegtran(jpegtran, {.Width = 1601, .Height = 1201, .HorizontalSampling = 2, .VerticalSampling = 2},
                   "a photo");
}

TEST(JpegTurnTest, TurnsAreWhatTheirDefinitionSaysAndUndoEachOther) {
  std::vector<JpegRecipe> kinds(std::begin(kKinds), std::end(kKinds));
  kinds.insert(kinds.end(), std::begin(kSeparateKinds), std::end(kSeparateKinds));
  for (const JpegRecipe& kind : kinds) {
    const Bytes jpeg = MakeNoisyJpeg(WithSize(kind, 96, 192));
    const JpegCoefficients original = ReadCoefficients(jpeg);
    JpegCoefficients expected = original;
    Bytes turned = jpeg;
    for (const int angle : {90, 180, 270, 360}) {
      expected = TurnByDefinition(expected);
      turned = Turn(turned, 90);
      EXPECT_TRUE(expected == ReadCoefficients(turned)) << angle;
      if (angle < 360) {
        EXPECT_TRUE(expected == ReadCoefficients(Turn(jpeg, angle))) << angle;
      }
    }
    EXPECT_TRUE(original == ReadCoefficients(turned));
    EXPECT_TRUE(original == ReadCoefficients(Turn(Turn(jpeg, 90), 270)));
    EXPECT_TRUE(original == ReadCoefficients(Turn(Turn(jpeg, 180), 180)));
  }
}

TEST(JpegTurnTest, BlocksThatWouldEndOnTheWrongSideAreCutAway) {
  const Bytes jpeg =
      MakeNoisyJpeg({.Width = 1601, .Height = 1201, .HorizontalSampling = 2, .VerticalSampling = 2});
  const auto sizeOf = [&](int angle) {
    const JpegCoefficients picture = ReadCoefficients(Turn(jpeg, angle));
    return std::pair(picture.Width, picture.Height);
  };
  EXPECT_EQ(std::pair(1200, 1601), sizeOf(90));
  EXPECT_EQ(std::pair(1600, 1200), sizeOf(180));
  EXPECT_EQ(std::pair(1201, 1600), sizeOf(270));
}

TEST(JpegTurnTest, HeadersAreKeptByteForByteInTheirOrder) {
  std::string exif(
      "\xE1"
      "Exif\0\0II*\0",
      11);
  const std::vector<std::string> headers = {
      "\xFE"
      "a comment",
      exif,
      "\xE2" + std::string(65533, '\x7F'),
      "\xED"
      "Photoshop 3.0",
      "\xFE",
      "\xE1"
      "http://ns.adobe.com/xap/1.0/",
      std::string("\xE0"
                  "JFXX\0\x10",
                  7),
      "\xEF"};
  for (const bool jfif : {true, false}) {
    for (const bool progressive : {true, false}) {
      const Bytes jpeg = WithHeaders(MakeNoisyJpeg({.Progressive = progressive, .Jfif = jfif}), headers);
      const std::vector<std::string> before = ReadForm(jpeg).Headers;
      ASSERT_EQ(headers.size() + (jfif ? 1 : 0), before.size());
      for (const int angle : {90, 180, 270})
        EXPECT_THAT(ReadForm(Turn(jpeg, angle)).Headers, ElementsAreArray(before));
    }
  }
}

TEST(JpegTurnTest, WhatStandsBehindThePictureStaysThere) {
  const Bytes jpeg = MakeNoisyJpeg({});
  Bytes trailer = {0xFF, 0xD9, 0, 'm', 'o', 't', 'i', 'o', 'n'};
  trailer.insert(trailer.end(), jpeg.begin(), jpeg.end());
  Bytes whole = jpeg;
  whole.insert(whole.end(), trailer.begin(), trailer.end());
  Bytes expected = Turn(jpeg, 90);
  expected.insert(expected.end(), trailer.begin(), trailer.end());
  EXPECT_TRUE(expected == Turn(whole, 90));

  // A picture that only lacks its end mark is whole; it gets one.
  EXPECT_TRUE(Turn(jpeg, 90) == Turn(Bytes(jpeg.begin(), jpeg.end() - 2), 90));
}

TEST(JpegTurnTest, RestartMarksStayAtTheEndsOfRows) {
  const Bytes jpeg = MakeNoisyJpeg(
      {.Width = 96, .Height = 192, .HorizontalSampling = 2, .VerticalSampling = 2, .RestartInterval = 12});
  EXPECT_EQ(24U, ReadForm(Turn(jpeg, 90)).RestartInterval) << "two rows of twelve";
  EXPECT_EQ(12U, ReadForm(Turn(jpeg, 180)).RestartInterval);
}

TEST(JpegTurnTest, WhatGivesNoPictureOrWouldLoseHeadersIsNotTurned) {
  for (const Bytes& rubbish : {Bytes(), Bytes(100, 0xFF), Bytes{0xFF, 0xD8, 0xFF, 0xD9}})
    EXPECT_FALSE(TurnJpeg(rubbish, 90));
  const Bytes jpeg = MakeNoisyJpeg({});
  Bytes holed = jpeg;
  holed.insert(holed.begin() + 2, 600, 0x55);
  EXPECT_FALSE(TurnJpeg(holed, 90)) << "something stands where a header should begin";
  EXPECT_THROW(TurnJpeg(jpeg, 45), CError);
  EXPECT_THROW(TurnJpeg(jpeg, 0), CError);
}

TEST(JpegTurnTest, ADamagedPictureIsTurnedAsItShows) {
  std::vector<Bytes> damaged;
  std::mt19937 random(5);
  for (const JpegRecipe& recipe :
       {JpegRecipe{}, {.Progressive = true}, {.Arithmetic = true}, {.RestartInterval = 5}}) {
    const Bytes jpeg = MakeNoisyJpeg(WithSize(recipe, 160, 160));
    const auto middle = jpeg.begin() + static_cast<std::ptrdiff_t>(jpeg.size() / 2);
    damaged.emplace_back(jpeg.begin(), middle);
    damaged.emplace_back(jpeg.begin(), middle);
    damaged.back().insert(damaged.back().end(), middle + 1000, jpeg.end());
    for (int k = 0; k < 20; ++k) {
      damaged.push_back(jpeg);
      damaged.back()[jpeg.size() / 8 + random() % (jpeg.size() / 8 * 7)] =
          static_cast<std::uint8_t>(random());
    }
  }
  int turned = 0;
  for (const Bytes& jpeg : damaged) {
    const auto result = TurnJpeg(jpeg, 90);
    if (!result) continue;
    ++turned;
    EXPECT_TRUE(TurnByDefinition(ReadCoefficients(jpeg)) == ReadCoefficients(*result))
        << &jpeg - damaged.data();
  }
  EXPECT_GT(turned, 60);
}

TEST(JpegTurnTest, ForgedFilesCostLittle) {
  for (const bool arithmetic : {false, true})
    for (const bool progressive : {false, true}) {
      const Bytes jpeg = MakeJpeg({.Progressive = progressive, .Arithmetic = arithmetic}, PaintSoftly);
      EXPECT_THROW(TurnJpeg(ForgeSize(jpeg, 65500, 65500), 90), CTooLargeException);
      EXPECT_THROW(TurnJpeg(ForgeSize(jpeg, 20000, 15000), 90), CTooLargeException);
    }
  const Bytes jpeg = MakeJpeg({.Width = 200, .Height = 200, .Progressive = true}, PaintSoftly);
  EXPECT_THROW(TurnJpeg(RepeatLastScan(jpeg, 10000), 90), CTooLargeException);
  // Of data without an end arithmetic coding makes values that it can't give back.
  const Bytes arithmetic = MakeNoisyJpeg({.Width = 40, .Height = 24, .Arithmetic = true});
  for (int height = 1024; height <= 16384; height *= 2) {
    const auto turned = TurnJpeg(ForgeSize(arithmetic, 40, height), 180);
    EXPECT_TRUE(!turned || TurnJpeg(*turned, 180)) << height;
  }
  // A list that is walked for each comment would take minutes.
  const Bytes comments = WithHeaders(jpeg, std::vector<std::string>(300000, "\xFE"));
  EXPECT_EQ(comments.size(), Turn(Turn(comments, 90), 270).size());
}

TEST(JpegTurnTest, DamagedBytesAnywhereNeverDoHarm) {
  std::mt19937 random(17);
  int turned = 0;
  for (const JpegRecipe& kind : kKinds) {
    const Bytes jpeg = MakeNoisyJpeg(kind);
    for (int round = 0; round < 60; ++round) {
      Bytes damaged = jpeg;
      for (int k = 0; k < 2; ++k) damaged[random() % damaged.size()] = static_cast<std::uint8_t>(random());
      const auto result = TurnJpeg(damaged, 90 + 90 * (round % 3));
      if (!result) continue;
      ++turned;
      EXPECT_TRUE(TurnJpeg(*result, 90)) << "what is written is whole, kind " << &kind - kKinds;
    }
  }
  EXPECT_GT(turned, 100) << "the damage must not all be found before the blocks are moved";
}

TEST(TransformJpegTest, ReplacesTheFileAndKeepsItsModeAndTheLinkToIt) {
  const CScratchFolder scratch;
  const Bytes jpeg = MakeNoisyJpeg({});
  const std::string path = scratch.Write("photos/a.jpg", AsText(jpeg));
  ASSERT_EQ(0, ::chmod(path.c_str(), 0640));
  const std::string link = scratch.File("links/a.jpg");
  fs::create_symlink(path, link);
  EXPECT_TRUE(TransformJpeg(link, link, 90));
  EXPECT_TRUE(Turn(jpeg, 90) == ReadVector(path));
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_EQ(fs::perms(0640), fs::status(path).permissions());

  const std::string other = scratch.File("photos/b.jpg");
  EXPECT_TRUE(TransformJpeg(path, other, 270));
  EXPECT_TRUE(ReadCoefficients(jpeg) == ReadCoefficients(ReadVector(other)));

  scratch.Write("photos/b.jpg", "no picture");
  EXPECT_FALSE(TransformJpeg(other, other, 90));
  EXPECT_EQ("no picture", ReadBytes(other));
}

TEST(TransformJpegTest, FailuresLeaveThePhotoAndTheFolderAsTheyWere) {
  const CScratchFolder scratch;
  const Bytes jpeg = MakeNoisyJpeg({.Width = 400, .Height = 400});
  const std::string path = scratch.Write("photos/a.jpg", AsText(jpeg));
  const auto failure = [&](const std::string& from) -> std::string {
    try {
      return TransformJpeg(from, path, 90) ? "done" : "not turned";
    } catch (const CStorageException&) {
      return "disk";
    } catch (const CException& exception) {
      return exception.GetMessage();
    }
  };
  EXPECT_EQ("Cannot read src file", failure(scratch.GetPath() + "/photos/none.jpg"));
  EXPECT_EQ("Cannot read src file", failure(scratch.GetPath() + "/photos"));
  {
    const CFileSizeLimit full(jpeg.size() / 2);
    EXPECT_EQ("disk", failure(path));
  }
  int steps = 1;
  for (bool done = false; !done; ++steps) {
    const CFailingStep fault(steps);
    const std::string result = failure(path);
    done = result == "done";
    if (!done) {
      EXPECT_EQ("disk", result);
    }
    // Where the last step of all fails, the flush of the folder, the new file has its name already.
    const Bytes now = ReadVector(path);
    EXPECT_TRUE(now == jpeg || fault.GetSteps() > 4) << steps;
    EXPECT_EQ(std::vector<std::string>{"a.jpg"}, NamesIn(scratch.GetPath() + "/photos"));
    scratch.Write("photos/a.jpg", AsText(jpeg));
  }
  EXPECT_GT(steps, 4);

  fs::permissions(scratch.GetPath(), fs::perms(0755));
  fs::permissions(path, fs::perms(0666));
  EXPECT_TRUE(RunAsNobody([&] { return failure(path) == "Cannot open destination file"; }));
  EXPECT_TRUE(jpeg == ReadVector(path));
}
