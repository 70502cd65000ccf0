#include <algorithm>

#include "KVLShellCommand.h"
#include "KVLShellDescription.h"
#include "KVLShellPath.h"
#include "KVLShellResult.h"

namespace {

// Lists children as records of "name", "kind" and "signature".
class Listing {
 public:
  // `wantedKind`: null for every kind.
  Listing(const KVLShellWord* wantedKind, bool recursive)
      : kind(wantedKind), isRecursive(recursive) {}

  void Add(const MRBUnicodeString& label, const KVLCodeObject& object) {
    const char* const kindName = KVLShellKind(object);
    if (kind && kind->text != kindName) return;
    KVLShellNode record = KVLShellNode::NewRecord();
    record.Set("name", label);
    record.Set("kind", kindName);
    MRBUnicodeString signature = KVLShellSignature(object);
    if (!signature.IsEmpty()) record.Set("signature", std::move(signature));
    records.Append(std::move(record));
  }

  // Lists what `envs` hold, labelled from `prefix` on.
  KVLShellOutcome AddChildren(const KVLShellEnvs& envs, const MRBUnicodeString& prefix) {
    for (const KVLShellChild& child : KVLShellChildren(envs)) {
      if (KVLShellIsInterrupted()) {
        return KVLShellOutcome(KVLShellResult_Interrupted, "ls: interrupted");
      }
      const MRBUnicodeString label = prefix + child.label;
      Add(label, *child.object);
      const KVLShellOutcome outcome = AddBelow(child, label);
      if (!outcome.IsSuccess()) return outcome;
    }
    return KVLShellOutcome();
  }

  void Enter(KVLCodeEnv* env) { above.Append(env); }
  KVLShellNode& GetRecords() { return records; }

 private:
  KVLShellOutcome AddBelow(const KVLShellChild& child, const MRBUnicodeString& label) {
    KVLCodeEnv* const env = child.env.Get();
    if (!isRecursive || !env) return KVLShellOutcome();
    if (std::find(above.begin(), above.end(), env) != above.end()) return KVLShellOutcome();
    above.Append(env);
    KVLShellEnvs below;
    below.Append(child.env);
    const KVLShellOutcome outcome = AddChildren(below, label);
    above.Resize(above.GetCount() - 1);
    return outcome;
  }

  const KVLShellWord* const kind;
  const bool isRecursive;
  KVLShellNode records = KVLShellNode::NewList();
  // What is being listed further up: environments can aggregate one another in a circle.
  KVLVector<const KVLCodeEnv*> above;
};

KVLShellOutcome Run(const KVLShellArguments& arguments, KVLShellWork&, KVLShellAnswer& answer) {
  static constexpr const char* Columns[] = {"name", "kind", "signature", nullptr};
  const MRBUnicodeString path = arguments.GetCount() > 0 ? arguments[0].text : MRBUnicodeString();
  const KVLShellPlace place = KVLShellFind(path);
  if (!place.IsFound()) {
    return KVLShellNotFound("environment or object", path, arguments[0].position);
  }
  Listing listing(arguments.ValueOf("-k"), arguments.Has("-r"));
  KVLShellOutcome outcome;
  if (place.envs.IsEmpty()) {
    listing.Add(place.path, *place.object);
  } else {
    for (const KVLSmartPtr<KVLCodeEnv>& env : place.envs)
      listing.Enter(env.Get());
    outcome = listing.AddChildren(place.envs, "");
  }
  if (!outcome.IsSuccess()) return outcome;
  answer.result = std::move(listing.GetRecords());
  answer.layout = KVLShellAnswer::Table;
  answer.columns = Columns;
  return outcome;
}

}  // namespace

const KVLShellCommand KVLShellLsCommand = {
    "ls",
    "ls [-r] [-k KIND] [PATH]",
    "lists an environment",
    "  With -r, also everything below it. A name with \"/\" behind it is an environment.\n"
    "  With -k, only what is of that kind: function, type, variable or env.\n"
    "    ls -r -k function math\n",
    KVLShellStyle_Words,
    Run,
    0,
    1,
    {KVLShellWord_Path},
    {{"-r", nullptr, nullptr, KVLShellWord_Other},
     {"-k", "KIND", "function|type|variable|env", KVLShellWord_Other}}};
