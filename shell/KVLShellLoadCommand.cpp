#include <algorithm>
#include <map>
#include <set>

#include "KVLCodeFunctionBinding.h"
#include "KVLShellCommand.h"
#include "KVLShellDescription.h"
#include "KVLShellPath.h"
#include "KVLShellResult.h"
#include "KVLStringOperations.h"

namespace {

constexpr const char* Modules[] = {"Alpha", "Beta",  "Gamma", "Delta", "Epsilon", "Zeta",
                                   "Eta",   "Theta", "Iota",  "Kappa", "Lambda"};
constexpr char Prefix[] = "KVLCodeEnv_";
constexpr char RefusedStart[] = "Tried to add two times";

// What is in the registry: objects by their paths, and the registrations that were refused.
struct Inventory {
  std::map<MRBUnicodeString, const KVLCodeObject*> objects;
  std::map<MRBUnicodeString, MRBUnicodeString> libraries;  // by path
  std::vector<MRBUnicodeString> refused;
};

void AddRefused(const KVLCodeObject& env, Inventory& inventory) {
  for (const MRBUnicodeString& message : env.Check())
    if (KVLStringOperations::StartsWith(message, RefusedStart))
      inventory.refused.push_back(message);
}

// What environments in use show a second time is left out.
Inventory TakeInventory() {
  Inventory inventory;
  std::set<const KVLCodeObject*> seen;
  AddRefused(KVLCodeEnv::GetDefault(), inventory);
  (void)KVLShellWalk(  // an interruption shows in the command's outcome
      KVLShellFind("").envs, [&](const MRBUnicodeString& path, const KVLShellChild& child) {
        const KVLCodeObject* const object = child.object.Get();
        if (!seen.insert(object).second) return true;
        if (child.env) {
          AddRefused(*object, inventory);
          return true;
        }
        inventory.objects[path] = object;
        inventory.libraries[path] = KVLShellLibraryOf(*object);
        return true;
      });
  return inventory;
}

// The messages of `after` that `before` does not have; both in the order of a walk.
std::vector<MRBUnicodeString> NewlyRefused(const Inventory& before, const Inventory& after) {
  std::multiset<MRBUnicodeString> known(before.refused.begin(), before.refused.end());
  std::vector<MRBUnicodeString> fresh;
  for (const MRBUnicodeString& message : after.refused) {
    const auto found = known.find(message);
    if (found == known.end()) {
      fresh.push_back(message);
    } else {
      known.erase(found);
    }
  }
  return fresh;
}

KVLShellOutcome Failed(const MRBUnicodeString& message, const KVLShellWord& word) {
  KVLShellOutcome outcome(KVLShellResult_Load, message, word.position);
  outcome.got = word.text;
  return outcome;
}

const KVLShellSession::Library* FindLibrary(const KVLShellSession& session,
                                            const MRBUnicodeString& name) {
  for (const KVLShellSession::Library& library : session.GetLibraries())
    if (library.name == name || library.name == Prefix + name) return &library;
  return nullptr;
}

bool HasPublished(const Inventory& inventory, const MRBUnicodeString& library) {
  for (const auto& object : inventory.libraries)
    if (object.second == library || object.second == Prefix + library) return true;
  return false;
}

MRBUnicodeString CountOf(std::size_t count, const char* what) {
  const MRBUnicodeString number = KVLStringOperations::FromNum(static_cast<int>(count));
  return number + " " + what + (count == 1 ? "" : "s");
}

// Loads `name` as a module, or else as it is.
LibraryHandler Open(const MRBUnicodeString& name, MRBUnicodeString& fullName) {
  fullName = name;
  if (KVLStringOperations::StartsWith(name, Prefix)) {
    return MRBGetEntryPoint(name, nullptr, nullptr, 1, 1, 0);
  }
  fullName = Prefix + name;
  const LibraryHandler handler = MRBGetEntryPoint(fullName, nullptr, nullptr, 1, 1, 0);
  if (handler.library) return handler;
  const LibraryHandler plain = MRBGetEntryPoint(name, nullptr, nullptr, 1, 1, 0);
  if (plain.library) fullName = name;
  return plain;
}

KVLShellOutcome RunLoad(const KVLShellArguments& arguments, KVLShellWork& work,
                        KVLShellAnswer& answer) {
  const KVLShellWord& word = arguments[0];
  const MRBUnicodeString shown = KVLShellPrintable(word.text);
  const Inventory before = TakeInventory();
  if (FindLibrary(work.session, word.text) || HasPublished(before, word.text)) {
    return Failed("load: '" + shown + "' is loaded already", word);
  }
  MRBUnicodeString name;
  const LibraryHandler handler = Open(word.text, name);
  if (!handler.library) {
    const MRBUnicodeString reason = KVLShellLoadError();
    KVLShellOutcome outcome = Failed("load: '" + shown + "' cannot be loaded", word);
    if (!reason.IsEmpty()) outcome.message += ": " + reason;
    KVLVector<MRBUnicodeString> names = KVLShellModuleNames();
    outcome.suggestion = KVLShellNearest(word.text, names);
    return outcome;
  }
  work.session.AddLibrary(name, handler);
  const Inventory after = TakeInventory();
  KVLShellNode objects = KVLShellNode::NewList();
  for (const auto& object : after.objects) {
    const auto former = before.objects.find(object.first);
    if (former != before.objects.end() && former->second == object.second) continue;
    objects.Append(object.first);
  }
  KVLShellNode refused = KVLShellNode::NewList();
  for (const MRBUnicodeString& message : NewlyRefused(before, after))
    refused.Append(message);
  answer.result = KVLShellNode::NewRecord();
  answer.result.Set("library", name);
  const std::size_t count = objects.GetItems().size();
  answer.result.Set("objects", objects.ShowAs(count ? CountOf(count, "object") : "none"));
  answer.result.Set("refused", refused);
  answer.layout = KVLShellAnswer::Sheet;
  return KVLShellOutcome();
}

bool LiesIn(const std::vector<const void*>& addresses, const MRBUnicodeString& library) {
  for (const void* const address : addresses)
    if (KVLShellLibraryAt(address) == library) return true;
  return false;
}

// Who would be left with an object whose code is gone.
KVLShellNode HoldersOf(const MRBUnicodeString& library, const KVLShellWork& work) {
  KVLShellNode holders = KVLShellNode::NewList();
  KVLVector<MRBUnicodeString> names;
  work.session.GetVariableNames(names);
  for (const MRBUnicodeString& name : names) {
    if (!LiesIn(KVLShellLibrariesOf(*work.session.FindVariable(name)), library)) continue;
    holders.Append("session value $" + name);
  }
  std::set<const KVLCodeObject*> own;
  for (const KVLShellSession::Binding& binding : work.session.GetBindings()) {
    own.insert(binding.function.Get());
    if (LiesIn(KVLShellLibrariesOf(*binding.function), library)) {
      holders.Append("binding " + binding.path);
    }
  }
  // Bindings of other libraries; those of the library itself go with it.
  (void)KVLShellWalk(
      KVLShellFind("").envs, [&](const MRBUnicodeString& path, const KVLShellChild& child) {
        const KVLCodeFunction* const function = child.object->AsFunction();
        if (!function || own.count(function) > 0 || KVLShellLibraryOf(*function) == library) {
          return true;
        }
        if (LiesIn(KVLShellLibrariesOf(*function), library)) holders.Append("object " + path);
        return true;
      });
  return holders;
}

KVLShellOutcome RunUnload(const KVLShellArguments& arguments, KVLShellWork& work,
                          KVLShellAnswer& answer) {
  const KVLShellWord& word = arguments[0];
  const MRBUnicodeString shown = KVLShellPrintable(word.text);
  const KVLShellSession::Library* const library = FindLibrary(work.session, word.text);
  if (!library) {
    KVLShellOutcome outcome = Failed("unload: '" + shown + "' was not loaded by 'load'", word);
    KVLVector<MRBUnicodeString> names;
    for (const KVLShellSession::Library& loaded : work.session.GetLibraries())
      names.Append(loaded.name);
    outcome.suggestion = KVLShellNearest(word.text, names);
    return outcome;
  }
  const MRBUnicodeString name = library->name;
  KVLShellNode holders = HoldersOf(name, work);
  answer.result = KVLShellNode::NewRecord();
  answer.result.Set("library", name);
  if (!holders.GetItems().empty()) {
    const MRBUnicodeString list = holders.ToText();
    answer.result.Set("holders", holders);
    return Failed("unload: '" + shown + "' is held by " + list, word);
  }
  // What earlier commands of this text gave up may hold the library still.
  if (KVLShellTextRun::IsOutermost()) work.session.ReleaseLibraries();
  const std::size_t before = TakeInventory().objects.size();
  if (!work.session.CloseLibrary(name)) {
    const MRBUnicodeString reason = KVLShellLoadError();
    return Failed("unload: '" + shown + "' cannot be unloaded: " + reason, word);
  }
  const std::size_t after = TakeInventory().objects.size();
  answer.result.Set("withdrawn", static_cast<int>(before - std::min(before, after)))
      .ShowAs(CountOf(before - std::min(before, after), "object"));
  answer.layout = KVLShellAnswer::Sheet;
  return KVLShellOutcome();
}

// The refused registrations whose source file has registered objects of the library, too.
KVLShellNode RefusedOf(const std::set<MRBUnicodeString>& files,
                       const std::vector<MRBUnicodeString>& messages) {
  KVLShellNode refused = KVLShellNode::NewList();
  for (const MRBUnicodeString& message : messages) {
    const int second = message.SearchSubString("Second (", 0, MRBUnicodeString::MRBSearchForward);
    for (const MRBUnicodeString& file : files) {
      if (second < 0 || message.FindPosition(file + ":", second) == 0) continue;
      refused.Append(message);
      break;
    }
  }
  return refused;
}

KVLShellNode ModuleNode(const MRBUnicodeString& library, const Inventory& inventory,
                        const KVLShellSession& session) {
  int count = 0;
  std::set<MRBUnicodeString> files;
  for (const auto& object : inventory.objects) {
    if (inventory.libraries.find(object.first)->second != library) continue;
    if (!KVLStringOperations::StartsWith(object.first, "doc/")) ++count;
    for (const KVLSourceLocation& location : object.second->GetRegistrationLocations())
      if (!location.path.IsEmpty()) files.insert(location.path);
  }
  const bool isOurs = FindLibrary(session, library) != nullptr;
  const bool isLoaded = isOurs || count > 0;
  const KVLShellNode refused = RefusedOf(files, inventory.refused);
  const std::size_t nbRefused = refused.GetItems().size();
  KVLShellNode node = KVLShellNode::NewRecord();
  node.Set("name", library);
  node.Set("state", isOurs ? "loaded by 'load'" : isLoaded ? "loaded" : "not loaded");
  node.Set("objects", count);
  node.Set("refused", refused)
      .ShowAs(nbRefused ? CountOf(nbRefused, "registration") + " refused" : MRBUnicodeString());
  return node;
}

KVLShellOutcome RunModules(const KVLShellArguments&, KVLShellWork& work, KVLShellAnswer& answer) {
  static constexpr const char* Columns[] = {"name", "state", "objects", "refused", nullptr};
  const Inventory inventory = TakeInventory();
  std::vector<MRBUnicodeString> names;
  for (const char* const module : Modules)
    names.push_back(MRBUnicodeString(Prefix) + module);
  std::set<MRBUnicodeString> others;
  for (const auto& library : inventory.libraries)
    if (KVLStringOperations::StartsWith(library.second, Prefix)) others.insert(library.second);
  for (const KVLShellSession::Library& library : work.session.GetLibraries())
    others.insert(library.name);
  for (const MRBUnicodeString& name : others)
    if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(name);
  answer.result = KVLShellNode::NewList();
  for (const MRBUnicodeString& name : names)
    answer.result.Append(ModuleNode(name, inventory, work.session));
  answer.layout = KVLShellAnswer::Table;
  answer.columns = Columns;
  return KVLShellOutcome();
}

}  // namespace

