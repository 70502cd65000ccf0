#include <stdexcept>
#include <string>

#include "KVLCodeType.h"
#include "KVLKit.h"
#include "shared/RegistryWalk.h"

namespace {

using Texts = KVLVector<MRBUnicodeString>;

registry::Place FindOrThrow(const MRBUnicodeString& path) {
  registry::Place place = registry::Find(path);
  if (place.IsFound()) return place;
  throw std::invalid_argument(std::string("there is nothing at '") + path.ConvertToChar() + "'");
}

registry::Envs FindEnvsOrThrow(const MRBUnicodeString& path) {
  registry::Envs envs = FindOrThrow(path).envs;
  if (!envs.IsEmpty()) return envs;
  throw std::invalid_argument(std::string("'") + path.ConvertToChar() + "' is no environment");
}

const char* KindOf(const KVLCodeObject& object) {
  return object.AsFunction()   ? "function"
         : object.AsType()     ? "type"
         : object.AsVariable() ? "variable"
         : object.AsEnv()      ? "env"
                               : "object";
}

void PollInterruption(const KVLCodeSession* session) {
  if (session && session->IsInterrupted()) throw std::runtime_error("interrupted");
}

Texts List(const MRBUnicodeString& path, bool isRecursive, KVLCodeSession* session) {
  const registry::Envs envs = FindEnvsOrThrow(path);
  Texts labels;
  if (!isRecursive) {
    for (const registry::Child& child : registry::ChildrenOf(envs))
      labels.Append(child.label);
    return labels;
  }
  registry::Walk(envs, "", [&](const MRBUnicodeString& childPath, const registry::Child&) {
    PollInterruption(session);
    labels.Append(childPath);
  });
  return labels;
}

char LowerCase(char character) {
  return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                              : character;
}

// Whether the name has the form of the pattern: "?" stands for one character, "*" for any number.
// Where the two differ, the last "*" is made to stand for one character more.
bool HasForm(const char* name, const char* pattern) {
  const char* star = nullptr;
  const char* resumed = nullptr;
  while (*name) {
    if (*pattern == '*') {
      star = pattern++;
      resumed = name;
    } else if (*pattern == '?' || LowerCase(*pattern) == LowerCase(*name)) {
      ++pattern;
      ++name;
    } else if (star) {
      pattern = star + 1;
      name = ++resumed;
    } else {
      return false;
    }
  }
  while (*pattern == '*')
    ++pattern;
  return !*pattern;
}

MRBUnicodeString LastNameOf(const MRBUnicodeString& path) {
  const int slash = path.SearchSubString("/", 0, MRBUnicodeString::MRBSearchBackward);
  return path.SubString(slash + 1, path.GetLengthInByte());
}

bool IsDoc(const MRBUnicodeString& path) {
  return KVLStringOperations::StartsWith(path, "doc/");
}

Texts FindAll(const MRBUnicodeString& pattern, const MRBUnicodeString& kind,
              KVLCodeSession* session) {
  if (!kind.IsEmpty() && kind != "function" && kind != "type" && kind != "variable" &&
      kind != "env" && kind != "object") {
    throw std::invalid_argument("the kind must be function, type, variable, env or object");
  }
  const bool isForm = pattern.FindPosition("*", 0) > 0 || pattern.FindPosition("?", 0) > 0;
  const bool isPath = pattern.FindPosition("/", 0) > 0;
  const MRBUnicodeString form = isForm ? pattern : "*" + pattern + "*";
  Texts paths;
  registry::Walk(
      registry::Root(), "", [&](const MRBUnicodeString& path, const registry::Child& child) {
        PollInterruption(session);
        if (IsDoc(path)) return;
        const bool isEnv = !child.object;
        if (!kind.IsEmpty() && kind != (isEnv ? "env" : KindOf(*child.object))) return;
        const MRBUnicodeString bare = isEnv ? path.SubString(0, path.GetLengthInByte() - 1) : path;
        if (HasForm(isPath ? bare : LastNameOf(bare), form)) paths.Append(path);
      });
  return paths;
}

MRBUnicodeString Signature(const MRBUnicodeString& path) {
  const registry::Place place = FindOrThrow(path);
  return place.object ? place.object->ToStringCode() : place.path + "/";
}

MRBUnicodeString Kind(const MRBUnicodeString& path) {
  const registry::Place place = FindOrThrow(path);
  return place.object ? KindOf(*place.object) : "env";
}

// Docs lie under the paths of what they tell about, without leading underscores.
MRBUnicodeString Doc(const KVLCodeContext& context, const MRBUnicodeString& path) {
  MRBUnicodeString plain = FindOrThrow(path).path;
  while (kvl::BeginsWith(plain, '_'))
    plain.Remove(0, 1);
  const KVLSmartPtr<KVLCodeObject> doc = registry::Find("doc/" + plain).object;
  MRBUnicodeString text;
  if (!doc || !doc->AsVariable() || KVLFailed(doc->AsVariable()->GetValueStr(context, text))) {
    return "";
  }
  MRBUnicodeString data;
  return KVLFailed(kvl::Parse(text, data)) ? text : data;
}

void AppendLocations(const KVLCodeObject& object, Texts& locations) {
  for (const KVLSourceLocation& location : object.GetRegistrationLocations())
    locations.Append(location.ToString());
}

Texts Where(const MRBUnicodeString& path) {
  const registry::Place place = FindOrThrow(path);
  Texts locations;
  if (place.object) {
    AppendLocations(*place.object, locations);
  } else {
    for (const KVLSmartPtr<KVLCodeEnv>& env : place.envs)
      AppendLocations(*env, locations);
  }
  return locations;
}

Texts Anomalies(const MRBUnicodeString& path) {
  Texts found;
  for (const KVLSmartPtr<KVLCodeEnv>& env : FindEnvsOrThrow(path)) {
    for (const KVLCodeEnv::Anomaly& anomaly : env->ComputeAnomalies())
      found.Append(anomaly.path + ": " + anomaly.message);
  }
  return found;
}

}  // namespace

