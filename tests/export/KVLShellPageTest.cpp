// The page of `export --format html` in a browser: what it shows, how the keyboard moves it, and
// what it looks like. Pictures of it stay beside the test's other files.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>

#include "Browser.h"
#include "KVLShellExport.h"
#include "TestRegistry.h"

namespace {

namespace fs = std::filesystem;
using kvltest::Browser;
using kvltest::Furnish;
using kvltest::Registry;
using kvltest::Strings;
using Json = Browser::Json;

constexpr char Hostile[] = "</script><script>window.hacked = 1</script>\"'<img src=x>";

class Page : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    browser = std::make_unique<Browser>(KVL_CHROMIUM, KVL_SCRATCH);
    Registry registry;
    Furnish(registry);
    registry.PublishText("hostile/a b", "string", Hostile);
    registry.PublishText(std::string("hostile/") + (Hostile + 9), "string", "x");
    registry.PublishText("hostile/\xFF", "string", std::string("\0\xFE", 2));
    registry.PublishText("doc/hostile/a b", "string", Hostile);
    registry.PublishText("_types/NoType", "string", "");
    std::ofstream(Folder() / "page.html") << KVLShellExportHtml(registry.Read());
    address = "file://" + (Folder() / "page.html").generic_string();
  }
  static void TearDownTestSuite() { browser.reset(); }

  static fs::path Folder() {
    const fs::path folder = fs::path(KVL_SCRATCH) / "page";
    fs::create_directories(folder);
    return folder;
  }

  void SetUp() override {
    browser->SetScheme("light");
    browser->SetScreen(1280, 900, 1, false);
  }

  static void Open(const std::string& fragment = "") { browser->Open(address + fragment); }
  static Json Evaluate(const std::string& expression) { return browser->Evaluate(expression); }
  static Strings List(const std::string& expression) { return Evaluate(expression).get<Strings>(); }

  // Comes back when the expression holds, which it may do a little later: going to a place in the
  // page is told to its script in turn.
  static void Await(const std::string& expression) {
    Evaluate("new Promise(done => { const look = () => (" + expression +
             ") ? done() : setTimeout(look, 5); look(); })");
  }

  // What can be seen: objects by path, items of the tree by their links.
  static Strings ShownObjects() {
    return List(
        "[...document.querySelectorAll('.object')].filter(e => e.checkVisibility())"
        ".map(e => e.dataset.path)");
  }
  static Strings ShownItems() {
    return List(
        "[...document.querySelectorAll('#tree a')].filter(e => e.checkVisibility())"
        ".map(e => e.getAttribute('href'))");
  }
  static std::string Found() { return Evaluate("document.getElementById('found').textContent"); }
  // What has the focus: its identifier, its link or its tag.
  static std::string Focused() {
    return Evaluate("(e => e.id || e.getAttribute('href') || e.tagName)(document.activeElement)");
  }
  static std::string Hash() { return Evaluate("location.hash"); }

  // The texts that stand out too little from what is behind them: below 4.5 to 1.
  static Strings PaleTexts() {
    return List(R"js((() => {
      const channels = color => color.match(/[\d.]+/g).map(Number);
      const linear = c => (c /= 255) <= 0.04045 ? c / 12.92 : ((c + 0.055) / 1.055) ** 2.4;
      const light = ([r, g, b]) => 0.2126 * linear(r) + 0.7152 * linear(g) + 0.0722 * linear(b);
      const behind = element => {
        for (; element; element = element.parentElement) {
          const color = channels(getComputedStyle(element).backgroundColor);
          if (color.length === 3 || color[3] > 0) return color;
        }
        return [255, 255, 255];
      };
      const ratio = (element, color) => {
        const [a, b] = [light(channels(color)), light(behind(element))];
        return (Math.max(a, b) + 0.05) / (Math.min(a, b) + 0.05);
      };
      const pale = [];
      const judge = (element, color, text) => {
        const r = ratio(element, color);
        if (r < 4.5) pale.push(r.toFixed(2) + ' ' + text.trim().slice(0, 40));
      };
      const walker = document.createTreeWalker(document.body, NodeFilter.SHOW_TEXT);
      while (walker.nextNode()) {
        const element = walker.currentNode.parentElement;
        if (!walker.currentNode.data.trim() || !element.checkVisibility()) continue;
        const style = getComputedStyle(element);
        judge(element, element instanceof SVGElement ? style.fill : style.color,
              walker.currentNode.data);
      }
      const query = document.getElementById('query');
      judge(query, getComputedStyle(query, '::placeholder').color, 'placeholder');
      return pale;
    })())js");
  }

  static std::unique_ptr<Browser> browser;
  static std::string address;
};

