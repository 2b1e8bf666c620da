#include "ui/StoryPictures.h"

#include "UiFixture.h"
#include "model/Category.h"
#include "model/Channel.h"
#include "net/PictureFiles.h"
#include "platform/FsPath.h"
#include "support/TestServer.h"
#include "ui/HtmlView.h"
#include "ui/OptionsDialog.h"

#include <QBuffer>
#include <QCheckBox>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QImage>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextLayout>

namespace qf::ui::test {
namespace {

using qf::test::Route;

// Wider than half the line, too wide to share it with the words before it.
constexpr QSize kPictureSize{400, 60};

std::string PngBytes(QColor color) {
    QImage image(kPictureSize, QImage::Format_RGB32);
    image.fill(color);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes.toStdString();
}

// The story screen over a channel whose stories name pictures on a local server.
class StoryPicturesTest : public UiFixture {
protected:
    StoryPicturesTest() {
        server.addRoute({.path = "/pic.png", .body = PngBytes(Qt::red)});
        server.addRoute({.path = "/missing.png", .status = 404, .body = "gone"});
        server.addRoute({.path = "/garbage.png", .body = "not a picture at all"});
        server.addRoute({.path = "/hangs.png", .mode = Route::Body::Silent});
        WriteStore(
            [](ChannelStore& store) { AddTestChannel(store.DefaultCategory(), u"C", 0, 0); });
        StartApp();
        app().mainWindow()->resize(480, 800);
        app().mainWindow()->show();
        app().SetScreen(kStoryScreen);
        channel = app().store().DefaultCategory().ChannelAt(0);
    }

    // A story of the channel whose body shows the pictures at `paths` of the server, followed
    // by `paragraphs` of text.
    NewsItem* Story(std::initializer_list<const char*> paths, int paragraphs = 0) {
        std::u16string body = u"<p>Words before the pictures.</p>";
        for (const char* path : paths) {
            body += u"<img src=\"" + server.url(path) + u"\">";
        }
        for (int i = 0; i < paragraphs; ++i) {
            body += u"<p>More words after the pictures.</p>";
        }
        auto item = std::make_unique<NewsItem>();
        item->SetTitle(WString(u"Story"));
        item->SetDescription(WString(body));
        NewsItem* story = item.get();
        channel->AddItem(std::move(item));
        return story;
    }

    // Shows the story and lays its page out, which is when the view asks for its pictures.
    void Show(NewsItem* story) {
        screen()->ShowStory(channel, story);
        view()->document()->pageCount();
        QCoreApplication::processEvents();
    }

    // The picture the page holds under `name`; the view is asked for it when the page has none.
    QImage Resource(const QString& name) {
        return view()->document()->resource(QTextDocument::ImageResource, name).value<QImage>();
    }
    QImage Shown(const char* path) { return Resource(url(path)); }
    QString url(const char* path) { return QString::fromStdU16String(server.url(path)); }
    bool Kept(const char* path) {
        return std::filesystem::exists(
            ToFsPath(PicturePath(FromFsPath(DataFolder()), server.url(path))));
    }

    StoryScreen* screen() { return storyScreen(); }
    HtmlView* view() { return screen()->view(); }
    bool Settled() { return screen()->pictures()->pending() == 0; }

