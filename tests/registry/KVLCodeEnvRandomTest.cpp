#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "KVLCodeEnv.h"
#include "RegistryObjects.h"

namespace {

using namespace kvltest;

/// A table in storage order. It holds few entries at first, and from the ninth on is a large one
/// for good, in which a removal moves the last entry.
template <class Value>
class ModelTable {
 public:
  const Value* Find(const std::string& name) const {
    for (const auto& entry : entries) {
      if (entry.first == name) return &entry.second;
    }
    return nullptr;
  }
  void Append(const std::string& name, Value value) {
    entries.emplace_back(name, value);
    if (entries.size() > 8) large = true;
  }
  void Remove(const std::string& name) {
    for (auto place = entries.begin(); place != entries.end(); ++place) {
      if (place->first != name) continue;
      if (large) {
        *place = entries.back();
        entries.pop_back();
      } else {
        entries.erase(place);
      }
      return;
    }
  }

  std::vector<std::pair<std::string, Value>> entries;
  bool large = false;
};

/// What an environment is expected to hold.
struct ModelEnv {
  KVLCodeEnv* real;  // borrowed
  int depth;
  ModelTable<KVLCodeObject*> objects;
  ModelTable<ModelEnv*> subEnvs;
  std::vector<ModelEnv*> aggregated;
  int nbMessages = 0;
};

using Way = std::vector<const ModelEnv*>;

bool Contains(const Way& way, const ModelEnv* env) {
  return std::find(way.begin(), way.end(), env) != way.end();
}

/// Random operations on a few trees, each carried out on the model too.
class Walk {
 public:
  explicit Walk(unsigned int seed) : random(seed) {
    for (int i = 0; i < NbRoots; ++i) {
      roots.emplace_back(new KVLCodeEnv("root"));
      envs.push_back({roots.back().Get(), 0, {}, {}, {}, 0});
    }
    for (int i = 0; i < NbObjects; ++i)
      objects.push_back(MakeObject(OwnNameOf(i).c_str()));
  }
  ~Walk() {
    for (ModelEnv& env : envs) {
      for (ModelEnv* const lender : env.aggregated)
        EXPECT_EQ(env.real->UnAggregateEnv(*lender->real), KVLResult_Success);
    }
  }

  void Step() {
    ModelEnv& env = PickReceiver();
    const std::string path = PickPath(env);
    const MRBUnicodeString text(path.c_str());
    KVLCodeObject& object = *objects[static_cast<std::size_t>(Pick(NbObjects))];
    const int kind = Pick(100);
    if (kind < 35) {
      const long result = env.real->Add(object, text);
      EXPECT_EQ(result, Add(env, object, path)) << path;
    } else if (kind < 50) {
      const long result = env.real->Remove(text);
      EXPECT_EQ(result, Remove(env, path)) << path;
    } else if (kind < 65) {
      const long result = env.real->Remove(object, text);
      EXPECT_EQ(result, Remove(env, object, path)) << path;
    } else if (kind < 85) {
      ExpectFound(env, path);
    } else if (kind < 92) {
      KVLCodeEnv& real = env.real->GetSubEnv(text);
      EXPECT_EQ(&real, GetSubEnv(env, path).real) << path;
    } else if (kind < 95) {
      Aggregate(env);
    } else if (kind < 98) {
      UnAggregate(env);
    } else {
      ExpectSameContents(env);
    }
  }

  // Every environment of every tree, from top to bottom.
  void ExpectSameEverywhere() {
    for (std::size_t i = 0; i < envs.size(); ++i) {
      ModelEnv& env = envs[i];
      EXPECT_EQ(env.real->Check().GetCount(), env.nbMessages);
      ExpectSameContents(env);
      for (int name = 0; name < NbNames; ++name) {
        ExpectFound(env, NameOf(name));
        ExpectFound(env, "/" + DirOf(name % NbDirs));
      }
    }
  }

  std::size_t GetNbEnvs() const { return envs.size(); }
  int GetNbLarge() const {
    int nbLarge = 0;
    for (const ModelEnv& env : envs)
      nbLarge += env.objects.large ? 1 : 0;
    return nbLarge;
  }

 private:
  static constexpr int NbRoots = 3;
  static constexpr int NbObjects = 40;
  static constexpr int NbNames = 14;
  static constexpr int NbDirs = 3;
  static constexpr int Deepest = 2;
  static constexpr int MostAggregations = 8;

