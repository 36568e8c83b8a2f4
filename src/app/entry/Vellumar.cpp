#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "app/Arguments.h"
#include "app/Main.h"
#include "base/Texts.h"
#include "platform/Environment.h"
#include "ui/kit/Application.h"
#include "ui/kit/MessageBox.h"

namespace {

constexpr int kNoDisplayExitCode = 2;
constexpr int kUsageExitCode = 2;

/// Names the program's entry in the menu, its icon and its windows to the desktop; also used in packaging/.
constexpr QStringView kDesktopId = u"example.vellumar.Vellumar";

/// The toolkit ends the process with a core dump when it finds no display. This says what is wrong instead.
void OnStartMessage(QtMsgType type, const QMessageLogContext&, const QString& message) {
  if (type == QtFatalMsg) {
    std::fputs("vellumar: there is no display to show windows on.\n", stderr);
    std::_Exit(kNoDisplayExitCode);
  }
  std::fprintf(stderr, "%s\n", qPrintable(message));
}

void PrintHelp() {
  std::puts(
      "usage: vellumar [OPTION...] [PHOTO or FOLDER...]\n"
      "\n"
      "Finds the photos in your pictures folder and shows them. Photos and folders that are\n"
      "named are shown first; what isn't in your photo folders is offered to be added.\n"
      "\n"
      "  /activedisk  run from a removable disk: photos are beside the program's folder,\n"
      "               catalog and settings in it\n"
      "  --help       show this and end\n"
      "  --version    show the version and end\n"
      "  --           what follows are paths");
}

/// Prints what the arguments ask for; false if they ask for nothing of the kind.
bool AnswerOnTerminal(const Arguments& arguments) {
  if (arguments.WantsHelp) {
    PrintHelp();
  } else if (arguments.WantsVersion) {
    const ProductInfo& product = GetProductInfo();
    std::printf("%s %s\n", product.ProductName.c_str(), GetVersionText(product).c_str());
  }
  return arguments.WantsHelp || arguments.WantsVersion;
}

int RefuseOption(const std::string& option) {
  std::fprintf(stderr, "vellumar: unknown option \"%s\"\nTry \"vellumar --help\".\n", option.c_str());
  return kUsageExitCode;
}

}  // namespace

int main(int count, char** arguments) {
  const std::vector<char*> all(arguments, arguments + count);
  const Arguments asked = ParseArguments({all.begin() + 1, all.end()});
  if (AnswerOnTerminal(asked)) return EXIT_SUCCESS;
  if (asked.Unknown.starts_with("--")) return RefuseOption(asked.Unknown);

  // The toolkit takes its own options, such as "-platform", out of the words before "--", and keeps those
  // words.
  const auto endOfOptions = std::find(all.begin(), all.end(), std::string_view("--"));
  std::vector<char*> words(all.begin(), endOfOptions);
  int wordCount = static_cast<int>(words.size());
  words.push_back(nullptr);
  platform::ReserveVariable();
  const std::string activationToken = platform::GetActivationToken();  // the toolkit will take it away
  const QtMessageHandler usual = qInstallMessageHandler(OnStartMessage);
  CApplication application(wordCount, words.data());
  qInstallMessageHandler(usual);

  std::vector<std::string> left(words.begin() + 1, words.begin() + wordCount);
  left.insert(left.end(), endOfOptions, all.end());
  const Arguments commandLine = ParseArguments(left);
  if (!commandLine.Unknown.empty()) return RefuseOption(commandLine.Unknown);

  QGuiApplication::setApplicationDisplayName(QString());
  QGuiApplication::setDesktopFileName(kDesktopId.toString());
  CWindowMessageBox messageBox;
  SetMessageBox(&messageBox);
  const int exitCode = Main(commandLine, activationToken);
  SetMessageBox(nullptr);
  return exitCode;
}