KVL_DOC("reg", "The registry itself. Looking for something never creates anything.");

KVL_FUNCTION("reg/list", "path = /, recursive = false",
             "The names of what the environment holds, sorted, with \"/\" behind those of "
             "environments; recursive: also of what these hold, as paths. Fails where there is no "
             "environment.",
             List);
KVL_FUNCTION(
    "reg/find", "pattern, kind = \"\"",
    "The paths of everything, docs left out, that has the pattern in its name; in its path "
    "when the pattern has a \"/\". With \"*\" (any characters) or \"?\" (one character) "
    "the whole name is compared. Small letters and capitals are equal. The kind, where "
    "given, is function, type, variable, env or object.",
    FindAll);
KVL_FUNCTION("reg/exists", "path",
             "Whether the path leads anywhere; with \"/\" at its end, to an environment.",
             [](const MRBUnicodeString& path) { return registry::Find(path).IsFound(); });
KVL_FUNCTION("reg/kind", "path",
             "What is at the path: function, type, variable, env, or object for anything else. "
             "Fails when nothing is there.",
             Kind);
KVL_FUNCTION("reg/signature", "path",
             "The declaration of what is at the path. Fails when nothing is there.", Signature);
KVL_FUNCTION("reg/doc", "path",
             "What is to be said about the object or environment at the path; empty when nothing "
             "is. Fails when nothing is there.",
             Doc);
KVL_FUNCTION("reg/where", "path",
             "The places of source text that registered the object at the path, refused ones "
             "included. Fails when nothing is there.",
             Where);
KVL_FUNCTION("reg/anomalies", "path = /",
             "What is wrong in the environment and below it, each as \"path: problem\". Fails "
             "where there is no environment.",
             Anomalies);
