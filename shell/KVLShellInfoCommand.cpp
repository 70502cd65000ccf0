#include <algorithm>

#include "KVLCodeContext.h"
#include "KVLCodeFunction.h"
#include "KVLCodeType.h"
#include "KVLCodeValue.h"
#include "KVLShellCommand.h"
#include "KVLShellDescription.h"
#include "KVLShellLibrary.h"
#include "KVLShellPath.h"
#include "KVLShellValue.h"
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

// A list that is shown on one line; nothing when it is empty.
void SetLine(const char* fieldName, KVLShellNode list, KVLShellNode& sheet) {
  if (list.GetItems().empty()) return;
  const MRBUnicodeString line = list.ToText();
  sheet.Set(fieldName, list.ShowAs(line));
}

void SetLines(const char* fieldName, const KVLVector<MRBUnicodeString>& lines,
              KVLShellNode& sheet) {
  if (lines.IsEmpty()) return;
  KVLShellNode list = KVLShellNode::NewList();
  for (const MRBUnicodeString& line : lines)
    list.Append(line);
  sheet.Set(fieldName, list);
}

void DescribeFunction(const KVLCodeFunction& function, KVLShellNode& sheet) {
  sheet.Set("declaration", function.ToStringCode());
  KVLShellNode parameters = KVLShellNode::NewList();
  for (const KVLCodeFunction::Param& param : function.GetParams())
    parameters.Append(NodeOf(param));
  sheet.Set("parameters", parameters);
  sheet.Set("returns", function.GetReturnTypeName());
  if (function.IsMethod()) sheet.Set("method", KVLShellNode(true));
}

KVLShellNode NamesIn(const MRBUnicodeString& path) {
  KVLShellNode names = KVLShellNode::NewList();
  for (const KVLShellChild& child : KVLShellChildren(KVLShellFind(path + "/").envs))
    if (!child.env) names.Append(child.label);
  return names;
}

// The types whose values can be converted to the one of that name.
KVLShellNode SourcesOf(const MRBUnicodeString& typeName) {
  KVLShellNode names = KVLShellNode::NewList();
  for (const KVLShellChild& child : KVLShellChildren(KVLShellFind("_conversions/").envs))
    if (child.env && child.env->FindObject(typeName)) names.Append(child.env->GetName());
  return names;
}

// The parent, its parent and so on; types whose parents form a loop are named once.
KVLVector<KVLSmartPtr<const KVLCodeType>> AncestorsOf(const KVLCodeType& type,
                                                      KVLShellNode& names) {
  KVLVector<KVLSmartPtr<const KVLCodeType>> ancestors;
  MRBUnicodeString parentName = type.GetParentTypeName();
  while (!parentName.IsEmpty()) {
    names.Append(parentName);
    const KVLSmartPtr<const KVLCodeType> parent = KVLShellFindType(parentName);
    const auto found = std::find(ancestors.begin(), ancestors.end(), parent);
    if (!parent || parent == &type || found != ancestors.end()) break;
    ancestors.Append(parent);
    parentName = parent->GetParentTypeName();
  }
  return ancestors;
}

void DescribeType(const KVLCodeType& type, KVLShellNode& sheet) {
  KVLShellNode parents = KVLShellNode::NewList();
  const auto ancestors = AncestorsOf(type, parents);
  SetLine("parents", parents, sheet);
  MRBUnicodeString elementTypeName;
  if (type.IsList(&elementTypeName)) sheet.Set("list_of", elementTypeName);
  KVLVector<MRBUnicodeString> values;
  if (type.GetEnumValues(values)) SetLines("values", values, sheet);
  SetLine("members", NamesIn("_members/" + type.GetName()), sheet);
  KVLShellNode inherited = KVLShellNode::NewList();
  for (const KVLSmartPtr<const KVLCodeType>& ancestor : ancestors) {
    const KVLShellNode members = NamesIn("_members/" + ancestor->GetName());
    for (const KVLShellNode& member : members.GetItems())
      inherited.Append(ancestor->GetName() + "/" + member.GetText());
  }
  SetLine("inherited", inherited, sheet);
  SetLine("converts_to", NamesIn("_conversions/" + type.GetName()), sheet);
  SetLine("converts_from", SourcesOf(type.GetName()), sheet);
}

