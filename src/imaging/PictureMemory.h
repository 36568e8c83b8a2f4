#pragma once

#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <system_error>
#include <vector>

#include "base/Exceptions.h"

/// The memory that photos take while they are worked on, counted over all threads, so that many large ones at
/// once wait for each other instead of filling the machine. Any thread.

/// A photo takes more memory or work than the program ever gives to one. The message tells the user.
class CTooLargeException : public CException {
 public:
  CTooLargeException();
};

class CMemoryShare;

class CMemoryPool {
 public:
  explicit CMemoryPool(std::uint64_t capacity) : Capacity(capacity) {}

  /// A share; null if others would have to give back some first.
  std::unique_ptr<CMemoryShare> TakeIfFree(std::uint64_t bytes);

 private:
  friend class CMemoryShare;
  void Take(std::uint64_t bytes);
  void GiveBack(std::uint64_t bytes);

  const std::uint64_t Capacity;
  std::mutex Queue;  // of those who wait, held by the first
  std::mutex Mutex;
  std::condition_variable Freed;
  std::uint64_t Used = 0;
};

/// A part of a pool, for as long as the object lives.
class CMemoryShare {
 public:
  struct AlreadyTaken {};
  CMemoryShare(CMemoryPool& pool, std::uint64_t bytes, AlreadyTaken) : Pool(pool), Bytes(bytes) {}

  /// Waits until others have given back enough. CTooLargeException if the whole pool isn't enough.
  CMemoryShare(CMemoryPool& pool, std::uint64_t bytes);
  ~CMemoryShare();
  CMemoryShare(const CMemoryShare&) = delete;
  CMemoryShare& operator=(const CMemoryShare&) = delete;

 private:
  CMemoryPool& Pool;
  const std::uint64_t Bytes;
};

/// For coefficients and for bitmaps while they are made. Whoever holds a share of it asks for no other of any
/// pool until it is given back, so every share comes free.
CMemoryPool& GetPictureMemory();

/// For bitmaps that are held although nobody has asked for them yet. Nobody waits for a share of it, so it
/// may be held beside one of another pool.
CMemoryPool& GetAheadMemory();

/// A photo's file, read as a whole, and counted in a pool of its own.
class CPhotoFile {
 public:
  /// To be called once. CTooLargeException.
  std::error_code Read(const std::string& path);

  std::span<const std::uint8_t> GetBytes() const { return Bytes; }

 private:
  std::optional<CMemoryShare> Share;
  std::vector<std::uint8_t> Bytes;
};
