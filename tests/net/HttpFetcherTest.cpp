#include "net/HttpFetcher.h"

#include "net/ConnectionManager.h"
#include "net/HttpSession.h"
#include "platform/AtomicFile.h"
#include "platform/Text.h"
#include "support/TestCertificates.h"
#include "support/TestEnv.h"
#include "support/TestServer.h"

#include <array>
#include <chrono>
#include <memory>
#include <stdexcept>
#include <thread>

#include <gtest/gtest.h>

namespace qf {
namespace {

using Stage = std::array<int32_t, 3>; // stage, total, bytes so far
using test::ClosedPort;
using test::Route;

std::string Pattern(std::size_t size) {
    std::string text(size, ' ');
    for (std::size_t i = 0; i < size; ++i) {
        text[i] = static_cast<char>('a' + i % 26);
    }
    return text;
}

class HttpFetcherTest : public ::testing::Test {
protected:
    void SetUp() override {
        server = std::make_unique<test::TestServer>(listeners);
        ASSERT_TRUE(fetcher.OpenSession(settings));
    }

    bool Download(const std::u16string& url, std::u16string_view userName = {},
                  std::u16string_view password = {}) {
        return fetcher.Download(settings, url, FromFsPath(file), userName, password, progress);
    }
    void Serve(const std::string& path, const std::string& body = "<rss/>") {
        server->addRoute({.path = path, .body = body});
    }
    void Redirect(const std::string& path, int status, const std::u16string& target) {
        server->addRoute(
            {.path = path, .status = status, .headers = {{"Location", Utf16ToUtf8(target)}}});
    }

