#include <algorithm>
#include <exception>
#include <map>
#include <new>
#include <set>
#include <utility>

#include "KVLCodeContext.h"
#include "KVLCodeFunction.h"
#include "KVLCodeType.h"
#include "KVLCodeValue.h"
#include "KVLResult.h"
#include "KVLShellCheck.h"
#include "KVLShellDescription.h"
#include "KVLShellOutcome.h"
#include "KVLShellTree.h"

namespace {

constexpr char DocsPrefix[] = "doc/";
constexpr char ConversionsPrefix[] = "_conversions/";
constexpr char TypesPrefix[] = "_types/";

bool StartsWith(const std::string& text, const std::string& prefix) {
  return text.compare(0, prefix.size(), prefix) == 0;
}

std::string CodeText(long code) {
  return KVLShellBytes(KVLShellCodeText(code));
}

std::string DocPath(const std::string& path) {
  return KVLShellBytes(KVLShellDocPath(KVLShellText(path)));
}

// What the system fills in by itself has no type in the registry, nor has what is not known.
bool NeedsNoType(const std::string& typeName) {
  return typeName == "KVLCodeContext" || typeName == "KVLCodeSession" ||
         typeName == KVLTypeName_Unknown;
}

class Check {
 public:
  explicit Check(KVLCodeEnv& root)
      : tree(root),
        types(KVLShellEnvOrEmpty(tree, "_types")),
        conversions(KVLShellEnvOrEmpty(tree, "_conversions")),
        context(*types, *conversions) {}

  std::vector<KVLShellFinding> Run() {
    FindLoops();
    ForEachObject(&Check::CheckTypes);
    ForEachObject(&Check::CheckDefaults);
    ForEachObject(&Check::CheckConversion);
    ReportLoops();
    ForEachObject(&Check::CheckText);
    CheckDocs();
    return std::move(findings);
  }

 private:
  void Report(const char* kind, const KVLShellTreeObject& entry, const std::string& message) {
    findings.push_back({kind, entry.path, message, KVLShellPlacesOf(*entry.object)});
  }

  // Runs one of the checks on each object; what an object throws is a finding too.
  void ForEachObject(void (Check::*check)(const KVLShellTreeObject& entry)) {
    for (const KVLShellTreeObject& entry : tree.GetObjects()) {
      KVLShellEndIfInterrupted();
      try {
        (this->*check)(entry);
      } catch (const std::bad_alloc&) {
        throw;
      } catch (const std::exception& exception) {
        Report("text", entry, std::string("threw: ") + exception.what());
      } catch (...) {
        Report("text", entry, "threw something that is no std::exception");
      }
    }
  }

  const KVLCodeType* FindType(const std::string& typeName) const {
    const KVLShellTreeObject* const entry = tree.FindObject(TypesPrefix + typeName);
    return entry ? entry->object->AsType() : nullptr;
  }

  // Types.

  void CheckTypeName(const KVLShellTreeObject& entry, const std::string& what,
                     const MRBUnicodeString& name) {
    const std::string typeName = KVLShellBytes(name);
    if (NeedsNoType(typeName) || FindType(typeName)) return;
    Report("type", entry,
           typeName.empty() ? what + " has no type"
                            : what + " is of type '" + typeName + "', which is not registered");
  }

  void CheckTypes(const KVLShellTreeObject& entry) {
    if (const KVLCodeFunction* const function = entry.object->AsFunction()) {
      for (const KVLCodeFunction::Param& param : function->GetParams())
        CheckTypeName(entry, "parameter '" + KVLShellBytes(param.name) + "'", param.typeName);
      CheckTypeName(entry, "the result", function->GetReturnTypeName());
    } else if (const KVLCodeType* const type = entry.object->AsType()) {
      MRBUnicodeString element;
      if (type->IsList(&element)) CheckTypeName(entry, "the element", element);
    } else if (const KVLCodeValue* const variable = entry.object->AsVariable()) {
      CheckTypeName(entry, "the variable", variable->GetTypeName());
    }
  }

