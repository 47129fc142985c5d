#include "codec/nalu.h"

#include <gtest/gtest.h>

namespace clipfix {
namespace {

TEST(CNALU, RefusesNoBytes) {
    EXPECT_FALSE(CNALU::Parse({}, 4, {}));
}

}  // namespace
}  // namespace clipfix
