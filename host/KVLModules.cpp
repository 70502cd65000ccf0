#include "KVLModules.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "KVLCodeEnvAccess.h"
#include "KVLPlatform.h"
#include "KVLResult.h"
#include "KVLStringOperations.h"
#include "KVLVector.h"
#include "MRBHost.h"

namespace {

constexpr int NbBuiltIn = 11;
// How the kernel begins its report of a module that it could not load; the name follows, and "'.".
constexpr char RefusedReport[] = "KVLCodeEnvAccessImpl::Load : Failed to load module '";

// Those that load now; a report carries nothing but its text.
std::vector<std::string>* refusedNow = nullptr;

std::vector<std::string> NamedByUser() {
  std::vector<std::string> names;
  const char* const named = MRBGetEnv("KVLCodeEnv_Modules");
  if (!named) return names;
  for (const MRBUnicodeString& name : KVLStringOperations::Split(named, ";")) {
    names.emplace_back(name.ConvertToChar());
  }
  return names;
}

}  // namespace

void KVLModules::OnReport(int, const char* text, int) {
  const std::size_t prefix = sizeof(RefusedReport) - 1;
  if (!refusedNow || std::strncmp(text, RefusedReport, prefix) != 0) {
    std::fprintf(stderr, "kvl: %s\n", text);
    return;
  }
  const std::string name = text + prefix;
  refusedNow->push_back(name.substr(0, name.rfind('\'')));
}

void KVLModules::Load() {
  refused.clear();
  refusedNow = &refused;
  (void)MRBSetTraceSink(OnReport);
  (void)KVLCodeEnvAccess::Load();  // each failure has been reported
  refusedNow = nullptr;
}

bool KVLModules::Unload() const {
  if (!KVLFailed(KVLCodeEnvAccess::Unload())) return true;
  std::fprintf(stderr, "kvl: a module could not be unloaded\n");
  return false;
}

int KVLModules::Count() const {
  return NbBuiltIn + static_cast<int>(NamedByUser().size()) - static_cast<int>(refused.size());
}

std::vector<std::string> KVLModules::DescribeRefused(bool withBuiltIn) const {
  const std::vector<std::string> named = NamedByUser();
  std::vector<std::string> lines;
  for (const std::string& name : refused) {
    const bool isNamed = std::find(named.begin(), named.end(), name) != named.end();
    if (!isNamed && !withBuiltIn) continue;
    const std::string reason = KVLWhyNotLoaded(name);
    lines.push_back("module '" + name + "' was not loaded" + (reason.empty() ? "" : ": " + reason));
  }
  return lines;
}
