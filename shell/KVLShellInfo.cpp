#include "KVLCodeContext.h"
#include "KVLCodeFunction.h"
#include "KVLCodeType.h"
#include "KVLCodeValue.h"
#include "KVLResult.h"
#include "KVLShellCommand.h"
#include "KVLShellDescription.h"
#include "KVLShellPath.h"
#include "KVLStringOperations.h"

namespace {

constexpr int TitleWidth = 13;

// Prints lines of the form "title: text".
class Sheet {
 public:
  explicit Sheet(KVLShellOutput& shellOutput) : output(shellOutput) {}

  void Add(const MRBUnicodeString& title, const MRBUnicodeString& text) {
    MRBUnicodeString line = title + ":";
    while (line.GetLengthInByte() < TitleWidth)
      line += " ";
    output.Print(line + text);
  }

 private:
  KVLShellOutput& output;
};

MRBUnicodeString ParamText(const KVLCodeFunction::Param& param) {
  MRBUnicodeString text = param.direction & KVLCodeFunction::Input ? "in" : "";
  if (param.direction & KVLCodeFunction::Output) text += text.IsEmpty() ? "out" : "/out";
  text += " " + param.typeName + " " + param.name;
  return param.defaultValue.IsEmpty() ? text : text + " = " + param.defaultValue;
}

void DescribeFunction(const KVLCodeFunction& function, Sheet& sheet) {
  sheet.Add("declaration", function.ToStringCode());
  for (const KVLCodeFunction::Param& param : function.GetParams())
    sheet.Add("parameter", ParamText(param));
  if (function.IsMethod()) sheet.Add("method", "of the first parameter");
}

// The names of what `path` holds, on a line of its own when there is any.
void DescribeNames(const MRBUnicodeString& title, const MRBUnicodeString& path, Sheet& sheet) {
  MRBUnicodeString names;
  for (const KVLShellChild& child : KVLShellChildren(KVLShellFind(path + "/").envs)) {
    if (!names.IsEmpty()) names += ", ";
    names += child.label;
  }
  if (!names.IsEmpty()) sheet.Add(title, names);
}

void DescribeType(const KVLCodeType& type, Sheet& sheet) {
  if (!type.GetParentTypeName().IsEmpty()) sheet.Add("parent", type.GetParentTypeName());
  MRBUnicodeString elementTypeName;
  if (type.IsList(&elementTypeName)) sheet.Add("list of", elementTypeName);
  KVLVector<MRBUnicodeString> values;
  if (type.GetEnumValues(values)) {
    for (const MRBUnicodeString& value : values)
      sheet.Add("value", value);
  }
  DescribeNames("members", "_members/" + type.GetName(), sheet);
  DescribeNames("converts to", "_conversions/" + type.GetName(), sheet);
}

void DescribeVariable(const KVLCodeValue& variable, Sheet& sheet) {
  sheet.Add("type", variable.GetTypeName());
  const KVLCodeContext context;
  MRBUnicodeString text;
  const long code = variable.GetValueStr(context, text);
  sheet.Add("value", KVLFailed(code) ? "cannot be written: " + KVLShellCodeText(code) : text);
}

void DescribeHistory(const KVLCodeObject& object, Sheet& sheet) {
  for (const KVLSourceLocation& location : object.GetRegistrationLocations())
    sheet.Add("registered", location.ToString());
  for (const MRBUnicodeString& message : object.Check())
    sheet.Add("problem", message);
}

void DescribeObject(const KVLCodeObject& object, const MRBUnicodeString& path, Sheet& sheet) {
  sheet.Add("path", path);
  sheet.Add("kind", KVLShellKind(object));
  if (object.AsFunction()) {
    DescribeFunction(*object.AsFunction(), sheet);
  } else if (object.AsType()) {
    DescribeType(*object.AsType(), sheet);
  } else if (object.AsVariable()) {
    DescribeVariable(*object.AsVariable(), sheet);
  }
  DescribeHistory(object, sheet);
}

void DescribeEnvs(const KVLShellPlace& place, Sheet& sheet) {
  sheet.Add("path", place.path + "/");
  sheet.Add("kind", "env");
  sheet.Add("children", KVLStringOperations::FromNum(KVLShellChildren(place.envs).GetCount()));
  for (const KVLSmartPtr<KVLCodeEnv>& env : place.envs)
    DescribeHistory(*env, sheet);
}

}  // namespace

MRBUnicodeString KVLShellKind(const KVLCodeObject& object) {
  if (object.AsFunction()) return "function";
  if (object.AsType()) return "type";
  if (object.AsVariable()) return "variable";
  if (object.AsEnv()) return "env";
  return "object";
}

MRBUnicodeString KVLShellSignature(const KVLCodeObject& object) {
  if (object.AsEnv()) return "";
  const KVLCodeValue* const variable = object.AsVariable();
  if (!variable) return object.ToStringCode();
  const KVLCodeContext context;
  MRBUnicodeString text;
  if (KVLFailed(variable->GetValueStr(context, text))) return object.ToStringCode();
  return object.ToStringCode() + " = " + KVLShellPrintable(text);
}

KVLShellOutcome KVLShellInfo(const KVLShellCommandWords& words, KVLShellOutput& output) {
  if (words.GetCount() < 2) return KVLShellMisused(words, "a path is missing", -1);
  if (words.GetCount() > 2) return KVLShellMisused(words, "takes one path", words[2].position);
  const KVLShellPlace place = KVLShellFind(words[1].text);
  if (!place.IsFound()) {
    return KVLShellNotFound("environment or object", words[1].text, words[1].position);
  }
  Sheet sheet(output);
  if (place.object) DescribeObject(*place.object, place.path, sheet);
  if (!place.envs.IsEmpty()) DescribeEnvs(place, sheet);
  return KVLShellOutcome();
}
