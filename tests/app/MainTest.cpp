#include <csignal>

#include "app/Main.h"
#include "app/SessionFixture.h"
#include "base/Exceptions.h"
#include "catalog/Catalog.h"
#include "support/FaultSteps.h"
#include "ui/frame/MainFrame.h"

namespace {

CMainFrame* FindMainWindow() {
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (auto* frame = dynamic_cast<CMainFrame*>(window); frame != nullptr && frame->isVisible()) return frame;
  }
  return nullptr;
}

class Program : public CSessionFixture {
 protected:
  /// Runs the program until its main window shows and `then` has ended it.
  static int RunUntilShown(const std::function<void(CMainFrame&)>& then) {
    ForgetLastSession();
    When([] { return FindMainWindow() != nullptr; }, [&then] { then(*FindMainWindow()); });
    return Main({});
  }
  static int RunAndClose() {
    return RunUntilShown([](CMainFrame& frame) { frame.close(); });
  }
  std::string CountPhotos() const { return RunSqlForOne(CatalogPath(), "select count(*) from Asset"); }
};

}  // namespace

TEST_F(Program, NewerCatalogGivesTwoMessagesAndIsLeftAlone) {
  { CCatalog().Open(CatalogPath()); }
  RunSql(CatalogPath(), "update Singletons set DBVersion = 11");
  const std::string before = ReadBytes(CatalogPath());
  EXPECT_EQ(Main({}), 0);
  EXPECT_EQ(ReadBytes(CatalogPath()), before);
  EXPECT_FALSE(FileExists(CachePath(), false));
  ASSERT_EQ(Messages.Texts.size(), 2U);
  EXPECT_NE(Messages.Texts[0].find("older version"), std::string::npos);
  EXPECT_NE(Messages.Texts[1].find("Could not create the main window."), std::string::npos);
}

TEST_F(Program, ThrowableInTheLoopEndsItInOrder) {
  AddPhotos(1);
  EXPECT_EQ(RunUntilShown([](CMainFrame&) { throw CError("no strip %1"); }), 0);
  ASSERT_EQ(Messages.Texts.size(), 1U);
  EXPECT_NE(Messages.Texts[0].find("    no strip %1\n\n"), std::string::npos) << "values aren't expanded";
  EXPECT_EQ(CountPhotos(), "1");
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
  EXPECT_EQ(Messages.Texts.size(), 1U);
  EXPECT_EQ(CountPhotos(), "1");
  EXPECT_EQ(RunAndClose(), 1);
  EXPECT_EQ(CountPhotos(), "3");
}

TEST_F(Program, StopSignalClosesTheWindowInTheNormalWay) {
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
    EXPECT_EQ(RunUntilShown([signal](CMainFrame&) { ::raise(signal); }), 1);
  }
  ForgetLastSession();
  QTimer::singleShot(0, [] { ::raise(SIGTERM); });
  EXPECT_EQ(Main({}), 1) << "during the start it ends without a window";
}
