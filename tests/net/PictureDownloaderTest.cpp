#include "net/PictureDownloader.h"

#include "net/PictureFiles.h"
#include "platform/Files.h"
#include "platform/FsPath.h"
#include "platform/Text.h"
#include "support/TestEnv.h"
#include "support/TestServer.h"

#include <chrono>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>

#include <gtest/gtest.h>

namespace qf {
namespace {

using test::Route;
using namespace std::chrono_literals;

TEST(PictureFiles, NamesFollowTheAddressAndOnlyHttpCounts) {
    EXPECT_TRUE(IsPictureAddress(u"http://a/b.png"));
    EXPECT_TRUE(IsPictureAddress(u"HTTPS://a/b.png"));
    for (const auto* other : {u"file:///etc/passwd", u"ftp://a/b.png", u"data:image/png;base64,",
                              u"//a/b.png", u"b.png", u"javascript:x", u"http:"}) {
        EXPECT_FALSE(IsPictureAddress(other)) << Utf16ToUtf8(other);
    }
    const std::u16string name = PictureFileName(u"http://a/b.png");
    EXPECT_EQ(name.size(), 19u);
    EXPECT_EQ(name, PictureFileName(u"http://a/b.png"));
    EXPECT_NE(name, PictureFileName(u"http://a/b.PNG"));
    EXPECT_EQ(PicturePath(u"/d/QFChannelsData", u"http://a/b.png"),
              u"/d/QFChannelsData/Images/" + name);
}

// Collects what the workers report, and lets a test wait for a number of reports.
class Reports {
public:
    PictureDownloader::Done Sink() {
        return [this](const std::u16string& url, bool saved) {
            std::lock_guard lock(mutex_);
            saved_[url] = saved;
            changed_.notify_all();
        };
    }
    bool WaitFor(std::size_t count) {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, 20s, [&] { return saved_.size() >= count; });
    }
    bool Saved(const std::u16string& url) {
        std::lock_guard lock(mutex_);
        return saved_.at(url);
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::map<std::u16string, bool> saved_;
};

class PictureDownloaderTest : public ::testing::Test {
protected:
    std::u16string PathOf(const std::u16string& url) {
        return PicturePath(FromFsPath(dir.path()), url);
    }
    bool OnDisk(const std::u16string& url) {
        return std::filesystem::exists(ToFsPath(PathOf(url)));
    }

    test::TempDir dir;
    test::TestServer server;
    Reports reports;
};

TEST_F(PictureDownloaderTest, GoodPictureIsSavedWholeAndFailuresLeaveNoFile) {
    const std::string picture(3000, 'p');
    server.addRoute({.path = "/ok.png", .body = picture});
    server.addRoute({.path = "/missing.png", .status = 404, .body = "gone"});
    server.addRoute({.path = "/big.png", .body = std::string(8000, 'b')});
    server.addRoute({.path = "/big-unannounced.png",
                     .body = std::string(64 * 1024, 'b'),
                     .mode = Route::Body::UntilClose});
    server.addRoute({.path = "/empty.png", .body = ""});
    PictureLimits limits;
    limits.maxBytes = 4000;
    {
        PictureDownloader downloader(reports.Sink(), limits);
        for (const auto* path :
             {"/ok.png", "/missing.png", "/big.png", "/big-unannounced.png", "/empty.png"}) {
            ASSERT_TRUE(downloader.Request(server.url(path), PathOf(server.url(path))));
        }
        ASSERT_TRUE(reports.WaitFor(5));
    }
    EXPECT_TRUE(reports.Saved(server.url("/ok.png")));
    EXPECT_EQ(test::ReadFileBytes(ToFsPath(PathOf(server.url("/ok.png")))), picture);
    for (const auto* path : {"/missing.png", "/big.png", "/big-unannounced.png", "/empty.png"}) {
        EXPECT_FALSE(reports.Saved(server.url(path))) << path;
        EXPECT_FALSE(OnDisk(server.url(path))) << path;
    }
    // Nothing half-written is left beside the pictures.
    for (const auto& entry : std::filesystem::directory_iterator(dir.path() / "Images")) {
        EXPECT_EQ(entry.path().extension(), "") << entry.path();
    }
}

} // namespace
} // namespace qf
