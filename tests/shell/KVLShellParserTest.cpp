#include "KVLShellSyntax.h"

#include <gtest/gtest.h>

#include <chrono>
#include <random>
#include <string>
#include <vector>

#include "KVLShellResult.h"

namespace {

using Statements = std::vector<KVLShellStatement>;

MRBUnicodeString Bytes(const std::string& text) {
  return MRBUnicodeString(text.data(), static_cast<int>(text.size()));
}

std::string StringOf(const MRBUnicodeString& text) {
  return std::string(text.ConvertToChar(), static_cast<std::size_t>(text.GetLengthInByte()));
}

std::string Written(const KVLShellExpression& expression) {
  const std::string text = StringOf(expression.text);
  std::string items;
  for (const KVLShellExpression& item : expression.items) {
    if (!items.empty()) items += ",";
    if (!item.parameter.text.IsEmpty()) items += StringOf(item.parameter.text) + "=";
    items += Written(item);
  }
  switch (expression.kind) {
    case KVLShellExpression::Word:
      return text;
    case KVLShellExpression::Quoted:
      return "\"" + text + "\"";
    case KVLShellExpression::Bracketed:
      return "raw" + text;
    case KVLShellExpression::List:
      return "[" + items + "]";
    case KVLShellExpression::Session:
      return "$" + text;
    case KVLShellExpression::Output:
      return "&" + text;
    case KVLShellExpression::Open:
      return "open";
    case KVLShellExpression::Call:
      return text + "(" + items + ")";
  }
  return "?";
}

// The statements as one text: words between "<" and ">", expressions as above, a "|" behind each.
std::string Written(const Statements& statements) {
  std::string written;
  for (const KVLShellStatement& statement : statements) {
    for (const KVLShellWord& word : statement.words)
      written += "<" + StringOf(word.text) + ">";
    if (statement.kind == KVLShellStatement::Assignment) written += "=";
    if (statement.hasExpression) written += Written(statement.expression);
    written += "|";
  }
  return written;
}

std::string Parsed(const std::string& text) {
  Statements statements;
  const KVLShellOutcome outcome = KVLShellParse(Bytes(text), statements);
  EXPECT_TRUE(outcome.IsSuccess()) << outcome.message;
  return Written(statements);
}

struct Failure {
  std::string message;
  int position;
};

Failure Refused(const std::string& text) {
  Statements statements;
  const KVLShellOutcome outcome = KVLShellParse(Bytes(text), statements);
  EXPECT_EQ(outcome.code, KVLShellResult_Usage) << Written(statements);
  return Failure{outcome.message.ConvertToChar(), outcome.position};
}

// The words behind the name of a command.
std::string Words(const std::string& text) {
  const std::string parsed = Parsed("ls " + text);
  EXPECT_EQ(parsed.substr(0, 4), "<ls>");
  return parsed.substr(4);
}

Failure RefusedWords(const std::string& text) {
  Failure failure = Refused("ls " + text);
  failure.position -= 3;
  return failure;
}

TEST(KVLShellParser, NothingIsNoStatement) {
  EXPECT_EQ(Parsed(""), "");
  EXPECT_EQ(Parsed(" \t\r"), "");
  EXPECT_EQ(Parsed(";;\n;"), "");
  EXPECT_EQ(Parsed("# only a comment"), "");
}

TEST(KVLShellParser, SemicolonsAndNewlinesSeparateStatements) {
  EXPECT_EQ(Parsed("ls b;vars"), "<ls><b>|<vars>|");
  EXPECT_EQ(Parsed("a/b ; ; $x\r\nf()"), "a/b|$x|f()|");
}

TEST(KVLShellParser, ACommentReachesToTheEndOfItsLine) {
  EXPECT_EQ(Parsed("ls # b; c\nvars"), "<ls>|<vars>|");
  EXPECT_EQ(Parsed("#\"[\nvars"), "<vars>|");
  EXPECT_EQ(Parsed("f(1) # b"), "f(1)|");
  EXPECT_EQ(Parsed("f(1, # b\n 2)"), "f(1,2)|");
}

TEST(KVLShellParser, TheFirstWordDecidesWhatAStatementIs) {
  EXPECT_EQ(Parsed("ls math"), "<ls><math>|");
  EXPECT_EQ(Parsed("ls"), "<ls>|");
  EXPECT_EQ(Parsed("ls(1)"), "ls(1)|");
  EXPECT_EQ(Parsed("/ls"), "/ls|");
  EXPECT_EQ(Parsed("ls = 1"), "<ls>=1|");
  EXPECT_EQ(Parsed("math/pi"), "math/pi|");
  EXPECT_EQ(Parsed("nothing at all"), "<nothing><at><all>|");
}

TEST(KVLShellParser, ExpressionsAreReadByTheirForm) {
  EXPECT_EQ(Parsed("3.5"), "3.5|");
  EXPECT_EQ(Parsed("-2e5"), "-2e5|");
  EXPECT_EQ(Parsed("\"a \\\" b\""), "\"a \" b\"|");
  EXPECT_EQ(Parsed("[]"), "[]|");
  EXPECT_EQ(Parsed("[ 1 , [2,\"x\"] , f( $a ) ]"), "[1,[2,\"x\"],f($a)]|");
  EXPECT_EQ(Parsed("(1, 2)"), "raw(1, 2)|");
  EXPECT_EQ(Parsed("{a; b}"), "raw{a; b}|");
  EXPECT_EQ(Parsed("$x_1"), "$x_1|");
}

TEST(KVLShellParser, ABracketRightAfterAWordIsACall) {
  EXPECT_EQ(Parsed("f()"), "f()|");
  EXPECT_EQ(Parsed("a/f( 1,\n2 )"), "a/f(1,2)|");
  EXPECT_EQ(Parsed("f(a, n = 1, m=\"x\", &out, _)"), "f(a,n=1,m=\"x\",&out,open)|");
  EXPECT_EQ(Parsed("f(g(h(1)), [k(2)])"), "f(g(h(1)),[k(2)])|");
  EXPECT_EQ(Parsed("f (1)"), "<f><(1)>|");
}

TEST(KVLShellParser, AssignmentsHaveANameAndAnExpression) {
  EXPECT_EQ(Parsed("x = 1"), "<x>=1|");
  EXPECT_EQ(Parsed("x=f(y=2)"), "<x>=f(y=2)|");
  EXPECT_EQ(Parsed("a/b = 1"), "<a/b>=1|");
}

TEST(KVLShellParser, CommandsReadTheirOwnWay) {
  EXPECT_EQ(Parsed("call f x y"), "<call><f><x><y>|");
  EXPECT_EQ(Parsed("call f(x, y)"), "<call>f(x,y)|");
  EXPECT_EQ(Parsed("call f (x, y)"), "<call><f><(x, y)>|");
  EXPECT_EQ(Parsed("time f(1)"), "<time>f(1)|");
}

TEST(KVLShellParser, WhatIsNoExpressionIsRefusedWhereItStands) {
  const struct {
    const char* text;
    const char* message;
    int position;
  } cases[] = {{"f(1", "missing closing ')'", 1},
               {"f(1,", "missing closing ')'", 1},
               {"[1, [2", "missing closing ']'", 4},
               {"f(1))", "what follows the expression is not understood", 4},
               {"f(1) 2", "what follows the expression is not understood", 5},
               {"f(1 2)", "missing ',' or ')'", 4},
               {"[1;2]", "missing ',' or ']'", 2},
               {"f(,1)", "unexpected ','", 2},
               {"f(1,)", "unexpected ')'", 4},
               {")", "unexpected ')'", 0},
               {"x = ", "a value is missing", 4},
               {"x = ;", "a value is missing", 4},
               {"x == 1", "unexpected '='", 3},
               {"$", "'$' is followed by the name of a session value", 0},
               {"$1", "'$' is followed by the name of a session value", 0},
               {"f(&)", "'&' is followed by the name of a session value", 2},
               {"\"a\"b", "what follows the expression is not understood", 3}};
  for (const auto& refused : cases) {
    const Failure failure = Refused(refused.text);
    EXPECT_EQ(failure.message, refused.message) << refused.text;
    EXPECT_EQ(failure.position, refused.position) << refused.text;
  }
}

TEST(KVLShellParser, ExpressionsNestOnlySoDeep) {
  const std::string hundred = std::string(100, '[') + std::string(100, ']');
  EXPECT_EQ(Parsed(hundred), hundred + "|");
  EXPECT_EQ(Refused(std::string(100000, '[')).message, "brackets nest too deep");
  std::string calls;
  for (int i = 0; i < 100000; ++i)
    calls += "f(";
  EXPECT_EQ(Refused(calls).message, "brackets nest too deep");
}

TEST(KVLShellParser, OnlyIdentifiersNameSessionValues) {
  for (const char* const text : {"a", "_", "a1", "_x_9", "Z"})
    EXPECT_TRUE(KVLShellIsIdentifier(text)) << text;
  for (const char* const text : {"", "1", "a-b", "a/b", " a", "\xC3\xA9"})
    EXPECT_FALSE(KVLShellIsIdentifier(text)) << text;
}

TEST(KVLShellParser, AQuotedTextReadsBack) {
  for (const std::string text : {"", "a b", "\"", "\\", "\n\r\t", "a\"b\\c\nd", "\xC3\xA9"}) {
    const MRBUnicodeString quoted = KVLShellQuote(text.c_str());
    EXPECT_EQ(Parsed(StringOf(quoted)), "\"" + text + "\"|");
  }
}

TEST(KVLShellParser, BlanksSeparateWords) {
  EXPECT_EQ(Words("math/add 1 2"), "<math/add><1><2>|");
  EXPECT_EQ(Words("  a\t b\v\f\rc  "), "<a><b><c>|");
}

TEST(KVLShellParser, AHashInsideAWordIsNoComment) {
  EXPECT_EQ(Words("a#b #c"), "<a#b>|");
}

TEST(KVLShellParser, QuotesKeepBlanksAndSeparators) {
  EXPECT_EQ(Words("\"a b;c#d\ne\" f"), "<a b;c#d\ne><f>|");
  EXPECT_EQ(Words("\"([{\""), "<([{>|");
}

TEST(KVLShellParser, AnEmptyPairOfQuotesIsAnEmptyWord) {
  EXPECT_EQ(Words("a \"\""), "<a><>|");
}

TEST(KVLShellParser, AQuotedPartJoinsWhatTouchesIt) {
  EXPECT_EQ(Words("a\"b c\"d\"\"e"), "<ab cde>|");
}

TEST(KVLShellParser, EscapesStandForTheirCharacters) {
  EXPECT_EQ(Words("\"\\\"\\\\\\n\\r\\t\""), "<\"\\\n\r\t>|");
}

TEST(KVLShellParser, ABackslashOutsideQuotesIsOrdinary) {
  EXPECT_EQ(Words("C:\\temp\\n"), "<C:\\temp\\n>|");
}

TEST(KVLShellParser, BracketsKeepWhatTheyHoldAsItIs) {
  EXPECT_EQ(Words("[1, \"a b\", (2; 3)] x"), "<[1, \"a b\", (2; 3)]><x>|");
  EXPECT_EQ(Words("f(a, {b # c})g"), "<f(a, {b # c})g>|");
}

TEST(KVLShellParser, QuotesProtectBracketsInsideBrackets) {
  EXPECT_EQ(Words("[\"]\\\"]\"] x"), "<[\"]\\\"]\"]><x>|");
}

TEST(KVLShellParser, ACloserThatMatchesNothingIsOrdinary) {
  EXPECT_EQ(Words(") ] }a"), "<)><]><}a>|");
  EXPECT_EQ(Words("[)] x"), "<[)]><x>|");
}

TEST(KVLShellParser, AWordKnowsWhereItStandsAndWhetherItIsQuoted) {
  Statements statements;
  ASSERT_TRUE(KVLShellParse("ls \"cd\"  e\"f\"; vars", statements).IsSuccess());
  ASSERT_EQ(statements.size(), 2u);
  const KVLVector<KVLShellWord>& words = statements[0].words;
  EXPECT_EQ(words[0].position, 0);
  EXPECT_EQ(words[1].position, 3);
  EXPECT_EQ(words[1].end, 7);
  EXPECT_EQ(words[2].position, 9);
  EXPECT_EQ(statements[0].end, 13);
  EXPECT_EQ(statements[1].words[0].position, 15);
  EXPECT_FALSE(words[0].isQuoted);
  EXPECT_TRUE(words[1].isQuoted);
  EXPECT_FALSE(words[2].isQuoted);
}

TEST(KVLShellParser, AnOpenQuoteIsRefusedWhereItBegins) {
  for (const char* const text : {"a \"b", "a \"", "a \"b\\", "a \"b\\\""}) {
    const Failure failure = RefusedWords(text);
    EXPECT_EQ(failure.message, "missing closing '\"'") << text;
    EXPECT_EQ(failure.position, 2) << text;
  }
}

TEST(KVLShellParser, AnOpenQuoteInsideBracketsIsRefused) {
  for (const char* const text : {"[\"a]", "[\"a]\\", "[\"a\\\"]"}) {
    const Failure failure = RefusedWords(text);
    EXPECT_EQ(failure.message, "missing closing '\"'") << text;
    EXPECT_EQ(failure.position, 1) << text;
  }
}

TEST(KVLShellParser, AnOpenBracketIsRefusedWhereTheInnermostBegins) {
  EXPECT_EQ(RefusedWords("a [b").message, "missing closing ']'");
  EXPECT_EQ(RefusedWords("a [b").position, 2);
  EXPECT_EQ(RefusedWords("([{}").message, "missing closing ']'");
  EXPECT_EQ(RefusedWords("([{}").position, 1);
  EXPECT_EQ(RefusedWords("(]").message, "missing closing ')'");
  EXPECT_EQ(RefusedWords("{").message, "missing closing '}'");
}

TEST(KVLShellParser, AnUnknownEscapeIsRefusedAtItsBackslash) {
  const Failure failure = RefusedWords("\"ab\\x\"");
  EXPECT_EQ(failure.message, "unknown escape; known are \\\" \\\\ \\n \\r \\t");
  EXPECT_EQ(failure.position, 3);
}

TEST(KVLShellParser, WhatComesBeforeARefusalIsKept) {
  Statements statements;
  EXPECT_FALSE(KVLShellParse("ls b; c \"", statements).IsSuccess());
  EXPECT_EQ(Written(statements), "<ls><b>|");
}

TEST(KVLShellParser, NulBytesAreOrdinary) {
  const std::string nul(1, '\0');
  EXPECT_EQ(Words("a" + nul + "b " + nul + " \"" + nul + "\" [" + nul + "]"),
            "<a" + nul + "b><" + nul + "><" + nul + "><[" + nul + "]>|");
}

TEST(KVLShellParser, BytesThatAreNoUtf8AreOrdinary) {
  EXPECT_EQ(Words("\xFF\xFE \xC3 \"\x80\" [\xED\xA0]"), "<\xFF\xFE><\xC3><\x80><[\xED\xA0]>|");
  EXPECT_EQ(Words("gr\xC3\xBC\xC3\x9F"
                  "e \xC2\xA0"),
            "<gr\xC3\xBC\xC3\x9F"
            "e><\xC2\xA0>|");
}

TEST(KVLShellParser, EveryByteStandsForItselfBetweenQuotes) {
  std::string text = "\"";
  std::string expected = "<";
  for (int byte = 0; byte < 256; ++byte) {
    const char character = static_cast<char>(byte);
    if (character == '"' || character == '\\') continue;
    text += character;
    expected += character;
  }
  EXPECT_EQ(Words(text + "\""), expected + ">|");
}

// A reader that copied the rest of the text for each word, or that looked back, would need minutes.
TEST(KVLShellParser, AMegabyteIsReadInLinearTime) {
  constexpr std::size_t Length = 1 << 20;
  const auto start = std::chrono::steady_clock::now();

  EXPECT_EQ(Words(std::string(Length, 'x')), "<" + std::string(Length, 'x') + ">|");
  EXPECT_EQ(Words("\"" + std::string(Length, ' ') + "\""), "<" + std::string(Length, ' ') + ">|");

  std::string escapes;
  while (escapes.size() < Length)
    escapes += "\\\"";
  EXPECT_EQ(Words("\"" + escapes + "\""), "<" + std::string(escapes.size() / 2, '"') + ">|");

  std::string words;
  while (words.size() < Length)
    words += "a ";
  Statements statements;
  ASSERT_TRUE(KVLShellParse(Bytes(words), statements).IsSuccess());
  EXPECT_EQ(statements[0].words.GetCount(), static_cast<int>(words.size() / 2));

  const std::string nested = std::string(Length / 2, '[') + std::string(Length / 2, ']');
  EXPECT_EQ(Words(nested), "<" + nested + ">|");
  EXPECT_EQ(RefusedWords(std::string(Length, '[')).position, static_cast<int>(Length) - 1);
  EXPECT_EQ(RefusedWords("\"" + std::string(Length, 'x')).position, 0);

  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
}

// Whatever the text, the reader ends, stays inside it and says where it gave up.
TEST(KVLShellParser, RandomTextsAreReadOrRefusedInsideTheText) {
  constexpr unsigned int Seed = 20240611;
  SCOPED_TRACE("seed " + std::to_string(Seed));
  std::mt19937 random(Seed);
  const std::string alphabet = std::string("ab \t;\n#\"\\[](){}nrt=$&,_\xC3\xFF", 26) + '\0';
  int nbRead = 0;
  int nbRefused = 0;
  for (int round = 0; round < 50000; ++round) {
    std::string text;
    for (auto length = random() % 24; length > 0; --length)
      text += alphabet[random() % alphabet.size()];
    Statements statements;
    const KVLShellOutcome outcome = KVLShellParse(Bytes(text), statements);
    ++(outcome.IsSuccess() ? nbRead : nbRefused);
    int last = -1;
    for (const KVLShellStatement& statement : statements) {
      ASSERT_GT(statement.position, last) << text;
      ASSERT_GT(statement.end, statement.position) << text;
      last = statement.position;
      for (const KVLShellWord& word : statement.words) {
        ASSERT_GE(word.position, last) << text;
        last = word.position;
        ASSERT_LE(word.end, statement.end) << text;
      }
    }
    ASSERT_LT(last, static_cast<int>(text.size()));
    if (outcome.IsSuccess()) continue;
    ASSERT_FALSE(outcome.message.IsEmpty()) << text;
    ASSERT_GE(outcome.position, 0) << text;
    ASSERT_LE(outcome.position, static_cast<int>(text.size())) << text;
  }
  EXPECT_GT(nbRead, 1000);
  EXPECT_GT(nbRefused, 1000);
}

}  // namespace
