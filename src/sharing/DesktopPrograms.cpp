#include "sharing/DesktopPrograms.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "base/Paths.h"
#include "base/ProfileFile.h"
#include "platform/Ascii.h"
#include "platform/Files.h"
#include "platform/Programs.h"
#include "platform/SpecialFolders.h"

namespace {

constexpr std::size_t kLargestFile = std::size_t{1} << 22;  // bytes of a list or an entry
constexpr std::string_view kEntryGroup = "Desktop Entry";

/// An empty one if it can't be read.
CProfileFile ReadProfile(const std::string& path) {
  std::vector<std::uint8_t> bytes;
  if (platform::ReadWholeFile(path, bytes, kLargestFile)) return {};
  return CProfileFile(std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
}

/// The parts of a list that aren't empty.
std::vector<std::string> Split(std::string_view list, char separator) {
  std::vector<std::string> parts;
  while (!list.empty()) {
    const std::size_t end = std::min(list.find(separator), list.size());
    if (end > 0) parts.emplace_back(list.substr(0, end));
    list.remove_prefix(std::min(end + 1, list.size()));
  }
  return parts;
}

std::string ToSmallLetters(std::string text) {
  for (char& letter : text) letter = static_cast<char>(platform::FoldByte(letter));
  return text;
}

std::vector<std::string> GetEntryFolders() {
  std::vector<std::string> folders = platform::DataFolders();
  for (std::string& folder : folders) folder += "/applications";
  return folders;
}

/// The files in which users, desktops and distributions choose programs, in the order of precedence.
std::vector<std::string> GetChoiceFiles() {
  const char* value = std::getenv("XDG_CURRENT_DESKTOP");
  const std::vector<std::string> desktops = Split(value != nullptr ? value : "", ':');
  std::vector<std::string> folders = platform::ConfigFolders();
  for (std::string& folder : GetEntryFolders()) folders.push_back(std::move(folder));
  std::vector<std::string> files;
  for (const std::string& folder : folders) {
    for (const std::string& desktop : desktops) {
      files.push_back(folder + "/" + ToSmallLetters(desktop) + "-mimeapps.list");
    }
    files.push_back(folder + "/mimeapps.list");
  }
  return files;
}

/// The first word of a command line, in which words with blanks stand in quotes.
std::string GetFirstWord(std::string_view command) {
  const bool isQuoted = command.starts_with('"');
  if (isQuoted) command.remove_prefix(1);
  return std::string(command.substr(0, command.find(isQuoted ? '"' : ' ')));
}

/// What an entry runs; empty if it is hidden, or its program isn't there.
std::string GetProgramOf(const CProfileFile& entry) {
  if (entry.GetValue(kEntryGroup, "Hidden") == "true") return {};
  const auto command = entry.GetValue(kEntryGroup, "Exec");
  return command ? platform::FindProgram(GetFirstWord(*command)) : std::string();
}

/// The places of an entry in a folder of entries: a "-" of its name may stand for a folder.
std::vector<std::string> GetPlaces(std::string name) {
  std::vector<std::string> places = {name};
  for (std::size_t dash = name.find('-'); dash != std::string::npos; dash = name.find('-', dash)) {
    name[dash] = '/';
    places.push_back(name);
  }
  return places;
}

/// What the entry of that name runs. The first one of the name hides those of the folders behind it.
std::string FindProgramOfEntry(const std::string& name) {
  for (const std::string& folder : GetEntryFolders()) {
    for (const std::string& place : GetPlaces(name)) {
      const std::string path = JoinPath(folder, place);
      platform::FileStatus status;
      if (!platform::GetStatus(path, status)) return GetProgramOf(ReadProfile(path));
    }
  }
  return {};
}

/// The first program of a list in one of the files that is there.
std::string FindInLists(const std::vector<std::string>& files, std::string_view group,
                        std::string_view type) {
  for (const std::string& file : files) {
    const auto list = ReadProfile(file).GetValue(group, type);
    if (!list) continue;
    for (const std::string& name : Split(*list, ';')) {
      if (std::string program = FindProgramOfEntry(name); !program.empty()) return program;
    }
  }
  return {};
}

}  // namespace

std::string FindDefaultProgram(std::string_view type) {
  const std::vector<std::string> choices = GetChoiceFiles();
  std::string program = FindInLists(choices, "Default Applications", type);
  if (program.empty()) program = FindInLists(choices, "Added Associations", type);
  if (!program.empty()) return program;
  std::vector<std::string> caches = GetEntryFolders();
  for (std::string& folder : caches) folder += "/mimeinfo.cache";
  return FindInLists(caches, "MIME Cache", type);
}
