#pragma once

#include <string>

#include "imaging/Image.h"

/// A photo decoded from a TIFF, always at full size: the box is only remembered. Rows run from the bottom of
/// the picture upwards without padding; a pixel is blue, green, red, alpha. A file that can't be read or
/// decoded leaves the image empty.
class CTiffImage : public CImage {
 public:
  /// Holds no pixels.
  CTiffImage() : CImage(ImageType::Tiff) {}

  bool RotatesWithoutLoss() const override { return !HasMorePages; }
  bool IsCompressedAsJpeg() const { return CompressedAsJpeg; }

  /// A TIFF of red, green, blue in PackBits.
  std::vector<std::uint8_t> SaveToMemory(int quality) const override;

 protected:
  /// CTooLargeException, also if the pixels would take more than kMaxBitmapBytes.
  void Decode(std::span<const std::uint8_t> bytes, ImageSize box) override;

  /// 0 by 0 if the file can't be read.
  ImageSize ReadSize(const std::string& path) const override;

  /// Writes the file anew from the held pixels, as Save does: only red, green and blue are kept of it.
  /// CException also for an angle other than 90 and 270.
  bool TurnFile(int angle) override;

 private:
  bool CompressedAsJpeg = false;
  bool HasMorePages = false;
};