std::unique_ptr<Browser> Page::browser;
std::string Page::address;

TEST_F(Page, NothingOutsideIsAskedFor) {
  Open();
  EXPECT_EQ(browser->Requests(), (Strings{address}));
  EXPECT_EQ(browser->Complaints(), Strings());
}

TEST_F(Page, TextsOfTheRegistryAreTextsOfThePage) {
  Open();
  EXPECT_EQ(Evaluate("typeof window.hacked"), "undefined");
  EXPECT_EQ(Evaluate("document.querySelectorAll('img, script').length"), 1);
  EXPECT_EQ(Evaluate("document.getElementById('/hostile/a%20b').querySelector('.doc').textContent"),
            Hostile);
  EXPECT_EQ(Evaluate("document.getElementById('/hostile/%FF').dataset.name"), "\xEF\xBF\xBD");
}

TEST_F(Page, EveryLinkLeadsSomewhere) {
  Open();
  EXPECT_EQ(List("[...document.querySelectorAll('a[href]')].map(a => a.getAttribute('href'))"
                 ".filter(href => !document.getElementById(href.slice(1)))"),
            Strings());
  EXPECT_EQ(Evaluate("(ids => ids.length - new Set(ids).size)"
                     "([...document.querySelectorAll('[id]')].map(e => e.id))"),
            0);
}

TEST_F(Page, AnObjectIsDescribed) {
  Open();
  const std::string text = Evaluate("document.getElementById('/math/divmod').innerText");
  for (const char* const part :
       {"math/divmod", "function", "long divmod(int a, int b, int& quotient", "\"a\" by\n\"b\".",
        "quotient\tint\tout", "test.cpp:8"}) {
    EXPECT_NE(text.find(part), std::string::npos) << part << "\nin\n" << text;
  }
  EXPECT_EQ(Evaluate("document.querySelector('[id=\"/math/hypot\"] pre a').getAttribute('href')"),
            "#/_types/double");
}

TEST_F(Page, AnomaliesAreShown) {
  Open();
  const std::string text = Evaluate("document.getElementById('anomalies').innerText");
  EXPECT_NE(text.find("Object registered under '_types' is not a type."), std::string::npos);
}

// The search.

TEST_F(Page, AnAddressCanHoldASearch) {
  Open("#q=hypot");
  EXPECT_EQ(ShownObjects(), (Strings{"math/hypot"}));
  EXPECT_EQ(ShownItems(), (Strings{"#/math/", "#/math/hypot"}));
  EXPECT_EQ(Evaluate("document.getElementById('query').value"), "hypot");
  EXPECT_EQ(Found().substr(0, 5), "1 of ");
  Open("#q=never%20LENGTH");
  EXPECT_EQ(ShownObjects(), (Strings{"math/hypot"}));
}

TEST_F(Page, EachLetterNarrowsTheSearch) {
  Open();
  const std::size_t all = ShownObjects().size();
  browser->Press("/");
  EXPECT_EQ(Focused(), "query");
  browser->Type("sin");
  EXPECT_EQ(Evaluate("document.getElementById('query').value"), "sin");
  EXPECT_EQ(ShownObjects(), (Strings{"math/trig/sin"}));
  EXPECT_EQ(ShownItems(), (Strings{"#/math/", "#/math/trig/", "#/math/trig/sin"}));
  EXPECT_EQ(Hash(), "#q=sin");
  browser->Press("Escape");
  EXPECT_EQ(ShownObjects().size(), all);
  EXPECT_EQ(Found(), "");
  EXPECT_NE(Focused(), "query");
}

TEST_F(Page, TypesAndWordsOfDocsAreFound) {
  Open("#q=pOiNt");
  EXPECT_EQ(ShownObjects(), (Strings{"_conversions/string/Point", "_members/Point/Distance",
                                     "_types/Point", "_types/string"}));
  Open("#q=radians");
  EXPECT_EQ(ShownObjects(), (Strings{"math/trig/sin"}));
}

TEST_F(Page, PlacesOfRegistrationAreNotSearched) {
  Open("#q=test.cpp");
  EXPECT_EQ(ShownObjects(), Strings());
}

TEST_F(Page, ASearchForNothingThereSaysSo) {
  Open("#q=zzz");
  EXPECT_EQ(ShownObjects(), Strings());
  EXPECT_EQ(ShownItems(), Strings());
  EXPECT_EQ(Found().substr(0, 5), "0 of ");
  EXPECT_EQ(Evaluate("document.getElementById('nothing').checkVisibility()"), true);
}

