// The two forms of settings files: whatever the text, parsing it loses no byte, and a value that was set
// reads back.

#include <cstdlib>

#include "base/ProfileFile.h"
#include "base/RegistryFile.h"

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const std::string value(text.substr(0, text.find_first_of(std::string_view("\r\n\0", 3))));

  CProfileFile profile(text);
  Require(profile.GetText() == text);
  profile.SetValue("prefs", "Login", text);
  Require(CProfileFile(profile.GetText()).GetValue("PREFS", "login") == value);
  static_cast<void>(ParseProfileInt(text));
  std::uint8_t room[4] = {};
  static_cast<void>(DecodeProfileStruct(text, room));

  CRegistryFile registry(text);
  registry.SetValue("Login", std::string(text));
  const auto stored = CRegistryFile(registry.GetText()).GetValue("login");
  Require(stored && *stored == RegistryValue(std::string(text)));
  return 0;
}
