#if !defined(_WIN32)
#include <sys/stat.h>
#endif

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "KVLCodeFunctionCaller.h"
#include "KVLCodeListValue.h"
#include "KVLKitValue.h"
#include "LoadedModules.h"
#include "TestSession.h"

namespace {

namespace fs = std::filesystem;

class Iota : public LoadedModules {
 protected:
  Iota() : LoadedModules({"Alpha", "Beta", "Gamma", "Zeta", "Iota"}) {}

  void SetUp() override {
    LoadedModules::SetUp();
    context.SetSession(&session);
    const testing::TestInfo& test = *testing::UnitTest::GetInstance()->current_test_info();
    folder = fs::temp_directory_path() / (std::string("kvl_iota_") + test.name());
    fs::remove_all(folder);
    fs::create_directories(folder);
    file = (folder / "variables.txt").u8string();
  }
  void TearDown() override {
    session.values.clear();
    fs::remove_all(folder);
    LoadedModules::TearDown();
  }

  void Write(const std::string& text) const {
    std::ofstream(fs::u8path(file), std::ios::binary) << text;
  }
  std::string Read() const {
    std::ostringstream text;
    text << std::ifstream(fs::u8path(file), std::ios::binary).rdbuf();
    return text.str();
  }
  int CountFiles() const {
    int count = 0;
    for ([[maybe_unused]] const fs::directory_entry& entry : fs::directory_iterator(folder))
      ++count;
    return count;
  }
  // What is told of the text when it is restored.
  std::string Refusal(const std::string& line) const {
    Write("kvl-variables 1\nbefore \"int\" \"1\"\n" + line + "\n");
    return Thrown("var/restore", {file.c_str()});
  }

