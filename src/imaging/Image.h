#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "imaging/PixelBuffer.h"
#include "imaging/WayUp.h"
#include "platform/LargeMemory.h"

class CJpegImage;

enum class ImageType : int { None = -1, Jpeg = 0, Tiff = 1 };

/// The largest bitmap that is held in memory.
constexpr std::uint64_t kMaxBitmapBytes = std::uint64_t{1} << 30;

/// The scale at which a picture of `size` fits the box, the smaller of the two ratios; 1.0 exactly for a
/// picture that fits as it is, unless enlarging is allowed. 1.0 for a picture without pixels.
double FitScaleOf(ImageSize size, int boxWidth, int boxHeight, bool allowEnlarging);

/// The size of the bitmap that a JPEG of that natural size is decoded to for a box.
ImageSize GetDecodedSize(ImageSize natural, ImageSize box);

/// A bitmap, decoded from a photo or made by resizing. Not shared between threads.
///
/// A photo stands upright here, however its file stores it: all pixels and sizes are as they are seen.
///
/// The variants turn bytes into pixels and pixels into bytes; reading and replacing files is done here, for
/// all of them.
class CImage {
 public:
  virtual ~CImage() = default;
  CImage(const CImage&) = delete;
  CImage& operator=(const CImage&) = delete;

  ImageType GetType() const { return Type; }

  /// The file that the pixels came from; empty for a bitmap made from memory or by resizing.
  const std::string& GetPath() const { return Path; }

  /// Size of the whole picture, as it is seen.
  ImageSize GetNaturalSize() const { return NaturalSize; }

  /// Size of the bitmap held now: the natural size reduced by the decoding factor.
  ImageSize GetCurrentSize() const { return CurrentSize; }

  /// The box that the picture was loaded for; 0 by 0 asked for the full picture.
  ImageSize GetRequestedSize() const { return RequestedSize; }

  /// Reads and decodes a file for a box; 0 by 0 asks for the full picture. Replaces what was held. Raises
  /// what the variant's Decode raises; CTooLargeException.
  void LoadFile(const std::string& path, int boxWidth, int boxHeight);

  /// The same for a file that is in memory already. The path becomes empty.
  void LoadMemory(std::span<const std::uint8_t> bytes, int boxWidth, int boxHeight);

  /// Takes over natural and current size from a file's header, and holds no pixels.
  void ReadHeader(const std::string& path);

  /// False if turning the file would drop data that the photo holds beyond its pixels.
  virtual bool RotatesWithoutLoss() const = 0;

  /// Turns the photo's own file clockwise, as it is seen, by `angle` degrees, and then holds the turned
  /// picture, loaded for the same box. The file is replaced in one step, with its permission bits, or left as
  /// it was. True if it was replaced; false if nothing is held or the file can't be turned. A JPEG takes 90,
  /// 180 and 270, any other angle raises CError; a TIFF takes 90 and 270. Raises what TransformJpeg and Save
  /// raise.
  bool Rotate(int angle);

  /// Encodes the held bitmap into a file, which is replaced in one step or left as it was. CException "Cannot
  /// write JPEG data to file\n", or the same with TIFF. `quality` is 1 to 100; a TIFF doesn't use it.
  void Save(const std::string& path, int quality) const;

  /// The held bitmap as a whole file. The same CException.
  virtual std::vector<std::uint8_t> SaveToMemory(int quality) const = 0;

  /// The held bitmap; without rows if there is none. The pixels belong to the image and may be changed.
  PixelBuffer GetPixels() { return Pixels; }
  PixelSource GetPixels() const { return Pixels; }

  /// The scale at which the held bitmap fits the box.
  double FitScale(int boxWidth, int boxHeight, bool allowEnlarging) const {
    return FitScaleOf(CurrentSize, boxWidth, boxHeight, allowEnlarging);
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

  /// Decodes a whole file and holds its pixels; no bytes stand for a file that can't be read.
  virtual void Decode(std::span<const std::uint8_t> bytes, ImageSize box) = 0;

  /// Size of the picture in a file, of which no pixels are read.
  virtual ImageSize ReadSize(const std::string& path) const = 0;

  /// Replaces the photo's own file by its turned picture. False if it can't be turned.
  virtual bool TurnFile(int angle) = 0;

  /// `pixels` lie in `memory`.
  void HoldPixels(platform::LargeMemory memory, const PixelBuffer& pixels, ImageSize naturalSize);
  void HoldNoPixels(ImageSize naturalSize);

  /// Replaces a file by these bytes. The CException of Save.
  void ReplaceFile(const std::string& path, std::span<const std::uint8_t> bytes) const;

 private:
  void Load(std::span<const std::uint8_t> bytes, ImageSize box, std::string path);

  const ImageType Type;
  std::string Path;
  ImageSize NaturalSize;
  ImageSize CurrentSize;
  ImageSize RequestedSize;
  platform::LargeMemory Memory;
  PixelBuffer Pixels;
};

/// A photo decoded from a JPEG, or a bitmap made by resizing. Rows run from the top downwards, each padded
/// to a multiple of 4 bytes; a pixel is blue, green, red.
///
/// A photo is decoded at the smallest of the codec's four sizes that still covers the box asked for; drawing
/// scales it further. A load that raises CException leaves the image as it was.
class CJpegImage : public CImage {
 public:
  /// Holds no pixels.
  CJpegImage() : CImage(ImageType::Jpeg) {}

  /// A bitmap of 24 bits whose pixels are still to be painted. CException if there is no memory for it.
  explicit CJpegImage(ImageSize size);

  bool RotatesWithoutLoss() const override { return true; }
  std::vector<std::uint8_t> SaveToMemory(int quality) const override;

 protected:
  /// CException as told at CJpegDecoder.
  void Decode(std::span<const std::uint8_t> bytes, ImageSize box) override;

  /// CException "Cannot read JPEG header".
  ImageSize ReadSize(const std::string& path) const override;

  bool TurnFile(int angle) override;
};

/// How a JPEG file stands, from its headers alone. CException "Cannot read JPEG header".
WayUp ReadWayUp(const std::string& path);

/// Turns a JPEG from file to file, as told at TurnJpeg but by `angle` as the picture is seen; both may be the
/// same. The destination is replaced in
/// one step, and flushed, or left as it was. False if TurnJpeg gives none, and its exceptions. CException
/// "Cannot read src file" or "Cannot open destination file"; CStorageException if the disk is full or fails.
bool TransformJpeg(const std::string& sourcePath, const std::string& destinationPath, int angle);