TEST_F(Page, EnterGoesToTheBestMatch) {
  Open();
  browser->Press("/");
  browser->Type("point");
  browser->Press("Enter");
  EXPECT_EQ(Focused(), "#/_types/Point");
}

// The tree, without a mouse.

TEST_F(Page, TheFirstStopSkipsToTheContent) {
  Open();
  browser->Press("Tab");
  EXPECT_EQ(Focused(), "#content");
  EXPECT_EQ(Evaluate("document.activeElement.getBoundingClientRect().top >= 0"), true);
  browser->Press("Enter");
  Await("location.hash === '#content'");
  EXPECT_EQ(Focused(), "content");
}

TEST_F(Page, TheTreeHasRolesAndOneStop) {
  Open();
  EXPECT_EQ(Evaluate("document.getElementById('tree').getAttribute('role')"), "tree");
  EXPECT_EQ(Evaluate("[...document.querySelectorAll('#tree a')]"
                     ".every(a => a.getAttribute('role') === 'treeitem')"),
            true);
  EXPECT_EQ(Evaluate("[...document.querySelectorAll('#tree a')]"
                     ".filter(a => a.tabIndex === 0).length"),
            1);
  const std::string sine = "document.querySelector('#tree [href=\"#/math/trig/sin\"]')";
  EXPECT_EQ(Evaluate(sine + ".getAttribute('aria-level')"), "3");
  EXPECT_EQ(Evaluate(sine + ".getAttribute('aria-label')"), "sin, function");
  EXPECT_EQ(Evaluate(sine + ".hasAttribute('aria-expanded')"), false);
  EXPECT_EQ(Evaluate("document.querySelector('main').tagName + document.querySelectorAll("
                     "'nav[aria-label], [role=search], [role=status]').length"),
            "MAIN3");
}

TEST_F(Page, ArrowsWalkOpenAndCloseTheTree) {
  Open();
  browser->Press("/");
  browser->Press("ArrowDown");
  EXPECT_EQ(Focused(), "#/hostile/");
  browser->Press("m");
  EXPECT_EQ(Focused(), "#/math/");
  browser->Press("ArrowRight");
  EXPECT_EQ(Focused(), "#/math/divmod");
  browser->Press("ArrowLeft");
  EXPECT_EQ(Focused(), "#/math/");
  browser->Press("ArrowLeft");
  EXPECT_EQ(Evaluate("document.activeElement.getAttribute('aria-expanded')"), "false");
  browser->Press("ArrowDown");
  EXPECT_EQ(Focused(), "#/_conversions/");
  browser->Press("ArrowUp");
  browser->Press("ArrowRight");
  EXPECT_EQ(Evaluate("document.activeElement.getAttribute('aria-expanded')"), "true");
  browser->Press("Home");
  EXPECT_EQ(Focused(), "#/hostile/");
  browser->Press("ArrowUp");
  EXPECT_EQ(Focused(), "#/hostile/");
  browser->Press("End");
  EXPECT_EQ(Focused(), "#anomalies");
  browser->Press("ArrowDown");
  EXPECT_EQ(Focused(), "#anomalies");
}

TEST_F(Page, EnterInTheTreeGoesThere) {
  Open();
  browser->Press("/");
  browser->Type("hypot");
  browser->Press("ArrowDown");
  EXPECT_EQ(Focused(), "#/math/hypot");
  browser->Press("Enter");
  Await("document.querySelector('#tree [aria-current]')");
  EXPECT_EQ(Hash(), "#/math/hypot");
  EXPECT_EQ(Evaluate("document.querySelector('#tree [aria-current]').getAttribute('href')"),
            "#/math/hypot");
}

TEST_F(Page, AnAddressOpensTheTreeAndEndsASearch) {
  Open("#/_types/Point");
  EXPECT_EQ(Evaluate("document.querySelector('#tree [aria-current]').checkVisibility()"), true);
  const std::string top = "document.getElementById('/_types/Point').getBoundingClientRect().top";
  EXPECT_EQ(Evaluate(top + " >= document.querySelector('.bar').offsetHeight && " + top +
                     " < innerHeight"),
            true);
  Open("#q=hypot");
  Evaluate("location.hash = '#/_types/Axis'");
  Await("document.querySelector('#tree [aria-current]')");
  EXPECT_EQ(Evaluate("document.getElementById('/_types/Axis').checkVisibility()"), true);
  EXPECT_EQ(Found(), "");
}

