#include "KVLShellCheck.h"

#include "KVLShellTree.h"

std::vector<KVLShellFinding> KVLShellFindAnomalies(KVLCodeEnv& root) {
  const KVLShellTree tree(root);
  std::vector<KVLShellFinding> findings;
  for (KVLShellModelAnomaly& anomaly : KVLShellReadAnomalies(root, tree)) {
    findings.push_back({"anomaly", std::move(anomaly.path), std::move(anomaly.message),
                        std::move(anomaly.places)});
  }
  return findings;
}

std::vector<KVLShellFinding> KVLShellFindingsBelow(const std::vector<KVLShellFinding>& findings,
                                                   const std::string& path) {
  std::vector<KVLShellFinding> below;
  for (const KVLShellFinding& finding : findings) {
    const std::size_t end = finding.path.find_last_not_of('/');
    const std::string at = finding.path.substr(0, end == std::string::npos ? 0 : end + 1);
    if (KVLShellIsAtOrBelow(at, path)) below.push_back(finding);
  }
  return below;
}
