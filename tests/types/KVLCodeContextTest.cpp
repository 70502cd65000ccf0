#include "KVLCodeContext.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <type_traits>
#include <vector>

#include "support/TestObjects.h"

// The kernel never looks into a session, so any object will do.
class KVLCodeSession {
 public:
  int payload = 0;
};

namespace {

using kvltest::TestType;
using kvltest::TypePtr;
using kvltest::World;

// A host object that tells when it dies.
class HostObject : public MRBBaseUnknown {
 public:
  HostObject() { ++nbAlive; }
  ~HostObject() override {
    --nbAlive;
    if (journal) journal->push_back(this);
  }
  void AddRef() override {
    ++count;
    MRBBaseUnknown::AddRef();
  }
  void Release() override {
    --count;
    MRBBaseUnknown::Release();
  }

  int count = 0;
  std::vector<const HostObject*>* journal = nullptr;

  inline static int nbAlive = 0;
};

TEST(KVLCodeContext, LooksInTheDefaultRootsUnlessToldOtherwise) {
  const KVLCodeContext context;
  EXPECT_EQ(&context.GetTypesCodeEnv(), &KVLCodeEnv::GetDefaultTypeRoot());
  EXPECT_EQ(&context.GetConversionsCodeEnv(), &KVLCodeEnv::GetDefaultConversionsRoot());
  EXPECT_EQ(context.GetSession(), nullptr);
}

TEST(KVLCodeContext, WithTypesAloneLooksForConversionsInTheDefaultRoot) {
  const KVLSmartPtr<KVLCodeEnv> types = new KVLCodeEnv();
  const KVLCodeContext context(*types);
  EXPECT_EQ(&context.GetTypesCodeEnv(), types.Get());
  EXPECT_EQ(&context.GetConversionsCodeEnv(), &KVLCodeEnv::GetDefaultConversionsRoot());
  EXPECT_EQ(context.GetSession(), nullptr);
}

TEST(KVLCodeContext, WithBothLooksInBoth) {
  const KVLSmartPtr<KVLCodeEnv> types = new KVLCodeEnv();
  const KVLSmartPtr<KVLCodeEnv> conversions = new KVLCodeEnv();
  const KVLCodeContext context(*types, *conversions);
  EXPECT_EQ(&context.GetTypesCodeEnv(), types.Get());
  EXPECT_EQ(&context.GetConversionsCodeEnv(), conversions.Get());
  EXPECT_EQ(context.GetSession(), nullptr);
}

TEST(KVLCodeContext, IsMadeFromAnEnvironmentExplicitlyAndHasAVirtualDestructor) {
  static_assert(!std::is_convertible_v<const KVLCodeEnv&, KVLCodeContext>);
  static_assert(std::has_virtual_destructor_v<KVLCodeContext>);
  static_assert(!std::is_base_of_v<KVLRefCounted, KVLCodeContext>);
}

TEST(KVLCodeContext, DoesNotOwnItsEnvironments) {
  const KVLSmartPtr<KVLCodeEnv> types = new KVLCodeEnv("types");
  const TypePtr type = new TestType("T");
  types->Add(*type, "");
  { const KVLCodeContext context(*types, *types); }
  EXPECT_EQ(types->FindObject("T"), type);
}

TEST(KVLCodeContext, KeepsTheSessionItIsGiven) {
  KVLCodeSession session;
  KVLCodeContext context;
  context.SetSession(&session);
  EXPECT_EQ(context.GetSession(), &session);
  context.SetSession(nullptr);
  EXPECT_EQ(context.GetSession(), nullptr);
}

TEST(KVLCodeContext, ACopyHasEnvironmentsAndSession) {
  const KVLSmartPtr<KVLCodeEnv> types = new KVLCodeEnv();
  const KVLSmartPtr<KVLCodeEnv> conversions = new KVLCodeEnv();
  KVLCodeSession session;
  KVLCodeContext context(*types, *conversions);
  context.SetSession(&session);
  const KVLCodeContext copy(context);
  EXPECT_EQ(&copy.GetTypesCodeEnv(), types.Get());
  EXPECT_EQ(&copy.GetConversionsCodeEnv(), conversions.Get());
  EXPECT_EQ(copy.GetSession(), &session);
}

TEST(KVLCodeContextTypes, FindsTheTypeUnderItsNameOrPath) {
  World world;
  const TypePtr type = world.RegisterType("T");
  const TypePtr nested = new TestType("N");
  world.types->Add(*nested, "lib/");
  EXPECT_EQ(world.context.GetTypeFromName("T"), type);
  EXPECT_EQ(world.context.GetTypeFromName("lib/N"), nested);
}

TEST(KVLCodeContextTypes, IsNullForWhatIsNotRegistered) {
  const World world;
  EXPECT_TRUE(world.context.GetTypeFromName("T").IsNull());
  EXPECT_TRUE(world.context.GetTypeFromName("").IsNull());
  EXPECT_TRUE(world.context.GetTypeFromName("a/b/").IsNull());
}

TEST(KVLCodeContextTypes, LooksInAggregatedEnvironmentsToo) {
  World world;
  World other;
  const TypePtr type = other.RegisterType("T");
  world.types->AggregateEnv(*other.types);
  EXPECT_EQ(world.context.GetTypeFromName("T"), type);
}

TEST(KVLCodeContextTypes, TheTypeHandedOutOutlivesItsRegistration) {
  World world;
  world.RegisterType("T");
  const KVLSmartPtr<const KVLCodeType> type = world.context.GetTypeFromName("T");
  EXPECT_EQ(world.types->Remove("T"), KVLResult_Success);
  EXPECT_EQ(type->GetName(), "T");
}

// What is kept alive.

TEST(KVLCodeContextKeepAlive, ReleasesTheObjectWhenTheContextDies) {
  const int before = HostObject::nbAlive;
  {
    const KVLCodeContext context;
    context.KeepAlive(MRBBaseUnknown_var(new HostObject()));
    EXPECT_EQ(HostObject::nbAlive, before + 1);
  }
  EXPECT_EQ(HostObject::nbAlive, before);
}

TEST(KVLCodeContextKeepAlive, TheSameObjectTwiceIsOneEntry) {
  const MRBBaseUnknown_var object(new HostObject());
  const HostObject& host = static_cast<const HostObject&>(*object.Get());
  {
    const KVLCodeContext context;
    context.KeepAlive(object);
    context.KeepAlive(object);
    context.KeepAlive(MRBBaseUnknown_var(object.Get()));
    EXPECT_EQ(host.count, 2);
  }
  EXPECT_EQ(host.count, 1);
}

TEST(KVLCodeContextKeepAlive, AnEmptyHandleIsAccepted) {
  const KVLCodeContext context;
  context.KeepAlive(MRBBaseUnknown_var());
  context.KeepAlive(MRBBaseUnknown_var());
  const MRBBaseUnknown_var object(new HostObject());
  context.KeepAlive(object);
  EXPECT_EQ(static_cast<const HostObject*>(object.Get())->count, 2);
}

TEST(KVLCodeContextKeepAlive, ManyObjectsAreKeptOnceEach) {
  constexpr int Many = 1000;
  const int before = HostObject::nbAlive;
  {
    std::vector<MRBBaseUnknown_var> objects;
    const KVLCodeContext context;
    for (int i = 0; i < Many; ++i)
      objects.push_back(MRBBaseUnknown_var(new HostObject()));
    for (int round = 0; round < 2; ++round) {
      for (const MRBBaseUnknown_var& object : objects)
        context.KeepAlive(object);
    }
    for (const MRBBaseUnknown_var& object : objects)
      ASSERT_EQ(static_cast<const HostObject*>(object.Get())->count, 2);
    objects.clear();
    EXPECT_EQ(HostObject::nbAlive, before + Many);
  }
  EXPECT_EQ(HostObject::nbAlive, before);
}

TEST(KVLCodeContextKeepAlive, ACopyHoldsEachObjectOnceMore) {
  const MRBBaseUnknown_var object(new HostObject());
  const HostObject& host = static_cast<const HostObject&>(*object.Get());
  {
    const KVLCodeContext context;
    context.KeepAlive(object);
    {
      const KVLCodeContext copy(context);
      EXPECT_EQ(host.count, 3);
    }
    EXPECT_EQ(host.count, 2);
  }
  EXPECT_EQ(host.count, 1);
}

TEST(KVLCodeContextKeepAlive, WhatIsKeptAfterTheCopyIsNotShared) {
  const MRBBaseUnknown_var object(new HostObject());
  const HostObject& host = static_cast<const HostObject&>(*object.Get());
  const KVLCodeContext context;
  const KVLCodeContext copy(context);
  copy.KeepAlive(object);
  EXPECT_EQ(host.count, 2);
  context.KeepAlive(object);
  EXPECT_EQ(host.count, 3);
}

TEST(KVLCodeContextKeepAlive, ReleasesTheObjectsInTheOrderInWhichTheLastOneComesFirst) {
  std::vector<const HostObject*> journal;
  HostObject* const first = new HostObject();
  HostObject* const second = new HostObject();
  first->journal = &journal;
  second->journal = &journal;
  {
    const KVLCodeContext context;
    context.KeepAlive(MRBBaseUnknown_var(first));
    context.KeepAlive(MRBBaseUnknown_var(second));
  }
  EXPECT_EQ(journal, (std::vector<const HostObject*>{second, first}));
}

// Looks at the session of the context that keeps it alive when it dies.
class SessionWitness : public MRBBaseUnknown {
 public:
  SessionWitness(const KVLCodeContext& watched, const KVLCodeSession*& place)
      : context(watched), seen(place) {}
  ~SessionWitness() override { seen = context.GetSession(); }

