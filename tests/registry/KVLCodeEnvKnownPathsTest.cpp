// Environments remember where paths led. Ten million random operations, each carried out on a model
// that remembers nothing, and the cases in which what was remembered has to be dropped.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <string>
#include <vector>

#include "KVLCodeEnv.h"
#include "RegistryObjects.h"

namespace {

using namespace kvltest;

constexpr int NbDirs = 2;
constexpr int NbNames = 220;  // the first of which are those of environments too
constexpr int NbFrequentNames = 14;
constexpr int NoName = NbNames;  // where a path ends with a separator, or is empty
constexpr int NbObjects = 60;
constexpr int NbRoots = 3;
constexpr int NbHeld = 2;
constexpr int Deepest = 3;
constexpr int MostAggregations = 5;

constexpr int Nothing = -1;

/// A path, and what it means.
struct Path {
  std::array<char, 200> text;
  int length = 0;
  std::array<int, Deepest> dirs;
  int nbDirs = 0;
  int name = NoName;

  void Append(const std::string& part) {
    std::copy(part.begin(), part.end(), text.begin() + length);
    length += static_cast<int>(part.size());
  }
  MRBUnicodeString GetText() const { return MRBUnicodeString(text.data(), length); }
};

/// What an environment is expected to hold.
struct Model {
  KVLCodeEnv* real;  // borrowed
  int depth;
  std::array<int, NbDirs> children;      // numbers of models, or `Nothing`
  std::array<int, NbNames + 1> objects;  // numbers of objects, or `Nothing`
  std::vector<int> aggregated = {};      // numbers of models
  int nbMessages = 0;
  bool isBeingSearched = false;
};

/// A few trees, and environments that are held besides, so that they outlive the tree that they are
/// part of.
class Forest {
 public:
  explicit Forest(std::uint64_t seed) : state(seed) {
    for (int i = 0; i < NbNames; ++i)
      names.push_back((i % 3 == 1 ? "a_name_too_long_for_the_inside_" : "n") + std::to_string(i));
    for (int i = 0; i < NbObjects; ++i)
      objects.push_back(MakeObject(OwnNameOf(i).c_str()));
    Plant();
  }
  ~Forest() { EndAggregations(); }
  Forest(const Forest&) = delete;
  Forest& operator=(const Forest&) = delete;

  // Trees without anything.
  void Plant() {
    EndAggregations();
    held.clear();
    models.clear();
    alive.clear();
    for (int i = 0; i < NbRoots; ++i) {
      held.emplace_back(new KVLCodeEnv("root"));
      Append(*held.back(), 0);
    }
  }

  // Lets a tree go, but for some environments of it with what lies below them.
  void Fell() {
    EndAggregations();
    const int root = Pick(static_cast<int>(held.size()));
    for (int i = 0; i < NbHeld; ++i)
      held.emplace_back(models[static_cast<std::size_t>(PickAlive())].real);
    held.erase(held.begin() + root);
    std::vector<int> reached;
    for (const EnvPtr& env : held)
      Reach(NumberOf(*env), reached);
    alive = reached;
  }

  void Step() {
    int receiver = PickAlive();
    while (At(receiver).depth > Deepest)
      receiver = PickAlive();
    KVLCodeEnv& real = *At(receiver).real;
    const Path path = PickPath(Deepest - At(receiver).depth);
    const MRBUnicodeString text = path.GetText();
    const int kind = Pick(1000);
    if (kind < 430) {
      ExpectObject(receiver, path, text);
    } else if (kind < 560) {
      ExpectChild(receiver, path, text);
    } else if (kind < 760) {
      const int object = Pick(NbObjects);
      const long result = real.Add(*objects[static_cast<std::size_t>(object)], text);
      EXPECT_EQ(result, Add(receiver, path, object)) << text;
    } else if (kind < 860) {
      const long result = real.Remove(text);
      EXPECT_EQ(result, Remove(receiver, path)) << text;
    } else if (kind < 950) {
      const int object = Pick(NbObjects);
      const long result = real.Remove(*objects[static_cast<std::size_t>(object)], text);
      EXPECT_EQ(result, Remove(receiver, path, object)) << text;
    } else if (kind < 980) {
      Path whole = path;
      if (path.name >= NbDirs) {
        whole.length -= path.name == NoName ? 0 : static_cast<int>(NameOf(path.name).size());
        whole.name = NoName;
      }
      const KVLCodeEnv& child = real.GetSubEnv(whole.GetText());
      EXPECT_EQ(&child, At(GetSubEnv(receiver, whole)).real) << text;
    } else if (kind < 990) {
      Aggregate(receiver);
    } else {
      EndAggregation();
    }
  }

