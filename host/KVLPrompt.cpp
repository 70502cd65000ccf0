#include "KVLPrompt.h"

#include <cstdio>

#include "KVLCandidates.h"
#include "KVLCodeEnv.h"
#include "KVLInterrupt.h"
#include "KVLLineReader.h"
#include "KVLModules.h"
#include "KVLPlatform.h"
#include "KVLSession.h"
#include "KVLShellResult.h"

namespace {

void Say(const std::string& text) {
  for (const std::string& line : KVLWrap(text, KVLTerminalWidth()))
    std::fprintf(stderr, "%s\n", line.c_str());
}

std::string Counted(int count, const std::string& singular, const std::string& plural) {
  return std::to_string(count) + " " + (count == 1 ? singular : plural);
}

}  // namespace

void KVLGreet(const KVLModules& modules) {
  Say("kvl " KVL_VERSION ": " + Counted(modules.Count(), "module", "modules") + " loaded.");
  for (const std::string& line : modules.DescribeRefused(true))
    Say(line);
  const int nbAnomalies = KVLCodeEnv::GetDefault().ComputeAnomalies().GetCount();
  if (nbAnomalies > 0) Say(Counted(nbAnomalies, "anomaly", "anomalies") + ": see 'check'.");
  Say("Type 'help' for the commands, Tab to complete, Ctrl-D to leave.");
}

long KVLRunPrompt(KVLSession& session) {
  const KVLInterrupt::Prompting prompting;
  const std::unique_ptr<KVLLineReader> reader = KVLLineReader::Make(session.GetShell());
  std::string line;
  while (true) {
    switch (reader->Read(line)) {
      case KVLLineReader::Line: {
        const long result = session.Run(line);  // the user has been told
        if (KVLShellIsQuit(result)) return result;
        break;
      }
      case KVLLineReader::Abandoned:
        std::fputs("\n", stderr);
        break;
      case KVLLineReader::End:
        if (KVLIsTerminal(KVLStandardError)) std::fputs("\n", stderr);
        return KVLResult_Success;
    }
  }
}
