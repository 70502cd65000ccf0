#ifndef KVL_PSEUDO_TERMINAL_H
#define KVL_PSEUDO_TERMINAL_H

#include <sys/types.h>

#include <string>
#include <vector>

struct KVLWindowSize {
  unsigned short columns = 80;
  unsigned short rows = 24;
};

/// A program, mostly kvl, with a terminal of its own, and what a person types there and sees.
class KVLPseudoTerminal {
 public:
  struct Setting {
    std::string name;
    std::string value;
  };
  struct Redirection {
    int descriptor;
    std::string file;  ///< opened to write
  };

  /// Starts `program` with `settings` beside its usual environment.
  KVLPseudoTerminal(const std::vector<std::string>& arguments, const std::vector<Setting>& settings,
                    KVLWindowSize size = {}, const std::vector<Redirection>& redirections = {},
                    const std::string& program = KVL_PROGRAM);
  /// Ends the program, unless it has ended.
  ~KVLPseudoTerminal();
  KVLPseudoTerminal(const KVLPseudoTerminal&) = delete;
  KVLPseudoTerminal& operator=(const KVLPseudoTerminal&) = delete;

  void Type(const std::string& keys);
  void Resize(KVLWindowSize size);
  void Signal(int signal);

  /// Waits until the screen has shown `text` after what the former call waited for. False, when
  /// that takes too long; `GetShown` tells what there was instead.
  bool Expect(const std::string& text);
  /// Waits until the program ends. Returns its exit code; 1000 and the signal when one ended it; -1
  /// when it takes too long.
  int Wait();

  /// Waits until the program has ended, by itself or by a signal.
  void WaitForProgram();
  /// True when the terminal shows what is typed by itself.
  bool Echoes() const;

  /// All that was shown so far, control codes included.
  const std::string& GetShown() const { return shown; }
  /// What was shown since the last text that was waited for.
  std::string GetRest() const { return shown.substr(found); }

 private:
  bool ReadMore();

  int terminal = -1;
  pid_t process = -1;
  std::string shown;
  std::size_t found = 0;
  bool hasEnded = false;
};

#endif
