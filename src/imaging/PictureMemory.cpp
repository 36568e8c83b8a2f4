#include "imaging/PictureMemory.h"

#include <algorithm>

#include "platform/Files.h"
#include "platform/LargeMemory.h"
#include "resources/StringIds.h"

namespace {

// A picture of 200 megapixels takes 1.2 GB to be turned with its chroma halved both ways, 2.4 GB without.
constexpr std::uint64_t kMostPictureMemory = std::uint64_t{3} << 30;
constexpr std::uint64_t kMostFileMemory = std::uint64_t{1} << 30;
// Two photos of 40 megapixels at full size, or dozens as a screen needs them.
constexpr std::uint64_t kMostAheadMemory = std::uint64_t{256} << 20;
constexpr std::uint64_t kRoomToGrow = std::uint64_t{1} << 20;  // for a file that is still being written

CMemoryPool& GetFileMemory() {
  static CMemoryPool pool(kMostFileMemory);
  return pool;
}

}  // namespace

CTooLargeException::CTooLargeException() : CException(StringId::PhotoTooLarge) {}

void CMemoryPool::Take(std::uint64_t bytes) {
  if (bytes > Capacity) throw CTooLargeException();
  // In the order of the calls, or small shares could keep a large one waiting for ever.
  const std::lock_guard first(Queue);
  std::unique_lock lock(Mutex);
  Freed.wait(lock, [&] { return bytes <= Capacity - Used; });
  Used += bytes;
}

std::unique_ptr<CMemoryShare> CMemoryPool::TakeIfFree(std::uint64_t bytes) {
  const std::lock_guard lock(Mutex);
  if (bytes > Capacity - Used) return nullptr;
  auto share = std::make_unique<CMemoryShare>(*this, bytes, CMemoryShare::AlreadyTaken());
  Used += bytes;
  return share;
}

void CMemoryPool::GiveBack(std::uint64_t bytes) {
  {
    const std::lock_guard lock(Mutex);
    Used -= bytes;
  }
  Freed.notify_one();
}

CMemoryShare::CMemoryShare(CMemoryPool& pool, std::uint64_t bytes) : Pool(pool), Bytes(bytes) {
  Pool.Take(Bytes);
}

CMemoryShare::~CMemoryShare() { Pool.GiveBack(Bytes); }

CMemoryPool& GetPictureMemory() {
  static CMemoryPool pool(std::min(kMostPictureMemory, platform::GetPhysicalMemory() / 4 * 3));
  return pool;
}

CMemoryPool& GetAheadMemory() {
  static CMemoryPool pool(std::min(kMostAheadMemory, platform::GetPhysicalMemory() / 16));
  return pool;
}

std::error_code CPhotoFile::Read(const std::string& path) {
  platform::FileStatus status;
  if (const auto error = platform::GetStatus(path, status)) return error;
  if (status.Size > kMostFileMemory - kRoomToGrow) throw CTooLargeException();
  const std::uint64_t limit = status.Size + kRoomToGrow;
  Share.emplace(GetFileMemory(), limit);
  return platform::ReadWholeFile(path, Bytes, limit);
}
