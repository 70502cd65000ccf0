#include "KVLSession.h"

#include "KVLInterrupt.h"
#include "KVLOutput.h"
#include "KVLShellResult.h"

KVLSession::KVLSession(unsigned int flags, KVLOutput& results)
    : output(results), shellFlags(flags) {}

void KVLSession::Sink(void* session, int channel, const char* text, int length) {
  const KVLSession& self = *static_cast<const KVLSession*>(session);
  if (!self.output.Write(channel, text, length)) self.shell.GetInterrupt()();
}

long KVLSession::Run(const std::string& text) {
  const KVLInterrupt::Running running(shell.GetInterrupt());
  const long result = shell.Run(text, shellFlags, Sink, this);
  return output.Flush() ? result : KVLResult_Failure;
}
