#pragma once

#include <span>
#include <vector>

#include "imaging/Image.h"

/// A photo decoded from a TIFF, always at full size. Rows run from the bottom of the picture upwards
/// without padding; a pixel is blue, green, red, alpha.
class CTiffImage : public CImage {
 public:
  /// Holds no pixels.
  CTiffImage();
  ~CTiffImage() override;

  /// Reads and decodes a file. The box is only remembered. A file that can't be read or decoded leaves
  /// the image empty. CTooLargeException, also if the pixels would take more than kMaxBitmapBytes.
  void LoadFile(const std::string& path, int boxWidth, int boxHeight);

  /// The same for a file that is in memory already.
  void LoadMemory(std::span<const std::uint8_t> bytes, int boxWidth, int boxHeight);

  /// Takes in the natural size of a file, no pixels; 0 by 0 if it can't be read.
  void ReadHeader(const std::string& path);

  ImageSize GetNaturalSize() const override { return NaturalSize; }
  ImageSize GetCurrentSize() const override { return NaturalSize; }
  ImageSize GetRequestedSize() const override { return RequestedSize; }
  bool RotatesWithoutLoss() const override { return !HasMorePages; }
  /// Writes the file anew from the held pixels, as Save does: red, green and blue are what is kept of it.
  bool Rotate(int angle) override;
  bool IsCompressedAsJpeg() const { return CompressedAsJpeg; }

  /// Writes a TIFF of red, green, blue in PackBits; `quality` is not looked at. CException "Cannot write
  /// TIFF data to file\n".
  void Save(const std::string& path, int quality) const override;
  BitmapPixels GetPixels() override;

 protected:
  PixelSource GetSource() const override;

 private:
  void Clear();
  void TakeDecoded(std::span<const std::uint8_t> bytes, ImageSize box);

  std::vector<std::uint32_t> Bits;
  BitmapHeader Header;
  ImageSize NaturalSize;
  ImageSize RequestedSize;
  bool CompressedAsJpeg = false;
  bool HasMorePages = false;
};
