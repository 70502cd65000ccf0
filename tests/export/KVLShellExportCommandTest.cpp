// The commands `export` and `check`, as a host runs them on the default environment.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "KVLCodeEnvShell.h"
#include "KVLShellResult.h"
#include "TestRegistry.h"

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;
using kvltest::In;
using kvltest::TestFunction;
using kvltest::TestType;
using kvltest::TextValue;

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

Said Ask(const std::string& text, unsigned int flags = 0) {
  Said said;
  said.code = KVLCodeShellRunTo(KVLShellText(text), flags, Collect, &said);
  return said;
}

Json AskJson(const std::string& text, long* code = nullptr) {
  const Said said = Ask(text, KVLShellFlag_Json);
  if (code) *code = said.code;
  return Json::parse(said.output);
}

// An object in the default environment, for the length of a test.
class Published {
 public:
  Published(const std::string& path, KVLCodeObject* object, int line = 1)
      : registerer(KVLCodeEnv::GetDefault(), KVLSmartPtr<KVLCodeObject>(object), KVLShellText(path),
                   KVLSourceLocation("test.cpp", line, "")) {}

 private:
  KVLCodeObjectRegisterer registerer;
};

std::string ReadFile(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  EXPECT_TRUE(stream) << file;
  std::ostringstream text;
  text << stream.rdbuf();
  return text.str();
}

// A folder that is not there yet.
fs::path NewFolder(const std::string& name) {
  const fs::path folder = fs::path(KVL_SCRATCH) / name;
  fs::remove_all(folder);
  return folder;
}

class Commands : public testing::Test {
 protected:
  const Published type{"_types/string", new TestType("string")};
  const Published number{"sample/number", new TextValue("number", "string", "5")};
  const Published doc{"doc/sample/join", new TextValue("join", "string", "Joins a and b.")};
  const Published join{
      "sample/join",
      new TestFunction("join", "string", {{"a", "string"}, {"b", "string", In, "z"}}), 7};
};

// check

TEST_F(Commands, CheckSaysNothingWhenAllIsWell) {
  for (const char* const text : {"check", "check --strict", "check sample", "check sample/join"}) {
    const Said said = Ask(text);
    EXPECT_EQ(said.code, KVLResult_Success) << text;
    EXPECT_EQ(said.output + said.error, "") << text;
    EXPECT_EQ(AskJson(text)["result"], Json::array()) << text;
  }
}

TEST_F(Commands, CheckTellsTheKernelsAnomalies) {
  const Published wrong("_types/NoType", new TextValue("NoType", "string"), 8);
  const Said said = Ask("check");
  EXPECT_EQ(said.output,
            "* At path '_types/NoType': Object registered under '_types' is not a type. "
            "(test.cpp:8)\n");
  EXPECT_EQ(said.error, "");
  EXPECT_EQ(KVLExitCodeOf(said.code), KVLExit_No);
}

TEST_F(Commands, CheckStrictTellsMore) {
  const Published bare("sample/bare", new TestFunction("bare", "string", {{"a", "flaot"}}), 9);
  EXPECT_EQ(Ask("check").output, "");
  const Said said = Ask("check --strict");
  EXPECT_EQ(said.output,
            "* At path 'sample/bare': parameter 'a' is of type 'flaot', which is not registered "
            "(test.cpp:9)\n"
            "* At path 'sample/bare': has no documentation at 'doc/sample/bare' (test.cpp:9)\n");
  EXPECT_EQ(KVLExitCodeOf(said.code), KVLExit_No);
  EXPECT_EQ(Ask("check --strict _types").code, KVLResult_Success);
  EXPECT_EQ(Ask("check --strict sample/join").code, KVLResult_Success);
  EXPECT_EQ(KVLExitCodeOf(Ask("check --strict sample").code), KVLExit_No);
}

TEST_F(Commands, CheckAnswersInJson) {
  const Published bare("sample/bare", new TestFunction("bare", "string", {}), 9);
  long code = 0;
  const Json answer = AskJson("check --strict", &code);
  EXPECT_EQ(answer["kvl"], 1);
  EXPECT_EQ(answer["ok"], false);
  EXPECT_EQ(answer["result"], Json::parse(R"j([{"kind": "doc", "path": "sample/bare",
      "message": "has no documentation at 'doc/sample/bare'",
      "places": [{"file": "test.cpp", "line": 9, "detail": null}]}])j"));
  EXPECT_EQ(KVLExitCodeOf(code), KVLExit_No);
}

TEST_F(Commands, CheckEndsWhereParentsLoop) {
  const Published first("_types/a", new TestType("a", "b"));
  const Published second("_types/b", new TestType("b", "a"));
  EXPECT_EQ(Ask("check --strict").output,
            "* At path '_types/a': the parents form a loop: a -> b -> a (test.cpp:1)\n");
}

TEST_F(Commands, WhatIsNotThereCannotBeChecked) {
  EXPECT_EQ(Ask("check sampel").code, KVLShellResult_NotFound);
  EXPECT_EQ(Ask("check --strict sample/nothing").code, KVLShellResult_NotFound);
  EXPECT_EQ(Ask("check sample sample").code, KVLShellResult_Usage);
  EXPECT_EQ(Ask("check --stric").code, KVLShellResult_Usage);
  EXPECT_EQ(KVLShellTree(KVLCodeEnv::GetDefault()).FindEnv("sampel"), nullptr);
}

