#include "KVLCodeEnvShell.h"

#include <cstddef>
#include <cstdio>
#include <exception>

#include "KVLShellComplete.h"
#include "KVLShellOutput.h"
#include "KVLShellResult.h"
#include "KVLShellSession.h"
#include "KVLShellWork.h"

namespace {

// A receiver that fails is the host's affair: it sees the state of its own streams.
void WriteToStandardStreams(void*, int channel, const char* text, int length) {
  std::FILE* const stream = channel == KVLShellChannel_Error ? stderr : stdout;
  (void)std::fwrite(text, 1, static_cast<std::size_t>(length), stream);
  (void)std::fflush(stream);
}

long Run(const MRBUnicodeString& text, const KVLShellOutput& output) {
  const KVLShellTextRun run;
  if (run.IsTooDeep()) {
    const KVLShellOutcome outcome(KVLResult_Failure, "texts run inside one another too deep");
    output.Write(text, KVLShellAnswer(), outcome);
    return outcome.code;
  }
  KVLShellSession& session = KVLShellGetSession();
  if (run.IsOutermost()) session.AddToHistory(text);
  const long code = KVLShellRunText(text, session, output);
  if (run.IsOutermost()) session.ReleaseLibraries();
  return code;
}

}  // namespace

extern "C" long KVLCodeShellRunTo(const MRBUnicodeString& text, unsigned int flags,
                                  KVLShellSink sink, void* receiver) {
  try {
    return Run(text, KVLShellOutput(sink, receiver, flags));
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
  return KVLCodeShellRunTo(text, 0, WriteToStandardStreams, nullptr);
}

extern "C" long KVLCodeShellComplete(const MRBUnicodeString& text, int* replaceFrom,
                                     KVLShellSink sink, void* receiver) {
  *replaceFrom = text.GetLengthInByte();
  try {
    const KVLShellCompletion completion = KVLShellComplete(text, KVLShellGetSession());
    *replaceFrom = completion.replaceFrom;
    MRBUnicodeString lines;
    for (const MRBUnicodeString& word : completion.words)
      lines += word + "\n";
    KVLShellOutput(sink, receiver, 0).WriteText(KVLShellChannel_Output, lines);
    return KVLResult_Success;
  } catch (...) {
    // A completion that cannot be had is none.
    return KVLResult_Success;
  }
}

extern "C" void KVLCodeShellInterrupt() {
  KVLShellInterrupt();
}
