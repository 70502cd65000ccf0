#include <gtest/gtest.h>

#include <cstddef>
#include <new>
#include <random>
#include <string>
#include <vector>

#include "KVLCodeContext.h"
#include "support/TestObjects.h"

// A context may remember what it found; it must find what is there.

namespace {

using kvltest::FunctionPtr;
using kvltest::MakeFunction;
using kvltest::MakeText;
using kvltest::TestType;
using kvltest::TextPtr;
using kvltest::TypePtr;
using kvltest::Values;
using kvltest::World;

// A conversion that turns anything of `source` into `text`.
FunctionPtr Conversion(const MRBUnicodeString& source, const MRBUnicodeString& target,
                       const MRBUnicodeString& text) {
  FunctionPtr function = MakeFunction(target, target, {{"from", source.ConvertToChar()}},
                                      [target, text](Values&) { return MakeText(target, text); });
  return function;
}

// What a value of the source type becomes; "" where there is no conversion.
MRBUnicodeString Converted(const KVLCodeContext& context, const MRBUnicodeString& source,
                           const MRBUnicodeString& target) {
  const TextPtr to = MakeText(target);
  return context.Convert(*MakeText(source, "source"), *to) == KVLResult_Success
             ? to->content
             : MRBUnicodeString();
}

class KVLCodeContextLookups : public testing::Test {
 protected:
  FunctionPtr Add(const char* source, const char* target, const char* text) {
    return AddTo(*world.conversions, source, target, text);
  }
  static FunctionPtr AddTo(KVLCodeEnv& env, const MRBUnicodeString& source,
                           const MRBUnicodeString& target, const char* text) {
    FunctionPtr function = Conversion(source, target, text);
    EXPECT_EQ(env.Add(*function, source + "/" + target), KVLResult_Success);
    return function;
  }
  MRBUnicodeString Get(const char* source, const char* target) const {
    return Converted(world.context, source, target);
  }
  // Nothing need be remembered before there have been some lookups.
  static void LookAround(const KVLCodeContext& context) {
    for (int i = 0; i < 50; ++i) {
      EXPECT_EQ(Converted(context, "neither", "nor"), "");
      EXPECT_TRUE(context.GetTypeFromName("neither").IsNull());
    }
  }

  void SetUp() override { LookAround(world.context); }

