#include "platform/DataLock.h"

#include "platform/Text.h"
#include "support/TestEnv.h"

#include <gtest/gtest.h>

namespace qf {
namespace {

class DataLockTest : public ::testing::Test {
protected:
    test::TempDir dir;
    test::EnvVar config{"XDG_CONFIG_HOME", (dir / "config").string()};
    test::EnvVar data{"QUILLFEED_HOME", (dir / "data").string()};
};

// The lock lives beside the settings and creates no data folder.
TEST_F(DataLockTest, SecondHolderIsRefusedUntilTheFirstLetsGoAndAnUnopenableLockSaysWhere) {
    auto first = std::make_unique<DataLock>();
    ASSERT_TRUE(first->held()) << Utf16ToUtf8(first->errorText());
    EXPECT_TRUE(first->errorText().empty());
    EXPECT_TRUE(std::filesystem::exists(dir / "config/Orvelcraft/Quillfeed.lock"));
    EXPECT_FALSE(std::filesystem::exists(dir / "data"));

    const DataLock second;
    EXPECT_FALSE(second.held());
    EXPECT_EQ(second.errorText(), kDataInUseText);

    first.reset();
    EXPECT_TRUE(DataLock().held());

    std::filesystem::remove(dir / "config/Orvelcraft/Quillfeed.lock");
    std::filesystem::create_directories(dir / "config/Orvelcraft/Quillfeed.lock");
    const DataLock lock;
    EXPECT_FALSE(lock.held());
    EXPECT_NE(lock.errorText().find(u"Quillfeed.lock"), std::u16string::npos);
}

} // namespace
} // namespace qf
