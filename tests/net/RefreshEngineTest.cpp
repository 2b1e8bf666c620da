#include "net/RefreshEngine.h"

#include "model/ChannelStore.h"
#include "net/OwnerQueue.h"
#include "platform/Text.h"
#include "store/CachedFeeds.h"
#include "support/TestEnv.h"
#include "support/TestServer.h"

#include <algorithm>
#include <atomic>
#include <chrono>

#include <gtest/gtest.h>

namespace qf {
namespace {

using namespace std::chrono_literals;
using test::Route;

constexpr SystemTime kNow{2024, 3, 5, 15, 10, 30, 0, 0};
constexpr char kPubDate[] = "Fri, 15 Mar 2024 08:00:00 GMT";

// An RSS feed of `count` stories linked to http://example.org/0, /1, ...
std::string Rss(int count, const std::string& extra = "") {
    std::string feed =
        "<?xml version=\"1.0\"?><rss version=\"2.0\"><channel><title>Feed</title>" + extra;
    for (int i = 0; i < count; ++i) {
        const std::string n = std::to_string(i);
        feed += "<item><title>Story " + n + "</title><link>http://example.org/" + n +
                "</link><pubDate>" + kPubDate + "</pubDate></item>";
    }
    return feed + "</channel></rss>";
}

// Stands in for the screens: hand-overs wait in a queue that the test runs as the owner thread.
class RecordingObserver : public RefreshObserver {
public:
    void HandOver(std::function<void()> work) override { queue.Post(std::move(work)); }
    void ReportProgress(const RefreshProgress& progress) override {
        if (onProgress) {
            onProgress(progress);
        }
    }
    void RedrawChannel(const Channel& channel) override {
        (channel.state() == kChannelUpdating ? begun : ended).push_back(channel.id());
    }
    void PostRefreshDone(Channel& channel, RefreshCompletion completion) override {
        queue.Post([&channel, completion] { completion(channel); });
    }
    void RefreshAllFinished() override { finished = true; }

    void RunUntil(const std::function<bool()>& done) {
        const auto deadline = std::chrono::steady_clock::now() + 30s;
        while (!done() && std::chrono::steady_clock::now() < deadline) {
            queue.WaitAndRun(20ms);
        }
        ASSERT_TRUE(done());
    }

    OwnerQueue queue;
    // Called on worker threads.
    std::function<void(const RefreshProgress&)> onProgress;
    std::vector<int32_t> begun;
    std::vector<int32_t> ended;
    bool finished = false;
};

class RefreshEngineTest : public ::testing::Test {
protected:
    Channel& AddChannel(const std::string& category, const std::string& path) {
        Category* into = store.FindCategory(Utf8ToUtf16(category));
        if (into == nullptr) {
            into = store.AddCategory(std::make_unique<Category>(WString(Utf8ToUtf16(category))));
        }
        auto channel = std::make_unique<Channel>();
        channel->SetId(static_cast<int32_t>(++lastId));
        channel->SetTitle(WString(Utf8ToUtf16(path)));
        channel->SetXmlUrl(WString(path.empty() ? u"" : server.url(path)));
        return *into->AddChannel(std::move(channel));
    }
    void Serve(const std::string& path, const std::string& body, int status = 200) {
        server.addRoute({.path = path, .status = status, .body = body});
    }
    void Redirect(const std::string& path, int status, const std::string& target) {
        server.addRoute({.path = path,
                         .status = status,
                         .headers = {{"Location", Utf16ToUtf8(server.url(target))}}});
    }
    // Now, `seconds` later.
    static FeedDate In(int64_t seconds) {
        FeedDate date = FeedDate::NowUtc();
        date.AddSeconds(seconds);
        return date;
    }
    std::filesystem::path CachedFeed(const Channel& channel) const {
        return home / "QFChannelsData" / ("Channel" + std::to_string(channel.id()) + ".xml");
    }
    void RefreshAll(bool all) {
        observer.finished = false;
        ASSERT_TRUE(engine.StartRefreshAll(all));
        observer.RunUntil([this] { return observer.finished; });
    }
    static std::u16string Stamped(std::u16string_view text) {
        return std::u16string(text) + u"@" + FeedDate::NowUtc().FormatShortLocal();
    }

