#include <gtest/gtest.h>

#include <cstdio>
#include <nlohmann/json.hpp>

#include "KVLCodeEnv.h"
#include "KVLCodeObjectRegisterer.h"
#include "KVLShellResult.h"
#include "ShellSupport.h"
#include "support/TestObjects.h"

namespace {

using kvltest::Ask;
using kvltest::Bytes;
using kvltest::Said;
using kvltest::SessionGuard;
using Json = nlohmann::json;

// The object that one command answers with; what goes for every answer is checked here.
Json Answer(const std::string& text) {
  const Said said = Ask(text, KVLShellFlag_Json);
  EXPECT_EQ(said.error, "") << text;
  EXPECT_EQ(said.output.find('\n'), said.output.size() - 1) << text;
  const Json answer = Json::parse(said.output, nullptr, false);
  EXPECT_TRUE(answer.is_object()) << said.output;
  EXPECT_EQ(answer.value("kvl", 0), 1);
  const bool isDone = said.code == KVLResult_Success || KVLShellIsQuit(said.code);
  EXPECT_EQ(answer.value("ok", !isDone), isDone) << text;
  EXPECT_EQ(answer.contains("error"), !isDone) << text;
  EXPECT_TRUE(!isDone || answer.contains("result")) << text;
  if (isDone) return answer;
  for (const char* const field : {"code", "kind", "message", "path", "parameter", "expected", "got",
                                  "suggestion", "line", "column", "offset", "cause"}) {
    EXPECT_TRUE(answer["error"].contains(field)) << text << ": " << field;
  }
  EXPECT_EQ(answer["error"]["code"], KVLExitCodeOf(said.code)) << text;
  EXPECT_EQ(answer["error"].size(), 12u) << text;
  // Text and JSON come from one structure.
  const std::string message = answer["error"]["message"];
  const std::string error = Ask(text).error;
  const bool isReplaced = message.find("\xEF\xBF\xBD") != std::string::npos;
  const std::string expected = message.empty() ? "" : "error: " + message;
  EXPECT_TRUE(isReplaced || error.substr(0, error.find('\n')) == expected) << text << "\n" << error;
  return answer;
}

Json ResultOf(const std::string& text) {
  return Answer(text)["result"];
}

Json ErrorOf(const std::string& text) {
  return Answer(text)["error"];
}

class Published {
 public:
  Published(KVLCodeObject* object, const MRBUnicodeString& path)
      : registerer(KVLCodeEnv::GetDefault(), object, path, KVLSourceLocation("here.cpp", 7, "")) {}

