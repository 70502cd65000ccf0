// What dies when a value drops its content may look at the value: it sees the new content.

#include <gtest/gtest.h>

#include "KVLCodeListValue.h"
#include "KVLCodePointerValue.h"
#include "support/TestObjects.h"

namespace {

using kvltest::TextValue;
using kvltest::Values;
using kvltest::World;

// An element that looks at its list, which it does not hold, when it dies.
class LookingElement : public TextValue {
 public:
  LookingElement(const KVLCodeListValue& watched, const void*& place)
      : TextValue("look", "int"), list(watched), seen(place) {}
  ~LookingElement() override { seen = list.GetValuePtr(); }

 private:
  const KVLCodeListValue& list;
  const void*& seen;
};

class KVLCodeDroppedElements : public testing::Test {
 protected:
  void AppendLookingElement() {
    list->MakeOwnElements().Append(KVLSmartPtr<KVLCodeValue>(new LookingElement(*list, seen)));
  }

  const World world;
  const KVLSmartPtr<KVLCodeListValue> list = new KVLCodeListValue("l");
  const void* seen = this;
};

TEST_F(KVLCodeDroppedElements, SeeNoVectorAfterAReset) {
  AppendLookingElement();
  list->Reset();
  EXPECT_EQ(seen, nullptr);
}

TEST_F(KVLCodeDroppedElements, SeeTheFreshVector) {
  AppendLookingElement();
  const Values& fresh = list->MakeOwnElements();
  EXPECT_EQ(seen, &fresh);
}

TEST_F(KVLCodeDroppedElements, SeeTheVectorThatIsSharedInstead) {
  AppendLookingElement();
  const KVLSmartPtr<KVLCodeListValue> source = new KVLCodeListValue("source");
  source->MakeOwnElements();
  EXPECT_EQ(list->AssignFrom(world.context, *source), KVLResult_Success);
  EXPECT_EQ(seen, source->GetValuePtr());
}

// An object that looks at the value that owns it when it dies.
class LookingObject {
 public:
  LookingObject(const KVLCodePointerValue& watched, const void*& place)
      : value(watched), seen(place) {}
  LookingObject(const LookingObject&) = delete;
  LookingObject& operator=(const LookingObject&) = delete;
  virtual ~LookingObject() { seen = value.GetValuePtr(); }

 private:
  const KVLCodePointerValue& value;
  const void*& seen;
};

class KVLCodeDroppedObject : public testing::Test {
 protected:
  KVLCodeDroppedObject() { value->SetPointer(new LookingObject(*value, seen), true); }

  const World world;
  int thing = 0;
  const void* seen = this;
  const KVLSmartPtr<KVLCodePointerValue> value = new KVLCodePointerValue("p", "Thing");
};

TEST_F(KVLCodeDroppedObject, SeesNothingAfterAReset) {
  value->Reset();
  EXPECT_EQ(seen, nullptr);
}

TEST_F(KVLCodeDroppedObject, SeesTheNewPointer) {
  value->SetPointer(&thing, false);
  EXPECT_EQ(seen, &thing);
}

TEST_F(KVLCodeDroppedObject, SeesThePointerThatIsSharedInstead) {
  const KVLSmartPtr<KVLCodePointerValue> source = new KVLCodePointerValue("source", "Thing");
  source->SetPointer(&thing, false);
  EXPECT_EQ(value->AssignFrom(world.context, *source), KVLResult_Success);
  EXPECT_EQ(seen, &thing);
}

}  // namespace
