#include "KVLDepthScanner.h"

#include <cstring>

#include "KVLStringOperations.h"
#include "KVLVector.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace {

constexpr unsigned int BracketFlags = KVLStringOperations::DepthParentheses |
                                      KVLStringOperations::DepthBraces |
                                      KVLStringOperations::DepthBrackets;

// Bit i is the parity of the bits 0 .. i.
std::uint64_t Parities(std::uint64_t bits) {
  for (int distance = 1; distance < 64; distance *= 2)
    bits ^= bits << distance;
  return bits;
}

}  // namespace

/// What stands where in a block: bit i is its character i.
struct KVLDepthScanner::Block {
  Block(const char* characters, char separator);
  void CutBehind(int size);

  std::uint64_t separators = 0;
  std::uint64_t brackets = 0;
  std::uint64_t quotes = 0;
  std::uint64_t backslashes = 0;
};

#if defined(__SSE2__)

KVLDepthScanner::Block::Block(const char* characters, char separator) {
  const auto find = [](__m128i vector, char wanted) {
    return _mm_cmpeq_epi8(vector, _mm_set1_epi8(wanted));
  };
  const auto gather = [](__m128i found, int place) {
    return std::uint64_t{static_cast<std::uint16_t>(_mm_movemask_epi8(found))} << place;
  };
  for (int place = 0; place < BlockSize; place += 16) {
    const __m128i vector = _mm_loadu_si128(reinterpret_cast<const __m128i*>(characters + place));
    // The two brackets of a pair of parentheses, and braces and brackets, differ in one bit.
    const __m128i parentheses = find(_mm_or_si128(vector, _mm_set1_epi8('(' ^ ')')), ')');
    const __m128i folded = _mm_or_si128(vector, _mm_set1_epi8('[' ^ '{'));
    const __m128i others = _mm_or_si128(find(folded, '{'), find(folded, '}'));
    separators |= gather(find(vector, separator), place);
    brackets |= gather(_mm_or_si128(parentheses, others), place);
    quotes |= gather(find(vector, '"'), place);
    backslashes |= gather(find(vector, '\\'), place);
  }
}

#else

KVLDepthScanner::Block::Block(const char* characters, char separator) {
  for (int place = 0; place < BlockSize; ++place) {
    const char character = characters[place];
    separators |= std::uint64_t{character == separator} << place;
    brackets |= std::uint64_t{Classify(character) != 0} << place;
    quotes |= std::uint64_t{character == '"'} << place;
    backslashes |= std::uint64_t{character == '\\'} << place;
  }
}

#endif

// Forgets what stands from character `size` on.
void KVLDepthScanner::Block::CutBehind(int size) {
  const std::uint64_t kept = (std::uint64_t{1} << size) - 1;
  separators &= kept;
  brackets &= kept;
  quotes &= kept;
  backslashes &= kept;
}

KVLDepthScanner::KVLDepthScanner(const char* scanned, int scannedLength, char separatorCharacter,
                                 unsigned int depthFlags)
    : text(scanned),
      length(scannedLength),
      separator(separatorCharacter),
      // Where a quote separates, where the quoted parts lie depends on the nesting.
      isPlain(separator == '"'),
      hasQuotes((depthFlags & KVLStringOperations::DepthQuotes) != 0),
      brackets(depthFlags & BracketFlags) {}

void KVLDepthScanner::LoadBlock() {
  blockStart = nextBlock;
  nextBlock += BlockSize;
  const char* characters = text + blockStart;
  char padded[BlockSize];
  const int size = length - blockStart;
  if (size < BlockSize) {
    std::memset(padded, 0, sizeof padded);
    std::memcpy(padded, characters, static_cast<std::size_t>(size));
    characters = padded;
  }
  Block block(characters, separator);
  if (size < BlockSize) block.CutBehind(size);
  events = block.separators;
  if (brackets != 0) events |= block.brackets;
  if (hasQuotes && (block.quotes != 0 || isQuoted)) events &= ~FindQuoted(block);
}

// The characters in quotes, the opening quote included and the closing one not.
std::uint64_t KVLDepthScanner::FindQuoted(const Block& block) {
  const std::uint64_t escaped = block.backslashes << 1 | std::uint64_t{isEscaped};
  const std::uint64_t quoted =
      Parities(block.quotes & ~escaped) ^ (isQuoted ? ~std::uint64_t{0} : 0);
  // That took each backslash for one that escapes.
  if ((block.backslashes & (escaped | ~quoted)) != 0) return FindQuotedOneByOne(block);
  isQuoted = quoted >> (BlockSize - 1) != 0;
  isEscaped = block.backslashes >> (BlockSize - 1) != 0;
  return quoted;
}

std::uint64_t KVLDepthScanner::FindQuotedOneByOne(const Block& block) {
  std::uint64_t quoted = 0;
  std::uint64_t opening = 1;
  std::uint64_t rest = (block.quotes | block.backslashes) & ~std::uint64_t{isEscaped};
  isEscaped = false;
  while (rest != 0) {
    const std::uint64_t mark = rest & (~rest + 1);
    rest ^= mark;
    if (!isQuoted) {
      isQuoted = (mark & block.quotes) != 0;
      opening = mark;
    } else if ((mark & block.backslashes) != 0) {
      rest &= ~(mark << 1);
      isEscaped = mark << 1 == 0;
    } else {
      isQuoted = false;
      quoted |= mark - opening;
    }
  }
  if (isQuoted) quoted |= ~opening + 1;
  return quoted;
}

// Takes the present piece again, character by character and at any depth, and goes on with a block
// behind it.
int KVLDepthScanner::FindPlainly() {
  KVLVector<char> levels;
  bool inQuotes = false;
  bool escaped = false;
  int place = pieceStart;
  for (; place < length; ++place) {
    const char character = text[place];
    if (inQuotes) {
      if (escaped) {
        escaped = false;
      } else if (character == '"') {
        inQuotes = false;
      } else if (character == '\\') {
        escaped = true;
      }
      continue;
    }
    if (levels.IsEmpty() && character == separator) break;
    const std::uint64_t kind = Classify(character);
    if (character == '"') {
      inQuotes = hasQuotes;
    } else if ((kind & brackets) != 0) {
      levels.Append(static_cast<char>(kind));
    } else if (!levels.IsEmpty() &&
               static_cast<char>(kind >> LevelBits) == levels[levels.GetCount() - 1]) {
      levels.Erase(levels.GetCount() - 1);
    }
  }
  pieceStart = place + 1;
  nextBlock = pieceStart;
  events = 0;
  nesting = 0;
  isQuoted = false;
  isEscaped = false;
  return place;
}
