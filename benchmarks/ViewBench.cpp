#include <QCoreApplication>
#include <array>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "BenchPhotos.h"
#include "Benchmarks.h"
#include "ChildRun.h"
#include "Measure.h"
#include "PlainDecode.h"
#include "app/DataStores.h"
#include "base/Settings.h"
#include "discovery/FolderSearch.h"
#include "imaging/Image.h"
#include "imaging/PreparedPhoto.h"
#include "imaging/WayUp.h"
#include "sets/PhotoSet.h"
#include "ui/frame/MainFrame.h"
#include "ui/kit/Application.h"
#include "ui/kit/FontTable.h"
#include "ui/pages/PhotoView.h"
#include "ui/search/WindowedSearchProgress.h"
#include "ui/strip/StripWindow.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using Clock = std::chrono::steady_clock;

constexpr int kPhotos = 8;
constexpr int kCells = 13;  // of the strip on a screen twice as wide
constexpr int kCellRounds = 7;
constexpr int kRounds = 25;
constexpr ImageSize kScreen{1920, 1080};
constexpr ImageSize kThumbnailBox{140, 105};

struct PhotoKind {
  int Width;
  int Height;
};
constexpr std::array kKinds{PhotoKind{4000, 3000}, PhotoKind{6000, 4000}};

Bytes ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> ListPhotos(const std::string& folder) {
  std::vector<std::string> photos;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (entry.path().extension() == ".jpg") photos.push_back(entry.path().string());
  }
  return photos;
}

/// The file with a short EXIF segment before all else, which says how it stands.
Bytes WithWayUp(const Bytes& jpeg, WayUp wayUp) {
  using namespace std::string_literals;
  std::string start =
      "\xFF\xD8\xFF\xE1\0\x24"
      "Exif\0\0II*\0\x08\0\0\0\x01\0\x12\x01\x03\0\x01\0\0\0"s;
  start += static_cast<char>(wayUp);
  start.resize(40);
  Bytes changed(start.begin(), start.end());
  changed.insert(changed.end(), jpeg.begin() + 2, jpeg.end());
  return changed;
}

