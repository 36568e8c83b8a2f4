#include "imaging/JpegLibrary.h"

#include <algorithm>
#include <new>
#include <string_view>
#include <utility>

namespace {

constexpr std::uint64_t kMaxPixels = std::uint64_t{1} << 30;
constexpr std::uint64_t kMaxArithmeticPixels = std::uint64_t{1} << 26;  // up to 20 ns each, even without data

constexpr int kMaxScans = 500;
// Blocks over all scans, up to 120 ns each. A picture of 200 megapixels with full chroma takes two thirds of
// the most in the usual ten scans. Every block of a real picture has a bit in at least two of them, which
// makes 20 visits a byte, so a few forged bytes don't get far.
constexpr std::uint64_t kMostBlockVisits = std::uint64_t{1} << 26;
constexpr std::uint64_t kLeastBlockVisits = std::uint64_t{1} << 20;
constexpr std::uint64_t kBlockVisitsPerByte = 64;

JpegErrors& From(j_common_ptr info) { return *static_cast<JpegErrors*>(info->client_data); }

/// Warnings about how a file was written, although all that is in it has been read.
bool IsHarmless(const jpeg_error_mgr& manager) {
  constexpr int kMostStrayBytes = 512;  // some cameras write padding after a scan
  switch (manager.msg_code) {
    case JWRN_ADOBE_XFORM:
    case JWRN_BOGUS_PROGRESSION:
    case JWRN_JFIF_MAJOR:
    case JWRN_NOT_SEQUENTIAL:
      return true;
    case JWRN_EXTRANEOUS_DATA:
      return manager.msg_parm.i[0] <= kMostStrayBytes;
    default:
      return false;
  }
}

void NoteWarning(j_common_ptr info, int level) {
  if (level >= 0) return;  // a trace message
  if (info->err->msg_code == JWRN_HIT_MARKER) From(info).RanDry = true;
  if (IsHarmless(*info->err)) return;
  From(info).Flawed = true;
  // Before the first scan the library has skipped something among the headers.
  const auto* decoder = reinterpret_cast<j_decompress_ptr>(info);
  if (info->is_decompressor && decoder->input_scan_number == 0) From(info).LostHeader = true;
}

constexpr std::size_t kMostHeaders = std::size_t{1} << 20;

/// The library must still learn how the colours are stored from the headers that are kept here.
void TellLibrary(const JpegHeader& header, jpeg_decompress_struct& info) {
  using namespace std::string_view_literals;
  const std::string_view text(reinterpret_cast<const char*>(header.Data.data()), header.Data.size());
  if (header.Marker == JPEG_APP0 && text.size() >= 14 && text.starts_with("JFIF\0"sv)) {
    info.saw_JFIF_marker = TRUE;
  }
  if (header.Marker == JPEG_APP0 + 14 && text.size() >= 12 && text.starts_with("Adobe"sv)) {
    info.saw_Adobe_marker = TRUE;
    info.Adobe_transform = header.Data[11];
  }
}

}  // namespace

JpegErrors::JpegErrors() {
  jpeg_std_error(&Manager);
  Manager.error_exit = [](j_common_ptr info) { std::longjmp(From(info).Jump, 1); };
  Manager.emit_message = NoteWarning;
  Manager.output_message = [](j_common_ptr) {};
}

bool IsAffordable(const jpeg_decompress_struct& info) {
  const std::uint64_t pixels = std::uint64_t{info.image_width} * info.image_height;
  return pixels <= (info.arith_code ? kMaxArithmeticPixels : kMaxPixels);
}

std::uint64_t GetCoefficientBytes(const jpeg_decompress_struct& info) {
  const auto roundUp = [](JDIMENSION value, int unit) {
    const auto step = static_cast<std::uint64_t>(unit);
    return (value + step - 1) / step * step;
  };
  std::uint64_t bytes = 0;
  for (int k = 0; k < info.num_components; ++k) {
    const jpeg_component_info& channel = info.comp_info[k];
    bytes += roundUp(channel.width_in_blocks, channel.h_samp_factor) *
             roundUp(channel.height_in_blocks, channel.v_samp_factor) * sizeof(JBLOCK);
  }
  return bytes;
}

CScanBudget::CScanBudget(std::size_t fileBytes)
    : MaxBlockVisits(fileBytes < kMostBlockVisits / kBlockVisitsPerByte
                         ? kLeastBlockVisits + fileBytes * kBlockVisitsPerByte
                         : kMostBlockVisits) {}

