#include "ui/StoryPictures.h"

#include "model/ChannelStore.h"
#include "net/PictureDownloader.h"
#include "net/PictureFiles.h"
#include "ui/HtmlView.h"
#include "ui/PageContexts.h"
#include "ui/QtText.h"

#include <QFileInfo>
#include <QImageReader>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <algorithm>
#include <vector>

namespace qf::ui {

namespace {

// A few megabytes of compressed data can unpack into gigabytes; a picture that would need more
// memory than this (a 4096 by 4096 picture with transparency) is not shown. The limit holds for
// every picture the program reads, and none of its own comes near it.
constexpr int kMaxDecodedMegabytes = 64;

// A picture too wide to share a line with the text before it moves to the next line, but the
// toolkit still gives the line it left the picture's whole height, with the text floating in
// the middle. A line break before such a picture keeps the text's line as high as the text.
void BreakBeforePicture(QTextDocument& document, const QUrl& name) {
    std::vector<int> positions;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QTextFragment fragment = it.fragment();
            const QTextCharFormat format = fragment.charFormat();
            // The page may name the picture relative to its own address.
            if (!format.isImageFormat() ||
                document.baseUrl().resolved(QUrl(format.toImageFormat().name())) != name) {
                continue;
            }
            // Pictures side by side share one fragment, one character each.
            for (int at = fragment.position(); at < fragment.position() + fragment.length(); ++at) {
                if (at > block.position() && document.characterAt(at - 1) != QChar::LineSeparator) {
                    positions.push_back(at);
                }
            }
        }
    }
    QTextCursor cursor(&document);
    // From the end, so that the positions still to come stay where they are.
    std::reverse(positions.begin(), positions.end());
    for (const int at : positions) {
        cursor.setPosition(at);
        cursor.insertText(QString(QChar::LineSeparator));
    }
}

} // namespace

StoryPictures::StoryPictures(ChannelStore& store, HtmlView& view)
    : QObject(&view), store_(store), view_(view) {
    downloader_ =
        std::make_unique<PictureDownloader>([this](const std::u16string& url, bool saved) {
            // Runs on a worker: the answer is handed to this object's thread.
            QMetaObject::invokeMethod(
                this, [this, address = ToQString(url), saved] { Arrived(address, saved); },
                Qt::QueuedConnection);
        });
    view_.SetRemoteImageSupplier([this](const QUrl& name) { return Supply(name); });
    QImageReader::setAllocationLimit(kMaxDecodedMegabytes);
}

// A child of its view, so the view is already gone here: only the workers are left to stop.
StoryPictures::~StoryPictures() {
    downloader_.reset();
}

void StoryPictures::BeginShowing() {
    ++showing_;
    downloader_->DropWaiting();
    pending_.clear();
    failed_.clear();
}

QString StoryPictures::PathOf(const QString& url) const {
    const std::u16string folder = PageContextFor(store_).dataFolder;
    if (folder.empty()) {
        return {};
    }
    return ToQString(PicturePath(folder, url.toStdU16String()));
}

QImage StoryPictures::Supply(const QUrl& name) {
    if (store_.settings().showImages() == 0) {
        return {};
    }
    const QString url = name.toString(QUrl::FullyEncoded);
    const QString path = PathOf(url);
    if (path.isEmpty() || failed_.contains(url) || pending_.contains(url)) {
        return {};
    }
    if (QFileInfo::exists(path)) {
        // Shown once the layout that asks is over: putting it in may change the page's text.
        QMetaObject::invokeMethod(
            this,
            [this, url, name, path, showing = showing_] {
                if (showing == showing_) {
                    Show(url, name, Load(path));
                }
            },
            Qt::QueuedConnection);
        pending_.emplace(url, name);
        return {};
    }
    if (downloader_->Request(url.toStdU16String(), path.toStdU16String())) {
        pending_.emplace(url, name);
    }
    return {};
}

void StoryPictures::Arrived(const QString& url, bool saved) {
    emit answered(url);
    const auto asked = pending_.find(url);
    if (asked == pending_.end()) {
        // Asked for by a page that is no longer shown.
        return;
    }
    Show(url, asked->second, saved ? Load(PathOf(url)) : QImage());
}

// `name` is a copy: it may come from the entry that is erased here.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
void StoryPictures::Show(const QString& url, QUrl name, const QImage& image) {
    pending_.erase(url);
    if (image.isNull()) {
        failed_.insert(url);
        return;
    }
    QTextDocument& document = *view_.document();
    if (document.textWidth() > 0 && image.width() > document.textWidth() / 2) {
        BreakBeforePicture(document, name);
    }
    view_.ShowPicture(name, image);
}

QImage StoryPictures::Load(const QString& path) {
    QImageReader reader(path);
    QImage image = reader.read();
    const int room =
        view_.viewport()->width() - 2 * static_cast<int>(view_.document()->documentMargin());
    // A picture wider than the view would push the text sideways when lines are fitted to it.
    if (!image.isNull() && view_.fitToScreen() && room > 0 && image.width() > room) {
        image = image.scaledToWidth(room, Qt::SmoothTransformation);
    }
    return image;
}

} // namespace qf::ui