/// Seconds of the processor, since the difference that is looked for is smaller than what else the machine
/// does.
double MeasureLoad(const Bytes& file, ImageSize box) {
  CJpegImage image;
  const std::clock_t start = std::clock();
  image.LoadMemory(file, box.Width, box.Height);
  return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

/// What it costs to find thumbnails of an earlier version that have to be made anew, with the files in
/// memory.
void MeasureLooks(const std::vector<std::string>& photos) {
  const auto start = Clock::now();
  for (int round = 0; round < kRounds; ++round) {
    for (const std::string& photo : photos) IsStoredLying(photo);
  }
  std::printf("  finding out how a photo stands: %.0f microseconds\n",
              SecondsSince(start) / kRounds / static_cast<double>(photos.size()) * 1e6);
}

/// A photo as it is stored and turned for the same box; the two take turns.
void MeasureWayUp(const Bytes& jpeg, const char* name, ImageSize box) {
  const Bytes lying = WithWayUp(jpeg, WayUp::TurnRight);
  std::vector<double> plain;
  std::vector<double> turned;
  for (int round = 0; round < kRounds; ++round) {
    plain.push_back(MeasureLoad(jpeg, {box.Height, box.Width}));  // by its shape for the same reduction
    turned.push_back(MeasureLoad(lying, box));
  }
  const double decoding = Median(plain);
  const double turning = Median(turned) - decoding;
  std::printf("  a portrait for %s: decoding %.1f ms, turning %.2f ms\n", name, decoding * 1e3,
              turning * 1e3);
  PrintRatio(std::string("turning / decoding, for ") + name, turning / decoding, Limit::AtMost, 0.05);
}

/// From the press of a key until the next photo is painted. With `ahead` the photo has been decoded before.
double MeasureStep(CMainFrame& frame, bool forward, bool ahead) {
  CPhotoView& view = *frame.GetParts().PhotoView;
  const int target = frame.GetStrip().GetCurrentIndex() + (forward ? 1 : -1);
  const CAssetRecord photo = frame.GetPhotoSet().GetAsset(target);
  while (!view.IsReady(photo)) QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
  if (!ahead) view.GiveUpNeighbours();
  const auto start = Clock::now();
  frame.OnCommand(forward ? CommandId::NextPhoto : CommandId::PreviousPhoto);
  while (view.GetPhoto()->GetAssetID() != photo.GetAssetID()) {
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  }
  view.repaint();
  return SecondsSince(start);
}

void CompareSteps(const BenchPhotos& photos, int number) {
  const CScratchFolder scratch("view");
  const auto figures = RunChild({kViewChild}, MakeHome(scratch.GetPath(), number, photos.Folder)).Values;
  std::printf(
      "  from a key to the next photo: %.0f ms, of these the slide %.0f ms; not decoded ahead: %.0f ms\n",
      figures[1] * 1e3, figures[0] * 1e3, figures[2] * 1e3);
  PrintRatio("key to photo / the slide alone", figures[1] / figures[0], Limit::AtMost, 1.5);
}

/// From the time that the strip rests, and the large photo shows, until all cells on view are sharp. The
/// files are touched before, so that no picture that is held is given for them.
double MeasureCells(CMainFrame& frame) {
  CFilmstrip& strip = frame.GetStrip();
  const int reach = strip.GetLayout().GetLensCell();
  const auto waitUntilSharp = [&] {
    while (!strip.GetCache().ListSoftCells(reach).empty()) {
      QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
  };
  strip.MoveTo(0);
  waitUntilSharp();
  const CPhotoSet& photos = frame.GetPhotoSet();
  for (int i = 0; i < photos.GetCount(); ++i) {
    std::filesystem::last_write_time(photos.GetAsset(i).GetPath(),
                                     std::filesystem::file_time_type::clock::now());
  }
  strip.MoveTo(photos.GetCount() / 2);
  const auto start = Clock::now();
  waitUntilSharp();
  return SecondsSince(start);
}

void CompareCells() {
  const BenchPhotos photos = MakeBenchPhotos(kCells, kKinds[0].Width, kKinds[0].Height);
  const CScratchFolder scratch("cells");
  setenv("QT_SCALE_FACTOR", "2", 1);
  const auto figures = RunChild({kViewChild}, MakeHome(scratch.GetPath(), 0, photos.Folder)).Values;
  unsetenv("QT_SCALE_FACTOR");
  std::printf("  %d cells sharp at ratio 2: %.0f ms; plain loop on all cores: %.0f ms\n", kCells,
              figures[0] * 1e3, figures[1] * 1e3);
  // The neighbours of the large photo are decoded at the same time.
  PrintRatio("sharp cells / plain loop", figures[2], Limit::AtMost, 2);
}

/// In a child with a dense screen. The cells and the plain loop take turns.
void MeasureDenseScreen(CMainFrame& frame) {
  const std::string folder = frame.GetPhotoSet().GetAsset(0).GetFolder();
  std::array<std::vector<double>, 3> figures;
  for (int round = 0; round < kCellRounds; ++round) {
    figures[0].push_back(MeasureCells(frame));
    figures[1].push_back(DecodePlainly(folder, std::thread::hardware_concurrency()));
    figures[2].push_back(figures[0].back() / figures[1].back());
  }
  PrintChildFigures({Median(figures[0]), Median(figures[1]), Median(figures[2])});
}

}  // namespace

void RunViewChild() {
  char name[] = "vellumar_bench";
  char* arguments[] = {name, nullptr};
  int count = 1;
  CApplication application(count, arguments);
  SetSettings(std::make_unique<CRegistrySettings>());
  GetSettings()->SetBool("DontShowAddFolderTip", true);
  CConsent consent;
  SetMessageBox(&consent);
  const CFontTable fonts;
  CMainFrame frame;
  {
    CWindowedSearchProgress progress(false, false);
    CFolderSearch::GetInstance().Progress = &progress;
    if (!frame.Create(&OpenDataStores, progress)) throw std::runtime_error("the window doesn't open");
    CFolderSearch::GetInstance().Progress = nullptr;
  }
  frame.resize(kScreen.Width, kScreen.Height);
  frame.show();
  if (frame.devicePixelRatioF() > 1) return MeasureDenseScreen(frame);
  frame.GetStrip().MoveTo(0);
  std::array<std::vector<double>, 2> times;
  for (int round = 0; round < 2; ++round) {
    for (int k = 1; k < 2 * (kPhotos - 1); ++k) {
      const bool ahead = (k + round) % 2 == 0;
      times[ahead ? 0 : 1].push_back(MeasureStep(frame, k < kPhotos, ahead));
    }
    frame.GetStrip().MoveTo(0);
  }
  const StripMetrics& metrics = frame.GetStrip().GetLayout().GetMetrics();
  PrintChildFigures({metrics.Pitch / (1000 * metrics.PixelRatio), Median(times[0]), Median(times[1])});
}

void RunViewBench() {
  for (const PhotoKind& kind : kKinds) {
    const BenchPhotos made = MakeBenchPhotos(kPhotos, kind.Width, kind.Height);
    const std::vector<std::string> photos = ListPhotos(made.Folder);
    const Bytes photo = ReadFile(photos.front());
    std::printf("  %d by %d pixels\n", kind.Width, kind.Height);
    MeasureWayUp(photo, "a thumbnail", kThumbnailBox);
    MeasureWayUp(photo, "a screen", kScreen);
    MeasureLooks(photos);
    CompareSteps(made, kind.Width);
  }
  CompareCells();
}
