#pragma once

#include "UiFixture.h"
#include "ui/NewsListModel.h"

#include <QListView>

namespace qf::ui::test {

struct TestStory {
    std::string title;
    std::string date; // RFC 822; empty for none
    bool read = false;
    std::string link = {};
    std::string body = "Body";
};

// Read states are kept by link, so each story has one. Stored order: Alpha (2 Jan), Bravo (4 Jan,
// read), Charlie (1 Jan), Delta (3 Jan, read).
inline const std::vector<TestStory> kFourStories = {
    {"Alpha", "Tue, 02 Jan 2024 10:00:00 GMT", false, "http://127.0.0.1/a"},
    {"Bravo", "Thu, 04 Jan 2024 10:00:00 GMT", true, "http://127.0.0.1/b"},
    {"Charlie", "Mon, 01 Jan 2024 10:00:00 GMT", false, "http://127.0.0.1/c"},
    {"Delta", "Wed, 03 Jan 2024 10:00:00 GMT", true, "http://127.0.0.1/d"}};

// A feed "News" with the stories, as a cached one has them.
inline std::string FeedOf(const std::vector<TestStory>& stories) {
    std::string feed = "<rss version=\"2.0\"><channel><title>News</title>";
    for (const TestStory& s : stories) {
        feed += (s.read ? "<item qf_wasRead=\"yes\"><title>" : "<item><title>") + s.title +
                "</title><pubDate>" + s.date + "</pubDate>" +
                (s.link.empty() ? "" : "<link>" + s.link + "</link>") +
                (s.body.empty() ? "" : "<description>" + s.body + "</description>") + "</item>";
    }
    return feed + "</channel></rss>";
}

// The channels "News" (id 1, its cached feed holds the given stories) and "Failed" (id 2, its
// last update failed although a cached feed is there), in that order.
class NewsFixture : public UiFixture {
protected:
    void StartWithStories(const std::vector<TestStory>& stories = kFourStories) {
        WriteStore([](ChannelStore& store) {
            AddTestChannel(store.DefaultCategory(), u"News", 2, 4).SetId(1);
            Channel& failed = AddTestChannel(store.DefaultCategory(), u"Failed", 0, 0);
            failed.SetId(2);
            failed.SetHasErrors(1);
            failed.SetErrorText(WString(u"Failed to parse the channel@1/5/24 9:30 AM"), false);
            store.RecomputeNextId();
        });
        qf::test::WriteFileBytes(CachedFeed(1), FeedOf(stories));
        qf::test::WriteFileBytes(CachedFeed(2), FeedOf(stories));
        StartApp();
    }
    void OpenChannel(int row) {
        channelsScreen()->SelectRow(channelsScreen()->model()->ChannelAt(row));
        Command(kCmdShowChannel);
        ASSERT_EQ(ShownScreen(), kChannelScreen);
    }
    // Clicks the news list's row and waits for the story screen.
    void OpenStory(int row) {
        QListView* list = news().list();
        const QRect rect = list->visualRect(news().model()->index(row));
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, rect.center());
        ASSERT_TRUE(WaitFor([this] { return ShownScreen() == kStoryScreen; }));
    }
    ChannelScreen& news() { return *channelScreen(); }
    QStringList Titles() {
        QStringList titles;
        for (int row = 0; row < news().model()->rowCount(); ++row) {
            titles << news().model()->index(row).data().toString();
        }
        return titles;
    }
    bool Read(int row) {
        return news().model()->index(row).data(NewsListModel::kReadRole).toBool();
    }
    int UnreadOnChannelsScreen() {
        const ChannelListModel& model = *channelsScreen()->model();
        return model.index(0).data(ChannelListModel::kUnreadRole).toInt();
    }
};

} // namespace qf::ui::test
