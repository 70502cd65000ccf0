#include "KVLShellJson.h"

#include <nlohmann/json.hpp>
#include <string>

#include "KVLShellOutput.h"
#include "KVLShellResult.h"

namespace {

using Json = nlohmann::ordered_json;

constexpr int FormVersion = 1;

std::string StringOf(const MRBUnicodeString& text) {
  return std::string(text.ConvertToChar(), static_cast<std::size_t>(text.GetLengthInByte()));
}

Json JsonOf(const KVLShellNode& node) {
  switch (node.GetKind()) {
    case KVLShellNode::Null:
      break;
    case KVLShellNode::Bool:
      return node.GetBool();
    case KVLShellNode::Integer:
      return node.GetInteger();
    case KVLShellNode::Real:
      return node.GetReal();
    case KVLShellNode::Text:
      return StringOf(node.GetText());
    case KVLShellNode::List: {
      Json list = Json::array();
      for (const KVLShellNode& item : node.GetItems())
        list.push_back(JsonOf(item));
      return list;
    }
    case KVLShellNode::Record: {
      Json record = Json::object();
      for (const KVLShellNode& field : node.GetFields())
        record.emplace(field.GetName(), JsonOf(field));
      return record;
    }
  }
  return nullptr;
}

MRBUnicodeString Written(const Json& json, int indent) {
  const std::string text = json.dump(indent, ' ', false, Json::error_handler_t::replace);
  return MRBUnicodeString(text.data(), static_cast<int>(text.size()));
}

Json TextOrNull(const MRBUnicodeString& text) {
  return text.IsEmpty() ? Json() : Json(StringOf(text));
}

Json ErrorOf(const MRBUnicodeString& text, const KVLShellOutcome& outcome) {
  Json error = Json::object();
  error["code"] = KVLExitCodeOf(outcome.code);
  error["kind"] = KVLShellKindOf(outcome.code);
  error["message"] = StringOf(KVLShellMessageOf(outcome));
  error["path"] = TextOrNull(outcome.path);
  error["parameter"] = TextOrNull(outcome.parameter);
  error["expected"] = TextOrNull(outcome.expected);
  // An empty text may well be what was given.
  const bool isGiven = !outcome.expected.IsEmpty() && !outcome.isMissing;
  error["got"] = isGiven ? Json(StringOf(outcome.got)) : TextOrNull(outcome.got);
  error["suggestion"] = TextOrNull(outcome.suggestion);
  const bool isPlaced = outcome.position >= 0;
  const KVLShellColumn place = KVLShellColumnOf(text, outcome.position);
  error["line"] = isPlaced ? Json(place.line) : Json();
  error["column"] = isPlaced ? Json(place.column) : Json();
  error["offset"] = isPlaced ? Json(outcome.position) : Json();
  error["cause"] = outcome.cause == 0 ? Json() : Json(StringOf(KVLShellCodeText(outcome.cause)));
  return error;
}

}  // namespace

MRBUnicodeString KVLShellJsonOf(const KVLShellNode& node, int indent) {
  return Written(JsonOf(node), indent);
}

MRBUnicodeString KVLShellJsonOf(const MRBUnicodeString& text, const KVLShellAnswer& answer,
                                const KVLShellOutcome& outcome) {
  const bool isDone = outcome.IsSuccess() || KVLShellIsQuit(outcome.code);
  const bool hasResult = isDone || answer.result.GetKind() != KVLShellNode::Null;
  Json whole = Json::object();
  whole["kvl"] = FormVersion;
  whole["ok"] = isDone;
  if (hasResult) whole["result"] = JsonOf(answer.result);
  if (!isDone) whole["error"] = ErrorOf(text, outcome);
  return Written(whole, -1);
}
