#include <csignal>
#include <thread>

#include "app/Main.h"
#include "app/SessionFixture.h"
#include "app/SingleInstance.h"
#include "base/Exceptions.h"
#include "catalog/Catalog.h"
#include "platform/SpecialFolders.h"
#include "support/FileSizeLimit.h"
#include "ui/frame/MainFrame.h"
#include "ui/search/WindowedSearchProgress.h"

namespace {

CMainFrame* FindMainWindow() {
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (auto* frame = dynamic_cast<CMainFrame*>(window); frame != nullptr && frame->isVisible()) return frame;
  }
  return nullptr;
}

/// Runs the program until its main window shows and `then` has ended it.
int RunUntilShown(const std::function<void(CMainFrame&)>& then) {
  When([] { return FindMainWindow() != nullptr; }, [&then] { then(*FindMainWindow()); });
  return Main("");
}

class Program : public CSessionFixture {
 protected:
  int RunAndClose() {
    ForgetLastSession();
    return RunUntilShown([](CMainFrame& frame) {
      EXPECT_TRUE(frame.isMaximized());
      EXPECT_EQ(frame.windowTitle(), "Vellumar Photo Organizer");
      QTest::qWait(1);  // the progress window goes once the main window is there
      for (const QWidget* window : QApplication::topLevelWidgets()) {
        EXPECT_TRUE(window == &frame || !window->isVisible()) << window->objectName().toStdString();
      }
      frame.close();
    });
  }

  int Photos() const { return ReadNumber(CatalogPath(), "select count(*) from Asset"); }
  int Roll() const { return ReadNumber(CatalogPath(), "select CurrentRollID from Singletons"); }
};

}  // namespace

TEST_F(Program, BringsInPhotosOnceAndKeepsThem) {
  AddPhotos(3);
  EXPECT_EQ(RunAndClose(), 1);
  EXPECT_EQ(Photos(), 3);
  EXPECT_EQ(Roll(), 0);
  EXPECT_EQ(ReadNumber(CachePath(), "select count(*) from Cache where length(Thumbnail) > 0"), 3);

  EXPECT_EQ(RunAndClose(), 1);
  EXPECT_EQ(Photos(), 3);
  EXPECT_EQ(Roll(), 0);

  AddPhotos(2, "Pictures/more");
  EXPECT_EQ(RunAndClose(), 1);
  EXPECT_EQ(Photos(), 5);
  EXPECT_EQ(Roll(), 1);
  EXPECT_TRUE(Messages.Shown.empty());
}

TEST_F(Program, NewerCatalogGivesTwoMessagesAndIsLeftAlone) {
  { CCatalog().Open(CatalogPath()); }
  RunSql(CatalogPath(), "update Singletons set DBVersion = 11");
  const std::string before = ReadBytes(CatalogPath());
  EXPECT_EQ(Main(""), 0);
  EXPECT_EQ(ReadBytes(CatalogPath()), before);
  EXPECT_FALSE(FileExists(CatalogPath() + ".old[1]", false) || FileExists(CachePath(), false));
  ASSERT_EQ(Messages.Shown.size(), 2U);
  EXPECT_EQ(Messages.Shown[0].Parent, MessageParent::ProgressWindow);
  EXPECT_NE(Messages.Shown[0].Text.find("older version"), std::string::npos);
  EXPECT_EQ(Messages.Shown[1].Text,
            "The following problem has occurred:\n\n    Could not create the main window.\n\n"
            "Vellumar Photo Organizer will now exit.");
}

TEST_F(Program, ThrowableInTheLoopEndsItInOrder) {
  AddPhotos(1);
  EXPECT_EQ(RunUntilShown([](CMainFrame&) { throw CError("no strip %1"); }), 0);
  ASSERT_EQ(Messages.Shown.size(), 1U);
  EXPECT_NE(Messages.Shown[0].Text.find("    no strip %1\n\n"), std::string::npos)
      << "values aren't expanded";
  EXPECT_EQ(Photos(), 1);
}

TEST_F(Program, FullDiskIsToldOnceAndThePhotosAreShown) {
  AddPhotos(1);
  EXPECT_EQ(RunAndClose(), 1);
  // A start that would write: a new photo, one that has gone, another folder than the last time.
  AddPhotos(2, "Pictures/more");
  std::filesystem::remove(PicturesFolder() + "/photo0.jpg");
  RunSql(CatalogPath(), "update Singletons set CurrentPhotoFolder = '/gone'");
  {
    const CFileSizeLimit full(0);
    EXPECT_EQ(RunAndClose(), 1);
  }
  EXPECT_EQ(Messages.Shown.size(), 1U);
  EXPECT_EQ(Photos(), 1);
  EXPECT_EQ(RunAndClose(), 1);
  EXPECT_EQ(Photos(), 3);
}

TEST_F(Program, StopSignalClosesTheWindowInTheNormalWay) {
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
    EXPECT_EQ(RunUntilShown([signal](CMainFrame&) { ::raise(signal); }), 1);
  }
  ForgetLastSession();
  QTimer::singleShot(0, [] { ::raise(SIGTERM); });
  EXPECT_EQ(Main(""), 1) << "during the start it ends without a window";
}

TEST_F(Program, AnotherStartBringsTheWindowOfASearchToTheFront) {
  EXPECT_EQ(RunUntilShown([](CMainFrame& frame) {
              CWindowedSearchProgress progress(false, true, &frame);
              frame.activateWindow();
              EXPECT_TRUE(QTest::qWaitForWindowActive(&frame));
              std::thread second([] {
                CSingleInstance instance(platform::RuntimeFolder(), "");
                EXPECT_EQ(instance.Claim(), CSingleInstance::Claimed::ByOneInFront);
              });
              EXPECT_TRUE(QTest::qWaitFor([&] { return progress.GetWindow().isActiveWindow(); }, 3000))
                  << "where Esc stops it";
              second.join();
              frame.close();
            }),
            1);
}
