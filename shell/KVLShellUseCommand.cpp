#include "KVLShellCommand.h"
#include "KVLShellPath.h"
#include "KVLShellResult.h"

namespace {

KVLShellNode NodeOf(const MRBUnicodeString& path) {
  KVLShellNode node = KVLShellNode::NewRecord();
  node.Set("path", path);
  return node.ShowAs(path);
}

void ListUses(const KVLShellSession& session, KVLShellAnswer& answer) {
  answer.result = KVLShellNode::NewList();
  for (const KVLShellSession::Use& use : session.GetUses())
    answer.result.Append(NodeOf(use.path));
  answer.layout = KVLShellAnswer::Lines;
}

KVLShellOutcome RunUse(const KVLShellArguments& arguments, KVLShellWork& work,
                       KVLShellAnswer& answer) {
  if (arguments.GetCount() == 0) {
    ListUses(work.session, answer);
    return KVLShellOutcome();
  }
  const KVLShellWord& word = arguments[0];
  const KVLShellPlace place = KVLShellFind(word.text + "/");
  if (place.envs.IsEmpty()) return KVLShellNotFound("environment", word.text, word.position);
  KVLShellOutcome outcome(KVLResult_Failure, "", word.position);
  outcome.path = place.path;
  if (place.path.IsEmpty()) {
    outcome.message = "use: '/' is in use at all times";
    return outcome;
  }
  if (!work.session.AddUse(place.path, place.envs[0])) {
    outcome.message = "use: '" + KVLShellPrintable(place.path) + "' is in use already";
    return outcome;
  }
  answer.result = NodeOf(place.path);
  return KVLShellOutcome();
}

KVLShellOutcome RunUnuse(const KVLShellArguments& arguments, KVLShellWork& work,
                         KVLShellAnswer& answer) {
  const KVLShellWord& word = arguments[0];
  const MRBUnicodeString path = KVLShellFind(word.text + "/").path;
  if (work.session.RemoveUse(path)) {
    answer.result = NodeOf(path);
    return KVLShellOutcome();
  }
  KVLShellOutcome outcome(KVLShellResult_NotFound,
                          "unuse: '" + KVLShellPrintable(word.text) + "' is not in use",
                          word.position);
  outcome.got = word.text;
  KVLVector<MRBUnicodeString> paths;
  for (const KVLShellSession::Use& use : work.session.GetUses())
    paths.Append(use.path);
  outcome.suggestion = KVLShellNearest(word.text, paths);
  return outcome;
}

}  // namespace

const KVLShellCommand KVLShellUseCommand = {
    "use",
    "use [PATH]",
    "makes what an environment holds visible at the top",
    "  After 'use math', add(1, 2) calls math/add. Without PATH, lists what is in use.\n",
    KVLShellStyle_Words,
    RunUse,
    0,
    1,
    {KVLShellWord_Env},
    {}};

const KVLShellCommand KVLShellUnuseCommand = {"unuse",
                                              "unuse PATH",
                                              "ends what 'use' began",
                                              "",
                                              KVLShellStyle_Words,
                                              RunUnuse,
                                              1,
                                              1,
                                              {KVLShellWord_Used},
                                              {}};
