#include "MRBHost.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include "support/TraceCapture.h"

namespace {

static_assert(std::has_virtual_destructor_v<MRBBaseUnknown>);
static_assert(std::is_convertible_v<MRBBaseUnknown*, MRBBaseUnknown_var>);
static_assert(!std::is_convertible_v<MRBBaseUnknown_var, MRBBaseUnknown*>);
static_assert(sizeof(MRBBaseUnknown_var) == sizeof(void*));
static_assert(std::is_same_v<MRBTraceSink, void (*)(int, const char*, int)>);
static_assert(offsetof(LibraryHandler, entry) == 0);
static_assert(offsetof(LibraryHandler, library) == sizeof(void*));
static_assert(sizeof(LibraryHandler) == 2 * sizeof(void*));

class HostObject : public MRBBaseUnknown {
 public:
  HostObject() { ++live; }
  HostObject(const HostObject& other) : MRBBaseUnknown(other) { ++live; }
  HostObject& operator=(const HostObject&) = default;
  ~HostObject() override { --live; }

  static inline int live = 0;
};

// Its count is its own.
class OwnCount : public MRBBaseUnknown {
 public:
  void AddRef() override { ++count; }
  void Release() override { --count; }
  int count = 0;
};

class MRBBaseUnknownTest : public testing::Test {
 protected:
  void SetUp() override { HostObject::live = 0; }
  void TearDown() override { EXPECT_EQ(HostObject::live, 0); }
};

TEST_F(MRBBaseUnknownTest, TheReleaseThatReaches0Destroys) {
  MRBBaseUnknown* const object = new HostObject;
  object->AddRef();
  object->AddRef();
  object->Release();
  EXPECT_EQ(HostObject::live, 1);
  object->Release();
  EXPECT_EQ(HostObject::live, 0);
}

TEST_F(MRBBaseUnknownTest, ACopyStartsAt0AndAssignmentLeavesTheCountAlone) {
  HostObject* const first = new HostObject;
  const MRBBaseUnknown_var holder(first);
  const MRBBaseUnknown_var holderToo(first);
  {
    const MRBBaseUnknown_var copy(new HostObject(*first));
    EXPECT_EQ(HostObject::live, 2);
  }
  EXPECT_EQ(HostObject::live, 1);
  HostObject* const target = new HostObject;
  {
    const MRBBaseUnknown_var held(target);
    *target = *first;
  }
  EXPECT_EQ(HostObject::live, 1);
}

TEST_F(MRBBaseUnknownTest, TheHandleTakesAReferenceAndGivesItBack) {
  {
    const MRBBaseUnknown_var empty;
    EXPECT_EQ(empty.Get(), nullptr);
    const MRBBaseUnknown_var null(nullptr);
    EXPECT_EQ(null.Get(), nullptr);
    EXPECT_TRUE(empty == null);
    HostObject* const object = new HostObject;
    const MRBBaseUnknown_var handle(object);
    EXPECT_EQ(handle.Get(), object);
    EXPECT_EQ(handle.operator->(), object);
    EXPECT_TRUE(handle != empty);
    EXPECT_FALSE(handle == empty);
    const MRBBaseUnknown_var copy(handle);
    EXPECT_TRUE(copy == handle);
    EXPECT_FALSE(copy != handle);
    EXPECT_EQ(HostObject::live, 1);
  }
  EXPECT_EQ(HostObject::live, 0);
}

TEST_F(MRBBaseUnknownTest, TheHandleCountsThroughTheVirtualOperations) {
  OwnCount object;
  {
    const MRBBaseUnknown_var handle(&object);
    EXPECT_EQ(object.count, 1);
    const MRBBaseUnknown_var copy(handle);
    EXPECT_EQ(object.count, 2);
    MRBBaseUnknown_var assigned;
    assigned = copy;
    EXPECT_EQ(object.count, 3);
    assigned = MRBBaseUnknown_var();
    EXPECT_EQ(object.count, 2);
  }
  EXPECT_EQ(object.count, 0);
}

TEST_F(MRBBaseUnknownTest, AssigningAHandleToItselfKeepsItsObject) {
  MRBBaseUnknown_var handle(new HostObject);
  const MRBBaseUnknown_var& same = handle;
  handle = same;
  EXPECT_EQ(HostObject::live, 1);
  handle = handle.Get();
  EXPECT_EQ(HostObject::live, 1);
  handle = new HostObject;
  EXPECT_EQ(HostObject::live, 1);
  handle = nullptr;
  EXPECT_EQ(HostObject::live, 0);
}

#if defined(__x86_64__)
template <class Operation>
std::ptrdiff_t SlotOf(Operation operation) {
  // As the platform's binary interface writes a pointer to a virtual operation: 1 + its offset.
  std::ptrdiff_t words[2];
  static_assert(sizeof words == sizeof operation);
  std::memcpy(words, &operation, sizeof words);
  return (words[0] - 1) / static_cast<std::ptrdiff_t>(sizeof(void*));
}

TEST_F(MRBBaseUnknownTest, AddRefAndReleaseFollowTheDestructor) {
  // A destructor takes two places.
  EXPECT_EQ(SlotOf(&MRBBaseUnknown::AddRef), 2);
  EXPECT_EQ(SlotOf(&MRBBaseUnknown::Release), 3);
}
#endif

void FirstSink(int, const char*, int) {}
void SecondSink(int, const char*, int) {}

// Puts back whatever sink was there.
class MRBTraceSinkTest : public testing::Test {
 protected:
  void SetUp() override { former = MRBSetTraceSink(nullptr); }
  void TearDown() override { MRBSetTraceSink(former); }

