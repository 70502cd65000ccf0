#include "KVLShellLine.h"

#include <gtest/gtest.h>

#include <chrono>
#include <random>
#include <string>

#include "MRBUnicodeString.h"

namespace {

using Commands = KVLVector<KVLShellCommandWords>;

MRBUnicodeString Bytes(const std::string& text) {
  return MRBUnicodeString(text.data(), static_cast<int>(text.size()));
}

// The commands as one text: words between "<" and ">", a "|" behind each command.
std::string Written(const Commands& commands) {
  std::string written;
  for (const KVLShellCommandWords& words : commands) {
    for (const KVLShellWord& word : words) {
      written += "<" +
                 std::string(word.text.ConvertToChar(),
                             static_cast<std::size_t>(word.text.GetLengthInByte())) +
                 ">";
    }
    written += "|";
  }
  return written;
}

std::string Parsed(const std::string& text) {
  Commands commands;
  KVLShellSyntaxError error;
  EXPECT_TRUE(KVLShellParseLine(Bytes(text), commands, error)) << error.message;
  return Written(commands);
}

struct Failure {
  std::string message;
  int position;
};

Failure Refused(const std::string& text) {
  Commands commands;
  KVLShellSyntaxError error;
  EXPECT_FALSE(KVLShellParseLine(Bytes(text), commands, error)) << Written(commands);
  return Failure{error.message.ConvertToChar(), error.position};
}

TEST(KVLShellLine, BlanksSeparateWords) {
  EXPECT_EQ(Parsed("call math/add 1 2"), "<call><math/add><1><2>|");
  EXPECT_EQ(Parsed("  a\t b\v\f\rc  "), "<a><b><c>|");
}

TEST(KVLShellLine, NothingIsNoCommand) {
  EXPECT_EQ(Parsed(""), "");
  EXPECT_EQ(Parsed(" \t\r"), "");
  EXPECT_EQ(Parsed(";;\n;"), "");
  EXPECT_EQ(Parsed("# only a comment"), "");
}

TEST(KVLShellLine, SemicolonsAndNewlinesSeparateCommands) {
  EXPECT_EQ(Parsed("a b;c"), "<a><b>|<c>|");
  EXPECT_EQ(Parsed("a ; ; b\r\nc"), "<a>|<b>|<c>|");
}

TEST(KVLShellLine, ACommentReachesToTheEndOfItsLine) {
  EXPECT_EQ(Parsed("a # b; c\nd"), "<a>|<d>|");
  EXPECT_EQ(Parsed("#\"[\nd"), "<d>|");
}

TEST(KVLShellLine, AHashInsideAWordIsNoComment) {
  EXPECT_EQ(Parsed("a#b #c"), "<a#b>|");
}

TEST(KVLShellLine, QuotesKeepBlanksAndSeparators) {
  EXPECT_EQ(Parsed("\"a b;c#d\ne\" f"), "<a b;c#d\ne><f>|");
  EXPECT_EQ(Parsed("\"([{\""), "<([{>|");
}

TEST(KVLShellLine, AnEmptyPairOfQuotesIsAnEmptyWord) {
  EXPECT_EQ(Parsed("a \"\""), "<a><>|");
}

TEST(KVLShellLine, AQuotedPartJoinsWhatTouchesIt) {
  EXPECT_EQ(Parsed("a\"b c\"d\"\"e"), "<ab cde>|");
}

TEST(KVLShellLine, EscapesStandForTheirCharacters) {
  EXPECT_EQ(Parsed("\"\\\"\\\\\\n\\r\\t\""), "<\"\\\n\r\t>|");
}

TEST(KVLShellLine, ABackslashOutsideQuotesIsOrdinary) {
  EXPECT_EQ(Parsed("C:\\temp\\n"), "<C:\\temp\\n>|");
}

TEST(KVLShellLine, BracketsKeepWhatTheyHoldAsItIs) {
  EXPECT_EQ(Parsed("[1, \"a b\", (2; 3)] x"), "<[1, \"a b\", (2; 3)]><x>|");
  EXPECT_EQ(Parsed("f(a, {b # c})g"), "<f(a, {b # c})g>|");
}

TEST(KVLShellLine, QuotesProtectBracketsInsideBrackets) {
  EXPECT_EQ(Parsed("[\"]\\\"]\"] x"), "<[\"]\\\"]\"]><x>|");
}

TEST(KVLShellLine, ACloserThatMatchesNothingIsOrdinary) {
  EXPECT_EQ(Parsed(") ] }a"), "<)><]><}a>|");
  EXPECT_EQ(Parsed("[)] x"), "<[)]><x>|");
}

TEST(KVLShellLine, AWordKnowsWhereItStandsAndWhetherItIsQuoted) {
  Commands commands;
  KVLShellSyntaxError error;
  ASSERT_TRUE(KVLShellParseLine("ab \"cd\"  e\"f\"; g", commands, error));
  ASSERT_EQ(commands.GetCount(), 2);
  EXPECT_EQ(commands[0][0].position, 0);
  EXPECT_EQ(commands[0][1].position, 3);
  EXPECT_EQ(commands[0][2].position, 9);
  EXPECT_EQ(commands[1][0].position, 15);
  EXPECT_FALSE(commands[0][0].isQuoted);
  EXPECT_TRUE(commands[0][1].isQuoted);
  EXPECT_FALSE(commands[0][2].isQuoted);
}

TEST(KVLShellLine, AnOpenQuoteIsRefusedWhereItBegins) {
  for (const char* const text : {"a \"b", "a \"", "a \"b\\", "a \"b\\\""}) {
    const Failure failure = Refused(text);
    EXPECT_EQ(failure.message, "missing closing '\"'") << text;
    EXPECT_EQ(failure.position, 2) << text;
  }
}

TEST(KVLShellLine, AnOpenQuoteInsideBracketsIsRefused) {
  for (const char* const text : {"[\"a]", "[\"a]\\", "[\"a\\\"]"}) {
    const Failure failure = Refused(text);
    EXPECT_EQ(failure.message, "missing closing '\"'") << text;
    EXPECT_EQ(failure.position, 1) << text;
  }
}

TEST(KVLShellLine, AnOpenBracketIsRefusedWhereTheInnermostBegins) {
  EXPECT_EQ(Refused("a [b").message, "missing closing ']'");
  EXPECT_EQ(Refused("a [b").position, 2);
  EXPECT_EQ(Refused("([{}").message, "missing closing ']'");
  EXPECT_EQ(Refused("([{}").position, 1);
  EXPECT_EQ(Refused("(]").message, "missing closing ')'");
  EXPECT_EQ(Refused("{").message, "missing closing '}'");
}

TEST(KVLShellLine, AnUnknownEscapeIsRefusedAtItsBackslash) {
  const Failure failure = Refused("\"ab\\x\"");
  EXPECT_EQ(failure.message, "unknown escape; known are \\\" \\\\ \\n \\r \\t");
  EXPECT_EQ(failure.position, 3);
}

TEST(KVLShellLine, WhatComesBeforeARefusalIsKept) {
  Commands commands;
  KVLShellSyntaxError error;
  EXPECT_FALSE(KVLShellParseLine("a b; c \"", commands, error));
  EXPECT_EQ(Written(commands), "<a><b>|");
}

TEST(KVLShellLine, NulBytesAreOrdinary) {
  const std::string nul(1, '\0');
  EXPECT_EQ(Parsed("a" + nul + "b " + nul + " \"" + nul + "\" [" + nul + "]"),
            "<a" + nul + "b><" + nul + "><" + nul + "><[" + nul + "]>|");
}

TEST(KVLShellLine, BytesThatAreNoUtf8AreOrdinary) {
  EXPECT_EQ(Parsed("\xFF\xFE \xC3 \"\x80\" [\xED\xA0]"), "<\xFF\xFE><\xC3><\x80><[\xED\xA0]>|");
  EXPECT_EQ(Parsed("gr\xC3\xBC\xC3\x9F"
                   "e \xC2\xA0"),
            "<gr\xC3\xBC\xC3\x9F"
            "e><\xC2\xA0>|");
}

TEST(KVLShellLine, EveryByteStandsForItselfBetweenQuotes) {
  std::string text = "\"";
  std::string expected = "<";
  for (int byte = 0; byte < 256; ++byte) {
    const char character = static_cast<char>(byte);
    if (character == '"' || character == '\\') continue;
    text += character;
    expected += character;
  }
  EXPECT_EQ(Parsed(text + "\""), expected + ">|");
}

// A reader that copied the rest of the text for each word, or that looked back, would need minutes.
TEST(KVLShellLine, AMegabyteIsReadInLinearTime) {
  constexpr std::size_t Length = 1 << 20;
  const auto start = std::chrono::steady_clock::now();

  EXPECT_EQ(Parsed(std::string(Length, 'x')), "<" + std::string(Length, 'x') + ">|");
  EXPECT_EQ(Parsed("\"" + std::string(Length, ' ') + "\""), "<" + std::string(Length, ' ') + ">|");

  std::string escapes;
  while (escapes.size() < Length)
    escapes += "\\\"";
  EXPECT_EQ(Parsed("\"" + escapes + "\""), "<" + std::string(escapes.size() / 2, '"') + ">|");

  std::string words;
  while (words.size() < Length)
    words += "a ";
  Commands commands;
  KVLShellSyntaxError error;
  ASSERT_TRUE(KVLShellParseLine(Bytes(words), commands, error));
  EXPECT_EQ(commands[0].GetCount(), static_cast<int>(words.size() / 2));

  const std::string nested = std::string(Length / 2, '[') + std::string(Length / 2, ']');
  EXPECT_EQ(Parsed(nested), "<" + nested + ">|");
  EXPECT_EQ(Refused(std::string(Length, '[')).position, static_cast<int>(Length) - 1);
  EXPECT_EQ(Refused("\"" + std::string(Length, 'x')).position, 0);

  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
}

// Whatever the text, the reader ends, stays inside it and says where it gave up.
TEST(KVLShellLine, RandomTextsAreReadOrRefusedInsideTheText) {
  constexpr unsigned int Seed = 20240611;
  SCOPED_TRACE("seed " + std::to_string(Seed));
  std::mt19937 random(Seed);
  const std::string alphabet = std::string("ab \t;\n#\"\\[](){}nrt\xC3\xFF", 21) + '\0';
  int nbRead = 0;
  int nbRefused = 0;
  for (int round = 0; round < 50000; ++round) {
    std::string text;
    for (auto length = random() % 24; length > 0; --length)
      text += alphabet[random() % alphabet.size()];
    Commands commands;
    KVLShellSyntaxError error;
    const bool isRead = KVLShellParseLine(Bytes(text), commands, error);
    ++(isRead ? nbRead : nbRefused);
    int last = -1;
    for (const KVLShellCommandWords& words : commands) {
      ASSERT_GT(words.GetCount(), 0) << text;
      for (const KVLShellWord& word : words) {
        ASSERT_GT(word.position, last) << text;
        last = word.position;
        ASSERT_LE(word.text.GetLengthInByte(), static_cast<int>(text.size()) - word.position);
      }
    }
    ASSERT_LT(last, static_cast<int>(text.size()));
    if (isRead) continue;
    ASSERT_FALSE(error.message.IsEmpty()) << text;
    ASSERT_GE(error.position, 0) << text;
    ASSERT_LT(error.position, static_cast<int>(text.size())) << text;
  }
  EXPECT_GT(nbRead, 1000);
  EXPECT_GT(nbRefused, 1000);
}

}  // namespace
