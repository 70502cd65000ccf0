#include "KVLCodeEnvShell.h"

#include <cstddef>
#include <cstdio>
#include <exception>

#include "KVLShellCommand.h"
#include "KVLShellLine.h"
#include "KVLShellOutcome.h"
#include "KVLShellResult.h"

namespace {

// A receiver that fails is the host's affair: it sees the state of its own streams.
void WriteToStandardStreams(void*, int channel, const char* text, int length) {
  std::FILE* const stream = channel == KVLShellChannel_Error ? stderr : stdout;
  (void)std::fwrite(text, 1, static_cast<std::size_t>(length), stream);
  (void)std::fflush(stream);
}

long Run(const MRBUnicodeString& text, KVLShellOutput& output) {
  KVLVector<KVLShellCommandWords> commands;
  KVLShellSyntaxError error;
  // Nothing runs when a part of the text is not understood.
  if (!KVLShellParseLine(text, commands, error)) {
    output.Report(text, KVLShellOutcome{KVLShellResult_Usage, error.message, error.position});
    return KVLShellResult_Usage;
  }
  for (const KVLShellCommandWords& words : commands) {
    const KVLShellOutcome outcome = KVLShellRunCommand(words, output);
    if (outcome.code == KVLResult_Success) continue;
    output.Report(text, outcome);
    return outcome.code;
  }
  return KVLResult_Success;
}

}  // namespace

extern "C" long KVLCodeShellRunTo(const MRBUnicodeString& text, KVLShellSink sink, void* receiver) {
  try {
    KVLShellOutput output(sink, receiver);
    return Run(text, output);
  } catch (const std::exception& exception) {
    // Without allocation: memory may be what is missing.
    char message[160];
    const int length = std::snprintf(message, sizeof(message), "error: the shell failed: %.100s\n",
                                     exception.what());
    sink(receiver, KVLShellChannel_Error, message, length);
  } catch (...) {
    constexpr char message[] = "error: the shell failed\n";
    sink(receiver, KVLShellChannel_Error, message, static_cast<int>(sizeof(message)) - 1);
  }
  return KVLResult_Failure;
}

extern "C" long KVLCodeShellStaticRun(const MRBUnicodeString& text) {
  return KVLCodeShellRunTo(text, WriteToStandardStreams, nullptr);
}
