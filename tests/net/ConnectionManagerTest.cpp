#include "net/ConnectionManager.h"

#include <gtest/gtest.h>

namespace qf {
namespace {

TEST(ConnectionManager, ConnectionIsUpFromEstablishingUntilRelease) {
    std::atomic<ConnectionHandle> handle{kNoConnection};
    EXPECT_FALSE(IsConnected(handle));

    ASSERT_TRUE(EstablishConnection(u"", &handle));
    const ConnectionHandle held = handle;
    EXPECT_TRUE(IsConnected(held));

    std::atomic<ConnectionHandle> copy{held};
    EXPECT_TRUE(ReleaseConnection(&handle));
    EXPECT_EQ(handle, kNoConnection);
    EXPECT_FALSE(IsConnected(held));
    EXPECT_FALSE(ReleaseConnection(&handle));
    // Released through another copy of the handle: refused, and cleared all the same.
    EXPECT_FALSE(ReleaseConnection(&copy));
    EXPECT_EQ(copy, kNoConnection);
}

} // namespace
} // namespace qf
