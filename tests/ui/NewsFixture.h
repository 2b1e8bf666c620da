#pragma once

#include "UiFixture.h"

#include <QStringList>
#include <string>
#include <vector>

namespace qf::ui {
class ChannelScreen;
}

namespace qf::ui::test {

struct TestStory {
    std::string title;
    // RFC 822 text; empty for a story without a date.
    std::string date;
    bool read = false;
    std::string link;
    std::string body = "Body";
};

// Four stories in stored order: Alpha (2 Jan), Bravo (4 Jan, read), Charlie (1 Jan), Delta
// (3 Jan, read).
std::vector<TestStory> FourStories();

// The channels "News" (with a cached feed of the given stories), "Failed" (its last update
// failed, though it has a cached feed) and "Third" (one story), in that order.
class NewsFixture : public UiFixture {
protected:
    void StartWithStories(const std::vector<TestStory>& stories = FourStories());
    // Opens the channel of the channels screen's row as the user does.
    void OpenChannel(int row);
    // Clicks the news list's row and waits for the story screen.
    void OpenStory(int row);
    ChannelScreen& channelScreen();
    // The titles of the news list's rows, top to bottom.
    QStringList Titles();
    std::filesystem::path CachedFeed(int32_t channelId) const;
};

} // namespace qf::ui::test
