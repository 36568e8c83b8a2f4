#pragma once

#include <sys/resource.h>

#include <csignal>

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
