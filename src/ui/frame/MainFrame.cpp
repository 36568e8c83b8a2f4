#include "ui/frame/MainFrame.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QPointer>
#include <QWheelEvent>

#include "base/Texts.h"
#include "discovery/FolderSearch.h"
#include "sets/QuerySet.h"
#include "ui/kit/Application.h"
#include "ui/kit/Colours.h"
#include "ui/kit/FontTable.h"
#include "ui/kit/Job.h"
#include "ui/kit/Pictures.h"
#include "ui/kit/QtText.h"
#include "ui/kit/WindowNames.h"
#include "ui/search/WindowedSearchProgress.h"

namespace {

constexpr int kMargin = 5;
constexpr QSize kMinimumSize(800, 600);
constexpr QSize kMinimumSizeOnSmallScreen(800, 550);
constexpr int kWheelStep = 120;  // eighths of a degree to a notch

}  // namespace

int FindFirstOfRoll(const CPhotoSet& set, std::int32_t rollId) {
  int first = 0;
  int end = set.GetCount();
  while (first < end) {  // roll numbers never fall in the order of import
    const int middle = first + (end - first) / 2;
    if (set.GetAsset(middle).GetRollID() < rollId) {
      first = middle + 1;
    } else {
      end = middle;
    }
  }
  return first;
}

CMainFrame::CMainFrame() : Strip(this), PhotoView(this) {
  setObjectName(window_names::kMainFrame);
  setFocusPolicy(Qt::StrongFocus);
  setAutoFillBackground(true);
  QPalette colors = palette();
  colors.setColor(QPalette::Window, colours::kWindow);
  setPalette(colors);
  Strip.OnPhotoRested = [this] { OnCurrentPhotoChanged(); };
}

CMainFrame::~CMainFrame() {
  Strip.SetPhotoSet(nullptr, 0);
  PhotoSet.reset();
}

bool CMainFrame::Create(const OpenStep& openDataStores, CWindowedSearchProgress& progress) {
  setWindowTitle(ToQString(LoadExpandedString(StringId::MainWindowTitle)));
  setWindowIcon(MakeProgramIcon());
  setMinimumSize(CFontTable::IsSmallScreen() ? kMinimumSizeOnSmallScreen : kMinimumSize);

  const auto stop = [&progress] { progress.Stop(); };
  bool opened = false;
  RunJob([&] { opened = openDataStores(Catalog, ThumbnailCache); }, stop);
  if (!opened) return false;

  const std::int32_t rollBefore = Catalog.GetCurrentRollID();
  std::string folder;
  RunJob([&] { folder = CFolderSearch::GetInstance().FirstSearch(); }, stop);

  PhotoSet = std::make_unique<CQuerySet>(&Catalog, SetKind::Available);
  PhotoSet->SetFolderFilter(folder);
  PhotoSet->Rebuild();
  Strip.SetPhotoSet(PhotoSet.get(), 0);
  if (Catalog.GetCurrentRollID() > rollBefore) ShowNewestRoll();
  return true;
}

void CMainFrame::ShowInFront() {
  showMaximized();
  raise();
  activateWindow();
  setFocus();
}

void CMainFrame::OnCurrentPhotoChanged() {
  RunAfterJob([frame = QPointer<CMainFrame>(this)] {
    if (!frame) return;
    const CAssetRecord record = frame->Strip.GetCurrentRecord();
    frame->PhotoView.SetPhoto(record.IsValid() ? record.GetPath() : std::string());
  });
}

void CMainFrame::ShowNewestRoll() { Strip.MoveTo(FindFirstOfRoll(*PhotoSet, Catalog.GetCurrentRollID())); }

void CMainFrame::closeEvent(QCloseEvent* event) {
  Closing = true;
  if (!IsJobRunning()) {
    if (CApplication* application = CApplication::GetInstance()) application->EndLoop(kNormalExitCode);
    return;
  }
  event->ignore();
  StopJob();
  RunAfterJob([frame = QPointer<CMainFrame>(this)] {
    if (frame) frame->close();
  });
}

void CMainFrame::resizeEvent(QResizeEvent*) {
  const int stripTop = height() - kStripHeight - kMargin;
  Strip.setGeometry(0, stripTop, width(), kStripHeight);
  PhotoView.setGeometry(kMargin, kMargin, width() - 2 * kMargin, stripTop - 2 * kMargin);
}

void CMainFrame::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Left:
      return Strip.MoveBy(-1);
    case Qt::Key_Right:
      return Strip.MoveBy(1);
    case Qt::Key_PageUp:
      return Strip.MovePage(true);
    case Qt::Key_PageDown:
      return Strip.MovePage(false);
    case Qt::Key_Home:
      return Strip.MoveTo(0);
    case Qt::Key_End:
      return Strip.MoveTo(Strip.GetCount() - 1);
    default:
      QWidget::keyPressEvent(event);
  }
}

void CMainFrame::wheelEvent(QWheelEvent* event) {
  WheelTravel += event->angleDelta().y();
  const int steps = WheelTravel / kWheelStep;
  WheelTravel -= steps * kWheelStep;
  if (steps != 0) Strip.MoveBy(-steps);
}

void CMainFrame::mousePressEvent(QMouseEvent*) { setFocus(); }