    qf::test::TestServer server;
    Channel* channel = nullptr;
};

TEST_F(StoryPicturesTest, PictureIsFetchedOnceShownAndKeptAndFailedOnesStayEmpty) {
    NewsItem* story = Story({"/missing.png", "/garbage.png", "/pic.png"}, 200);
    Show(story);
    // The picture arrives above where the reader went, who stays there.
    QScrollBar* bar = view()->verticalScrollBar();
    ASSERT_GT(bar->maximum(), 1000);
    bar->setValue(1000);
    ASSERT_TRUE(WaitFor([&] { return Settled() && Shown("/pic.png").size() == kPictureSize; }));
    EXPECT_EQ(Shown("/pic.png").pixelColor(0, 0), QColor(Qt::red));
    EXPECT_EQ(bar->value(), 1000);
    EXPECT_TRUE(Kept("/pic.png"));
    EXPECT_FALSE(Kept("/missing.png"));
    view()->document()->pageCount();
    const QTextBlock words = view()->document()->find(QStringLiteral("Words before")).block();
    EXPECT_LT(words.layout()->lineAt(0).height(), kPictureSize.height() / 2);
    // Laying the page out again asks the view for every picture once more; the failed ones are
    // not asked for again in the same showing.
    view()->document()->markContentsDirty(0, view()->document()->characterCount());
    view()->resize(view()->width() - 20, view()->height());
    view()->document()->pageCount();
    QCoreApplication::processEvents();
    EXPECT_TRUE(Settled());
    EXPECT_LE(Shown("/missing.png").width(), 1);
    EXPECT_LE(Shown("/garbage.png").width(), 1);
    EXPECT_EQ(server.hits("/missing.png"), 1);
    EXPECT_EQ(server.hits("/garbage.png"), 1);

    Show(Story({}));
    Show(story);
    EXPECT_EQ(Shown("/pic.png").size(), kPictureSize);
    EXPECT_EQ(server.hits("/pic.png"), 1);
}

TEST_F(StoryPicturesTest, RelativePicturesComeFromTheStorysOwnServer) {
    server.addRoute({.path = "/news/pic2.png", .body = PngBytes(Qt::green)});
    NewsItem* story = Story({});
    story->SetLink(WString(server.url("/news/story.html")));
    story->SetDescription(
        WString(u"<p>Words before the pictures.<img src=\"/pic.png\"><img src=\"pic2.png\"></p>"));
    Show(story);
    ASSERT_TRUE(WaitFor([&] { return Settled(); }));
    EXPECT_EQ(Resource("/pic.png").pixelColor(0, 0), QColor(Qt::red));
    EXPECT_EQ(Resource("pic2.png").pixelColor(0, 0), QColor(Qt::green));
    EXPECT_EQ(server.hits("/news/pic2.png"), 1);
    view()->document()->pageCount();
    const QTextBlock words = view()->document()->find(QStringLiteral("Words before")).block();
    EXPECT_LT(words.layout()->lineAt(0).height(), kPictureSize.height() / 2);

    // Without an http(s) link of its own the story's relative pictures stay empty, even those
    // kept from before.
    for (const char16_t* link : {u"", u"file:///news/story.html"}) {
        story->SetLink(WString(link));
        Show(story);
        EXPECT_TRUE(Settled());
        EXPECT_LE(Resource("/pic.png").width(), 1);
        EXPECT_LE(Resource("pic2.png").width(), 1);
    }
}

TEST_F(StoryPicturesTest, WithShowImagesOffNothingIsRequestedNorShown) {
    app().store().settings().SetShowImages(0);
    Show(Story({"/pic.png", "/missing.png"}));
    EXPECT_TRUE(Settled());
    EXPECT_EQ(server.hits("/pic.png"), 0);
    EXPECT_EQ(server.hits("/missing.png"), 0);

    // The picture of a story left behind does not reach the next one, but is kept.
    app().store().settings().SetShowImages(1);
    Show(Story({"/pic.png"}));
    // Asks the server only, so that no answer can be handed to the screen meanwhile.
    while (server.hits("/pic.png") == 0) {
    }
    QSignalSpy answers(screen()->pictures(), &StoryPictures::answered);
    Show(Story({}));
    ASSERT_TRUE(WaitFor([&] { return answers.size() == 1; }));
    EXPECT_TRUE(Kept("/pic.png"));
    EXPECT_TRUE(Settled());
    // With the option off the view has nothing to give but what was put into the page, and a
    // picture kept from earlier stays hidden as well.
    app().store().settings().SetShowImages(0);
    EXPECT_LE(Shown("/pic.png").width(), 1);
    Show(Story({"/pic.png"}));
    EXPECT_LE(Shown("/pic.png").width(), 1);
    EXPECT_EQ(server.hits("/pic.png"), 1);
}

TEST_F(StoryPicturesTest, PicturesChoiceInOptionsTakesEffectAtOnceOnTheStoryShown) {
    Show(Story({"/pic.png"}));
    ASSERT_TRUE(WaitFor([&] { return Settled() && Shown("/pic.png").size() == kPictureSize; }));
    app().SetScreen(kChannelsScreen);
    const auto choosePictures = [this](bool on) {
        RunDialog<OptionsDialog>(
            kCmdOptions, [on](OptionsDialog& options) { options.showImages()->setChecked(on); });
    };
    choosePictures(false);
    EXPECT_LE(Shown("/pic.png").width(), 1);
    choosePictures(true);
    EXPECT_TRUE(WaitFor([&] { return Shown("/pic.png").size() == kPictureSize; }));
    EXPECT_EQ(server.hits("/pic.png"), 1);
}

TEST_F(StoryPicturesTest, LocalFilesShowOnlyFromTheDataFolderAndAHangingOneHoldsNoQuit) {
    const std::string png = PngBytes(Qt::blue);
    qf::test::WriteFileBytes(dir_ / "outside.png", png);
    std::filesystem::create_directories(DataFolder());
    qf::test::WriteFileBytes(DataFolder() / "inside.png", png);
    std::filesystem::create_symlink(dir_ / "outside.png", DataFolder() / "link.png");
    const auto shown = [&](const std::filesystem::path& path, const char* prefix = "file://") {
        return Resource(prefix + QString::fromStdString(path.string()));
    };
    EXPECT_EQ(shown(DataFolder() / "inside.png").size(), kPictureSize);
    EXPECT_LE(shown(dir_ / "outside.png").width(), 1);
    EXPECT_LE(shown(dir_ / "outside.png", "").width(), 1);
    EXPECT_LE(shown(DataFolder() / ".." / ".." / "outside.png").width(), 1);
    EXPECT_LE(shown(DataFolder() / "link.png").width(), 1);
    EXPECT_TRUE(view()
                    ->document()
                    ->resource(QTextDocument::StyleSheetResource, QUrl(url("/pic.png")))
                    .toByteArray()
                    .isEmpty());
    EXPECT_EQ(server.hits("/pic.png"), 0);

    // Quitting while a picture hangs ends promptly.
    Show(Story({"/hangs.png"}));
    ASSERT_TRUE(WaitFor([&] { return server.hits("/hangs.png") == 1; }));
    QElapsedTimer timer;
    timer.start();
    QuitApp();
    EXPECT_LT(timer.elapsed(), 5000);
}

} // namespace
} // namespace qf::ui::test
