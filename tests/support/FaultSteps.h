#pragma once

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <thread>

#include "platform/Faults.h"

/// Lets one step of the file layer fail, counted from 1, or that one and all after it.
class CFailingStep {
 public:
  explicit CFailingStep(int step, bool allAfter = false) {
    platform::SetFaultPlan([this, step, allAfter](std::string_view, std::string_view) {
      ++Steps;
      const bool fails = Steps == step || (allAfter && Steps > step);
      return fails ? make_error_code(std::errc::no_space_on_device) : std::error_code();
    });
  }
  ~CFailingStep() { platform::SetFaultPlan({}); }
  CFailingStep(const CFailingStep&) = delete;
  CFailingStep& operator=(const CFailingStep&) = delete;

  int GetSteps() const { return Steps; }

 private:
  int Steps = 0;
};

/// Limits how large any file may grow, which a full disk looks like from inside.
class CFileSizeLimit {
 public:
  explicit CFileSizeLimit(rlim_t bytes) : FormerHandler(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &Former);
    const rlimit limited{bytes, Former.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limited);
  }
  ~CFileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &Former);
    std::signal(SIGXFSZ, FormerHandler);
  }
  CFileSizeLimit(const CFileSizeLimit&) = delete;
  CFileSizeLimit& operator=(const CFileSizeLimit&) = delete;

 private:
  rlimit Former{};
  void (*FormerHandler)(int);
};

/// Runs `work` in a child process, which ends with its result. Returns what waitpid tells of the child.
inline int RunInChild(const std::function<int()>& work) {
  const pid_t child = ::fork();
  if (child == 0) ::_exit(work());
  int status = 0;
  EXPECT_EQ(::waitpid(child, &status, 0), child);
  return status;
}

/// Runs `work` in a child. Whether it was killed before it came to its end.
inline bool IsKilled(const std::function<void()>& work) {
  const int status = RunInChild([&] {
    work();
    return 0;
  });
  return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
}

/// Runs `work` in a child that is killed right before the given step. False if it came to its end first.
inline bool RunAndKillAtStep(int step, const std::function<void()>& work) {
  return IsKilled([&] {
    int steps = 0;
    platform::SetFaultPlan([&steps, step](std::string_view, std::string_view) {
      if (++steps == step) ::raise(SIGKILL);
      return std::error_code();
    });
    work();
  });
}

/// Runs `work` in a child that has no rights of root, and gives its result.
inline bool RunAsNobody(const std::function<bool()>& work) {
  const int status = RunInChild([&] {
    constexpr unsigned kNobody = 65534;
    if (::getuid() == 0 && (::setegid(kNobody) != 0 || ::seteuid(kNobody) != 0)) return 2;
    return work() ? 0 : 1;
  });
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

/// Runs `work` in a child and kills it `delay` after it has called `begins`. Whether it was killed before it
/// came to its end. Call it before the test makes threads.
inline bool RunAndKill(const std::function<void(const std::function<void()>& begins)>& work,
                       std::chrono::microseconds delay) {
  int ends[2] = {};
  EXPECT_EQ(::pipe(ends), 0);
  const pid_t child = ::fork();
  if (child < 0) throw std::runtime_error("no child");
  if (child == 0) {
    work([&ends] { ::close(ends[1]); });
    ::_exit(0);
  }
  ::close(ends[1]);
  char none = 0;
  EXPECT_EQ(::read(ends[0], &none, 1), 0) << "waits until the other end is closed";
  ::close(ends[0]);
  std::this_thread::sleep_for(delay);
  ::kill(child, SIGKILL);
  int status = 0;
  EXPECT_EQ(::waitpid(child, &status, 0), child);
  return WIFSIGNALED(status);
}
