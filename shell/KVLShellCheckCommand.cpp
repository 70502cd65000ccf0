#include "KVLCodeEnv.h"
#include "KVLShellCommand.h"

namespace {

KVLShellOutcome Run(const KVLShellArguments&, KVLShellWork&, KVLShellAnswer& answer) {
  KVLShellNode anomalies = KVLShellNode::NewList();
  for (const KVLCodeEnv::Anomaly& anomaly : KVLCodeEnv::GetDefault().ComputeAnomalies()) {
    KVLShellNode node = KVLShellNode::NewRecord();
    node.Set("path", anomaly.path);
    node.Set("message", anomaly.message);
    anomalies.Append(node.ShowAs("* At path '" + anomaly.path + "': " + anomaly.message));
  }
  const bool isInOrder = anomalies.GetItems().empty();
  answer.result = anomalies;
  answer.layout = KVLShellAnswer::Lines;
  return isInOrder ? KVLShellOutcome() : KVLShellOutcome(KVLResult_False, "");
}

}  // namespace

const KVLShellCommand KVLShellCheckCommand = {
    "check",
    "check",
    "checks the registry and prints what is wrong with it",
    "",
    KVLShellStyle_Words,
    Run,
    0,
    0,
    {},
    {}};
