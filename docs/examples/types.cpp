#include <KVLCodeContext.h>
#include <KVLCodeEnv.h>
#include <KVLCodeType.h>
#include <KVLCodeValue.h>

#include <cstdio>

namespace {

// An enumeration with a parent; it makes no values.
class Colour : public KVLCodeType {
 public:
  explicit Colour(const MRBUnicodeString& typeName) : KVLCodeType(typeName) {}

  MRBUnicodeString GetParentTypeName() const override { return "Enumeration"; }
  bool GetEnumValues(KVLVector<MRBUnicodeString>& values) const override {
    for (const char* const value : {"red", "green", "blue"})
      values.Append(value);
    return true;
  }
  KVLSmartPtr<KVLCodeValue> CreateValue(const MRBUnicodeString&) const override { return nullptr; }
};

const char* YesNo(bool answer) {
  return answer ? "yes" : "no";
}

}  // namespace

int main() {
  const KVLSmartPtr<KVLCodeEnv> typesEnv = new KVLCodeEnv("types");
  typesEnv->Add(new Colour("Colour"), "");
  const KVLCodeContext context(*typesEnv);

  const KVLSmartPtr<const KVLCodeType> colour = context.GetTypeFromName("Colour");
  colour->Dump();
  KVLVector<MRBUnicodeString> values;
  colour->GetEnumValues(values);
  std::printf("%d values\n", values.GetCount());

  // A parent that is named but not registered counts by name, yet there is no object to return.
  std::printf("an enumeration by name: %s\n", YesNo(colour->IsSubTypeOf(context, "Enumeration")));
  std::printf("parent registered: %s\n", YesNo(!colour->GetParentType(context).IsNull()));

  // Objects of one name are equal, but each is a type of its own.
  const Colour twin("Colour");
  std::printf("equal: %s\n", YesNo(*colour == twin));
  std::printf("subtype: %s\n", YesNo(colour->IsSubTypeOf(context, twin)));
}
