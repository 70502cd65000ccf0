#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "KVLShellExport.h"
#include "KVLShellExportText.h"

namespace {

using Objects = std::vector<const KVLShellModelObject*>;

// What goes to one page.
struct Chapter {
  std::string title;
  std::string fileName;
  Objects objects;  // in the order of the model
};

bool IsLetterOrDigit(char c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
         (static_cast<unsigned char>(c) & 0x80) != 0;
}

// `text` so that it reads as it is written: a line or several, each of which stays one.
std::string Prose(const std::string& bytes) {
  const std::string text = KVLShellUtf8(bytes);
  std::string prose;
  bool isLineStart = true;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (isLineStart && (c == ' ' || c == '\t')) continue;
    const bool isInWord = i > 0 && i + 1 < text.size() && IsLetterOrDigit(text[i - 1]) &&
                          IsLetterOrDigit(text[i + 1]);
    bool isSpecial = std::string("\\`*<>[]&|~").find(c) != std::string::npos;
    if (c == '_') isSpecial = !isInWord;
    if (isLineStart) isSpecial |= c == '#' || c == '+' || c == '-' || c == '=';
    // "1." at the start of a line would begin a list.
    if (c == '.' || c == ')') {
      std::size_t start = i;
      while (start > 0 && text[start - 1] >= '0' && text[start - 1] <= '9')
        --start;
      isSpecial |= start < i && (start == 0 || text[start - 1] == '\n');
    }
    if (isSpecial) prose += '\\';
    prose += c;
    isLineStart = c == '\n';
  }
  return prose;
}

std::string OneLine(const std::string& bytes) {
  std::string line = bytes;
  std::replace(line.begin(), line.end(), '\n', ' ');
  std::replace(line.begin(), line.end(), '\r', ' ');
  return line;
}

// The most backquotes that follow one another.
std::size_t LongestQuoteRun(const std::string& text) {
  std::size_t longest = 0;
  std::size_t run = 0;
  for (const char c : text) {
    run = c == '`' ? run + 1 : 0;
    longest = std::max(longest, run);
  }
  return longest;
}

// As code within a line.
std::string Code(const std::string& bytes) {
  const std::string text = KVLShellUtf8(OneLine(bytes));
  if (text.empty()) return "(empty)";
  const std::string quotes(LongestQuoteRun(text) + 1, '`');
  const bool touches = text.front() == '`' || text.back() == '`';
  const bool isPadded = touches || (text.front() == ' ' && text.back() == ' ');
  return quotes + (isPadded ? " " + text + " " : text) + quotes;
}

// As code in the cell of a table, where "|" would end the cell even so.
std::string CodeCell(const std::string& bytes) {
  std::string cell;
  for (const char c : Code(bytes)) {
    if (c == '|') cell += '\\';
    cell += c;
  }
  return cell;
}

std::string CodeBlock(const std::string& bytes) {
  const std::string text = KVLShellUtf8(bytes);
  const std::string fence(std::max<std::size_t>(3, LongestQuoteRun(text) + 1), '`');
  return fence + "\n" + text + "\n" + fence + "\n";
}

std::string CodeList(const std::vector<std::string>& texts) {
  std::string list;
  for (const std::string& text : texts)
    list += (list.empty() ? "" : ", ") + Code(text);
  return list;
}

std::string ParamTable(const KVLShellModelObject& function) {
  std::string table =
      "| Parameter | Type | Direction | Default |\n"
      "|---|---|---|---|\n";
  for (const KVLShellModelParam& param : function.params) {
    table += "| " + CodeCell(param.name) + " | " + CodeCell(param.typeName) + " | " +
             KVLShellDirectionText(param) + " | " +
             (param.defaultText.empty() ? "" : CodeCell(param.defaultText)) + " |\n";
  }
  return table;
}

std::string TypeFacts(const KVLShellModelObject& type) {
  std::string facts;
  if (!type.parent.empty()) facts += "- Parent: " + Code(type.parent) + "\n";
  if (type.isList) facts += "- List of " + Code(type.elementTypeName) + "\n";
  if (type.isEnum) facts += "- Values: " + CodeList(type.enumValues) + "\n";
  std::vector<std::string> names;
  for (const KVLShellModelConversion& conversion : type.conversionsTo)
    names.push_back(conversion.to);
  if (!names.empty()) facts += "- Converts to " + CodeList(names) + "\n";
  names.clear();
  for (const KVLShellModelConversion& conversion : type.conversionsFrom)
    names.push_back(conversion.from);
  if (!names.empty()) facts += "- Converts from " + CodeList(names) + "\n";
  if (!type.members.empty()) facts += "- Members: " + CodeList(type.members) + "\n";
  return facts;
}

