#include "platform/AtomicFile.h"

#include "platform/Files.h"
#include "support/TestEnv.h"

#include <gtest/gtest.h>

namespace qf {
namespace {

TEST(AtomicFile, ReplacesTheFileWholeAndLeavesNoTemporaryBehindButNeedsItsFolder) {
    test::TempDir dir;
    const auto path = dir / "store.opml";
    test::WriteFileBytes(path, "old");

    ASSERT_TRUE(WriteFileAtomically(path, "new contents"));

    EXPECT_EQ(test::ReadFileBytes(path), "new contents");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()),
                            std::filesystem::directory_iterator()),
              1);
    // A missing folder fails and is not made.
    EXPECT_FALSE(WriteFileAtomically(dir / "missing/store.opml", "x"));
    EXPECT_FALSE(std::filesystem::exists(dir / "missing"));
}

} // namespace
} // namespace qf
