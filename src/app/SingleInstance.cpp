#include "app/SingleInstance.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QLocalSocket>
#include <QStringList>
#include <QSysInfo>
#include <QThread>
#include <QTimer>
#include <algorithm>
#include <memory>

#include "base/Paths.h"
#include "platform/WholeFiles.h"
#include "ui/kit/QtText.h"

namespace {

constexpr int kPatience = 3000;       // milliseconds for the first process to answer
constexpr int kRetryPause = 50;       // milliseconds
constexpr qint64 kReadAhead = 65536;  // bytes of a request that wait to be read
constexpr const char* kAnswer = "ok\n";

// Content of a lock file: the holder's process id, host and socket, one per line.
constexpr int kNoteLines = 4;

}  // namespace

CSingleInstance::CSingleInstance(const std::string& runtimeFolder, const std::string& catalogPath)
    : SocketPath(JoinPath(runtimeFolder, runtimeFolder.empty() ? "" : "vellumar.socket")) {
  if (!runtimeFolder.empty()) Locks.push_back({JoinPath(runtimeFolder, "vellumar.lock"), {}});
  if (!catalogPath.empty()) Locks.push_back({catalogPath + ".lock", {}});
  const std::string file = platform::FollowLinks(catalogPath);
  if (file != catalogPath) Locks.push_back({file + ".lock", {}});
  QObject::connect(&Server, &QLocalServer::newConnection, &Server, [this] { Answer(); });
}

CSingleInstance::Claimed CSingleInstance::Claim(const StartRequest& request) {
  const std::string bytes = EncodeStartRequest(request);
  QElapsedTimer timer;
  timer.start();
  do {
    if (TryLocks()) {
      Listen();
      return Claimed::ByThis;
    }
    // The first process may not listen yet, or may be ending: try again until it answers or the lock is free.
    if (HandOver(bytes, kPatience - static_cast<int>(timer.elapsed()))) return Claimed::ByOneInFront;
    QThread::msleep(kRetryPause);
  } while (timer.elapsed() < kPatience);
  return Claimed::ByOneOutOfReach;
}

bool CSingleInstance::TryLocks() {
  for (NamedLock& lock : Locks) {
    if (lock.Lock.TryAcquire(lock.Path) != std::errc::resource_unavailable_try_again) continue;
    LookAtHolder(lock);
    for (NamedLock& other : Locks) other.Lock.Release();
    return false;
  }
  return true;
}

void CSingleInstance::LookAtHolder(const NamedLock& lock) {
  const QStringList note = ToQString(platform::FileLock::ReadNote(lock.Path)).split(u'\n');
  const bool isWhole = note.size() == kNoteLines;
  const bool isHere = isWhole && note[1] == QSysInfo::machineHostName();
  Holder = isWhole ? "process " + note[0].toStdString() : "another process";
  if (isWhole && !isHere) Holder += " on " + note[1].toStdString();
  HolderSocket = isHere ? note[2].toStdString() : "";
}

void CSingleInstance::Listen() {
  if (!SocketPath.empty()) {
    ListenPath = platform::ShortPath(SocketPath);
    const QString path = ToQString(ListenPath.Get());
    QLocalServer::removeServer(path);  // of a process that was killed
    Server.setSocketOptions(QLocalServer::UserAccessOption);
    Server.listen(path);  // if this fails, a later process gives up after kPatience
  }
  const std::string note = std::to_string(QCoreApplication::applicationPid()) + '\n' +
                           QSysInfo::machineHostName().toStdString() + '\n' + SocketPath + '\n';
  for (const NamedLock& lock : Locks) {
    if (lock.Lock.IsHeld()) lock.Lock.WriteNote(note);
  }
}

void CSingleInstance::Answer() {
  while (QLocalSocket* socket = Server.nextPendingConnection()) {
    socket->setParent(&Server);
    QObject::connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
    QTimer::singleShot(kPatience, socket, &QLocalSocket::abort);
    socket->setReadBufferSize(kReadAhead);
    const auto parser = std::make_shared<CStartRequestParser>();
    const auto read = [this, socket, parser] {
      const std::string bytes = socket->readAll().toStdString();
      if (bytes.empty()) return;
      const CStartRequestParser::State state = parser->Add(bytes);
      if (state == CStartRequestParser::State::Bad) return socket->abort();
      if (state != CStartRequestParser::State::Whole) return;
      socket->write(kAnswer);
      socket->disconnectFromServer();
      if (OnAnotherStart) OnAnotherStart(parser->GetRequest());
    };
    QObject::connect(socket, &QLocalSocket::readyRead, socket, read);
    read();
  }
}

bool CSingleInstance::HandOver(const std::string& request, int patience) const {
  QElapsedTimer timer;
  timer.start();
  const auto left = [&] { return std::max(1, patience - static_cast<int>(timer.elapsed())); };
  QLocalSocket socket;
  if (HolderSocket.empty()) return false;
  const platform::ShortPath path(HolderSocket);
  socket.connectToServer(ToQString(path.Get()));
  if (!socket.waitForConnected(left())) return false;
  socket.write(request.data(), static_cast<qint64>(request.size()));
  return socket.waitForReadyRead(left()) && socket.readAll().startsWith(kAnswer);
}
