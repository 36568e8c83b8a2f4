#include "app/Arguments.h"

#include <string_view>

#include "base/FileAddress.h"

namespace {

constexpr std::string_view kActiveDiskSwitch = "/activedisk";
constexpr std::string_view kEndOfOptions = "--";

void TakeOption(const std::string& word, Arguments& arguments) {
  if (word == "--help") {
    arguments.WantsHelp = true;
  } else if (word == "--version") {
    arguments.WantsVersion = true;
  } else if (arguments.Unknown.empty()) {
    arguments.Unknown = word;
  }
}

}  // namespace

Arguments ParseArguments(const std::vector<std::string>& words) {
  Arguments arguments;
  bool mayBeOption = true;
  for (const std::string& word : words) {
    const bool isSwitch = mayBeOption && word.find(kActiveDiskSwitch) != std::string::npos;
    const bool isOption = mayBeOption && word.size() > 1 && word.starts_with('-');
    if (isSwitch) arguments.ActiveDisk = true;
    if (mayBeOption && word == kEndOfOptions) {
      mayBeOption = false;
    } else if (isOption) {
      if (!isSwitch) TakeOption(word, arguments);
    } else if (!word.empty() && !(isSwitch && word == kActiveDiskSwitch)) {
      const std::string path = ReadFileAddress(word);
      arguments.Paths.push_back(path.empty() ? word : path);
    }
  }
  return arguments;
}
