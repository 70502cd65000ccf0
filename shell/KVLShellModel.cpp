#include "KVLShellModel.h"

#include <algorithm>
#include <exception>
#include <map>
#include <new>
#include <set>
#include <tuple>
#include <utility>

#include "KVLCodeContext.h"
#include "KVLCodeFunction.h"
#include "KVLCodeType.h"
#include "KVLCodeValue.h"
#include "KVLResult.h"
#include "KVLShellDescription.h"
#include "KVLShellLibrary.h"
#include "KVLShellTree.h"

namespace {

constexpr char ConversionsPrefix[] = "_conversions/";
constexpr char DocPrefix[] = "doc/";
constexpr char MembersPrefix[] = "_members/";
constexpr char TypesPrefix[] = "_types/";

bool StartsWith(const std::string& text, const std::string& prefix) {
  return text.compare(0, prefix.size(), prefix) == 0;
}

// The content of a text that is quoted, or the text.
std::string Unquoted(const std::string& text) {
  if (text.size() < 2 || text.front() != '"' || text.back() != '"') return text;
  std::string content;
  for (std::size_t i = 1; i + 1 < text.size(); ++i) {
    char c = text[i];
    if (c == '\\' && i + 2 < text.size()) {
      c = text[++i];
      if (c == 'n') c = '\n';
      if (c == 'r') c = '\r';
      if (c == 't') c = '\t';
    }
    content += c;
  }
  return content;
}

// What lies in the kernel comes from nobody.
std::string ModuleOf(const KVLCodeObject& object) {
  const std::string library = KVLShellBytes(KVLShellLibraryOf(object));
  return library == "KVLKernel" ? "" : library;
}

// Runs `read`, which calls operations of an object, and keeps what it throws.
template <class Read>
void Guarded(std::vector<std::string>& problems, const Read& read) {
  try {
    read();
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& exception) {
    problems.push_back(std::string("cannot be read: ") + exception.what());
  } catch (...) {
    problems.push_back("cannot be read: threw something that is no std::exception");
  }
}

class Reader {
 public:
  explicit Reader(KVLCodeEnv& rootEnv)
      : root(rootEnv),
        tree(rootEnv),
        types(KVLShellEnvOrEmpty(tree, "_types")),
        conversions(KVLShellEnvOrEmpty(tree, "_conversions")),
        context(*types, *conversions) {}

  KVLShellModel Read() {
    ReadDocs();
    ReadConversions();
    for (const KVLShellTreeEnv& place : tree.GetEnvs())
      ReadEnv(place);
    model.anomalies = KVLShellReadAnomalies(root, tree);
    return std::move(model);
  }

 private:
  void ReadDocs() {
    for (const KVLShellTreeObject& entry : tree.GetObjects()) {
      if (!KVLShellIsDoc(entry)) continue;
      KVLShellModelDoc doc;
      doc.path = entry.path;
      std::vector<std::string> problems;
      Guarded(problems, [&] {
        MRBUnicodeString text;
        if (!KVLFailed(entry.object->AsVariable()->GetValueStr(context, text)))
          doc.text = Unquoted(KVLShellBytes(text));
      });
      docs.emplace(doc.path, model.docs.size());
      model.docs.push_back(std::move(doc));
    }
  }

  // The text about what is at `path`.
  std::string DocOf(const std::string& path) {
    const auto found = docs.find(KVLShellBytes(KVLShellDocPath(KVLShellText(path))));
    if (path.empty() || found == docs.end()) return "";
    KVLShellModelDoc& doc = model.docs[found->second];
    doc.subject = path;
    return doc.text;
  }

  void ReadConversions() {
    for (const KVLShellTreeObject& entry : tree.GetObjects()) {
      if (!StartsWith(entry.path, ConversionsPrefix)) continue;
      const KVLShellModelConversion conversion = KVLShellConversionAt(entry.path, *entry.object);
      if (!conversion.from.empty()) model.conversions.push_back(conversion);
    }
    std::sort(model.conversions.begin(), model.conversions.end(),
              [](const KVLShellModelConversion& left, const KVLShellModelConversion& right) {
                return std::tie(left.from, left.to, left.path) <
                       std::tie(right.from, right.to, right.path);
              });
    for (const KVLShellModelConversion& conversion : model.conversions) {
      conversionsFrom[conversion.from].push_back(conversion);
      conversionsTo[conversion.to].push_back(conversion);
    }
  }

  void ReadEnv(const KVLShellTreeEnv& place) {
    KVLShellModelEnv env;
    env.path = place.path;
    env.name = place.name;
    env.doc = DocOf(place.path);
    env.depth = place.depth;
    env.isDocs = place.path == "doc" || StartsWith(place.path, DocPrefix);
    env.isRepeated = place.sameAs != KVLShellTreeEnv::None;
    if (env.isRepeated) env.sameAs = tree.GetEnvs()[place.sameAs].path;
    for (const KVLSmartPtr<KVLCodeEnv>& part : place.envs) {
      for (KVLShellModelPlace& registered : KVLShellPlacesOf(*part))
        env.places.push_back(std::move(registered));
      ReadProblems(*part, env.problems);
    }
    env.firstObject = model.objects.size();
    for (std::size_t i = 0; i < place.nbObjects; ++i) {
      KVLShellEndIfInterrupted();
      const KVLShellTreeObject& entry = tree.GetObjects()[place.firstObject + i];
      if (!KVLShellIsDoc(entry)) model.objects.push_back(ReadObject(entry));
    }
    env.nbObjects = model.objects.size() - env.firstObject;
    model.envs.push_back(std::move(env));
  }

