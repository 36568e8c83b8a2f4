#include "ui/kit/OpenAddress.h"

#include <QDesktopServices>
#include <QGuiApplication>
#include <QUrl>

#include "base/Folders.h"
#include "base/Messages.h"
#include "base/Texts.h"
#include "platform/Programs.h"

namespace {

/// Keeps the toolkit from writing warnings, which name the address, to the session's log.
class CSilentToolkit {
 public:
  CSilentToolkit()
      : Former(qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {})) {}
  ~CSilentToolkit() { qInstallMessageHandler(Former); }
  CSilentToolkit(const CSilentToolkit&) = delete;
  CSilentToolkit& operator=(const CSilentToolkit&) = delete;

 private:
  const QtMessageHandler Former;
};

/// Hands an address to the desktop's opener. That gets nothing to write to: whatever it says would come into
/// this program's log.
bool Open(const QUrl& url) {
  // Only the toolkit can ask a Wayland desktop to let the other program come to the front.
  const bool isWayland = QGuiApplication::platformName().startsWith(u"wayland");
  const std::string opener = isWayland ? std::string() : platform::FindProgram("xdg-open");
  if (opener.empty()) return QDesktopServices::openUrl(url);
  return !platform::StartProgram({opener, url.toEncoded().toStdString()});
}

void TellFailure(const std::string& address) {
  ShowMessage(FormatString(StringId::CannotOpenAddress, address));
}

}  // namespace

void OpenWebPage(const std::string& address) {
  const QUrl url = QUrl::fromEncoded(QByteArray::fromStdString(address), QUrl::StrictMode);
  if (!url.isValid() || !Open(url)) TellFailure(address);
}

bool TryOpenWebPage(const std::string& address) {
  QByteArray encoded = QByteArray::fromStdString(address);
  encoded.replace('%', "%25").replace('#', "%23");
  const QUrl url = QUrl::fromEncoded(encoded, QUrl::TolerantMode);
  const CSilentToolkit silent;
  return url.isValid() && Open(url);
}

void OpenFile(const std::string& path) {
  const QByteArray encoded = QByteArray::fromStdString(GetAddressOfFile(path));
  if (!FileExists(path, false) || !Open(QUrl::fromEncoded(encoded))) TellFailure(path);
}

std::string GetAddressOfFile(const std::string& path) {
  // Made of the bytes: a path through QString loses those that aren't text.
  return "file://" + QByteArray::fromStdString(path).toPercentEncoding("/").toStdString();
}
