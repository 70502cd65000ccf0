#ifndef KVL_INTERRUPT_H
#define KVL_INTERRUPT_H

/// What an interrupt (Ctrl-C) does: while a text runs it asks the text to end, and the next one
/// ends the program; at the prompt it abandons the line; at any other time it ends the program.
class KVLInterrupt {
 public:
  /// From now on interrupts come here. `tellsUser`: say on standard error that a text was asked
  /// to end.
  static void Install(bool tellsUser);

  /// While one exists, the program has a prompt to go back to.
  class Prompting {
   public:
    Prompting();
    ~Prompting();
    Prompting(const Prompting&) = delete;
    Prompting& operator=(const Prompting&) = delete;
  };

  /// While one exists, a text runs; `ask`, not null, asks it to end.
  class Running {
   public:
    explicit Running(void (*ask)());
    ~Running();
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;
  };

  /// True, once, when an interrupt came at the prompt.
  static bool Take();
};

#endif