  static void ReadProblems(const KVLCodeObject& object, std::vector<std::string>& problems) {
    Guarded(problems, [&] {
      for (const MRBUnicodeString& message : object.Check())
        problems.push_back(KVLShellBytes(message));
    });
  }

  KVLShellModelObject ReadObject(const KVLShellTreeObject& entry) {
    const KVLCodeObject& object = *entry.object;
    KVLShellModelObject read;
    read.path = entry.path;
    read.name = entry.name;
    read.doc = DocOf(entry.path);
    read.module = ModuleOf(object);
    read.places = KVLShellPlacesOf(object);
    Guarded(read.problems, [&] { read.signature = KVLShellBytes(object.ToStringCode()); });
    Guarded(read.problems, [&] {
      if (const KVLCodeFunction* const function = object.AsFunction()) {
        read.kind = KVLShellModelKind::Function;
        ReadFunction(*function, read);
      } else if (const KVLCodeType* const type = object.AsType()) {
        read.kind = KVLShellModelKind::Type;
        ReadType(*type, read);
      } else if (const KVLCodeValue* const variable = object.AsVariable()) {
        read.kind = KVLShellModelKind::Variable;
        ReadVariable(*variable, read);
      } else if (object.AsEnv()) {
        read.kind = KVLShellModelKind::Env;
      }
    });
    ReadProblems(object, read.problems);
    return read;
  }

  static void ReadFunction(const KVLCodeFunction& function, KVLShellModelObject& read) {
    read.returnTypeName = KVLShellBytes(function.GetReturnTypeName());
    for (const KVLCodeFunction::Param& param : function.GetParams()) {
      KVLShellModelParam described;
      described.name = KVLShellBytes(param.name);
      described.typeName = KVLShellBytes(param.typeName);
      described.defaultText = KVLShellBytes(param.defaultValue);
      described.isInput = (param.direction & KVLCodeFunction::Input) != 0;
      described.isOutput = (param.direction & KVLCodeFunction::Output) != 0;
      read.params.push_back(std::move(described));
    }
    read.isMethod = function.IsMethod();
  }

  void ReadType(const KVLCodeType& type, KVLShellModelObject& read) {
    const std::string name = KVLShellTypeNameAt(read.path);
    read.conversionsTo = conversionsFrom[name];
    read.conversionsFrom = conversionsTo[name];
    if (const KVLShellTreeEnv* const members = tree.FindEnv(MembersPrefix + name)) {
      for (std::size_t i = 0; i < members->nbObjects; ++i)
        read.members.push_back(tree.GetObjects()[members->firstObject + i].path);
    }
    read.parent = KVLShellBytes(type.GetParentTypeName());
    MRBUnicodeString element;
    read.isList = type.IsList(&element);
    read.elementTypeName = KVLShellBytes(element);
    KVLVector<MRBUnicodeString> values;
    read.isEnum = type.GetEnumValues(values);
    for (const MRBUnicodeString& value : values)
      read.enumValues.push_back(KVLShellBytes(value));
  }

  void ReadVariable(const KVLCodeValue& variable, KVLShellModelObject& read) {
    read.typeName = KVLShellBytes(variable.GetTypeName());
    MRBUnicodeString text;
    read.isReadable = !KVLFailed(variable.GetValueStr(context, text));
    if (read.isReadable) read.text = KVLShellBytes(text);
  }

  KVLCodeEnv& root;
  const KVLShellTree tree;
  const KVLSmartPtr<KVLCodeEnv> types;
  const KVLSmartPtr<KVLCodeEnv> conversions;
  const KVLCodeContext context;
  std::map<std::string, std::size_t> docs;  // by path, their indices in the model
  std::map<std::string, std::vector<KVLShellModelConversion>> conversionsFrom;
  std::map<std::string, std::vector<KVLShellModelConversion>> conversionsTo;
  KVLShellModel model;
};

}  // namespace

const char* KVLShellModelKindName(KVLShellModelKind kind) {
  switch (kind) {
    case KVLShellModelKind::Function:
      return "function";
    case KVLShellModelKind::Type:
      return "type";
    case KVLShellModelKind::Variable:
      return "variable";
    case KVLShellModelKind::Env:
      return "env";
    case KVLShellModelKind::Object:
      break;
  }
  return "object";
}

std::string KVLShellTypeNameAt(const std::string& path) {
  return StartsWith(path, TypesPrefix) ? path.substr(sizeof(TypesPrefix) - 1) : "";
}

