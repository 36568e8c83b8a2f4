#include "sharing/EmailCopies.h"

#include <algorithm>
#include <condition_variable>
#include <cstdint>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>

#include "base/Exceptions.h"
#include "base/Paths.h"
#include "imaging/ImageFile.h"
#include "platform/Files.h"
#include "platform/WholeFiles.h"
#include "sharing/MailNames.h"

namespace {

constexpr int kBoxWidth = 800;
constexpr int kBoxHeight = 600;
constexpr int kQuality = 65;

[[noreturn]] void RaiseRefusal(const std::string& path, const std::error_code& error) {
  throw CStorageException("\"" + path + "\" can't be written: " + error.message() + ".");
}

/// The size of the copy follows from the whole picture, not from what it was reduced to when it was decoded.
std::unique_ptr<CJpegImage> Reduce(const CImage& image) {
  const ImageSize whole = image.GetNaturalSize();
  const double scale = FitScaleOf(whole, kBoxWidth, kBoxHeight, false);
  const auto reduced = [scale](int side) { return static_cast<int>(std::max(side * scale, 1.0)); };
  auto copy = std::make_unique<CJpegImage>(ImageSize{reduced(whole.Width), reduced(whole.Height)});
  image.DrawOver(copy->GetPixels());
  return copy;
}

void MakeFoldersOf(const std::vector<std::string>& copyPaths, const std::string& folder) {
  for (const std::string& path : copyPaths) {
    const std::string own = WithoutClosingSlash(SplitPath(path).Folder);
    if (own == folder) continue;
    if (const auto error = platform::CreatePrivateFolder(own)) RaiseRefusal(own, error);
  }
}

/// Makes copies on threads of its own, which end after the photos that they are at when this object goes.
class CCopyWork {
 public:
  CCopyWork(const std::vector<std::string>& photoPaths, const std::vector<std::string>& copyPaths)
      : Photos(photoPaths), Copies(copyPaths), Made(photoPaths.size()) {
    const std::size_t threads =
        std::clamp<std::size_t>(std::thread::hardware_concurrency(), 1, Photos.size());
    try {
      for (std::size_t i = 0; i < threads; ++i) Threads.emplace_back([this] { Work(); });
    } catch (const std::system_error&) {
      // No more threads can be started. Those that run do the work; without any, AwaitMore() does it.
    }
  }
  ~CCopyWork() {
    {
      const std::lock_guard lock(Mutex);
      Next = Photos.size();
    }
    Threads.clear();  // joins them, before the members that they use are destroyed
  }
  CCopyWork(const CCopyWork&) = delete;
  CCopyWork& operator=(const CCopyWork&) = delete;

  /// Waits until more than `done` photos are done, and tells how many. Raises what a copy has raised.
  std::size_t AwaitMore(std::size_t done) {
    if (Threads.empty()) CopyNext();
    std::unique_lock lock(Mutex);
    OneDone.wait(lock, [&] { return Done > done; });
    if (Failure) std::rethrow_exception(Failure);
    return Done;
  }

  /// When all are done: the copies of the photos that could be decoded.
  std::vector<std::string> GetCopies() const {
    std::vector<std::string> made;
    for (std::size_t i = 0; i < Copies.size(); ++i) {
      if (Made[i]) made.push_back(Copies[i]);
    }
    return made;
  }

 private:
  void Work() {
    while (CopyNext()) {
    }
  }

  /// False if there is nothing left to begin.
  bool CopyNext() {
    std::unique_lock lock(Mutex);
    if (Next >= Photos.size() || Failure) return false;
    const std::size_t index = Next++;
    lock.unlock();
    bool isMade = false;
    std::exception_ptr failure;
    try {
      isMade = MakeEmailCopy(Photos[index], Copies[index]);
    } catch (...) {
      failure = std::current_exception();
    }
    lock.lock();
    Made[index] = isMade;
    ++Done;
    if (!Failure) Failure = failure;
    OneDone.notify_one();
    return true;
  }

  const std::vector<std::string>& Photos;
  const std::vector<std::string>& Copies;
  std::mutex Mutex;
  std::condition_variable OneDone;
  std::size_t Next = 0;
  std::size_t Done = 0;
  std::vector<bool> Made;
  std::exception_ptr Failure;  // the first one
  std::vector<std::jthread> Threads;
};

}  // namespace

bool MakeEmailCopy(const std::string& photoPath, const std::string& copyPath) {
  // Decoded at twice the size or more, the copy is as sharp as from the whole picture.
  const auto image = LoadImageFile(photoPath, 2 * kBoxWidth, 2 * kBoxHeight);
  if (!image) return false;
  const std::vector<std::uint8_t> bytes = Reduce(*image)->SaveToMemory(kQuality);
  if (const auto error = platform::WriteNewFile(copyPath, bytes.data(), bytes.size())) {
    RaiseRefusal(copyPath, error);
  }
  return true;
}

std::optional<std::vector<std::string>> MakeEmailCopies(const std::vector<std::string>& photoPaths,
                                                        const std::string& folder, CEmailProgress* progress) {
  const std::vector<std::string> copies = GetCopyPaths(photoPaths, folder);
  MakeFoldersOf(copies, folder);
  CCopyWork work(photoPaths, copies);
  for (std::size_t done = 0; done < photoPaths.size();) {
    if (progress && progress->IsStopped()) return std::nullopt;
    done = work.AwaitMore(done);
    if (progress) progress->Progress(done, photoPaths.size());
  }
  return work.GetCopies();
}
