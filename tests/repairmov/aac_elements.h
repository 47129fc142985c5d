#pragma once

namespace clipfix::test {

// The first three bits of an element of an AAC frame (ISO/IEC 14496-3, 4.4.2.1).
inline constexpr unsigned kSingle = 0;
inline constexpr unsigned kPair = 1;
inline constexpr unsigned kCoupling = 2;
inline constexpr unsigned kEffects = 3;
inline constexpr unsigned kData = 4;
inline constexpr unsigned kConfiguration = 5;
inline constexpr unsigned kFilling = 6;
inline constexpr unsigned kEnd = 7;

}  // namespace clipfix::test