  // Looks from every environment for everything in it and below it.
  void ExpectSameEverywhere() {
    const std::vector<int> receivers = alive;
    for (const int receiver : receivers) {
      EXPECT_EQ(At(receiver).real->Check().GetCount(), At(receiver).nbMessages);
      Path path;
      ExpectBelow(receiver, path);
    }
  }

  int GetNbAlive() const { return static_cast<int>(alive.size()); }
  int GetMostObjects() const {
    std::ptrdiff_t most = 0;
    for (const int number : alive) {
      const auto& table = models[static_cast<std::size_t>(number)].objects;
      most = std::max(most, NbNames + 1 - std::count(table.begin(), table.end(), Nothing));
    }
    return static_cast<int>(most);
  }

 private:
  // A few bits of a counter, well mixed: most of the time is to be the registry's.
  int Pick(int below) {
    state += 0x9E3779B97F4A7C15u;
    std::uint64_t mixed = (state ^ (state >> 30)) * 0xBF58476D1CE4E5B9u;
    mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBu;
    return static_cast<int>((mixed >> 40) % static_cast<std::uint64_t>(below));
  }

  Model& At(int number) { return models[static_cast<std::size_t>(number)]; }
  const std::string& NameOf(int number) const { return names[static_cast<std::size_t>(number)]; }
  // Of objects: none, one with an environment, or a simple one.
  std::string OwnNameOf(int object) const {
    if (object == 0) return "";
    return (object % 7 == 1 ? NameOf(object % NbDirs) + "/" : "") + NameOf(object);
  }
  int PickAlive() { return alive[static_cast<std::size_t>(Pick(static_cast<int>(alive.size())))]; }

  Path PickPath(int mostDirs) {
    Path path;
    const auto separate = [&] { path.Append(Pick(32) == 0 ? "//" : "/"); };
    if (Pick(16) == 0) separate();
    for (int i = Pick(mostDirs + 1); i > 0; --i) {
      path.dirs[static_cast<std::size_t>(path.nbDirs)] = Pick(NbDirs);
      path.Append(NameOf(path.dirs[static_cast<std::size_t>(path.nbDirs++)]));
      separate();
    }
    if (Pick(16) == 0) return path;
    path.name = Pick(Pick(2) == 0 ? NbNames : NbFrequentNames);
    path.Append(NameOf(path.name));
    return path;
  }
  int Append(KVLCodeEnv& real, int depth) {
    Model model{&real, depth, {}, {}};
    model.children.fill(Nothing);
    model.objects.fill(Nothing);
    models.push_back(model);
    alive.push_back(static_cast<int>(models.size()) - 1);
    return alive.back();
  }
  int NumberOf(const KVLCodeEnv& real) {
    for (const int number : alive) {
      if (At(number).real == &real) return number;
    }
    return Nothing;
  }
  void Reach(int number, std::vector<int>& reached) {
    if (std::find(reached.begin(), reached.end(), number) != reached.end()) return;
    reached.push_back(number);
    for (const int child : At(number).children) {
      if (child != Nothing) Reach(child, reached);
    }
  }

  // The real one is there by now, made by the operation that was tried on it first.
  int Descend(int number, int dir) {
    const int child = At(number).children[static_cast<std::size_t>(dir)];
    if (child != Nothing) return child;
    const EnvPtr real = At(number).real->FindSubEnv(NameOf(dir).c_str());
    if (!real) {
      ADD_FAILURE() << NameOf(dir) << " was not made";
      return number;
    }
    const int made = Append(*real, At(number).depth + 1);
    At(number).children[static_cast<std::size_t>(dir)] = made;
    return made;
  }
  int EnvOf(int number, const Path& path) {
    for (int i = 0; i < path.nbDirs; ++i)
      number = Descend(number, path.dirs[static_cast<std::size_t>(i)]);
    return number;
  }
  int GetSubEnv(int number, const Path& path) {
    number = EnvOf(number, path);
    return path.name == NoName ? number : Descend(number, path.name);
  }

  // Where an object is held under a name. A path without a name ends with the object's own.
  int& HolderOf(int env, int name) { return At(env).objects[static_cast<std::size_t>(name)]; }
  int PlaceOf(int number, const Path& path, int object, int& name) {
    int env = EnvOf(number, path);
    name = path.name;
    if (name != NoName || object == 0) return env;
    if (object % 7 == 1) env = Descend(env, object % NbDirs);
    name = object;
    return env;
  }

  long Add(int number, const Path& path, int object) {
    int name = NoName;
    const int env = PlaceOf(number, path, object, name);
    int& holder = HolderOf(env, name);
    if (holder != Nothing) {
      ++At(env).nbMessages;
      return KVLResult_Failure;
    }
    holder = object;
    return KVLResult_Success;
  }
  long Remove(int number, const Path& path) {
    int& holder = HolderOf(EnvOf(number, path), path.name);
    if (holder == Nothing) return KVLResult_Failure;
    holder = Nothing;
    return KVLResult_Success;
  }
  long Remove(int number, const Path& path, int object) {
    int name = NoName;
    const int env = PlaceOf(number, path, object, name);
    int& holder = HolderOf(env, name);
    if (holder != object) return KVLResult_Failure;
    holder = Nothing;
    return KVLResult_Success;
  }

