#include "NewsFixture.h"

#include "model/CachedFileNames.h"
#include "platform/AtomicFile.h"
#include "ui/ChannelListModel.h"
#include "ui/ChannelScreen.h"
#include "ui/ChannelsScreen.h"
#include "ui/NewsListModel.h"

#include <QListView>
#include <QTest>

namespace qf::ui::test {

namespace {

std::string FeedText(const std::string& title, const std::vector<TestStory>& stories) {
    std::string feed = "<rss version=\"2.0\"><channel><title>" + title + "</title>";
    for (const TestStory& story : stories) {
        feed += story.read ? "<item qf_wasRead=\"yes\">" : "<item>";
        feed += "<title>" + story.title + "</title>";
        if (!story.link.empty()) {
            feed += "<link>" + story.link + "</link>";
        }
        if (!story.date.empty()) {
            feed += "<pubDate>" + story.date + "</pubDate>";
        }
        if (!story.body.empty()) {
            feed += "<description>" + story.body + "</description>";
        }
        feed += "</item>";
    }
    return feed + "</channel></rss>";
}

int32_t Unread(const std::vector<TestStory>& stories) {
    return static_cast<int32_t>(
        std::count_if(stories.begin(), stories.end(), [](const TestStory& s) { return !s.read; }));
}

} // namespace

std::vector<TestStory> FourStories() {
    return {{"Alpha", "Tue, 02 Jan 2024 10:00:00 GMT", false, "http://127.0.0.1/a"},
            {"Bravo", "Thu, 04 Jan 2024 10:00:00 GMT", true, "http://127.0.0.1/b"},
            {"Charlie", "Mon, 01 Jan 2024 10:00:00 GMT", false, "http://127.0.0.1/c"},
            {"Delta", "Wed, 03 Jan 2024 10:00:00 GMT", true, "http://127.0.0.1/d"}};
}

void NewsFixture::StartWithStories(const std::vector<TestStory>& stories) {
    const std::vector<TestStory> third = {{"Only", "", false, ""}};
    WriteStore([&](ChannelStore& store) {
        Category& category = store.DefaultCategory();
        Channel& news = AddTestChannel(category, u"News", Unread(stories),
                                       static_cast<int32_t>(stories.size()));
        news.SetId(1);
        Channel& failed = AddTestChannel(category, u"Failed", 1, 1);
        failed.SetId(2);
        failed.SetHasErrors(1);
        failed.SetErrorText(
            WString(u"Failed to download the channel; Error code: 404@1/5/24 9:30 AM"), false);
        AddTestChannel(category, u"Third", 1, 1).SetId(3);
        store.RecomputeNextId();
    });
    qf::test::WriteFileBytes(CachedFeed(1), FeedText("News", stories));
    qf::test::WriteFileBytes(CachedFeed(2), FeedText("Failed", stories));
    qf::test::WriteFileBytes(CachedFeed(3), FeedText("Third", third));
    StartApp();
}

std::filesystem::path NewsFixture::CachedFeed(int32_t channelId) const {
    return DataFolder() / ToFsPath(FeedFileName(channelId));
}

void NewsFixture::OpenChannel(int row) {
    ChannelsScreen& channels = *app().channelsScreen();
    channels.SelectRow(channels.model()->ChannelAt(row));
    app().OnCommand(kCtlNone, kCmdShowChannel);
    ASSERT_EQ(app().screen(), kChannelScreen);
}

void NewsFixture::OpenStory(int row) {
    QListView* list = channelScreen().list();
    const QRect rect = list->visualRect(channelScreen().model()->index(row));
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, rect.center());
    ASSERT_TRUE(WaitFor([this] { return app().screen() == kStoryScreen; }));
}

ChannelScreen& NewsFixture::channelScreen() {
    return *app().channelScreen();
}

QStringList NewsFixture::Titles() {
    QStringList titles;
    const NewsListModel& model = *channelScreen().model();
    for (int row = 0; row < model.rowCount(); ++row) {
        titles << model.data(model.index(row), Qt::DisplayRole).toString();
    }
    return titles;
}

} // namespace qf::ui::test
