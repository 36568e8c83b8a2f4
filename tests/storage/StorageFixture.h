#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "base/Exceptions.h"
#include "storage/Storage.h"
#include "support/EnvironmentVariable.h"
#include "support/ScratchFolder.h"
#include "support/Sql.h"

using Mode = c4_Storage::Mode;

inline const c4_IntProp pNumber("Number");
inline const c4_StringProp pText("Text");
inline const c4_BytesProp pBytes("Bytes");

inline constexpr const char* kDescription = "Thing[Number:I,Text:S,Bytes:B]";

inline c4_Bytes ToBytes(std::string_view text) { return {text.begin(), text.end()}; }

/// The rows as "number text first-byte size".
inline std::string Show(const c4_View& view) {
  std::string shown;
  for (int i = 0; i < view.GetSize(); ++i) {
    const c4_Bytes bytes = pBytes.Get(view[i]);
    shown += std::to_string(pNumber.Get(view[i])) + " " + std::string(pText.Get(view[i])) + " " +
             std::string(bytes.begin(), bytes.begin() + !bytes.empty()) + std::to_string(bytes.size()) + "; ";
  }
  return shown;
}

/// The kind and the message of what the work raises, or "".
template <typename Work>
std::string FailureOf(const Work& work) {
  try {
    work();
    return "";
  } catch (const CDamagedStorage& error) {
    return "damaged: " + error.GetMessage();
  } catch (const CError& error) {
    return "error: " + error.GetMessage();
  } catch (const CStorageException& exception) {
    return "refused: " + exception.GetMessage();
  }
}

/// A folder of its own for each test, in memory where there is such a place: thousands of commits wait for no
/// disk there.
class CStorageTest : public testing::Test {
 protected:
  void WriteFile(const std::string& bytes) const { Scratch.Write("test.db", bytes); }

  /// All files of the folder with their bytes.
  std::map<std::string, std::string> ReadFolder() const {
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(Folder)) {
      files[entry.path().filename()] = entry.is_directory() ? "(folder)" : ReadBytes(entry.path());
    }
    return files;
  }

  std::vector<std::string> Sql(const std::string& statements) const { return RunSql(Path, statements); }

  const CEnvironmentVariable Temporary{"TMPDIR", std::filesystem::exists("/dev/shm") ? "/dev/shm" : "/tmp"};
  const CScratchFolder Scratch;
  const std::string Folder = Scratch.GetPath();
  const std::string Path = Folder + "/test.db";
};
