#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "KVLKernel.h"

// Public records, whose fields anybody may name.

static_assert(offsetof(KVLSourceLocation, path) == 0);
static_assert(offsetof(KVLSourceLocation, line) == sizeof(MRBUnicodeString));
static_assert(offsetof(KVLSourceLocation, line) < offsetof(KVLSourceLocation, detail));

static_assert(offsetof(KVLCodeFunction::Param, name) == 0);
static_assert(offsetof(KVLCodeFunction::Param, typeName) == sizeof(MRBUnicodeString));
static_assert(offsetof(KVLCodeFunction::Param, defaultValue) == 2 * sizeof(MRBUnicodeString));
static_assert(offsetof(KVLCodeFunction::Param, direction) == 3 * sizeof(MRBUnicodeString));

static_assert(offsetof(KVLCodeEnv::Anomaly, object) == 0);
static_assert(offsetof(KVLCodeEnv::Anomaly, message) == sizeof(void*));
static_assert(offsetof(KVLCodeEnv::Anomaly, path) == sizeof(void*) + sizeof(MRBUnicodeString));

static_assert(offsetof(LibraryHandler, entry) == 0);
static_assert(offsetof(LibraryHandler, library) == sizeof(void*));
static_assert(sizeof(LibraryHandler) == 2 * sizeof(void*));

using Pairs = KVLKeyValue<MRBUnicodeString, KVLSmartPtr<KVLCodeObject>>;
static_assert(offsetof(Pairs, key) == 0);
static_assert(offsetof(Pairs, value) == sizeof(MRBUnicodeString));

using Entry = KVLHashMap<MRBUnicodeString, KVLSmartPtr<KVLCodeObject>>::Entry;
static_assert(offsetof(Entry, key) == 0);
static_assert(offsetof(Entry, value) == sizeof(MRBUnicodeString));
static_assert(offsetof(Entry, next) == sizeof(MRBUnicodeString) + sizeof(void*));

static_assert(sizeof(KVLSmartPtr<KVLCodeObject>) == sizeof(void*));
static_assert(sizeof(KVLVector<char>) == 2 * sizeof(int) + sizeof(void*));
static_assert(sizeof(KVLHashMap<MRBUnicodeString, char>) == 2 * sizeof(KVLVector<char>));
static_assert(sizeof(KVLCodeType) == sizeof(KVLCodeObject), "a type adds no field");
static_assert(sizeof(KVLCodeFunctionWithContext) == sizeof(KVLCodeFunctionBinding));
static_assert(sizeof(KVLCodeFunctionCallerWithContext) == sizeof(KVLCodeFunctionCallerBinding));

// A pointer to a virtual operation holds its place in the table, under GCC and Clang on x86-64, on
// Linux and on Windows alike. A virtual destructor has two places.
#if defined(__x86_64__) && defined(__GNUC__)

