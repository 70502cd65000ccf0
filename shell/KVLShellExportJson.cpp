#include "KVLShellExport.h"
#include "KVLShellExportText.h"
#include "KVLShellTree.h"

namespace {

KVLShellNode Texts(const std::vector<std::string>& texts) {
  KVLShellNode list = KVLShellNode::NewList();
  for (const std::string& text : texts)
    list.Append(KVLShellText(text));
  return list;
}

// The text, or null where there is none to tell.
KVLShellNode TextIf(bool isThere, const std::string& text) {
  return isThere ? KVLShellNode(KVLShellText(text)) : KVLShellNode();
}

KVLShellNode EnvNode(const KVLShellModelEnv& env) {
  KVLShellNode node = KVLShellNode::NewRecord();
  node.Set("path", KVLShellText(env.path));
  node.Set("name", KVLShellText(env.name));
  node.Set("doc", KVLShellText(env.doc));
  node.Set("same_as", TextIf(env.isRepeated, env.sameAs));
  node.Set("places", KVLShellPlacesNode(env.places));
  node.Set("problems", Texts(env.problems));
  return node;
}

// What objects of every kind have.
KVLShellNode ObjectNode(const KVLShellModelObject& object) {
  KVLShellNode node = KVLShellNode::NewRecord();
  node.Set("path", KVLShellText(object.path));
  node.Set("name", KVLShellText(object.name));
  node.Set("signature", KVLShellText(object.signature));
  node.Set("doc", KVLShellText(object.doc));
  node.Set("module", KVLShellText(object.module));
  node.Set("places", KVLShellPlacesNode(object.places));
  node.Set("problems", Texts(object.problems));
  return node;
}

void AddFunction(const KVLShellModelObject& object, KVLShellNode& node) {
  KVLShellNode& params = node.Set("params", KVLShellNode::NewList());
  for (const KVLShellModelParam& param : object.params) {
    KVLShellNode& entry = params.Append(KVLShellNode::NewRecord());
    entry.Set("name", KVLShellText(param.name));
    entry.Set("type", KVLShellText(param.typeName));
    entry.Set("direction", KVLShellDirectionText(param));
    entry.Set("default", TextIf(!param.defaultText.empty(), param.defaultText));
  }
  node.Set("returns", KVLShellText(object.returnTypeName));
  node.Set("method", object.isMethod);
}

void AddType(const KVLShellModelObject& object, KVLShellNode& node) {
  node.Set("parent", TextIf(!object.parent.empty(), object.parent));
  node.Set("values", object.isEnum ? Texts(object.enumValues) : KVLShellNode());
  node.Set("element", TextIf(object.isList, object.elementTypeName));
  node.Set("members", Texts(object.members));
  std::vector<std::string> names;
  for (const KVLShellModelConversion& conversion : object.conversionsTo)
    names.push_back(conversion.to);
  node.Set("converts_to", Texts(names));
  names.clear();
  for (const KVLShellModelConversion& conversion : object.conversionsFrom)
    names.push_back(conversion.from);
  node.Set("converts_from", Texts(names));
}

void AddVariable(const KVLShellModelObject& object, KVLShellNode& node) {
  node.Set("type", KVLShellText(object.typeName));
  node.Set("text", TextIf(object.isReadable, object.text));
}

// The objects of one kind; plain objects and environments among the objects count as one.
KVLShellNode ObjectsNode(const KVLShellModel& model, KVLShellModelKind kind) {
  KVLShellNode list = KVLShellNode::NewList();
  for (const KVLShellModelObject& object : model.objects) {
    const bool isOther =
        object.kind == KVLShellModelKind::Env || object.kind == KVLShellModelKind::Object;
    if (object.kind != kind && !(kind == KVLShellModelKind::Object && isOther)) continue;
    KVLShellNode& node = list.Append(ObjectNode(object));
    if (kind == KVLShellModelKind::Function) AddFunction(object, node);
    if (kind == KVLShellModelKind::Type) AddType(object, node);
    if (kind == KVLShellModelKind::Variable) AddVariable(object, node);
    if (isOther) node.Set("kind", KVLShellModelKindName(object.kind));
  }
  return list;
}

}  // namespace

KVLShellNode KVLShellPlacesNode(const std::vector<KVLShellModelPlace>& places) {
  KVLShellNode list = KVLShellNode::NewList();
  for (const KVLShellModelPlace& place : places) {
    KVLShellNode& node = list.Append(KVLShellNode::NewRecord());
    node.Set("file", KVLShellText(place.file));
    node.Set("line", place.line >= 1 ? KVLShellNode(place.line) : KVLShellNode());
    node.Set("detail", TextIf(!place.detail.empty(), place.detail));
  }
  return list;
}

KVLShellNode KVLShellExportNode(const KVLShellModel& model) {
  KVLShellNode whole = KVLShellNode::NewRecord();
  whole.Set("kvl", 1);
  whole.Set("path", KVLShellText(model.path));
  KVLShellNode& envs = whole.Set("environments", KVLShellNode::NewList());
  for (const KVLShellModelEnv& env : model.envs)
    envs.Append(EnvNode(env));
  whole.Set("functions", ObjectsNode(model, KVLShellModelKind::Function));
  whole.Set("types", ObjectsNode(model, KVLShellModelKind::Type));
  whole.Set("variables", ObjectsNode(model, KVLShellModelKind::Variable));
  whole.Set("objects", ObjectsNode(model, KVLShellModelKind::Object));
  KVLShellNode& conversions = whole.Set("conversions", KVLShellNode::NewList());
  for (const KVLShellModelConversion& conversion : model.conversions) {
    KVLShellNode& node = conversions.Append(KVLShellNode::NewRecord());
    node.Set("from", KVLShellText(conversion.from));
    node.Set("to", KVLShellText(conversion.to));
    node.Set("path", KVLShellText(conversion.path));
  }
  KVLShellNode& docs = whole.Set("docs", KVLShellNode::NewList());
  for (const KVLShellModelDoc& doc : model.docs) {
    KVLShellNode& node = docs.Append(KVLShellNode::NewRecord());
    node.Set("path", KVLShellText(doc.path));
    node.Set("subject", TextIf(!doc.subject.empty(), doc.subject));
    node.Set("text", KVLShellText(doc.text));
  }
  KVLShellNode& anomalies = whole.Set("anomalies", KVLShellNode::NewList());
  for (const KVLShellModelAnomaly& anomaly : model.anomalies) {
    KVLShellNode& node = anomalies.Append(KVLShellNode::NewRecord());
    node.Set("path", KVLShellText(anomaly.path));
    node.Set("message", KVLShellText(anomaly.message));
    node.Set("places", KVLShellPlacesNode(anomaly.places));
  }
  return whole;
}