  // Values. Whoever reads or writes one may ask for the ancestors of its type, for ever where they
  // form a loop.

  // A fresh value of the type, or null where none is to be had.
  KVLSmartPtr<KVLCodeValue> MakeValue(const std::string& typeName) const {
    const KVLCodeType* const type = FindType(typeName);
    if (!type || !IsSafe(typeName)) return nullptr;
    return type->CreateValue("value");
  }

  // True when neither the ancestors of the type nor those of its elements form a loop.
  bool IsSafe(const std::string& typeName) const {
    std::set<std::string> seen;
    for (std::string name = typeName; seen.insert(name).second;) {
      if (looping.count(name) != 0) return false;
      const KVLCodeType* const type = FindType(name);
      MRBUnicodeString element;
      if (!type || !type->IsList(&element)) return true;
      name = KVLShellBytes(element);
    }
    return true;
  }

  void CheckDefaults(const KVLShellTreeObject& entry) {
    const KVLCodeFunction* const function = entry.object->AsFunction();
    if (!function) return;
    for (const KVLCodeFunction::Param& param : function->GetParams()) {
      if (param.defaultValue.IsEmpty()) continue;
      const KVLSmartPtr<KVLCodeValue> value = MakeValue(KVLShellBytes(param.typeName));
      if (!value) continue;
      const long code = value->SetValueStr(context, param.defaultValue);
      if (!KVLFailed(code)) continue;
      Report("default", entry,
             "the default '" + KVLShellBytes(param.defaultValue) + "' of parameter '" +
                 KVLShellBytes(param.name) + "' is no " + KVLShellBytes(param.typeName) + ": " +
                 CodeText(code));
    }
  }

  void CheckText(const KVLShellTreeObject& entry) {
    if (const KVLCodeValue* const variable = entry.object->AsVariable()) {
      const std::string typeName = KVLShellBytes(variable->GetTypeName());
      if (!IsSafe(typeName)) return;
      MRBUnicodeString text;
      const long code = variable->GetValueStr(context, text);
      if (KVLFailed(code)) {
        Report("text", entry, "the value writes no text: " + CodeText(code));
      } else {
        CheckReadsBack(entry, typeName, text);
      }
    } else if (const KVLCodeType* const type = entry.object->AsType()) {
      KVLVector<MRBUnicodeString> values;
      if (!type->GetEnumValues(values)) return;
      for (const MRBUnicodeString& value : values)
        CheckReadsBack(entry, KVLShellTypeNameAt(entry.path), value);
    }
  }

  void CheckReadsBack(const KVLShellTreeObject& entry, const std::string& typeName,
                      const MRBUnicodeString& text) {
    const KVLSmartPtr<KVLCodeValue> value = MakeValue(typeName);
    if (!value) return;
    const std::string quoted = "the text '" + KVLShellBytes(text) + "'";
    const long readCode = value->SetValueStr(context, text);
    if (KVLFailed(readCode)) {
      Report("text", entry, quoted + " does not read back: " + CodeText(readCode));
      return;
    }
    MRBUnicodeString again;
    const long writeCode = value->GetValueStr(context, again);
    if (KVLFailed(writeCode)) {
      Report("text", entry, quoted + " is read, but not written again: " + CodeText(writeCode));
    } else if (again != text) {
      Report("text", entry, quoted + " reads back as '" + KVLShellBytes(again) + "'");
    }
  }

  // Conversions.

  void CheckConversion(const KVLShellTreeObject& entry) {
    if (!StartsWith(entry.path, ConversionsPrefix)) return;
    const KVLShellModelConversion conversion = KVLShellConversionAt(entry.path, *entry.object);
    if (conversion.from.empty()) {
      Report("conversion", entry, "stands below no source type");
    } else if (!entry.object->AsFunction()) {
      Report("conversion", entry, "is not a function");
    } else if (conversion.form == 0) {
      Report("conversion", entry,
             "must take one input '" + conversion.from + "' and return '" + conversion.to +
                 "', or take it and give '" + conversion.to +
                 "' back through a second parameter; it is '" +
                 KVLShellBytes(entry.object->ToStringCode()) + "'");
    } else if (conversion.from == conversion.to) {
      Report("conversion", entry, "is never used: values of one type are assigned");
    }
  }

