#include "PhotoFile.h"

#include <fcntl.h>
#include <jpeglib.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <stdexcept>
#include <system_error>

namespace {

constexpr std::uint16_t kTypeText = 2;
constexpr std::uint16_t kTypeLong = 4;
constexpr std::uint16_t kTypeBytes = 7;
constexpr std::size_t kEntryBytes = 12;

class LittleEndianWriter {
 public:
  void Put16(std::size_t value) {
    Bytes.push_back(static_cast<std::uint8_t>(value & 0xFF));
    Bytes.push_back(static_cast<std::uint8_t>((value >> 8) & 0xFF));
  }
  void Put32(std::size_t value) {
    Put16(value & 0xFFFF);
    Put16(value >> 16);
  }
  void PutEntry(std::uint16_t tag, std::uint16_t type, std::size_t count, std::size_t valueOrOffset) {
    Put16(tag);
    Put16(type);
    Put32(count);
    Put32(valueOrOffset);
  }
  void PutText(const std::string& text) { Bytes.insert(Bytes.end(), text.begin(), text.end()); }

  std::vector<std::uint8_t> Bytes;
};

std::string ExifDate(const std::tm& taken) {
  std::array<char, 20> text{};
  std::strftime(text.data(), text.size(), "%Y:%m:%d %H:%M:%S", &taken);
  return std::string(text.data(), text.size());  // with its closing zero
}

// "Exif", and a TIFF structure: maker and date in the first directory, the date again and maker's notes in
// the second.
std::vector<std::uint8_t> MakeExif(const PhotoSettings& settings) {
  const std::string maker = std::string("Vellumar\0", 9) + '\0';
  const std::string date = ExifDate(settings.Taken);
  const std::size_t firstDirectory = 8;
  const std::size_t texts = firstDirectory + 2 + 3 * kEntryBytes + 4;
  const std::size_t secondDirectory = texts + maker.size() + date.size();
  const std::size_t secondTexts = secondDirectory + 2 + 2 * kEntryBytes + 4;
  const std::size_t notes = secondTexts + date.size();
  const std::size_t used = 6 + notes;
  const std::size_t notesBytes = settings.ExifBytes > used ? settings.ExifBytes - used : 4;

  LittleEndianWriter exif;
  exif.PutText("II");
  exif.Put16(42);
  exif.Put32(firstDirectory);
  exif.Put16(3);
  exif.PutEntry(0x010F, kTypeText, maker.size(), texts);
  exif.PutEntry(0x0132, kTypeText, date.size(), texts + maker.size());
  exif.PutEntry(0x8769, kTypeLong, 1, secondDirectory);
  exif.Put32(0);
  exif.PutText(maker);
  exif.PutText(date);
  exif.Put16(2);
  exif.PutEntry(0x9003, kTypeText, date.size(), secondTexts);
  exif.PutEntry(0x927C, kTypeBytes, notesBytes, notes);
  exif.Put32(0);
  exif.PutText(date);
  std::minstd_rand random;
  for (std::size_t i = 0; i < notesBytes; ++i) exif.Bytes.push_back(static_cast<std::uint8_t>(random() >> 8));

  std::vector<std::uint8_t> segment{'E', 'x', 'i', 'f', 0, 0};
  segment.insert(segment.end(), exif.Bytes.begin(), exif.Bytes.end());
  return segment;
}

[[noreturn]] void ThrowEncoderError(j_common_ptr info) {
  std::array<char, JMSG_LENGTH_MAX> text{};
  info->err->format_message(info, text.data());
  throw std::runtime_error(text.data());
}

// The encoder with the memory that it writes to; both go with the object.
class Encoder {
 public:
  Encoder() {
    Info.err = jpeg_std_error(&Errors);
    Errors.error_exit = ThrowEncoderError;
    jpeg_create_compress(&Info);
    jpeg_mem_dest(&Info, &Output, &OutputSize);
  }
  ~Encoder() {
    jpeg_destroy_compress(&Info);
    std::free(Output);  // NOLINT: the encoder allocates it with malloc
  }
  Encoder(const Encoder&) = delete;
  Encoder& operator=(const Encoder&) = delete;

  jpeg_compress_struct Info{};
  std::vector<std::uint8_t> TakeOutput() const { return {Output, Output + OutputSize}; }

 private:
  jpeg_error_mgr Errors{};
  unsigned char* Output = nullptr;
  unsigned long OutputSize = 0;
};

}  // namespace

std::vector<std::uint8_t> EncodePhoto(const Picture& picture, const PhotoSettings& settings) {
  Encoder encoder;
  jpeg_compress_struct& info = encoder.Info;
  info.image_width = static_cast<JDIMENSION>(picture.Width);
  info.image_height = static_cast<JDIMENSION>(picture.Height);
  info.input_components = 3;
  info.in_color_space = JCS_RGB;
  jpeg_set_defaults(&info);
  info.write_JFIF_header = FALSE;
  jpeg_set_quality(&info, settings.Quality, TRUE);
  if (settings.Progressive) jpeg_simple_progression(&info);
  jpeg_start_compress(&info, TRUE);
  const std::vector<std::uint8_t> exif = MakeExif(settings);
  jpeg_write_marker(&info, JPEG_APP0 + 1, exif.data(), static_cast<unsigned>(exif.size()));
  for (int y = 0; y < picture.Height; ++y) {
    // The library's rows aren't const, though it only reads them.
    JSAMPROW row = const_cast<JSAMPROW>(picture.Row(y));
    jpeg_write_scanlines(&info, &row, 1);
  }
  jpeg_finish_compress(&info);
  return encoder.TakeOutput();
}

void WritePhoto(const std::string& path, const std::vector<std::uint8_t>& bytes,
                const PhotoSettings& settings) {
  // Under another name first, so that what a stopped run leaves is never taken for a photo.
  const std::string unfinished = path + ".part";
  {
    std::ofstream file(unfinished, std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file) throw std::system_error(errno, std::generic_category(), unfinished);
  }
  std::tm taken = settings.Taken;
  taken.tm_isdst = -1;
  const timespec time{std::mktime(&taken), 0};
  const std::array<timespec, 2> times{time, time};
  if (utimensat(AT_FDCWD, unfinished.c_str(), times.data(), 0) != 0) {
    throw std::system_error(errno, std::generic_category(), unfinished);
  }
  std::filesystem::rename(unfinished, path);
}