 private:
  const KVLCodeContext& context;
  const KVLCodeSession*& seen;
};

TEST(KVLCodeContextKeepAlive, TheSessionIsGoneWhenTheObjectsAreReleased) {
  KVLCodeSession session;
  const KVLCodeSession* seen = &session;
  {
    KVLCodeContext context;
    context.SetSession(&session);
    context.KeepAlive(MRBBaseUnknown_var(new SessionWitness(context, seen)));
  }
  EXPECT_EQ(seen, nullptr);
}

TEST(KVLCodeContextKeepAlive, ObjectsAndBlocksAreHashedByTheLow32BitsOfTheirAddress) {
  const MRBBaseUnknown_var object(new HostObject());
  const auto address = reinterpret_cast<std::uintptr_t>(object.Get());
  EXPECT_EQ(KVLHashKey<MRBBaseUnknown_var>::Of(object), static_cast<std::uint32_t>(address));
  EXPECT_EQ(KVLHashKey<void*>::Of(object.Get()), static_cast<std::uint32_t>(address));
  EXPECT_EQ(KVLHashKey<MRBBaseUnknown_var>::Of(MRBBaseUnknown_var()), 0u);
}

TEST(KVLCodeContextKeepAlive, TakesBlocksOfTheHeap) {
  const KVLCodeContext context;
  void* const block = std::malloc(64);
  context.KeepAliveAlloc(block);
  context.KeepAliveAlloc(block);
  context.KeepAliveAlloc(nullptr);
  for (int i = 0; i < 100; ++i)
    context.KeepAliveAlloc(std::malloc(1));
  // Leak checkers and double-free checks of the heap watch the rest.
  static_cast<char*>(block)[63] = 'x';
  EXPECT_EQ(static_cast<char*>(block)[63], 'x');
}

}  // namespace
