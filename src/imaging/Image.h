#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "imaging/PixelBuffer.h"

class CJpegImage;

enum class ImageType : int { None = -1, Jpeg = 0, Tiff = 1 };

/// How the pixels of a bitmap lie in memory.
struct BitmapHeader {
  std::int32_t Width = 0;   // pixels
  std::int32_t Height = 0;  // pixels; negative if rows run from the top downwards
  int BitCount = 0;         // 24 or 32
};

/// The pixels themselves, to be read and changed in place. They belong to the image.
struct BitmapPixels {
  std::uint8_t* Bits = nullptr;  // first byte of the first row in memory; null if the image holds none
  BitmapHeader Header;
  int Width = 0;               // pixels
  int Height = 0;              // pixels
  int ExtraBytesPerPixel = 0;  // a pixel is 3 bytes, blue, green, red, and this many more
  int RowPadding = 0;          // bytes behind a row's last pixel
};

/// The largest bitmap that is held in memory.
constexpr std::uint64_t kMaxBitmapBytes = std::uint64_t{1} << 30;

/// The scale at which a picture of `size` fits the box, the smaller of the two ratios; 1.0 exactly for a
/// picture that fits as it is, unless enlarging is allowed. 1.0 for a picture without pixels.
double FitScaleOf(ImageSize size, int boxWidth, int boxHeight, bool allowEnlarging);

/// A picture decoded from a file or from memory. Not shared between threads.
class CImage {
 public:
  virtual ~CImage() = default;
  CImage(const CImage&) = delete;
  CImage& operator=(const CImage&) = delete;

  ImageType GetType() const { return Type; }

  /// The file that the pixels came from; empty for a bitmap made from memory or by resizing.
  const std::string& GetPath() const { return Path; }

  /// Size of the stored picture.
  virtual ImageSize GetNaturalSize() const = 0;

  /// Size of the bitmap held now: the natural size reduced by the decoding factor.
  virtual ImageSize GetCurrentSize() const = 0;

  /// The box that the picture was loaded for; 0 by 0 asked for the full picture.
  virtual ImageSize GetRequestedSize() const = 0;

  /// False if turning the file would drop data that the photo holds beyond its pixels.
  virtual bool RotatesWithoutLoss() const = 0;

  /// Turns the photo's own file clockwise by `angle` degrees, and then holds the turned picture, loaded for
  /// the same box. The file is replaced in one step, with its permission bits, or left as it was. True if it
  /// was replaced; false if nothing is held or the file can't be turned. A JPEG takes 90, 180 and 270, any
  /// other angle raises CError; a TIFF takes 90 and 270. Raises what TransformJpeg and Save raise.
  virtual bool Rotate(int angle) = 0;

  /// Encodes the held bitmap into a file, which is replaced in one step or left as it was. Raises
  /// CException. `quality` is 1 to 100.
  virtual void Save(const std::string& path, int quality) const = 0;

  virtual BitmapPixels GetPixels() = 0;

  /// The scale at which the held bitmap fits the box.
  double FitScale(int boxWidth, int boxHeight, bool allowEnlarging) const {
    return FitScaleOf(GetCurrentSize(), boxWidth, boxHeight, allowEnlarging);
  }

  /// Size of the held bitmap at that scale, its sides cut to whole pixels, never below 1 by 1.
  ImageSize ScaledSize(double scale) const;

  /// Stretches the whole held bitmap to ScaledSize(scale) at (x, y) of the target; what falls outside is
  /// left out. An averaging reduction or a smooth enlargement. Returns the size drawn.
  ImageSize Draw(const PixelBuffer& target, int x, int y, double scale) const;

  /// Stretches the whole held bitmap over the whole target.
  void DrawOver(const PixelBuffer& target) const;

  /// A bitmap of 24 bits that fits the box, never larger than the held one, of at least 1 by 1; null without
  /// pixels or a box.
  std::unique_ptr<CJpegImage> MakeFitted(int boxWidth, int boxHeight) const;

 protected:
  explicit CImage(ImageType type) : Type(type) {}

  /// The held bitmap from its top row on; without rows if there is none.
  virtual PixelSource GetSource() const = 0;

  void SetPath(const std::string& path) { Path = path; }

 private:
  const ImageType Type;
  std::string Path;
};