  int Pick(int below) { return std::uniform_int_distribution<int>(0, below - 1)(random); }
  static std::string NameOf(int i) {
    return (i % 3 == 0 ? "an_object_with_a_long_name_" : "o") + std::to_string(i % NbNames);
  }
  static std::string OwnNameOf(int i) { return i == 0 ? "" : i == 1 ? "d0/own" : NameOf(i); }
  static std::string DirOf(int i) {
    return (i == 0 ? "d" : "an_environment_with_a_long_name_") + std::to_string(i);
  }

  ModelEnv& PickEnv(int deepest) {
    for (;;) {
      ModelEnv& env = envs[static_cast<std::size_t>(Pick(static_cast<int>(envs.size())))];
      if (env.depth <= deepest) return env;
    }
  }
  ModelEnv& PickReceiver() { return PickEnv(Deepest); }

  std::string PickPath(const ModelEnv& env) {
    const auto separators = [this] { return std::string(Pick(20) == 0 ? 2 : 1, '/'); };
    std::string path;
    if (Pick(10) == 0) path = separators();
    for (int dirs = Pick(Deepest - env.depth + 1); dirs > 0; --dirs)
      path += DirOf(Pick(NbDirs)) + separators();
    if (Pick(10) != 0) path += NameOf(Pick(NbNames));
    return path;
  }

  ModelEnv& GetSubEnv(ModelEnv& env, const std::string& path) {
    ModelEnv* current = &env;
    std::size_t start = 0;
    while (start < path.size()) {
      const std::size_t stop = std::min(path.find('/', start), path.size());
      const std::string head = path.substr(start, stop - start);
      start = stop + 1;
      if (head.empty()) continue;
      ModelEnv* const* child = current->subEnvs.Find(head);
      current = child ? *child : &MakeChild(*current, head);
    }
    return *current;
  }
  // The real one is there by now, made by the operation that was tried on it first.
  ModelEnv& MakeChild(ModelEnv& parent, const std::string& name) {
    const EnvPtr real = parent.real->FindSubEnv(name.c_str());
    if (!real) throw std::logic_error("the environment " + name + " was not made");
    envs.push_back({real.Get(), parent.depth + 1, {}, {}, {}, 0});
    parent.subEnvs.Append(name, &envs.back());
    return envs.back();
  }

  std::pair<ModelEnv*, std::string> Resolve(ModelEnv& env, const std::string& path) {
    const std::size_t separator = path.rfind('/');
    if (separator == std::string::npos) return {&env, path};
    return {&GetSubEnv(env, path.substr(0, separator)), path.substr(separator + 1)};
  }
  std::pair<ModelEnv*, std::string> Resolve(ModelEnv& env, const KVLCodeObject& object,
                                            const std::string& path) {
    const auto resolved = Resolve(env, path);
    if (!resolved.second.empty()) return resolved;
    return Resolve(*resolved.first, object.GetName().ConvertToChar());
  }

  long Add(ModelEnv& env, KVLCodeObject& object, const std::string& path) {
    const auto resolved = Resolve(env, object, path);
    if (resolved.first->objects.Find(resolved.second)) {
      ++resolved.first->nbMessages;
      return KVLResult_Failure;
    }
    resolved.first->objects.Append(resolved.second, &object);
    return KVLResult_Success;
  }
  long Remove(ModelEnv& env, const std::string& path) {
    const auto resolved = Resolve(env, path);
    if (!resolved.first->objects.Find(resolved.second)) return KVLResult_Failure;
    resolved.first->objects.Remove(resolved.second);
    return KVLResult_Success;
  }
  long Remove(ModelEnv& env, const KVLCodeObject& object, const std::string& path) {
    const auto resolved = Resolve(env, object, path);
    KVLCodeObject* const* held = resolved.first->objects.Find(resolved.second);
    if (!held || *held != &object) return KVLResult_Failure;
    resolved.first->objects.Remove(resolved.second);
    return KVLResult_Success;
  }

  template <class Value>
  Value Find(ModelEnv& env, const std::string& path, ModelTable<Value> ModelEnv::*table, Way way) {
    const auto resolved = Resolve(env, path);
    if (const Value* found = (resolved.first->*table).Find(resolved.second)) return *found;
    if (Contains(way, &env)) return nullptr;
    way.push_back(&env);
    for (ModelEnv* const lender : env.aggregated) {
      if (const Value found = Find(*lender, path, table, way)) return found;
    }
    return nullptr;
  }

