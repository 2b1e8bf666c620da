#include "net/HttpFetcher.h"

#include "net/ConnectionManager.h"
#include "net/HttpSession.h"
#include "platform/Files.h"
#include "platform/FsPath.h"
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
    void RecordStages() {
        progress = [this](int32_t stage, int32_t total, int32_t bytes) {
            stages.push_back({stage, total, bytes});
        };
    }
    void Reopen(std::chrono::milliseconds timeout) {
        fetcher.CloseSession();
        settings.timeout = timeout;
        ASSERT_TRUE(fetcher.OpenSession(settings));
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
    std::vector<Stage> stages;
};

// Without a Content-Length the body is read until the connection closes, its total unknown.
TEST_F(HttpFetcherTest, SavesTheBodyInBlocksIntoANewFolderAndReportsEachStage) {
    server->addRoute({.path = "/sized", .body = Pattern(25000)});
    server->addRoute({.path = "/unsized", .body = Pattern(25000), .mode = Route::Body::UntilClose});
    RecordStages();
    for (const auto& [path, total] : {std::pair{"/sized", 25000}, {"/unsized", kUnknownLength}}) {
        SCOPED_TRACE(path);
        stages.clear();
        std::filesystem::remove_all(file.parent_path());
        ASSERT_TRUE(Download(server->url(path)));

        EXPECT_EQ(test::ReadFileBytes(file), Pattern(25000));
        EXPECT_EQ(fetcher.ErrorCode(), 0);
        EXPECT_EQ(fetcher.StatusCode(), 200);
        ASSERT_GE(stages.size(), 5u); // at least three blocks
        EXPECT_EQ(stages.front(), (Stage{kProgressStarted, total, 0}));
        EXPECT_EQ(stages.back(), (Stage{kProgressFinished, total, 25000}));
        for (std::size_t i = 1; i + 1 < stages.size(); ++i) {
            EXPECT_EQ(stages[i][0], kProgressBlock);
            EXPECT_GT(stages[i][2], stages[i - 1][2]);
            EXPECT_LE(stages[i][2] - stages[i - 1][2], 10240);
        }
    }

    // A compressed body is asked for, then saved and counted decoded.
    server->addRoute({.path = "/gzipped", .body = Pattern(25000), .gzip = true});
    stages.clear();
    ASSERT_TRUE(Download(server->url("/gzipped")));
    EXPECT_EQ(test::ReadFileBytes(file), Pattern(25000));
    EXPECT_EQ(stages.back()[2], 25000);
    ASSERT_GE(stages.size(), 5u);
    EXPECT_NE(server->requestHead("/gzipped").find("\r\nAccept-Encoding: gzip, deflate\r\n"),
              std::string::npos);
}

// Only a leading and a trailing quote of the entity tag go.
TEST_F(HttpFetcherTest, RequestNamesTheProductAndTheEntityTagLosesItsQuotes) {
    server->addRoute({.path = "/strong", .headers = {{"ETag", "\"v1-abc\""}}});
    ASSERT_TRUE(Download(server->url("/strong")));
    EXPECT_EQ(fetcher.EntityTag(), u"v1-abc");
    const std::string head = server->requestHead("/strong");
    EXPECT_TRUE(head.starts_with("GET /strong HTTP/1.1\r\n")) << head;
    EXPECT_NE(head.find("\r\nUser-Agent: Quillfeed/2.0.2\r\n"), std::string::npos) << head;
    EXPECT_NE(head.find("\r\nAccept: */* \r\n"), std::string::npos) << head;
    EXPECT_EQ(head.find("Authorization"), std::string::npos) << head;
}

