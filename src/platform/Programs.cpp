#include "platform/Programs.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <string_view>
#include <thread>

#include "platform/Files.h"

namespace platform {
namespace {

bool IsProgram(const std::string& path) {
  FileStatus status;
  return !GetStatus(path, status) && status.IsRegular && ::access(path.c_str(), X_OK) == 0;
}

/// How a program is started. The first error of the calls that set it up is kept.
class SpawnSettings {
 public:
  SpawnSettings() {
    Keep(::posix_spawnattr_init(&Attributes));
    Keep(::posix_spawn_file_actions_init(&Actions));
    sigset_t none{}, all{};
    ::sigemptyset(&none);
    ::sigfillset(&all);
    Keep(::posix_spawnattr_setsigmask(&Attributes, &none));
    Keep(::posix_spawnattr_setsigdefault(&Attributes, &all));
    constexpr int kFlags = POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF;
    Keep(::posix_spawnattr_setflags(&Attributes, static_cast<short>(kFlags)));
    Keep(::posix_spawn_file_actions_addopen(&Actions, STDIN_FILENO, "/dev/null", O_RDWR, 0));
    Keep(::posix_spawn_file_actions_adddup2(&Actions, STDIN_FILENO, STDOUT_FILENO));
    Keep(::posix_spawn_file_actions_adddup2(&Actions, STDIN_FILENO, STDERR_FILENO));
    Keep(::posix_spawn_file_actions_addclosefrom_np(&Actions, STDERR_FILENO + 1));
  }
  ~SpawnSettings() {
    ::posix_spawn_file_actions_destroy(&Actions);
    ::posix_spawnattr_destroy(&Attributes);
  }
  SpawnSettings(const SpawnSettings&) = delete;
  SpawnSettings& operator=(const SpawnSettings&) = delete;

  int Spawn(const char* path, char* const* arguments, pid_t& child) const {
    return Error != 0 ? Error : ::posix_spawn(&child, path, &Actions, &Attributes, arguments, environ);
  }

 private:
  void Keep(int error) {
    if (Error == 0) Error = error;
  }

  posix_spawnattr_t Attributes{};
  posix_spawn_file_actions_t Actions{};
  int Error = 0;
};

/// Takes notice of the child's end, so that it doesn't stay in the table of processes.
void AwaitEnd(pid_t child) {
  try {
    std::thread([child] { ::waitpid(child, nullptr, 0); }).detach();
  } catch (const std::system_error&) {
    // It leaves the table with this process.
  }
}

}  // namespace

std::string FindProgram(const std::string& name) {
  if (name.find('/') != std::string::npos) return IsProgram(name) ? name : std::string();
  const char* value = std::getenv("PATH");
  std::string_view folders = value != nullptr ? value : "/usr/local/bin:/usr/bin:/bin";
  while (!folders.empty() && !name.empty()) {
    const std::size_t end = std::min(folders.find(':'), folders.size());
    std::string path = std::string(folders.substr(0, end)) + "/" + name;
    if (folders.starts_with('/') && IsProgram(path)) return path;
    folders.remove_prefix(std::min(end + 1, folders.size()));
  }
  return {};
}

std::error_code StartProgram(const std::vector<std::string>& command) {
  if (command.empty()) return make_error_code(std::errc::invalid_argument);
  std::vector<char*> arguments;
  arguments.reserve(command.size() + 1);
  for (const std::string& argument : command) arguments.push_back(const_cast<char*>(argument.c_str()));
  arguments.push_back(nullptr);
  pid_t child = 0;
  const int error = SpawnSettings().Spawn(arguments[0], arguments.data(), child);
  if (error != 0) return {error, std::generic_category()};
  AwaitEnd(child);
  return {};
}

}  // namespace platform