 private:
  KVLCodeObjectRegisterer registerer;
};

std::string ScratchFile(const std::string& content) {
  const std::string path = "shell_world_test.kvl";
  std::FILE* const file = std::fopen(path.c_str(), "wb");
  EXPECT_NE(file, nullptr);
  EXPECT_EQ(std::fwrite(content.data(), 1, content.size(), file), content.size());
  EXPECT_EQ(std::fclose(file), 0);
  return path;
}

// --- the form of JSON answers ---

TEST(KVLShellJson, AValueHasATypeAndAText) {
  EXPECT_EQ(Ask("num/add(1, 4)", KVLShellFlag_Json).output,
            "{\"kvl\":1,\"ok\":true,\"result\":{\"type\":\"double\",\"text\":\"5\"}}\n");
  EXPECT_EQ(ResultOf("call num/add 1 4"), Json::parse(R"j({"type":"double","text":"5"})j"));
  EXPECT_EQ(ResultOf("odd/nothing()"), Json::parse(R"j({"type":"void","text":""})j"));
}

TEST(KVLShellJson, OutputsStandBesideTheResult) {
  const SessionGuard guard;
  EXPECT_EQ(ResultOf("num/divmod(17, 5, &q)")["outputs"],
            Json::parse(R"j([{"name":"q","parameter":"quotient","type":"int","text":"3"},
                            {"name":"remainder","parameter":"remainder","type":"int","text":"2"}])j"));
  EXPECT_EQ(ResultOf("call num/divmod 17 5")["outputs"][1]["text"], "2");
}

TEST(KVLShellJson, AnErrorNamesTheCulprit) {
  EXPECT_EQ(ErrorOf("num/add(1, \"x\")"), Json::parse(R"j({"code":4,"kind":"argument",
              "message":"num/add: argument 'b' expects double, got 'x'",
              "path":"num/add","parameter":"b","expected":"double","got":"x","suggestion":null,
              "line":1,"column":12,"offset":11,"cause":"0x80070057"})j"));
  EXPECT_EQ(ErrorOf("num/ad(1)"), Json::parse(R"j({"code":3,"kind":"not_found",
              "message":"no function 'num/ad': 'num/' holds no 'ad'; did you mean 'num/add'?",
              "path":"num/ad","parameter":null,"expected":null,"got":"num/ad",
              "suggestion":"num/add","line":1,"column":1,"offset":0,"cause":null})j"));
}

TEST(KVLShellJson, EveryKindOfFailureHasItsWord) {
  EXPECT_EQ(ErrorOf("f(")["kind"], "usage");
  EXPECT_EQ(ErrorOf("no/where")["kind"], "not_found");
  EXPECT_EQ(ErrorOf("num/add(1)")["kind"], "argument");
  EXPECT_EQ(ErrorOf("odd/fail()")["kind"], "failed");
  EXPECT_EQ(ErrorOf("odd/wait()")["kind"], "interrupted");
  EXPECT_EQ(ErrorOf("load Nope")["kind"], "load");
  EXPECT_EQ(ErrorOf("find zzz")["kind"], "no");
}

TEST(KVLShellJson, ColumnsCountCharactersAndLinesBothFromOne) {
  const Json error = ErrorOf("\n word/join([\"\xC3\xA9\"], x)");
  EXPECT_EQ(error["line"], 2);
  EXPECT_EQ(error["column"], 19);
  EXPECT_EQ(error["offset"], 20);
}

TEST(KVLShellJson, EachCommandOfATextAnswersOnALine) {
  const Said said = Ask("num/add(1, 2); word/length(\"a\nb\"); vars", KVLShellFlag_Json);
  EXPECT_EQ(std::count(said.output.begin(), said.output.end(), '\n'), 3);
}

TEST(KVLShellJson, BytesThatAreNoUtf8AreReplaced) {
  EXPECT_EQ(ResultOf("word/echo(\"a\xFF"
                     "b\")")["text"],
            "a\xEF\xBF\xBD"
            "b");
  EXPECT_EQ(ErrorOf("\xFF\xFE")["got"], "\xEF\xBF\xBD\xEF\xBF\xBD");
  EXPECT_EQ(ResultOf("word/length(\"a" + std::string(1, '\0') + "\")")["text"], "2");
}

TEST(KVLShellJson, TheOptionGoesForOneCommand) {
  const Said said = Ask("ls --json num; num/add(1, 2)");
  EXPECT_EQ(said.output.find("{\"kvl\":1,\"ok\":true,"), 0u);
  EXPECT_EQ(said.output.substr(said.output.find('\n')), "\n3\n");
  EXPECT_EQ(Ask("word/length(\"--json\")").output, "6\n");
  EXPECT_EQ(Ask("call word/length --json").output, "6\n");
}

// --- commands ---

TEST(KVLShellLs, ListsByKind) {
  EXPECT_EQ(Ask("ls -k variable num").output,
            "pi       variable  double pi = 3.25\n"
            "written  variable  double written = 1.5\n");
  EXPECT_EQ(Ask("ls -k env -r _members").output, "Spot/  env\n");
  EXPECT_EQ(ResultOf("ls -k variable num")[0],
            Json::parse(R"j({"name":"pi","kind":"variable","signature":"double pi = 3.25"})j"));
  EXPECT_EQ(ErrorOf("ls -k thing")["message"],
            "ls: '-k' takes function|type|variable|env, got 'thing'; usage: ls [-r] [-k KIND] "
            "[PATH]");
  EXPECT_EQ(ErrorOf("ls -k")["kind"], "usage");
  EXPECT_EQ(ErrorOf("ls nowhere")["kind"], "not_found");
}

TEST(KVLShellFind, FindsByNameTypeAndDoc) {
  EXPECT_EQ(Ask("find HYPOT").output, "num/hypot  function  double hypot(double a, double b=0)\n");
  EXPECT_EQ(Ask("find h?po*").output, "num/hypot  function  double hypot(double a, double b=0)\n");
  EXPECT_EQ(Ask("find bytes").output, "word/length  function  int length(string text)\n");
  EXPECT_EQ(Ask("find hue/* -k function").output,
            "hue/mix   function  Hue mix(bool strong, Hue hue=Blue)\n"
            "hue/next  function  Hue next(Hue hue)\n");
  EXPECT_EQ(Ask("find * -t Spot -k function").output,
            "_members/Spot/Shift  function  void Shift(Spot& this, double dx, double dy=0)\n"
            "spot/x               function  double x(Spot spot)\n");
  EXPECT_EQ(ResultOf("find bytes")[0]["matched"], "doc");
  EXPECT_EQ(ResultOf("find hypot")[0]["matched"], "name");
  EXPECT_EQ(ResultOf("find int64 -k function")[0]["path"], "_conversions/int/int64");
}

TEST(KVLShellFind, NothingFoundIsTheAnswerNo) {
  const Said said = Ask("find zzz");
  EXPECT_EQ(said.code, KVLResult_False);
  EXPECT_EQ(said.output + said.error, "");
  EXPECT_EQ(Answer("find zzz")["result"], Json::array());
  EXPECT_EQ(ErrorOf("find * -t Spod")["suggestion"], "Spot");
  EXPECT_EQ(ErrorOf("find")["kind"], "usage");
  EXPECT_EQ(ErrorOf("find a b")["kind"], "usage");
}

TEST(KVLShellFind, ALongPatternTakesNoLongTime) {
  const std::string pattern(2000, '*');
  EXPECT_EQ(Ask("find " + pattern + "zzz").code, KVLResult_False);
}

TEST(KVLShellInfo, TellsAllInJson) {
  const Json info = ResultOf("info num/hypot")[0];
  EXPECT_EQ(info["doc"], "Length of (a, b).");
  EXPECT_EQ(info["declaration"], "double hypot(double a, double b=0)");
  EXPECT_EQ(info["parameters"][1],
            Json::parse(R"j({"name":"b","type":"double","direction":"in","default":"0"})j"));
  EXPECT_EQ(info["returns"], "double");
  EXPECT_EQ(info["registered"].size(), 1u);
  EXPECT_EQ(ResultOf("info Hue")[0]["values"], Json::parse(R"j(["Red","Green","Blue"])j"));
  EXPECT_EQ(ErrorOf("info num/hypo")["suggestion"], "num/hypot");
  EXPECT_EQ(ErrorOf("info doubel")["suggestion"], "double");
}

TEST(KVLShellConvert, TellsTheConversionTaken) {
  EXPECT_EQ(Ask("convert 3 double").output, "3\n");
  EXPECT_EQ(Ask("convert 3 double --explain").output,
            "from:        3 (int)\n"
            "step:        _conversions/int/double: double double(int from)\n"
            "to:          3 (double)\n");
  EXPECT_EQ(ResultOf("convert 3 double"), Json::parse(R"j({"type":"double","text":"3"})j"));
  EXPECT_EQ(ResultOf("convert 3 double --explain")["steps"][0]["path"], "_conversions/int/double");
  EXPECT_EQ(Ask("convert \"Red\" Hue Hue --explain").output,
            "from:        Red (Hue)\n"
            "way:         the types are equal: assigned\n"
            "to:          Red (Hue)\n");
}

TEST(KVLShellConvert, ClimbsFromParentToParent) {
  const Published child(new kvltest::TestType("ShellChild", "ShellParent"), "_types/ShellChild");
  const Published parent(new kvltest::TestType("ShellParent", "Spot"), "_types/ShellParent");
  const std::string text = Ask("convert x ShellChild int --explain").output;
  EXPECT_EQ(text,
            "from:        x (ShellChild)\n"
            "step:        _conversions/ShellChild/int: none\n"
            "step:        _conversions/ShellParent/int: none\n"
            "step:        _conversions/Spot/int: none\n");
  EXPECT_EQ(ErrorOf("convert x ShellChild int")["message"],
            "convert: no conversion from ShellChild to int");
  EXPECT_EQ(Ask("convert x ShellChild ShellParent --explain").output,
            "from:        x (ShellChild)\n"
            "step:        _conversions/ShellChild/ShellParent: none\n"
            "step:        _conversions/ShellParent/ShellParent: none\n"
            "step:        _conversions/Spot/ShellParent: none\n"
            "way:         a descendant: copied as text\n"
            "to:          x (ShellParent)\n");
}

TEST(KVLShellConvert, TypesWhoseParentsFormALoopEnd) {
  const Published a(new kvltest::TestType("ShellLoopA", "ShellLoopB"), "_types/ShellLoopA");
  const Published b(new kvltest::TestType("ShellLoopB", "ShellLoopA"), "_types/ShellLoopB");
  const Said said = Ask("convert x ShellLoopA int --explain");
  EXPECT_EQ(said.code, KVLShellResult_Argument);
  EXPECT_NE(said.error.find("the parents of ShellLoopA form a loop"), std::string::npos)
      << said.error;
}

TEST(KVLShellConvert, RefusalsSayWhy) {
  EXPECT_EQ(ErrorOf("convert 2.5 int")["cause"], "0x80070057");
  EXPECT_EQ(ErrorOf("convert 2.5 int")["got"], "2.5");
  EXPECT_EQ(ErrorOf("convert Red Hue string")["message"],
            "convert: 'Red' (Hue) is refused by the conversion to string: colours have no names "
            "today");
  EXPECT_EQ(ErrorOf("convert 2 Sopt")["suggestion"], "Spot");
  EXPECT_EQ(ErrorOf("convert abc double int")["message"], "convert: 'abc' is no double");
  EXPECT_EQ(ErrorOf("convert 1")["kind"], "usage");
  EXPECT_EQ(ErrorOf("convert 1 int int int")["kind"], "usage");
  EXPECT_EQ(ErrorOf("convert 99999999999 int64 int")["kind"], "argument");
}

TEST(KVLShellConvert, AMistypedSessionValueIsNotFound) {
  const SessionGuard guard;
  (void)Ask("xx = 3");
  const Json error = ErrorOf("convert $xy double");
  EXPECT_EQ(error["code"], 3);
  EXPECT_EQ(error["suggestion"], "$xx");
  EXPECT_EQ(error["message"], "no session value '$xy'; did you mean '$xx'?");
  EXPECT_EQ(ErrorOf("convert \"$xy\" double")["kind"], "argument");
}

TEST(KVLShellCall, WhatIsMissingIsNullAndWhatIsEmptyIsNot) {
  EXPECT_EQ(ErrorOf("num/add(1)")["expected"], "double");
  EXPECT_TRUE(ErrorOf("num/add(1)")["got"].is_null());
  EXPECT_EQ(ErrorOf("num/add(\"\", 1)")["got"], "");
}

TEST(KVLShellVars, ListsSessionValues) {
  const SessionGuard guard;
  EXPECT_EQ(Ask("vars").output, "");
  EXPECT_EQ(ResultOf("n = num/add(1, 2)"),
            Json::parse(R"j({"name":"n","type":"double","text":"3"})j"));
  (void)Ask("a = [\"x\", \"y\"]");
  EXPECT_EQ(Ask("vars").output,
            "a  KVLVector<string>  [\"x\",\"y\"]\n"
            "n  double             3\n");
  EXPECT_EQ(ResultOf("vars")[1], Json::parse(R"j({"name":"n","type":"double","text":"3"})j"));
  EXPECT_EQ(ErrorOf("vars all")["kind"], "usage");
}

TEST(KVLShellUnset, ForgetsAValueOrABinding) {
  const SessionGuard guard;
  (void)Ask("n = 1; bind three = num/add(3)");
  EXPECT_EQ(ResultOf("unset n")["name"], "n");
  EXPECT_EQ(Ask("$n").code, KVLShellResult_NotFound);
  EXPECT_EQ(Ask("unset three").code, KVLResult_Success);
  EXPECT_EQ(Ask("three(1)").code, KVLShellResult_NotFound);
  (void)Ask("total = 1");
  EXPECT_EQ(ErrorOf("unset totl")["suggestion"], "total");
  EXPECT_EQ(ErrorOf("unset")["kind"], "usage");
}

TEST(KVLShellBind, FixesArgumentsAndKeepsOthersOpen) {
  EXPECT_EQ(Ask("bind from5 = num/divmod(dividend=_, divisor=5)").code, KVLResult_Success);
  EXPECT_EQ(Ask("from5(17)").output, "quotient = 3\nremainder = 2\n");
  EXPECT_EQ(Ask("call from5 17").output, "quotient = 3\nremainder = 2\n");
  EXPECT_EQ(ResultOf("bind shellbound/three = num/add(3)"),
            Json::parse(R"j({"name":"shellbound/three","signature":"double add(double b)"
})j"));
  EXPECT_EQ(Ask("shellbound/three(4)").output, "7\n");
  EXPECT_EQ(Ask("bind shellbound/three = num/add(_, 30); shellbound/three(4)").output, "34\n");
  EXPECT_EQ(Ask("bind long = num/hypot(_); long(3)").output, "3\n");
  EXPECT_EQ(Ask("check").code, KVLResult_Success);
  (void)Ask("unset from5; unset shellbound/three; unset long");
}

TEST(KVLShellBind, IsRefusedWhereTheNameIsTakenOrReserved) {
  EXPECT_EQ(ErrorOf("bind num/add = num/add(3)")["message"], "bind: 'num/add' is there already");
  EXPECT_EQ(ErrorOf("bind num/add = num/add(3)")["kind"], "failed");
  EXPECT_EQ(ErrorOf("bind _x/f = num/add(3)")["kind"], "usage");
  EXPECT_EQ(ErrorOf("bind num/ = num/add(3)")["kind"], "usage");
  EXPECT_EQ(ErrorOf("bind f = num/pi")["message"],
            "bind: what is bound is a call; usage: bind NAME = PATH(ARGUMENT, ...)");
  EXPECT_EQ(ErrorOf("bind f")["message"], "'=' is missing");
  EXPECT_EQ(ErrorOf("bind")["kind"], "usage");
  EXPECT_EQ(ErrorOf("bind f = num/add(x)")["parameter"], "a");
  EXPECT_EQ(ErrorOf("bind f = num/nope(1)")["kind"], "not_found");
  EXPECT_EQ(Ask("check").output, "");
}

TEST(KVLShellBind, AnOutputIsNotTaken) {
  const Json error = ErrorOf("bind f = num/divmod(17, 5, &q)");
  EXPECT_EQ(error["kind"], "usage");
  EXPECT_EQ(error["message"],
            "bind: '&' takes an output of a call; leave the parameter open instead");
  EXPECT_EQ(error["offset"], 27);
  EXPECT_EQ(ErrorOf("f(17, 5)")["kind"], "not_found");
}

TEST(KVLShellUse, WhatItBringsToTheTopKeepsItsDoc) {
  const std::string before = Ask("check --strict").output;
  (void)Ask("use num");
  EXPECT_EQ(ResultOf("info hypot")[0]["doc"], "Length of (a, b).");
  const std::string after = Ask("check --strict").output;
  (void)Ask("unuse num");
  EXPECT_EQ(before.find("hypot"), std::string::npos) << before;
  EXPECT_EQ(after.find("hypot"), std::string::npos) << after;
}

TEST(KVLShellUse, WhatLiesDeeperKeepsItsDocToo) {
  const Published function(new kvltest::TestFunction("around", "int", {}), "shelldeep/box/around");
  const Published doc(new kvltest::TextValue("around", "string", "Boxes it."),
                      "doc/shelldeep/box/around");
  (void)Ask("use shelldeep");
  const Said said = Ask("check --strict");
  EXPECT_EQ(ResultOf("info box/around")[0]["doc"], "Boxes it.");
  (void)Ask("unuse shelldeep");
  EXPECT_EQ(said.output.find("doc/box/around"), std::string::npos) << said.output;
}

TEST(KVLShellUse, MakesAnEnvironmentVisibleAtTheTop) {
  EXPECT_EQ(Ask("use num; hypot(3, 4); pi").output, "5\n3.25\n");
  EXPECT_EQ(Ask("use").output, "num\n");
  EXPECT_EQ(ResultOf("use")[0]["path"], "num");
  EXPECT_EQ(Ask("use /num/").code, KVLResult_Failure);
  EXPECT_EQ(ErrorOf("unuse nm")["suggestion"], "num");
  EXPECT_EQ(Ask("unuse num").code, KVLResult_Success);
  EXPECT_EQ(Ask("hypot(3, 4)").code, KVLShellResult_NotFound);
  EXPECT_EQ(ErrorOf("use num/add")["kind"], "not_found");
  EXPECT_EQ(ErrorOf("use nmu")["suggestion"], "num");
  EXPECT_EQ(ErrorOf("use /")["kind"], "failed");
  EXPECT_EQ(ErrorOf("unuse")["kind"], "usage");
  EXPECT_EQ(Ask("use").output, "");
}

TEST(KVLShellLoad, WhatCannotBeLoadedSaysWhy) {
  EXPECT_EQ(ErrorOf("load Nope")["code"], 5);
  EXPECT_EQ(ErrorOf("load Alpa")["suggestion"], "Alpha");
  EXPECT_EQ(ErrorOf("load a/b")["kind"], "load");
  EXPECT_EQ(ErrorOf("load \"\"")["kind"], "load");
  EXPECT_EQ(ErrorOf("load")["kind"], "usage");
  EXPECT_EQ(ErrorOf("unload Nope")["message"], "unload: 'Nope' was not loaded by 'load'");
  EXPECT_EQ(ErrorOf("unload")["kind"], "usage");
}

TEST(KVLShellModules, ListsTheElevenWhetherLoadedOrNot) {
  const Json modules = ResultOf("modules");
  ASSERT_GE(modules.size(), 11u);
  EXPECT_EQ(modules[0]["name"], "KVLCodeEnv_Alpha");
  EXPECT_EQ(modules[10]["name"], "KVLCodeEnv_Lambda");
  EXPECT_NE(Ask("modules").output.find("KVLCodeEnv_Lambda  "), std::string::npos);
  EXPECT_EQ(ErrorOf("modules Alpha")["kind"], "usage");
}

TEST(KVLShellSource, RunsLinesUpToTheFirstThatFails) {
  const SessionGuard guard;
  const std::string file =
      ScratchFile("\xEF\xBB\xBFn = 3\r\n# comment\n\nnum/add($n, 1)\nnum/add(x, 1)\nnum/add(9, 9)");
  const Said said = Ask("source " + file + "; vars");
  EXPECT_EQ(said.output, "4\n");
  EXPECT_EQ(said.code, KVLShellResult_Argument);
  EXPECT_EQ(said.error,
            "error: num/add: argument 'a' expects double, got 'x'\n"
            "  num/add(x, 1)\n"
            "          ^\n"
            "error: source: " +
                file +
                ":5: stopped here\n"
                "  source " +
                file +
                "; vars\n"
                "         ^\n");
  EXPECT_EQ(Ask("$n").output, "3\n");
}

TEST(KVLShellSource, AnswersAfterItsLines) {
  const std::string file = ScratchFile("num/add(1, 2)\n");
  const Said said = Ask("source " + file, KVLShellFlag_Json);
  EXPECT_EQ(said.output,
            "{\"kvl\":1,\"ok\":true,\"result\":{\"type\":\"double\",\"text\":\"3\"}}\n"
            "{\"kvl\":1,\"ok\":true,\"result\":{\"file\":\"" +
                file + "\",\"lines\":1}}\n");
}

TEST(KVLShellSource, AFileThatRunsItselfEnds) {
  const Said said = Ask("source " + ScratchFile("source shell_world_test.kvl\n"));
  EXPECT_EQ(said.code, KVLResult_Failure);
  EXPECT_NE(said.error.find("source: files run inside one another too deep"), std::string::npos);
}

TEST(KVLShellSource, AFileMayEndTheSession) {
  const Said said = Ask("source " + ScratchFile("quit 3\nnum/add(1, 2)\n"));
  EXPECT_EQ(said.code, KVLShellResult_Quit | 3);
  EXPECT_EQ(said.output + said.error, "");
}

TEST(KVLShellSource, AMissingFileIsNotFound) {
  EXPECT_EQ(ErrorOf("source no_such_file.kvl")["kind"], "not_found");
  EXPECT_EQ(ErrorOf("source")["kind"], "usage");
  const std::string nul(1, '\0');
  (void)ScratchFile("num/add(1, 2)\n");
  EXPECT_EQ(Ask("source shell_world_test.kvl" + nul + "x").code, KVLShellResult_NotFound);
}

TEST(KVLShellTime, TellsValueAndSeconds) {
  const Said said = Ask("time num/add(1, 2)");
  EXPECT_EQ(said.output.find("3\n"), 0u);
  EXPECT_EQ(said.output.substr(said.output.size() - 2), "s\n");
  EXPECT_EQ(said.output.find('e'), std::string::npos) << said.output;
  const Json result = ResultOf("time num/add(1, 2)");
  EXPECT_EQ(result["text"], "3");
  EXPECT_GE(result["seconds"], 0.0);
  EXPECT_EQ(ErrorOf("time num/add(1)")["kind"], "argument");
  EXPECT_EQ(ErrorOf("time")["kind"], "usage");
}

TEST(KVLShellCompleteCommand, TellsWordsAndPlace) {
  EXPECT_EQ(ResultOf("complete x = num/h"),
            Json::parse(R"j({"replace_from":4,"words":["num/hypot("]})j"));
}

TEST(KVLShellHistory, TellsTheTextsRun) {
  (void)Ask("num/add(1, 2)");
  (void)Ask("odd/run(\"num/add(3, 4)\")");
  const std::string history = Ask("history").output;
  const std::string end = "num/add(1, 2)\nodd/run(\"num/add(3, 4)\")\nhistory\n";
  ASSERT_GE(history.size(), end.size());
  EXPECT_EQ(history.substr(history.size() - end.size()), end);
  const Json texts = ResultOf("history");
  EXPECT_EQ(texts[texts.size() - 1], "history");
  EXPECT_EQ(ErrorOf("history 3")["kind"], "usage");
}

TEST(KVLShellQuit, EndsTheSessionWithACode) {
  EXPECT_EQ(Ask("quit").code, KVLShellResult_Quit);
  const Said said = Ask("quit 42; num/add(1, 2)");
  EXPECT_EQ(said.code, KVLShellResult_Quit | 42);
  EXPECT_EQ(KVLExitCodeOf(said.code), 42);
  EXPECT_EQ(said.output + said.error, "");
  EXPECT_EQ(Ask("quit 255").code, KVLShellResult_Quit | 255);
  EXPECT_EQ(ResultOf("quit 7")["quit"], 7);
  for (const char* const text : {"quit 256", "quit -1", "quit x", "quit \"\"", "quit 1 2",
                                 "quit 99999999999999999999", "quit 1.0"}) {
    EXPECT_EQ(Ask(text).code, KVLShellResult_Usage) << text;
  }
}

TEST(KVLShellHelp, TellsCommandsAndTopics) {
  const Json all = ResultOf("help");
  EXPECT_EQ(all[0]["name"], "bind");
  for (const Json& topic : all) {
    const Json one = ResultOf("help " + topic["name"].get<std::string>());
    EXPECT_EQ(one["summary"], topic["summary"]);
    EXPECT_TRUE(one.contains("details"));
  }
  EXPECT_EQ(ErrorOf("help lss")["suggestion"], "ls");
  EXPECT_EQ(ErrorOf("help a b")["kind"], "usage");
}

TEST(KVLShellHelp, EveryCommandTakesTheJsonOption) {
  const Json all = ResultOf("help");
  for (const Json& topic : all) {
    const std::string name = topic["name"];
    // Alone, most are misused; the answer is an object all the same.
    if (name == "expressions") continue;
    const Said said = Ask(name, KVLShellFlag_Json);
    EXPECT_TRUE(Json::parse(said.output, nullptr, false).is_object()) << name;
    EXPECT_EQ(said.error, "") << name;
  }
}

TEST(KVLShellColor, ColorsOnlyWhereAsked) {
  EXPECT_EQ(Ask("num/ad(1)").error.find('\x1B'), std::string::npos);
  EXPECT_EQ(Ask("num/ad(1)", KVLShellFlag_Color).error.find("\x1B[1;31merror:\x1B[0m no function"),
            0u);
  EXPECT_EQ(Ask("ls _members", KVLShellFlag_Color).output, "\x1B[34mSpot/\x1B[0m  env\n");
  EXPECT_EQ(Ask("num/add(1, 2)", KVLShellFlag_Color).output, "3\n");
  EXPECT_EQ(Ask("num/add(1, 2)", KVLShellFlag_Color | KVLShellFlag_Json).output,
            Ask("num/add(1, 2)", KVLShellFlag_Json).output);
}

TEST(KVLShellTexts, ControlCharactersOfTheRegistryDoNotReachTheTerminal) {
  const Published evil(new kvltest::TextValue("x", "string", "\x1B[2J"), "shellevil/\x1B[2Jx");
  EXPECT_EQ(Ask("ls shellevil").output, "\\x1b[2Jx  variable  string x = \\x1b[2J\n");
  EXPECT_EQ(Ask("info shellevil/\x1B[2Jx").output.find('\x1B'), std::string::npos);
  EXPECT_EQ(Ask("shellevil/y\x1B(1)").error.find('\x1B'), std::string::npos);
}

}  // namespace
