#include "AlphaList.h"

#include <utility>

#include "AlphaScalars.h"
#include "AlphaText.h"
#include "KVLResult.h"
#include "KVLStringOperations.h"

namespace {

using Elements = KVLCodeListValue::Elements;

constexpr int DeepestNesting = 100;

long ReadElements(const MRBUnicodeString& text, int depth, Elements& elements);

template <class Kind>
KVLSmartPtr<KVLCodeValue> ReadAs(const MRBUnicodeString& text) {
  typename Kind::Data data{};
  if (KVLFailed(AlphaRead(text, data))) return nullptr;
  return KVLSmartPtr<KVLCodeValue>(new AlphaScalarValue<Kind>("", data));
}

KVLSmartPtr<KVLCodeValue> ReadList(const MRBUnicodeString& text, int depth) {
  const KVLSmartPtr<KVLCodeListValue> list = new KVLCodeListValue("", AlphaListTypeName);
  if (text == "NULL") return list;
  if (KVLFailed(ReadElements(text, depth, list->MakeOwnElements()))) return nullptr;
  return list;
}

KVLSmartPtr<KVLCodeValue> ReadElement(const MRBUnicodeString& text, int depth) {
  const char first = KVLStringOperations::GetCharAt(text, 0);
  if (first == '"') return ReadAs<AlphaString>(text);
  if (first == '[' || text == "NULL") return ReadList(text, depth + 1);
  if (const KVLSmartPtr<KVLCodeValue> value = ReadAs<AlphaBool>(text)) return value;
  if (const KVLSmartPtr<KVLCodeValue> value = ReadAs<AlphaInt>(text)) return value;
  if (const KVLSmartPtr<KVLCodeValue> value = ReadAs<AlphaDouble>(text)) return value;
  return ReadAs<AlphaString>(text);
}

long ReadElements(const MRBUnicodeString& text, int depth, Elements& elements) {
  const int length = text.GetLengthInByte();
  if (depth > DeepestNesting || length < 2 || KVLStringOperations::GetCharAt(text, 0) != '[' ||
      KVLStringOperations::GetCharAt(text, length - 1) != ']') {
    return KVLResult_InvalidArgument;
  }
  const MRBUnicodeString content = text.SubString(1, length - 2);
  if (content.Strip(MRBUnicodeString::MRBStripBoth).IsEmpty()) return KVLResult_Success;
  // A separator at the very end would leave no trace among the pieces.
  if (KVLStringOperations::EndsWith(content, ",")) return KVLResult_InvalidArgument;
  KVLIter<MRBUnicodeString> pieces =
      KVLStringOperations::SplitWithDepth(content, ',', KVLStringOperations::DepthAll);
  for (const MRBUnicodeString& piece : pieces) {
    const MRBUnicodeString stripped = piece.Strip(MRBUnicodeString::MRBStripBoth);
    if (stripped.IsEmpty()) return KVLResult_InvalidArgument;
    const KVLSmartPtr<KVLCodeValue> element = ReadElement(stripped, depth);
    if (!element) return KVLResult_InvalidArgument;
    elements.Append(element);
  }
  return KVLFailed(pieces.GetStatus()) ? pieces.GetStatus() : KVLResult_Success;
}

// A whole number would read back as an "int".
MRBUnicodeString WithPoint(const MRBUnicodeString& number) {
  for (const char character : {'.', 'e', 'n', 'i'}) {
    if (number.FindPosition(MRBUnicodeString(&character, 1), 0) > 0) return number;
  }
  return number + ".0";
}

long WriteElements(const KVLCodeContext& context, const Elements& elements, int depth,
                   MRBUnicodeString& text);

long WriteElement(const KVLCodeContext& context, const KVLCodeValue& element, int depth,
                  MRBUnicodeString& text) {
  const MRBUnicodeString& typeName = element.GetTypeName();
  if (typeName == AlphaListTypeName) {
    const void* const data = element.GetValuePtr();
    if (data) return WriteElements(context, *static_cast<const Elements*>(data), depth + 1, text);
    text = "NULL";
    return KVLResult_Success;
  }
  const bool isString = typeName == AlphaString::TypeName && element.GetValuePtr();
  if (isString) {
    text = AlphaQuote(*static_cast<const MRBUnicodeString*>(element.GetValuePtr()));
    return KVLResult_Success;
  }
  const long result = element.GetValueStr(context, text);
  if (KVLFailed(result)) return result;
  if (typeName == AlphaDouble::TypeName) {
    text = WithPoint(text);
  } else if (typeName != AlphaBool::TypeName && typeName != AlphaInt::TypeName &&
             typeName != AlphaLong::TypeName) {
    text = AlphaQuote(text);
  }
  return KVLResult_Success;
}

long WriteElements(const KVLCodeContext& context, const Elements& elements, int depth,
                   MRBUnicodeString& text) {
  // A list may have been made to hold itself.
  if (depth > DeepestNesting) return KVLResult_InvalidArgument;
  MRBUnicodeString written = "[";
  for (int i = 0; i < elements.GetCount(); ++i) {
    if (!elements[i]) return KVLResult_InvalidArgument;
    MRBUnicodeString elementText;
    const long result = WriteElement(context, *elements[i], depth, elementText);
    if (KVLFailed(result)) return result;
    if (i > 0) written += ",";
    written += elementText;
  }
  text = written + "]";
  return KVLResult_Success;
}

}  // namespace

AlphaListType::AlphaListType() : KVLCodeListType(AlphaListTypeName) {}

AlphaListType::~AlphaListType() = default;

bool AlphaListType::IsList(MRBUnicodeString* elementTypeName) const {
  if (elementTypeName) *elementTypeName = KVLTypeName_Unknown;
  return true;
}

long AlphaListType::Parse(const KVLCodeContext&, const MRBUnicodeString& text,
                          KVLCodeValue& value) const {
  if (text == "NULL") {
    value.Reset();
    return KVLResult_Success;
  }
  Elements elements;
  const long result = ReadElements(text, 1, elements);
  if (KVLFailed(result)) return result;
  static_cast<KVLCodeListValue&>(value).MakeOwnElements() = std::move(elements);
  return KVLResult_Success;
}

long AlphaListType::Render(const KVLCodeContext& context, const void* data,
                           MRBUnicodeString& text) const {
  return WriteElements(context, *static_cast<const Elements*>(data), 1, text);
}
