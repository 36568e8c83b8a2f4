#pragma once

#include <functional>
#include <string>
#include <vector>

struct MailMessage {
  std::string Subject;                   // one line of UTF-8
  std::string Text;                      // UTF-8, lines end with LF
  std::vector<std::string> Attachments;  // paths of files, whose names are what the recipient sees
};

/// Opens a new mail in the user's mail program, which goes on by itself. False if it doesn't take this one.
using MailComposer = std::function<bool(const MailMessage&)>;

/// The ways that this desktop has to open a mail, the best one first. None without a mail program.
std::vector<MailComposer> FindMailComposers();
