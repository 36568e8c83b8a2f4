#include "imaging/PicturesAhead.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "imaging/ImageFile.h"

namespace {

constexpr std::uint64_t kBytesPerPixel = 3;

std::uint64_t GetBitmapBytes(ImageSize size) {
  return static_cast<std::uint64_t>(size.Width) * static_cast<std::uint64_t>(size.Height) * kBytesPerPixel;
}

}  // namespace

CPicturesAhead::~CPicturesAhead() { GiveUp(); }

void CPicturesAhead::Prepare(const std::vector<std::string>& paths, ImageSize box) {
  const std::lock_guard lock(Mutex);
  std::vector<Picture> wanted;
  for (const std::string& path : paths) {
    const auto held = Find(path);
    const bool stays =
        held != Pictures.end() && held->Box.Width >= box.Width && held->Box.Height >= box.Height;
    if (stays) {
      wanted.push_back(std::move(*held));
      Pictures.erase(held);
    } else if (ImageTypeOfFile(path) == ImageType::Jpeg) {
      Picture& picture = wanted.emplace_back();
      picture.Path = path;
      picture.Box = box;
    }
  }
  Pictures = std::move(wanted);
  if (!Pictures.empty() && !Worker.joinable()) {
    try {
      Worker = std::jthread([this](const std::stop_token& stop) { Work(stop); });
    } catch (const std::system_error&) {
      // No more threads can be started. The photos are decoded when they are asked for.
    }
  }
  Changed.notify_all();
}

std::vector<CPicturesAhead::Picture>::iterator CPicturesAhead::Find(const std::string& path) {
  return std::find_if(Pictures.begin(), Pictures.end(),
                      [&path](const Picture& picture) { return picture.Path == path; });
}

bool CPicturesAhead::Has(const std::string& path) const {
  const std::lock_guard lock(Mutex);
  return std::any_of(Pictures.begin(), Pictures.end(), [&path](const Picture& picture) {
    return picture.Path == path && picture.Progress == State::Ready && picture.Image;
  });
}

std::unique_ptr<CImage> CPicturesAhead::Take(const std::string& path) {
  Picture taken;
  {
    std::unique_lock lock(Mutex);
    const auto found = Find(path);  // stays in its place, since the owner alone adds and removes
    if (found == Pictures.end() || found->Progress == State::Waiting) return nullptr;
    Changed.wait(lock, [&] { return found->Progress == State::Ready; });
    taken = std::move(*found);
    Pictures.erase(found);
  }
  platform::FileStatus now;
  const bool isUnchanged = !platform::GetStatus(path, now) && platform::IsUnchanged(taken.Status, now);
  return isUnchanged ? std::move(taken.Image) : nullptr;
}

void CPicturesAhead::Work(const std::stop_token& stop) {
  const auto isWaiting = [](const Picture& picture) { return picture.Progress == State::Waiting; };
  std::unique_lock lock(Mutex);
  for (;;) {
    auto next = Pictures.end();
    const auto hasWork = [&] {
      next = std::find_if(Pictures.begin(), Pictures.end(), isWaiting);
      return next != Pictures.end();
    };
    if (!Changed.wait(lock, stop, hasWork)) return;
    next->Progress = State::Begun;
    Picture picture;
    picture.Path = next->Path;
    picture.Box = next->Box;
    lock.unlock();
    Decode(picture);
    picture.Progress = State::Ready;
    lock.lock();
    // It may have been given up meanwhile, and even been asked for anew for a larger box.
    const auto place = Find(picture.Path);
    if (place != Pictures.end() && place->Box == picture.Box && place->Progress == State::Begun) {
      *place = std::move(picture);
    }
    Changed.notify_all();
  }
}

/// Leaves the image null if the file gives none, or may still be changing, or there is no room for its
/// pixels.
void CPicturesAhead::Decode(Picture& picture) {
  try {
    if (platform::GetStatus(picture.Path, picture.Status) || !platform::HasSettled(picture.Status)) return;
    const ImageSize size = GetDecodedSize(ReadImageSize(picture.Path), picture.Box);
    picture.Share = GetAheadMemory().TakeIfFree(GetBitmapBytes(size));
    if (picture.Share) picture.Image = LoadImageFile(picture.Path, picture.Box.Width, picture.Box.Height);
  } catch (...) {
    // Most likely out of memory. It is decoded when it is asked for.
  }
  if (!picture.Image) picture.Share.reset();
}
