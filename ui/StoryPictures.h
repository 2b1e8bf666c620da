#pragma once

#include <QImage>
#include <QObject>
#include <QString>
#include <QUrl>
#include <map>
#include <memory>
#include <set>

namespace qf {
class ChannelStore;
class PictureDownloader;
} // namespace qf

namespace qf::ui {

class HtmlView;

// The http(s) pictures of the story shown in a view. With the "show images" option on, a picture
// kept in the data folder is shown at once, and any other is fetched in the background (a few at
// a time, never on this thread) into the data folder and put into the page when it arrives, as
// long as the same showing is still on. A picture that fails or cannot be read stays empty for
// the rest of the showing. With the option off nothing is fetched and nothing shown.
class StoryPictures : public QObject {
    Q_OBJECT

public:
    StoryPictures(ChannelStore& store, HtmlView& view);
    // Waits for running downloads to be cut off; no answer reaches the view afterwards.
    ~StoryPictures() override;

    // A new page is about to be shown: what the previous one asked for is forgotten.
    void BeginShowing();

    // Downloads asked for in this showing that have not answered yet.
    int pending() const { return static_cast<int>(pending_.size()); }

signals:
    // A download has answered, whether its showing is still on or not.
    void answered(const QString& url);

private:
    QImage Supply(const QUrl& name);
    void Arrived(const QString& url, bool saved);
    void Show(const QString& url, QUrl name, const QImage& image);
    QImage Load(const QString& path);
    QString PathOf(const QString& url) const;

    ChannelStore& store_;
    HtmlView& view_;
    // The address asked for, and the name the page gave it.
    std::map<QString, QUrl> pending_;
    std::set<QString> failed_;
    // Counts the showings, so that a picture put off for one is not put into the next.
    int showing_ = 0;
    std::unique_ptr<PictureDownloader> downloader_;
};

} // namespace qf::ui
