#include "KVLCodeEnvAccess.h"

#include "KVLCodeEnv.h"
#include "KVLProcessState.h"
#include "KVLResult.h"
#include "KVLStandardOutput.h"
#include "KVLStringOperations.h"
#include "KVLVector.h"
#include "MRBHost.h"

namespace {

constexpr const char* BuiltInModules[] = {
    "KVLCodeEnv_Alpha",   "KVLCodeEnv_Beta",  "KVLCodeEnv_Gamma", "KVLCodeEnv_Delta",
    "KVLCodeEnv_Epsilon", "KVLCodeEnv_Zeta",  "KVLCodeEnv_Eta",   "KVLCodeEnv_Theta",
    "KVLCodeEnv_Iota",    "KVLCodeEnv_Kappa", "KVLCodeEnv_Lambda"};

constexpr const char* ModulePrefix = "KVLCodeEnv_";

// Read by the first call; the process keeps that value. Null when the variable is not set.
const char* FurtherModules() {
  static const char* const value = MRBGetEnv("KVLCodeEnv_Modules");
  return value;
}

// Resolved by the first call; neither repeated nor given back, also when it failed.
KVLCodeShellEntry ShellEntry() {
  static const LibraryHandler shell =
      MRBGetFunctionAddress("KVLCodeEnvShell", "KVLCodeShellStaticRun", nullptr, -1, 1, 0);
  return reinterpret_cast<KVLCodeShellEntry>(shell.entry);
}

KVLVector<MRBUnicodeString> ModuleNames() {
  KVLVector<MRBUnicodeString> names;
  for (const char* const name : BuiltInModules)
    names.Append(name);
  if (const char* const further = FurtherModules()) {
    for (const MRBUnicodeString& name : KVLStringOperations::Split(further, ";")) {
      names.Append(name);
    }
  }
  return names;
}

// A library that is no module of ours by its name is left loaded: its handle is not kept.
bool LoadModule(const MRBUnicodeString& name, KVLVector<LibraryHandler>& handles) {
  const LibraryHandler handler = MRBGetEntryPoint(name, nullptr, nullptr, 1, 1, 0);
  if (!handler.library) {
    const MRBUnicodeString message =
        "KVLCodeEnvAccessImpl::Load : Failed to load module '" + name + "'.";
    MRBSysBftier(1, message.ConvertToChar(), 0);
    return false;
  }
  if (KVLStringOperations::StartsWith(name, ModulePrefix)) handles.Append(handler);
  return true;
}

}  // namespace

long KVLCodeEnvAccess::Load() {
  KVLCodeEnvAccessImpl& modules = KVLProcessState::modules;
  if (modules.loaded) return KVLResult_False;
  long result = KVLResult_Success;
  const KVLVector<MRBUnicodeString> names = ModuleNames();
  modules.handles.Resize(0);
  // Gathered apart: a module's start-up code may call this very function.
  KVLVector<LibraryHandler> handles;
  for (const MRBUnicodeString& name : names) {
    if (!LoadModule(name, handles)) result = KVLResult_Failure;
  }
  for (const LibraryHandler& handler : handles)
    modules.handles.Append(handler);
  modules.loaded = true;
  return result;
}

long KVLCodeEnvAccess::Unload() {
  KVLCodeEnvAccessImpl& modules = KVLProcessState::modules;
  if (!modules.loaded) return KVLResult_False;
  long result = KVLResult_Success;
  // Taken out meanwhile: a module's clean-up code may call this very function.
  KVLVector<LibraryHandler> handles;
  handles.Swap(modules.handles);
  for (const LibraryHandler& handler : handles) {
    if (MRBCloseLibrary(handler) != 0) result = KVLResult_Failure;
  }
  handles.Resize(0);
  handles.Swap(modules.handles);
  modules.loaded = false;
  return result;
}

long KVLCodeEnvAccess::Run(const MRBUnicodeString& command) {
  const KVLCodeShellEntry entry = ShellEntry();
  return entry ? entry(command) : KVLResult_NotImplemented;
}

long KVLCodeEnvAccess::CheckAndDump() {
  const KVLVector<KVLCodeEnv::Anomaly> anomalies = KVLCodeEnv::GetDefault().ComputeAnomalies();
  if (anomalies.IsEmpty()) return KVLResult_Success;
  KVLWriteLine("");
  KVLWriteLine("/!\\ KVLCodeEnv anomalies detected /!\\");
  for (const KVLCodeEnv::Anomaly& anomaly : anomalies) {
    KVLWriteLine("* At path '" + anomaly.path + "': " + anomaly.message);
  }
  KVLWriteLine("");
  return KVLResult_Failure;
}

long KVLCodeEnvRun(const MRBUnicodeString& command) {
  return KVLCodeEnvAccess::Run(command);
}

long KVLCodeEnvRun(const char* command) {
  return KVLCodeEnvAccess::Run(MRBUnicodeString(command));
}