// A form body turns the session's request into a POST that carries it, typed, with the
// authorization header; a value that could end the header line is left out instead.
TEST_F(HttpFetcherTest, SessionPostsAFormBodyWithItsTypeAndAuthorization) {
    struct Collector : ResponseReceiver {
        bool OnHead(const ResponseHead& head) override { return head.status == 200; }
        bool OnBlock(std::string_view block) override { return body.append(block), true; }
        bool ShouldStop() override { return false; }
        std::string body;
    } collector;
    Serve("/form", "answered");
    const auto session = HttpSession::Open(settings.timeout);
    const std::u16string host = u"127.0.0.1";
    HttpRequest request;
    request.host = host;
    request.path = u"form";
    request.port = server->port();
    request.authorization = "GoogleLogin auth=user/0a1b";
    request.formBody = "T=x&i=1&i=2&t=%C3%A9t%C3%A9";
    ASSERT_TRUE(session->Send(request, collector).headReceived);
    EXPECT_EQ(collector.body, "answered");
    std::string head = server->requestHead("/form");
    EXPECT_TRUE(head.starts_with("POST /form HTTP/1.1\r\n")) << head;
    EXPECT_NE(head.find("\r\nUser-Agent: Quillfeed/2.0.2\r\n"), std::string::npos) << head;
    EXPECT_NE(head.find("\r\nAuthorization: GoogleLogin auth=user/0a1b\r\n"), std::string::npos)
        << head;
    EXPECT_NE(head.find("\r\nContent-Type: application/x-www-form-urlencoded\r\n"),
              std::string::npos)
        << head;
    EXPECT_TRUE(head.ends_with("\r\n\r\nT=x&i=1&i=2&t=%C3%A9t%C3%A9")) << head;

    request.authorization = "GoogleLogin auth=x\r\nX-Injected: 1";
    request.formBody = "";
    ASSERT_TRUE(session->Send(request, collector).headReceived);
    head = server->requestHead("/form");
    EXPECT_TRUE(head.starts_with("POST /form HTTP/1.1\r\n")) << head;
    EXPECT_EQ(head.find("Authorization"), std::string::npos) << head;
    EXPECT_EQ(head.find("X-Injected"), std::string::npos) << head;
}

// The session keeps its connection across redirects and downloads; a new session opens another.
TEST_F(HttpFetcherTest, TwoRedirectsAreFollowedOverOneConnectionButTheThirdFailsWithItsStatus) {
    Redirect("/moved", 301, server->url("/found"));
    Redirect("/found", 302, server->url("/feed.xml"));
    Redirect("/first", 302, server->url("/moved"));
    Serve("/feed.xml");

    ASSERT_TRUE(Download(server->url("/moved")));
    EXPECT_EQ(test::ReadFileBytes(file), "<rss/>");
    EXPECT_EQ(fetcher.Url().path, u"feed.xml");
    EXPECT_EQ(server->hits("/found"), 1);
    ASSERT_TRUE(Download(server->url("/feed.xml")));
    EXPECT_EQ(server->connections(), 1);

    Reopen(settings.timeout);
    std::filesystem::remove(file);
    EXPECT_FALSE(Download(server->url("/first")));
    EXPECT_EQ(server->connections(), 2);
    EXPECT_EQ(fetcher.ErrorCode(), 302);
    EXPECT_EQ(server->hits("/found"), 2);
    EXPECT_EQ(server->hits("/feed.xml"), 2);
    EXPECT_FALSE(std::filesystem::exists(file));

    // 307 and 308 are followed too; only a chain of permanent redirects says the feed moved.
    Redirect("/permanent", 308, server->url("/moved-for-good"));
    Redirect("/moved-for-good", 301, server->url("/feed.xml"));
    Redirect("/temporary", 307, server->url("/permanent"));
    ASSERT_TRUE(Download(server->url("/permanent")));
    EXPECT_EQ(fetcher.RedirectedTo(), server->url("/feed.xml"));
    EXPECT_TRUE(fetcher.OnlyPermanentRedirects());
    EXPECT_FALSE(Download(server->url("/temporary")));
    EXPECT_EQ(fetcher.ErrorCode(), 301);
    Redirect("/temporary", 307, server->url("/moved-for-good"));
    ASSERT_TRUE(Download(server->url("/temporary")));
    EXPECT_FALSE(fetcher.OnlyPermanentRedirects());
}

// A missing scheme means http whatever the fetcher fetched before, a quoted Location loses its
// quotes, and a redirect to ftp or file is requested over http and saved; an unknown scheme is
// no scheme.
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
    // Without a known prefix the scheme stays http and "gopher:" is taken for the host.
    Redirect("/to-gopher", 302, u"gopher://127.0.0.1/feed");
    EXPECT_FALSE(Download(server->url("/to-gopher")));
    EXPECT_EQ(fetcher.Url().scheme, kSchemeHttp);
    EXPECT_EQ(fetcher.Url().host, u"gopher:");
    EXPECT_EQ(fetcher.ErrorCode(), kErrorNameNotResolved);
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

