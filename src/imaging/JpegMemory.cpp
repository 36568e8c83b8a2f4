#include "imaging/JpegMemory.h"

#include <algorithm>
#include <new>
#include <string_view>
#include <utility>

namespace {

constexpr std::size_t kMostHeaders = std::size_t{1} << 20;

/// Headers that the library reads for itself tell it how the colours are stored.
void TellLibrary(const JpegHeader& header, jpeg_decompress_struct& info) {
  using namespace std::string_view_literals;
  const std::string_view text(reinterpret_cast<const char*>(header.Data.data()), header.Data.size());
  if (header.Marker == JPEG_APP0 && text.size() >= 14 && text.starts_with("JFIF\0"sv))
    info.saw_JFIF_marker = TRUE;
  if (header.Marker == JPEG_APP0 + 14 && text.size() >= 12 && text.starts_with("Adobe"sv)) {
    info.saw_Adobe_marker = TRUE;
    info.Adobe_transform = header.Data[11];
  }
}

}  // namespace

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
  const std::size_t told = start < kLengthBytes ? 0 : std::size_t{rest[0]} << 8 | rest[1];
  const std::size_t length = std::clamp(told, start, rest.size());
  const JpegHeader header{info->unread_marker, rest.subspan(start, length - start)};
  TellLibrary(header, *info);
  if (!Keep(manager, header)) ERREXIT1(info, JERR_OUT_OF_MEMORY, 0);
  manager.next_input_byte += length;
  manager.bytes_in_buffer -= length;
  return TRUE;
}

// No exception may leave through the library.
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

// No exception may leave through the library.
bool CJpegDestination::Grow() noexcept {
  try {
    Bytes.resize(std::max(Expected, Bytes.size() * 2));
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }
}