namespace {

template <class Member>
int SlotOf(Member member) {
  struct {
    std::intptr_t address;
    std::ptrdiff_t adjustment;
  } parts;
  static_assert(sizeof(parts) == sizeof(member));
  std::memcpy(&parts, &member, sizeof(parts));
  const bool isVirtual = (parts.address & 1) != 0;
  return isVirtual ? static_cast<int>((parts.address - 1) / static_cast<int>(sizeof(void*))) : -1;
}

// Its own operation takes the first place behind those of `Base`.
template <class Base>
struct Extended : Base {
  virtual void Extra() = 0;
};

template <class Base>
int SlotsOf() {
  return SlotOf(&Extended<Base>::Extra);
}

template <class Class, class Result>
int SlotOfVariant(Result (Class::*member)()) {
  return SlotOf(member);
}

template <class Class, class Result>
int SlotOfConstVariant(Result (Class::*member)() const) {
  return SlotOf(member);
}

TEST(Layout, CountedObjectsHaveOnlyTheirDestructor) {
  EXPECT_EQ(SlotsOf<KVLRefCounted>(), 2);
  EXPECT_EQ(SlotsOf<KVLCodeContext>(), 2);
}

TEST(Layout, HostObjectsHaveTheirDestructorThenTheCount) {
  EXPECT_EQ(SlotOf(&MRBBaseUnknown::AddRef), 2);
  EXPECT_EQ(SlotOf(&MRBBaseUnknown::Release), 3);
  EXPECT_EQ(SlotsOf<MRBBaseUnknown>(), 4);
}

TEST(Layout, CursorsHaveNextBeforeTheirDestructor) {
  EXPECT_EQ(SlotOf(&KVLIterCursor<int>::Next), 0);
  EXPECT_EQ(SlotsOf<KVLIterCursor<int>>(), 3);
}

TEST(Layout, SlotsOfObjects) {
  using Object = KVLCodeObject;
  EXPECT_EQ((SlotOfVariant<Object, KVLCodeFunction*>(&Object::AsFunction)), 2);
  EXPECT_EQ((SlotOfConstVariant<Object, const KVLCodeFunction*>(&Object::AsFunction)), 3);
  EXPECT_EQ((SlotOfVariant<Object, KVLCodeValue*>(&Object::AsVariable)), 4);
  EXPECT_EQ((SlotOfConstVariant<Object, const KVLCodeValue*>(&Object::AsVariable)), 5);
  EXPECT_EQ((SlotOfVariant<Object, KVLCodeType*>(&Object::AsType)), 6);
  EXPECT_EQ((SlotOfConstVariant<Object, const KVLCodeType*>(&Object::AsType)), 7);
  EXPECT_EQ((SlotOfVariant<Object, KVLCodeEnv*>(&Object::AsEnv)), 8);
  EXPECT_EQ((SlotOfConstVariant<Object, const KVLCodeEnv*>(&Object::AsEnv)), 9);
  EXPECT_EQ(SlotOf(&Object::ToString), 10);
  EXPECT_EQ(SlotOf(&Object::ToStringCode), 11);
  EXPECT_EQ(SlotOf(&Object::Check), 12);
  EXPECT_EQ(SlotsOf<Object>(), 13);
}

TEST(Layout, EnvironmentsAddNoSlot) {
  EXPECT_EQ(SlotsOf<KVLCodeEnv>(), 13);
}

TEST(Layout, SlotsOfTypes) {
  EXPECT_EQ(SlotOf(&KVLCodeType::IsDummy), 13);
  EXPECT_EQ(SlotOf(&KVLCodeType::GetSerializationInfo), 14);
  EXPECT_EQ(SlotOf(&KVLCodeType::GetParentTypeName), 15);
  EXPECT_EQ(SlotOf(&KVLCodeType::GetEnumValues), 16);
  EXPECT_EQ(SlotOf(&KVLCodeType::IsList), 17);
  EXPECT_EQ(SlotOf(&KVLCodeType::GetListElementType), 18);
  EXPECT_EQ(SlotOf(&KVLCodeType::CreateValue), 19);
  EXPECT_EQ(SlotsOf<KVLCodeType>(), 20);
}

TEST(Layout, SlotsOfListAndPointerTypes) {
  EXPECT_EQ(SlotOf(&KVLCodeListType::Parse), 20);
  EXPECT_EQ(SlotOf(&KVLCodeListType::Render), 21);
  EXPECT_EQ(SlotsOf<KVLCodeListType>(), 22);
  EXPECT_EQ(SlotOf(&KVLCodePointerType::Parse), 20);
  EXPECT_EQ(SlotOf(&KVLCodePointerType::Render), 21);
  EXPECT_EQ(SlotsOf<KVLCodePointerType>(), 22);
}

TEST(Layout, SlotsOfValues) {
  EXPECT_EQ(SlotOf(&KVLCodeValue::Reset), 13);
  EXPECT_EQ(SlotOf(&KVLCodeValue::IsReadOnly), 14);
  EXPECT_EQ(SlotOf(&KVLCodeValue::GetValuePtr), 15);
  EXPECT_EQ(SlotOf(&KVLCodeValue::GetType), 16);
  EXPECT_EQ(SlotOf(&KVLCodeValue::GetValueStr), 17);
  EXPECT_EQ(SlotOf(&KVLCodeValue::SetValueStr), 18);
  EXPECT_EQ(SlotOf(&KVLCodeValue::SetDefault), 19);
  EXPECT_EQ(SlotOf(&KVLCodeValue::AssignFrom), 20);
  EXPECT_EQ(SlotOf(&KVLCodeValue::CompareValueWith), 21);
  EXPECT_EQ(SlotOf(&KVLCodeValue::IsList), 22);
  EXPECT_EQ(SlotOf(&KVLCodeValue::ListGetElementsStr), 23);
  EXPECT_EQ(SlotOf(&KVLCodeValue::ListGetElements), 24);
  EXPECT_EQ(SlotOf(&KVLCodeValue::ListSetElementsStr), 25);
  EXPECT_EQ(SlotOf(&KVLCodeValue::ListSetElements), 26);
  EXPECT_EQ(SlotsOf<KVLCodeValue>(), 27);
}

TEST(Layout, ListAndPointerValuesAddTheTwoHooks) {
  EXPECT_EQ(SlotOf(&KVLCodeListValue::OnChanged), 27);
  EXPECT_EQ(SlotOf(&KVLCodeListValue::OnAccess), 28);
  EXPECT_EQ(SlotsOf<KVLCodeListValue>(), 29);
  EXPECT_EQ(SlotOf(&KVLCodePointerValue::OnChanged), 27);
  EXPECT_EQ(SlotOf(&KVLCodePointerValue::OnAccess), 28);
  EXPECT_EQ(SlotsOf<KVLCodePointerValue>(), 29);
}

struct OpenFunction : KVLCodeFunction {
  using KVLCodeFunction::InitImpl;
};

TEST(Layout, SlotsOfFunctions) {
  EXPECT_EQ(SlotOf(&KVLCodeFunction::Init), 13);
  EXPECT_EQ(SlotOf(&KVLCodeFunction::IsMethod), 14);
  EXPECT_EQ(SlotOf(&KVLCodeFunction::CreateCaller), 15);
  EXPECT_EQ(SlotOf(&OpenFunction::InitImpl), 16);
  EXPECT_EQ(SlotsOf<KVLCodeFunction>(), 17);
}

TEST(Layout, BindingsAddNoSlot) {
  EXPECT_EQ(SlotsOf<KVLCodeFunctionBinding>(), 17);
  EXPECT_EQ(SlotsOf<KVLCodeFunctionWithContext>(), 17);
}

struct OpenCaller : KVLCodeFunctionCaller {
  using KVLCodeFunctionCaller::CallInternal;
};

TEST(Layout, CallersAddTheCallItself) {
  EXPECT_EQ(SlotOf(&OpenCaller::CallInternal), 13);
  EXPECT_EQ(SlotsOf<KVLCodeFunctionCaller>(), 14);
  EXPECT_EQ(SlotsOf<KVLCodeFunctionCallerBinding>(), 14);
  EXPECT_EQ(SlotsOf<KVLCodeFunctionCallerWithContext>(), 14);
}

}  // namespace

#endif
