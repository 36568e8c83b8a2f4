#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

/// A private folder of a test, removed with all that is in it when the object goes.
class CScratchFolder {
 public:
  CScratchFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "vellumar-test-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no scratch folder");
    Path = pattern;
  }
  ~CScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(Path, ignored);
  }
  CScratchFolder(const CScratchFolder&) = delete;
  CScratchFolder& operator=(const CScratchFolder&) = delete;

  const std::string& GetPath() const { return Path; }

  /// The path of a name in the folder; the folders above the name are made.
  std::string File(const std::string& name) const {
    const std::filesystem::path path = Path + "/" + name;
    std::filesystem::create_directories(path.parent_path());
    return path.string();
  }

  std::string Write(const std::string& name, const std::string& bytes) const {
    const std::string path = File(name);
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
  }

 private:
  std::string Path;
};

/// In order; none if there is no such folder.
inline std::vector<std::string> NamesIn(const std::string& folder) {
  std::vector<std::string> names;
  std::error_code missing;
  for (const auto& entry : std::filesystem::directory_iterator(folder, missing)) {
    names.push_back(entry.path().filename().string());
  }
  std::ranges::sort(names);
  return names;
}

inline std::string ReadBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}
