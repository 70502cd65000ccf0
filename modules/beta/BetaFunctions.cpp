#include <algorithm>
#include <stdexcept>
#include <string>

#include "KVLCodeType.h"
#include "KVLKit.h"

namespace {

using Text = MRBUnicodeString;
using Type = KVLSmartPtr<const KVLCodeType>;

// A name of several parts, which is no type's, would make environments.
Type FindType(const KVLCodeContext& context, const Text& name) {
  const bool isName = !name.IsEmpty() && name.FindPosition("/", 0) == 0;
  return isName ? context.GetTypeFromName(name) : nullptr;
}

Type FindTypeOrThrow(const KVLCodeContext& context, const Text& name) {
  Type type = FindType(context, name);
  if (type) return type;
  throw std::invalid_argument(std::string("there is no type '") + name.ConvertToChar() + "'");
}

// The conversion, found without making the environment that its path leads through.
KVLSmartPtr<KVLCodeObject> FindConversion(const KVLCodeContext& context, const Text& from,
                                          const Text& to) {
  for (const auto& sources : context.GetConversionsCodeEnv().IterOnSubEnvs()) {
    if (sources.key != from) continue;
    KVLSmartPtr<KVLCodeObject> found = sources.value->FindObject(to);
    if (found && found->AsFunction()) return found;
  }
  return nullptr;
}

// How a value of the type `from` becomes one of the type `to`.
struct Route {
  KVLVector<Text> steps;  // each thing that is tried, in words
  bool isOpen = false;    // the last step does it, unless the value is refused
};

Text PlaceOf(const KVLCodeObject& object) {
  if (object.GetRegistrationLocations().IsEmpty()) return "";
  const KVLSourceLocation& place = object.GetRegistrationLocations()[0];
  return " (" + place.path + ":" + kvl::Print(place.line) + ")";
}

// As assignment goes about it: a registered conversion from the type, or else from its nearest
// ancestor that has one; then by text.
Route FindRoute(const KVLCodeContext& context, const Type& from, const Type& to) {
  Route route;
  const Text& target = to->GetName();
  if (from->GetName() == target) {
    route.steps.Append(target + ": the same type, copied");
    route.isOpen = true;
    return route;
  }
  KVLVector<Text> seen;
  Text source = from->GetName();
  while (!source.IsEmpty()) {
    const Text step = source + " -> " + target + ": ";
    if (const KVLSmartPtr<KVLCodeObject> conversion = FindConversion(context, source, target)) {
      route.steps.Append(step + "converted" + PlaceOf(*conversion));
      route.isOpen = true;
      return route;
    }
    route.steps.Append(step + "no conversion");
    seen.Append(source);
    const Type type = FindType(context, source);
    source = type ? type->GetParentTypeName() : Text();
    if (std::find(seen.begin(), seen.end(), source) != seen.end()) {
      route.steps.Append(source + ": its parents form a loop");
      return route;
    }
  }
  const Text step = from->GetName() + " -> " + target + ": ";
  if (from->IsDummy() || to->IsDummy()) {
    route.steps.Append(step + "by text, since " + (to->IsDummy() ? target : from->GetName()) +
                       " stands for any type");
    route.isOpen = true;
  } else if (from->IsSubTypeOf(context, *to)) {
    route.steps.Append(step + "by text, since " + from->GetName() + " descends from " + target);
    route.isOpen = true;
  } else {
    route.steps.Append(step + "not by text, since " + from->GetName() + " does not descend from " +
                       target);
  }
  return route;
}

std::string Std(const Text& text) {
  return std::string(text.ConvertToChar(), static_cast<std::size_t>(text.GetLengthInByte()));
}

kvl::Any To(const KVLCodeContext& context, const kvl::Any& value, const Text& typeName) {
  const Type type = FindTypeOrThrow(context, typeName);
  if (!value) throw std::invalid_argument("there is no value");
  KVLSmartPtr<KVLCodeValue> target = type->CreateValue("");
  if (!target) throw std::invalid_argument("'" + Std(typeName) + "' makes no values");
  const std::string from = Std(value->GetTypeName());
  // Asked first: parents that form a loop would keep an assignment busy for ever.
  const Type source = FindType(context, value->GetTypeName());
  if (source && !FindRoute(context, source, type).isOpen) {
    throw std::invalid_argument("no conversion leads from " + from + " to " + Std(typeName));
  }
  if (!KVLFailed(target->AssignFrom(context, *value))) {
    // A value of type "any" gives up what it holds, as it is itself held by one.
    return typeName == "any" ? *static_cast<const kvl::Any*>(target->GetValuePtr())
                             : kvl::Any(target);
  }
  Text text;
  (void)value->GetValueStr(context, text);
  throw std::invalid_argument("the " + from + " '" + Std(text) + "' cannot become a value of " +
                              Std(typeName));
}

bool IsPossible(const KVLCodeContext& context, const Text& from, const Text& to) {
  return FindRoute(context, FindTypeOrThrow(context, from), FindTypeOrThrow(context, to)).isOpen;
}

KVLVector<Text> Targets(const KVLCodeContext& context, const Text& from) {
  const Type source = FindTypeOrThrow(context, from);
  KVLVector<Text> names;
  for (const auto& object : context.GetTypesCodeEnv().IterOnObjects()) {
    if (object.value->AsType() && object.key != from) names.Append(object.key);
  }
  KVLVector<Text> targets;
  for (const Text& name : names) {
    if (FindRoute(context, source, FindTypeOrThrow(context, name)).isOpen) targets.Append(name);
  }
  std::sort(targets.begin(), targets.end());
  return targets;
}

KVLVector<Text> Explain(const KVLCodeContext& context, const Text& from, const Text& to) {
  return FindRoute(context, FindTypeOrThrow(context, from), FindTypeOrThrow(context, to)).steps;
}

}  // namespace

KVL_DOC("convert", "Conversions between types, by the types' names.");
KVL_FUNCTION("convert/to", "value, type",
             "The value as one of the type. Fails where no conversion leads there, and where the "
             "value is none that the type has room for: 2.5 is no int.",
             To);
KVL_FUNCTION("convert/possible", "from, to",
             "Whether values of the one type can become values of the other, unless a value itself "
             "is refused. Fails for a name that is no type's.",
             IsPossible);
KVL_FUNCTION("convert/targets", "type",
             "The types that values of the type can become, sorted. Fails for a name that is no "
             "type's.",
             Targets);
KVL_FUNCTION("convert/explain", "from, to",
             "What is tried, step by step, to make a value of the one type one of the other: a "
             "conversion from the type and from each of its parents, then by text. The last step "
             "decides. Fails for a name that is no type's.",
             Explain);