  World world;
};

TEST_F(KVLCodeContextLookups, AConversionThatComesLaterIsFound) {
  EXPECT_EQ(Get("T", "U"), "");
  EXPECT_EQ(Get("T", "U"), "");
  Add("T", "U", "late");
  EXPECT_EQ(Get("T", "U"), "late");
}

TEST_F(KVLCodeContextLookups, AConversionThatGoesIsFoundNoMore) {
  const FunctionPtr function = Add("T", "U", "first");
  EXPECT_EQ(Get("T", "U"), "first");
  EXPECT_EQ(world.conversions->Remove("T/U"), KVLResult_Success);
  EXPECT_EQ(Get("T", "U"), "");
  EXPECT_EQ(function->GetNbReferences(), 1);
}

TEST_F(KVLCodeContextLookups, AConversionThatIsReplacedGivesWay) {
  const FunctionPtr first = Add("T", "U", "first");
  EXPECT_EQ(Get("T", "U"), "first");
  EXPECT_EQ(world.conversions->Remove(*first, "T/U"), KVLResult_Success);
  Add("T", "U", "second");
  EXPECT_EQ(Get("T", "U"), "second");
}

TEST_F(KVLCodeContextLookups, TheChildOfTheSourceMayBeChangedByItself) {
  const KVLSmartPtr<KVLCodeEnv> child = &world.conversions->GetSubEnv("T");
  EXPECT_EQ(Get("T", "U"), "");
  const FunctionPtr function = Conversion("T", "U", "by itself");
  child->Add(*function, "U");
  EXPECT_EQ(Get("T", "U"), "by itself");
  child->Remove("U");
  EXPECT_EQ(Get("T", "U"), "");
}

TEST_F(KVLCodeContextLookups, AConversionOfTheSourceComesBeforeTheAncestorsThatServedSoFar) {
  world.RegisterType("A");
  world.RegisterType("B", "A");
  Add("A", "U", "of A");
  EXPECT_EQ(Get("B", "U"), "of A");
  const FunctionPtr own = Add("B", "U", "of B");
  EXPECT_EQ(Get("B", "U"), "of B");
  world.conversions->Remove(*own, "B/U");
  EXPECT_EQ(Get("B", "U"), "of A");
}

TEST_F(KVLCodeContextLookups, WhatIsNoFunctionMayBecomeOne) {
  const KVLSmartPtr<KVLCodeObject> object = new kvltest::TextValue("U", "text");
  world.conversions->Add(object, "T/U");
  EXPECT_EQ(Get("T", "U"), "");
  world.conversions->Remove("T/U");
  Add("T", "U", "function");
  EXPECT_EQ(Get("T", "U"), "function");
}

TEST_F(KVLCodeContextLookups, AnAggregatedEnvironmentServesAsLongAsItIsAggregated) {
  const KVLSmartPtr<KVLCodeEnv> other = new KVLCodeEnv("other");
  AddTo(*other, "T", "U", "aggregated");
  EXPECT_EQ(Get("T", "U"), "");
  world.conversions->AggregateEnv(*other);
  EXPECT_EQ(Get("T", "U"), "aggregated");
  world.conversions->UnAggregateEnv(*other);
  EXPECT_EQ(Get("T", "U"), "");
}

TEST_F(KVLCodeContextLookups, AConversionOfAnAggregatedEnvironmentComesAndGoes) {
  const KVLSmartPtr<KVLCodeEnv> other = new KVLCodeEnv("other");
  world.conversions->AggregateEnv(*other);
  EXPECT_EQ(Get("T", "U"), "");
  AddTo(*other, "T", "U", "aggregated");
  EXPECT_EQ(Get("T", "U"), "aggregated");
  const FunctionPtr own = Add("T", "U", "own");
  EXPECT_EQ(Get("T", "U"), "own");
  world.conversions->Remove(*own, "T/U");
  EXPECT_EQ(Get("T", "U"), "aggregated");
  other->Remove("T/U");
  EXPECT_EQ(Get("T", "U"), "");
}

TEST_F(KVLCodeContextLookups, WhatTheChildOfTheSourceAggregatesDoesNotCount) {
  const KVLSmartPtr<KVLCodeEnv> other = new KVLCodeEnv("other");
  other->Add(*Conversion("T", "U", "of the child"), "U");
  EXPECT_EQ(Get("T", "U"), "");
  world.conversions->GetSubEnv("T").AggregateEnv(*other);
  EXPECT_EQ(Get("T", "U"), "");
}

TEST_F(KVLCodeContextLookups, AParentThatChangesLeadsElsewhere) {
  const TypePtr type = world.RegisterType("B", "A1");
  Add("A1", "U", "of A1");
  Add("A2", "U", "of A2");
  EXPECT_EQ(Get("B", "U"), "of A1");
  type->parent = "A2";
  EXPECT_EQ(Get("B", "U"), "of A2");
  type->parent = "";
  EXPECT_EQ(Get("B", "U"), "");
}

TEST_F(KVLCodeContextLookups, ATypeThatIsReplacedGivesWay) {
  world.RegisterType("B", "A1");
  Add("A1", "U", "of A1");
  Add("A2", "U", "of A2");
  EXPECT_EQ(Get("B", "U"), "of A1");
  world.types->Remove("B");
  EXPECT_EQ(Get("B", "U"), "");
  EXPECT_TRUE(world.context.GetTypeFromName("B").IsNull());
  const TypePtr second = world.RegisterType("B", "A2");
  EXPECT_EQ(Get("B", "U"), "of A2");
  EXPECT_EQ(world.context.GetTypeFromName("B"), second);
}

TEST_F(KVLCodeContextLookups, ATypeThatComesLaterIsFound) {
  EXPECT_TRUE(world.context.GetTypeFromName("T").IsNull());
  EXPECT_TRUE(world.context.GetTypeFromName("T").IsNull());
  const TypePtr type = world.RegisterType("T");
  EXPECT_EQ(world.context.GetTypeFromName("T"), type);
  EXPECT_EQ(world.context.GetTypeFromName("T"), type);
  EXPECT_EQ(type->GetNbReferences(), 2);
}

TEST_F(KVLCodeContextLookups, TypesOfAnAggregatedEnvironmentComeAndGo) {
  const KVLSmartPtr<KVLCodeEnv> other = new KVLCodeEnv("other");
  const TypePtr borrowed = new TestType("T");
  other->Add(*borrowed, "");
  EXPECT_TRUE(world.context.GetTypeFromName("T").IsNull());
  world.types->AggregateEnv(*other);
  EXPECT_EQ(world.context.GetTypeFromName("T"), borrowed);
  const TypePtr own = world.RegisterType("T");
  EXPECT_EQ(world.context.GetTypeFromName("T"), own);
  world.types->Remove("T");
  EXPECT_EQ(world.context.GetTypeFromName("T"), borrowed);
  world.types->UnAggregateEnv(*other);
  EXPECT_TRUE(world.context.GetTypeFromName("T").IsNull());
}

TEST_F(KVLCodeContextLookups, ATypeOfAnAggregatedEnvironmentLeadsToItsParentAsLongAsItServes) {
  const KVLSmartPtr<KVLCodeEnv> other = new KVLCodeEnv("other");
  const TypePtr borrowed = new TestType("B", "A1");
  other->Add(*borrowed, "");
  Add("A1", "U", "of A1");
  Add("A2", "U", "of A2");
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(Get("B", "U"), "");
    EXPECT_EQ(Get("B", "U"), "");
    world.types->AggregateEnv(*other);
    EXPECT_EQ(Get("B", "U"), "of A1");
    EXPECT_EQ(Get("B", "U"), "of A1");
    const TypePtr own = world.RegisterType("B", "A2");
    EXPECT_EQ(Get("B", "U"), "of A2");
    world.types->Remove("B");
    EXPECT_EQ(Get("B", "U"), "of A1");
    world.types->UnAggregateEnv(*other);
  }
}

