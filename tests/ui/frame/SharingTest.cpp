#include <gmock/gmock.h>

#include <QProgressBar>

#include "base/Exceptions.h"
#include "base/Texts.h"
#include "sharing/ServiceFixture.h"
#include "ui/frame/MainFrameFixture.h"
#include "ui/kit/InputBlock.h"
#include "ui/pages/ViewTabBar.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

const Reply kMember = MakeReply(200, "<x><ID>m 1</ID></x>");
const Reply kTaken = MakeReply(200, "");

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
  static void WhenShown(const QString& name, const std::function<void(QWidget&)>& then) {
    When([=] { return Find(name) != nullptr; }, [=] { then(*Find(name)); });
  }
  void LogInWhenAsked() {
    WhenShown(window_names::kLogin, [this](QWidget& dialog) {
      EXPECT_TRUE(QTest::qWaitFor([&] { return QApplication::activeWindow() == &dialog; }));
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
  Click(CommandId::UploadPhotos);
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

TEST_F(Sharing, PhotosGoToTheMailProgram) {
  const std::string mailer =
      Scratch.Write("bin/thunderbird",
                    "#!/bin/sh\nprintf '%s\\n' \"$@\" >\"$HOME/new\"\nmv \"$HOME/new\" \"$HOME/mail\"\n");
  std::filesystem::permissions(mailer, std::filesystem::perms::owner_all);
  Scratch.Write("data/applications/thunderbird.desktop", "[Desktop Entry]\nExec=" + mailer + " %u\n");
  Scratch.Write(".config/mimeapps.list",
                "[Default Applications]\nx-scheme-handler/mailto=thunderbird.desktop\n");
  const CEnvironmentVariable data("XDG_DATA_HOME", InHome("data")), cache("XDG_CACHE_HOME", std::nullopt),
      bus("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + InHome("bus")), path("PATH", "/usr/bin:/bin");
  Begin({}, ViewTabId::Email);
  Page().RemovePhoto(Photo(0));
  const auto send = [this](Qt::Key answer) {
    When([] { return QApplication::activeModalWidget() != nullptr; },
         [=] { QTest::keyClick(QApplication::activeModalWidget(), answer); });
    Click(CommandId::SendPhotos);
  };
  send(Qt::Key_Escape);
  EXPECT_FALSE(std::filesystem::exists(InHome(".cache/vellumar/mail")));
  send(Qt::Key_Return);
  EXPECT_TRUE(QTest::qWaitFor([this] { return std::filesystem::exists(InHome("mail")); }));
  EXPECT_THAT(ReadBytes(InHome("mail")), HasSubstr("subject=1001,"));
  EXPECT_EQ(Page().GetCount(), 1) << "it stays";
  EXPECT_THAT(Messages.Texts, IsEmpty());
}
