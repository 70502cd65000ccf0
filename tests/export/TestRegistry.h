#ifndef KVL_TESTS_EXPORT_TEST_REGISTRY_H
#define KVL_TESTS_EXPORT_TEST_REGISTRY_H

#include <memory>
#include <string>
#include <vector>

#include "KVLCodeObjectRegisterer.h"
#include "KVLShellModel.h"
#include "KVLShellTree.h"
#include "support/TestObjects.h"

namespace kvltest {

/// A registry of a test's own.
class Registry {
 public:
  Registry() : root(new KVLCodeEnv()) {}

  /// Registers the object as if "test.cpp" did so at that line.
  template <class T>
  T& Publish(const std::string& path, T* object, int line = 1) {
    registerers.push_back(std::make_unique<KVLCodeObjectRegisterer>(
        *root, KVLSmartPtr<KVLCodeObject>(object), KVLShellText(path),
        KVLSourceLocation("test.cpp", line, "")));
    return *object;
  }
  /// A value of that type with that text.
  TextValue& PublishText(const std::string& path, const char* typeName, const std::string& text) {
    const std::string name = path.substr(path.rfind('/') + 1);
    return Publish(path, new TextValue(KVLShellText(name), typeName, KVLShellText(text)));
  }
  TestType& PublishType(const char* name, const char* parent = "") {
    return Publish(std::string("_types/") + name, new TestType(name, parent));
  }
  TestFunction& PublishFunction(const std::string& path, const char* returnType,
                                std::initializer_list<TestParam> params, int line = 1) {
    const std::string name = path.substr(path.rfind('/') + 1);
    return Publish(path, new TestFunction(KVLShellText(name), returnType, params), line);
  }
  /// A text about what is at `path`, and the type that texts have.
  void PublishDoc(const std::string& path) {
    if (!KVLShellTree(*root).FindObject("_types/string")) PublishType("string");
    PublishText("doc/" + path, "string", "Told.");
  }
  KVLCodeEnv& Env(const std::string& path) { return root->GetSubEnv(KVLShellText(path)); }

  KVLShellModel Read() const { return KVLShellReadModel(*root); }

  const KVLSmartPtr<KVLCodeEnv> root;

 private:
  std::vector<std::unique_ptr<KVLCodeObjectRegisterer>> registerers;
};

/// Publishes something of every kind, with nothing wrong.
inline void Furnish(Registry& registry) {
  for (const char* const name : {"double", "int", "long", "string"})
    registry.PublishType(name);
  registry.PublishType("Vector");
  registry.PublishType("Point", "Vector");
  registry.PublishType("Axis").enumValues = MakeTexts({"X", "Y", "Z"});
  TestType& list = registry.PublishType("list");
  list.list = true;
  list.elementTypeName = "double";

  registry.PublishFunction("math/hypot", "double", {{"a", "double"}, {"b", "double", In, "0"}}, 7);
  registry.PublishFunction(
      "math/divmod", "long",
      {{"a", "int"}, {"b", "int"}, {"quotient", "int", Out}, {"rest", "int", InOut}}, 8);
  registry.PublishText("math/pi", "double", "3.14");
  registry.PublishFunction("math/trig/sin", "double", {{"x", "double"}});
  registry.PublishFunction("_members/Point/Distance", "double",
                           {{"this", "Point"}, {"other", "Point"}});
  registry.PublishFunction("_conversions/int/double", "double", {{"from", "int"}});
  registry.PublishFunction("_conversions/string/Point", "long",
                           {{"from", "string"}, {"to", "Point", Out}});

  registry.PublishText("doc/math", "string", "Scalar mathematics.");
  registry.PublishText("doc/math/hypot", "string", "Length of (a, b). Never negative.");
  registry.PublishText("doc/math/divmod", "string", "\"\\\"a\\\" by\\n\\\"b\\\".\"");
  registry.PublishText("doc/math/trig/sin", "string", "Sine of x radians.");
  registry.PublishText("doc/members/Point/Distance", "string", "Distance to other.");
  registry.PublishText("doc/types/Point", "string", "A place.");
}

/// The first of `list` with that path; a failure of the test, and a default one, when there is
/// none.
template <class T>
T At(const std::vector<T>& list, const std::string& path) {
  for (const T& entry : list)
    if (entry.path == path) return entry;
  ADD_FAILURE() << "nothing at " << path;
  return T();
}

template <class T>
std::vector<std::string> PathsOf(const std::vector<T>& list) {
  std::vector<std::string> paths;
  for (const T& entry : list)
    paths.push_back(entry.path);
  return paths;
}

using Strings = std::vector<std::string>;

}  // namespace kvltest

#endif
