#include <memory>
#include <vector>

#include "KVLKit.h"
#include "LambdaFunctions.h"

namespace {

using Elements = KVLCodeListValue::Elements;
using Texts = KVLVector<MRBUnicodeString>;

// A function published at the user's wish, and its doc; withdrawn when the entry dies.
struct Entry {
  Entry(const MRBUnicodeString& entryPath, const Texts& entryTargets, KVLCodeFunction* function,
        const MRBUnicodeString& doc, const KVLSourceLocation& location)
      : path(entryPath),
        targets(entryTargets),
        functionRegisterer(KVLCodeEnv::GetDefault(), KVLSmartPtr<KVLCodeObject>(function), path,
                           location),
        docRegisterer(KVLCodeEnv::GetDefault(), kvl::MakeValueOf(doc, function->GetName()).Get(),
                      "doc/" + path, location) {}

  const MRBUnicodeString path;
  const Texts targets;  // the paths of the functions that it calls
  const KVLCodeObjectRegisterer functionRegisterer;
  const KVLCodeObjectRegisterer docRegisterer;
};

std::vector<std::unique_ptr<Entry>> entries;

const Entry* FindEntry(const MRBUnicodeString& path) {
  for (const std::unique_ptr<Entry>& entry : entries)
    if (entry->path == path) return entry.get();
  return nullptr;
}

bool IsNameByte(char byte) {
  return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
         (byte >= '0' && byte <= '9') || byte == '_';
}

bool IsName(const MRBUnicodeString& text) {
  const char first = KVLStringOperations::GetCharAt(text, 0);
  if (!IsNameByte(first) || first == '_' || (first >= '0' && first <= '9')) return false;
  for (int i = 1; i < text.GetLengthInByte(); ++i)
    if (!IsNameByte(KVLStringOperations::GetCharAt(text, i))) return false;
  return true;
}

// "twice" and "session/twice" are the same.
MRBUnicodeString SessionPath(const MRBUnicodeString& given) {
  Texts names = registry::NamesOf(given);
  if (!names.IsEmpty() && names[0] == "session") names.Erase(0);
  MRBUnicodeString path = "session";
  bool isValid = !names.IsEmpty();
  for (const MRBUnicodeString& name : names) {
    isValid = isValid && IsName(name);
    path += "/" + name;
  }
  if (!isValid) {
    throw std::invalid_argument(calls::Quoted(given) +
                                " is no name: letters, digits and \"_\", a letter first");
  }
  return path;
}

MRBUnicodeString PlainPath(const MRBUnicodeString& path) {
  return registry::Find(path).path;
}

// Whether a call of `from` would come to call `to`, as far as published functions tell. `seen` are
// the paths that do not.
bool LeadsTo(const MRBUnicodeString& from, const MRBUnicodeString& to, Texts& seen) {
  if (from == to) return true;
  const Entry* const entry = FindEntry(from);
  if (!entry) return false;
  for (const MRBUnicodeString& path : seen)
    if (path == from) return false;
  seen.Append(from);
  for (const MRBUnicodeString& target : entry->targets)
    if (LeadsTo(target, to, seen)) return true;
  return false;
}

MRBUnicodeString LastNameOf(const MRBUnicodeString& path) {
  const Texts names = registry::NamesOf(path);
  return names[names.GetCount() - 1];
}

MRBUnicodeString FreePathFor(const MRBUnicodeString& given, const Texts& targets) {
  const MRBUnicodeString path = SessionPath(given);
  if (registry::Find(path).object) {
    throw std::invalid_argument(calls::Quoted(path) + " is taken");
  }
  Texts seen;
  for (const MRBUnicodeString& target : targets) {
    if (LeadsTo(target, path, seen)) {
      throw std::invalid_argument(calls::Quoted(target) + " would lead back to " +
                                  calls::Quoted(path));
    }
  }
  return path;
}

MRBUnicodeString Publish(const MRBUnicodeString& path, const Texts& targets,
                         KVLCodeFunction* function, const MRBUnicodeString& doc) {
  entries.push_back(std::make_unique<Entry>(path, targets, function, doc,
                                            KVLSourceLocation(__FILE__, __LINE__, "")));
  return path;
}

bool IsOpen(const calls::ValuePtr& value) {
  return value && value->GetTypeName() == "string" && value->GetValuePtr() &&
         *static_cast<const MRBUnicodeString*>(value->GetValuePtr()) == "_";
}

// What the values are as texts of the parameters that they fix.
KVLVector<std::optional<MRBUnicodeString>> FixedTexts(const KVLCodeContext& context,
                                                      const KVLCodeFunction& function,
                                                      const Elements& values) {
  if (values.GetCount() > function.GetNbParameters()) {
    throw std::invalid_argument(calls::Quoted(function.GetName()) + " takes no more than " +
                                std::to_string(function.GetNbParameters()) + " arguments");
  }
  const calls::CallerPtr caller = calls::CreateCaller(function, context);
  KVLVector<std::optional<MRBUnicodeString>> texts;
  texts.Resize(values.GetCount());
  for (int i = 0; i < values.GetCount(); ++i) {
    if (IsOpen(values[i])) continue;
    calls::SetArg(*caller, i, values[i]);
    MRBUnicodeString text;
    if (KVLFailed(caller->GetArgStr(i, text))) {
      throw std::invalid_argument("argument " + calls::Quoted(function.GetParam(i).name) +
                                  " has no text, and cannot be fixed");
    }
    texts[i] = text;
  }
  return texts;
}

MRBUnicodeString PublishRedirection(const MRBUnicodeString& path,
                                    const MRBUnicodeString& targetPath,
                                    const KVLVector<std::optional<MRBUnicodeString>>& fixedTexts,
                                    const MRBUnicodeString& doc) {
  Texts targets;
  targets.Append(PlainPath(targetPath));
  const MRBUnicodeString freePath = FreePathFor(path, targets);
  const calls::FunctionPtr function = calls::FindOrThrow(targetPath);
  return Publish(freePath, targets,
                 new lambda::Redirection(LastNameOf(freePath), targets[0], *function, fixedTexts),
                 doc);
}

MRBUnicodeString Alias(const MRBUnicodeString& newPath, const MRBUnicodeString& path) {
  (void)calls::FindOrThrow(path);
  return PublishRedirection(newPath, path, {}, "Another name of " + PlainPath(path) + ".");
}

MRBUnicodeString Bind(const KVLCodeContext& context, const MRBUnicodeString& newPath,
                      const MRBUnicodeString& path, const Elements& values) {
  const calls::FunctionPtr function = calls::FindOrThrow(path);
  return PublishRedirection(newPath, path, FixedTexts(context, *function, values),
                            PlainPath(path) + " with some arguments fixed.");
}

MRBUnicodeString Compose(const MRBUnicodeString& newPath, const Texts& paths) {
  if (paths.IsEmpty()) throw std::invalid_argument("there is nothing to compose");
  Texts targets;
  MRBUnicodeString doc;
  for (int i = 0; i < paths.GetCount(); ++i) {
    const calls::FunctionPtr function = calls::FindOrThrow(paths[i]);
    if (i > 0 && !lambda::TakesOneValue(*function)) {
      throw std::invalid_argument(calls::Quoted(paths[i]) + " does not take one value");
    }
    targets.Append(PlainPath(paths[i]));
    doc += (i > 0 ? ", then " : "") + targets[i];
  }
  const MRBUnicodeString freePath = FreePathFor(newPath, targets);
  return Publish(
      freePath, targets,
      new lambda::Composition(LastNameOf(freePath), targets, *calls::FindOrThrow(targets[0]),
                              *calls::FindOrThrow(targets[targets.GetCount() - 1])),
      doc + ".");
}

void Unalias(const MRBUnicodeString& given) {
  const MRBUnicodeString path = SessionPath(given);
  for (auto entry = entries.begin(); entry != entries.end(); ++entry) {
    if ((*entry)->path != path) continue;
    entries.erase(entry);
    return;
  }
  throw std::invalid_argument(calls::Quoted(path) + " was not published by these functions");
}

Texts Published() {
  Texts paths;
  for (const std::unique_ptr<Entry>& entry : entries)
    paths.Append(entry->path);
  return paths;
}

}  // namespace

KVL_FUNCTION(
    "func/alias", "new, path",
    "Publishes the function at the path under another one, below \"session/\", and returns "
    "that. Fails when there is no such function, when the new path is taken, and when the "
    "function would come to call itself.",
    Alias);
KVL_FUNCTION("func/bind", "new, path, values",
             "Publishes below \"session/\" the function at the path with the values for its first "
             "arguments; the text \"_\" keeps one open. Returns the new path. Fails as func/alias "
             "does, and when a value does not fit.",
             Bind);
KVL_FUNCTION(
    "func/compose", "new, paths",
    "Publishes below \"session/\" a function that calls those at the paths in their order, "
    "each with what the one before returned, and returns the new path. Fails as "
    "func/alias does, and when one behind the first does not take one value.",
    Compose);
KVL_FUNCTION("func/unalias", "path",
             "Withdraws what func/alias, func/bind or func/compose has published. Fails when they "
             "have not.",
             Unalias);
KVL_FUNCTION("func/published", "",
             "The paths of what func/alias, func/bind and func/compose have published, oldest "
             "first. All of it is withdrawn when the module is unloaded.",
             Published);
