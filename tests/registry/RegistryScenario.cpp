// What is written to standard output, and what a process finds at its first use of the registry or
// when it runs out of memory. Each scenario has a process of its own: the default environment, the
// stream and the heap belong to it.

#include <cstdio>
#include <cstring>
#include <iostream>
#include <new>
#include <string>

#include "KVLCodeEnv.h"
#include "KVLCodeEnvAccess.h"
#include "KVLCodeObjectRegisterer.h"
#include "KVLResult.h"
#include "NextNewFails.h"

#if defined(__linux__)
#include <fcntl.h>
#include <unistd.h>
#endif

namespace {

int nbFailures = 0;

void Expect(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", what);
  ++nbFailures;
}

void ExpectText(const std::string& text, const std::string& expected) {
  if (text == expected) return;
  std::fprintf(stderr, "expected:\n%s\nwritten:\n%s\n", expected.c_str(), text.c_str());
  ++nbFailures;
}

/// Standard output goes to a file, without any translation of line ends and with a large buffer, so
/// that only what was flushed is in the file.
class OutputFile {
 public:
  explicit OutputFile(const char* fileName) : path(fileName) {
    Expect(std::freopen(path, "wb", stdout) != nullptr, "standard output goes to the file");
    std::setvbuf(stdout, nullptr, _IOFBF, 1 << 16);
  }

  std::string GetWritten() const {
    std::string written;
    std::FILE* const file = std::fopen(path, "rb");
    if (!file) return "no file";
    char block[4096];
    std::size_t size;
    while ((size = std::fread(block, 1, sizeof block, file)) > 0)
      written.append(block, size);
    std::fclose(file);
    return written;
  }