KVLVector<MRBUnicodeString> KVLShellModuleNames() {
  KVLVector<MRBUnicodeString> names;
  for (const char* const module : Modules)
    names.Append(module);
  return names;
}

const KVLShellCommand KVLShellLoadCommand = {
    "load",
    "load NAME",
    "loads a library of functions",
    "  NAME is a module's, with or without \"KVLCodeEnv_\", or another library's. Tells what it "
    "has\n"
    "  published, and which registrations were refused because the name was taken.\n",
    KVLShellStyle_Words,
    RunLoad,
    1,
    1,
    {KVLShellWord_Library},
    {}};

const KVLShellCommand KVLShellUnloadCommand = {"unload",
                                               "unload NAME",
                                               "unloads what 'load' has loaded",
                                               "  Refused, with the holders' names, as long as "
                                               "session values or bindings hold objects of it.\n",
                                               KVLShellStyle_Words,
                                               RunUnload,
                                               1,
                                               1,
                                               {KVLShellWord_Loaded},
                                               {}};

const KVLShellCommand KVLShellModulesCommand = {"modules",
                                                "modules",
                                                "lists the modules, and what each has published",
                                                "",
                                                KVLShellStyle_Words,
                                                RunModules,
                                                0,
                                                0,
                                                {},
                                                {}};
