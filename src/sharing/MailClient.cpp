#include "sharing/MailClient.h"

#include <algorithm>

#include "base/Messages.h"
#include "sharing/MailComposers.h"
#include "sharing/MailFolder.h"
#include "sharing/MailNames.h"

void CMailClient::Send(const std::vector<std::string>& paths, const std::optional<std::string>& subject,
                       CEmailProgress* progress) {
  if (paths.empty()) return;
  const auto tell = [progress](StringId text) {
    if (progress != nullptr) progress->End();
    ShowMessageId(text);
  };
  const std::vector<MailComposer> composers = FindMailComposers();
  bool isOpened = false;
  if (!composers.empty()) {
    CMailFolder folder;
    const auto attachments = MakeEmailCopies(paths, folder.GetPath(), progress);
    if (!attachments) return;
    if (attachments->empty()) return tell(StringId::NoPhotoCanBeEmailed);
    const MailMessage message{GetMailSubject(paths, subject), GetMailFooter(), *attachments};
    isOpened = std::ranges::any_of(composers, [&](const MailComposer& open) { return open(message); });
    if (isOpened) folder.Keep();
  }
  if (!isOpened) tell(StringId::NoMailProgram);
}
