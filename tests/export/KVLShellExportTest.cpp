#include "KVLShellExport.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "KVLShellExportText.h"
#include "KVLShellJson.h"
#include "TestRegistry.h"

namespace {

using Json = nlohmann::json;
using kvltest::Furnish;
using kvltest::Registry;

const std::string Nul(1, '\0');
constexpr char Replaced[] = "\xEF\xBF\xBD";

std::size_t Count(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
    ++count;
  return count;
}

bool Holds(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

Json Read(const KVLShellNode& node) {
  return Json::parse(KVLShellBytes(KVLShellJsonOf(node, 2)));
}

// As if nobody knew where the objects come from, which is the test program.
KVLShellModel WithoutModules(const Registry& registry) {
  KVLShellModel model = registry.Read();
  for (KVLShellModelObject& object : model.objects)
    object.module.clear();
  return model;
}

Json EntryAt(const Json& list, const std::string& path) {
  for (const Json& entry : list)
    if (entry["path"] == path) return entry;
  ADD_FAILURE() << "nothing at " << path;
  return Json();
}

// Texts.

TEST(KVLShellUtf8, WhatIsNoUtf8IsReplacedByteByByte) {
  const std::string r = Replaced;
  const struct {
    std::string bytes;
    std::string text;
  } cases[] = {
      {"", ""},
      {"plain\ttext\n", "plain\ttext\n"},
      {"\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"},
      {"a" + Nul + "b", "a" + r + "b"},
      {"\x1B[1m\x7F\r", r + "[1m" + r + r},
      {"\x80", r},
      {"\xC3", r},
      {"\xC3(", r + "("},
      {"\xE2\x82", r + r},
      {"\xC0\x80", r + r},          // overlong
      {"\xE0\x9F\xBF", r + r + r},  // overlong
      {"\xED\xA0\x80", r + r + r},  // half of a pair
      {"\xF4\x90\x80\x80", r + r + r + r},
      {"\xF8\x88\x80\x80\x80", r + r + r + r + r},
      {"\xEF\xBF\xBF\xF4\x8F\xBF\xBF", "\xEF\xBF\xBF\xF4\x8F\xBF\xBF"},
  };
  for (const auto& tried : cases)
    EXPECT_EQ(KVLShellUtf8(tried.bytes), tried.text) << testing::PrintToString(tried.bytes);
}

TEST(KVLShellHtmlText, WhatHasAMeaningInHtmlIsEscaped) {
  EXPECT_EQ(KVLShellHtmlText("<a href=\"x\">'&'</a>"),
            "&lt;a href=&quot;x&quot;&gt;&#39;&amp;&#39;&lt;/a&gt;");
  EXPECT_EQ(KVLShellHtmlText(Nul + "\xFF"), std::string(Replaced) + Replaced);
}

TEST(KVLShellPlaceText, OnlyWhatIsKnownIsTold) {
  EXPECT_EQ(KVLShellPlaceText({"a.cpp", 12, ""}), "a.cpp:12");
  EXPECT_EQ(KVLShellPlaceText({"a.cpp", 0, "init"}), "a.cpp <init>");
  EXPECT_EQ(KVLShellPlaceText({"", 7, ""}), "line 7");
  EXPECT_EQ(KVLShellPlaceText({"", 0, "init"}), "<init>");
  EXPECT_EQ(KVLShellPlaceText({"", 0, ""}), "");
}

// JSON.

TEST(KVLShellExportJson, AnEmptyRegistryHasEveryField) {
  const Json whole = Read(KVLShellExportNode(Registry().Read()));
  EXPECT_EQ(whole, Json::parse(R"j({"kvl": 1, "path": "",
      "environments": [{"path": "", "name": "", "doc": "", "same_as": null, "places": [],
                        "problems": []}],
      "functions": [], "types": [], "variables": [], "objects": [], "conversions": [], "docs": [],
      "anomalies": []})j"));
}

TEST(KVLShellExportJson, EachKindHasItsFields) {
  Registry registry;
  Furnish(registry);
  registry.Publish("plain", new KVLCodeObject("plain"));
  KVLShellModel model = registry.Read();
  for (KVLShellModelObject& object : model.objects)
    object.module = "KVLCodeEnv_Test";
  const Json whole = Read(KVLShellExportNode(model));
  EXPECT_EQ(EntryAt(whole["functions"], "math/divmod"), Json::parse(R"j({
      "path": "math/divmod", "name": "divmod",
      "signature": "long divmod(int a, int b, int& quotient, int& rest)",
      "doc": "\"a\" by\n\"b\".", "module": "KVLCodeEnv_Test",
      "places": [{"file": "test.cpp", "line": 8, "detail": null}], "problems": [],
      "params": [{"name": "a", "type": "int", "direction": "in", "default": null},
                 {"name": "b", "type": "int", "direction": "in", "default": null},
                 {"name": "quotient", "type": "int", "direction": "out", "default": null},
                 {"name": "rest", "type": "int", "direction": "in/out", "default": null}],
      "returns": "long", "method": false})j"));
  EXPECT_EQ(EntryAt(whole["functions"], "math/hypot")["params"][1]["default"], "0");
  EXPECT_EQ(EntryAt(whole["types"], "_types/Point"), Json::parse(R"j({
      "path": "_types/Point", "name": "Point", "signature": "Point", "doc": "A place.",
      "module": "KVLCodeEnv_Test", "places": [{"file": "test.cpp", "line": 1, "detail": null}],
      "problems": [], "parent": "Vector", "values": null, "element": null,
      "members": ["_members/Point/Distance"], "converts_to": [],
      "converts_from": ["string"]})j"));
  const Json axis = EntryAt(whole["types"], "_types/Axis");
  EXPECT_EQ(axis["values"], Json::parse(R"j(["X", "Y", "Z"])j"));
  EXPECT_EQ(axis["parent"], Json());
  EXPECT_EQ(EntryAt(whole["types"], "_types/list")["element"], "double");
  EXPECT_EQ(EntryAt(whole["variables"], "math/pi"), Json::parse(R"j({
      "path": "math/pi", "name": "pi", "signature": "double pi", "doc": "",
      "module": "KVLCodeEnv_Test", "places": [{"file": "test.cpp", "line": 1, "detail": null}],
      "problems": [], "type": "double", "text": "3.14"})j"));
  EXPECT_EQ(EntryAt(whole["objects"], "plain")["kind"], "object");
  EXPECT_EQ(whole["conversions"][1], Json::parse(R"j(
      {"from": "string", "to": "Point", "path": "_conversions/string/Point"})j"));
  EXPECT_EQ(EntryAt(whole["docs"], "doc/math"), Json::parse(R"j(
      {"path": "doc/math", "subject": "math", "text": "Scalar mathematics."})j"));
  EXPECT_EQ(EntryAt(whole["environments"], "math")["doc"], "Scalar mathematics.");
}

TEST(KVLShellExportJson, WhatIsMissingIsNull) {
  Registry registry;
  registry.PublishText("x", "string", "").readResult = KVLResult_Failure;
  registry.PublishText("doc/lost", "string", "About nothing.");
  const Json whole = Read(KVLShellExportNode(registry.Read()));
  EXPECT_EQ(whole["variables"][0]["text"], Json());
  EXPECT_EQ(whole["docs"][0]["subject"], Json());
}

TEST(KVLShellExportJson, AnomaliesAndRepeatedEnvironmentsAreTold) {
  Registry registry;
  registry.PublishText("_hidden/x", "string", "");
  registry.PublishText("a/b/y", "string", "");
  registry.Env("c").AggregateEnv(registry.Env("a"));
  const Json whole = Read(KVLShellExportNode(registry.Read()));
  EXPECT_EQ(whole["anomalies"], Json::parse(R"j([{"path": "_hidden", "places": [], "message":
      "Used path '_hidden'. Only special predefined keywords can start with '_'."}])j"));
  EXPECT_EQ(EntryAt(whole["environments"], "c/b")["same_as"], "a/b");
}

TEST(KVLShellExportJson, EveryByteLeavesAReadableText) {
  Registry registry;
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte)
    bytes += static_cast<char>(byte);
  registry.PublishText("x", "string", bytes);
  registry.PublishText("\xFF" + Nul + "\"", "string", "</script>");
  const Json whole = Read(KVLShellExportNode(registry.Read()));
  const std::string text = EntryAt(whole["variables"], "x")["text"];
  EXPECT_EQ(text.substr(0, 128), bytes.substr(0, 128));
  EXPECT_EQ(Count(text, Replaced), 128u);
  EXPECT_EQ(whole["variables"][1]["path"], std::string(Replaced) + Nul + "\"");
}

// Markdown.

TEST(KVLShellExportMarkdown, AFunctionHasItsSignatureAndDoc) {
  Registry registry;
  Furnish(registry);
  const std::string text = KVLShellExportMarkdown(registry.Read());
  EXPECT_TRUE(Holds(text,
                    "### `math/hypot`\n\n```\ndouble hypot(double a, double b = 0)\n```\n\n"
                    "Length of (a, b). Never negative.\n"));
  EXPECT_TRUE(Holds(text, "## `math`\n\nScalar mathematics.\n"));
  EXPECT_TRUE(Holds(text, "### `math/pi`\n\n```\ndouble pi = 3.14\n```\n"));
}

TEST(KVLShellExportMarkdown, AFunctionIsDeclaredByTheNameThatItIsCalledBy) {
  Registry registry;
  registry.Publish("a/alias", new kvltest::TestFunction("own", "int", {{"x", "int", 3, "1"}}));
  EXPECT_TRUE(Holds(KVLShellExportMarkdown(registry.Read()), "\nint alias(int& x = 1)\n"));
}

TEST(KVLShellExportMarkdown, OutputsHaveATable) {
  Registry registry;
  Furnish(registry);
  const std::string text = KVLShellExportMarkdown(registry.Read());
  EXPECT_TRUE(Holds(text,
                    "| Parameter | Type | Direction | Default |\n|---|---|---|---|\n"
                    "| `a` | `int` | in |  |\n| `b` | `int` | in |  |\n"
                    "| `quotient` | `int` | out |  |\n| `rest` | `int` | in/out |  |\n"));
}

TEST(KVLShellExportMarkdown, ATypeHasItsFacts) {
  Registry registry;
  Furnish(registry);
  const std::string text = KVLShellExportMarkdown(registry.Read());
  EXPECT_TRUE(Holds(text,
                    "### `_types/Point`\n\nA place.\n\n- Parent: `Vector`\n"
                    "- Converts from `string`\n- Members: `_members/Point/Distance`\n"));
  EXPECT_TRUE(Holds(text, "- Values: `X`, `Y`, `Z`\n"));
  EXPECT_TRUE(Holds(text, "- List of `double`\n"));
}

TEST(KVLShellExportMarkdown, ConversionsAreATable) {
  Registry registry;
  Furnish(registry);
  registry.PublishText("doc/conversions/int/double", "string", "Converts int to double.");
  registry.PublishText("doc/conversions/string/Point", "string", "Reads \"(x, y)\".");
  const std::string text = KVLShellExportMarkdown(registry.Read());
  EXPECT_TRUE(Holds(text,
                    "| From | To | |\n|---|---|---|\n| `int` | `double` | |\n"
                    "| `string` | `Point` | Reads \"(x, y)\". |\n"));
  EXPECT_FALSE(Holds(text, "### `_conversions"));
}

TEST(KVLShellExportMarkdown, TextsAreNotTakenAsMarkup) {
  Registry registry;
  registry.PublishFunction("f", "int", {});
  registry.PublishText("doc/f", "string",
                       "# *no* <b> `x` a_b _c_ [l](u) 1|2\n- item\n1. item\n    code");
  const std::string text = KVLShellExportMarkdown(registry.Read());
  EXPECT_TRUE(Holds(text,
                    "\n\\# \\*no\\* \\<b\\> \\`x\\` a_b \\_c\\_ \\[l\\](u) 1\\|2\n\\- item\n"
                    "1\\. item\ncode\n"));
}

TEST(KVLShellExportMarkdown, NamesStayWholeAsCode) {
  Registry registry;
  registry.PublishText("a`b``c", "string", "x\n```\ny");
  const std::string text = KVLShellExportMarkdown(registry.Read());
  EXPECT_TRUE(Holds(text, "### ```a`b``c```\n"));
  EXPECT_TRUE(Holds(text, "\n````\nstring a`b``c = x\n```\ny\n````\n"));
}

TEST(KVLShellExportMarkdown, AnomaliesComeFirst) {
  Registry registry;
  registry.PublishText("_hidden/x", "string", "");
  const std::string text = KVLShellExportMarkdown(registry.Read());
  EXPECT_TRUE(Holds(text,
                    "## Anomalies\n\n- `_hidden`: Used path '\\_hidden'. Only special predefined "
                    "keywords can start with '\\_'.\n"));
}

TEST(KVLShellExportPages, ObjectsOfNoModuleGoByTheirTopmostEnvironment) {
  Registry registry;
  registry.PublishText("x", "string", "");
  registry.PublishText("math/trig/y", "string", "");
  registry.PublishText("Math/z", "string", "");
  registry.PublishText("index/i", "string", "");
  registry.PublishText("doc/math", "string", "Angles. In radians.");
  const std::vector<KVLShellExportPage> pages = KVLShellExportPages(WithoutModules(registry));
  std::vector<std::string> names;
  for (const KVLShellExportPage& page : pages)
    names.push_back(page.fileName);
  EXPECT_EQ(names, (kvltest::Strings{"index.md", "root.md", "math.md", "index-2.md", "math-2.md"}));
  EXPECT_TRUE(Holds(pages[0].text, "| [`math`](math-2.md) | 1 variable. | Angles. |\n"));
  EXPECT_TRUE(
      Holds(pages[4].text, "# `math`\n\n1 variable.\n\n## `math/trig`\n\n### `math/trig/y`"));
  EXPECT_FALSE(Holds(pages[4].text, "Math"));
}

TEST(KVLShellExportPages, EachModuleHasAPage) {
  Registry registry;
  registry.PublishText("a/x", "string", "");
  registry.PublishText("b/y", "string", "");
  registry.PublishText("b/z", "string", "");
  registry.PublishText("c", "string", "");
  KVLShellModel model = registry.Read();
  const char* const modules[] = {"", "KVLCodeEnv_Beta", "KVLCodeEnv_Alpha", "Else::Where"};
  for (std::size_t i = 0; i < model.objects.size(); ++i)
    model.objects[i].module = modules[i];
  const std::vector<KVLShellExportPage> pages = KVLShellExportPages(model);
  ASSERT_EQ(pages.size(), 5u);
  EXPECT_EQ(pages[1].fileName, "else--where.md");
  EXPECT_EQ(pages[2].fileName, "alpha.md");
  EXPECT_EQ(pages[3].fileName, "beta.md");
  EXPECT_EQ(pages[4].fileName, "root.md");
  EXPECT_TRUE(Holds(pages[2].text, "# `KVLCodeEnv_Alpha`\n"));
  EXPECT_TRUE(Holds(pages[2].text, "## `b`\n\n### `b/y`\n"));
  EXPECT_FALSE(Holds(pages[2].text, "b/z"));
}

// HTML, as text; how it behaves is another test's.

TEST(KVLShellExportHtml, NothingIsLeftOfTheFrame) {
  Registry registry;
  Furnish(registry);
  const std::string html = KVLShellExportHtml(registry.Read());
  EXPECT_FALSE(Holds(html, "{{"));
  EXPECT_TRUE(Holds(html, "<title>KVL registry</title>"));
  EXPECT_TRUE(Holds(html, "</html>"));
}

TEST(KVLShellExportHtml, NothingOutsideIsReferredTo) {
  Registry registry;
  Furnish(registry);
  const std::string html = KVLShellExportHtml(registry.Read());
  for (const char* const reference : {"http:", "https:", "//www", "@import", "url(", "src="})
    EXPECT_FALSE(Holds(html, reference)) << reference;
  EXPECT_EQ(Count(html, "<link"), 1u);
  EXPECT_TRUE(Holds(html, "<link rel=\"icon\" href=\"data:,\">"));
  for (std::size_t at = html.find("href=\""); at != std::string::npos;
       at = html.find("href=\"", at + 1)) {
    const std::string start = html.substr(at + 6, 1);
    EXPECT_TRUE(start == "#" || start == "d") << html.substr(at, 60);
  }
}

TEST(KVLShellExportHtml, TextsCannotBecomeMarkup) {
  Registry registry;
  const std::string hostile = "</script><script>alert(1)</script>\"'<img src=x onerror=y>{{tree}}";
  registry.PublishFunction("f", hostile.c_str(), {{hostile.c_str(), hostile.c_str(), 3, "<d>"}});
  registry.PublishText("e/" + hostile.substr(9), hostile.c_str(), hostile);
  registry.PublishText("doc/f", "string", hostile);
  registry.PublishText("_" + hostile.substr(10, 20) + "/x", "string", "");
  registry.PublishType("t").enumValues.Append(KVLShellText(hostile));
  const Registry none;
  const std::string plain = KVLShellExportHtml(none.Read());
  const std::string html = KVLShellExportHtml(registry.Read());
  EXPECT_EQ(Count(html, "<script"), Count(plain, "<script"));
  EXPECT_EQ(Count(html, "</script"), Count(plain, "</script"));
  EXPECT_EQ(Count(html, "<img"), 0u);
  EXPECT_TRUE(Holds(html, "&lt;script&gt;alert(1)&lt;/script&gt;"));
  EXPECT_TRUE(Holds(html, "{{tree}}"));
}

TEST(KVLShellExportHtml, IdentifiersAreDistinctAndWithoutBlanks) {
  Registry registry;
  registry.PublishText("a b", "string", "");
  registry.PublishText("\xFF", "string", "");
  registry.PublishText("\xFE", "string", "");
  registry.PublishText("twin", "string", "");
  registry.PublishText("twin/x", "string", "");
  const std::string html = KVLShellExportHtml(registry.Read());
  for (const char* const id : {"/a%20b", "/%FF", "/%FE", "/twin", "/twin/", "/twin/x"})
    EXPECT_EQ(Count(html, std::string(" id=\"") + id + "\""), 1u) << id;
}

TEST(KVLShellExportHtml, AnomaliesAreListed) {
  Registry registry;
  registry.PublishText("_types/NoType", "string", "");
  const std::string html = KVLShellExportHtml(registry.Read());
  EXPECT_TRUE(Holds(html, "Object registered under &#39;_types&#39; is not a type."));
  EXPECT_TRUE(Holds(html, "<span class=\"quiet\">test.cpp:1</span>"));
}

TEST(KVLShellExportHtml, TheGraphHasALineForEachConversion) {
  Registry registry;
  Furnish(registry);
  const std::string html = KVLShellExportHtml(registry.Read());
  EXPECT_EQ(Count(html, "<path data-from"), 2u);
  EXPECT_TRUE(Holds(html, "aria-label=\"string, converts to Point\""));
  EXPECT_TRUE(Holds(html, "aria-label=\"double, converts from int\""));
}

}  // namespace
