#include "platform/Environment.h"

#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <list>
#include <memory>
#include <string_view>
#include <vector>

namespace platform {
namespace {

constexpr std::size_t kSpare = 2;  // the variable, and the null pointer that ends the list

struct Variables {
  std::vector<char*> List;
  std::list<std::string> Texts;  // of the variable, all that it has had: somebody may be reading an old one
};

/// Lives to the end of the process, as the environment does.
Variables& GetVariables() {
  static Variables& variables = *std::make_unique<Variables>().release();
  return variables;
}

}  // namespace

std::string GetActivationToken() {
  for (const char* name : {"XDG_ACTIVATION_TOKEN", "DESKTOP_STARTUP_ID"}) {
    const char* value = std::getenv(name);
    if (value != nullptr && *value != '\0') return value;
  }
  return {};
}

void ReserveVariable() {
  std::vector<char*>& list = GetVariables().List;
  list.clear();
  for (char** variable = environ; variable != nullptr && *variable != nullptr; ++variable) {
    list.push_back(*variable);
  }
  list.resize(list.size() + kSpare, nullptr);
  environ = list.data();
}

bool SetReservedVariable(const std::string& name, const std::string& value) {
  auto& [list, texts] = GetVariables();
  if (list.empty() || environ != list.data()) return false;
  const std::string start = name + "=";
  std::size_t place = 0;
  while (list[place] != nullptr && !std::string_view(list[place]).starts_with(start)) ++place;
  if (place + 1 >= list.size()) return false;
  texts.push_back(start + value);
  std::atomic_ref<char*>(list[place]).store(texts.back().data(), std::memory_order_release);
  return true;
}

}  // namespace platform
