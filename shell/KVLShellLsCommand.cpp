#include <utility>

#include "KVLShellCommand.h"
#include "KVLShellDescription.h"
#include "KVLShellPath.h"
#include "KVLShellResult.h"

namespace {

// Lists children as records of "name", "kind" and "signature".
class Listing {
 public:
  // `wantedKind`: null for every kind.
  explicit Listing(const KVLShellWord* wantedKind) : kind(wantedKind) {}

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

  KVLShellNode& GetRecords() { return records; }

 private:
  const KVLShellWord* const kind;
  KVLShellNode records = KVLShellNode::NewList();
};

KVLShellOutcome Run(const KVLShellArguments& arguments, KVLShellWork&, KVLShellAnswer& answer) {
  static constexpr const char* Columns[] = {"name", "kind", "signature", nullptr};
  const MRBUnicodeString path = arguments.GetCount() > 0 ? arguments[0].text : MRBUnicodeString();
  const KVLShellPlace place = KVLShellFind(path);
  if (!place.IsFound()) {
    return KVLShellNotFound("environment or object", path, arguments[0].position);
  }
  Listing listing(arguments.ValueOf("-k"));
  bool isDone = true;
  if (place.envs.IsEmpty()) {
    listing.Add(place.path, *place.object);
  } else if (arguments.Has("-r")) {
    isDone = KVLShellWalk(place.envs, [&](const MRBUnicodeString& label, const auto& child) {
      listing.Add(label, *child.object);
      return true;
    });
  } else {
    const KVLVector<KVLShellChild> children = KVLShellChildren(place.envs);
    listing.GetRecords().Reserve(children.GetCount());
    for (const KVLShellChild& child : children)
      listing.Add(child.label, *child.object);
  }
  if (!isDone) return KVLShellOutcome(KVLShellResult_Interrupted, "ls: interrupted");
  answer.result = std::move(listing.GetRecords());
  answer.layout = KVLShellAnswer::Table;
  answer.columns = Columns;
  return KVLShellOutcome();
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
