#pragma once

#include <span>
#include <vector>

#include "imaging/Image.h"
#include "platform/LargeMemory.h"

class CJpegDecoder;

/// A photo decoded from a JPEG, or a bitmap made by resizing. Rows run from the top downwards, each padded
/// to a multiple of 4 bytes; a pixel is blue, green, red.
///
/// A photo is decoded at the smallest of the codec's four sizes that still covers the box asked for;
/// drawing does the rest.
class CJpegImage : public CImage {
 public:
  /// Holds no pixels.
  CJpegImage();

  /// A bitmap of 24 bits whose pixels are still to be painted. CException if there is no memory for it.
  explicit CJpegImage(ImageSize size);
  ~CJpegImage() override;

  /// Reads and decodes a file for a box; 0 by 0 asks for the full picture. Replaces what was held; if it
  /// raises CException (CTooLargeException), the image is as before.
  void LoadFile(const std::string& path, int boxWidth, int boxHeight);

  /// The same for a file that is in memory already. The path becomes empty.
  void LoadMemory(std::span<const std::uint8_t> bytes, int boxWidth, int boxHeight);

  /// Takes in natural and current size of a file, whose beginning alone is read, no pixels. CException
  /// "Cannot read JPEG header".
  void ReadHeader(const std::string& path);

  ImageSize GetNaturalSize() const override { return NaturalSize; }
  ImageSize GetCurrentSize() const override { return CurrentSize; }
  ImageSize GetRequestedSize() const override { return RequestedSize; }
  bool RotatesWithoutLoss() const override { return true; }
  bool Rotate(int angle) override;
  void Save(const std::string& path, int quality) const override;
  BitmapPixels GetPixels() override;

  /// The held bitmap as a whole JPEG file. CException.
  std::vector<std::uint8_t> SaveToMemory(int quality) const;

  /// The held bitmap, to be painted into.
  PixelBuffer GetBuffer();

 protected:
  PixelSource GetSource() const override;

 private:
  void TakeDecoded(std::span<const std::uint8_t> bytes, ImageSize box);

  platform::LargeMemory Bits;
  BitmapHeader Header;
  ImageSize NaturalSize;
  ImageSize CurrentSize;
  ImageSize RequestedSize;
};