  const KVLCodeObject* FindObject(int number, const Path& path) {
    const int found = HolderOf(EnvOf(number, path), path.name);
    if (found != Nothing) return objects[static_cast<std::size_t>(found)].Get();
    return FindBorrowed<const KVLCodeObject>(number, path, &Forest::FindObject);
  }
  const KVLCodeEnv* FindChild(int number, const Path& path) {
    const int env = EnvOf(number, path);
    if (path.name < NbDirs) {
      const int child = At(env).children[static_cast<std::size_t>(path.name)];
      if (child != Nothing) return At(child).real;
    }
    return FindBorrowed<const KVLCodeEnv>(number, path, &Forest::FindChild);
  }
  template <class Found>
  Found* FindBorrowed(int number, const Path& path, Found* (Forest::*find)(int, const Path&)) {
    if (At(number).isBeingSearched) return nullptr;
    At(number).isBeingSearched = true;
    Found* found = nullptr;
    for (std::size_t i = 0; !found && i < At(number).aggregated.size(); ++i)
      found = (this->*find)(At(number).aggregated[i], path);
    At(number).isBeingSearched = false;
    return found;
  }

  void ExpectObject(int receiver, const Path& path, const MRBUnicodeString& text) {
    const ObjectPtr found = At(receiver).real->FindObject(text);
    EXPECT_EQ(found.Get(), FindObject(receiver, path)) << text;
  }
  void ExpectChild(int receiver, const Path& path, const MRBUnicodeString& text) {
    const EnvPtr found = At(receiver).real->FindSubEnv(text);
    EXPECT_EQ(found.Get(), FindChild(receiver, path)) << text;
  }
  void ExpectBelow(int receiver, const Path& dirs) {
    constexpr int NbLookedFor = 5;
    for (int name = 0; name < NbLookedFor; ++name) {
      Path path = dirs;
      path.name = name;
      path.Append(NameOf(name));
      const MRBUnicodeString text = path.GetText();
      ExpectObject(receiver, path, text);
      ExpectChild(receiver, path, text);
    }
    for (int dir = 0; dir < NbDirs && dirs.nbDirs < Deepest; ++dir) {
      if (At(EnvOf(receiver, dirs)).children[static_cast<std::size_t>(dir)] == Nothing) continue;
      Path path = dirs;
      path.dirs[static_cast<std::size_t>(path.nbDirs++)] = dir;
      path.Append(NameOf(dir) + "/");
      ExpectBelow(receiver, path);
    }
  }

  void Aggregate(int borrower) {
    if (static_cast<int>(borrowers.size()) == MostAggregations) return;
    const int lender = PickAlive();
    if (At(lender).depth > 1) return;
    EXPECT_EQ(At(borrower).real->AggregateEnv(*At(lender).real), KVLResult_Success);
    At(borrower).aggregated.push_back(lender);
    borrowers.push_back(borrower);
  }
  void EndAggregation() {
    if (borrowers.empty()) return;
    const int place = Pick(static_cast<int>(borrowers.size()));
    Model& borrower = At(borrowers[static_cast<std::size_t>(place)]);
    borrowers.erase(borrowers.begin() + place);
    const int lender = borrower.aggregated[static_cast<std::size_t>(
        Pick(static_cast<int>(borrower.aggregated.size())))];
    EXPECT_EQ(borrower.real->UnAggregateEnv(*At(lender).real), KVLResult_Success);
    borrower.aggregated.erase(
        std::find(borrower.aggregated.begin(), borrower.aggregated.end(), lender));
  }
  void EndAggregations() {
    while (!borrowers.empty())
      EndAggregation();
  }

