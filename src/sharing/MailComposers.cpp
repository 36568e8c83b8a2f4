#include "sharing/MailComposers.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

#include "base/Paths.h"
#include "platform/EmailPortal.h"
#include "platform/Programs.h"
#include "sharing/DesktopPrograms.h"

namespace {

constexpr std::string_view kMailAddresses = "x-scheme-handler/mailto";

/// The text with "%" and two digits for each byte that has a meaning in addresses, but for those in `kept`.
std::string Encode(std::string_view text, std::string_view kept = {}) {
  constexpr std::string_view kPlain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string encoded;
  for (const char letter : text) {
    const auto byte = static_cast<unsigned char>(letter);
    if (kPlain.find(letter) != std::string_view::npos || kept.find(letter) != std::string_view::npos) {
      encoded += letter;
    } else {
      (encoded += '%') += {kDigits[byte >> 4U], kDigits[byte & 0x0FU]};
    }
  }
  return encoded;
}

/// An argument of Thunderbird: fields between commas. It decodes each that isn't in quotes, cuts the list of
/// attachments at the commas, and decodes the address of each file.
std::string MakeThunderbirdFields(const MailMessage& message) {
  std::string files;
  for (const std::string& path : message.Attachments) {
    if (!files.empty()) files += ',';
    files += "file://" + Encode(path, "/");
  }
  return "subject=" + Encode(message.Subject) + ",body=" + Encode(message.Text) +
         ",attachment=" + Encode(files, "/:");
}

bool ComposeByThunderbird(const std::string& program, const MailMessage& message) {
  return !platform::StartProgram({program, "-compose", MakeThunderbirdFields(message)});
}

/// The services put the paths of files into an address as they are.
bool FitsIntoAddress(const std::string& path) { return path.find_first_of("%&#?") == std::string::npos; }

bool ComposeByPortal(const MailMessage& message) {
  return std::ranges::all_of(message.Attachments, FitsIntoAddress) &&
         platform::ComposeByEmailPortal(message.Subject, message.Text, message.Attachments);
}

/// The subject stands in an address: as an option a few of them would be taken for others.
bool ComposeByXdgEmail(const std::string& program, const MailMessage& message) {
  std::string text;
  for (const char letter : message.Text) text += letter == '\n' ? "\r\n" : std::string(1, letter);
  std::vector<std::string> command = {program, "--utf8"};
  for (const std::string& path : message.Attachments) command.insert(command.end(), {"--attach", path});
  command.push_back("mailto:?subject=" + Encode(message.Subject) + "&body=" + Encode(text));
  return !platform::StartProgram(command);
}

}  // namespace

std::vector<MailComposer> FindMailComposers() {
  std::vector<MailComposer> composers;
  const auto add = [&composers](auto compose, const std::string& program) {
    composers.emplace_back([=](const MailMessage& message) { return compose(program, message); });
  };
  const std::string mailer = FindDefaultProgram(kMailAddresses);
  // Before the portal, which hands mails over in addresses: Thunderbird takes no attachments out of those.
  if (SplitPath(mailer).Name.starts_with("thunderbird")) add(&ComposeByThunderbird, mailer);
  if (platform::HasEmailPortal()) composers.emplace_back(&ComposeByPortal);
  const std::string script = platform::FindProgram("xdg-email");
  // Without a mail program it would open a web browser.
  const bool hasMailer = !mailer.empty() || std::getenv("MAILER") != nullptr;
  if (hasMailer && !script.empty()) add(&ComposeByXdgEmail, script);
  return composers;
}