    // No proxy from the environment may stand between the tests and their server.
    test::EnvVar noProxy{"no_proxy", "*"};
    test::EnvVar noProxyUpper{"NO_PROXY", "*"};
    test::TempDir dir;
    std::filesystem::path file = dir / "QFChannelsData" / "Channel1.xml";
    std::vector<test::TlsListener> listeners;
    std::unique_ptr<test::TestServer> server;
    FetchSettings settings;
    HttpFetcher fetcher;
    ProgressCallback progress;
};

TEST_F(HttpFetcherTest, SavesTheBodyInBlocksIntoANewFolderAndReportsEachStage) {
    const std::string body = Pattern(25000);
    Serve("/feed.xml", body);
    std::vector<Stage> stages;
    progress = [&](int32_t stage, int32_t total, int32_t bytes) {
        stages.push_back({stage, total, bytes});
    };

    ASSERT_TRUE(Download(server->url("/feed.xml")));

    EXPECT_EQ(test::ReadFileBytes(file), body);
    EXPECT_EQ(fetcher.ErrorCode(), 0);
    EXPECT_EQ(fetcher.StatusCode(), 200);
    ASSERT_GE(stages.size(), 5u); // at least three blocks
    EXPECT_EQ(stages.front(), (Stage{kProgressStarted, 25000, 0}));
    EXPECT_EQ(stages.back(), (Stage{kProgressFinished, 25000, 25000}));
    for (std::size_t i = 1; i + 1 < stages.size(); ++i) {
        EXPECT_EQ(stages[i][0], kProgressBlock);
        EXPECT_GT(stages[i][2], stages[i - 1][2]);
        EXPECT_LE(stages[i][2] - stages[i - 1][2], 10240);
    }
}

TEST_F(HttpFetcherTest, RequestNamesTheProductAndAcceptsAnything) {
    Serve("/feed.xml");
    ASSERT_TRUE(Download(server->url("/feed.xml")));

    const std::string head = server->requestHead("/feed.xml");
    EXPECT_TRUE(head.starts_with("GET /feed.xml HTTP/1.1\r\n")) << head;
    EXPECT_NE(head.find("\r\nUser-Agent: Quillfeed/2.0.2\r\n"), std::string::npos) << head;
    EXPECT_NE(head.find("\r\nAccept: */* \r\n"), std::string::npos) << head;
    EXPECT_EQ(head.find("Authorization"), std::string::npos) << head;
}

TEST_F(HttpFetcherTest, BodyWithoutContentLengthIsReadUntilTheConnectionCloses) {
    server->addRoute(
        {.path = "/feed.xml", .body = Pattern(15000), .mode = Route::Body::UntilClose});
    std::vector<Stage> stages;
    progress = [&](int32_t stage, int32_t total, int32_t bytes) {
        stages.push_back({stage, total, bytes});
    };

    ASSERT_TRUE(Download(server->url("/feed.xml")));

    EXPECT_EQ(test::ReadFileBytes(file), Pattern(15000));
    EXPECT_EQ(stages.front(), (Stage{kProgressStarted, kUnknownLength, 0}));
    EXPECT_EQ(stages.back(), (Stage{kProgressFinished, kUnknownLength, 15000}));
}

TEST_F(HttpFetcherTest, TwoRedirectsAreFollowedOverOneConnection) {
    Redirect("/moved", 301, server->url("/found"));
    Redirect("/found", 302, server->url("/feed.xml"));
    Serve("/feed.xml");

    ASSERT_TRUE(Download(server->url("/moved")));

    EXPECT_EQ(test::ReadFileBytes(file), "<rss/>");
    EXPECT_EQ(fetcher.Url().path, u"feed.xml");
    EXPECT_EQ(server->hits("/found"), 1);
    EXPECT_EQ(server->connections(), 1);
}

TEST_F(HttpFetcherTest, ThirdRedirectFailsWithItsStatus) {
    Redirect("/one", 302, server->url("/two"));
    Redirect("/two", 301, server->url("/three"));
    Redirect("/three", 302, server->url("/feed.xml"));
    Serve("/feed.xml");

    EXPECT_FALSE(Download(server->url("/one")));

    EXPECT_EQ(fetcher.ErrorCode(), 302);
    EXPECT_EQ(server->hits("/three"), 1);
    EXPECT_EQ(server->hits("/feed.xml"), 0);
    EXPECT_FALSE(std::filesystem::exists(file));
}

// A missing scheme means http whatever the fetcher fetched before, a quoted Location loses its
// quotes, and a redirect to ftp or file is requested over http and saved.
TEST_F(HttpFetcherTest, OddAddressFormsStillReachTheFeedOverHttp) {
    Serve("/feed.xml");
    const std::u16string hostAndPort = u"127.0.0.1:" + AsciiToUtf16(std::to_string(server->port()));
    Redirect("/quoted", 302, u"\"" + server->url("/feed.xml") + u"\"");
    Redirect("/to-ftp", 301, u"ftp://" + hostAndPort + u"/feed.xml");
    Redirect("/to-file", 302, u"file://" + hostAndPort + u"/feed.xml");
    const std::u16string secure =
        u"https://127.0.0.1:" + AsciiToUtf16(std::to_string(ClosedPort())) + u"/feed.xml";
    for (const std::u16string& before : {std::u16string(u"file:///feeds/local.xml"), secure}) {
        for (const std::u16string& url : {hostAndPort + u"/feed.xml", server->url("/quoted"),
                                          server->url("/to-ftp"), server->url("/to-file")}) {
            SCOPED_TRACE(Utf16ToUtf8(before + u" then " + url));
            Download(before);
            std::filesystem::remove(file);
            EXPECT_TRUE(Download(url));
            EXPECT_FALSE(fetcher.NothingFetched());
            EXPECT_EQ(test::ReadFileBytes(file), "<rss/>");
        }
    }
}

TEST_F(HttpFetcherTest, RedirectToUnknownSchemeBecomesAnUnresolvableHost) {
    Redirect("/to-gopher", 302, u"gopher://127.0.0.1/feed");

    EXPECT_FALSE(Download(server->url("/to-gopher")));

    // Without a known prefix the scheme stays http and "gopher:" is taken for the host.
    EXPECT_EQ(fetcher.Url().scheme, kSchemeHttp);
    EXPECT_EQ(fetcher.Url().host, u"gopher:");
    EXPECT_EQ(fetcher.ErrorCode(), kErrorNameNotResolved);
}

TEST_F(HttpFetcherTest, NotFoundFailsWith404AndOtherStatusesWithoutCode) {
    EXPECT_FALSE(Download(server->url("/missing.xml")));
    EXPECT_EQ(fetcher.ErrorCode(), 404);
    EXPECT_FALSE(std::filesystem::exists(file));

    server->addRoute({.path = "/broken.xml", .status = 500, .body = "broken"});
    EXPECT_FALSE(Download(server->url("/broken.xml")));
    EXPECT_EQ(fetcher.ErrorCode(), 0);
    EXPECT_EQ(fetcher.StatusCode(), 500);
}

TEST_F(HttpFetcherTest, FileAndFtpAddressesSucceedWithoutAnyRequest) {
    HttpFetcher unopened;
    for (const std::u16string url : {u"file:///feeds/local.xml", u"ftp://127.0.0.1/feed.xml"}) {
        EXPECT_TRUE(unopened.Download(settings, url, FromFsPath(file), u"", u""));
        EXPECT_TRUE(unopened.NothingFetched());
    }
    EXPECT_FALSE(std::filesystem::exists(file.parent_path()));
    EXPECT_EQ(server->connections(), 0);
}

TEST_F(HttpFetcherTest, DownloadWithoutSessionFailsWithoutErrorCode) {
    HttpFetcher unopened;
    Serve("/feed.xml");
    EXPECT_FALSE(unopened.Download(settings, server->url("/feed.xml"), FromFsPath(file), u"", u""));
    EXPECT_EQ(unopened.ErrorCode(), 0);
    EXPECT_EQ(server->hits("/feed.xml"), 0);
}

TEST_F(HttpFetcherTest, EntityTagIsKeptWithoutItsQuotes) {
    server->addRoute({.path = "/strong", .headers = {{"ETag", "\"v1-abc\""}}});
    server->addRoute({.path = "/weak", .headers = {{"ETag", "W/\"v2\""}}});

    ASSERT_TRUE(Download(server->url("/strong")));
    EXPECT_EQ(fetcher.EntityTag(), u"v1-abc");
    // Only a leading and a trailing quote go.
    ASSERT_TRUE(Download(server->url("/weak")));
    EXPECT_EQ(fetcher.EntityTag(), u"W/\"v2");
}

TEST_F(HttpFetcherTest, CredentialsAreOfferedOnlyWhenBothAreGiven) {
    server->addRoute({.path = "/private.xml", .body = "<rss/>", .basicAuth = "reader:secret"});

    EXPECT_FALSE(Download(server->url("/private.xml"), u"reader", u""));
    EXPECT_EQ(fetcher.StatusCode(), 401);
    EXPECT_EQ(fetcher.ErrorCode(), 0);

    EXPECT_TRUE(Download(server->url("/private.xml"), u"reader", u"secret"));
    EXPECT_EQ(test::ReadFileBytes(file), "<rss/>");
}

TEST_F(HttpFetcherTest, StopFlagEndsAnEndlessBodyAfterTheCurrentBlockAndKeepsThePart) {
    server->addRoute({.path = "/endless", .mode = Route::Body::Endless});
    std::atomic<int32_t> stop{0};
    settings.stopRequested = &stop;
    std::vector<Stage> stages;
    progress = [&](int32_t stage, int32_t total, int32_t bytes) {
        stages.push_back({stage, total, bytes});
        if (bytes >= 5000) {
            stop = 1;
        }
    };

    ASSERT_TRUE(Download(server->url("/endless")));

    ASSERT_GE(stages.size(), 3u);
    const int32_t saved = stages[stages.size() - 2][2];
    EXPECT_GE(saved, 5000);
    EXPECT_EQ(stages.back(), (Stage{kProgressFinished, kUnknownLength, saved}));
    EXPECT_EQ(test::ReadFileBytes(file).size(), static_cast<std::size_t>(saved));
}

// Neither a success nor a failure: the request ends without sending or without waiting for the
// answer, however long the time-out.
TEST_F(HttpFetcherTest, StopBeforeTheAnswerEndsTheRequestAtOnce) {
    server->addRoute({.path = "/silent", .mode = Route::Body::Silent});
    fetcher.CloseSession();
    settings.timeout = std::chrono::minutes(10);
    ASSERT_TRUE(fetcher.OpenSession(settings));
    std::atomic<int32_t> abort{1};
    std::atomic<int32_t> stop{0};
    settings.abortRequested = &abort;
    settings.stopRequested = &stop;

    EXPECT_FALSE(Download(server->url("/silent")));
    EXPECT_TRUE(fetcher.StoppedBeforeAnswer());
    EXPECT_EQ(server->hits("/silent"), 0);

    abort = 0;
    const std::jthread stopper([&] {
        if (server->awaitHits("/silent", 1)) {
            stop = 1;
        }
    });
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(Download(server->url("/silent")));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
    EXPECT_TRUE(fetcher.StoppedBeforeAnswer());
    EXPECT_EQ(fetcher.ErrorCode(), kErrorOperationCancelled);
    EXPECT_FALSE(std::filesystem::exists(file));

    stop = 0;
    Serve("/feed.xml");
    EXPECT_TRUE(Download(server->url("/feed.xml")));
    EXPECT_FALSE(fetcher.StoppedBeforeAnswer());
}

TEST_F(HttpFetcherTest, LocalFileThatCannotBeCreatedStillCountsAsSuccess) {
    Serve("/feed.xml");
    test::WriteFileBytes(dir / "QFChannelsData", "a file where the folder should be");

    EXPECT_TRUE(Download(server->url("/feed.xml")));
    EXPECT_EQ(fetcher.ErrorCode(), 0);
}

TEST_F(HttpFetcherTest, FailureRaisedDuringTheTransferEndsItWithMinusTwo) {
    Serve("/feed.xml", Pattern(30000));
    progress = [](int32_t stage, int32_t, int32_t) {
        if (stage == kProgressBlock) {
            throw std::runtime_error("receiver failed");
        }
    };

    EXPECT_FALSE(Download(server->url("/feed.xml")));
    EXPECT_EQ(fetcher.ErrorCode(), kErrorException);
}

TEST_F(HttpFetcherTest, SilentServerTimesOut) {
    server->addRoute({.path = "/silent", .mode = Route::Body::Silent});
    fetcher.CloseSession();
    settings.timeout = std::chrono::milliseconds(1000);
    ASSERT_TRUE(fetcher.OpenSession(settings));

    EXPECT_FALSE(Download(server->url("/silent")));
    EXPECT_EQ(fetcher.ErrorCode(), kErrorTimeout);
}

TEST_F(HttpFetcherTest, ClosedPortCannotBeConnected) {
    const std::u16string url =
        u"http://127.0.0.1:" + AsciiToUtf16(std::to_string(ClosedPort())) + u"/feed.xml";
    EXPECT_FALSE(Download(url));
    EXPECT_EQ(fetcher.ErrorCode(), kErrorCannotConnect);
}

TEST_F(HttpFetcherTest, SessionKeepsItsConnectionAcrossDownloads) {
    Serve("/feed.xml");
    ASSERT_TRUE(Download(server->url("/feed.xml")));
    ASSERT_TRUE(Download(server->url("/feed.xml")));
    EXPECT_EQ(server->connections(), 1);

    fetcher.CloseSession();
    ASSERT_TRUE(fetcher.OpenSession(settings));
    ASSERT_TRUE(Download(server->url("/feed.xml")));
    EXPECT_EQ(server->connections(), 2);
}

TEST_F(HttpFetcherTest, DownloadBringsUpTheSharedConnection) {
    ReleaseConnection(&ProcessConnectionHandle());
    Serve("/feed.xml");

    ASSERT_TRUE(Download(server->url("/feed.xml")));
    EXPECT_TRUE(IsConnected(ProcessConnectionHandle()));
}

class HttpsFetcherTest : public HttpFetcherTest {
protected:
    HttpsFetcherTest()
        : certificates(test::WriteTestCertificates(dir.path())),
          caFile("QUILLFEED_CA_FILE", certificates.authority.string()) {
        listeners = certificates.listeners;
    }

