#include "KVLShellCheck.h"
#include "KVLShellCommand.h"
#include "KVLShellExport.h"
#include "KVLShellExportText.h"
#include "KVLShellPath.h"
#include "KVLShellTree.h"

namespace {

KVLShellNode FindingNode(const KVLShellFinding& finding) {
  KVLShellNode node = KVLShellNode::NewRecord();
  node.Set("kind", KVLShellText(finding.kind));
  node.Set("path", KVLShellText(finding.path));
  node.Set("message", KVLShellText(finding.message));
  node.Set("places", KVLShellPlacesNode(finding.places));
  std::string line = "* At path '" + finding.path + "': " + finding.message;
  std::string places;
  for (const KVLShellModelPlace& place : finding.places) {
    const std::string text = KVLShellPlaceText(place);
    if (!text.empty()) places += (places.empty() ? "" : ", ") + text;
  }
  if (!places.empty()) line += " (" + places + ")";
  return node.ShowAs(KVLShellEscaped(KVLShellText(line)));
}

KVLShellOutcome Run(const KVLShellArguments& arguments, KVLShellWork&, KVLShellAnswer& answer) {
  const MRBUnicodeString path = arguments.GetCount() > 0 ? arguments[0].text : MRBUnicodeString();
  const KVLShellPlace place = KVLShellFind(path);
  if (!place.IsFound()) {
    return KVLShellNotFound("environment or object", path, arguments[0].position);
  }
  KVLCodeEnv& root = KVLCodeEnv::GetDefault();
  std::vector<KVLShellFinding> findings = KVLShellFindAnomalies(root);
  if (arguments.Has("--strict")) {
    for (KVLShellFinding& finding : KVLShellFindStrictly(root))
      findings.push_back(std::move(finding));
  }
  answer.result = KVLShellNode::NewList();
  answer.layout = KVLShellAnswer::Lines;
  for (const KVLShellFinding& finding :
       KVLShellFindingsBelow(findings, KVLShellBytes(place.path))) {
    answer.result.Append(FindingNode(finding));
  }
  const bool isInOrder = answer.result.GetItems().empty();
  return isInOrder ? KVLShellOutcome() : KVLShellOutcome(KVLResult_False, "");
}

}  // namespace

const KVLShellCommand KVLShellCheckCommand = {
    "check",
    "check [--strict] [PATH]",
    "checks the registry and prints what is wrong with it",
    "  Of all, or of what is below PATH. With --strict, also types that are not registered, "
    "defaults\n"
    "  that do not parse, conversions of a wrong shape, parents in a loop, values whose text does\n"
    "  not read back, and functions without documentation. Prints nothing when all is well.\n"
    "    check --strict math\n",
    KVLShellStyle_Words,
    Run,
    0,
    1,
    {KVLShellWord_Path},
    {{"--strict", nullptr, nullptr, KVLShellWord_Other}}};