    test::EnvVar noProxy{"no_proxy", "*"};
    test::TempDir home;
    test::EnvVar dataHome{"QUILLFEED_HOME", home.path().string()};
    test::EnvVar configHome{"XDG_CONFIG_HOME", (home / "config").string()};
    test::FakeClock clock{kNow};
    test::TestServer server;
    ChannelStore store;
    RecordingObserver observer;
    RefreshEngine engine{store, observer, {.timeout = 5s}};
    int lastId = 0;
};

TEST_F(RefreshEngineTest, RefreshAllVisitsTheShownRowsFirstAndRecordsEveryOutcome) {
    Channel& good = AddChannel("News", "/good");
    Channel& missing = AddChannel("News", "/missing");
    Channel& junk = AddChannel("Tech", "/junk");
    Channel& noAddress = AddChannel("Tech", "");
    Serve("/good",
          Rss(3, "<image><url>" + Utf16ToUtf8(server.url("/logo.png")) + "</url></image>"));
    Serve("/logo.png", "\x89PNG not really");
    Serve("/junk", "this is no feed");
    store.SetCategoryId(1);

    RefreshAll(true);

    EXPECT_EQ(observer.begun, (std::vector<int32_t>{junk.id(), good.id(), missing.id()}));
    EXPECT_EQ(good.state(), kChannelIdle);
    EXPECT_EQ(good.items().size(), 3u);
    EXPECT_EQ(good.newItemCount(), 3);
    EXPECT_EQ(good.updateTime(), FeedDate::NowUtc());
    EXPECT_TRUE(std::filesystem::exists(CachedFeed(good)));
    // The logo is downloaded after the feed.
    const std::string logo = "Image" + std::to_string(good.id()) + ".png";
    EXPECT_EQ(good.image().localFile(), Utf8ToUtf16(logo));
    EXPECT_EQ(test::ReadFileBytes(home / "QFChannelsData" / logo), "\x89PNG not really");
    EXPECT_EQ(missing.state(), kChannelFailed);
    EXPECT_EQ(missing.hasErrors(), 1);
    EXPECT_EQ(missing.errorText(), Stamped(u"Failed to download the channel; Error code: 404"));
    EXPECT_EQ(junk.state(), kChannelFailed);
    EXPECT_EQ(junk.errorText(), Stamped(u"Failed to parse the channel"));
    EXPECT_FALSE(std::filesystem::exists(CachedFeed(junk)));
    EXPECT_EQ(noAddress.state(), kChannelIdle);
    EXPECT_TRUE(noAddress.errorText().isNull());
    EXPECT_FALSE(store.refresh().busy());
    EXPECT_EQ(store.updateDate(), FeedDate::NowUtc());
    for (const auto& entry : std::filesystem::directory_iterator(home / "QFChannelsData")) {
        EXPECT_EQ(entry.path().string().find(".part-"), std::string::npos) << entry.path();
    }
}

TEST_F(RefreshEngineTest, FailedRefreshKeepsTheCachedFeedAndTheStories) {
    Channel& channel = AddChannel("News", "/feed");
    Serve("/feed", Rss(2));
    ASSERT_TRUE(engine.UpdateChannel(channel, 0));
    const std::string cached = test::ReadFileBytes(CachedFeed(channel));
    const NewsItem* first = channel.ItemAt(0);

    Serve("/feed", "broken", 500);
    EXPECT_FALSE(engine.UpdateChannel(channel, 0));
    EXPECT_EQ(channel.errorText(), Stamped(u"Failed to download the channel; Error code: 0"));
    Serve("/feed", Rss(5).substr(0, 200));
    EXPECT_FALSE(engine.UpdateChannel(channel, 0));
    EXPECT_EQ(channel.errorText(), Stamped(u"Failed to parse the channel"));

    EXPECT_EQ(channel.state(), kChannelFailed);
    EXPECT_EQ(channel.ItemAt(0), first);
    EXPECT_EQ(channel.itemCount(), 2);
    EXPECT_EQ(test::ReadFileBytes(CachedFeed(channel)), cached);
}

TEST_F(RefreshEngineTest, ReadStateSurvivesRefreshesWhetherOrNotTheChannelWasOpened) {
    Channel& channel = AddChannel("News", "/feed");
    // Left by an earlier run: the first story was read, and the channel is not open now.
    std::string earlier = Rss(3);
    earlier.replace(earlier.find("<item>"), 6, "<item qf_wasRead=\"yes\">");
    std::filesystem::create_directories(CachedFeed(channel).parent_path());
    test::WriteFileBytes(CachedFeed(channel), earlier);
    Serve("/feed", Rss(4));

    ASSERT_TRUE(engine.UpdateChannel(channel, 0));
    EXPECT_TRUE(channel.ItemAt(0)->isRead());
    EXPECT_EQ(channel.newItemCount(), 3);

    channel.ItemAt(2)->SetRead(1);
    ASSERT_TRUE(engine.UpdateChannel(channel, 0));
    EXPECT_TRUE(channel.ItemAt(0)->isRead());
    EXPECT_TRUE(channel.ItemAt(2)->isRead());
    EXPECT_EQ(channel.newItemCount(), 2);

    // Saved states land in the new cached feed and come back in a later run.
    ASSERT_TRUE(SaveModifiedChannels(store));
    Channel later;
    later.SetId(channel.id());
    later.SetXmlUrl(channel.xmlUrl());
    ASSERT_TRUE(LoadCachedFeed(later, u"\\"));
    EXPECT_EQ(later.newItemCount(), 2);
}

TEST_F(RefreshEngineTest, StopEndsTheRunInTheCurrentChannelAndKeepsItsCachedFeed) {
    Channel& endless = AddChannel("News", "/endless");
    Channel& next = AddChannel("News", "/next");
    server.addRoute(
        {.path = "/endless", .body = Rss(1).substr(0, 80), .mode = Route::Body::Endless});
    Serve("/next", Rss(2));
    std::filesystem::create_directories(CachedFeed(endless).parent_path());
    test::WriteFileBytes(CachedFeed(endless), Rss(1));
    // The stop button, pressed while the first channel's body is coming in.
    observer.onProgress = [this, id = endless.id()](const RefreshProgress& progress) {
        if (progress.channelId == id && progress.bytesSoFar > 0) {
            store.refresh().RequestStop();
        }
    };

    RefreshAll(true);

    EXPECT_EQ(observer.begun, std::vector<int32_t>{endless.id()});
    EXPECT_EQ(endless.state(), kChannelFailed);
    EXPECT_EQ(test::ReadFileBytes(CachedFeed(endless)), Rss(1));
    EXPECT_EQ(next.state(), kChannelIdle);
    EXPECT_TRUE(next.items().empty());
    EXPECT_FALSE(std::filesystem::exists(CachedFeed(next)));
    EXPECT_FALSE(store.refresh().busy());
    EXPECT_FALSE(store.refresh().stopRequested());
}

// The stop button and the closing of the program, while the server has the request and never
// answers it; the time-out is far longer than the test is allowed to take.
TEST_F(RefreshEngineTest, StopBeforeTheAnswerLeavesTheChannelAsItWas) {
    Channel& channel = AddChannel("News", "/silent");
    server.addRoute({.path = "/silent", .mode = Route::Body::Silent});
    std::filesystem::create_directories(CachedFeed(channel).parent_path());
    test::WriteFileBytes(CachedFeed(channel), Rss(2));
    ASSERT_TRUE(LoadCachedFeed(channel, u"\\"));
    const NewsItem* first = channel.ItemAt(0);
    channel.SetState(kChannelFailed);
    channel.SetHasErrors(1);
    channel.SetErrorText(WString(u"Failed to parse the channel@earlier"), false);
    auto patient =
        std::make_unique<RefreshEngine>(store, observer, RefreshOptions{.timeout = 10min});
    int completions = 0;

    patient->StartChannelUpdate(channel, 0, true, [&completions](Channel&) { ++completions; });
    ASSERT_TRUE(server.awaitHits("/silent", 1));
    const auto stopped = std::chrono::steady_clock::now();
    store.refresh().RequestAbort();
    observer.RunUntil([&] { return !observer.ended.empty(); });

    EXPECT_LT(std::chrono::steady_clock::now() - stopped, 30s);
    EXPECT_EQ(observer.ended, std::vector<int32_t>{channel.id()});
    EXPECT_EQ(channel.state(), kChannelFailed);
    EXPECT_EQ(channel.hasErrors(), 1);
    EXPECT_EQ(channel.errorText(), u"Failed to parse the channel@earlier");
    EXPECT_EQ(channel.ItemAt(0), first);
    EXPECT_EQ(test::ReadFileBytes(CachedFeed(channel)), Rss(2));
    // The worker ends just after its hand-over; a new update starts afresh only once it has.
    observer.RunUntil([&] { return !patient->HasRunningWorkers(); });
    observer.queue.RunPending();
    EXPECT_EQ(completions, 0);

    patient->StartChannelUpdate(channel, 0, true);
    ASSERT_TRUE(server.awaitHits("/silent", 2));
    const auto closing = std::chrono::steady_clock::now();
    patient.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - closing, 30s);
}

TEST_F(RefreshEngineTest, DueChannelsFollowTheirIntervalStrictly) {
    store.SetUpdateValue(1);
    store.SetUpdateUnit(kUnitMinutes);
    Channel& exactlyDue = AddChannel("News", "/a");
    Channel& overDue = AddChannel("News", "/b");
    FeedDate minuteAgo;
    minuteAgo.SetFields(2024, 3, 15, 10, 29, 0, 0);
    FeedDate minuteAndASecondAgo;
    minuteAndASecondAgo.SetFields(2024, 3, 15, 10, 28, 59, 0);
    exactlyDue.SetUpdateTime(minuteAgo);
    overDue.SetUpdateTime(minuteAndASecondAgo);
    Serve("/a", Rss(1));
    Serve("/b", Rss(1));

    engine.OnAutoUpdateTimer();
    EXPECT_FALSE(store.refresh().busy());
    store.SetAutoUpdate(1);
    observer.finished = false;
    engine.OnAutoUpdateTimer();
    observer.RunUntil([this] { return observer.finished; });

    EXPECT_EQ(server.hits("/a"), 0);
    EXPECT_EQ(server.hits("/b"), 1);
    const FeedDate firstRun = store.updateDate();
    EXPECT_EQ(firstRun, FeedDate::NowUtc());

    // An hour later the store is due again but with every channel on a day's interval nothing
    // is, and a run that updates nothing leaves the last run's time alone.
    for (Channel* channel : {&exactlyDue, &overDue}) {
        channel->SetUpdateValue(1);
        channel->SetUpdateUnit(kUnitDays);
    }
    clock.set({2024, 3, 5, 15, 11, 30, 0, 0});
    RefreshAll(false);
    EXPECT_EQ(store.updateDate(), firstRun);
}

TEST_F(RefreshEngineTest, UnchangedFeedCostsNoBodyAndKeepsStoriesAndReadStates) {
    Channel& channel = AddChannel("News", "/feed");
    const std::string etag = "W/\"7 b\"";
    const std::string modified = "Fri, 15 Mar 2024 08:00:00 GMT";
    server.addRoute({.path = "/feed",
                     .body = Rss(2),
                     .headers = {{"ETag", etag}, {"Last-Modified", modified}}});
    ASSERT_TRUE(engine.UpdateChannel(channel, 0));
    EXPECT_EQ(channel.server().etag, Utf8ToUtf16(etag));
    EXPECT_EQ(channel.server().lastModified, Utf8ToUtf16(modified));
    EXPECT_EQ(server.requestHead("/feed").find("If-"), std::string::npos);
    const std::string cached = test::ReadFileBytes(CachedFeed(channel));
    NewsItem* first = channel.ItemAt(0);
    first->SetRead(1);
    channel.SetNewItemCount(1);
    channel.SetHasErrors(1);
    clock.set(In(60).time());

    ASSERT_TRUE(engine.UpdateChannel(channel, 0));
    const std::string head = server.requestHead("/feed");
    EXPECT_NE(head.find("\r\nIf-None-Match: " + etag + "\r\n"), std::string::npos) << head;
    EXPECT_NE(head.find("\r\nIf-Modified-Since: " + modified + "\r\n"), std::string::npos);
    EXPECT_TRUE(channel.server().notModified);
    EXPECT_EQ(channel.ItemAt(0), first);
    EXPECT_TRUE(first->isRead());
    EXPECT_EQ(channel.itemCount(), 2);
    EXPECT_EQ(channel.newItemCount(), 1);
    EXPECT_EQ(channel.hasErrors(), 0);
    EXPECT_EQ(channel.state(), kChannelIdle);
    EXPECT_EQ(channel.updateTime(), FeedDate::NowUtc());
    EXPECT_EQ(test::ReadFileBytes(CachedFeed(channel)), cached);

    // Without its cached feed the channel asks for the whole feed again.
    std::filesystem::remove(CachedFeed(channel));
    ASSERT_TRUE(engine.UpdateChannel(channel, 0));
    EXPECT_FALSE(channel.server().notModified);
    EXPECT_EQ(server.requestHead("/feed").find("If-"), std::string::npos);
    EXPECT_EQ(test::ReadFileBytes(CachedFeed(channel)), cached);
}

TEST_F(RefreshEngineTest, ServerPausesAndFreshnessHoldBackOnlyAutomaticRefreshes) {
    store.SetUpdateValue(1);
    store.SetUpdateUnit(kUnitMinutes);
    Channel& seconds = AddChannel("News", "/seconds");
    Channel& date = AddChannel("News", "/date");
    Channel& capped = AddChannel("News", "/capped");
    Channel& plain = AddChannel("News", "/plain");
    Channel& maxAge = AddChannel("News", "/max-age");
    Channel& expires = AddChannel("News", "/expires");
    server.addRoute({.path = "/seconds", .status = 429, .headers = {{"Retry-After", "120"}}});
    server.addRoute({.path = "/date",
                     .status = 503,
                     .headers = {{"Retry-After", "Fri, 15 Mar 2024 12:30:00 GMT"}}});
    server.addRoute({.path = "/capped", .status = 429, .headers = {{"Retry-After", "999999"}}});
    Serve("/plain", "", 429);
    server.addRoute({.path = "/max-age",
                     .body = Rss(1),
                     .headers = {{"Cache-Control", "public, max-age=600"}, {"Age", "100"}}});
    server.addRoute({.path = "/expires",
                     .body = Rss(1),
                     .headers = {{"Expires", "Sun, 17 Mar 2024 10:30:00 GMT"}}});

    RefreshAll(true);
    EXPECT_EQ(seconds.server().notBefore, In(120));
    EXPECT_EQ(seconds.errorText(), Stamped(u"Failed to download the channel; Error code: 429"));
    EXPECT_EQ(date.server().notBefore, In(7200));
    EXPECT_EQ(date.errorText(), Stamped(u"Failed to download the channel; Error code: 503"));
    EXPECT_EQ(capped.server().notBefore, In(48 * 3600));
    EXPECT_EQ(plain.server().notBefore, In(3600));
    EXPECT_FALSE(maxAge.server().notBefore.valid());
    EXPECT_EQ(maxAge.server().freshUntil, In(500));
    EXPECT_EQ(expires.server().freshUntil, In(24 * 3600));

    // Refreshing all channels leaves the paused ones alone, but not the fresh ones.
    RefreshAll(true);
    EXPECT_EQ(server.hits("/seconds"), 1);
    EXPECT_EQ(server.hits("/max-age"), 2);
    // Due ones wait for their freshness as well.
    clock.set(In(121).time());
    RefreshAll(false);
    EXPECT_EQ(server.hits("/seconds"), 2);
    EXPECT_EQ(server.hits("/date"), 1);
    EXPECT_EQ(server.hits("/max-age"), 2);
    clock.set(In(49 * 3600).time());
    RefreshAll(false);
    for (const char* path : {"/date", "/capped", "/plain", "/max-age", "/expires"}) {
        const bool fresh = std::string(path) == "/max-age" || std::string(path) == "/expires";
        EXPECT_EQ(server.hits(path), fresh ? 3 : 2) << path;
    }
}

TEST_F(RefreshEngineTest, OnlyPermanentRedirectsToAFeedMoveTheChannel) {
    Channel& moved = AddChannel("News", "/old");
    Channel& found = AddChannel("News", "/found");
    Channel& temporary = AddChannel("News", "/temporary");
    Channel& portal = AddChannel("News", "/portal");
    Serve("/old", Rss(2));
    ASSERT_TRUE(engine.UpdateChannel(moved, 0));
    moved.ItemAt(0)->SetRead(1);
    Redirect("/old", 301, "/middle");
    Redirect("/middle", 308, "/new");
    Serve("/new", Rss(3));
    Redirect("/found", 302, "/new");
    Redirect("/temporary", 307, "/new");
    Redirect("/portal", 301, "/login");
    Serve("/login", "<html><body>Sign in</body></html>");

    RefreshAll(true);
    EXPECT_EQ(moved.xmlUrl(), server.url("/new"));
    EXPECT_EQ(moved.itemCount(), 3);
    EXPECT_TRUE(moved.ItemAt(0)->isRead());
    EXPECT_EQ(moved.cacheFile(), u"Channel1.xml");
    EXPECT_EQ(found.xmlUrl(), server.url("/found"));
    EXPECT_EQ(found.itemCount(), 3);
    EXPECT_EQ(temporary.xmlUrl(), server.url("/temporary"));
    EXPECT_EQ(portal.xmlUrl(), server.url("/portal"));
    EXPECT_EQ(portal.state(), kChannelFailed);
}

TEST_F(RefreshEngineTest, GoneFeedIsLeftAloneUntilAskedForOrReaddressed) {
    Channel& channel = AddChannel("News", "/gone");
    Serve("/gone", "", 410);
    EXPECT_FALSE(engine.UpdateChannel(channel, 0));
    EXPECT_TRUE(channel.server().gone);
    EXPECT_EQ(channel.errorText(), Stamped(u"Failed to download the channel; Error code: 410"));
    RefreshAll(true);
    clock.set(In(7 * 24 * 3600).time());
    RefreshAll(false);
    EXPECT_EQ(server.hits("/gone"), 1);

    // Asked for by name it is still asked, and a feed there again ends the state.
    Serve("/gone", Rss(1));
    ASSERT_TRUE(engine.UpdateChannel(channel, 0));
    EXPECT_FALSE(channel.server().gone);
    Serve("/gone", "", 410);
    EXPECT_FALSE(engine.UpdateChannel(channel, 0));
    channel.SetXmlUrl(WString(server.url("/gone")));
    EXPECT_TRUE(channel.server().gone);
    channel.SetXmlUrl(WString(server.url("/elsewhere")));
    EXPECT_FALSE(channel.server().gone);
}

// Every answer takes a while, so that downloads overlap.
TEST_F(RefreshEngineTest, RefreshAllKeepsAtMostTwoConnectionsToOneHost) {
    server.listen("127.0.0.2");
    std::vector<int32_t> order;
    for (int i = 0; i < 8; ++i) {
        const std::string path = "/feed" + std::to_string(i);
        server.addRoute({.path = path, .body = Rss(1), .delay = 0.2});
        Channel& channel = AddChannel("News", path);
        channel.SetXmlUrl(WString(i < 6 ? server.url(path) : server.url(path, "127.0.0.2")));
        order.push_back(channel.id());
    }

    RefreshAll(true);
    EXPECT_EQ(observer.begun, order);
    EXPECT_EQ(observer.ended, order);
    EXPECT_EQ(server.peakConnections("127.0.0.1"), 2); // both used, never more
    EXPECT_LE(server.peakConnections("127.0.0.2"), 2);
}

// Several workers at once while the owner thread keeps reading, marking and sorting stories;
// ThreadSanitizer watches this one.
TEST_F(RefreshEngineTest, RefreshThreadsOverlapWhileTheOwnerReadsMarksAndSorts) {
    std::vector<Channel*> channels;
    for (int i = 0; i < 12; ++i) {
        const std::string path = "/feed" + std::to_string(i);
        Serve(path, Rss(20 + i));
        channels.push_back(&AddChannel(i % 2 == 0 ? "Even" : "Odd", path));
    }
    std::atomic<int> progressReports = 0;
    observer.onProgress = [&progressReports](const RefreshProgress&) { ++progressReports; };
    int completions = 0;
    const RefreshCompletion done = [&completions](Channel&) { ++completions; };

    ASSERT_TRUE(engine.StartRefreshAll(true));
    engine.StartChannelUpdate(*channels[0], 0, true, done);
    engine.StartChannelUpdate(*channels[0], 0, true, done);
    observer.RunUntil([&] {
        for (Channel* channel : channels) {
            std::vector<NewsItem*> sorted;
            for (const auto& item : channel->items()) {
                sorted.push_back(item.get());
                if (!item->title().empty() && !item->isRead()) {
                    item->SetRead(1);
                    channel->SetNewItemCount(channel->newItemCount() - 1);
                }
            }
            std::sort(sorted.begin(), sorted.end(), [](const NewsItem* a, const NewsItem* b) {
                return a->date().Ticks() < b->date().Ticks();
            });
        }
        return observer.finished && completions == 2 && !engine.HasRunningWorkers();
    });

    for (int i = 0; i < 12; ++i) {
        EXPECT_EQ(channels[i]->state(), kChannelIdle);
        EXPECT_EQ(channels[i]->itemCount(), 20 + i);
    }
    EXPECT_EQ(server.hits("/feed0"), 3);
    EXPECT_GT(progressReports.load(), 0);
}

} // namespace
} // namespace qf