 private:
  MRBTraceSink former = nullptr;
};

TEST_F(MRBTraceSinkTest, InstallingReturnsTheFormerSinkAndNullForTheDefault) {
  EXPECT_EQ(MRBSetTraceSink(FirstSink), nullptr);
  EXPECT_EQ(MRBSetTraceSink(SecondSink), FirstSink);
  EXPECT_EQ(MRBSetTraceSink(SecondSink), SecondSink);
  EXPECT_EQ(MRBSetTraceSink(nullptr), SecondSink);
  EXPECT_EQ(MRBSetTraceSink(nullptr), nullptr);
}

TEST_F(MRBTraceSinkTest, ASinkReceivesWhatWasReported) {
  const TraceCapture trace;
  MRBSysBftier(1, "a failure", 0);
  MRBSysBftier(100, "", -7);
  MRBSysBftier(-1, nullptr, 2);
  const std::vector<TraceCapture::Report> expected{{1, "a failure", 0}, {100, "", -7}, {-1, "", 2}};
  EXPECT_EQ(trace.GetReports(), expected);
}

TEST_F(MRBTraceSinkTest, TheDefaultWritesTheTextAsOneLineToStandardError) {
  testing::internal::CaptureStderr();
  testing::internal::CaptureStdout();
  MRBSysBftier(1, "first report", 0);
  MRBSysBftier(100, "50% of a second one: %s %d", 0);
  MRBSysBftier(1, nullptr, 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "first report\n50% of a second one: %s %d\n\n");
}

TEST_F(MRBTraceSinkTest, AnInstalledSinkKeepsTheReportsFromStandardError) {
  testing::internal::CaptureStderr();
  MRBSetTraceSink(FirstSink);
  MRBSysBftier(1, "swallowed", 0);
  MRBSetTraceSink(nullptr);
  MRBSysBftier(1, "written", 0);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "written\n");
}

TEST_F(MRBTraceSinkTest, MayBeInstalledWhileAnotherThreadReports) {
  const TraceCapture trace;
  std::thread reporter([] {
    for (int i = 0; i < 2000; ++i)
      MRBSysBftier(1, "report", i);
  });
  for (int i = 0; i < 2000; ++i)
    MRBSetTraceSink(MRBSetTraceSink(FirstSink));
  reporter.join();
  for (const TraceCapture::Report& report : trace.GetReports())
    EXPECT_EQ(report.text, "report");
}

}  // namespace
