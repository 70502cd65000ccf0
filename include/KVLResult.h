#ifndef KVL_RESULT_H
#define KVL_RESULT_H

#include <cstdint>

/// Result codes. An operation that can fail returns a `long` that holds a 32-bit signed code: 0 for
/// success, a positive number for "no" or "nothing to do", a negative number for a failure. Where
/// `long` has 64 bits a failure is the sign-extended number, so that a code compares alike on every
/// platform. Test for failure with `KVLFailed`; never compare with 0, for 1 is not a failure.

/// Done.
constexpr long KVLResult_Success = 0;
/// Done, and the answer is "no" or there was nothing to do.
constexpr long KVLResult_False = 1;
/// The operation failed for a reason that has no code of its own.
constexpr long KVLResult_Failure = static_cast<std::int32_t>(0x80004005u);
/// The operation is not offered here.
constexpr long KVLResult_NotImplemented = static_cast<std::int32_t>(0x80004001u);
/// An argument is outside what the operation accepts.
constexpr long KVLResult_InvalidArgument = static_cast<std::int32_t>(0x80070057u);
/// Memory could not be obtained.
constexpr long KVLResult_OutOfMemory = static_cast<std::int32_t>(0x8007000Eu);

/// True when `result` is a failure, that is, negative.
inline constexpr bool KVLFailed(long result) {
  return result < 0;
}

#endif
