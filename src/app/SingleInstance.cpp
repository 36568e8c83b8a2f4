#include "app/SingleInstance.h"

#include <QElapsedTimer>
#include <QLocalSocket>
#include <QThread>
#include <QTimer>
#include <algorithm>

#include "base/Paths.h"
#include "ui/kit/QtText.h"

namespace {

constexpr int kPatience = 3000;  // milliseconds for the first process to answer
constexpr int kRetryPause = 50;  // milliseconds
constexpr qint64 kLongestRequest = 4096;
constexpr const char* kAnswer = "ok\n";

/// What a Wayland desktop gave this process for bringing a window to the front. X11 asks for nothing.
QByteArray GetActivationToken() { return qgetenv("XDG_ACTIVATION_TOKEN"); }

}  // namespace

CSingleInstance::CSingleInstance(const std::string& folder)
    : LockPath(folder.empty() ? "" : JoinPath(folder, "vellumar.lock")),
      SocketPath(ToQString(JoinPath(folder, "vellumar.socket"))) {
  QObject::connect(&Server, &QLocalServer::newConnection, &Server, [this] { Answer(); });
}

bool CSingleInstance::Claim() {
  if (LockPath.empty()) return true;
  QElapsedTimer timer;
  timer.start();
  do {
    if (TryLock() == Ownership::Mine) {
      Listen();
      return true;
    }
    // The first process may be about to listen, or about to end: look again until it is clear.
    if (AskFirstToShow(kPatience - static_cast<int>(timer.elapsed()))) return false;
    QThread::msleep(kRetryPause);
  } while (timer.elapsed() < kPatience);
  return false;
}

CSingleInstance::Ownership CSingleInstance::TryLock() {
  const std::error_code error = Lock.TryAcquire(LockPath);
  return error == std::errc::resource_unavailable_try_again ? Ownership::Anothers : Ownership::Mine;
}

void CSingleInstance::Listen() {
  QLocalServer::removeServer(SocketPath);  // of a process that was killed
  Server.setSocketOptions(QLocalServer::UserAccessOption);
  Server.listen(SocketPath);  // without it, a later process ends by itself after its patience
}

void CSingleInstance::Answer() {
  while (QLocalSocket* socket = Server.nextPendingConnection()) {
    socket->setParent(&Server);
    QObject::connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
    QTimer::singleShot(kPatience, socket, &QLocalSocket::abort);
    const auto read = [this, socket] {
      if (!socket->canReadLine() && socket->bytesAvailable() < kLongestRequest) return;
      const QByteArray token = socket->readLine(kLongestRequest).trimmed();
      socket->write(kAnswer);
      socket->disconnectFromServer();
      if (OnAnotherStart) OnAnotherStart(token);
    };
    QObject::connect(socket, &QLocalSocket::readyRead, socket, read);
    read();
  }
}

bool CSingleInstance::AskFirstToShow(int patience) const {
  QElapsedTimer timer;
  timer.start();
  const auto left = [&] { return std::max(1, patience - static_cast<int>(timer.elapsed())); };
  QLocalSocket socket;
  socket.connectToServer(SocketPath);
  if (!socket.waitForConnected(left())) return false;
  socket.write(GetActivationToken() + '\n');
  return socket.waitForReadyRead(left()) && socket.readAll().startsWith(kAnswer);
}
