#ifndef KVL_TESTS_COUNTED_ELEMENT_H
#define KVL_TESTS_COUNTED_ELEMENT_H

#include <stdexcept>

/// What happened to the elements of one class since the last `Reset`.
struct ElementCounts {
  int constructions = 0;  ///< other than by copy or move
  int copies = 0;         ///< copy constructions
  int moves = 0;          ///< move constructions
  int assignments = 0;    ///< of both kinds
  int destructions = 0;
  int misuses = 0;  ///< a dead element was destroyed, copied, moved or assigned
  int copiesUntilFailure = 0;

  int GetLive() const { return constructions + copies + moves - destructions; }
};

/// Thrown by the copy that `FailCopy` asked for.
struct CopyFailure : std::runtime_error {
  CopyFailure() : std::runtime_error("the copy was told to fail") {}
};

/// An element for containers that counts its constructions, copies, moves and destructions, per
/// derived class, and knows whether it is alive. It carries a number and can be moved bit by bit.
template <class Derived>
class CountedElementBase {
 public:
  static const ElementCounts& Counts() { return counts; }
  static void Reset() { counts = ElementCounts(); }
  /// Lets the `nth` copy construction from now on throw `CopyFailure`; the first is 1.
  static void FailCopy(int nth) { counts.copiesUntilFailure = nth; }

  bool IsAlive() const { return state == Alive || state == MovedFrom; }
  bool IsMovedFrom() const { return state == MovedFrom; }
  int GetNumber() const { return number; }

  friend bool operator==(const CountedElementBase& left, const CountedElementBase& right) {
    return left.number == right.number;
  }

 protected:
  explicit CountedElementBase(int value) noexcept : number(value), state(Alive) {
    ++counts.constructions;
  }
  CountedElementBase(const CountedElementBase& other) : number(other.number), state(Dead) {
    other.CheckAlive();
    if (counts.copiesUntilFailure > 0 && --counts.copiesUntilFailure == 0) throw CopyFailure();
    state = other.state;
    ++counts.copies;
  }
  CountedElementBase(CountedElementBase&& other) noexcept
      : number(other.number), state(other.state) {
    other.CheckAlive();
    other.LeaveEmpty();
    ++counts.moves;
  }
  CountedElementBase& operator=(const CountedElementBase& other) {
    CheckAlive();
    other.CheckAlive();
    number = other.number;
    state = other.state;
    ++counts.assignments;
    return *this;
  }
  CountedElementBase& operator=(CountedElementBase&& other) noexcept {
    CheckAlive();
    other.CheckAlive();
    if (this == &other) return *this;
    number = other.number;
    state = other.state;
    other.LeaveEmpty();
    ++counts.assignments;
    return *this;
  }
  ~CountedElementBase() {
    CheckAlive();
    state = Dead;
    ++counts.destructions;
  }

 private:
  // Numbers that fresh or freed memory does not hold by chance.
  enum State : unsigned int { Alive = 0xA11FE001u, MovedFrom = 0xA11FE002u, Dead = 0xDEADE1E3u };

  void CheckAlive() const {
    if (!IsAlive()) ++counts.misuses;
  }
  void LeaveEmpty() {
    number = -1;
    state = MovedFrom;
  }

  static inline ElementCounts counts;

  int number;
  // Volatile: what a destructor writes is otherwise left out.
  volatile unsigned int state;
};

/// Its moves do not throw.
class CountedElement : public CountedElementBase<CountedElement> {
 public:
  CountedElement(int value = 0) noexcept : CountedElementBase(value) {}
};

/// Has no move of its own: a move copies.
class CopyOnlyElement : public CountedElementBase<CopyOnlyElement> {
 public:
  CopyOnlyElement(int value = 0) noexcept : CountedElementBase(value) {}
  CopyOnlyElement(const CopyOnlyElement&) = default;
  CopyOnlyElement& operator=(const CopyOnlyElement&) = default;
};

/// Has moves, which do not promise not to throw.
class UnsureMoveElement : public CountedElementBase<UnsureMoveElement> {
 public:
  UnsureMoveElement(int value = 0) noexcept : CountedElementBase(value) {}
  UnsureMoveElement(const UnsureMoveElement&) = default;
  UnsureMoveElement(UnsureMoveElement&& other) noexcept(false)
      : CountedElementBase(static_cast<CountedElementBase&&>(other)) {}
  UnsureMoveElement& operator=(const UnsureMoveElement&) = default;
};

#endif
