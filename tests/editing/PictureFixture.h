#pragma once

#include <string>
#include <string_view>

#include "editing/EditingFixture.h"
#include "editing/PhotoChange.h"
#include "imaging/ImageFile.h"
#include "imaging/JpegImage.h"

/// A fixture whose photo is a picture that can be changed, dark and colourful.
class CPictureFixture : public CEditingFixture {
 protected:
  CPictureFixture() {
    CJpegImage image(ImageSize{160, 96});
    const PixelBuffer buffer = image.GetBuffer();
    for (int y = 0; y < 96; ++y)
      for (int x = 0; x < 160; ++x) {
        std::uint8_t* pixel = buffer.Row(y) + x * 3;
        pixel[0] = static_cast<std::uint8_t>(30 + x / 2);
        pixel[1] = static_cast<std::uint8_t>(20 + y);
        pixel[2] = static_cast<std::uint8_t>((x ^ y) & 63);
      }
    image.Save(Photo.GetPath(), 95);
    Original = ReadBytes(Photo.GetPath());
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
  const BitmapPixels pixels = image.GetPixels();
  return {pixels.Bits, pixels.Bits + pixels.Width * pixels.Height * 3};
}