  void ExpectFound(ModelEnv& env, const std::string& path) {
    const ObjectPtr object = env.real->FindObject(path.c_str());
    EXPECT_EQ(object.Get(), Find(env, path, &ModelEnv::objects, {})) << path;
    const EnvPtr child = env.real->FindSubEnv(path.c_str());
    const ModelEnv* const expected = Find(env, path, &ModelEnv::subEnvs, {});
    EXPECT_EQ(child.Get(), expected ? expected->real : nullptr) << path;
  }

  void Aggregate(ModelEnv& env) {
    if (nbAggregations == MostAggregations) return;
    ModelEnv& lender = PickEnv(1);
    EXPECT_EQ(env.real->AggregateEnv(*lender.real), KVLResult_Success);
    env.aggregated.push_back(&lender);
    ++nbAggregations;
  }
  // Ends an aggregation that there is, or fails to end one that there is not.
  void UnAggregate(ModelEnv& picked) {
    ModelEnv* env = &picked;
    for (ModelEnv& each : envs) {
      if (!each.aggregated.empty() && Pick(4) == 0) env = &each;
    }
    ModelEnv& lender = env->aggregated.empty() || Pick(4) == 0
                           ? PickEnv(1)
                           : *env->aggregated[static_cast<std::size_t>(
                                 Pick(static_cast<int>(env->aggregated.size())))];
    const auto place = std::find(env->aggregated.begin(), env->aggregated.end(), &lender);
    const bool isThere = place != env->aggregated.end();
    EXPECT_EQ(env->real->UnAggregateEnv(*lender.real),
              isThere ? KVLResult_Success : KVLResult_InvalidArgument);
    if (!isThere) return;
    env->aggregated.erase(place);
    --nbAggregations;
  }

  template <class Value>
  static void Collect(const ModelEnv& env, ModelTable<Value> ModelEnv::*table, Way way,
                      std::vector<std::pair<std::string, Value>>& all) {
    all.insert(all.end(), (env.*table).entries.begin(), (env.*table).entries.end());
    way.push_back(&env);
    for (const ModelEnv* const lender : env.aggregated) {
      if (!Contains(way, lender)) Collect(*lender, table, way, all);
    }
  }

  static void ExpectSameContents(const ModelEnv& env) {
    std::vector<std::pair<std::string, KVLCodeObject*>> expectedObjects;
    Collect(env, &ModelEnv::objects, {}, expectedObjects);
    std::vector<std::pair<std::string, KVLCodeObject*>> realObjects;
    for (const auto& entry : env.real->IterOnObjects())
      realObjects.emplace_back(entry.key.ConvertToChar(), entry.value.Get());
    EXPECT_EQ(realObjects, expectedObjects);

    std::vector<std::pair<std::string, ModelEnv*>> expectedChildren;
    Collect(env, &ModelEnv::subEnvs, {}, expectedChildren);
    std::size_t i = 0;
    for (const auto& entry : env.real->IterOnSubEnvs()) {
      ASSERT_LT(i, expectedChildren.size());
      EXPECT_EQ(entry.key, expectedChildren[i].first.c_str());
      EXPECT_EQ(entry.value.Get(), expectedChildren[i].second->real);
      ++i;
    }
    EXPECT_EQ(i, expectedChildren.size());
  }

  std::mt19937 random;
  std::vector<EnvPtr> roots;
  std::deque<ModelEnv> envs;  // keeps addresses
  std::vector<TrackedPtr> objects;
  int nbAggregations = 0;
};

class KVLCodeEnvRandom : public RegistryCase, public testing::WithParamInterface<unsigned int> {};

TEST_P(KVLCodeEnvRandom, OperationsGiveWhatASimpleModelGives) {
  Walk walk(GetParam());
  constexpr int NbSteps = 100000;
  for (int step = 0; step < NbSteps; ++step) {
    walk.Step();
    if (step % 10000 == 0) walk.ExpectSameEverywhere();
    if (HasFailure()) FAIL() << "seed " << GetParam() << ", step " << step;
  }
  walk.ExpectSameEverywhere();
  EXPECT_GT(walk.GetNbEnvs(), 50u);
  EXPECT_GT(walk.GetNbLarge(), 10);
}

INSTANTIATE_TEST_SUITE_P(Seeds, KVLCodeEnvRandom, testing::Values(1u, 20u, 300u, 4000u));

}  // namespace
