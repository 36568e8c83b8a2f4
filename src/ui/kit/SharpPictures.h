#pragma once

#include <QImage>
#include <QObject>
#include <QSize>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <list>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "platform/Files.h"

/// A photo's picture that somebody wants to paint.
struct PictureWish {
  std::int32_t Key = -1;  // tells the picture when it comes
  std::string Path;
  QSize Box;  // that it is fitted into, pixels of the layout
};

/// Pictures of photos for a dense screen, made from the files themselves, since stored thumbnails look soft
/// there. The files are read and decoded on threads of its own, which touch neither catalog nor thumbnails.
/// Pictures that were made are held for the next time, 32 MB of them, and given again while their files stay
/// unchanged. All operations are for the window thread.
class CSharpPictures {
 public:
  /// A picture that was wished for, in pixels of the screen. Called on the window thread, never in a job.
  using PictureReceiver = std::function<void(std::int32_t key, const QImage& picture)>;

  /// A job that begins makes it give up; `onGivenUp` is called when that job is over.
  CSharpPictures(PictureReceiver onPicture, std::function<void()> onGivenUp);
  /// Waits for the files that are being decoded.
  ~CSharpPictures();
  CSharpPictures(const CSharpPictures&) = delete;
  CSharpPictures& operator=(const CSharpPictures&) = delete;

  /// Makes these pictures, in that order, instead of those that were wished for before. A file that can't be
  /// decoded, or is changed meanwhile, gives none.
  void Prepare(std::vector<PictureWish> wishes, double pixelRatio);

  /// Begins no further file, and gives no picture of those begun.
  void GiveUp() { Prepare({}, 1.0); }

  // Any thread.

  /// Files decoded since it was made.
  int GetDecodedFiles() const;
  /// The memory that held pictures take.
  std::size_t GetHeldBytes() const;

 private:
  struct ReadyPicture {
    std::int32_t Key;
    QImage Picture;
  };
  struct HeldPicture {
    std::string Path;
    QSize Box;
    double PixelRatio;
    platform::FileStatus Status;
    QImage Picture;
  };

  void StartThreads();
  void Work(const std::stop_token& stop);
  QImage MakePicture(const PictureWish& wish, double pixelRatio);
  QImage FindHeld(const PictureWish& wish, double pixelRatio, const platform::FileStatus& status);
  void Hold(HeldPicture picture);
  void CallDeliver();
  void Deliver();

  const PictureReceiver OnPicture;
  const std::function<void()> OnGivenUp;
  bool AsksAfterJob = false;

  mutable std::mutex Mutex;  // guards what follows up to the threads
  std::condition_variable_any Changed;
  std::deque<PictureWish> Wishes;
  double PixelRatio = 1.0;
  int Round = 0;        // of wishes; changed by the window thread alone
  bool Paused = false;  // a thread has seen a job, of which the window thread doesn't know yet
  std::vector<ReadyPicture> Ready;
  std::list<HeldPicture> Held;  // the one used last comes first
  std::size_t HeldBytes = 0;
  int DecodedFiles = 0;

  std::vector<std::jthread> Threads;
  QObject Context;  // of calls to the window thread, which go with it
};
