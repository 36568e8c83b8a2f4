#pragma once

#include <string>
#include <string_view>

#include "editing/EditingFixture.h"
#include "editing/PhotoChange.h"
#include "imaging/ImageFile.h"
#include "imaging/Image.h"
#include "support/TestJpeg.h"

/// A fixture whose photo is a picture that can be changed, dark and colourful.
class CPictureFixture : public CEditingFixture {
 protected:
  CPictureFixture() {
    const auto jpeg = MakeJpeg({.Width = 160, .Height = 96, .Quality = 95}, [](int x, int y) {
      return std::array{static_cast<std::uint8_t>((x ^ y) & 63), static_cast<std::uint8_t>(20 + y),
                        static_cast<std::uint8_t>(30 + x / 2), std::uint8_t{0}};
    });
    Original.assign(jpeg.begin(), jpeg.end());
    PutBack();
  }

  std::unique_ptr<CImage> Show(int boxWidth, int boxHeight) const {
    return LoadImageFile(Photo.GetPath(), boxWidth, boxHeight);
  }

  std::string Now() const { return ReadBytes(Photo.GetPath()); }

  void PutBack() const {
    std::filesystem::remove_all(InFolder(""));
    Scratch.Write("photos/boat.jpg", Original);
  }

  /// A thumbnail of the photo as it is now, whatever it shows.
  void StoreThumbnail() { Thumbnails.StoreBytes(Photo.GetAssetID(), std::vector<std::uint8_t>(100, 'x')); }

  /// `change` is asked for while the thumbnails can't be written: the photo stays, and the user is told once.
  template <typename Change>
  void ExpectRefusedWithoutThumbnails(const Change& change) {
    StoreThumbnail();
    Messages.Texts.clear();
    {
      const CFileSizeLimit full(0);
      EXPECT_EQ(PhotoChange::None, change());
    }
    EXPECT_EQ(1U, Messages.Texts.size());
    EXPECT_EQ(Original, Now());
    EXPECT_TRUE(Thumbnails.Has(Photo.GetAssetID()));
  }

  /// After a kill: a thumbnail that is still stored shows the photo as it is.
  void ExpectNoStaleThumbnail(const std::string& before) {
    OpenThumbnails();
    EXPECT_TRUE(Now() == before || !Thumbnails.Has(Photo.GetAssetID()));
  }

  std::string Original;
};

inline std::vector<std::uint8_t> PixelsOf(CImage& image) {
  const PixelBuffer pixels = image.GetPixels();
  return {pixels.Top, pixels.Row(pixels.Size.Height)};
}
