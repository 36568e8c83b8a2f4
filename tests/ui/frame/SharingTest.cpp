#include <gmock/gmock.h>

#include <QCheckBox>
#include <QProgressBar>

#include "base/Exceptions.h"
#include "base/Texts.h"
#include "platform/LocalTime.h"
#include "sharing/ServiceFixture.h"
#include "ui/frame/MainFrameFixture.h"
#include "ui/kit/InputBlock.h"
#include "ui/pages/ViewTabBar.h"

using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

namespace {

class Sharing : public CMainFrameFixture {
 protected:
  /// A session with two photos in a tab, which is in front, and a service whose first reply is to the probe.
  void Begin(std::vector<Reply> replies, ViewTabId tab = ViewTabId::Upload) {
    replies.insert(replies.begin(), Reply{});
    Server = std::make_unique<CScriptedServer>(replies);
    CSettingsRef().SetString("ServiceHost", Server->GetHost());
    CSettingsRef().SetString("Login", "");
    WritePhotos(2);
    Start();
    Parts().TabBar->SelectTab(tab);
    if (Page().GetCount() == 0) {
      for (int i = 0; i < 2; ++i) Frame->ToggleInTab(Photo(i), tab, false);
    }
    Messages.Texts.clear();
  }
  CPhotoTab& Page() { return *Parts().GetPhotoTab(Parts().TabBar->GetSelectedTab()); }
  void Click(CommandId id) {
    QTest::mouseClick(Parts().GetShownPage().ToolRow->GetButton(id), Qt::LeftButton);
  }

  static QWidget* Find(const QString& name) {
    for (QWidget* window : QApplication::topLevelWidgets()) {
      if (window->objectName() == name && window->isVisible()) return window;
    }
    return nullptr;
  }
  void LogInWhenAsked() {
    const auto isAsked = [] {
      const QWidget* dialog = Find(window_names::kLogin);
      return dialog != nullptr && dialog->isActiveWindow();
    };
    When(isAsked, [] {
      Press({Qt::Key_Return});
      Type("Ann B");
      Press({Qt::Key_Tab});
      Type("p&q");
      Press({Qt::Key_Return});
    });
  }

  const CEnvironmentVariable Host{"VELLUMAR_SERVICE_HOST", std::nullopt};
  std::unique_ptr<CScriptedServer> Server;
};

}  // namespace

TEST_F(Sharing, OnlyTheUploadWindowGetsInputAndWhatIsUploadedLeavesTheTab) {
  Begin({kMember, kTaken, Reply{}});  // the second photo gets no answer
  Press({Qt::Key_Home, Qt::Key_C});
  Type("by the sea");
  LogInWhenAsked();
  When([this] { return Server->GetRequests().size() == 4; },
       [this] {
         QWidget& window = *Find(window_names::kUploadProgress);
         EXPECT_FALSE(Frame->isEnabled());
         EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::ArrowCursor);
         EXPECT_GE(window.findChildren<QProgressBar*>()[1]->value(), 50);
         Click(CommandId::ClearAllUpload);
         Frame->OnCommand(CommandId::ClearAllUpload);  // as from an assistive tool
         QTest::keyClick(Frame.get(), Qt::Key_M, Qt::AltModifier);
         QTest::keyClick(&window, Qt::Key_M);
         EXPECT_EQ(Page().GetCount(), 1);
         QTest::keyClick(&window, Qt::Key_Escape);
       });
  testing::internal::CaptureStderr();
  Click(CommandId::UploadPhotos);
  EXPECT_THAT(testing::internal::GetCapturedStderr(), Not(HasSubstr("p&q")))
      << "the page can't be opened here";
  std::tm today{};
  platform::ToLocalTime(std::time(nullptr), today);
  EXPECT_THAT(Server->GetRequests()[2],
              HasSubstr(MakeParts(platform::FormatTime(today, "AlbumName=%B %#d, %Y;") +
                                  "WatermarkSize=0;Quantity=0;ProductID=2;DirectPrint=N;Caption=1000;"
                                  "Description=by the sea;")));
  EXPECT_EQ(Page().GetCount(), 1);
  EXPECT_FALSE(IsToEmail(1));
  EXPECT_THAT(Messages.Texts, ElementsAre(LoadText(StringId::LoginNeedsNameAndPassword)));
  EXPECT_TRUE(Frame->isEnabled());
  EXPECT_EQ(QApplication::overrideCursor(), nullptr);
  Click(CommandId::ClearAllUpload);
  EXPECT_EQ(Page().GetCount(), 0) << "input is back";
}

TEST_F(Sharing, ClosingEndsARunWhereverItIs) {
  const std::pair<std::vector<Reply>, std::size_t> rows[] = {
      {{}, 1}, {{Reply{}}, 2}, {{kMember, Reply{}}, 3}};
  for (const auto& [replies, request] : rows) {
    Begin(replies);
    if (request > 1) LogInWhenAsked();
    When(
        [&] {
          return Server->GetRequests().size() == request && (request > 1 || Find(window_names::kLogin));
        },
        [this] {
          Frame->close();
          EXPECT_TRUE(Frame->isVisible()) << "until the run has ended";
          if (QWidget* dialog = QApplication::activeModalWidget()) dialog->close();
        });
    Click(CommandId::UploadPhotos);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !Frame->isVisible(); })) << request;
    EXPECT_EQ(Page().GetCount(), 2);
    EXPECT_THAT(Messages.Texts, SizeIs(request > 1 ? 1 : 0)) << "no message would be answered";
  }
}

TEST_F(Sharing, AFailureElsewhereEndsARunAndGivesTheInputBack) {
  Begin({Reply{}});
  LogInWhenAsked();
  When([this] { return Server->GetRequests().size() == 2; }, [] { throw CError("broken"); });
  Click(CommandId::UploadPhotos);
  EXPECT_THROW(CApplication::GetInstance()->RethrowFailure(), CError);
  CSettingsRef().SetString("ServiceHost", "");
  Messages.Texts.clear();
  Click(CommandId::UploadPhotos);
  EXPECT_THAT(Messages.Texts, ElementsAre(LoadText(StringId::ServiceNotReachable)));
}

TEST_F(Sharing, PhotosAreMailedAfterADialogThatComesBackUntilItIsTickedAndConfirmed) {
  const CEnvironmentVariable data("XDG_DATA_HOME", InHome("data")), dirs("XDG_DATA_DIRS", InHome("share")),
      bus("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + InHome("bus")), path("PATH", InHome("bin"));
  Begin({}, ViewTabId::Email);
  for (const Qt::Key answer : {Qt::Key_Escape, Qt::Key_Return}) {
    EXPECT_THAT(Messages.Texts, IsEmpty());
    EXPECT_FALSE(GetSettings()->HasValue("DontShowEmailWarning"));
    When([] { return QApplication::activeModalWidget() != nullptr; },
         [answer] {
           QWidget* dialog = QApplication::activeModalWidget();
           dialog->findChild<QCheckBox*>()->setChecked(true);
           QTest::keyClick(dialog, answer);
         });
    Click(CommandId::SendPhotos);
  }
  Click(CommandId::SendPhotos);  // without the dialog
  EXPECT_THAT(Messages.Texts, AllOf(SizeIs(2), Each(LoadText(StringId::NoMailProgram))));
  EXPECT_EQ(Page().GetCount(), 2) << "they stay";
}
