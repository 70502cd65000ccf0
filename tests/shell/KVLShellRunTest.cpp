#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <string>

#include "KVLCodeEnvShell.h"
#include "KVLCodeObjectRegisterer.h"
#include "KVLShellOutcome.h"
#include "KVLShellPath.h"
#include "KVLShellResult.h"
#include "support/TestObjects.h"

namespace {

using kvltest::MakeFunction;
using kvltest::MakeText;
using kvltest::TestFunction;
using kvltest::Values;

struct Said {
  std::string output;
  std::string error;
  long code = 0;
};

void Collect(void* receiver, int channel, const char* text, int length) {
  Said& said = *static_cast<Said*>(receiver);
  (channel == KVLShellChannel_Error ? said.error : said.output)
      .append(text, static_cast<std::size_t>(length));
}

Said Ask(const MRBUnicodeString& text) {
  Said said;
  said.code = KVLCodeShellRunTo(text, 0, Collect, &said);
  return said;
}

// An object in the default environment, for the length of a test.
class Published {
 public:
  Published(KVLCodeObject* object, const MRBUnicodeString& path, int line = 1)
      : registerer(KVLCodeEnv::GetDefault(), object, path,
                   KVLSourceLocation("shell/Test.cpp", line, "")) {}

 private:
  KVLCodeObjectRegisterer registerer;
};

KVLSmartPtr<KVLCodeValue> Nothing(Values&) {
  return nullptr;
}

KVLSmartPtr<KVLCodeValue> JoinFirstTwo(Values& args) {
  return MakeText("string", kvltest::ContentOf(args[0]) + "+" + kvltest::ContentOf(args[1]));
}

// "shelltest/join(string a, string b = "z")", which gives "a+b".
TestFunction* NewJoin() {
  return new TestFunction("join", "string", {{"a", "string"}, {"b", "string", 1, "z"}},
                          JoinFirstTwo);
}

// A value that reads nothing but "good".
class PickyValue : public kvltest::TextValue {
 public:
  PickyValue() : TextValue("picky", "picky") {}
  long SetValueStr(const KVLCodeContext& context, const MRBUnicodeString& text) override {
    return text == "good" ? TextValue::SetValueStr(context, text) : KVLResult_InvalidArgument;
  }
};

TEST(KVLShellRun, CallPrintsTheResult) {
  const Published join(NewJoin(), "shelltest/join");
  const Said said = Ask("call shelltest/join \"x y\" 1");
  EXPECT_EQ(said.output, "x y+1\n");
  EXPECT_EQ(said.error, "");
  EXPECT_EQ(said.code, KVLResult_Success);
}

TEST(KVLShellRun, ALeftOutArgumentTakesItsDefault) {
  const Published join(NewJoin(), "shelltest/join");
  EXPECT_EQ(Ask("call shelltest/join x").output, "x+z\n");
}

TEST(KVLShellRun, AMissingArgumentIsNamed) {
  const Published join(NewJoin(), "shelltest/join");
  const Said said = Ask("call shelltest/join");
  EXPECT_EQ(said.code, KVLShellResult_Argument);
  EXPECT_EQ(said.error,
            "error: shelltest/join: argument 'a' (string) is missing\n"
            "  call shelltest/join\n"
            "                     ^\n");
}

TEST(KVLShellRun, TooManyArgumentsAreCounted) {
  const Published join(NewJoin(), "shelltest/join");
  const Said said = Ask("call shelltest/join x y w v");
  EXPECT_EQ(said.code, KVLShellResult_Argument);
  EXPECT_EQ(said.error,
            "error: shelltest/join: takes 2 arguments, got 4\n"
            "  call shelltest/join x y w v\n"
            "                          ^\n");
  EXPECT_EQ(said.output, "");
}

TEST(KVLShellRun, AnArgumentThatIsNotReadIsNamedWithTypeAndText) {
  TestFunction* const function =
      new TestFunction("pick", "string", {{"first", "string"}, {"second", "picky"}}, JoinFirstTwo);
  function->makeArg = [](const KVLCodeFunction::Param& param) -> KVLSmartPtr<KVLCodeValue> {
    if (param.typeName == "picky") return new PickyValue();
    return MakeText("string");
  };
  const Published pick(function, "shelltest/pick");
  EXPECT_EQ(Ask("call shelltest/pick a good").output, "a+good\n");
  const Said said = Ask("call shelltest/pick \"\xC3\xA9\" \"b\\ta\xC3\xA9 d\"");
  EXPECT_EQ(said.code, KVLShellResult_Argument);
  EXPECT_EQ(said.error,
            "error: shelltest/pick: argument 'second' expects picky, got 'b\\x09a\xC3\xA9 d'\n"
            "  call shelltest/pick \"\xC3\xA9\" \"b\\ta\xC3\xA9 d\"\n"
            "                          ^\n");
  EXPECT_EQ(function->nbCalls, 1);
}

TEST(KVLShellRun, OutputParametersFollowTheResult) {
  const Published split(
      new TestFunction("split", "string",
                       {{"text", "string"}, {"head", "string", 2}, {"tail", "string", 3, "t"}},
                       [](Values& args) -> KVLSmartPtr<KVLCodeValue> {
                         static_cast<kvltest::TextValue&>(*args[1]).content = "h";
                         static_cast<kvltest::TextValue&>(*args[2]).content += "!";
                         return args[0];
                       }),
      "shelltest/split");
  EXPECT_EQ(Ask("call shelltest/split ht").output, "ht\nhead = h\ntail = t!\n");
  EXPECT_EQ(Ask("call shelltest/split ht u").output, "ht\nhead = h\ntail = u!\n");
  EXPECT_EQ(Ask("call shelltest/split ht u v").code, KVLShellResult_Argument);
}

TEST(KVLShellRun, AnExceptionOfTheFunctionIsShown) {
  const Published fail(new TestFunction("fail", "string", {},
                                        [](Values&) -> KVLSmartPtr<KVLCodeValue> {
                                          throw std::runtime_error("the disk is full");
                                        }),
                       "shelltest/fail");
  const Said said = Ask("call shelltest/fail");
  EXPECT_EQ(said.code, KVLResult_Failure);
  EXPECT_EQ(said.error,
            "error: shelltest/fail: the disk is full\n"
            "  call shelltest/fail\n"
            "       ^\n");
}

TEST(KVLShellRun, AnyThrownThingIsCaught) {
  const Published fail(
      new TestFunction("fail", "string", {}, [](Values&) -> KVLSmartPtr<KVLCodeValue> { throw 7; }),
      "shelltest/fail");
  const Said said = Ask("call shelltest/fail");
  EXPECT_EQ(said.code, KVLResult_Failure);
  EXPECT_EQ(said.error,
            "error: shelltest/fail: the function threw something that is no std::exception\n"
            "  call shelltest/fail\n"
            "       ^\n");
}

TEST(KVLShellRun, AMethodOnNothingIsAFailedCall) {
  TestFunction* const method = new TestFunction("method", "string", {{"this", "string"}});
  method->method = true;
  method->makeArg = [](const KVLCodeFunction::Param&) -> KVLSmartPtr<KVLCodeValue> {
    const kvltest::TextPtr nothing = MakeText("string");
    nothing->valued = false;
    return nothing;
  };
  const Published published(method, "shelltest/method");
  const Said said = Ask("call shelltest/method x");
  EXPECT_EQ(said.code, KVLResult_Failure);
  EXPECT_EQ(said.error,
            "error: shelltest/method: Calling method on null pointer\n"
            "  call shelltest/method x\n"
            "       ^\n");
}

TEST(KVLShellRun, ACallWithoutReturnedValueHasFailed) {
  const Published nothing(new TestFunction("nothing", "string", {}, Nothing), "shelltest/nothing");
  const Said said = Ask("call shelltest/nothing");
  EXPECT_EQ(said.code, KVLResult_Failure);
  EXPECT_EQ(said.error,
            "error: shelltest/nothing: the call failed with 0x80004005\n"
            "  call shelltest/nothing\n"
            "       ^\n");
}

TEST(KVLShellRun, AFunctionWithoutCallerHasFailed) {
  TestFunction* const function = new TestFunction("f", "string", {});
  function->makesCallers = false;
  const Published published(function, "shelltest/f");
  const Said said = Ask("call shelltest/f");
  EXPECT_EQ(said.code, KVLResult_Failure);
  EXPECT_EQ(said.error,
            "error: shelltest/f: the function makes no caller\n"
            "  call shelltest/f\n"
            "       ^\n");
}

TEST(KVLShellRun, AMissingArgumentObjectIsAFailureOfTheFunction) {
  TestFunction* const function = new TestFunction("f", "string", {{"a", "string"}});
  function->nbArgs = 0;
  const Published published(function, "shelltest/f");
  const Said said = Ask("call shelltest/f x");
  EXPECT_EQ(said.code, KVLResult_Failure);
  EXPECT_EQ(said.error,
            "error: shelltest/f: no argument 'a' of type 'string' is made\n"
            "  call shelltest/f x\n"
            "       ^\n");
}

TEST(KVLShellRun, AMistypedNameGetsTheNearest) {
  const Published join(NewJoin(), "shelltest/join");
  const Said said = Ask("call shelltest/jion x");
  EXPECT_EQ(said.code, KVLShellResult_NotFound);
  EXPECT_EQ(said.error,
            "error: no function 'shelltest/jion': 'shelltest/' holds no 'jion'; did you mean "
            "'shelltest/join'?\n"
            "  call shelltest/jion x\n"
            "       ^\n");
}

TEST(KVLShellRun, AMistypedEnvironmentGetsTheWholePath) {
  const Published join(NewJoin(), "shelltest/join");
  EXPECT_EQ(Ask("info sheltest/join").error,
            "error: no environment or object 'sheltest/join': '/' holds no 'sheltest'; did you "
            "mean 'shelltest/join'?\n"
            "  info sheltest/join\n"
            "       ^\n");
}

TEST(KVLShellRun, AMistypedPathLeavesNothingBehind) {
  const Published join(NewJoin(), "shelltest/join");
  const std::string before = Ask("ls -r").output;
  EXPECT_EQ(Ask("call nowhere/near/this x").code, KVLShellResult_NotFound);
  EXPECT_EQ(Ask("call shelltest/join/deeper x").code, KVLShellResult_NotFound);
  EXPECT_EQ(Ask("ls nowhere/near/").code, KVLShellResult_NotFound);
  EXPECT_EQ(Ask("info shelltest/x/y/z").code, KVLShellResult_NotFound);
  EXPECT_EQ(Ask("convert 1 no/such/type").code, KVLShellResult_NotFound);
  EXPECT_EQ(Ask("no/command x").code, KVLShellResult_Usage);
  EXPECT_EQ(Ask("ls -r").output, before);
}

TEST(KVLShellRun, EmptyNamesInAPathCountForNothing) {
  const Published join(NewJoin(), "shelltest/join");
  EXPECT_EQ(Ask("call //shelltest///join x").output, "x+z\n");
}

TEST(KVLShellRun, WhatIsNoFunctionIsNotCalled) {
  const Published variable(new kvltest::TextValue("v", "string", "7"), "shelltest/v");
  for (const char* const path : {"shelltest/v", "shelltest", "shelltest/"}) {
    const Said said = Ask(MRBUnicodeString("call ") + path);
    EXPECT_EQ(said.code, KVLShellResult_NotFound);
    EXPECT_NE(said.error.find("' is not a function\n"), std::string::npos) << said.error;
  }
}

TEST(KVLShellRun, ListingsAreSortedAndTellObjectsFromEnvironments) {
  const Published z(new kvltest::TextValue("z", "string", "7"), "shelltest/z");
  const Published join(NewJoin(), "shelltest/join");
  const Published inner(NewJoin(), "shelltest/join/inner");
  const Published type(new kvltest::TestType("T"), "shelltest/T");
  EXPECT_EQ(Ask("ls shelltest").output,
            "T      type      T\n"
            "join   function  string join(string a, string b=z)\n"
            "join/  env\n"
            "z      variable  string z = 7\n");
  EXPECT_EQ(Ask("ls -r shelltest").output,
            "T           type      T\n"
            "join        function  string join(string a, string b=z)\n"
            "join/       env\n"
            "join/inner  function  string join(string a, string b=z)\n"
            "z           variable  string z = 7\n");
  EXPECT_EQ(Ask("ls shelltest/z").output, "shelltest/z  variable  string z = 7\n");
}

TEST(KVLShellRun, AggregatedEnvironmentsAreListedOnce) {
  const KVLSmartPtr<KVLCodeEnv> other = new KVLCodeEnv("other");
  other->Add(KVLSmartPtr<KVLCodeObject>(NewJoin()), "shellaggregated/join");
  other->Add(KVLSmartPtr<KVLCodeObject>(new kvltest::TextValue("own", "string", "hidden")),
             "shellaggregated/own");
  const Published own(new kvltest::TextValue("own", "string", "seen"), "shellaggregated/own");
  KVLCodeEnv::GetDefault().AggregateEnv(*other);
  EXPECT_EQ(Ask("ls shellaggregated").output,
            "join  function  string join(string a, string b=z)\n"
            "own   variable  string own = seen\n");
  EXPECT_EQ(Ask("call shellaggregated/join x").output, "x+z\n");
  KVLCodeEnv::GetDefault().UnAggregateEnv(*other);
}

TEST(KVLShellRun, EnvironmentsInACircleAreListedToAnEnd) {
  const KVLSmartPtr<KVLCodeEnv> circle = new KVLCodeEnv("circle");
  KVLCodeEnv& inner = circle->GetSubEnv("inner");
  inner.AggregateEnv(*circle);
  KVLCodeEnv::GetDefault().AggregateEnv(*circle);
  EXPECT_NE(Ask("ls -r").output.find("inner/inner/"), std::string::npos);
  KVLCodeEnv::GetDefault().UnAggregateEnv(*circle);
  inner.UnAggregateEnv(*circle);
}

// What `info` tells, without the module: on some platforms it is the program's file.
std::string InfoOf(const MRBUnicodeString& path) {
  std::string output = Ask("info " + path).output;
  const std::size_t start = output.find("module:");
  if (start != std::string::npos) output.erase(start, output.find('\n', start) + 1 - start);
  return output;
}

TEST(KVLShellRun, InfoTellsPlacesAndRefusedDuplicates) {
  const Published first(NewJoin(), "shellinfo/join", 11);
  const Published second(NewJoin(), "shellinfo/join", 22);
  const Published other(NewJoin(), "shellinfo/other", 33);
  EXPECT_EQ(InfoOf("shellinfo/join"),
            "path:        shellinfo/join\n"
            "kind:        function\n"
            "declaration: string join(string a, string b=z)\n"
            "parameter:   in string a\n"
            "parameter:   in string b = z\n"
            "returns:     string\n"
            "registered:  shell/Test.cpp:11\n"
            "refused:     Tried to add two times object with name 'join'. First (effective) "
            "registration done at 'shell/Test.cpp:11'. Second (uneffective) registration done at "
            "'shell/Test.cpp:22'.\n");
  EXPECT_EQ(InfoOf("shellinfo/other").find("refused"), std::string::npos);
  const std::string env = InfoOf("shellinfo");
  EXPECT_NE(env.find("problem:     "), std::string::npos) << env;
  EXPECT_NE(env.find("shell/Test.cpp:22"), std::string::npos) << env;
}

TEST(KVLShellRun, InfoTellsTheDoc) {
  const Published join(NewJoin(), "_shellinfo/join");
  const Published doc(new kvltest::TextValue("join", "string", "Joins two texts."),
                      "doc/shellinfo/join");
  EXPECT_EQ(InfoOf("_shellinfo/join")
                .find("path:        _shellinfo/join\n"
                      "kind:        function\n"
                      "doc:         Joins two texts.\n"),
            0u);
}

TEST(KVLShellRun, InfoOfATypeTellsParentsMembersConversionsAndValues) {
  kvltest::TestType* const axis = new kvltest::TestType("ShellAxis", "ShellWay");
  axis->enumValues = kvltest::MakeTexts({"X", "Y"});
  const Published publishedAxis(axis, "_types/ShellAxis");
  const Published way(new kvltest::TestType("ShellWay", "ShellGone"), "_types/ShellWay");
  const Published member(NewJoin(), "_members/ShellAxis/Join");
  const Published inherited(NewJoin(), "_members/ShellWay/Length");
  const Published to(NewJoin(), "_conversions/ShellAxis/string");
  const Published from(NewJoin(), "_conversions/string/ShellAxis");
  const std::string expected =
      "path:          _types/ShellAxis\n"
      "kind:          type\n"
      "parents:       ShellWay, ShellGone\n"
      "value:         X\n"
      "value:         Y\n"
      "members:       Join\n"
      "inherited:     ShellWay/Length\n"
      "converts to:   string\n"
      "converts from: string\n"
      "registered:    shell/Test.cpp:1\n";
  EXPECT_EQ(InfoOf("_types/ShellAxis"), expected);
  EXPECT_EQ(InfoOf("ShellAxis"), expected);
}

TEST(KVLShellRun, InfoOfTypesWhoseParentsFormALoopEnds) {
  const Published a(new kvltest::TestType("ShellLoopA", "ShellLoopB"), "_types/ShellLoopA");
  const Published b(new kvltest::TestType("ShellLoopB", "ShellLoopA"), "_types/ShellLoopB");
  EXPECT_NE(InfoOf("ShellLoopA").find("parents:     ShellLoopB, ShellLoopA\n"), std::string::npos);
}

TEST(KVLShellRun, AVariableThatCannotBeWrittenSaysSo) {
  kvltest::TextValue* const value = new kvltest::TextValue("v", "string");
  value->readResult = KVLResult_NotImplemented;
  const Published published(value, "shelltest/v");
  EXPECT_EQ(InfoOf("shelltest/v"),
            "path:        shelltest/v\n"
            "kind:        variable\n"
            "type:        string\n"
            "value:       cannot be written: 0x80004001\n"
            "registered:  shell/Test.cpp:1\n");
  EXPECT_EQ(Ask("ls shelltest/v").output, "shelltest/v  variable  string v\n");
}

TEST(KVLShellRun, TheShellNeverClaimsToBeMissing) {
  TestFunction* const function =
      new TestFunction("f", "string", {}, [](Values&) -> KVLSmartPtr<KVLCodeValue> {
        const kvltest::TextPtr value = MakeText("string");
        value->readResult = KVLResult_NotImplemented;
        return value;
      });
  const Published published(function, "shelltest/f");
  const Said said = Ask("call shelltest/f");
  EXPECT_EQ(said.code, KVLResult_Failure);
  EXPECT_EQ(said.error,
            "error: shelltest/f: the call failed with 0x80004001\n"
            "  call shelltest/f\n"
            "       ^\n");
}

TEST(KVLShellRun, CommandsRunInOrderUpToTheFirstFailure) {
  const Published join(NewJoin(), "shelltest/join");
  const Said said = Ask("call shelltest/join 1; call shelltest/join 2\ncall no; ls");
  EXPECT_EQ(said.output, "1+z\n2+z\n");
  EXPECT_EQ(said.code, KVLShellResult_NotFound);
  EXPECT_EQ(said.error, "error: no function 'no'\n  call no; ls\n       ^\n");
}

TEST(KVLShellRun, NothingRunsWhenAPartIsNotUnderstood) {
  const Published join(NewJoin(), "shelltest/join");
  const Said said = Ask("call shelltest/join 1; call \"x");
  EXPECT_EQ(said.code, KVLShellResult_Usage);
  EXPECT_EQ(said.output, "");
  EXPECT_EQ(said.error,
            "error: missing closing '\"'\n"
            "  call shelltest/join 1; call \"x\n"
            "                              ^\n");
}

TEST(KVLShellRun, AnEmptyTextDoesNothing) {
  const Said said = Ask("");
  EXPECT_EQ(said.code, KVLResult_Success);
  EXPECT_EQ(said.output + said.error, "");
}

TEST(KVLShellRun, AnUnknownCommandIsMisuse) {
  EXPECT_EQ(Ask("cal x").error,
            "error: unknown command 'cal'; did you mean 'call'?\n  cal x\n  ^\n");
  EXPECT_EQ(Ask("xyzzy").error,
            "error: unknown command 'xyzzy'; 'help' lists the commands\n  xyzzy\n  ^\n");
  EXPECT_EQ(Ask("xyzzy").code, KVLShellResult_Usage);
}

TEST(KVLShellRun, APathInPlaceOfACommandIsExplained) {
  const Published join(NewJoin(), "shelltest/join");
  EXPECT_EQ(Ask("shelltest/join x").error,
            "error: unknown command 'shelltest/join'; 'call shelltest/join ...' calls a function\n"
            "  shelltest/join x\n"
            "  ^\n");
}

TEST(KVLShellRun, MisuseTellsTheUsage) {
  const struct {
    const char* text;
    const char* message;
  } cases[] = {
      {"call", "call: takes at least 1 word, got 0; usage: call PATH TEXT..."},
      {"vars now", "vars: takes no words, got 1; usage: vars"},
      {"convert 1",
       "convert: takes at least 2 words, got 1; usage: convert VALUE [FROM] TO [--explain]"},
      {"convert 1 a b c",
       "convert: takes at most 3 words, got 4; usage: convert VALUE [FROM] TO [--explain]"},
      {"help a b", "help: takes at most 1 word, got 2; usage: help [TOPIC]"},
      {"info", "info: takes 1 word, got 0; usage: info PATH"},
      {"info a b", "info: takes 1 word, got 2; usage: info PATH"},
      {"ls -x", "ls: unknown option '-x'; usage: ls [-r] [-k KIND] [PATH]"},
      {"ls a b", "ls: takes at most 1 word, got 2; usage: ls [-r] [-k KIND] [PATH]"},
  };
  for (const auto& misuse : cases) {
    const Said said = Ask(misuse.text);
    EXPECT_EQ(said.code, KVLShellResult_Usage) << misuse.text;
    EXPECT_EQ(said.error.substr(0, said.error.find('\n')), std::string("error: ") + misuse.message);
    EXPECT_EQ(said.output, "") << misuse.text;
  }
}

TEST(KVLShellRun, HelpTellsEveryCommand) {
  const std::string all = "\n" + Ask("help").output;
  for (const char* const name :
       {"bind",    "call",   "check", "complete", "convert", "find", "help",
        "history", "info",   "load",  "ls",       "modules", "quit", "source",
        "time",    "unload", "unset", "unuse",    "use",     "vars"}) {
    EXPECT_NE(all.find(std::string("\n") + name + " "), std::string::npos) << name;
    const Said one = Ask(MRBUnicodeString("help ") + name);
    EXPECT_EQ(one.code, KVLResult_Success);
    EXPECT_EQ(one.output.find(name), 0u);
  }
  EXPECT_EQ(Ask("help cal").code, KVLShellResult_NotFound);
}

TEST(KVLShellRun, HostileTextsAreAnsweredNotSurvived) {
  const std::string nul(1, '\0');
  const std::string texts[] = {"call " + nul,
                               "call \xFF\xFE/\x80 \xC3",
                               nul,
                               "\x80\x80\x80",
                               "ls " + std::string(5000, '/'),
                               "call " + std::string(1 << 20, 'x'),
                               "info \"" + std::string(1 << 20, '/') + "x\"",
                               std::string(1 << 20, ';'),
                               "call " + std::string(100000, '(')};
  for (const std::string& text : texts) {
    const Said said = Ask(MRBUnicodeString(text.data(), static_cast<int>(text.size())));
    EXPECT_LE(said.error.size(), 1000u);
    EXPECT_EQ(said.code == KVLResult_Success, said.error.empty());
  }
}

TEST(KVLShellRun, ANulInANameMatchesNoShorterName) {
  const Published join(NewJoin(), "shelltest/join");
  const char text[] = "call shelltest/join\0x 1";
  const Said said = Ask(MRBUnicodeString(text, static_cast<int>(sizeof(text)) - 1));
  EXPECT_EQ(said.code, KVLShellResult_NotFound);
  EXPECT_NE(said.error.find("'shelltest/join\\x00x'"), std::string::npos) << said.error;
}

TEST(KVLShellRun, NoExceptionLeavesTheShell) {
  const Published fail(
      new TestFunction("fail", "string", {},
                       [](Values&) -> KVLSmartPtr<KVLCodeValue> { throw std::bad_alloc(); }),
      "shelltest/fail");
  EXPECT_EQ(Ask("call shelltest/fail").code, KVLResult_Failure);
  TestFunction* const describing = new TestFunction("f", "string", {{"a", "string"}});
  describing->makeArg = [](const KVLCodeFunction::Param&) -> KVLSmartPtr<KVLCodeValue> {
    throw std::runtime_error("no arguments today");
  };
  const Published published(describing, "shelltest/f");
  EXPECT_EQ(Ask("call shelltest/f x").error,
            "error: shelltest/f: no arguments today\n"
            "  call shelltest/f x\n"
            "       ^\n");
}

TEST(KVLShellNearest, OnlyWhatIsNearIsMeant) {
  const KVLVector<MRBUnicodeString> names = kvltest::MakeTexts({"add", "Distance", "x", "lerp"});
  EXPECT_EQ(KVLShellNearest("ad", names), "add");
  EXPECT_EQ(KVLShellNearest("dad", names), "add");
  EXPECT_EQ(KVLShellNearest("distnace", names), "Distance");
  EXPECT_EQ(KVLShellNearest("lepr", names), "lerp");
  EXPECT_EQ(KVLShellNearest("y", names), "");
  EXPECT_EQ(KVLShellNearest("remainder", names), "");
  EXPECT_EQ(KVLShellNearest("", names), "");
}

TEST(KVLShellResult, EveryCodeHasItsExitCode) {
  EXPECT_EQ(KVLExitCodeOf(KVLResult_Success), 0);
  EXPECT_EQ(KVLExitCodeOf(KVLResult_False), 1);
  EXPECT_EQ(KVLExitCodeOf(KVLResult_Failure), 1);
  EXPECT_EQ(KVLExitCodeOf(KVLShellResult_Usage), 2);
  EXPECT_EQ(KVLExitCodeOf(KVLShellResult_NotFound), 3);
  EXPECT_EQ(KVLExitCodeOf(KVLShellResult_Argument), 4);
  EXPECT_EQ(KVLExitCodeOf(KVLResult_NotImplemented), 5);
  EXPECT_TRUE(KVLFailed(KVLShellResult_Usage));
  EXPECT_TRUE(KVLFailed(KVLShellResult_NotFound));
  EXPECT_TRUE(KVLFailed(KVLShellResult_Argument));
}

TEST(KVLShellPrintable, ControlCharactersAreEscapedAndLongTextsCut) {
  EXPECT_EQ(KVLShellPrintable(MRBUnicodeString("a\0\n\x7F", 4)), "a\\x00\\x0a\\x7f");
  const std::string sixty(60, 'x');
  EXPECT_EQ(KVLShellPrintable(sixty.c_str()), sixty.c_str());
  EXPECT_EQ(KVLShellPrintable((sixty + "y").c_str()), (sixty + "...").c_str());
  const std::string cutInside = std::string(59, 'x') + "\xC3\xA9";
  EXPECT_EQ(KVLShellPrintable(cutInside.c_str()), (std::string(59, 'x') + "...").c_str());
}

}  // namespace
