#include "ui/HtmlView.h"

#include "ui/DataFolderFile.h"
#include "ui/PrivateMessages.h"
#include "ui/QtText.h"
#include "ui/Theme.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTextCursor>
#include <QTextDocument>
#include <array>

namespace qf::ui {

namespace {

// How much each text size level scales the program's font, smallest to largest.
constexpr std::array kTextSizeScale = {0.8, 0.9, 1.0, 1.2, 1.45};
constexpr int kMediumLevel = 2;
constexpr QLatin1String kLocalLinkPrefix("qf_");
constexpr QLatin1String kFilePictureOpen("src=\"file://");
constexpr qsizetype kSourceOpenLength = 5;

bool IsRemote(const QUrl& name) {
    const QString scheme = name.scheme();
    return scheme.compare(QLatin1String("http"), Qt::CaseInsensitive) == 0 ||
           scheme.compare(QLatin1String("https"), Qt::CaseInsensitive) == 0;
}

// Stands in for a picture that is not there (yet): the document would otherwise draw its own
// broken-picture sign.
QVariant EmptyPicture() {
    QImage image(1, 1, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    return image;
}

// Pages name their pictures on disk by "file://" and the path as it is, which the document would
// read as an address: a "#", "?" or "%" in the path would cut it short or change it. Each such
// name becomes the file's properly encoded address.
QString WithEncodedFileAddresses(QString html) {
    qsizetype at = html.indexOf(kFilePictureOpen, 0, Qt::CaseInsensitive);
    while (at >= 0) {
        const qsizetype start = at + kSourceOpenLength;
        const qsizetype pathStart = at + kFilePictureOpen.size();
        const qsizetype end = html.indexOf(QLatin1Char('"'), pathStart);
        if (end < 0) {
            break;
        }
        const QString address = QUrl::fromLocalFile(html.mid(pathStart, end - pathStart))
                                    .toString(QUrl::FullyEncoded)
                                    .toHtmlEscaped();
        html.replace(start, end - start, address);
        at = html.indexOf(kFilePictureOpen, start + address.size(), Qt::CaseInsensitive);
    }
    return html;
}

} // namespace

HtmlView::HtmlView(QObject* frame, int screenControl, QWidget* parent)
    : QTextBrowser(parent), frame_(frame), screenControl_(screenControl) {
    setOpenLinks(false);
    setOpenExternalLinks(false);
    setFrameShape(NoFrame);
    connect(this, &QTextBrowser::anchorClicked, this, [this](const QUrl& target) {
        if (!linkHandler_) {
            return;
        }
        if (const auto address = LinkTarget(target)) {
            linkHandler_(*address);
        }
    });
    ApplyFont();
}

void HtmlView::SetPage(const std::optional<std::u16string>& text, bool isHtml,
                       std::optional<QUrl> base) {
    base_ = std::move(base);
    page_ = text ? std::optional(ToQString(*text)) : std::nullopt;
    isHtml_ = isHtml;
    ShowKeptPage();
    verticalScrollBar()->setValue(verticalScrollBar()->minimum());
    horizontalScrollBar()->setValue(horizontalScrollBar()->minimum());
}

void HtmlView::ShowPageAgain() {
    const int top = verticalScrollBar()->value();
    const int left = horizontalScrollBar()->value();
    ShowKeptPage();
    verticalScrollBar()->setValue(top);
    horizontalScrollBar()->setValue(left);
}

// The page's own colours are those of the view's palette, so the page is laid out anew from its
// text whenever the palette changes.
void HtmlView::ShowKeptPage() {
    clear();
    // The document resolves the names of its pictures against this before asking for them.
    document()->setBaseUrl(base_.value_or(QUrl()));
    if (!page_) {
        return;
    }
    if (isHtml_) {
        setHtml(ThemedPage(WithEncodedFileAddresses(*page_), palette()));
    } else {
        setPlainText(*page_);
    }
}

void HtmlView::changeEvent(QEvent* event) {
    QTextBrowser::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && page_) {
        ShowPageAgain();
    }
}

void HtmlView::SetTextSize(int level) {
    textSize_ =
        level >= 0 && level < static_cast<int>(kTextSizeScale.size()) ? level : kMediumLevel;
    ApplyFont();
}

void HtmlView::SetClearType(bool on) {
    clearType_ = on;
    ApplyFont();
}

void HtmlView::SetFitToScreen(bool on) {
    setLineWrapMode(on ? WidgetWidth : NoWrap);
}

bool HtmlView::HasHorizontalScrollBar() const {
    const QScrollBar* bar = horizontalScrollBar();
    return bar->maximum() > bar->minimum();
}

void HtmlView::ApplyFont() {
    QFont font = QApplication::font();
    const double scale = kTextSizeScale[static_cast<std::size_t>(textSize_)];
    if (font.pointSizeF() > 0) {
        font.setPointSizeF(font.pointSizeF() * scale);
    } else {
        font.setPixelSize(static_cast<int>(font.pixelSize() * scale));
    }
    font.setStyleStrategy(clearType_ ? QFont::PreferAntialias : QFont::NoAntialias);
    document()->setDefaultFont(font);
    setFont(font);
}

// Whatever gets no answer here the document goes and reads by itself, local files and the
// toolkit's own resources included; so every request is answered, if only with nothing.
QVariant HtmlView::loadResource(int type, const QUrl& name) {
    if (type != QTextDocument::ImageResource) {
        return QByteArray();
    }
    const QImage image = PictureFor(name);
    return image.isNull() ? EmptyPicture() : QVariant(image);
}

QImage HtmlView::PictureFor(const QUrl& name) const {
    if (name.isLocalFile()) {
        const QString path = name.toLocalFile();
        return IsDataFolderFile(path) ? QImage(path) : QImage();
    }
    if (IsRemote(name)) {
        return remoteImageSupplier_ ? remoteImageSupplier_(name) : QImage();
    }
    if (name.scheme().isEmpty() && imageSupplier_) {
        return imageSupplier_(name);
    }
    return {};
}

std::optional<QString> HtmlView::LinkTarget(const QUrl& target) const {
    // Addresses the program names with its "qf_" prefix are no valid URLs to Qt; the handler
    // gets them as the page wrote them.
    const QString written =
        target.isValid() || clickedAnchor_.isEmpty() ? target.toString() : clickedAnchor_;
    if (!base_ || written.startsWith(kLocalLinkPrefix) || !target.isValid() ||
        !target.isRelative()) {
        return written;
    }
    // A relative address alone means nothing to the browser.
    if (base_->isEmpty()) {
        return std::nullopt;
    }
    return base_->resolved(target).toString();
}

// Unlike a new page, the changed layout leaves the scroll bars where the reader put them.
void HtmlView::ShowPicture(const QUrl& name, const QImage& image) {
    document()->addResource(QTextDocument::ImageResource, name, image);
    // The layout asks for the picture's size again only for text marked as changed.
    document()->markContentsDirty(0, document()->characterCount());
}

bool HtmlView::IsStepKey(const QKeyEvent* event) const {
    return (event->key() == Qt::Key_Left || event->key() == Qt::Key_Right) &&
           event->modifiers() == Qt::NoModifier && !HasHorizontalScrollBar();
}

void HtmlView::keyPressEvent(QKeyEvent* event) {
    if (IsStepKey(event)) {
        event->accept();
        return;
    }
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        // A link opened from the keyboard is the one the cursor rests on, not the last clicked.
        clickedAnchor_ = textCursor().charFormat().anchorHref();
    }
    QTextBrowser::keyPressEvent(event);
}

void HtmlView::mouseReleaseEvent(QMouseEvent* event) {
    clickedAnchor_ = anchorAt(event->position().toPoint());
    QTextBrowser::mouseReleaseEvent(event);
}

void HtmlView::keyReleaseEvent(QKeyEvent* event) {
    if (IsStepKey(event) && !event->isAutoRepeat()) {
        PostControlMessage(frame_, event->key() == Qt::Key_Left ? QFM_NAVPREVIOUS : QFM_NAVNEXT,
                           screenControl_);
        event->accept();
        return;
    }
    QTextBrowser::keyReleaseEvent(event);
}

} // namespace qf::ui