void DescribeVariable(const KVLCodeValue& variable, const KVLCodeContext& context,
                      KVLShellNode& sheet) {
  sheet.Set("type", variable.GetTypeName());
  MRBUnicodeString text;
  const long code = variable.GetValueStr(context, text);
  sheet.Set("value", KVLFailed(code) ? "cannot be written: " + KVLShellCodeText(code) : text);
}

// The registrations that found the name taken; the environment around the object keeps them.
KVLVector<MRBUnicodeString> RefusedAt(const MRBUnicodeString& path) {
  const int slash = path.SearchSubString("/", 0, MRBUnicodeString::MRBSearchBackward);
  const MRBUnicodeString start = "Tried to add two times object with name '" +
                                 path.SubString(slash + 1, path.GetLengthInByte()) + "'.";
  KVLVector<MRBUnicodeString> refused;
  for (const KVLSmartPtr<KVLCodeEnv>& env : KVLShellFind(path.SubString(0, slash + 1)).envs)
    for (const MRBUnicodeString& message : env->Check())
      if (KVLStringOperations::StartsWith(message, start)) refused.Append(message);
  return refused;
}

void DescribeHistory(const KVLCodeObject& object, KVLShellNode& sheet) {
  KVLVector<MRBUnicodeString> places;
  for (const KVLSourceLocation& location : object.GetRegistrationLocations())
    places.Append(location.ToString());
  SetLines("registered", places, sheet);
  SetLines("problems", object.Check(), sheet);
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
  const MRBUnicodeString library = KVLShellLibraryOf(object);
  if (!library.IsEmpty()) sheet.Set("module", library);
  DescribeHistory(object, sheet);
  SetLines("refused", RefusedAt(path), sheet);
  return sheet;
}

KVLShellNode DescribeEnvs(const KVLShellPlace& place) {
  KVLShellNode sheet = KVLShellNode::NewRecord();
  sheet.Set("path", place.path + "/");
  sheet.Set("kind", KVLShellNode("env"));
  const MRBUnicodeString doc = place.path.IsEmpty() ? MRBUnicodeString() : KVLShellDoc(place.path);
  if (!doc.IsEmpty()) sheet.Set("doc", doc);
  sheet.Set("children", KVLShellChildren(place.envs).GetCount());
  for (const KVLSmartPtr<KVLCodeEnv>& env : place.envs)
    DescribeHistory(*env, sheet);
  return sheet;
}

KVLShellOutcome Run(const KVLShellArguments& arguments, KVLShellWork& work,
                    KVLShellAnswer& answer) {
  const KVLShellWord& word = arguments[0];
  KVLShellPlace place = KVLShellFind(word.text);
  // The name of a type alone is clear enough.
  if (!place.IsFound() && KVLShellFindType(word.text)) place = KVLShellFind("_types/" + word.text);
  if (!place.IsFound()) {
    KVLShellOutcome outcome = KVLShellNotFound("environment or object", word.text, word.position);
    if (outcome.suggestion.IsEmpty()) {
      outcome.suggestion = KVLShellUnknownType(word.text, word.position).suggestion;
    }
    return outcome;
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

const KVLShellCommand KVLShellInfoCommand = {
    "info",
    "info PATH",
    "tells what is known about what a path leads to",
    "  PATH may also be the name of a type. Told are: signature, doc, module, every place of\n"
    "  registration, and the registrations that were refused because the name was taken; for a "
    "type\n"
    "  its parents, members, conversions, and the values of an enumeration.\n",
    KVLShellStyle_Words,
    Run,
    1,
    1,
    {KVLShellWord_Path},
    {}};