TEST_F(Commands, FindingsWithControlCharactersKeepToOneLine) {
  const Published odd("sample/a\nb\x1B[1m", new TestFunction("odd", "string", {}));
  EXPECT_EQ(Ask("check --strict").output,
            "* At path 'sample/a\\x0ab\\x1b[1m': has no documentation at "
            "'doc/sample/a\\x0ab\\x1b[1m' (test.cpp:1)\n");
}

// export

TEST_F(Commands, ExportPrintsMarkdownByDefault) {
  const Said said = Ask("export sample");
  EXPECT_EQ(said.code, KVLResult_Success);
  EXPECT_EQ(said.output.substr(0, 23), "# Registry: `sample`\n\n1");
  EXPECT_NE(said.output.find("string join(string a, string b = z)"), std::string::npos);
  EXPECT_EQ(said.output, Ask("export --format md sample").output);
}

TEST_F(Commands, ExportPrintsJson) {
  const Json whole = Json::parse(Ask("export --format json sample/join").output);
  EXPECT_EQ(whole["kvl"], 1);
  EXPECT_EQ(whole["path"], "sample/join");
  ASSERT_EQ(whole["functions"].size(), 1u);
  EXPECT_EQ(whole["functions"][0]["doc"], "Joins a and b.");
  EXPECT_EQ(whole["functions"][0]["places"][0]["line"], 7);
  EXPECT_EQ(whole["variables"], Json::array());
}

TEST_F(Commands, ExportPrintsHtml) {
  const std::string html = Ask("export --format html").output;
  EXPECT_EQ(html.substr(0, 15), "<!DOCTYPE html>");
  EXPECT_NE(html.find("id=\"/sample/join\""), std::string::npos);
}

TEST_F(Commands, ExportAnswersInJson) {
  const Json data = AskJson("export --format json sample");
  EXPECT_EQ(data["ok"], true);
  EXPECT_EQ(data["result"], Json::parse(Ask("export --format json sample").output));
  const Json text = AskJson("export --format html sample");
  EXPECT_EQ(text["result"]["format"], "html");
  EXPECT_EQ(text["result"]["text"], Ask("export --format html sample").output);
}

TEST_F(Commands, ExportWritesAFile) {
  const fs::path folder = NewFolder("written");
  fs::create_directories(folder);
  for (const std::string format : {"json", "html", "md"}) {
    const std::string file = (folder / ("registry." + format)).generic_string();
    const Said said = Ask("export --format " + format + " --output \"" + file + "\" sample");
    EXPECT_EQ(said.code, KVLResult_Success) << said.error;
    EXPECT_EQ(said.output, file + "\n");
    EXPECT_EQ(ReadFile(file), Ask("export --format " + format + " sample").output);
  }
}

TEST_F(Commands, ExportWritesAFolderOfPages) {
  const std::string folder = NewFolder("pages/below").generic_string();
  const Json answer = AskJson("export --format md --output \"" + folder + "\" sample");
  ASSERT_EQ(answer["result"].size(), 2u);
  EXPECT_EQ(answer["result"][0], folder + "/index.md");
  const std::string page = answer["result"][1];
  EXPECT_NE(ReadFile(folder + "/index.md").find("](" + page.substr(folder.size() + 1) + ")"),
            std::string::npos);
  EXPECT_NE(ReadFile(page).find("### `sample/join`"), std::string::npos);
}

TEST_F(Commands, WhatCannotBeWrittenIsAFailure) {
  const fs::path folder = NewFolder("taken");
  std::ofstream(folder) << "a file";
  const std::string name = folder.generic_string();
  for (const std::string& format :
       {"json --output \"" + name + "/x\"", "md --output \"" + name + "\"",
        std::string("html --output \"\"")}) {
    const Said said = Ask("export --format " + format);
    EXPECT_EQ(said.code, KVLResult_Failure) << format;
    EXPECT_EQ(said.error.substr(0, 28), "error: export: cannot write ") << said.error;
    EXPECT_EQ(said.output, "") << format;
  }
}

TEST_F(Commands, MisuseOfExportIsTold) {
  EXPECT_EQ(Ask("export nowhere").code, KVLShellResult_NotFound);
  EXPECT_EQ(Ask("export --format xml").code, KVLShellResult_Usage);
  EXPECT_EQ(Ask("export --output").code, KVLShellResult_Usage);
  EXPECT_EQ(Ask("export a b").code, KVLShellResult_Usage);
}

// A value that has the text that reads it interrupted, as a user may at any time.
class InterruptingValue : public TextValue {
 public:
  InterruptingValue() : TextValue("v", "string") {}
  long GetValueStr(const KVLCodeContext&, MRBUnicodeString&) const override {
    KVLCodeShellInterrupt();
    return KVLResult_Success;
  }
};

TEST_F(Commands, BothCommandsEndWhereTheyAreInterrupted) {
  const Published interrupting("sample/a", new InterruptingValue());
  for (const char* const text : {"export", "check --strict"}) {
    const Said said = Ask(text);
    EXPECT_EQ(said.code, KVLShellResult_Interrupted) << text;
    EXPECT_EQ(said.output, "") << text;
    EXPECT_EQ(said.error.substr(0, 18), "error: interrupted") << text;
  }
  EXPECT_EQ(Ask("check sample").code, KVLResult_Success);
}

TEST_F(Commands, NeitherCommandCreatesAnything) {
  const KVLShellTree before(KVLCodeEnv::GetDefault());
  for (const char* const text :
       {"check --strict", "export --format json", "export --format html", "export _types/string"}) {
    (void)Ask(text);
  }
  const KVLShellTree after(KVLCodeEnv::GetDefault());
  EXPECT_EQ(kvltest::PathsOf(before.GetEnvs()), kvltest::PathsOf(after.GetEnvs()));
}

}  // namespace
