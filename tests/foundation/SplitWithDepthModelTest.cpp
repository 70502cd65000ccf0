#include <gtest/gtest.h>

#include <cstddef>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "KVLStringOperations.h"

// Splitting with depth beside a model that looks at one character after the other.

namespace {

using Ops = KVLStringOperations;
using Pieces = std::vector<std::string>;

constexpr unsigned Seed = 20240817;

// What closes the level that a character opens; NUL where it opens none that counts.
char CloserOf(char character, int flags) {
  if (character == '(' && (flags & Ops::DepthParentheses) != 0) return ')';
  if (character == '{' && (flags & Ops::DepthBraces) != 0) return '}';
  if (character == '[' && (flags & Ops::DepthBrackets) != 0) return ']';
  return '\0';
}

Pieces SplitByModel(const std::string& text, char separator, int flags) {
  Pieces pieces;
  std::size_t position = 0;
  while (position < text.size()) {
    const std::size_t start = position;
    std::string closers;
    bool inQuotes = false;
    bool isEscaped = false;
    for (; position < text.size(); ++position) {
      const char character = text[position];
      if (!inQuotes) {
        if (closers.empty() && character == separator) break;
        if (character == '"') {
          inQuotes = (flags & Ops::DepthQuotes) != 0;
        } else if (const char closer = CloserOf(character, flags)) {
          closers += closer;
        } else if (!closers.empty() && character == closers.back()) {
          closers.pop_back();
        }
      } else if (isEscaped) {
        isEscaped = false;
      } else if (character == '"') {
        inQuotes = false;
      } else if (character == '\\') {
        isEscaped = true;
      }
    }
    pieces.push_back(text.substr(start, position - start));
    if (position < text.size()) ++position;
  }
  return pieces;
}

Pieces Split(const std::string& text, char separator, int flags) {
  const MRBUnicodeString list(text.data(), static_cast<int>(text.size()));
  Pieces pieces;
  for (const MRBUnicodeString& piece :
       Ops::SplitWithDepth(list, separator, static_cast<Ops::DepthChars>(flags))) {
    pieces.emplace_back(piece.ConvertToChar(), static_cast<std::size_t>(piece.GetLengthInByte()));
  }
  return pieces;
}

// Texts of `characters`, each as likely as it occurs there.
std::string AnyText(std::mt19937& random, std::size_t size, std::string_view characters) {
  std::uniform_int_distribution<std::size_t> place(0, characters.size() - 1);
  std::string text;
  while (text.size() < size)
    text += characters[place(random)];
  return text;
}

void ExpectLikeModel(const std::string& text, char separator, int flags) {
  ASSERT_EQ(Split(text, separator, flags), SplitByModel(text, separator, flags))
      << "seed " << Seed << ", flags " << flags << ", separator " << static_cast<int>(separator)
      << ", text: " << text;
}

TEST(SplitWithDepthModel, RandomTextsAreCutAsByTheModel) {
  constexpr std::string_view Alphabets[] = {"abcdefghijklmnop,",
                                            "ab,()[]{}",
                                            "abcdefghijklmnopqrstuvwxyz,,,([{)]}\"",
                                            "abcdef,\"\"\\",
                                            "ab,,(\"\\)",
                                            "\\\\\\\",a",
                                            "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa,\"\\[]",
                                            std::string_view("a,\0\xff(\x80)", 7)};
  constexpr char Separators[] = {',', ',', ',', ',', '(', ')', ']', '"', '\\', 'a', '\0', '\xff'};
  std::mt19937 random(Seed);
  std::uniform_int_distribution<std::size_t> size(0, 400);
  std::uniform_int_distribution<int> flags(0, 15);
  std::uniform_int_distribution<std::size_t> separator(0, sizeof Separators - 1);
  for (int round = 0; round < 4000; ++round) {
    for (const std::string_view alphabet : Alphabets) {
      const std::string text = AnyText(random, size(random), alphabet);
      ExpectLikeModel(text, ',', Ops::DepthAll);
      ExpectLikeModel(text, Separators[separator(random)], flags(random));
      if (HasFatalFailure()) return;
    }
  }
}

TEST(SplitWithDepthModel, EveryMarkAtEveryPlaceAroundABlocksEndIsCutAsByTheModel) {
  constexpr const char* Marks[] = {",",   "\",\"",   "\"\\\",\",", "\"\\\\\",",
                                   "(,)", "\\\",\"", "[(,],)]",    "\"\\\\\\\",\""};
  for (const char* const mark : Marks) {
    for (std::size_t place = 50; place < 80; ++place) {
      for (std::size_t behind = 0; behind < 100; behind += 9) {
        const std::string text =
            std::string(place, 'a') + mark + std::string(behind, 'b') + ",\"c,\",d";
        ExpectLikeModel(text, ',', Ops::DepthAll);
        ExpectLikeModel(text, ',', Ops::DepthQuotes);
        if (HasFatalFailure()) return;
      }
    }
  }
}

TEST(SplitWithDepthModel, NestingOfEveryDepthIsCutAsByTheModel) {
  std::mt19937 random(Seed + 1);
  for (int depth = 0; depth < 100; ++depth) {
    const std::string openers = AnyText(random, static_cast<std::size_t>(depth), "([{");
    std::string nested = openers + "a,\",)\"";
    for (std::size_t i = openers.size(); i-- > 0;)
      nested += CloserOf(openers[i], Ops::DepthAll);
    const std::string text = "x," + nested + ",y,(z," + nested + "),," + nested;
    ExpectLikeModel(text, ',', Ops::DepthAll);
    ExpectLikeModel(text + ",(" + openers, ',', Ops::DepthAll);
    ExpectLikeModel(text, ',', Ops::DepthParentheses);
    if (HasFatalFailure()) return;
  }
}

}  // namespace
