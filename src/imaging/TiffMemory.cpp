#include "imaging/TiffMemory.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "imaging/Image.h"
#include "platform/Files.h"

namespace {

int Silence(TIFF*, void*, const char*, const char*, va_list) { return 1; }

std::uint64_t SizeOf(const TiffInput& input) { return input.Bytes.size(); }

std::uint64_t SizeOf(const TiffOutput& output) { return output.Bytes.size(); }

std::uint64_t SizeOf(const TiffFile& file) {
  platform::FileStatus status;
  return platform::GetStatus(file.Path, status) ? 0 : status.Size;
}

template <typename Memory>
toff_t Seek(thandle_t handle, toff_t offset, int whence) {
  auto* memory = static_cast<Memory*>(handle);
  // The library adds in unsigned numbers; going back is a wrap.
  if (whence == SEEK_SET) memory->Position = offset;
  if (whence == SEEK_CUR) memory->Position += offset;
  if (whence == SEEK_END) memory->Position = SizeOf(*memory) + offset;
  return memory->Position;
}

template <typename Memory>
toff_t GetSize(thandle_t handle) {
  return SizeOf(*static_cast<Memory*>(handle));
}

template <typename Memory>
tmsize_t Read(thandle_t handle, void* buffer, tmsize_t size) {
  auto* memory = static_cast<Memory*>(handle);
  if (size <= 0 || memory->Position >= memory->Bytes.size()) return 0;
  const std::size_t count = std::min(static_cast<std::size_t>(size),
                                     memory->Bytes.size() - static_cast<std::size_t>(memory->Position));
  std::memcpy(buffer, memory->Bytes.data() + memory->Position, count);
  memory->Position += count;
  return static_cast<tmsize_t>(count);
}

template <>
tmsize_t Read<TiffFile>(thandle_t handle, void* buffer, tmsize_t size) {
  auto* file = static_cast<TiffFile*>(handle);
  std::size_t got = 0;
  if (size <= 0) return 0;
  const std::span bytes(static_cast<std::uint8_t*>(buffer), static_cast<std::size_t>(size));
  if (platform::ReadFilePart(file->Path, file->Position, bytes, got)) return -1;
  file->Position += got;
  return static_cast<tmsize_t>(got);
}

tmsize_t RefuseWrite(thandle_t, void*, tmsize_t) { return -1; }

tmsize_t Write(thandle_t handle, void* buffer, tmsize_t size) noexcept {
  auto* output = static_cast<TiffOutput*>(handle);
  const std::uint64_t end = output->Position + static_cast<std::uint64_t>(size);
  if (size < 0 || end > 2 * kMaxBitmapBytes) return -1;
  try {
    if (end > output->Bytes.size()) output->Bytes.resize(end);
  } catch (const std::bad_alloc&) {
    return -1;
  }
  if (size > 0) std::memcpy(output->Bytes.data() + output->Position, buffer, static_cast<std::size_t>(size));
  output->Position = end;
  return size;
}

int Close(thandle_t) { return 0; }

struct OptionsCloser {
  void operator()(TIFFOpenOptions* options) const { TIFFOpenOptionsFree(options); }
};

template <typename Memory>
TiffHandle Open(Memory& memory, const char* mode, TIFFReadWriteProc write) {
  const std::unique_ptr<TIFFOpenOptions, OptionsCloser> options(TIFFOpenOptionsAlloc());
  if (!options) return nullptr;
  TIFFOpenOptionsSetErrorHandlerExtR(options.get(), Silence, nullptr);
  TIFFOpenOptionsSetWarningHandlerExtR(options.get(), Silence, nullptr);
  TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), static_cast<tmsize_t>(kMaxBitmapBytes));
  return TiffHandle(TIFFClientOpenExt("", mode, &memory, Read<Memory>, write, Seek<Memory>, Close,
                                      GetSize<Memory>, nullptr, nullptr, options.get()));
}

}  // namespace

TiffHandle OpenTiff(TiffInput& input) { return Open(input, "rm", RefuseWrite); }

TiffHandle OpenTiff(TiffFile& file) { return Open(file, "rm", RefuseWrite); }

TiffHandle CreateTiff(TiffOutput& output) { return Open(output, "w", Write); }
