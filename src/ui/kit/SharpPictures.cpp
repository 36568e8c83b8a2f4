#include "ui/kit/SharpPictures.h"

#include <QPointer>
#include <algorithm>
#include <system_error>
#include <utility>

#include "imaging/Image.h"
#include "imaging/ImageFile.h"
#include "ui/kit/DevicePainter.h"
#include "ui/kit/Job.h"
#include "ui/kit/Pictures.h"

namespace {

// Some 140 cells of 280 by 210 pixels: ten times what a strip shows, and all of a page whose cells aren't
// tiny.
constexpr std::size_t kMostHeldBytes = std::size_t{32} << 20;
constexpr unsigned kMostThreads = 4;

std::size_t GetBytes(const QImage& picture) { return static_cast<std::size_t>(picture.sizeInBytes()); }

}  // namespace

CSharpPictures::CSharpPictures(PictureReceiver onPicture, std::function<void()> onGivenUp)
    : OnPicture(std::move(onPicture)), OnGivenUp(std::move(onGivenUp)) {}

CSharpPictures::~CSharpPictures() {
  GiveUp();
  for (std::jthread& thread : Threads) thread.request_stop();
  Threads.clear();  // joins them, before what they use is destroyed
}

void CSharpPictures::Prepare(std::vector<PictureWish> wishes, double pixelRatio) {
  const bool hasWishes = !wishes.empty();
  {
    const std::lock_guard lock(Mutex);
    Wishes.assign(std::make_move_iterator(wishes.begin()), std::make_move_iterator(wishes.end()));
    PixelRatio = pixelRatio;
    ++Round;
    Paused = false;
    Ready.clear();
  }
  if (hasWishes && Threads.empty()) StartThreads();
  Changed.notify_all();
}

void CSharpPictures::StartThreads() {
  const unsigned count = std::clamp(std::thread::hardware_concurrency(), 1U, kMostThreads);
  try {
    for (unsigned i = 0; i < count; ++i) {
      Threads.emplace_back([this](const std::stop_token& stop) { Work(stop); });
    }
  } catch (const std::system_error&) {
    // No more threads can be started. Without any, thumbnails stay.
  }
}

int CSharpPictures::GetDecodedFiles() const {
  const std::lock_guard lock(Mutex);
  return DecodedFiles;
}

std::size_t CSharpPictures::GetHeldBytes() const {
  const std::lock_guard lock(Mutex);
  return HeldBytes;
}

// The threads.

void CSharpPictures::Work(const std::stop_token& stop) {
  std::unique_lock lock(Mutex);
  while (Changed.wait(lock, stop, [this] { return !Wishes.empty() && !Paused; })) {
    if (IsJobRunning()) {
      Paused = true;
      CallDeliver();
      continue;
    }
    const PictureWish wish = std::move(Wishes.front());
    Wishes.pop_front();
    const double pixelRatio = PixelRatio;
    const int round = Round;
    lock.unlock();
    QImage picture;
    try {
      picture = MakePicture(wish, pixelRatio);
    } catch (...) {
      // Most likely out of memory; the thumbnail stays.
    }
    lock.lock();
    if (round != Round || picture.isNull()) continue;
    Ready.push_back({wish.Key, std::move(picture)});
    CallDeliver();
  }
}

/// Null if the file gives no picture, or another one by now.
QImage CSharpPictures::MakePicture(const PictureWish& wish, double pixelRatio) {
  platform::FileStatus before;
  if (platform::GetStatus(wish.Path, before)) return {};
  if (QImage held = FindHeld(wish, pixelRatio, before); !held.isNull()) return held;
  const auto image = LoadImageFile(wish.Path, ToDevicePixels(wish.Box.width(), pixelRatio),
                                   ToDevicePixels(wish.Box.height(), pixelRatio));
  {
    const std::lock_guard lock(Mutex);
    ++DecodedFiles;
  }
  if (!image) return {};
  QImage picture = FitToImage(*image, wish.Box, pixelRatio, Enlarging::Never);
  picture.setDevicePixelRatio(1.0);
  platform::FileStatus after;
  if (platform::GetStatus(wish.Path, after) || !platform::IsUnchanged(before, after)) return {};
  if (platform::HasSettled(before)) Hold({wish.Path, wish.Box, pixelRatio, before, picture});
  return picture;
}

QImage CSharpPictures::FindHeld(const PictureWish& wish, double pixelRatio,
                                const platform::FileStatus& status) {
  const std::lock_guard lock(Mutex);
  const auto found = std::find_if(Held.begin(), Held.end(), [&](const HeldPicture& held) {
    return held.Path == wish.Path && held.Box == wish.Box && held.PixelRatio == pixelRatio &&
           platform::IsUnchanged(held.Status, status);
  });
  if (found == Held.end()) return {};
  Held.splice(Held.begin(), Held, found);
  return found->Picture;
}

void CSharpPictures::Hold(HeldPicture picture) {
  const std::lock_guard lock(Mutex);
  HeldBytes += GetBytes(picture.Picture);
  Held.push_front(std::move(picture));
  while (HeldBytes > kMostHeldBytes) {
    HeldBytes -= GetBytes(Held.back().Picture);
    Held.pop_back();
  }
}

void CSharpPictures::CallDeliver() {
  QMetaObject::invokeMethod(
      &Context, [this] { Deliver(); }, Qt::QueuedConnection);
}

// The window thread.

void CSharpPictures::Deliver() {
  if (IsJobRunning()) {
    GiveUp();
    if (std::exchange(AsksAfterJob, true)) return;
    return RunAfterJob([this, alive = QPointer<QObject>(&Context)] {
      if (!alive) return;
      AsksAfterJob = false;
      OnGivenUp();
    });
  }
  std::vector<ReadyPicture> ready;
  {
    const std::lock_guard lock(Mutex);
    ready.swap(Ready);
    Paused = false;
  }
  Changed.notify_all();
  const int round = Round;
  for (const ReadyPicture& picture : ready) {
    if (round == Round) OnPicture(picture.Key, picture.Picture);
  }
}