  // Parents.

  std::string ParentOf(const std::string& typeName) const {
    const KVLCodeType* const type = FindType(typeName);
    if (!type) return "";
    try {
      return KVLShellBytes(type->GetParentTypeName());
    } catch (const std::bad_alloc&) {
      throw;
    } catch (...) {
      return "";  // the other checks report what it throws
    }
  }

  // Fills `looping` with every type from which the parents lead into a loop, and `loops` with the
  // loops, each from its first name.
  void FindLoops() {
    std::set<std::string> known;
    for (const KVLShellTreeObject& entry : tree.GetObjects()) {
      if (!StartsWith(entry.path, TypesPrefix)) continue;
      std::vector<std::string> chain;
      std::string name = KVLShellTypeNameAt(entry.path);
      while (!name.empty() && known.insert(name).second) {
        chain.push_back(name);
        name = ParentOf(name);
      }
      const auto start = std::find(chain.begin(), chain.end(), name);
      if (start != chain.end()) {
        std::vector<std::string> loop(start, chain.end());
        std::rotate(loop.begin(), std::min_element(loop.begin(), loop.end()), loop.end());
        loops.push_back(std::move(loop));
      }
      if (start != chain.end() || looping.count(name) != 0)
        looping.insert(chain.begin(), chain.end());
    }
  }

  void ReportLoops() {
    for (const std::vector<std::string>& loop : loops) {
      std::string way;
      for (const std::string& name : loop)
        way += name + " -> ";
      Report("parents", *tree.FindObject(TypesPrefix + loop[0]),
             "the parents form a loop: " + way + loop[0]);
    }
  }

  // Documentation. An object that is found under several paths needs one text.

  bool IsDocumentedAt(const std::string& path) const {
    const KVLShellTreeObject* const doc = tree.FindObject(DocPath(path));
    return doc && KVLShellIsDoc(*doc);
  }

  // What 'use' has brought to the top is met there first, and has its doc where it came from.
  bool IsDocumentedWhereUsed(const std::string& path) const {
    for (const MRBUnicodeString& usedPath : KVLShellUsedPaths(KVLShellText(path)))
      if (IsDocumentedAt(KVLShellBytes(usedPath))) return true;
    return false;
  }

  void CheckDocs() {
    std::set<const KVLCodeObject*> documented;
    for (const KVLShellTreeObject& entry : tree.GetObjects()) {
      if (IsDocumentedAt(entry.path)) documented.insert(entry.object.Get());
    }
    std::set<const KVLCodeObject*> reported;
    for (const KVLShellTreeObject& entry : tree.GetObjects()) {
      if (!entry.object->AsFunction() || StartsWith(entry.path, ConversionsPrefix) ||
          StartsWith(entry.path, DocsPrefix) || documented.count(entry.object.Get()) != 0 ||
          !reported.insert(entry.object.Get()).second || IsDocumentedWhereUsed(entry.path)) {
        continue;
      }
      Report("doc", entry, "has no documentation at '" + DocPath(entry.path) + "'");
    }
  }

  const KVLShellTree tree;
  const KVLSmartPtr<KVLCodeEnv> types;
  const KVLSmartPtr<KVLCodeEnv> conversions;
  const KVLCodeContext context;
  std::vector<KVLShellFinding> findings;
  std::set<std::string> looping;
  std::vector<std::vector<std::string>> loops;
};

}  // namespace

std::vector<KVLShellFinding> KVLShellFindStrictly(KVLCodeEnv& root) {
  return Check(root).Run();
}