TEST_F(HttpFetcherTest, EntityTagLosesItsQuotesButValidatorsGoBackByteForByte) {
    const std::string etag = "W/\"v2 x\"";
    const std::string modified = "Fri, 15 Mar 2024 08:00:00 GMT";
    server->addRoute({.path = "/weak",
                      .body = "<rss/>",
                      .headers = {{"ETag", etag}, {"Last-Modified", modified}}});
    Redirect("/to-weak", 302, server->url("/weak"));

    // Only a leading and a trailing quote go.
    ASSERT_TRUE(Download(server->url("/weak")));
    EXPECT_EQ(fetcher.EntityTag(), u"W/\"v2 x");
    EXPECT_EQ(fetcher.Answer().Header("ETag"), etag);
    EXPECT_EQ(server->requestHead("/weak").find("If-"), std::string::npos);

    test::WriteFileBytes(file, "cached");
    const std::u16string sentTag = Utf8ToUtf16(etag);
    const std::u16string sentDate = Utf8ToUtf16(modified);
    ASSERT_TRUE(fetcher.Download(settings, server->url("/weak"), FromFsPath(file), u"", u"", {},
                                 {sentTag, sentDate}));
    EXPECT_TRUE(fetcher.NotModified());
    EXPECT_EQ(fetcher.StatusCode(), 304);
    EXPECT_EQ(test::ReadFileBytes(file), "cached");
    const std::string head = server->requestHead("/weak");
    EXPECT_NE(head.find("\r\nIf-None-Match: " + etag + "\r\n"), std::string::npos) << head;
    EXPECT_NE(head.find("\r\nIf-Modified-Since: " + modified + "\r\n"), std::string::npos);

    // Validators belong to the address asked for, never to where it redirects.
    ASSERT_TRUE(fetcher.Download(settings, server->url("/to-weak"), FromFsPath(file), u"", u"", {},
                                 {sentTag, sentDate}));
    EXPECT_FALSE(fetcher.NotModified());
    EXPECT_EQ(test::ReadFileBytes(file), "<rss/>");
    EXPECT_EQ(server->requestHead("/weak").find("If-"), std::string::npos);
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
    std::atomic<bool> stop{false};
    settings.stopRequested = &stop;
    progress = [&](int32_t stage, int32_t total, int32_t bytes) {
        stages.push_back({stage, total, bytes});
        if (bytes >= 5000) {
            stop = true;
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
    Reopen(std::chrono::minutes(10));
    std::atomic<bool> abort{true};
    std::atomic<bool> stop{false};
    settings.abortRequested = &abort;
    settings.stopRequested = &stop;

    EXPECT_FALSE(Download(server->url("/silent")));
    EXPECT_TRUE(fetcher.StoppedBeforeAnswer());
    EXPECT_EQ(server->hits("/silent"), 0);

    abort = false;
    const std::jthread stopper([&] {
        if (server->awaitHits("/silent", 1)) {
            stop = true;
        }
    });
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(Download(server->url("/silent")));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
    EXPECT_TRUE(fetcher.StoppedBeforeAnswer());
    EXPECT_EQ(fetcher.ErrorCode(), kErrorOperationCancelled);
    EXPECT_FALSE(std::filesystem::exists(file));

    stop = false;
    Serve("/feed.xml");
    EXPECT_TRUE(Download(server->url("/feed.xml")));
    EXPECT_FALSE(fetcher.StoppedBeforeAnswer());
}

// 404, 410, 429 and 503 are their own error codes. A download without a session fails without
// a code; a closed port, a silent server and a failure raised while the body comes in each give
// their own.
TEST_F(HttpFetcherTest, FailuresGiveTheirOwnErrorCodes) {
    Serve("/feed.xml", Pattern(30000));
    server->addRoute({.path = "/silent", .mode = Route::Body::Silent});
    server->addRoute({.path = "/broken.xml", .status = 500, .body = "broken"});
    EXPECT_FALSE(Download(server->url("/missing.xml")));
    EXPECT_EQ(fetcher.ErrorCode(), 404);
    EXPECT_FALSE(std::filesystem::exists(file));
    EXPECT_FALSE(Download(server->url("/broken.xml")));
    EXPECT_EQ(fetcher.ErrorCode(), 0);
    EXPECT_EQ(fetcher.StatusCode(), 500);
    // A server that asks to be left alone is told apart from one that is broken.
    for (const int status : {410, 429, 503}) {
        server->addRoute({.path = "/refused", .status = status, .body = "go away"});
        EXPECT_FALSE(Download(server->url("/refused")));
        EXPECT_EQ(fetcher.ErrorCode(), status);
    }
    // "Not modified" to a request without validators cannot mean the cached copy.
    server->addRoute({.path = "/unasked", .status = 304});
    EXPECT_FALSE(Download(server->url("/unasked")));
    EXPECT_FALSE(fetcher.NotModified());

    HttpFetcher unopened;
    EXPECT_FALSE(unopened.Download(settings, server->url("/feed.xml"), FromFsPath(file), u"", u""));
    EXPECT_EQ(unopened.ErrorCode(), 0);
    EXPECT_EQ(server->hits("/feed.xml"), 0);

    EXPECT_FALSE(
        Download(u"http://127.0.0.1:" + AsciiToUtf16(std::to_string(ClosedPort())) + u"/feed.xml"));
    EXPECT_EQ(fetcher.ErrorCode(), kErrorCannotConnect);

    progress = [](int32_t stage, int32_t, int32_t) {
        if (stage == kProgressBlock) {
            throw std::runtime_error("receiver failed");
        }
    };
    EXPECT_FALSE(Download(server->url("/feed.xml")));
    EXPECT_EQ(fetcher.ErrorCode(), kErrorException);

    Reopen(std::chrono::milliseconds(1000));
    EXPECT_FALSE(Download(server->url("/silent")));
    EXPECT_EQ(fetcher.ErrorCode(), kErrorTimeout);
}

// A local file that cannot be created still counts as a success.
TEST_F(HttpFetcherTest, DownloadBringsUpTheSharedConnectionWhereverTheBodyGoes) {
    ReleaseConnection(&ProcessConnectionHandle());
    Serve("/feed.xml");
    test::WriteFileBytes(dir / "QFChannelsData", "a file where the folder should be");
    EXPECT_TRUE(Download(server->url("/feed.xml")));
    EXPECT_EQ(fetcher.ErrorCode(), 0);
    EXPECT_TRUE(IsConnected(ProcessConnectionHandle()));
}

class HttpsFetcherTest : public HttpFetcherTest {
protected:
    HttpsFetcherTest()
        : certificates(test::WriteTestCertificates(dir.path())),
          caFile("QUILLFEED_CA_FILE", certificates.authority.string()) {
        listeners = certificates.listeners;
    }

    test::TestCertificates certificates;
    test::EnvVar caFile;
};

// The tolerant check forgives dates and host names, never an unknown issuer.
TEST_F(HttpsFetcherTest, FullCheckAcceptsOnlyAProperCertificateAndTolerantOneForgivesSome) {
    Serve("/feed.xml");
    const struct {
        const char* listener;
        int32_t full;
        int32_t tolerant;
    } cases[] = {{"valid", 0, 0},
                 {"expired", kErrorCertificateDate, 0},
                 {"not-yet-valid", kErrorCertificateDate, 0},
                 {"wrong-host", kErrorCertificateHostName, 0},
                 {"untrusted", kErrorUntrustedIssuer, kErrorUntrustedIssuer}};
    for (const bool tolerant : {false, true}) {
        settings.tolerantCertificates = tolerant;
        for (const auto& c : cases) {
            SCOPED_TRACE(std::string(c.listener) + (tolerant ? " tolerant" : " full"));
            const int32_t expected = tolerant ? c.tolerant : c.full;
            std::filesystem::remove(file);
            EXPECT_EQ(Download(server->url("/feed.xml", c.listener)), expected == 0);
            EXPECT_EQ(fetcher.ErrorCode(), expected);
            EXPECT_EQ(std::filesystem::exists(file), expected == 0);
        }
    }
}

} // namespace
} // namespace qf
