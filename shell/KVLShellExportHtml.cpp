#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "KVLShellExport.h"
#include "KVLShellExportAssets.h"
#include "KVLShellExportGraph.h"
#include "KVLShellExportText.h"

namespace {

// `path` as part of an address and of an identifier: "/" and what no browser rewrites stay.
std::string Encoded(const std::string& path) {
  constexpr char Digits[] = "0123456789ABCDEF";
  std::string encoded;
  for (const char c : path) {
    const bool isPlain = (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') ||
                         (c >= 'A' && c <= 'Z') || c == '/' || c == '_' || c == '-' || c == '.';
    if (isPlain) {
      encoded += c;
    } else {
      encoded += '%';
      encoded += Digits[static_cast<unsigned char>(c) >> 4];
      encoded += Digits[static_cast<unsigned char>(c) & 15];
    }
  }
  return encoded;
}

// The identifier of an object in the page, and of an environment.
std::string ObjectId(const std::string& path) {
  return "/" + Encoded(path);
}

std::string EnvId(const std::string& path) {
  return path.empty() ? "/" : "/" + Encoded(path) + "/";
}

std::string Element(const std::string& tag, const std::string& content) {
  return "<" + tag + ">" + content + "</" + tag.substr(0, tag.find(' ')) + ">";
}

std::string TextElement(const std::string& tag, const std::string& text) {
  return Element(tag, KVLShellHtmlText(text));
}

const char* KindClass(KVLShellModelKind kind) {
  return kind == KVLShellModelKind::Object ? "plain" : KVLShellModelKindName(kind);
}

const char* KindLetter(KVLShellModelKind kind) {
  switch (kind) {
    case KVLShellModelKind::Function:
      return "f";
    case KVLShellModelKind::Type:
      return "T";
    case KVLShellModelKind::Variable:
      return "v";
    case KVLShellModelKind::Env:
      return "e";
    case KVLShellModelKind::Object:
      break;
  }
  return "o";
}

bool IsReserved(const KVLShellModelEnv& env) {
  return !env.path.empty() && env.path.front() == '_';
}

class Page {
 public:
  explicit Page(const KVLShellModel& shownModel) : model(shownModel) {
    for (const bool isReserved : {false, true}) {
      for (std::size_t i = 0; i < model.envs.size(); ++i) {
        const KVLShellModelEnv& env = model.envs[i];
        if (IsReserved(env) == isReserved && (!env.isDocs || env.nbObjects > 0)) order.push_back(i);
      }
    }
    for (const KVLShellModelObject& object : model.objects)
      objectPaths.insert(object.path);
    for (const std::size_t i : order)
      envPaths.insert(model.envs[i].path);
    for (const std::size_t i : order) {
      const std::string& path = model.envs[i].path;
      const std::size_t slash = path.rfind('/');
      if (!path.empty())
        children[slash == std::string::npos ? "" : path.substr(0, slash)].push_back(i);
    }
  }

  std::string Part(const std::string& name) const {
    if (name == "style") return KVLShellExportStyleAsset;
    if (name == "script") return KVLShellExportScriptAsset;
    if (name == "title") return KVLShellHtmlText(Title());
    if (name == "tree") return Tree();
    if (name == "overview") return Overview();
    if (name == "objects") return Sections();
    if (name == "conversions") return Conversions();
    return Anomalies();
  }

 private:
  std::string Title() const {
    return model.path.empty() ? "KVL registry" : "KVL registry: " + model.path;
  }

  // A link to what is at `path`, where the page describes it; else the text alone.
  std::string ObjectLink(const std::string& path, const std::string& text) const {
    if (objectPaths.count(path) == 0) return KVLShellHtmlText(text);
    return Element("a href=\"#" + ObjectId(path) + "\"", KVLShellHtmlText(text));
  }

  std::string TypeLink(const std::string& typeName) const {
    return ObjectLink("_types/" + typeName, typeName);
  }

  // The tree.

  static std::string TreeItem(const std::string& id, int level, const std::string& name,
                              const std::string& told, bool isOpen, const std::string& label) {
    const std::string number = std::to_string(level);
    return "<a href=\"#" + id + "\" data-level=\"" + number + "\" style=\"--level:" + number +
           "\" data-name=\"" + KVLShellHtmlText(name) + "\" aria-label=\"" +
           KVLShellHtmlText(told) + "\"" + (isOpen ? " data-open=\"1\"" : "") +
           "><span class=\"twist\" aria-hidden=\"true\"></span>" + label + "</a>\n";
  }

  std::string Tree() const {
    std::string tree;
    for (const std::size_t i : order) {
      const KVLShellModelEnv& env = model.envs[i];
      if (env.depth > 0) {
        const bool isOpen = env.depth == 1 && !IsReserved(env);
        tree += TreeItem(EnvId(env.path), env.depth - 1, env.name, env.name + ", environment",
                         isOpen, TextElement("span", env.name + "/"));
      }
      for (std::size_t k = 0; k < env.nbObjects; ++k) {
        const KVLShellModelObject& object = model.objects[env.firstObject + k];
        const std::string letter =
            TextElement(std::string("span aria-hidden=\"true\" class=\"letter ") +
                            KindClass(object.kind) + "\"",
                        KindLetter(object.kind));
        tree += TreeItem(ObjectId(object.path), env.depth, object.name,
                         object.name + ", " + KVLShellModelKindName(object.kind), false,
                         letter + TextElement("span", object.name));
      }
    }
    tree += TreeItem("conversions", 0, "Conversions", "Conversions", false,
                     TextElement("span", "Conversions"));
    tree +=
        TreeItem("anomalies", 0, "Anomalies", "Anomalies", false, TextElement("span", "Anomalies"));
    return tree;
  }

  // The overview.

  std::string Overview() const {
    std::map<KVLShellModelKind, std::size_t> kinds;
    std::map<std::string, std::size_t> modules;
    for (const KVLShellModelObject& object : model.objects) {
      // Conversions are counted by themselves.
      if (object.path.compare(0, 13, "_conversions/") != 0) ++kinds[object.kind];
      if (!object.module.empty()) ++modules[object.module];
    }
    std::string html = "<h2 id=\"overview-title\">Overview</h2>\n<ul class=\"counts\">\n";
    const auto count = [&](std::size_t number, const std::string& noun) {
      html += "<li><b>" + std::to_string(number) + "</b> " + noun + (number == 1 ? "" : "s") +
              "</li>\n";
    };
    count(kinds[KVLShellModelKind::Function], "function");
    count(kinds[KVLShellModelKind::Type], "type");
    count(kinds[KVLShellModelKind::Variable], "variable");
    count(model.conversions.size(), "conversion");
    html += "<li><b>" + std::to_string(model.anomalies.size()) + "</b> " +
            (model.anomalies.size() == 1 ? "anomaly" : "anomalies") + "</li>\n</ul>\n";
    if (!modules.empty()) {
      html += "<p>From the modules</p>\n<p class=\"chips\">";
      for (const auto& [name, number] : modules)
        html += "<span>" + TextElement("code", name) + " " + std::to_string(number) + "</span> ";
      html += "</p>\n";
    }
    return html +
           "<p class=\"quiet\"><kbd>/</kbd> leads to the search, <kbd>\xE2\x86\x93</kbd> from "
           "there "
           "to the contents, where the arrow keys move, open and close, and <kbd>Enter</kbd> "
           "goes.</p>\n";
  }

  // Environments and objects.

  std::string Sections() const {
    std::string html;
    for (const std::size_t i : order) {
      const KVLShellModelEnv& env = model.envs[i];
      if (env.depth > 0 || env.nbObjects > 0 || !env.problems.empty()) html += Section(env);
    }
    return html;
  }

  std::string Section(const KVLShellModelEnv& env) const {
    const std::string id = EnvId(env.path);
    std::string html = "<section id=\"" + id + "\">\n<h2><a class=\"path\" href=\"#" + id + "\">" +
                       (env.path.empty() ? "/" : KVLShellHtmlText(env.path) + "/") + "</a></h2>\n";
    if (!env.doc.empty()) html += TextElement("p class=\"doc\"", env.doc) + "\n";
    if (env.isRepeated) html += "<p>The same as " + EnvLink(env.sameAs, env.sameAs) + "</p>\n";
    html += Problems(env.problems) + Children(env.path);
    for (std::size_t i = 0; i < env.nbObjects; ++i)
      html += Entry(model.objects[env.firstObject + i]);
    return html + "</section>\n";
  }

  std::string EnvLink(const std::string& path, const std::string& text) const {
    const std::string shown = "<code>" + KVLShellHtmlText(text) + "/</code>";
    return envPaths.count(path) == 0 ? shown : Element("a href=\"#" + EnvId(path) + "\"", shown);
  }

  std::string Children(const std::string& path) const {
    const auto found = children.find(path);
    if (found == children.end() || path.empty()) return "";
    std::string html = "<p class=\"chips\">";
    for (const std::size_t i : found->second)
      html += EnvLink(model.envs[i].path, model.envs[i].name) + " ";
    return html + "</p>\n";
  }

  std::string Entry(const KVLShellModelObject& object) const {
    const std::string id = ObjectId(object.path);
    const std::string parent = object.path.substr(0, object.path.size() - object.name.size());
    std::string html = "<article class=\"object\" id=\"" + id + "\" data-name=\"" +
                       KVLShellHtmlText(object.name) + "\" data-path=\"" +
                       KVLShellHtmlText(object.path) + "\">\n<h3><a class=\"path\" href=\"#" + id +
                       "\">" + KVLShellHtmlText(parent) + TextElement("b", object.name) +
                       "</a><span class=\"kind " + KindClass(object.kind) + "\">" +
                       KVLShellModelKindName(object.kind) + "</span></h3>\n";
    if (object.kind == KVLShellModelKind::Function) html += Signature(object);
    if (object.kind == KVLShellModelKind::Variable) html += Declaration(object);
    if (!object.doc.empty()) html += TextElement("p class=\"doc\"", object.doc) + "\n";
    html += Problems(object.problems);
    if (object.kind == KVLShellModelKind::Function) html += ParamTable(object);
    if (object.kind == KVLShellModelKind::Type) html += TypeFacts(object);
    return html + Source(object) + "</article>\n";
  }

  std::string Signature(const KVLShellModelObject& function) const {
    std::string html = "<pre><code>";
    if (!function.returnTypeName.empty()) html += TypeLink(function.returnTypeName) + " ";
    html += TextElement("b", function.name) + "(";
    bool isFirst = true;
    for (const KVLShellModelParam& param : function.params) {
      if (!isFirst) html += ", ";
      isFirst = false;
      html += TypeLink(param.typeName) + (param.isOutput ? "&amp; " : " ") +
              KVLShellHtmlText(param.name);
      if (!param.defaultText.empty()) html += " = " + KVLShellHtmlText(param.defaultText);
    }
    return html + ")</code></pre>\n";
  }

  std::string Declaration(const KVLShellModelObject& variable) const {
    std::string html =
        "<pre><code>" + TypeLink(variable.typeName) + " " + TextElement("b", variable.name);
    if (variable.isReadable) html += " = " + KVLShellHtmlText(variable.text);
    return html + "</code></pre>\n";
  }

  // What the signature does not tell: which parameters are read and which are written.
  std::string ParamTable(const KVLShellModelObject& function) const {
    const bool hasOutput =
        std::any_of(function.params.begin(), function.params.end(),
                    [](const KVLShellModelParam& param) { return param.isOutput; });
    if (!hasOutput) return "";
    std::string html =
        "<table><thead><tr><th scope=\"col\">Parameter</th><th scope=\"col\">Type</th>"
        "<th scope=\"col\">Direction</th></tr></thead><tbody>\n";
    for (const KVLShellModelParam& param : function.params) {
      html += "<tr><td>" + TextElement("code", param.name) + "</td><td>" +
              Element("code", TypeLink(param.typeName)) + "</td><td>" +
              KVLShellDirectionText(param) + "</td></tr>\n";
    }
    return html + "</tbody></table>\n";
  }

  std::string TypeFacts(const KVLShellModelObject& type) const {
    std::string html;
    const auto add = [&](const char* title, const std::string& content) {
      html += TextElement("dt", title) + Element("dd", content) + "\n";
    };
    const auto chips = [](const std::vector<std::string>& items) {
      std::string list = "<span class=\"chips\">";
      for (const std::string& item : items)
        list += Element("code", item) + " ";
      return list + "</span>";
    };
    std::vector<std::string> items;
    if (!type.parent.empty()) add("Parent", Element("code", TypeLink(type.parent)));
    if (type.isList) add("List of", Element("code", TypeLink(type.elementTypeName)));
    if (type.isEnum) {
      for (const std::string& value : type.enumValues)
        items.push_back(KVLShellHtmlText(value));
      add("Values", chips(items));
    }
    items.clear();
    for (const KVLShellModelConversion& conversion : type.conversionsTo)
      items.push_back(TypeLink(conversion.to));
    if (!items.empty()) add("Converts to", chips(items));
    items.clear();
    for (const KVLShellModelConversion& conversion : type.conversionsFrom)
      items.push_back(TypeLink(conversion.from));
    if (!items.empty()) add("Converts from", chips(items));
    items.clear();
    for (const std::string& path : type.members)
      items.push_back(ObjectLink(path, path.substr(path.rfind('/') + 1)));
    if (!items.empty()) add("Members", chips(items));
    return html.empty() ? "" : "<dl>\n" + html + "</dl>\n";
  }

  static std::string Problems(const std::vector<std::string>& problems) {
    std::string html;
    for (const std::string& problem : problems)
      html += TextElement("p class=\"problem\"", problem) + "\n";
    return html;
  }

  static std::string Source(const KVLShellModelObject& object) {
    std::string source = KVLShellHtmlText(object.module);
    for (const KVLShellModelPlace& place : object.places) {
      const std::string text = KVLShellPlaceText(place);
      if (text.empty()) continue;
      source += (source.empty() ? "" : " \xC2\xB7 ") + TextElement("span class=\"place\"", text);
    }
    return source.empty() ? "" : Element("p class=\"quiet\"", source) + "\n";
  }

  // Conversions and anomalies.

  std::string Conversions() const {
    std::string html = "<h2 id=\"conversions-title\">Conversions</h2>\n";
    if (model.conversions.empty()) return html + "<p class=\"quiet\">There are none.</p>\n";
    html += KVLShellExportGraph(model.conversions, [this](const std::string& typeName) {
      const std::string path = "_types/" + typeName;
      return objectPaths.count(path) == 0 ? std::string() : "#" + ObjectId(path);
    });
    html += "<details><summary>The same as a list</summary>\n<dl>\n";
    for (std::size_t i = 0; i < model.conversions.size();) {
      const std::string& from = model.conversions[i].from;
      html += Element("dt", Element("code", TypeLink(from))) + "<dd class=\"chips\">";
      for (; i < model.conversions.size() && model.conversions[i].from == from; ++i) {
        const KVLShellModelConversion& conversion = model.conversions[i];
        html += Element("code", ObjectLink(conversion.path, conversion.to)) + " ";
      }
      html += "</dd>\n";
    }
    return html + "</dl></details>\n";
  }

  std::string Anomalies() const {
    std::string html = "<h2 id=\"anomalies-title\">Anomalies</h2>\n";
    if (model.anomalies.empty()) return html + "<p class=\"good\">There are none.</p>\n";
    html += "<ul class=\"findings\">\n";
    for (const KVLShellModelAnomaly& anomaly : model.anomalies) {
      html += "<li class=\"problem\"><code>" +
              (anomaly.path.empty() ? "/" : ObjectLink(anomaly.path, anomaly.path)) + "</code> " +
              KVLShellHtmlText(anomaly.message);
      for (const KVLShellModelPlace& place : anomaly.places)
        html += " " + TextElement("span class=\"quiet\"", KVLShellPlaceText(place));
      html += "</li>\n";
    }
    return html + "</ul>\n";
  }

  const KVLShellModel& model;
  std::vector<std::size_t> order;  // of the environments in the page
  std::set<std::string> objectPaths;
  std::set<std::string> envPaths;
  std::map<std::string, std::vector<std::size_t>> children;  // of an environment's path
};

}  // namespace

std::string KVLShellExportHtml(const KVLShellModel& model) {
  const Page page(model);
  const std::string frame = KVLShellExportPageAsset;
  std::string html;
  std::size_t end = 0;
  for (std::size_t start = frame.find("{{"); start != std::string::npos;
       start = frame.find("{{", end)) {
    html.append(frame, end, start - end);
    end = frame.find("}}", start);
    html += page.Part(frame.substr(start + 2, end - start - 2));
    end += 2;
  }
  return html.append(frame, end, std::string::npos);
}