bool KVLShellIsDoc(const KVLShellTreeObject& entry) {
  const KVLCodeValue* const variable = entry.object->AsVariable();
  return StartsWith(entry.path, DocPrefix) && variable && variable->GetTypeName() == "string";
}

int KVLShellConversionForm(const KVLCodeFunction& function, const std::string& from,
                           const std::string& to) {
  const auto is = [&](int i, const std::string& typeName, unsigned int direction) {
    const KVLCodeFunction::Param& param = function.GetParam(i);
    return KVLShellBytes(param.typeName) == typeName && (param.direction & direction) != 0;
  };
  const int count = function.GetNbParameters();
  if (count < 1 || count > 2 || !is(0, from, KVLCodeFunction::Input)) return 0;
  if (count == 1) return KVLShellBytes(function.GetReturnTypeName()) == to ? 1 : 0;
  return is(1, to, KVLCodeFunction::Output) ? 2 : 0;
}

KVLShellModelConversion KVLShellConversionAt(const std::string& path, const KVLCodeObject& object) {
  KVLShellModelConversion conversion;
  conversion.path = path;
  const std::string names = path.substr(sizeof(ConversionsPrefix) - 1);
  const KVLCodeFunction* const function = object.AsFunction();
  for (std::size_t slash = names.rfind('/'); slash != std::string::npos && slash > 0;
       slash = names.rfind('/', slash - 1)) {
    const std::string from = names.substr(0, slash);
    const std::string to = names.substr(slash + 1);
    const int form = function ? KVLShellConversionForm(*function, from, to) : 0;
    if (form == 0 && !conversion.from.empty()) continue;
    conversion.from = from;
    conversion.to = to;
    conversion.form = form;
    if (form != 0) break;
  }
  return conversion;
}

std::vector<KVLShellModelPlace> KVLShellPlacesOf(const KVLCodeObject& object) {
  std::vector<KVLShellModelPlace> places;
  for (const KVLSourceLocation& location : object.GetRegistrationLocations()) {
    places.push_back({KVLShellBytes(location.path), location.line, KVLShellBytes(location.detail)});
  }
  return places;
}

std::vector<KVLShellModelAnomaly> KVLShellReadAnomalies(KVLCodeEnv& root,
                                                        const KVLShellTree& tree) {
  std::vector<KVLShellModelAnomaly> anomalies;
  std::vector<std::string> thrown;
  Guarded(thrown, [&] {
    for (const KVLCodeEnv::Anomaly& anomaly : root.ComputeAnomalies()) {
      KVLShellModelAnomaly read;
      read.path = KVLShellBytes(anomaly.path);
      read.message = KVLShellBytes(anomaly.message);
      const KVLShellTreeObject* const entry = tree.FindObject(read.path);
      if (anomaly.object) {
        read.places = KVLShellPlacesOf(*anomaly.object);
      } else if (entry) {
        read.places = KVLShellPlacesOf(*entry->object);
      }
      anomalies.push_back(std::move(read));
    }
  });
  for (const std::string& message : thrown)
    anomalies.push_back({"", message, {}});
  return anomalies;
}

KVLShellModel KVLShellReadModel(KVLCodeEnv& root) {
  return Reader(root).Read();
}

KVLShellModel KVLShellPartOfModel(const KVLShellModel& model, const std::string& path) {
  KVLShellModel part;
  part.path = path;
  std::set<std::string> typeNames;
  for (const KVLShellModelEnv& env : model.envs) {
    KVLShellModelEnv kept = env;
    kept.firstObject = part.objects.size();
    for (std::size_t i = 0; i < env.nbObjects; ++i) {
      const KVLShellModelObject& object = model.objects[env.firstObject + i];
      if (!KVLShellIsAtOrBelow(object.path, path)) continue;
      if (object.kind == KVLShellModelKind::Type) typeNames.insert(KVLShellTypeNameAt(object.path));
      part.objects.push_back(object);
    }
    kept.nbObjects = part.objects.size() - kept.firstObject;
    // An environment outside stays where it leads to an object that was asked for.
    if (KVLShellIsAtOrBelow(env.path, path) || kept.nbObjects > 0)
      part.envs.push_back(std::move(kept));
  }
  for (const KVLShellModelConversion& conversion : model.conversions) {
    if (KVLShellIsAtOrBelow(conversion.path, path) || typeNames.count(conversion.from) != 0 ||
        typeNames.count(conversion.to) != 0) {
      part.conversions.push_back(conversion);
    }
  }
  for (const KVLShellModelDoc& doc : model.docs) {
    if (KVLShellIsAtOrBelow(doc.path, path) ||
        (!doc.subject.empty() && KVLShellIsAtOrBelow(doc.subject, path)))
      part.docs.push_back(doc);
  }
  for (const KVLShellModelAnomaly& anomaly : model.anomalies) {
    const std::size_t end = anomaly.path.find_last_not_of('/');
    const std::string at = anomaly.path.substr(0, end == std::string::npos ? 0 : end + 1);
    if (KVLShellIsAtOrBelow(at, path)) part.anomalies.push_back(anomaly);
  }
  return part;
}
