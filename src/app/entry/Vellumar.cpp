#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "app/Main.h"
#include "base/Texts.h"
#include "ui/kit/Application.h"
#include "ui/kit/MessageBox.h"

namespace {

constexpr int kNoDisplayExitCode = 2;

/// The toolkit ends the process with a core dump when it finds no display. This says what is wrong instead.
void OnStartMessage(QtMsgType type, const QMessageLogContext&, const QString& message) {
  if (type == QtFatalMsg) {
    std::fputs("vellumar: there is no display to show windows on.\n", stderr);
    std::_Exit(kNoDisplayExitCode);
  }
  std::fprintf(stderr, "%s\n", qPrintable(message));
}

bool HasArgument(int count, char** arguments, const char* wanted) {
  for (int i = 1; i < count; ++i) {
    if (std::strcmp(arguments[i], wanted) == 0) return true;
  }
  return false;
}

void PrintHelp() {
  std::puts(
      "usage: vellumar [/activedisk]\n"
      "\n"
      "Finds the photos in your pictures folder and shows them.\n"
      "\n"
      "  /activedisk  run from a removable disk: photos are beside the program's folder,\n"
      "               catalog and settings in it\n"
      "  --help       show this and end\n"
      "  --version    show the version and end");
}

/// Prints what the arguments ask for; false if they ask for nothing of the kind.
bool AnswerOnTerminal(int count, char** arguments) {
  if (HasArgument(count, arguments, "--help")) {
    PrintHelp();
    return true;
  }
  if (HasArgument(count, arguments, "--version")) {
    const ProductInfo& product = GetProductInfo();
    std::printf("%s %s\n", product.ProductName.c_str(), GetVersionText(product).c_str());
    return true;
  }
  return false;
}

}  // namespace

int main(int count, char** arguments) {
  if (AnswerOnTerminal(count, arguments)) return EXIT_SUCCESS;

  const QtMessageHandler usual = qInstallMessageHandler(OnStartMessage);
  CApplication application(count, arguments);
  qInstallMessageHandler(usual);
  QGuiApplication::setApplicationDisplayName(QString());
  QGuiApplication::setDesktopFileName(QStringLiteral("vellumar"));

  CWindowMessageBox messageBox;
  SetMessageBox(&messageBox);
  const int exitCode = Main(application.arguments().mid(1).join(QLatin1Char(' ')).toStdString());
  SetMessageBox(nullptr);
  return exitCode;
}