TEST_F(Page, AnAddressThatLeadsNowhereDoesNoHarm) {
  for (const char* const fragment : {"#/nowhere", "#q=%", "#%FF", "#"}) {
    Open(fragment);
    EXPECT_EQ(browser->Complaints(), Strings()) << fragment;
  }
}

// The graph.

TEST_F(Page, ATypeInTheGraphShowsItsConversions) {
  Open();
  Evaluate("document.querySelector('.graph [aria-label^=\"string, converts to\"]').focus()");
  EXPECT_EQ(Evaluate("document.querySelectorAll('.graph path.traced').length"), 1);
  EXPECT_EQ(Evaluate("document.querySelectorAll('.graph path').length"), 2);
  Evaluate("document.activeElement.blur()");
  EXPECT_EQ(Evaluate("document.querySelectorAll('.graph.traced').length"), 0);
}

// How it looks.

TEST_F(Page, APhoneShowsItInItsWidth) {
  browser->SetScreen(360, 740, 2, true);
  for (const char* const fragment : {"", "#q=point", "#conversions"}) {
    Open(fragment);
    EXPECT_LE(Evaluate("document.documentElement.scrollWidth").get<int>(), 360) << fragment;
    EXPECT_EQ(Evaluate("document.querySelector('meta[name=viewport]') !== null"), true);
  }
  Open();
  EXPECT_EQ(ShownItems(), Strings());
  Evaluate("document.getElementById('menu').click()");
  EXPECT_FALSE(ShownItems().empty());
  EXPECT_EQ(Evaluate("document.getElementById('menu').getAttribute('aria-expanded')"), "true");
  Evaluate("document.querySelector('#tree [href=\"#/math/hypot\"]').click()");
  EXPECT_EQ(ShownItems(), Strings());
  Await("location.hash === '#/math/hypot'");
}

TEST_F(Page, TextsStandOutInLightAndDark) {
  for (const char* const scheme : {"light", "dark"}) {
    browser->SetScheme(scheme);
    for (const char* const fragment : {"", "#q=a", "#/math/hypot"}) {
      Open(fragment);
      EXPECT_EQ(PaleTexts(), Strings()) << scheme << " " << fragment;
    }
  }
  browser->SetScheme("dark");
  Open();
  EXPECT_EQ(Evaluate("getComputedStyle(document.body).backgroundColor"), "rgb(20, 24, 29)");
}

TEST_F(Page, WithoutItsScriptThePageIsWhole) {
  Open();
  const std::size_t all = ShownObjects().size();
  browser->OpenWithoutScripts(address);
  EXPECT_EQ(Evaluate("document.documentElement.dataset.ready === undefined"), true);
  EXPECT_EQ(ShownObjects().size(), all);
  EXPECT_FALSE(ShownItems().empty());
}

// The shipped modules, as the program describes them: what the pictures show.
TEST_F(Page, TheShippedModulesHaveTheirPictures) {
  const fs::path file = Folder() / "modules.html";
  const std::string command = std::string("\"") + KVL_PROGRAM +
                              "\" -c 'export --format html --output \"" + file.generic_string() +
                              "\"' >/dev/null";
  ASSERT_EQ(std::system(command.c_str()), 0);
  const std::string page = "file://" + file.generic_string();
  const struct {
    const char* name;
    const char* fragment;
    const char* scheme;
    bool isPhone;
  } pictures[] = {
      {"wide-light", "", "light", false},
      {"wide-dark", "#q=vector", "dark", false},
      {"phone-light", "#/math/hypot", "light", true},
      {"phone-dark", "#q=point", "dark", true},
      {"graph", "#conversions", "light", false},
      {"phone-graph", "#conversions", "light", true},
  };
  for (const auto& picture : pictures) {
    browser->SetScheme(picture.scheme);
    if (picture.isPhone) {
      browser->SetScreen(360, 740, 2, true);
    } else {
      browser->SetScreen(1280, 900, 1, false);
    }
    browser->Open(page + picture.fragment);
    EXPECT_EQ(browser->Complaints(), Strings());
    EXPECT_EQ(browser->Requests(), (Strings{page})) << picture.name;
    EXPECT_EQ(PaleTexts(), Strings()) << picture.name;
    EXPECT_FALSE(ShownObjects().empty());
    if (picture.isPhone) {
      EXPECT_LE(Evaluate("document.documentElement.scrollWidth").get<int>(), 360) << picture.name;
    }
    const fs::path image = Folder() / (std::string(picture.name) + ".png");
    browser->Screenshot(image.generic_string());
    EXPECT_GT(fs::file_size(image), 10000u);
  }
}

}  // namespace