TEST_F(KVLCodeContextLookups, ContextsOnOtherTypesGoUpOtherParents) {
  const World other;
  const KVLCodeContext mixed(*other.types, *world.conversions);
  world.RegisterType("B", "A1");
  const TypePtr theirs = new TestType("B", "A2");
  Add("A1", "U", "of A1");
  Add("A2", "U", "of A2");
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(Get("B", "U"), "of A1");
    EXPECT_EQ(Converted(mixed, "B", "U"), i == 1 ? "of A2" : "");
    EXPECT_EQ(Converted(mixed, "B", "U"), i == 1 ? "of A2" : "");
    if (i == 0) other.types->Add(*theirs, "");
    if (i == 1) other.types->Remove("B");
  }
}

TEST_F(KVLCodeContextLookups, ATypeBelowAnotherEnvironmentComesAndGoes) {
  Add("A", "U", "of A");
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(Get("lib/B", "U"), "");
    EXPECT_EQ(Get("lib/B", "U"), "");
    const TypePtr type = new TestType("B", "A");
    world.types->Add(*type, "lib/");
    EXPECT_EQ(Get("lib/B", "U"), "of A");
    world.types->GetSubEnv("lib").Remove("B");
  }
}

TEST_F(KVLCodeContextLookups, NamesMayBePaths) {
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(Get("lib/T", "U"), "");
    EXPECT_EQ(Get("T", "lib/U"), "");
  }
  EXPECT_TRUE(world.context.GetTypeFromName("lib/T").IsNull());
  Add("lib/T", "U", "source below");
  Add("T", "lib/U", "target below");
  const TypePtr type = new TestType("T");
  world.types->Add(*type, "lib/T");
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(Get("lib/T", "U"), "source below");
    EXPECT_EQ(Get("/lib//T/", "U"), "");  // a parameter of another type name
    EXPECT_EQ(Get("T", "lib/U"), "target below");
    EXPECT_EQ(world.context.GetTypeFromName("lib/T"), type);
    EXPECT_EQ(world.context.GetTypeFromName("/lib/T"), type);
  }
  world.conversions->Remove("lib/T/U");
  world.conversions->Remove("T/lib/U");
  world.types->Remove("lib/T");
  EXPECT_EQ(Get("lib/T", "U"), "");
  EXPECT_EQ(Get("T", "lib/U"), "");
  EXPECT_TRUE(world.context.GetTypeFromName("lib/T").IsNull());
}

TEST_F(KVLCodeContextLookups, EqualNamesAreEqualHoweverTheyCameAbout) {
  const FunctionPtr function = Add("source", "target", "found");
  MRBUnicodeString source("resource of a former text");
  source = "resource";
  source.Remove(0, 2);
  MRBUnicodeString target("targets");
  target.Remove(6, 1);
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(Get("source", "target"), "found");
    EXPECT_EQ(Converted(world.context, source, target), "found");
  }
  world.conversions->Remove(*function, "source/target");
  EXPECT_EQ(Converted(world.context, source, target), "");
}

TEST_F(KVLCodeContextLookups, LongNamesAreAsGoodAsShortOnes) {
  const char* const source = "a source type whose name is long";
  const char* const target = "a target type whose name is long";
  EXPECT_EQ(Get(source, target), "");
  const FunctionPtr function = Add(source, target, "found");
  for (int i = 0; i < 3; ++i)
    EXPECT_EQ(Get(source, target), "found");
  EXPECT_EQ(Get(source, "a target type whose name is lonG"), "");
  world.conversions->Remove(*function, MRBUnicodeString(source) + "/" + target);
  EXPECT_EQ(Get(source, target), "");
}

