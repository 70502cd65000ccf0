#ifndef KVL_DEPTH_SCANNER_H
#define KVL_DEPTH_SCANNER_H

#include <cstdint>

/// Finds one after the other the separators of a text that stand neither inside brackets nor inside
/// quotes, as far as the flags of `KVLStringOperations::DepthChars` let these count.
///
/// The text is taken in blocks of 64 characters. What matters in a block, its events, is a word of
/// bits, from which the quoted parts are taken out at once; only events are then looked at one by
/// one. The text is borrowed.
class KVLDepthScanner {
 public:
  KVLDepthScanner(const char* scanned, int scannedLength, char separatorCharacter,
                  unsigned int depthFlags);

  /// The place of the next separator behind the one found last; the text's length when there is
  /// none.
  int FindNext();

 private:
  static constexpr int BlockSize = 64;
  // A level takes three bits of `nesting`: the flag of its kind of brackets.
  static constexpr int LevelBits = 3;
  static constexpr std::uint64_t LevelMask = 7;
  static constexpr std::uint64_t DeepestNesting = std::uint64_t{1} << 60;

  struct Block;

  static std::uint64_t Classify(char character);

  void LoadBlock();
  std::uint64_t FindQuoted(const Block& block);
  std::uint64_t FindQuotedOneByOne(const Block& block);
  int FindPlainly();

  const char* const text;
  const int length;
  const char separator;
  const bool isPlain;  // whether no block can be taken, for the sake of the separator
  const bool hasQuotes;
  const unsigned int brackets;

  int pieceStart = 0;
  int blockStart = 0;
  int nextBlock = 0;
  std::uint64_t events = 0;   // of the block, those not looked at
  std::uint64_t nesting = 0;  // the deepest level has the lowest bits
  bool isQuoted = false;      // at the end of the block
  bool isEscaped = false;     // the first character behind the block
};

// The flag of what a character opens in the lowest three bits, of what it closes in the next three.
inline std::uint64_t KVLDepthScanner::Classify(char character) {
  static constexpr struct Table {
    constexpr Table() : kinds() {
      constexpr char openers[] = "({[";
      constexpr char closers[] = ")}]";
      for (int i = 0; i < LevelBits; ++i) {
        kinds[static_cast<int>(openers[i])] = static_cast<unsigned char>(1 << i);
        kinds[static_cast<int>(closers[i])] = static_cast<unsigned char>(1 << (i + LevelBits));
      }
    }
    unsigned char kinds[256];
  } table;
  return table.kinds[static_cast<unsigned char>(character)];
}

inline int KVLDepthScanner::FindNext() {
  if (isPlain) return FindPlainly();
  for (;;) {
    while (events != 0) {
      const int place = blockStart + __builtin_ctzll(events);
      events &= events - 1;
      const char character = text[place];
      if (nesting == 0 && character == separator) {
        pieceStart = place + 1;
        return place;
      }
      if (nesting >= DeepestNesting) return FindPlainly();
      const std::uint64_t kind = Classify(character);
      const std::uint64_t opened = kind & brackets;
      const std::uint64_t closed = kind >> LevelBits & nesting;
      // Without a branch, since nobody can foretell which bracket comes next.
      nesting =
          (nesting << (opened != 0 ? LevelBits : 0) | opened) >> (closed != 0 ? LevelBits : 0);
    }
    if (nextBlock >= length) return length;
    LoadBlock();
  }
}

#endif
