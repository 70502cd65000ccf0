#ifndef KVL_SHELL_CHECK_H
#define KVL_SHELL_CHECK_H

#include <string>
#include <vector>

#include "KVLShellModel.h"

/// Something that is wrong in a registry.
struct KVLShellFinding {
  std::string kind;  ///< one word: "anomaly", or what `KVLShellFindStrictly` lists
  std::string path;  ///< from the default environment; an environment's own ends with "/"
  std::string message;
  std::vector<KVLShellModelPlace> places;  ///< where what is at the path was registered
};

/// What the kernel's own check finds below `root`, in its order, as findings of kind "anomaly".
std::vector<KVLShellFinding> KVLShellFindAnomalies(KVLCodeEnv& root);

/// What a careful author would not leave below `root` either, in the order of these kinds and of
/// the paths:
///
/// - "type": a parameter, a result, a variable or a list is of a type that is not registered.
/// - "default": the text of a default is not read by its parameter's type.
/// - "conversion": what is registered under "_conversions" is none that the kernel would take.
/// - "parents": the parents of types lead back to where they began.
/// - "text": a value does not write a text, or does not write the text again that it was read from.
/// - "doc": a function without documentation. Conversions need none.
///
/// Values of types whose parents form a loop are not tried, for such a try may never end. Ends if
/// interrupted.
std::vector<KVLShellFinding> KVLShellFindStrictly(KVLCodeEnv& root);

/// Those of the findings that are at or below `path`.
std::vector<KVLShellFinding> KVLShellFindingsBelow(const std::vector<KVLShellFinding>& findings,
                                                   const std::string& path);

#endif