TEST_F(KVLCodeContextLookups, ContextsOnDifferentEnvironmentsKeepApart) {
  const World other;
  LookAround(other.context);
  Add("T", "U", "here");
  AddTo(*other.conversions, "T", "U", "there");
  const TypePtr here = world.RegisterType("T");
  const KVLCodeContext mixed(*other.types, *world.conversions);
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(Get("T", "U"), "here");
    EXPECT_EQ(Converted(other.context, "T", "U"), "there");
    EXPECT_EQ(Converted(mixed, "T", "U"), "here");
    EXPECT_EQ(world.context.GetTypeFromName("T"), here);
    EXPECT_TRUE(mixed.GetTypeFromName("T").IsNull());
  }
}

TEST_F(KVLCodeContextLookups, OneEnvironmentMayHoldTypesAndConversions) {
  const KVLSmartPtr<KVLCodeEnv> both = new KVLCodeEnv("both");
  const KVLCodeContext context(*both, *both);
  LookAround(context);
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(Converted(context, "T", ""), "");
    EXPECT_TRUE(context.GetTypeFromName("T").IsNull());
  }
  const TypePtr type = new TestType("T");
  both->Add(*type, "");
  const FunctionPtr function = Conversion("T", "", "to nothing");
  both->Add(*function, "T/");
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(context.GetTypeFromName("T"), type);
    EXPECT_EQ(Converted(context, "T", ""), "to nothing");
  }
}

/// Environments that are made one after the other at one address.
class PlacedEnv : public KVLCodeEnv {
 public:
  using KVLCodeEnv::KVLCodeEnv;

  static void* operator new(std::size_t) { return place; }
  static void operator delete(void*) {}

 private:
  alignas(std::max_align_t) inline static char place[256];
};
static_assert(sizeof(PlacedEnv) <= 256);

TEST_F(KVLCodeContextLookups, AnotherEnvironmentAtTheSameAddressIsAnotherEnvironment) {
  const KVLCodeEnv* address = nullptr;
  for (const char* const text : {"first", "second", "third"}) {
    const KVLSmartPtr<KVLCodeEnv> env = new PlacedEnv("placed");
    EXPECT_TRUE(!address || env == address);
    address = env.Get();
    const KVLCodeContext context(*env, *env);
    LookAround(context);
    EXPECT_EQ(Converted(context, "T", "U"), "");
    EXPECT_TRUE(context.GetTypeFromName("T").IsNull());
    AddTo(*env, "T", "U", text);
    const TypePtr type = new TestType("T");
    env->Add(*type, "");
    for (int i = 0; i < 2; ++i) {
      EXPECT_EQ(Converted(context, "T", "U"), text);
      EXPECT_EQ(context.GetTypeFromName("T"), type);
    }
  }
}

// An object that converts in an environment while it dies.
class LastWords : public KVLCodeObject {
 public:
  LastWords(const KVLCodeEnv& deathPlace, int& numberOfFound)
      : KVLCodeObject("last words"), env(deathPlace), nbFound(numberOfFound) {}
  ~LastWords() override {
    const KVLCodeContext context(env, env);
    if (!Converted(context, "T", "U").IsEmpty()) ++nbFound;
    if (context.GetTypeFromName("T")) ++nbFound;
  }

 private:
  const KVLCodeEnv& env;
  int& nbFound;
};

TEST_F(KVLCodeContextLookups, AnEnvironmentThatDiesFindsNothingThatIsGone) {
  int nbFound = 0;
  {
    const KVLSmartPtr<KVLCodeEnv> env = new KVLCodeEnv("dying");
    AddTo(*env, "T", "U", "found");
    env->Add(KVLSmartPtr<KVLCodeObject>(new TestType("T")), "");
    env->Add(KVLSmartPtr<KVLCodeObject>(new LastWords(*env, nbFound)), "S/last");
    env->Add(KVLSmartPtr<KVLCodeObject>(new LastWords(*env, nbFound)), "T/last");
    env->Add(KVLSmartPtr<KVLCodeObject>(new LastWords(*env, nbFound)), "last");
    const KVLCodeContext context(*env, *env);
    LookAround(context);
    EXPECT_EQ(Converted(context, "T", "U"), "found");
    EXPECT_FALSE(context.GetTypeFromName("T").IsNull());
  }
  // The children go first, all at once; the type is still there then.
  EXPECT_EQ(nbFound, 2);
}

