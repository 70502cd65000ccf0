#include "KVLResult.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <type_traits>

namespace {

template <class T>
constexpr bool IsConstLong = std::is_same_v<T, const long>;

static_assert(IsConstLong<decltype(KVLResult_Success)>);
static_assert(IsConstLong<decltype(KVLResult_False)>);
static_assert(IsConstLong<decltype(KVLResult_Failure)>);
static_assert(IsConstLong<decltype(KVLResult_NotImplemented)>);
static_assert(IsConstLong<decltype(KVLResult_InvalidArgument)>);
static_assert(IsConstLong<decltype(KVLResult_OutOfMemory)>);

// Sign-extended from 32 bits: the same negative numbers where `long` is wider.
static_assert(KVLResult_Success == 0);
static_assert(KVLResult_False == 1);
static_assert(KVLResult_Failure == -2147467259L);
static_assert(KVLResult_NotImplemented == -2147467263L);
static_assert(KVLResult_InvalidArgument == -2147024809L);
static_assert(KVLResult_OutOfMemory == -2147024882L);

static_assert(std::is_same_v<decltype(KVLFailed(0L)), bool>);
static_assert(!KVLFailed(KVLResult_Success));
static_assert(!KVLFailed(KVLResult_False));
static_assert(!KVLFailed(2147483647L));
static_assert(KVLFailed(-1L));
static_assert(KVLFailed(KVLResult_Failure));
static_assert(KVLFailed(KVLResult_NotImplemented));
static_assert(KVLFailed(KVLResult_InvalidArgument));
static_assert(KVLFailed(KVLResult_OutOfMemory));

TEST(KVLResult, TheLow32BitsAreThePublishedCodes) {
  EXPECT_EQ(static_cast<std::uint32_t>(KVLResult_Failure), 0x80004005u);
  EXPECT_EQ(static_cast<std::uint32_t>(KVLResult_NotImplemented), 0x80004001u);
  EXPECT_EQ(static_cast<std::uint32_t>(KVLResult_InvalidArgument), 0x80070057u);
  EXPECT_EQ(static_cast<std::uint32_t>(KVLResult_OutOfMemory), 0x8007000Eu);
}

}  // namespace
