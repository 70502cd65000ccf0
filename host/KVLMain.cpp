#include <cstdio>
#include <cstdlib>
#include <exception>

#include "KVLInterrupt.h"
#include "KVLModules.h"
#include "KVLOptions.h"
#include "KVLOutput.h"
#include "KVLPlatform.h"
#include "KVLPrompt.h"
#include "KVLScript.h"
#include "KVLSession.h"
#include "KVLShellResult.h"

namespace {

bool HasColors(KVLOptions::Colors colors) {
  if (colors != KVLOptions::Auto) return colors == KVLOptions::Always;
  const char* const noColor = std::getenv("NO_COLOR");
  if (noColor && *noColor) return false;
  return KVLIsTerminal(KVLStandardOutput) && KVLIsTerminal(KVLStandardError) &&
         KVLTerminalTakesCodes();
}

unsigned int FlagsOf(const KVLOptions& options) {
  unsigned int flags = 0;
  if (options.isJson) flags |= KVLShellFlag_Json;
  if (HasColors(options.colors)) flags |= KVLShellFlag_Color;
  return flags;
}

bool IsPerson(const KVLOptions& options) {
  return options.source == KVLOptions::Prompt && KVLIsTerminal(KVLStandardInput);
}

// What every line of it begins with, each word put in its place: shells complete whole arguments.
int Complete(const KVLSession& session, const std::string& text) {
  const KVLShellEntries::Completion completion = session.GetShell().Complete(text);
  const std::string kept = text.substr(0, static_cast<std::size_t>(completion.replaceFrom));
  for (const std::string& word : completion.words)
    std::printf("%s%s\n", kept.c_str(), word.c_str());
  return KVLExit_Done;
}

int ShowModules(const KVLModules& modules, const KVLOptions& options) {
  const int exitCode = modules.AreComplete() ? KVLExit_Done : KVLExit_Load;
  if (options.isQuiet) return exitCode;
  std::printf("%d loaded\n", modules.Count());
  for (const std::string& line : modules.DescribeRefused(true))
    std::fprintf(stderr, "kvl: %s\n", line.c_str());
  return exitCode;
}

// The session ends with this function, before the modules whose objects it holds are unloaded.
int RunSession(const KVLModules& modules, const KVLOptions& options, KVLOutput& output) {
  KVLSession session(FlagsOf(options), output);
  if (!session.GetShell().IsLoaded()) return KVLExit_Load;
  switch (options.source) {
    case KVLOptions::Text:
      return KVLExitCodeOf(session.Run(options.text));
    case KVLOptions::File:
      return KVLExitCodeOf(KVLRunFile(session, options.text));
    case KVLOptions::Completion:
      return Complete(session, options.text);
    case KVLOptions::Prompt:
      if (IsPerson(options)) {
        if (!options.isQuiet) KVLGreet(modules);
        return KVLExitCodeOf(KVLRunPrompt(session));
      }
      break;
    case KVLOptions::Standard:
    case KVLOptions::Modules:
      break;
  }
  return KVLExitCodeOf(KVLRunLines(session, stdin, "<stdin>"));
}

void Report(const KVLModules& modules, const KVLOptions& options) {
  if (options.isQuiet || options.source == KVLOptions::Completion || IsPerson(options)) return;
  for (const std::string& line : modules.DescribeRefused(options.isVerbose))
    std::fprintf(stderr, "kvl: %s\n", line.c_str());
}

int RunProgram(const KVLOptions& options, KVLOutput& output) {
  KVLInterrupt::Install(KVLIsTerminal(KVLStandardError));
  KVLModules modules;
  if (options.hasModules) modules.Load();
  int exitCode = KVLExit_Done;
  if (options.source == KVLOptions::Modules) {
    exitCode = ShowModules(modules, options);
  } else {
    Report(modules, options);
    exitCode = RunSession(modules, options, output);
  }
  if (options.hasModules && !modules.Unload() && exitCode == KVLExit_Done) exitCode = KVLExit_Load;
  return exitCode;
}

int ReadAndRun(const std::vector<std::string>& arguments, KVLOutput& output) {
  KVLOptions options;
  switch (options.Read(arguments)) {
    case KVLOptions::Run:
      return RunProgram(options, output);
    case KVLOptions::ExitDone:
      return KVLExit_Done;
    case KVLOptions::ExitWithUsage:
      break;
  }
  return KVLExit_Usage;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    KVLPrepareStreams();
    KVLOutput output;
    const int exitCode = ReadAndRun(KVLArguments(argc, argv), output);
    return output.Flush() || exitCode != KVLExit_Done ? exitCode : KVLExit_No;
  } catch (const std::exception& exception) {
    std::fprintf(stderr, "kvl: %s\n", exception.what());
  }
  return KVLExit_No;
}