// By the name under which the function is called, which need not be its own.
std::string Declaration(const KVLShellModelObject& function) {
  std::string text = function.returnTypeName + " " + function.name + "(";
  bool isFirst = true;
  for (const KVLShellModelParam& param : function.params) {
    text += isFirst ? "" : ", ";
    isFirst = false;
    text += param.typeName + (param.isOutput ? "& " : " ") + param.name;
    if (!param.defaultText.empty()) text += " = " + param.defaultText;
  }
  return text + ")";
}

std::string ObjectText(const KVLShellModelObject& object) {
  std::string text = "### " + Code(object.path) + "\n";
  if (object.kind == KVLShellModelKind::Function) {
    text += "\n" + CodeBlock(Declaration(object));
  } else if (object.kind == KVLShellModelKind::Variable) {
    text += "\n" + CodeBlock(object.typeName + " " + object.name +
                             (object.isReadable ? " = " + object.text : ""));
  }
  if (!object.doc.empty()) text += "\n" + Prose(object.doc) + "\n";
  const bool hasOutput =
      std::any_of(object.params.begin(), object.params.end(),
                  [](const KVLShellModelParam& param) { return param.isOutput; });
  if (hasOutput) text += "\n" + ParamTable(object);
  if (object.kind == KVLShellModelKind::Type) {
    const std::string facts = TypeFacts(object);
    if (!facts.empty()) text += "\n" + facts;
  }
  for (const std::string& problem : object.problems)
    text += "\nProblem: " + Prose(OneLine(problem)) + "\n";
  return text;
}

bool IsConversion(const KVLShellModelObject& object) {
  return object.path.compare(0, 13, "_conversions/") == 0;
}

// A table instead of an entry each. What a conversion says of itself is left out where it is no
// more than its name.
std::string ConversionsText(const KVLShellModel& model, const Objects& objects) {
  std::map<std::string, std::string> docs;
  for (const KVLShellModelObject* object : objects)
    docs[object->path] = object->doc;
  std::string table;
  for (const KVLShellModelConversion& conversion : model.conversions) {
    const auto doc = docs.find(conversion.path);
    if (doc == docs.end()) continue;
    const std::string usual = "Converts " + conversion.from + " to " + conversion.to + ".";
    const std::string told = doc->second == usual ? "" : Prose(OneLine(doc->second));
    table += "| " + CodeCell(conversion.from) + " | " + CodeCell(conversion.to) + " | " + told +
             (told.empty() ? "|\n" : " |\n");
  }
  if (table.empty()) return "";
  return "\n## Conversions\n\n| From | To | |\n|---|---|---|\n" + table;
}

// Reserved environments come after the others.
bool IsReserved(const KVLShellModelEnv& env) {
  return !env.path.empty() && env.path.front() == '_';
}

std::string EnvTitle(const KVLShellModelEnv& env) {
  return env.path.empty() ? "Root" : Code(env.path);
}

std::string CountsText(const Objects& objects) {
  std::map<KVLShellModelKind, std::size_t> counts;
  std::size_t nbConversions = 0;
  for (const KVLShellModelObject* object : objects) {
    if (IsConversion(*object)) {
      ++nbConversions;
    } else {
      ++counts[object->kind];
    }
  }
  std::string text;
  const auto add = [&](std::size_t count, const std::string& noun) {
    if (count > 0) text += (text.empty() ? "" : ", ") + KVLShellCountText(count, noun);
  };
  for (const auto& [kind, count] : counts)
    add(count, KVLShellModelKindName(kind));
  add(nbConversions, "conversion");
  return text.empty() ? "Nothing." : text + ".";
}

std::string EnvText(const KVLShellModelEnv& env, const Objects& objects) {
  std::string text = "\n## " + EnvTitle(env) + "\n";
  if (!env.doc.empty()) text += "\n" + Prose(env.doc) + "\n";
  for (const KVLShellModelObject* object : objects)
    text += "\n" + ObjectText(*object);
  return text;
}

// The objects of one page, environment by environment.
std::string ChapterText(const KVLShellModel& model, const Chapter& chapter) {
  std::string text = "# " + chapter.title + "\n\n" + CountsText(chapter.objects) + "\n";

  const std::set<const KVLShellModelObject*> own(chapter.objects.begin(), chapter.objects.end());
  for (const bool isReserved : {false, true}) {
    for (const KVLShellModelEnv& env : model.envs) {
      if (IsReserved(env) != isReserved) continue;
      Objects objects;
      for (std::size_t i = 0; i < env.nbObjects; ++i) {
        const KVLShellModelObject& object = model.objects[env.firstObject + i];
        if (own.count(&object) != 0 && !IsConversion(object)) objects.push_back(&object);
      }
      if (!objects.empty()) text += EnvText(env, objects);
    }
  }
  return text + ConversionsText(model, chapter.objects);
}

