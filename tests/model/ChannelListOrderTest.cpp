#include "model/ChannelListOrder.h"

#include "model/ChannelStore.h"

#include <gtest/gtest.h>

namespace qf {
namespace {

class ChannelListOrderTest : public ::testing::Test {
protected:
    void SetUp() override {
        // Categories of three and two channels; ids 1-3 and 4-5, the ones with unread stories
        // are 2, 3 and 5.
        for (int size : {3, 2}) {
            Category* category = store.AddCategory(std::make_unique<Category>());
            for (int i = 0; i < size; ++i) {
                auto channel = std::make_unique<Channel>();
                channel->SetId(++lastId);
                channel->SetNewItemCount(lastId == 2 || lastId == 3 || lastId == 5 ? 4 : 0);
                category->AddChannel(std::move(channel));
            }
        }
    }
    std::vector<int32_t> Ids(int32_t filter, bool unreadOnly) const {
        std::vector<int32_t> ids;
        for (const Channel* channel : ChannelListOrder(store, filter, unreadOnly)) {
            ids.push_back(channel->id());
        }
        return ids;
    }

    ChannelStore store;
    int32_t lastId = 0;
};

TEST_F(ChannelListOrderTest, RowsFollowTheCategoriesAndTheirChannelsInStoreOrder) {
    EXPECT_EQ(Ids(-1, false), (std::vector<int32_t>{1, 2, 3, 4, 5}));
    EXPECT_EQ(Ids(1, false), (std::vector<int32_t>{4, 5}));
    EXPECT_EQ(Ids(7, false), std::vector<int32_t>{});
    EXPECT_EQ(Ids(-1, true), (std::vector<int32_t>{2, 3, 5}));
}

} // namespace
} // namespace qf
