#include "ShellFuzz.h"

#include <cstdio>
#include <cstdlib>

#include "KVLCodeEnvShell.h"
#include "KVLShellComplete.h"
#include "KVLShellResult.h"
#include "KVLShellSession.h"

namespace {

void Require(bool isKept, const char* promise) {
  if (isKept) return;
  std::fprintf(stderr, "broken: %s\n", promise);
  std::abort();
}

struct Written {
  std::string output;
  std::string error;
};

void Collect(void* receiver, int channel, const char* text, int length) {
  Require(length > 0 && text[length - 1] == '\n', "whole lines are written");
  Written& written = *static_cast<Written*>(receiver);
  (channel == KVLShellChannel_Error ? written.error : written.output)
      .append(text, static_cast<std::size_t>(length));
}

bool Reaches(const std::string& text, const char* word) {
  return text.find(word) != std::string::npos;
}

void Forget() {
  KVLShellSession& session = KVLShellGetSession();
  KVLVector<MRBUnicodeString> names;
  session.GetVariableNames(names);
  for (const MRBUnicodeString& name : names)
    Require(session.RemoveVariable(name), "a session value that is listed is there");
  for (const KVLShellSession::Binding& binding : session.GetBindings())
    Require(session.Unbind(binding.path), "a binding that is listed is there");
  while (!session.GetUses().empty()) {
    const MRBUnicodeString path = session.GetUses().front().path;
    Require(session.RemoveUse(path), "an environment that is listed is in use");
  }
}

}  // namespace

void KVLFuzzShell(const std::string& text) {
  for (const char* const word : {"source", "load", "--output", "odd/run"})
    if (Reaches(text, word)) return;
  const MRBUnicodeString bytes(text.data(), static_cast<int>(text.size()));

  int from = -1;
  Written completed;
  Require(KVLCodeShellComplete(bytes, &from, Collect, &completed) == KVLResult_Success,
          "completion never fails");
  Require(from >= 0 && from <= bytes.GetLengthInByte(), "completion replaces a part of the text");

  Written asText;
  const long code = KVLCodeShellRunTo(bytes, 0, Collect, &asText);
  Require(code <= 0 || code == KVLResult_False || KVLShellIsQuit(code),
          "the results are those told");
  Require(code != KVLResult_NotImplemented, "the shell never claims to be missing");
  const bool isSilent =
      code == KVLResult_Success || code == KVLResult_False || KVLShellIsQuit(code);
  Require(isSilent == asText.error.empty() || Reaches(text, "--json"),
          "a failure is told, and no success");
  Forget();

  Written asJson;
  (void)KVLCodeShellRunTo(bytes, KVLShellFlag_Json, Collect, &asJson);
  Require(asJson.error.empty(), "JSON goes to the output alone");
  std::size_t start = 0;
  while (start < asJson.output.size()) {
    const std::size_t end = asJson.output.find('\n', start);
    Require(asJson.output.compare(start, 15, "{\"kvl\":1,\"ok\":t") == 0 ||
                asJson.output.compare(start, 15, "{\"kvl\":1,\"ok\":f") == 0,
            "every line is an object");
    Require(asJson.output[end - 1] == '}', "every object ends its line");
    start = end + 1;
  }
  Forget();
}
