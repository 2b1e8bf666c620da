#pragma once

#include <QImage>
#include <QTextBrowser>
#include <functional>
#include <optional>
#include <string>

namespace qf::ui {

// The view that shows the program's generated pages: a whole page at once, scrolled to its top,
// pictures only from local files (or from the screen that owns the view), text size levels 0..4,
// antialiased text on or off, and lines wrapped to the view's width or scrolled sideways. It never
// reaches the network and never runs a script. Left and Right released while the page needs no
// sideways scrolling become previous and next requests to the frame; activated links are handed
// to the link handler.
class HtmlView : public QTextBrowser {
    Q_OBJECT

public:
    // Supplies a picture that the page names without a file URL (the welcome screen's logo).
    using ImageSupplier = std::function<QImage(const QUrl& name)>;
    using LinkHandler = std::function<void(const QString& target)>;

    // `frame` receives the previous/next requests, naming the screen by `screenControl`.
    HtmlView(QObject* frame, int screenControl, QWidget* parent);

    // Replaces the page; no text leaves the view empty.
    void SetPage(const std::optional<std::u16string>& text, bool isHtml);
    void SetTextSize(int level);
    void SetClearType(bool on);
    void SetFitToScreen(bool on);
    bool HasHorizontalScrollBar() const;

    void SetImageSupplier(ImageSupplier supplier) { imageSupplier_ = std::move(supplier); }
    void SetLinkHandler(LinkHandler handler) { linkHandler_ = std::move(handler); }

    int textSizeLevel() const { return textSize_; }
    bool clearType() const { return clearType_; }
    bool fitToScreen() const { return lineWrapMode() != NoWrap; }

    QVariant loadResource(int type, const QUrl& name) override;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void ApplyFont();
    bool IsStepKey(const QKeyEvent* event) const;

    QObject* frame_;
    int screenControl_;
    int textSize_ = 2;
    bool clearType_ = true;
    ImageSupplier imageSupplier_;
    LinkHandler linkHandler_;
    // The link under the last mouse release, as the page wrote it.
    QString clickedAnchor_;
};

} // namespace qf::ui
