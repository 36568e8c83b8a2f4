#include "ChildRun.h"

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace {

constexpr const char* kMark = "child-figures";

void SetHome(const std::string& home) {
  const std::filesystem::path folder = home;
  const std::array<std::pair<const char*, std::filesystem::path>, 5> places{
      {{"HOME", folder},
       {"XDG_DATA_HOME", folder / "data"},
       {"XDG_CONFIG_HOME", folder / "config"},
       {"XDG_CACHE_HOME", folder / "cache"},
       {"XDG_RUNTIME_DIR", folder / "runtime"}}};
  for (const auto& [name, path] : places) {
    std::filesystem::create_directories(path);
    setenv(name, path.c_str(), 1);
  }
  std::filesystem::permissions(folder / "runtime", std::filesystem::perms::owner_all);
  setenv("QT_QPA_PLATFORM", "offscreen", 1);
  setenv("QT_LOGGING_RULES", "default.warning=false", 1);  // on what that platform can't do
}

[[noreturn]] void BecomeChild(const std::vector<std::string>& arguments, const std::string& home,
                              int output) {
  try {
    SetHome(home);
    std::vector<std::string> owned{"vellumar_bench"};
    owned.insert(owned.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    pointers.reserve(owned.size() + 1);
    for (std::string& argument : owned) pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    if (dup2(output, STDOUT_FILENO) >= 0) execv("/proc/self/exe", pointers.data());
  } catch (const std::exception& problem) {
    std::fprintf(stderr, "%s\n", problem.what());
  }
  _exit(127);
}

std::string ReadAll(int descriptor) {
  std::string text;
  std::array<char, 4096> block{};
  for (;;) {
    const ssize_t count = read(descriptor, block.data(), block.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return text;
    text.append(block.data(), static_cast<std::size_t>(count));
  }
}

double ReadPeakMegabytes() {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.rfind("VmHWM:", 0) == 0) return std::strtod(line.c_str() + 6, nullptr) / 1024;
  }
  throw std::runtime_error("the peak of memory can't be read");
}

}  // namespace

std::string MakeHome(const std::string& folder, int number, const std::string& photos) {
  const std::filesystem::path home = std::filesystem::path(folder) / std::to_string(number);
  std::filesystem::create_directories(home / "config");
  std::ofstream(home / "config" / "user-dirs.dirs") << "XDG_PICTURES_DIR=\"" << photos << "\"\n";
  return home.string();
}

ChildFigures RunChild(const std::vector<std::string>& arguments, const std::string& home) {
  std::array<int, 2> ends{};
  if (pipe(ends.data()) != 0) throw std::runtime_error("no pipe");
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("no process");
  if (child == 0) BecomeChild(arguments, home, ends[1]);
  close(ends[1]);
  const std::string text = ReadAll(ends[0]);
  close(ends[0]);
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  const std::size_t mark = text.find(kMark);
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0 || mark == std::string::npos) {
    throw std::runtime_error("the run \"" + arguments.front() + "\" failed: " + text);
  }
  std::istringstream figures(text.substr(mark + std::string(kMark).size()));
  ChildFigures result;
  figures >> result.PeakMegabytes;
  for (double value = 0; figures >> value;) result.Values.push_back(value);
  return result;
}

void PrintChildFigures(const std::vector<double>& values) {
  std::printf("%s %.3f", kMark, ReadPeakMegabytes());
  for (const double value : values) std::printf(" %.6f", value);
  std::printf("\n");
}