TEST_F(KVLCodeContextLookups, ManyPairsDoNotGetMixedUp) {
  constexpr int NbNames = 40;
  std::vector<MRBUnicodeString> names;
  for (int i = 0; i < NbNames; ++i)
    names.emplace_back(("type" + std::to_string(i)).c_str());
  for (int round = 0; round < 2; ++round) {
    for (const MRBUnicodeString& source : names) {
      for (const MRBUnicodeString& target : names) {
        if (source == target) continue;
        const MRBUnicodeString text = source + " to " + target;
        if (round == 0) {
          world.conversions->Add(*Conversion(source, target, text), source + "/" + target);
        }
        ASSERT_EQ(Converted(world.context, source, target), text);
      }
    }
  }
}

// Changes at random; each lookup is compared with what the environments say when they are asked.
TEST_F(KVLCodeContextLookups, FindWhatTheEnvironmentsHoldWhateverHappensToThem) {
  constexpr unsigned int Seed = 20240229;
  constexpr int NbOperations = 200000;
  SCOPED_TRACE(Seed);
  std::mt19937 random(Seed);
  const auto pick = [&random](std::size_t n) { return static_cast<std::size_t>(random() % n); };

  const std::vector<MRBUnicodeString> names = {
      "A", "B", "C", "D", "int", "double", "lib/E", "a type whose name is long"};
  std::vector<KVLSmartPtr<KVLCodeEnv>> envs;
  std::vector<TypePtr> types;
  std::vector<FunctionPtr> functions;
  for (int i = 0; i < 4; ++i)
    envs.emplace_back(new KVLCodeEnv("env"));
  for (const MRBUnicodeString& name : names) {
    for (int i = 0; i < 2; ++i) {
      types.emplace_back(new TestType(name));
      functions.push_back(Conversion(name, "U", name));
    }
  }

  // Parents come later among the names, so that there is no loop.
  const auto pickParent = [&](std::size_t which) {
    const std::size_t parent = which / 2 + 1 + pick(names.size());
    return parent < names.size() ? names[parent] : MRBUnicodeString();
  };

  int nbConverted = 0;
  for (int operation = 0; operation < NbOperations; ++operation) {
    // Aggregations go up only, so that there is no loop.
    const std::size_t low = pick(envs.size() - 1);
    const std::size_t high = low + 1 + pick(envs.size() - 1 - low);
    const std::size_t which = pick(types.size());
    KVLCodeEnv& env = *envs[pick(envs.size())];
    switch (pick(16)) {
      case 0:
        env.Add(*types[which], "");
        break;
      case 1:
        env.Remove(*types[which], "");
        break;
      case 2:
        env.Add(*functions[which], names[which / 2] + "/U");
        break;
      case 3:
        env.Remove(*functions[which], names[which / 2] + "/U");
        break;
      case 4:
        if (pick(4) == 0) envs[low]->AggregateEnv(*envs[high]);
        break;
      case 5:
        envs[low]->UnAggregateEnv(*envs[high]);
        break;
      case 6:
        types[which]->parent = pickParent(which);
        break;
      case 7:
        if (pick(50) == 0) {
          for (const KVLSmartPtr<KVLCodeEnv>& other : envs) {
            while (other->UnAggregateEnv(env) == KVLResult_Success) {
            }
          }
          for (KVLSmartPtr<KVLCodeEnv>& other : envs)
            if (other == &env) other = new KVLCodeEnv("env");
        }
        break;
      default: {
        const KVLCodeEnv& typesEnv = env;
        const KVLCodeEnv& conversionsEnv = *envs[pick(envs.size())];
        const KVLCodeContext context(typesEnv, conversionsEnv);
        MRBUnicodeString name = names[pick(names.size())];
        ASSERT_EQ(static_cast<const KVLCodeObject*>(context.GetTypeFromName(name).Get()),
                  typesEnv.FindObject(name).Get());
        const MRBUnicodeString converted = Converted(context, name, "U");
        // The first that is there, up the parents.
        KVLSmartPtr<KVLCodeObject> function;
        while (!name.IsEmpty()) {
          function = conversionsEnv.FindObject(name + "/U");
          if (function) break;
          const KVLSmartPtr<KVLCodeObject> type = typesEnv.FindObject(name);
          if (!type) break;
          name = static_cast<const TestType&>(*type).parent;
        }
        ASSERT_EQ(converted, function ? name : MRBUnicodeString());
        if (function) ++nbConverted;
      }
    }
  }
  EXPECT_GT(nbConverted, NbOperations / 20);
}

}  // namespace
