#pragma once

#include <QImage>
#include <QTextBrowser>
#include <QUrl>
#include <functional>
#include <optional>
#include <string>

namespace qf::ui {

// The view that shows the program's generated pages: a whole page at once, scrolled to its top,
// pictures only from the program's own files in the data folder or from the screen that owns the
// view (which may fetch http(s) pictures in the background), text size levels 0..4,
// antialiased text on or off, the page's colours made those of the view's palette (and made again
// when it changes), and lines wrapped to the view's width or scrolled sideways. It never
// reaches the network itself and never runs a script. Left and Right released while the page needs
// no sideways scrolling become previous and next requests to the frame; activated links are handed
// to the link handler.
class HtmlView : public QTextBrowser {
    Q_OBJECT

public:
    // Supplies a picture that the page names without a file URL (the welcome screen's logo).
    using ImageSupplier = std::function<QImage(const QUrl& name)>;
    using LinkHandler = std::function<void(const QString& target)>;

    // `frame` receives the previous/next requests, naming the screen by `screenControl`.
    HtmlView(QObject* frame, int screenControl, QWidget* parent);

    // Replaces the page; no text leaves the view empty. A page given `base` has its relative
    // pictures and links resolved against it; an empty base leaves its relative pictures empty
    // and makes its relative links lead nowhere. Without `base` links are handed on as written.
    // Links that begin with "qf_" are the program's own and are always handed on as written.
    void SetPage(const std::optional<std::u16string>& text, bool isHtml,
                 std::optional<QUrl> base = std::nullopt);
    // Lays the page shown out again from its text, asking for its pictures anew; the scroll
    // position stays.
    void ShowPageAgain();
    void SetTextSize(int level);
    void SetClearType(bool on);
    void SetFitToScreen(bool on);
    bool HasHorizontalScrollBar() const;

    void SetImageSupplier(ImageSupplier supplier) { imageSupplier_ = std::move(supplier); }
    void SetLinkHandler(LinkHandler handler) { linkHandler_ = std::move(handler); }
    // Supplies a picture named by an http(s) address; a null image leaves its place empty.
    void SetRemoteImageSupplier(ImageSupplier supplier) {
        remoteImageSupplier_ = std::move(supplier);
    }
    // Puts a picture that arrived after its page into the page, keeping the scroll position.
    void ShowPicture(const QUrl& name, const QImage& image);

    int textSizeLevel() const { return textSize_; }
    bool clearType() const { return clearType_; }
    bool fitToScreen() const { return lineWrapMode() != NoWrap; }

    QVariant loadResource(int type, const QUrl& name) override;

protected:
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void ShowKeptPage();
    void ApplyFont();
    bool IsStepKey(const QKeyEvent* event) const;
    QImage PictureFor(const QUrl& name) const;
    std::optional<QString> LinkTarget(const QUrl& target) const;

    QObject* frame_;
    int screenControl_;
    // A new view draws its text one size below medium until it is told otherwise.
    int textSize_ = 1;
    bool clearType_ = true;
    ImageSupplier imageSupplier_;
    ImageSupplier remoteImageSupplier_;
    LinkHandler linkHandler_;
    std::optional<QUrl> base_;
    // The page as it was given, before its colours and file addresses were made the view's.
    std::optional<QString> page_;
    bool isHtml_ = true;
    // The link under the last mouse release or at the cursor when Enter was pressed, as the page
    // wrote it.
    QString clickedAnchor_;
};

} // namespace qf::ui