  TestSession session;
  fs::path folder;
  std::string file;
};

TEST_F(Iota, WithoutASessionEachFunctionFails) {
  context.SetSession(nullptr);
  EXPECT_EQ(Thrown("var/set", {"x", "1"}), "there is no session");
  EXPECT_EQ(Thrown("var/get", {"x"}), "there is no session");
  EXPECT_EQ(Thrown("var/exists", {"x"}), "there is no session");
  EXPECT_EQ(Thrown("var/unset", {"x"}), "there is no session");
  EXPECT_EQ(Thrown("var/list", {}), "there is no session");
  EXPECT_EQ(Thrown("var/save", {file.c_str()}), "there is no session");
  EXPECT_EQ(Thrown("var/restore", {file.c_str()}), "there is no session");
  EXPECT_EQ(CountFiles(), 0);
}

TEST_F(Iota, AVariableHasTheTypeOfWhatItWasGiven) {
  const struct {
    const char* text;
    const char* typeName;
    const char* written;
  } cases[] = {{"7", "int", "7"},
               {"7.5", "double", "7.5"},
               {"5000000000", "int64", "5000000000"},
               {"true", "bool", "true"},
               {"some words", "string", "some words"},
               {"\"7\"", "string", "\"7\""},
               {"[1, [2]]", "KVLVector<KVLCodeValue_var>", "[1,[2]]"},
               {"Point(1, 2)", "Point", "Point(1, 2)"}};
  for (const auto& given : cases) {
    EXPECT_EQ(Result("var/set", {"x", given.text}), "");
    EXPECT_EQ(session.values["x"]->GetTypeName(), given.typeName) << given.text;
    EXPECT_EQ(Result("var/get", {"x"}), given.written);
  }
  EXPECT_EQ(session.values.size(), 1u);
}

TEST_F(Iota, NamesAndValuesAreChecked) {
  for (const char* const name : {"", "1x", "a b", "a/b", "a-b", "\xC3\xA9", "$x"})
    EXPECT_EQ(Thrown("var/set", {name, "1"}),
              "'" + std::string(name) + "' is no name of a variable");
  EXPECT_EQ(Thrown("var/set", {"x", ""}), "there is no value");
  EXPECT_EQ(Thrown("var/set", {"x", "NULL"}), "there is no value");
  EXPECT_EQ(Thrown("var/get", {"x"}), "there is no variable 'x'");
  EXPECT_EQ(Thrown("var/unset", {"x"}), "there is no variable 'x'");
  EXPECT_EQ(Result("var/list", {}), "[]");
}

TEST_F(Iota, VariablesComeAndGo) {
  (void)Result("var/set", {"_b2", "1"});
  (void)Result("var/set", {"a", "2"});
  EXPECT_EQ(Result("var/list", {}), "[\"_b2\",\"a\"]");
  EXPECT_EQ(Result("var/exists", {"a"}), "true");
  EXPECT_EQ(Result("var/unset", {"a"}), "");
  EXPECT_EQ(Result("var/exists", {"a"}), "false");
  EXPECT_EQ(Result("var/list", {}), "[\"_b2\"]");
}

TEST_F(Iota, WhatIsHandedOutIsACopy) {
  (void)Result("var/set", {"x", "[1, 2]"});
  const KVLSmartPtr<KVLCodeObject> get = KVLCodeEnv::GetDefault().FindObject("var/get");
  const KVLSmartPtr<KVLCodeFunctionCaller> caller = get->AsFunction()->CreateCaller(context);
  ASSERT_EQ(caller->SetArgStr(0, "x"), KVLResult_Success);
  ASSERT_EQ(caller->Call(), KVLResult_Success);
  const Value handedOut =
      static_cast<kvl::Any*>(caller->GetReturnedValue()->GetValuePtr())->GetValue();
  EXPECT_EQ(TextOf(*handedOut), "[1,2]");
  EXPECT_NE(handedOut.Get(), session.values["x"].Get());
}

TEST_F(Iota, SavedVariablesComeBackWithTheirTypes) {
  const std::pair<const char*, const char*> values[] = {
      {"bool", "true"},
      {"int", "-2147483648"},
      {"long", "7"},
      {"int64", "-9223372036854775808"},
      {"double", "-0"},
      {"double", "0.30000000000000004"},
      {"double", "nan"},
      {"string", ""},
      {"string", "\"\\\"a\\\\ \\n\\r\\t\""},
      {"string", " blanks \xC3\xA9\xFF\x01"},
      {"Point", "(1, 2, -0)"},
      {"Direction", "(0.6, 0.8, 0)"},
      {"Box", "()"},
      {"Axis", "Y"},
      {"any", "NULL"},
      {"any", "[1, NULL, [\"a, b\"]]"},
      {"any", "Point(1, 2)"},
      {"KVLVector<Point>", "[(0, 0), (1, 2, 3)]"},
      {"KVLVector<string>", "[\"a]\", \"\", b]"},
      {"KVLVector<double>", "[]"},
      {"KVLVector<KVLCodeValue_var>", "NULL"},
      {"KVLVector<KVLCodeValue_var>", "[1, 2.0, x, [true, NULL], Point(1,2)]"}};
  std::map<std::string, std::string> texts;
  for (const auto& [typeName, text] : values) {
    const std::string variable = "v" + std::to_string(session.values.size());
    session.values[variable] = Make(typeName, text);
    texts[variable] = TextOf(*session.values[variable]);
  }
  const std::map<std::string, Value> saved = session.values;
  EXPECT_EQ(Result("var/save", {file.c_str()}), std::to_string(saved.size()));
  const std::string content = Read();
  session.values.clear();
  EXPECT_EQ(Result("var/restore", {file.c_str()}), std::to_string(saved.size()));
  ASSERT_EQ(session.values.size(), saved.size());
  for (const auto& [variable, value] : session.values) {
    EXPECT_EQ(value->GetTypeName(), saved.at(variable)->GetTypeName());
    EXPECT_EQ(value->IsValued(), saved.at(variable)->IsValued()) << texts[variable];
    EXPECT_EQ(TextOf(*value), texts[variable]);
  }
  (void)Result("var/save", {file.c_str()});
  EXPECT_EQ(Read(), content);
}

TEST_F(Iota, ElementsKeepTypesThatTheirTextWouldLose) {
  const Value list = Make("KVLVector<KVLCodeValue_var>");
  KVLCodeListValue::Elements& elements = static_cast<KVLCodeListValue&>(*list).MakeOwnElements();
  elements.Append(Make("Axis", "Z"));
  elements.Append(Make("long", "5"));
  elements.Append(Make("KVLVector<int>", "[1]"));
  session.values["l"] = list;
  (void)Result("var/save", {file.c_str()});
  (void)Result("var/restore", {file.c_str()});
  const auto& back = *static_cast<KVLCodeListValue::Elements*>(session.values["l"]->GetValuePtr());
  ASSERT_EQ(back.GetCount(), 3);
  EXPECT_EQ(back[0]->GetTypeName(), "Axis");
  EXPECT_EQ(back[1]->GetTypeName(), "long");
  EXPECT_EQ(back[2]->GetTypeName(), "KVLVector<int>");
}

TEST_F(Iota, TheFileIsText) {
  session.values["x"] = Make("double", "5");
  session.values["list"] = Make("KVLVector<KVLCodeValue_var>", "[1, \"a\"]");
  session.values["any"] = Make("any", "Point(1, 2)");
  (void)Result("var/save", {file.c_str()});
  EXPECT_EQ(Read(),
            "kvl-variables 1\n"
            "any \"any\" {\"Point\" \"(1, 2)\"}\n"
            "list \"KVLVector<KVLCodeValue_var>\" [\"int\" \"1\", \"string\" \"a\"]\n"
            "x \"double\" \"5\"\n");
}

TEST_F(Iota, OtherVariablesStayWhenSomeAreRestored) {
  session.values["x"] = Make("int", "1");
  (void)Result("var/save", {file.c_str()});
  session.values["x"] = Make("string", "changed");
  session.values["y"] = Make("int", "2");
  EXPECT_EQ(Result("var/restore", {file.c_str()}), "1");
  EXPECT_EQ(Result("var/get", {"x"}), "1");
  EXPECT_EQ(Result("var/get", {"y"}), "2");
}

TEST_F(Iota, NothingChangesWhereTheFileIsNoGood) {
  EXPECT_EQ(Refusal("1x \"int\" \"1\""), "line 3: '1x' is no name");
  EXPECT_EQ(Refusal(""), "line 3: '' is no name");
  EXPECT_EQ(Refusal("x"), "line 3: there should be a ' '");
  EXPECT_EQ(Refusal("x int 1"), "line 3: there should be a '\"'");
  EXPECT_EQ(Refusal("x \"int\""), "line 3: there should be a ' '");
  EXPECT_EQ(Refusal("x \"int\" \"1"), "line 3: there should be a '\"'");
  EXPECT_EQ(Refusal("x \"int\" \"1\\"), "line 3: there should be a '\"'");
  EXPECT_EQ(Refusal("x \"int\" \"\\x\""), "line 3: a text is not quoted as it should be");
  EXPECT_EQ(Refusal("x \"int\" \"1\" "), "line 3: there is something behind the value");
  EXPECT_EQ(Refusal("x \"nix\" \"1\""), "line 3: the type 'nix' makes no value");
  EXPECT_EQ(Refusal("x \"a/b\" \"1\""), "line 3: the type 'a/b' makes no value");
  EXPECT_EQ(Refusal("x \"int\" \"1.5\""),
            "line 3: a value of the type 'int' does not take what is given");
  EXPECT_EQ(Refusal("x \"int\" [\"int\" \"1\"]"), "line 3: 'int' is no list");
  EXPECT_EQ(Refusal("x \"int\" {\"int\" \"1\"}"), "line 3: 'int' is not \"any\"");
  EXPECT_EQ(Refusal("x \"KVLVector<int>\" [\"double\" \"1\"]"), "line 3: an element is no 'int'");
  EXPECT_EQ(Refusal("x \"KVLVector<int>\" [\"int\" \"1\""), "line 3: there should be a ','");
  std::string deep = "x ";
  for (int i = 0; i < 200; ++i)
    deep += "\"KVLVector<KVLCodeValue_var>\" [";
  EXPECT_EQ(Refusal(deep), "line 3: it nests deeper than 100");
  Write("");
  EXPECT_EQ(Thrown("var/restore", {file.c_str()}), "these are no saved variables");
  Write("kvl-variables 2\n");
  EXPECT_EQ(Thrown("var/restore", {file.c_str()}), "these are no saved variables");
  EXPECT_TRUE(session.values.empty());
  for (const auto& child : KVLCodeEnv::GetDefaultTypeRoot().IterOnSubEnvs())
    ADD_FAILURE() << "made " << child.key;
}

TEST_F(Iota, WhatCannotBeSavedIsToldAndTheFileStays) {
  session.values["x"] = Make("int", "1");
  (void)Result("var/save", {file.c_str()});
  const std::string content = Read();
  const Value list = Make("KVLVector<KVLCodeValue_var>");
  static_cast<KVLCodeListValue&>(*list).MakeOwnElements().Append(list);
  session.values["round"] = list;
  EXPECT_EQ(Thrown("var/save", {file.c_str()}),
            "'round' cannot be saved: it nests deeper than 100");
  static_cast<KVLCodeListValue&>(*list).MakeOwnElements().Append(Value());
  EXPECT_EQ(Thrown("var/save", {file.c_str()}),
            "'round' cannot be saved: it holds a list with an empty place");
  EXPECT_EQ(Read(), content);
  EXPECT_EQ(CountFiles(), 1);
}

TEST_F(Iota, FilesThatCannotBeUsedAreTold) {
  EXPECT_EQ(Thrown("var/save", {""}), "the file has no name");
  EXPECT_EQ(Thrown("var/restore", {""}), "the file has no name");
  EXPECT_EQ(Thrown("var/restore", {"no/such/file"}), "'no/such/file' cannot be read");
  EXPECT_EQ(Thrown("var/save", {"no/such/file"}), "'no/such/file' cannot be written");
  const std::string directory = folder.u8string();
  EXPECT_EQ(Thrown("var/restore", {directory.c_str()}), "'" + directory + "' cannot be read");
  fs::create_directories(folder / "sub" / "in");
  const std::string full = (folder / "sub").u8string();
  EXPECT_EQ(Thrown("var/save", {full.c_str()}), "'" + full + "' is no plain file");
  EXPECT_EQ(CountFiles(), 1) << "what was begun is removed";
}

#if !defined(_WIN32)
TEST_F(Iota, SavingGoesThroughALinkAndKeepsThePermissions) {
  const fs::path link = folder / "link";
  const fs::perms ownersOnly = fs::perms::owner_read | fs::perms::owner_write;
  Write("before");
  fs::permissions(fs::u8path(file), ownersOnly);
  fs::create_symlink("variables.txt", link);
  session.values["x"] = Make("int", "1");
  EXPECT_EQ(Result("var/save", {link.u8string().c_str()}), "1");
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_EQ(Read(), "kvl-variables 1\nx \"int\" \"1\"\n");
  EXPECT_EQ(fs::status(fs::u8path(file)).permissions(), ownersOnly);
  EXPECT_EQ(CountFiles(), 2);
}

TEST_F(Iota, WhatIsNoPlainFileIsNotReplaced) {
  ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);
  session.values["x"] = Make("int", "1");
  EXPECT_EQ(Thrown("var/save", {file.c_str()}), "'" + file + "' is no plain file");
  EXPECT_TRUE(fs::is_fifo(fs::u8path(file)));
  EXPECT_EQ(CountFiles(), 1);
}
#endif

TEST_F(Iota, AFileMayHaveAnyName) {
  const std::string other = (folder / fs::u8path("a b \xC3\xA9.kvl")).u8string();
  session.values["x"] = Make("int", "1");
  EXPECT_EQ(Result("var/save", {other.c_str()}), "1");
  EXPECT_EQ(Result("var/restore", {other.c_str()}), "1");
  EXPECT_TRUE(fs::exists(fs::u8path(other)));
}

TEST_F(Iota, SavingMayBeInterrupted) {
  session.values["x"] = Make("int", "1");
  session.pollsUntilInterrupted = 0;
  EXPECT_EQ(Thrown("var/save", {file.c_str()}), "interrupted");
  EXPECT_EQ(CountFiles(), 0);
}

}  // namespace
