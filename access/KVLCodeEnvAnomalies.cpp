#include <utility>

#include "KVLCodeEnv.h"
#include "KVLCodeFunction.h"
#include "KVLHashMap.h"
#include "KVLResult.h"

namespace {

using Anomalies = KVLVector<KVLCodeEnv::Anomaly>;

/// Collects what is wrong in an environment and below it. Environments may lie one below the other
/// in any number, so that the walk keeps its own stack.
class AnomalyCheck {
 public:
  Anomalies Run(const KVLCodeEnv& env) {
    Enter(env);
    while (!levels.IsEmpty()) {
      Level& level = levels[levels.GetCount() - 1];
      KVLKeyValue<MRBUnicodeString, KVLSmartPtr<KVLCodeEnv>> child;
      if (level.subEnvs.Next(child) != KVLResult_Success) {
        Leave();
        continue;
      }
      // Memory ran out when this one was to be made.
      if (!child.value) continue;
      prefix.Remove(level.prefixLength, prefix.GetLengthInChar());
      CheckSubEnv(child.key, *child.value);
      // An environment that is being checked further up, reached through an aggregation, has
      // nothing new to tell.
      if (beingChecked.Find(child.value.Get())) continue;
      prefix += child.key + "/";
      Enter(*child.value);
    }
    return std::move(anomalies);
  }

 private:
  struct Level {
    const KVLCodeEnv* env;
    KVLCodeEnv::SubEnvIter subEnvs;
    int prefixLength;  // of the paths at this level
  };

  void Enter(const KVLCodeEnv& env) {
    CheckContents(env);
    beingChecked.Insert(const_cast<KVLCodeEnv*>(&env), true);
    levels.Append(Level{&env, env.IterOnSubEnvs(), prefix.GetLengthInChar()});
  }

  void Leave() {
    const int top = levels.GetCount() - 1;
    beingChecked.Remove(const_cast<KVLCodeEnv*>(levels[top].env));
    levels.Erase(top);
  }

  void Report(KVLCodeObject* object, const MRBUnicodeString& message,
              const MRBUnicodeString& path) {
    anomalies.Append(KVLCodeEnv::Anomaly{object, message, prefix + path});
  }

  void ReportMessages(KVLCodeObject& object, const MRBUnicodeString& path) {
    for (const MRBUnicodeString& message : object.Check())
      Report(&object, message, path);
  }

  void CheckContents(const KVLCodeEnv& env) {
    ReportMessages(const_cast<KVLCodeEnv&>(env), "");
    for (const auto& entry : env.IterOnObjects())
      ReportMessages(*entry.value, entry.key);
  }

  void CheckSubEnv(const MRBUnicodeString& name, KVLCodeEnv& env) {
    if (name.IsEmpty() || name[0] != '_') return;
    if (name == "_members") {
      CheckMembers(env);
    } else if (name == "_types") {
      CheckTypes(env);
    } else if (name != "_conversions" && name != "_operators") {
      Report(&env, "Used path '" + name + "'. Only special predefined keywords can start with '_'.",
             name);
    }
  }

  void CheckMembers(const KVLCodeEnv& members) {
    for (const auto& type : members.IterOnSubEnvs()) {
      if (!type.value) continue;
      for (const auto& member : type.value->IterOnObjects()) {
        CheckMember(type.key, *member.value, "_members/" + type.key + "/" + member.key);
      }
    }
  }

  void CheckMember(const MRBUnicodeString& typeName, KVLCodeObject& member,
                   const MRBUnicodeString& path) {
    const KVLCodeFunction* const function = member.AsFunction();
    if (!function) {
      Report(nullptr, "Object registered under '_members' is not a function.", path);
      return;
    }
    const MRBUnicodeString thisType =
        function->GetNbParameters() > 0 ? function->GetParam(0).typeName : MRBUnicodeString();
    if (thisType == typeName) return;
    Report(&member,
           "'this' parameter of function registered as member of '" + typeName +
               "' is of unexpected type '" + thisType + "'.",
           path);
  }

  void CheckTypes(const KVLCodeEnv& types) {
    for (const auto& entry : types.IterOnObjects()) {
      if (entry.value->AsType()) continue;
      Report(nullptr, "Object registered under '_types' is not a type.", "_types/" + entry.key);
    }
  }

  Anomalies anomalies;
  KVLVector<Level> levels;
  MRBUnicodeString prefix;
  KVLHashMap<void*, bool> beingChecked;
};

}  // namespace

KVLVector<KVLCodeEnv::Anomaly> KVLCodeEnv::ComputeAnomalies() const {
  return AnomalyCheck().Run(*this);
}