  std::uint64_t state;
  std::vector<std::string> names;
  std::vector<TrackedPtr> objects;
  std::vector<EnvPtr> held;
  std::deque<Model> models;
  std::vector<int> alive;      // models
  std::vector<int> borrowers;  // models, once an aggregation
};

// Fewer where a step takes long.
long NbStepsAsked() {
  const char* const asked = std::getenv("KVL_TEST_STEPS");
  return asked ? std::atol(asked) : 10000000;
}

class KVLCodeEnvKnownPaths : public RegistryCase {};

TEST_F(KVLCodeEnvKnownPaths, LeadWhereAWalkLeadsInMillionsOfOperations) {
  constexpr std::uint64_t Seed = 20240229;
  constexpr long StepsAForest = 60000;
  constexpr long StepsATree = 15000;
  Forest forest(Seed);
  int mostObjects = 0;
  int mostAlive = 0;
  const long nbSteps = NbStepsAsked();
  for (long step = 1; step <= nbSteps; ++step) {
    forest.Step();
    if (step % StepsATree == 0) {
      mostObjects = std::max(mostObjects, forest.GetMostObjects());
      mostAlive = std::max(mostAlive, forest.GetNbAlive());
      forest.ExpectSameEverywhere();
      if (step % StepsAForest == 0) {
        forest.Plant();
      } else {
        forest.Fell();
        forest.ExpectSameEverywhere();
      }
    }
    if (step % 100 == 0 && HasFailure()) FAIL() << "seed " << Seed << ", up to step " << step;
  }
  EXPECT_GT(mostObjects, 128);
  EXPECT_GT(mostAlive, 30);
}

MRBUnicodeString NumberedName(int number) {
  return ("object" + std::to_string(number)).c_str();
}

// Enough for the table to get another storage a few times.
constexpr int Many = 300;

TEST_F(KVLCodeEnvKnownPaths, AreForgottenByAnEnvironmentThatGoesWhatIsReachedStays) {
  EnvPtr root = new KVLCodeEnv("root");
  root->Add(*MakeObject("x"), "p/q/");
  const EnvPtr reached = root->FindSubEnv("p/q");
  root = nullptr;
  for (int i = 0; i < Many; ++i)
    EXPECT_EQ(reached->Add(*MakeObject(NumberedName(i)), ""), KVLResult_Success);
  for (int i = 0; i < Many; ++i)
    EXPECT_NE(reached->FindObject(NumberedName(i)), nullptr);
  EXPECT_NE(reached->FindObject("x"), nullptr);
}

TEST_F(KVLCodeEnvKnownPaths, OfSeveralEnvironmentsLeadToTheSameTable) {
  EnvPtr root = new KVLCodeEnv("root");
  const EnvPtr between = &root->GetSubEnv("p");
  between->GetSubEnv("q/r");
  root->GetSubEnv("p/q/r");
  const auto expectAll = [](KVLCodeEnv& env, const MRBUnicodeString& path, int count) {
    for (int i = 0; i < Many; ++i)
      EXPECT_EQ(env.FindObject(path + NumberedName(i)) != nullptr, i < count) << path << i;
  };
  for (int i = 0; i < Many / 2; ++i) {
    KVLCodeEnv& receiver = i % 2 == 0 ? *root : *between;
    receiver.Add(*MakeObject(NumberedName(i)), i % 2 == 0 ? "p/q/r/" : "q/r/");
    if (i % 25 != 0) continue;
    expectAll(*root, "p/q/r/", i + 1);
    expectAll(*between, "q/r/", i + 1);
    expectAll(*between, "/q//r/", i + 1);
  }
  root = nullptr;
  for (int i = Many / 2; i < Many; ++i)
    between->Add(*MakeObject(NumberedName(i)), "q/r/");
  expectAll(*between, "q/r/", Many);
}

TEST_F(KVLCodeEnvKnownPaths, LeadToEnvironmentsMadeAnewWhileTheFormerOnesDie) {
  EnvPtr root = new KVLCodeEnv("root");
  KVLCodeEnv& dying = *root;
  int nbDeaths = 0;
  dying.Add(*MakeObject("x"), "p/q/");
  dying.Add(*new TrackedObject("last",
                               [&] {
                                 ++nbDeaths;
                                 EXPECT_EQ(dying.FindObject("p/q/x"), nullptr);
                                 EXPECT_EQ(dying.FindObject("p/q/last"), nullptr);
                                 for (int i = 0; i < Many; ++i)
                                   dying.Add(*MakeObject(NumberedName(i)), "p/q/");
                                 EXPECT_NE(dying.FindObject("p/q/object17"), nullptr);
                               }),
            "p/q/");
  root = nullptr;
  EXPECT_EQ(nbDeaths, 1);
}

TEST_F(KVLCodeEnvKnownPaths, MayBeLongAndOfAnyBytes) {
  const EnvPtr env = new KVLCodeEnv("root");
  for (const int length :
       {1, 2, 3, 4, 7, 8, 9, 15, 16, 17, 31, 32, 33, 63, 64, 65, 127, 128, 129, 500}) {
    for (const char last : {'a', 'b', '.', '\x01', '\xFF', '\0'}) {
      std::string path(static_cast<std::size_t>(length), 'd');
      path.back() = last;
      path += "/x";
      const MRBUnicodeString text(path.data(), static_cast<int>(path.size()));
      const TrackedPtr object = MakeObject("x");
      EXPECT_EQ(env->Add(*object, text), KVLResult_Success) << path;
      EXPECT_EQ(env->FindObject(text), object) << path;
      EXPECT_EQ(env->FindObject("/" + text), object) << path;
    }
  }
}

}  // namespace
