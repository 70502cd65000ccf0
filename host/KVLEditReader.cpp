#include "KVLEditReader.h"

#include <langinfo.h>
#include <unistd.h>

#include <clocale>
#include <cstring>
#include <cwchar>

#include "KVLCandidates.h"
#include "KVLPlatform.h"

namespace {

constexpr int NbRemembered = 1000;  // lines
constexpr wchar_t Replacement = L'\xFFFD';

// Texts are UTF-8, whatever the user's language.
void UseUtf8() {
  (void)std::setlocale(LC_CTYPE, "");
  if (std::strcmp(nl_langinfo(CODESET), "UTF-8") != 0) (void)std::setlocale(LC_CTYPE, "C.UTF-8");
}

}  // namespace

std::unique_ptr<KVLLineReader> KVLEditReader::Make(const KVLShellEntries& entries) {
  if (!KVLIsTerminal(KVLStandardError) || !KVLTerminalTakesCodes()) return nullptr;
  const int descriptor = dup(STDERR_FILENO);
  std::FILE* const screen = descriptor < 0 ? nullptr : fdopen(descriptor, "w");
  if (!screen) return nullptr;
  UseUtf8();
  KVLGuardTerminal();
  std::unique_ptr<KVLEditReader> reader(new KVLEditReader(screen, entries));
  if (!reader->editor || !reader->history) return nullptr;
  return reader;
}

KVLEditReader::KVLEditReader(std::FILE* stream, const KVLShellEntries& entries)
    : screen(stream),
      shell(entries),
      editor(el_init("kvl", stdin, stream, stream)),
      history(history_init()) {
  if (!editor || !history) return;
  HistEvent event;
  (void)::history(history, &event, H_SETSIZE, NbRemembered);
  (void)::history(history, &event, H_SETUNIQUE, 1);
  for (const std::string& line : file.Read(NbRemembered))
    (void)::history(history, &event, H_ENTER, line.c_str());

  (void)el_set(editor, EL_CLIENTDATA, this);
  (void)el_set(editor, EL_PROMPT, GetPrompt);
  (void)el_set(editor, EL_GETCFN, ReadCharacter);
  (void)el_set(editor, EL_EDITOR, "emacs");
  (void)el_set(editor, EL_HIST, ::history, history);
  // With wide texts, since of others libedit makes copies that it never gives back.
  (void)el_wset(editor, EL_ADDFN, L"kvl-complete", L"Complete the word", CompleteLine);
  (void)el_set(editor, EL_BIND, "^I", "kvl-complete", nullptr);
  (void)el_set(editor, EL_BIND, "^R", "em-inc-search-prev", nullptr);
  // Ctrl with an arrow, as terminals send it.
  (void)el_set(editor, EL_BIND, "\\e[1;5C", "em-next-word", nullptr);
  (void)el_set(editor, EL_BIND, "\\e[1;5D", "ed-prev-word", nullptr);
  (void)el_source(editor, nullptr);  // the user's own file, which need not be there
}

KVLEditReader::~KVLEditReader() {
  if (history) history_end(history);
  if (editor) el_end(editor);
  (void)std::fclose(screen);
}

KVLLineReader::Outcome KVLEditReader::Read(std::string& line) {
  line.clear();
  wasInterrupted = false;
  int nbBytes = 0;
  // Before the prompt is there to be answered: what is typed then is not to be shown twice.
  (void)el_set(editor, EL_PREP_TERM, 1);
  const char* const typed = el_gets(editor, &nbBytes);
  if (wasInterrupted) {
    // The cursor may be in any row of a long line.
    (void)el_cursor(editor, static_cast<int>(el_line(editor)->lastchar - el_line(editor)->buffer));
    (void)el_set(editor, EL_REFRESH);
    (void)el_set(editor, EL_PREP_TERM, 0);
    std::fputs("^C", screen);
    (void)std::fflush(screen);
    return Abandoned;
  }
  if (!typed || nbBytes <= 0) return End;
  line.assign(typed, static_cast<std::size_t>(nbBytes));
  if (line.back() == '\n') line.pop_back();
  Keep(line);
  return Line;
}

// A line that begins with a blank is not meant to be remembered.
void KVLEditReader::Keep(const std::string& line) {
  if (line.empty() || line[0] == ' ') return;
  HistEvent event;
  HistEvent last;
  const bool isRepeated =
      ::history(history, &last, H_FIRST) >= 0 && std::strcmp(last.str, line.c_str()) == 0;
  (void)::history(history, &event, H_ENTER, line.c_str());
  if (!isRepeated) file.Append(line);
}

char* KVLEditReader::GetPrompt(EditLine*) {
  static char prompt[] = "kvl> ";
  return prompt;
}

int KVLEditReader::ReadCharacter(EditLine* editor, wchar_t* character) {
  void* client = nullptr;
  (void)el_get(editor, EL_CLIENTDATA, &client);
  std::mbstate_t state = {};
  while (true) {
    char byte = 0;
    switch (KVLReadTyped(byte)) {
      case KVLTyped::Byte: {
        const std::size_t length = std::mbrtowc(character, &byte, 1, &state);
        if (length == static_cast<std::size_t>(-2)) break;  // its other bytes are to come
        if (length == static_cast<std::size_t>(-1)) *character = Replacement;
        return 1;
      }
      case KVLTyped::Interrupt:
        static_cast<KVLEditReader*>(client)->wasInterrupted = true;
        return -1;
      case KVLTyped::WindowChange:
        el_resize(editor);
        break;
      case KVLTyped::Continue:
        // Whoever was in front meanwhile has set the terminal up for itself.
        (void)el_set(editor, EL_PREP_TERM, 0);
        (void)el_set(editor, EL_PREP_TERM, 1);
        (void)el_set(editor, EL_REFRESH);
        break;
      case KVLTyped::End:
        return 0;
    }
  }
}

unsigned char KVLEditReader::CompleteLine(EditLine* editor, int) {
  void* client = nullptr;
  (void)el_get(editor, EL_CLIENTDATA, &client);
  return static_cast<KVLEditReader*>(client)->Complete();
}

unsigned char KVLEditReader::Complete() {
  const LineInfo* const info = el_line(editor);
  const std::string before(info->buffer, info->cursor);
  const KVLShellEntries::Completion completion = shell.Complete(before);
  if (completion.words.empty()) return CC_REFRESH_BEEP;
  const std::string typed = before.substr(static_cast<std::size_t>(completion.replaceFrom));
  const std::string common = KVLCommonStart(completion.words);
  if (common.size() >= typed.size() && common != typed) {
    el_deletestr(editor, KVLCountCharacters(typed));
    return el_insertstr(editor, common.c_str()) == 0 ? CC_REFRESH : CC_REFRESH_BEEP;
  }
  if (completion.words.size() == 1) return CC_REFRESH;
  Offer(completion.words);
  return CC_REDISPLAY;
}

void KVLEditReader::Offer(const std::vector<std::string>& words) {
  std::fputs("\n", screen);
  for (const std::string& row : KVLRowsOf(words, KVLTerminalWidth()))
    std::fprintf(screen, "%s\n", row.c_str());
}
