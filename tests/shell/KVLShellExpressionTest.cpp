#include <gtest/gtest.h>

#include "KVLShellResult.h"
#include "ShellSupport.h"

namespace {

using kvltest::Ask;
using kvltest::Said;
using kvltest::SessionGuard;

// What an expression's value is written as.
std::string ValueOf(const std::string& expression) {
  const Said said = Ask(expression);
  EXPECT_EQ(said.code, KVLResult_Success) << expression << "\n" << said.error;
  return said.output;
}

// Its type, told by the session.
std::string TypeOf(const std::string& expression) {
  const SessionGuard guard;
  EXPECT_EQ(Ask("probe = " + expression).code, KVLResult_Success) << expression;
  const std::string vars = Ask("vars").output;
  const std::size_t start = vars.find("  ") + 2;
  return vars.substr(start, vars.find("  ", start) - start);
}

// The code and the first line of what is refused; the rest points at the culprit.
void ExpectRefused(const std::string& text, long code, const std::string& message, int column) {
  const Said said = Ask(text);
  EXPECT_EQ(said.code, code) << text;
  EXPECT_EQ(said.error, "error: " + message + "\n  " + text + "\n" +
                            std::string(static_cast<std::size_t>(column) + 2, ' ') + "^\n");
  EXPECT_EQ(said.output, "") << text;
}

TEST(KVLShellExpression, ALiteralAloneHasTheTypeOfItsForm) {
  EXPECT_EQ(TypeOf("3"), "int");
  EXPECT_EQ(TypeOf("-3"), "int");
  EXPECT_EQ(TypeOf("3000000000"), "int64");
  EXPECT_EQ(TypeOf("3.5"), "double");
  EXPECT_EQ(TypeOf("1e3"), "double");
  EXPECT_EQ(TypeOf("true"), "bool");
  EXPECT_EQ(TypeOf("\"true\""), "string");
  EXPECT_EQ(ValueOf("\"a \\\"b\\\"\""), "a \"b\"\n");
}

TEST(KVLShellExpression, AListAloneHasTheTypeOfItsElements) {
  EXPECT_EQ(TypeOf("[1, 2]"), "KVLVector<int>");
  EXPECT_EQ(TypeOf("[1.5, 2.5]"), "KVLVector<double>");
  EXPECT_EQ(TypeOf("[\"a\"]"), "KVLVector<string>");
  EXPECT_EQ(TypeOf("[1, \"a\"]"), "KVLVector<KVLCodeValue_var>");
  EXPECT_EQ(TypeOf("[]"), "KVLVector<KVLCodeValue_var>");
  EXPECT_EQ(ValueOf("[1, [2, 3], \"a, b\", num/pi, num/add(1, 2)]"),
            "[1,[2,3],\"a, b\",3.25,3.0]\n");
}

TEST(KVLShellExpression, AnElementOfAListOfAnythingKeepsItsType) {
  const SessionGuard guard;
  EXPECT_EQ(ValueOf("[num/add(1, 2), 1, true, \"x\"]"), "[3.0,1,true,\"x\"]\n");
  EXPECT_EQ(ValueOf("[hue/next(Red), 1]"), "[Hue(\"Green\"),1]\n");
  EXPECT_EQ(ValueOf("[1, [hue/next(Red), 2]]"), "[1,[Hue(\"Green\"),2]]\n");
  EXPECT_EQ(ValueOf("[word/echo(\"3\"), 1]"), "[\"3\",1]\n");
  (void)Ask("hue = hue/next(Red)");
  EXPECT_EQ(ValueOf("[$hue, 1]"), "[Hue(\"Green\"),1]\n");
  EXPECT_EQ(ValueOf("list/sum([num/add(1, 2), 1])"), "4\n");
}

TEST(KVLShellExpression, AnElementIsEvaluatedOnce) {
  const SessionGuard guard;
  (void)Ask("n = 1");
  EXPECT_EQ(ValueOf("[num/increment(&n), 1]; $n").substr(0, 1), "[");
  EXPECT_EQ(ValueOf("$n"), "2\n");
}

TEST(KVLShellExpression, APathIsTheValueOfItsVariable) {
  EXPECT_EQ(ValueOf("num/pi"), "3.25\n");
  EXPECT_EQ(ValueOf("/num//pi"), "3.25\n");
  EXPECT_EQ(TypeOf("num/pi"), "double");
}

TEST(KVLShellExpression, APathWithoutAValueIsRefused) {
  ExpectRefused("num/add", KVLShellResult_Argument,
                "'num/add' has no value: it is a function; 'num/add(...)' calls it", 0);
  ExpectRefused("num", KVLShellResult_Argument, "'num' has no value; 'info num' tells what it is",
                0);
  ExpectRefused("num/pj", KVLShellResult_NotFound,
                "no object 'num/pj': 'num/' holds no 'pj'; did you mean 'num/pi'?", 0);
}

TEST(KVLShellExpression, WhatIsOfTheOtherKindIsSaidToBe) {
  ExpectRefused("use num/hypot", KVLShellResult_NotFound,
                "no environment 'num/hypot': 'num/hypot' is no environment", 4);
  ExpectRefused("word/length(num)", KVLShellResult_NotFound,
                "no object 'num': 'num/' is an environment (a text is written \"num\")", 12);
  ExpectRefused("info num/hypot/x", KVLShellResult_NotFound,
                "no environment or object 'num/hypot/x': 'num/hypot' is no environment", 5);
  EXPECT_EQ(Ask("use num/hypot").code, KVLShellResult_NotFound);
}

TEST(KVLShellExpression, AWordThatLeadsNowhereMayBeAMistypedCommandOrValue) {
  const SessionGuard guard;
  ExpectRefused("vras", KVLShellResult_Usage, "unknown command 'vras'; did you mean 'vars'?", 0);
  ExpectRefused("wrod", KVLShellResult_NotFound, "no object 'wrod'; did you mean 'word'?", 0);
  (void)Ask("speed = 3");
  ExpectRefused("speed", KVLShellResult_NotFound, "no object 'speed'; did you mean '$speed'?", 0);
}

TEST(KVLShellExpression, NumbersThatFitNoTypeAreRefused) {
  ExpectRefused("99999999999999999999", KVLShellResult_Argument,
                "'99999999999999999999' is no number, or too large", 0);
  ExpectRefused("1e999", KVLShellResult_Argument, "'1e999' is no number, or too large", 0);
  ExpectRefused("12x", KVLShellResult_Argument, "'12x' is no number, or too large", 0);
  ExpectRefused("num/count(99999999999)", KVLShellResult_Argument,
                "num/count: argument 'n' expects int, got '99999999999'", 10);
  EXPECT_EQ(ValueOf("num/big(99999999999)"), "99999999999\n");
}

TEST(KVLShellExpression, ACallTakesArgumentsByPlaceAndByName) {
  EXPECT_EQ(ValueOf("num/add(1, 2.5)"), "3.5\n");
  EXPECT_EQ(ValueOf("num/add(b=1, a=2)"), "3\n");
  EXPECT_EQ(ValueOf("num/add(1, b = 2)"), "3\n");
  EXPECT_EQ(ValueOf("num/hypot(3, 4)"), "5\n");
  EXPECT_EQ(ValueOf("num/hypot(-3)"), "3\n");
  EXPECT_EQ(ValueOf("num/add(num/add(1, 2), num/hypot(3, num/count(4)))"), "8\n");
  EXPECT_EQ(ValueOf("call num/add(1, 2)"), "3\n");
  EXPECT_EQ(ValueOf("call num/add 1 2"), "3\n");
}

TEST(KVLShellExpression, ALiteralIsReadAsItsParameterWants) {
  EXPECT_EQ(ValueOf("num/add(1, 1e2)"), "101\n");
  EXPECT_EQ(ValueOf("word/length(12)"), "2\n");
  EXPECT_EQ(ValueOf("word/length(true)"), "4\n");
  EXPECT_EQ(ValueOf("word/length(\"\")"), "0\n");
  EXPECT_EQ(ValueOf("hue/next(Red)"), "Green\n");
  EXPECT_EQ(ValueOf("hue/next(\"Green\")"), "Blue\n");
  EXPECT_EQ(ValueOf("hue/mix(true)"), "Blue\n");
  EXPECT_EQ(ValueOf("spot/x((2, 3))"), "2\n");
  EXPECT_EQ(ValueOf("list/sum([1, 2.5, num/pi])"), "6.75\n");
  EXPECT_EQ(ValueOf("list/sum([])"), "0\n");
  EXPECT_EQ(ValueOf("word/join([\"a\", \"b, c\"], between=\"-\")"), "a-b, c\n");
  EXPECT_EQ(ValueOf("num/count(\"12\")"), "12\n");
}

TEST(KVLShellExpression, ATextArrivesAsItWasQuoted) {
  EXPECT_EQ(ValueOf("word/echo(\"a \\\"b\\\" \\\\ c\")"), "a \"b\" \\ c\n");
  EXPECT_EQ(ValueOf("word/length(\"\\\"b\\\"\")"), "3\n");
  // A text that begins with a quote is written as a quoted one.
  EXPECT_EQ(ValueOf("word/first([\"\\\"b\\\"\", \"x\"])"), "\"\\\"b\\\"\"\n");
  EXPECT_EQ(ValueOf("word/length(word/first([word/echo(\"\\\"b\\\"\")]))"), "3\n");
  EXPECT_EQ(ValueOf("word/first([word/echo(\"a,b\"), \"x\"])"), "a,b\n");
  EXPECT_EQ(ValueOf("any/same(\"3\")"), "\"3\"\n");
}

TEST(KVLShellExpression, AParameterOfAnyTypeTakesTypedValues) {
  EXPECT_EQ(ValueOf("any/same(3)"), "3\n");
  EXPECT_EQ(ValueOf("any/same([1, 2])"), "[1,2]\n");
  EXPECT_EQ(ValueOf("any/same(num/pi)"), "3.25\n");
}

TEST(KVLShellExpression, AVariableIsConvertedToItsParameter) {
  const SessionGuard guard;
  ExpectRefused("num/count(num/pi)", KVLShellResult_Argument,
                "num/count: argument 'n' expects int, got '3.25' of type double", 10);
  EXPECT_EQ(ValueOf("n = 3; num/add($n, $n)"), "6\n");
  EXPECT_EQ(ValueOf("num/count(num/add(1, 2))"), "3\n");
}

TEST(KVLShellExpression, AMistypedArgumentIsNotTakenForAText) {
  ExpectRefused("word/length(abc)", KVLShellResult_NotFound,
                "no object 'abc' (a text is written \"abc\")", 12);
  ExpectRefused("num/add(num/pj, 1)", KVLShellResult_NotFound,
                "no object 'num/pj': 'num/' holds no 'pj'; did you mean 'num/pi'?", 8);
  EXPECT_EQ(ValueOf("word/echo(num/add)"), "num/add\n");
}

TEST(KVLShellExpression, ArgumentsThatDoNotFitAreNamed) {
  ExpectRefused("num/add(1, x)", KVLShellResult_Argument,
                "num/add: argument 'b' expects double, got 'x'", 11);
  ExpectRefused("num/add(\"x\", 1)", KVLShellResult_Argument,
                "num/add: argument 'a' expects double, got 'x'", 8);
  ExpectRefused("num/add(1)", KVLShellResult_Argument, "num/add: argument 'b' (double) is missing",
                9);
  ExpectRefused("num/add()", KVLShellResult_Argument, "num/add: argument 'a' (double) is missing",
                8);
  ExpectRefused("num/add(1, 2, 3, 4)", KVLShellResult_Argument, "num/add: takes 2 arguments, got 4",
                14);
  ExpectRefused("num/add(1, c=2)", KVLShellResult_Argument, "num/add: no parameter 'c' among a, b",
                11);
  ExpectRefused("num/hypot(1, aa=2)", KVLShellResult_Argument,
                "num/hypot: no parameter 'aa' among a, b; did you mean 'a'?", 13);
  ExpectRefused("num/add(1, a=2)", KVLShellResult_Argument, "num/add: argument 'a' is given twice",
                11);
  ExpectRefused("num/add(a=1, 2)", KVLShellResult_Argument,
                "num/add: an argument without a name follows one with a name", 13);
  ExpectRefused("hue/next(Gren)", KVLShellResult_Argument,
                "hue/next: argument 'hue' expects Hue (Red, Green, Blue), got 'Gren'; did you mean "
                "'Green'?",
                9);
  ExpectRefused("num/ad(1, 2)", KVLShellResult_NotFound,
                "no function 'num/ad': 'num/' holds no 'ad'; did you mean 'num/add'?", 0);
  ExpectRefused("num/add(1, num/add(2, y))", KVLShellResult_Argument,
                "num/add: argument 'b' expects double, got 'y'", 22);
  ExpectRefused("num/pi(1)", KVLShellResult_NotFound, "'num/pi' is not a function", 0);
}

TEST(KVLShellExpression, AFailingCallPointsAtItsFunction) {
  ExpectRefused("odd/fail()", KVLResult_Failure, "odd/fail: the disk is full", 0);
  ExpectRefused("num/add(1, odd/fail())", KVLResult_Failure, "odd/fail: the disk is full", 11);
  ExpectRefused("odd/throw()", KVLResult_Failure,
                "odd/throw: the function threw something that is no std::exception", 0);
  ExpectRefused("num/divmod(1, 0)", KVLResult_Failure, "num/divmod: division by zero", 0);
  EXPECT_EQ(Ask("odd/exhaust()").code, KVLResult_Failure);
  EXPECT_EQ(ValueOf("num/add(1, 2)"), "3\n");
}

TEST(KVLShellExpression, AVoidResultPrintsNothing) {
  EXPECT_EQ(ValueOf("odd/nothing()"), "");
}

TEST(KVLShellExpression, OutputsFollowTheResult) {
  const SessionGuard guard;
  EXPECT_EQ(ValueOf("num/divmod(17, 5)"), "quotient = 3\nremainder = 2\n");
  EXPECT_EQ(ValueOf("num/divmod(17, 5, &q, &r); num/add($q, $r)"), "q = 3\nr = 2\n5\n");
  EXPECT_EQ(ValueOf("num/divmod(17, 5, remainder=&only)"), "quotient = 3\nonly = 2\n");
  EXPECT_EQ(ValueOf("num/increment(41)"), "number = 42\n");
}

TEST(KVLShellExpression, AnArgumentThatIsReadAndWrittenChangesItsSessionValue) {
  const SessionGuard guard;
  EXPECT_EQ(ValueOf("n = 41; num/increment(&n); num/increment(&n, by=8)"), "n = 42\nn = 50\n");
  EXPECT_EQ(ValueOf("$n"), "50\n");
  EXPECT_EQ(ValueOf("num/increment($n); $n"), "number = 51\n50\n");
  ExpectRefused("num/increment(&m)", KVLShellResult_NotFound,
                "no session value '$m', and argument 'number' is read as well", 14);
}

TEST(KVLShellExpression, OutputsAndInputsAreKeptApart) {
  ExpectRefused("num/divmod(17, 5, 1)", KVLShellResult_Argument,
                "num/divmod: argument 'quotient' is an output; '&name' takes it into a session "
                "value",
                18);
  ExpectRefused("num/add(&x, 1)", KVLShellResult_Argument,
                "num/add: argument 'a' is no output; '$x' stands for a session value", 8);
  ExpectRefused("&x", KVLShellResult_Usage, "'&' stands before an argument of a call", 0);
}

TEST(KVLShellExpression, SessionValuesAreCopiesOfWhatTheyWereSetFrom) {
  const SessionGuard guard;
  EXPECT_EQ(ValueOf("before = num/written; num/increment(number=1); $before"), "number = 2\n1.5\n");
  EXPECT_EQ(ValueOf("a = [1, 2]; b = $a; $b"), "[1,2]\n");
  EXPECT_EQ(ValueOf("a = 3; a = num/add($a, 1); $a"), "4\n");
}

TEST(KVLShellExpression, AnUnknownSessionValueIsNamed) {
  const SessionGuard guard;
  (void)Ask("total = 3");
  ExpectRefused("$totl", KVLShellResult_NotFound,
                "no session value '$totl'; did you mean '$total'?", 0);
  ExpectRefused("num/add($totl, 1)", KVLShellResult_NotFound,
                "no session value '$totl'; did you mean '$total'?", 8);
}

TEST(KVLShellExpression, OnlyIdentifiersAreSet) {
  ExpectRefused("a/b = 3", KVLShellResult_Usage,
                "'a/b' cannot name a session value; letters, digits and '_' can", 0);
  ExpectRefused("1 = 3", KVLShellResult_Usage,
                "'1' cannot name a session value; letters, digits and '_' can", 0);
}

TEST(KVLShellExpression, AFailedAssignmentLeavesTheValueAlone) {
  const SessionGuard guard;
  (void)Ask("a = 1");
  EXPECT_EQ(Ask("a = odd/fail()").code, KVLResult_Failure);
  EXPECT_EQ(ValueOf("$a"), "1\n");
}

TEST(KVLShellExpression, AnOpenPlaceIsForBindingsOnly) {
  ExpectRefused("num/add(_, 1)", KVLShellResult_Usage,
                "'_' keeps a parameter open, which only 'bind' can do", 8);
}

TEST(KVLShellExpression, ABracketAloneHasNoType) {
  ExpectRefused("(1, 2)", KVLShellResult_Argument,
                "'(1, 2)' has a type only as the argument of a call", 0);
}

TEST(KVLShellExpression, TheSessionTravelsWithEveryCall) {
  const SessionGuard guard;
  EXPECT_EQ(ValueOf("b = 1; a = 2; odd/names()"), "a;b;\n");
  EXPECT_EQ(ValueOf("call odd/names"), "a;b;\n");
  EXPECT_EQ(ValueOf("odd/set(\"c\", 5); $c"), "0\n5\n");
  EXPECT_EQ(ValueOf("odd/set(\"no name\", 5)"), "-2147024809\n");
}

TEST(KVLShellExpression, AnInterruptedCallEndsItsTextAndNoOther) {
  const Said said = Ask("odd/wait(); num/add(1, 2)");
  EXPECT_EQ(said.code, KVLShellResult_Interrupted);
  EXPECT_EQ(said.error, "error: odd/wait: interrupted\n  odd/wait(); num/add(1, 2)\n  ^\n");
  EXPECT_EQ(said.output, "");
  EXPECT_EQ(ValueOf("odd/wait(10)"), "10\n");
  KVLCodeShellInterrupt();
  EXPECT_EQ(ValueOf("odd/wait(10)"), "10\n");
}

TEST(KVLShellExpression, ATextMayRunInsideAnother) {
  const SessionGuard guard;
  EXPECT_EQ(ValueOf("odd/run(\"inner = 3\"); $inner"), "0\n3\n");
  EXPECT_EQ(ValueOf("odd/run(\"nothing/here()\")"), "-2147220989\n");
  // The innermost is refused, and those around it go on.
  EXPECT_EQ(ValueOf("odd/recurse()"), "0\n");
}

TEST(KVLShellExpression, HostileTextsAreRefusedAndTheSessionGoesOn) {
  const std::string nul(1, '\0');
  const std::string megabyte(1 << 20, 'x');
  std::string calls;
  for (int i = 0; i < 100000; ++i)
    calls += "num/add(";
  const std::string texts[] = {"num/add(" + nul + ", 1)",
                               "num/add(\xFF\xFE, \x80)",
                               "word/length(" + megabyte + ")",
                               megabyte + "(1)",
                               "num/add(" + megabyte + "=1)",
                               "$" + megabyte,
                               std::string(1 << 20, '['),
                               std::string(1 << 20, '('),
                               calls,
                               "[" + megabyte + "]",
                               "num/add(1, \"" + megabyte + "\")",
                               nul + " = 1",
                               "num/count(" + std::string(1 << 20, '9') + ")"};
  for (const std::string& text : texts) {
    const Said said = Ask(text);
    EXPECT_NE(said.code, KVLResult_Success);
    EXPECT_EQ(said.error.find("error: "), 0u) << said.error;
    EXPECT_LE(said.error.size(), 1000u);
    EXPECT_EQ(ValueOf("num/add(1, 2)"), "3\n");
  }
  EXPECT_EQ(ValueOf("word/length(\"" + megabyte + "\")"), "1048576\n");
  EXPECT_EQ(ValueOf("word/length(\"a" + nul + "\xFF\")"), "3\n");
}

TEST(KVLShellExpression, AMistypedPathLeavesNothingBehind) {
  const std::string before = Ask("ls -r").output;
  for (const char* const text :
       {"no/where/near(1)",     "no/where/near",        "num/add(no/where, 1)",
        "num/add/x(1)",         "x = no/where",         "[no/where]",
        "convert 1 no/where",   "bind x = no/where(_)", "use no/where",
        "info no/where",        "ls no/where",          "complete no/where/",
        "complete no/where(",   "find no/where",        "unuse no/where",
        "unset no/where",       "call no/where 1",      "num/add(1, no/where=2)",
        "convert no/where int", "help no/where",        "load no/where",
        "unload no/where",      "time no/where(1)"}) {
    (void)Ask(text);
    EXPECT_EQ(Ask("ls -r").output, before) << text;
  }
}

}  // namespace
