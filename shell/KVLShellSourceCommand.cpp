#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>

#include "KVLShellCommand.h"
#include "KVLShellResult.h"
#include "KVLStringOperations.h"

namespace {

constexpr char Utf8Mark[] = "\xEF\xBB\xBF";

struct Close {
  void operator()(std::FILE* file) const { (void)std::fclose(file); }  // read only
};
using File = std::unique_ptr<std::FILE, Close>;

// Reads up to and without the next newline. False at the end of the file.
bool ReadLine(std::FILE* file, std::string& line) {
  line.clear();
  int character = std::getc(file);
  if (character == EOF) return false;
  for (; character != EOF && character != '\n'; character = std::getc(file))
    line += static_cast<char>(character);
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return true;
}

KVLShellOutcome Unread(const char* what, const KVLShellWord& word) {
  KVLShellOutcome outcome(KVLShellResult_NotFound,
                          MRBUnicodeString("source: cannot ") + what + " '" +
                              KVLShellPrintable(word.text) + "': " + std::strerror(errno),
                          word.position);
  outcome.got = word.text;
  return outcome;
}

KVLShellOutcome Stopped(const KVLShellWord& word, int number, long code) {
  if (KVLShellIsQuit(code)) return KVLShellOutcome(code, "");
  return KVLShellOutcome(code,
                         "source: " + KVLShellPrintable(word.text) + ":" +
                             KVLStringOperations::FromNum(number) + ": stopped here",
                         word.position);
}

KVLShellOutcome Run(const KVLShellArguments& arguments, KVLShellWork& work,
                    KVLShellAnswer& answer) {
  const KVLShellWord& word = arguments[0];
  const KVLShellTextRun run;
  if (run.IsTooDeep()) {
    return KVLShellOutcome(KVLResult_Failure, "source: files run inside one another too deep",
                           word.position);
  }
  // A name with a NUL would be another file's.
  const bool isName =
      std::strlen(word.text) == static_cast<std::size_t>(word.text.GetLengthInByte());
  errno = ENOENT;
  const File file(isName ? std::fopen(word.text, "rb") : nullptr);
  if (!file) return Unread("open", word);
  std::string line;
  int number = 0;
  while (ReadLine(file.get(), line)) {
    ++number;
    if (number == 1 && line.compare(0, std::strlen(Utf8Mark), Utf8Mark) == 0) {
      line.erase(0, std::strlen(Utf8Mark));
    }
    const MRBUnicodeString text(line.data(), static_cast<int>(line.size()));
    const long code = KVLShellIsInterrupted() ? KVLShellResult_Interrupted
                                              : KVLShellRunText(text, work.session, work.output);
    if (code != KVLResult_Success) return Stopped(word, number, code);
  }
  if (std::ferror(file.get())) return Unread("read", word);
  answer.result = KVLShellNode::NewRecord();
  answer.result.Set("file", word.text);
  answer.result.Set("lines", number);
  return KVLShellOutcome();
}

}  // namespace

const KVLShellCommand KVLShellSourceCommand = {
    "source",
    "source FILE",
    "runs the lines of a file",
    "  Up to the first line that fails. Session values stay.\n",
    KVLShellStyle_Words,
    Run,
    1,
    1,
    {KVLShellWord_Other},
    {}};