std::string FileNameFor(const std::string& title, std::set<std::string>& taken) {
  std::string base;
  for (const char c : title) {
    if (c >= 'A' && c <= 'Z') {
      base += static_cast<char>(c - 'A' + 'a');
    } else {
      base += (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_' ? c : '-';
    }
  }
  if (base.empty()) base = "root";
  std::string fileName = base;
  for (int i = 2; !taken.insert(fileName).second; ++i)
    fileName = base + "-" + std::to_string(i);
  return fileName + ".md";
}

// The objects by the module that they come from or, where that is not known, by their topmost
// environment; in the order of these names.
std::vector<Chapter> Chapters(const KVLShellModel& model) {
  std::map<std::pair<bool, std::string>, Objects> groups;
  for (const KVLShellModelObject& object : model.objects) {
    const std::size_t slash = object.path.find('/');
    const std::string top = slash == std::string::npos ? "" : object.path.substr(0, slash);
    groups[{object.module.empty(), object.module.empty() ? top : object.module}].push_back(&object);
  }
  std::vector<Chapter> chapters;
  std::set<std::string> taken = {"index"};
  const std::string prefix = "KVLCodeEnv_";
  for (auto& [key, objects] : groups) {
    const auto& [isEnv, name] = key;
    Chapter chapter;
    chapter.title = name.empty() ? "Root" : Code(name);
    const bool isModule = !isEnv && name.compare(0, prefix.size(), prefix) == 0;
    chapter.fileName = FileNameFor(isModule ? name.substr(prefix.size()) : name, taken);
    chapter.objects = std::move(objects);
    chapters.push_back(std::move(chapter));
  }
  return chapters;
}

std::string AnomaliesText(const KVLShellModel& model) {
  if (model.anomalies.empty()) return "";
  std::string text = "\n## Anomalies\n\n";
  for (const KVLShellModelAnomaly& anomaly : model.anomalies)
    text += "- " + Code(anomaly.path) + ": " + Prose(OneLine(anomaly.message)) + "\n";
  return text;
}

// The first sentence, or the first line.
std::string Summary(const std::string& doc) {
  const std::size_t line = doc.find('\n');
  const std::size_t sentence = doc.find(". ");
  const std::size_t end = std::min(line, sentence == std::string::npos ? sentence : sentence + 1);
  return doc.substr(0, end);
}

// What the topmost environments are for that the chapter's objects lie in; the reserved ones tell
// something where there is no other.
std::string ChapterSummary(const KVLShellModel& model, const Chapter& chapter) {
  std::set<std::string> tops;
  for (const KVLShellModelObject* object : chapter.objects)
    tops.insert(object->path.substr(0, object->path.find('/')));
  for (const bool isReserved : {false, true}) {
    std::string summary;
    for (const KVLShellModelEnv& env : model.envs) {
      if (env.doc.empty() || IsReserved(env) != isReserved || tops.count(env.path) == 0) continue;
      summary += (summary.empty() ? "" : " ") + Prose(OneLine(Summary(env.doc)));
    }
    if (!summary.empty()) return summary;
  }
  return "";
}

std::string Title(const KVLShellModel& model) {
  return model.path.empty() ? "Registry" : "Registry: " + Code(model.path);
}

}  // namespace

std::string KVLShellExportMarkdown(const KVLShellModel& model) {
  Objects objects;
  for (const KVLShellModelObject& object : model.objects)
    objects.push_back(&object);
  std::string text =
      "# " + Title(model) + "\n\n" + CountsText(objects) + "\n" + AnomaliesText(model);
  for (const Chapter& chapter : Chapters(model))
    text += "\n" + ChapterText(model, chapter);
  return text;
}

std::vector<KVLShellExportPage> KVLShellExportPages(const KVLShellModel& model) {
  std::vector<KVLShellExportPage> pages;
  std::string index = "# " + Title(model) + "\n\n| Page | Holds | |\n|---|---|---|\n";
  for (const Chapter& chapter : Chapters(model)) {
    index += "| [" + chapter.title + "](" + chapter.fileName + ") | " +
             CountsText(chapter.objects) + " | " + ChapterSummary(model, chapter) + " |\n";
    pages.push_back({chapter.fileName, ChapterText(model, chapter)});
  }
  pages.insert(pages.begin(), {"index.md", index + AnomaliesText(model)});
  return pages;
}
