#include "KVLCodeContext.h"
#include "KVLCodeFunction.h"
#include "KVLCodeType.h"
#include "KVLCodeValue.h"
#include "KVLShellCommand.h"
#include "KVLShellDescription.h"
#include "KVLShellPath.h"
#include "KVLStringOperations.h"

namespace {

MRBUnicodeString DirectionOf(const KVLCodeFunction::Param& param) {
  MRBUnicodeString text = param.direction & KVLCodeFunction::Input ? "in" : "";
  if (param.direction & KVLCodeFunction::Output) text += text.IsEmpty() ? "out" : "/out";
  return text;
}

KVLShellNode NodeOf(const KVLCodeFunction::Param& param) {
  KVLShellNode node = KVLShellNode::NewRecord();
  const MRBUnicodeString direction = DirectionOf(param);
  node.Set("name", param.name);
  node.Set("type", param.typeName);
  node.Set("direction", direction);
  MRBUnicodeString text = direction + " " + param.typeName + " " + param.name;
  if (!param.defaultValue.IsEmpty()) {
    node.Set("default", param.defaultValue);
    text += " = " + param.defaultValue;
  }
  return node.ShowAs(text);
}

void DescribeFunction(const KVLCodeFunction& function, KVLShellNode& sheet) {
  sheet.Set("declaration", function.ToStringCode());
  KVLShellNode parameters = KVLShellNode::NewList();
  for (const KVLCodeFunction::Param& param : function.GetParams())
    parameters.Append(NodeOf(param));
  sheet.Set("parameter", parameters);
  if (function.IsMethod()) sheet.Set("method", KVLShellNode("of the first parameter"));
}

// The names of what `path` holds, on a line of its own when there is any.
void DescribeNames(const char* title, const MRBUnicodeString& path, KVLShellNode& sheet) {
  KVLShellNode names = KVLShellNode::NewList();
  MRBUnicodeString text;
  for (const KVLShellChild& child : KVLShellChildren(KVLShellFind(path + "/").envs)) {
    if (!text.IsEmpty()) text += ", ";
    text += child.label;
    names.Append(child.label);
  }
  if (!text.IsEmpty()) sheet.Set(title, names.ShowAs(text));
}

void DescribeType(const KVLCodeType& type, KVLShellNode& sheet) {
  if (!type.GetParentTypeName().IsEmpty()) sheet.Set("parent", type.GetParentTypeName());
  MRBUnicodeString elementTypeName;
  if (type.IsList(&elementTypeName)) sheet.Set("list_of", elementTypeName);
  KVLVector<MRBUnicodeString> values;
  if (type.GetEnumValues(values)) {
    KVLShellNode names = KVLShellNode::NewList();
    for (const MRBUnicodeString& value : values)
      names.Append(value);
    sheet.Set("value", names);
  }
  DescribeNames("members", "_members/" + type.GetName(), sheet);
  DescribeNames("converts_to", "_conversions/" + type.GetName(), sheet);
}

void DescribeVariable(const KVLCodeValue& variable, const KVLCodeContext& context,
                      KVLShellNode& sheet) {
  sheet.Set("type", variable.GetTypeName());
  MRBUnicodeString text;
  const long code = variable.GetValueStr(context, text);
  sheet.Set("value", KVLFailed(code) ? "cannot be written: " + KVLShellCodeText(code) : text);
}

void DescribeHistory(const KVLCodeObject& object, KVLShellNode& sheet) {
  KVLShellNode places = KVLShellNode::NewList();
  for (const KVLSourceLocation& location : object.GetRegistrationLocations())
    places.Append(location.ToString());
  if (!places.GetItems().empty()) sheet.Set("registered", places);
  KVLShellNode problems = KVLShellNode::NewList();
  for (const MRBUnicodeString& message : object.Check())
    problems.Append(message);
  if (!problems.GetItems().empty()) sheet.Set("problem", problems);
}

KVLShellNode DescribeObject(const KVLCodeObject& object, const MRBUnicodeString& path,
                            const KVLCodeContext& context) {
  KVLShellNode sheet = KVLShellNode::NewRecord();
  sheet.Set("path", path);
  sheet.Set("kind", KVLShellKind(object));
  const MRBUnicodeString doc = KVLShellDoc(path);
  if (!doc.IsEmpty()) sheet.Set("doc", doc);
  if (object.AsFunction()) {
    DescribeFunction(*object.AsFunction(), sheet);
  } else if (object.AsType()) {
    DescribeType(*object.AsType(), sheet);
  } else if (object.AsVariable()) {
    DescribeVariable(*object.AsVariable(), context, sheet);
  }
  DescribeHistory(object, sheet);
  return sheet;
}

KVLShellNode DescribeEnvs(const KVLShellPlace& place) {
  KVLShellNode sheet = KVLShellNode::NewRecord();
  sheet.Set("path", place.path + "/");
  sheet.Set("kind", KVLShellNode("env"));
  const MRBUnicodeString doc = KVLShellDoc(place.path);
  if (!doc.IsEmpty()) sheet.Set("doc", doc);
  sheet.Set("children", KVLShellChildren(place.envs).GetCount());
  for (const KVLSmartPtr<KVLCodeEnv>& env : place.envs)
    DescribeHistory(*env, sheet);
  return sheet;
}

KVLShellOutcome Run(const KVLShellArguments& arguments, KVLShellWork& work,
                    KVLShellAnswer& answer) {
  const KVLShellWord& word = arguments[0];
  const KVLShellPlace place = KVLShellFind(word.text);
  if (!place.IsFound()) {
    return KVLShellNotFound("environment or object", word.text, word.position);
  }
  // A path may lead to both.
  answer.result = KVLShellNode::NewList();
  if (place.object) {
    answer.result.Append(DescribeObject(*place.object, place.path, work.context));
  }
  if (!place.envs.IsEmpty()) answer.result.Append(DescribeEnvs(place));
  answer.layout = KVLShellAnswer::Sheet;
  return KVLShellOutcome();
}

}  // namespace

const KVLShellCommand KVLShellInfoCommand = {"info",
                                             "info PATH",
                                             "tells what is known about what a path leads to",
                                             "",
                                             KVLShellStyle_Words,
                                             Run,
                                             1,
                                             1,
                                             {KVLShellWord_Path},
                                             {}};