    void ExpectOutcome(const std::string& listener, int32_t errorCode) {
        SCOPED_TRACE(listener);
        EXPECT_EQ(Download(server->url("/feed.xml", listener)), errorCode == 0);
        EXPECT_EQ(fetcher.ErrorCode(), errorCode);
    }

    test::TestCertificates certificates;
    test::EnvVar caFile;
};

TEST_F(HttpsFetcherTest, FullCheckAcceptsOnlyAProperCertificate) {
    Serve("/feed.xml");
    ExpectOutcome("valid", 0);
    EXPECT_EQ(test::ReadFileBytes(file), "<rss/>");
    ExpectOutcome("expired", kErrorCertificateDate);
    ExpectOutcome("not-yet-valid", kErrorCertificateDate);
    ExpectOutcome("wrong-host", kErrorCertificateHostName);
    ExpectOutcome("untrusted", kErrorUntrustedIssuer);
}

TEST_F(HttpsFetcherTest, TolerantCheckForgivesDatesAndHostNamesButNotIssuers) {
    Serve("/feed.xml");
    settings.tolerantCertificates = true;
    ExpectOutcome("expired", 0);
    ExpectOutcome("not-yet-valid", 0);
    ExpectOutcome("wrong-host", 0);
    ExpectOutcome("untrusted", kErrorUntrustedIssuer);
}

} // namespace
} // namespace qf