bool CScanBudget::Allows(const jpeg_decompress_struct& info) {
  return Allows(info.input_scan_number, std::uint64_t{info.MCUs_per_row} * info.MCU_rows_in_scan *
                                            static_cast<unsigned>(info.blocks_in_MCU));
}

bool CScanBudget::Allows(int number, std::uint64_t blocks) {
  BlockVisits += blocks;
  Spent = number > kMaxScans || BlockVisits > MaxBlockVisits;
  return !Spent;
}

CJpegSource::CJpegSource(std::span<const std::uint8_t> bytes) {
  Manager.next_input_byte = bytes.data();
  Manager.bytes_in_buffer = bytes.size();
  Manager.init_source = [](j_decompress_ptr) {};
  Manager.term_source = [](j_decompress_ptr) {};
  Manager.resync_to_restart = jpeg_resync_to_restart;
  Manager.fill_input_buffer = [](j_decompress_ptr info) -> boolean {
    static constexpr JOCTET kEnd[] = {0xFF, JPEG_EOI};
    info->src->next_input_byte = kEnd;
    info->src->bytes_in_buffer = sizeof kEnd;
    static_cast<WatchedManager*>(info->src)->RanOut = true;
    return TRUE;
  };
  Manager.skip_input_data = [](j_decompress_ptr info, long count) {
    if (count <= 0) return;
    const std::size_t skipped = std::min(static_cast<std::size_t>(count), info->src->bytes_in_buffer);
    info->src->next_input_byte += skipped;
    info->src->bytes_in_buffer -= skipped;
  };
}

void CJpegSource::KeepHeaders(j_decompress_ptr info) {
  jpeg_set_marker_processor(info, JPEG_COM, TakeHeader);
  for (int k = 0; k < 16; ++k) jpeg_set_marker_processor(info, JPEG_APP0 + k, TakeHeader);
}

boolean CJpegSource::TakeHeader(j_decompress_ptr info) {
  auto& manager = *static_cast<WatchedManager*>(info->src);
  const std::span rest(manager.next_input_byte, manager.bytes_in_buffer);
  constexpr std::size_t kLengthBytes = 2;
  const std::size_t start = std::min(kLengthBytes, rest.size());
  const std::size_t stated = start < kLengthBytes ? 0 : std::size_t{rest[0]} << 8 | rest[1];
  const std::size_t length = std::clamp(stated, start, rest.size());
  const JpegHeader header{info->unread_marker, rest.subspan(start, length - start)};
  TellLibrary(header, *info);
  if (!Keep(manager, header)) ERREXIT1(info, JERR_OUT_OF_MEMORY, 0);
  manager.next_input_byte += length;
  manager.bytes_in_buffer -= length;
  return TRUE;
}

// No exception may pass through the library.
bool CJpegSource::Keep(WatchedManager& manager, const JpegHeader& header) noexcept {
  if (manager.Headers.size() == kMostHeaders) return false;
  try {
    manager.Headers.push_back(header);
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }
}

std::span<const std::uint8_t> CJpegSource::GetRest() const {
  if (Manager.RanOut) return {};
  return {Manager.next_input_byte, Manager.bytes_in_buffer};
}

CJpegDestination::CJpegDestination(std::size_t expected) : Expected(expected) {
  Manager.Owner = this;
  Manager.init_destination = [](j_compress_ptr info) { From(info).Continue(info, 0); };
  Manager.empty_output_buffer = [](j_compress_ptr info) -> boolean {
    From(info).Continue(info, From(info).Bytes.size());
    return TRUE;
  };
  Manager.term_destination = [](j_compress_ptr info) {
    From(info).Used = From(info).Bytes.size() - info->dest->free_in_buffer;
  };
}

std::vector<std::uint8_t> CJpegDestination::Take() {
  Bytes.resize(Used);
  return std::exchange(Bytes, {});
}

void CJpegDestination::Continue(j_compress_ptr info, std::size_t used) {
  if (!Grow()) ERREXIT1(info, JERR_OUT_OF_MEMORY, 0);
  info->dest->next_output_byte = Bytes.data() + used;
  info->dest->free_in_buffer = Bytes.size() - used;
}

// No exception may pass through the library.
bool CJpegDestination::Grow() noexcept {
  try {
    Bytes.resize(std::max(Expected, Bytes.size() * 2));
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }
}
