#include "imaging/JpegMemory.h"

#include <algorithm>
#include <new>
#include <utility>

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
