#ifndef KVL_SHELL_MODEL_H
#define KVL_SHELL_MODEL_H

#include <cstddef>
#include <string>
#include <vector>

#include "KVLCodeEnv.h"

class KVLShellTree;
struct KVLShellTreeObject;

/// The registry as plain data, for whoever describes it: texts are bytes as the objects gave them,
/// paths are names with "/" between them from the default environment, and nothing refers to an
/// object any more.

/// Where an object was registered.
struct KVLShellModelPlace {
  std::string file;
  int line = 0;  ///< from 1; below 1, it is not known
  std::string detail;
};

struct KVLShellModelParam {
  std::string name;
  std::string typeName;
  std::string defaultText;  ///< empty when there is no default
  bool isInput = false;
  bool isOutput = false;
};

/// A conversion that is registered under "_conversions".
struct KVLShellModelConversion {
  std::string from;
  std::string to;
  std::string path;
  int form = 0;  ///< see `KVLShellConversionForm`
};

enum class KVLShellModelKind { Function, Type, Variable, Env, Object };

/// One word for it: "function", "type", "variable", "env" or "object".
const char* KVLShellModelKindName(KVLShellModelKind kind);

/// An object; what does not concern its kind is empty.
struct KVLShellModelObject {
  KVLShellModelKind kind = KVLShellModelKind::Object;
  std::string path;
  std::string name;
  std::string signature;  ///< as in source text: "double hypot(double a, double b=0)"
  std::string doc;
  std::string module;  ///< the library that it comes from; empty when that is not known
  std::vector<KVLShellModelPlace> places;
  std::vector<std::string> problems;  ///< what the object keeps, and what reading it threw

  // A function.
  std::vector<KVLShellModelParam> params;
  std::string returnTypeName;
  bool isMethod = false;

  // A type.
  std::string parent;
  bool isEnum = false;
  std::vector<std::string> enumValues;
  bool isList = false;
  std::string elementTypeName;
  std::vector<std::string> members;  ///< paths, sorted
  std::vector<KVLShellModelConversion> conversionsTo;
  std::vector<KVLShellModelConversion> conversionsFrom;

  // A variable.
  std::string typeName;
  std::string text;
  bool isReadable = false;  ///< whether it wrote its text
};

struct KVLShellModelEnv {
  std::string path;
  std::string name;
  std::string doc;
  int depth = 0;            ///< the number of names in the path
  bool isDocs = false;      ///< it is "doc", or below it
  bool isRepeated = false;  ///< an environment of this place stands further up, at `sameAs`
  std::string sameAs;
  std::vector<KVLShellModelPlace> places;
  std::vector<std::string> problems;
  std::size_t firstObject = 0;  ///< among the objects
  std::size_t nbObjects = 0;
};

/// A text of documentation: a string under "doc".
struct KVLShellModelDoc {
  std::string path;
  std::string subject;  ///< the path that it is about; empty when nothing is there
  std::string text;
};

struct KVLShellModelAnomaly {
  std::string path;
  std::string message;
  std::vector<KVLShellModelPlace> places;
};

struct KVLShellModel {
  std::string path;                          ///< what it was asked for; empty for all
  std::vector<KVLShellModelEnv> envs;        ///< each before what it holds, in order of names
  std::vector<KVLShellModelObject> objects;  ///< by environment, without the documentation
  std::vector<KVLShellModelConversion> conversions;  ///< sorted
  std::vector<KVLShellModelDoc> docs;                ///< sorted by path
  std::vector<KVLShellModelAnomaly> anomalies;       ///< in the order of the check
};

/// The name of the type that is registered at `path`; empty when that is not below "_types".
std::string KVLShellTypeNameAt(const std::string& path);

/// True for a text of documentation: a string under "doc".
bool KVLShellIsDoc(const KVLShellTreeObject& entry);

/// How `function` converts from one type to the other: 1 when it takes the one and returns the
/// other, 2 when it gives the other back through its second parameter, 0 when the kernel would
/// refuse it.
int KVLShellConversionForm(const KVLCodeFunction& function, const std::string& from,
                           const std::string& to);

/// The conversion that is registered at `path`, which lies below "_conversions". Where a name holds
/// a "/" itself, the names are cut where the function has a form.
KVLShellModelConversion KVLShellConversionAt(const std::string& path, const KVLCodeObject& object);

/// Describes what lies below `root`. Calls the objects' own operations, and nothing that creates or
/// changes anything. What they throw becomes a problem of the object. Ends if interrupted.
KVLShellModel KVLShellReadModel(KVLCodeEnv& root);

/// The places where `object` was registered.
std::vector<KVLShellModelPlace> KVLShellPlacesOf(const KVLCodeObject& object);

/// What the kernel's check of `root` finds. What an object throws at it ends the check, and becomes
/// an anomaly itself.
std::vector<KVLShellModelAnomaly> KVLShellReadAnomalies(KVLCodeEnv& root, const KVLShellTree& tree);

/// The part of `model` at and below `path`.
KVLShellModel KVLShellPartOfModel(const KVLShellModel& model, const std::string& path);

#endif