 private:
  const char* path;
};

class Noted : public KVLCodeObject {
 public:
  Noted(const MRBUnicodeString& objectName, const MRBUnicodeString& message)
      : KVLCodeObject(objectName) {
    messages.Append(message);
  }
  MRBUnicodeString ToString() const override { return "Noted '" + GetName() + "' 5%d \xC3\xA9"; }
};

void Seed(KVLCodeEnv& root) {
  const KVLSmartPtr<KVLCodeObject> first = new KVLCodeObject("first");
  const KVLSmartPtr<KVLCodeObject> second = new KVLCodeObject("second");
  root.Add(*first, "math/twice");
  const KVLCodeObjectRegisterer refused(root, second, "math/twice",
                                        KVLSourceLocation("b.cpp", 2, "again"));
  root.Add(*new Noted("noted", "a 100%d % message"), "");
  root.GetSubEnv("_x");
  KVLCodeEnv::GetDefaultTypeRoot().Add(*first, "Int");
}

constexpr const char* SeededReport =
    "\n"
    "/!\\ KVLCodeEnv anomalies detected /!\\\n"
    "* At path 'noted': a 100%d % message\n"
    "* At path 'math/': Tried to add two times object with name 'twice'. First (effective) "
    "registration done at '<unknown>'. Second (uneffective) registration done at "
    "'b.cpp:2<again>'.\n"
    "* At path '_x': Used path '_x'. Only special predefined keywords can start with '_'.\n"
    "* At path '_types/Int': Object registered under '_types' is not a type.\n"
    "\n";

void ReportOfACleanRegistryIsEmpty(const char* fileName) {
  const OutputFile output(fileName);
  Expect(KVLCodeEnvAccess::CheckAndDump() == KVLResult_Success, "an empty registry is well");
  KVLCodeEnv::GetDefault().Add(*new KVLCodeObject("x"), "a/b/");
  KVLCodeEnv::GetDefaultTypeRoot();
  KVLCodeEnv::GetDefaultMembersRoot();
  KVLCodeEnv::GetDefaultConversionsRoot();
  KVLCodeEnv::GetDefault().GetSubEnv("_operators");
  Expect(KVLCodeEnvAccess::CheckAndDump() == KVLResult_Success, "a clean registry is well");
  std::fflush(stdout);
  ExpectText(output.GetWritten(), "");
}

void ReportIsWrittenToTheByteAndFlushed(const char* fileName) {
  const OutputFile output(fileName);
  Seed(KVLCodeEnv::GetDefault());
  Expect(KVLCodeEnvAccess::CheckAndDump() == KVLResult_Failure, "anomalies are a failure");
  ExpectText(output.GetWritten(), SeededReport);
  Expect(KVLCodeEnvAccess::CheckAndDump() == -2147467259L, "the code is sign-extended");
  ExpectText(output.GetWritten(), std::string(SeededReport) + SeededReport);
}

void ReportStandsInOrderWithTheHostsOwnOutput(const char* fileName) {
  const OutputFile output(fileName);
  Seed(KVLCodeEnv::GetDefault());
  std::printf("printf before;");
  std::cout << "cout before;";
  (void)KVLCodeEnvAccess::CheckAndDump();
  std::cout << "cout after;";
  std::printf("printf after;");
  (void)KVLCodeEnvAccess::CheckAndDump();
  std::printf("printf last;");
  std::cout << "cout last" << std::endl;
  std::fflush(stdout);
  ExpectText(output.GetWritten(), std::string("printf before;cout before;") + SeededReport +
                                      "cout after;printf after;" + SeededReport +
                                      "printf last;cout last\n");
}

void DumpWritesTheObjectsOwnTextAsALineAndFlushes(const char* fileName) {
  const OutputFile output(fileName);
  const KVLSmartPtr<KVLCodeObject> plain = new KVLCodeObject("x");
  const KVLSmartPtr<KVLCodeObject> noted = new Noted("n", "100%d");
  std::printf("before;");
  plain->Dump();
  ExpectText(output.GetWritten(), "before;KVLCodeObject 'x'\n");
  std::cout << "between;";
  noted->Dump();
  KVLCodeEnv::GetDefault().Dump();
  ExpectText(output.GetWritten(),
             "before;KVLCodeObject 'x'\nbetween;Noted 'n' 5%d \xC3\xA9\nKVLCodeObject ''\n");
}

void DumpToAStreamThatCannotBeWrittenDoesNothing(const char* fileName) {
  const KVLSmartPtr<KVLCodeObject> object = new KVLCodeObject("x");
  const OutputFile output(fileName);
  Expect(std::freopen(fileName, "rb", stdout) != nullptr, "standard output is for reading only");
  object->Dump();
  ExpectText(output.GetWritten(), "");
  Expect(std::freopen(fileName, "wb", stdout) != nullptr, "standard output is for writing again");
  object->Dump();
  ExpectText(output.GetWritten(), "KVLCodeObject 'x'\n");
}

// Nothing is made before it is asked for, and a root stays the environment it was first found as.
void RootsAreMadeOneByOneOnFirstUse(const char*) {
  const KVLCodeEnv& members = KVLCodeEnv::GetDefaultMembersRoot();
  KVLCodeEnv& root = KVLCodeEnv::GetDefault();
  int nbChildren = 0;
  for (const auto& child : root.IterOnSubEnvs()) {
    Expect(child.key == "_members" && child.value == &members, "only the root asked for is made");
    ++nbChildren;
  }
  Expect(nbChildren == 1, "the root asked for is a child of the default environment");
  const KVLCodeEnv& types = root.GetSubEnv("_types");
  Expect(&KVLCodeEnv::GetDefaultTypeRoot() == &types, "a root that is there already is taken");
  Expect(root.FindSubEnv("_conversions").IsNull(), "no root is made before it is asked for");
  Expect(root.FindSubEnv("_operators").IsNull(), "the operators have no root of their own");
}

void RootsAreNeverThoseOfAnAggregatedEnvironment(const char*) {
  KVLCodeEnv& root = KVLCodeEnv::GetDefault();
  const KVLSmartPtr<KVLCodeEnv> lender = new KVLCodeEnv("lender");
  root.AggregateEnv(*lender);
  const struct {
    const char* name;
    KVLCodeEnv& (*get)();
  } accessors[] = {{"_types", KVLCodeEnv::GetDefaultTypeRoot},
                   {"_members", KVLCodeEnv::GetDefaultMembersRoot},
                   {"_conversions", KVLCodeEnv::GetDefaultConversionsRoot}};
  for (const auto& each : accessors) {
    const KVLCodeEnv& borrowed = lender->GetSubEnv(each.name);
    Expect(root.FindSubEnv(each.name) == &borrowed, "the lender's is found as long as it is alone");
    const KVLCodeEnv& own = each.get();
    Expect(&own != &borrowed, "a root is not borrowed");
    Expect(root.FindSubEnv(each.name) == &own, "a root is a child of the default environment");
  }
}

#if defined(__linux__)

// A pipe that keeps each write apart shows every line as one.
void ReportIsFlushedLineByLine(const char*) {
  int ends[2];
  if (pipe2(ends, O_DIRECT | O_NONBLOCK) != 0 || dup2(ends[1], STDOUT_FILENO) < 0) {
    Expect(false, "a pipe of packets is there");
    return;
  }
  std::setvbuf(stdout, nullptr, _IOFBF, 1 << 16);
  Seed(KVLCodeEnv::GetDefault());
  (void)KVLCodeEnvAccess::CheckAndDump();
  std::string written;
  char packet[4096];
  ssize_t size;
  int nbPackets = 0;
  while ((size = read(ends[0], packet, sizeof packet)) > 0) {
    const std::string line(packet, static_cast<std::size_t>(size));
    Expect(line.find('\n') == line.size() - 1, "each write is a line");
    written += line;
    ++nbPackets;
  }
  ExpectText(written, SeededReport);
  Expect(nbPackets == 7, "each line is a write");
}

void AChildThatCouldNotBeMadeIsMadeByTheNextLookup(const char*) {
  const KVLSmartPtr<KVLCodeEnv> env = new KVLCodeEnv("root");
  bool hasFailed = false;
  kvltest::nextNewFails = true;
  try {
    env->GetSubEnv("a");
  } catch (const std::bad_alloc&) {
    hasFailed = true;
  }
  Expect(hasFailed, "the making of a child fails without memory");
  Expect(env->FindSubEnv("a").IsNull(), "what could not be made is not found");
  Expect(env->ComputeAnomalies().IsEmpty(), "what could not be made is passed over by the check");
  const KVLCodeEnv& child = env->GetSubEnv("a");
  Expect(child.GetName() == "a", "the child is made under its name");
  Expect(env->FindSubEnv("a") == &child, "the child is found");
  int nbChildren = 0;
  for (const auto& entry : env->IterOnSubEnvs())
    nbChildren += entry.value == &child ? 1 : 100;
  Expect(nbChildren == 1, "the child is there once");
}

#endif

using Scenario = void (*)(const char* fileName);

constexpr struct {
  const char* name;
  Scenario run;
} Scenarios[] = {
    {"clean_report", ReportOfACleanRegistryIsEmpty},
    {"report", ReportIsWrittenToTheByteAndFlushed},
    {"report_in_order", ReportStandsInOrderWithTheHostsOwnOutput},
    {"dump", DumpWritesTheObjectsOwnTextAsALineAndFlushes},
    {"failing_dump", DumpToAStreamThatCannotBeWrittenDoesNothing},
    {"roots", RootsAreMadeOneByOneOnFirstUse},
    {"own_roots", RootsAreNeverThoseOfAnAggregatedEnvironment},
#if defined(__linux__)
    {"report_by_lines", ReportIsFlushedLineByLine},
    {"child_made_late", AChildThatCouldNotBeMadeIsMadeByTheNextLookup},
#endif
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: %s SCENARIO FILE\n", argv[0]);
    return 2;
  }
  for (const auto& scenario : Scenarios) {
    if (std::strcmp(scenario.name, argv[1]) != 0) continue;
    scenario.run(argv[2]);
    return nbFailures == 0 ? 0 : 1;
  }
  std::fprintf(stderr, "no scenario %s\n", argv[1]);
  return 2;
}
