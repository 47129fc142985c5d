#include "platform/flush_ahead.h"

#include <gtest/gtest.h>

#include "support/random.h"
#include "support/temp_folder.h"

namespace clipfix::test {
namespace {

using platform::File;
using platform::FlushAhead;

TEST(FlushAhead, LeavesAGrowingFileAsItIsWritten) {
    const TempFolder folder;
    ByteVector expected;
    {
        auto file = File::Create((folder / "f").string(), File::Existing::Replace);
        ASSERT_TRUE(file);
        FlushAhead ahead(file.Value(), 0);
        Random random(4);
        for (int i = 0; i < 200; ++i) {
            const ByteVector more = random.Bytes(random.Below(60000));
            ASSERT_TRUE(file.Value().WriteAt(expected.size(), more));
            AppendBytes(expected, more);
            ahead.UpTo(expected.size());
        }
    }
    EXPECT_TRUE(ReadFile(folder / "f") == expected);
}

// A file that was cut, or that cannot be flushed, is nothing to complain of.
TEST(FlushAhead, MayBeToldOfMoreThanTheFileHolds) {
    const TempFolder folder;
    auto file = File::Create((folder / "f").string(), File::Existing::Replace);
    ASSERT_TRUE(file);
    ASSERT_TRUE(file.Value().WriteAt(0, ByteVector(100, 7)));
    {
        FlushAhead ahead(file.Value(), 16);
        ahead.UpTo(std::uint64_t{1} << 40U);
        ASSERT_TRUE(file.Value().SetEnd(50));
    }
    EXPECT_TRUE(ReadFile(folder / "f") == ByteVector(50, 7));
}

}  // namespace
}  // namespace clipfix::test
