#include <cstdio>
#include <exception>

#include "KVLCodeEnvAccess.h"
#include "KVLOptions.h"
#include "KVLScript.h"
#include "KVLShellResult.h"
#include "KVLTerminal.h"
#include "MRBHost.h"

namespace {

constexpr int LoadFailure = 1;

void WriteReport(int, const char* text, int) {
  std::fprintf(stderr, "kvl: %s\n", text);
}

// A module that is not installed is no concern of a user who does not use it.
void WriteReportUnlessLoadFailure(int level, const char* text, int flags) {
  if (level != LoadFailure) WriteReport(level, text, flags);
}

long Run(const KVLOptions& options) {
  switch (options.source) {
    case KVLOptions::Text:
      return KVLRunText(options.text);
    case KVLOptions::File:
      return KVLRunFile(options.text);
    case KVLOptions::Standard:
      return KVLRunLines(stdin, "<stdin>");
    case KVLOptions::Prompt:
      if (!KVLIsInputTerminal()) return KVLRunLines(stdin, "<stdin>");
      KVLRunPrompt();
      return KVLResult_Success;
  }
  return KVLResult_Failure;
}

int RunProgram(const KVLOptions& options) {
  (void)MRBSetTraceSink(options.isVerbose ? WriteReport : WriteReportUnlessLoadFailure);
  (void)KVLCodeEnvAccess::Load();  // each failure has been reported
  int exitCode = KVLExitCodeOf(Run(options));
  (void)KVLCodeEnvAccess::Unload();
  if ((std::fflush(stdout) != 0 || std::ferror(stdout)) && exitCode == KVLExit_Done) {
    std::fprintf(stderr, "kvl: cannot write to standard output\n");
    exitCode = KVLExit_No;
  }
  return exitCode;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    KVLOptions options;
    switch (options.Read(argc, argv)) {
      case KVLOptions::Run:
        return RunProgram(options);
      case KVLOptions::ExitDone:
        return KVLExit_Done;
      case KVLOptions::ExitWithUsage:
        return KVLExit_Usage;
    }
  } catch (const std::exception& exception) {
    std::fprintf(stderr, "kvl: %s\n", exception.what());
  }
  return KVLExit_No;
}
