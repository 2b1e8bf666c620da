#include "ui/HtmlView.h"

#include "ui/PrivateMessages.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTextDocument>
#include <array>

namespace qf::ui {

namespace {

// How much each text size level scales the program's font, smallest to largest.
constexpr std::array kTextSizeScale = {0.8, 0.9, 1.0, 1.2, 1.45};
constexpr int kMediumLevel = 2;

} // namespace

HtmlView::HtmlView(QObject* frame, int screenControl, QWidget* parent)
    : QTextBrowser(parent), frame_(frame), screenControl_(screenControl) {
    setOpenLinks(false);
    setOpenExternalLinks(false);
    setFrameShape(NoFrame);
    connect(this, &QTextBrowser::anchorClicked, this, [this](const QUrl& target) {
        if (linkHandler_) {
            // Addresses the program names with its "qf_" prefix are no valid URLs to Qt; the
            // handler gets them as the page wrote them.
            linkHandler_(target.isValid() || clickedAnchor_.isEmpty() ? target.toString()
                                                                      : clickedAnchor_);
        }
    });
    ApplyFont();
}

void HtmlView::SetPage(const std::optional<std::u16string>& text, bool isHtml) {
    clear();
    if (text) {
        const QString page = QString::fromStdU16String(*text);
        if (isHtml) {
            setHtml(page);
        } else {
            setPlainText(page);
        }
    }
    verticalScrollBar()->setValue(verticalScrollBar()->minimum());
    horizontalScrollBar()->setValue(horizontalScrollBar()->minimum());
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

QVariant HtmlView::loadResource(int type, const QUrl& name) {
    if (type != QTextDocument::ImageResource) {
        return {};
    }
    if (name.isLocalFile()) {
        QImage image(name.toLocalFile());
        return image.isNull() ? QVariant() : QVariant(image);
    }
    if (name.scheme().isEmpty() && imageSupplier_) {
        QImage image = imageSupplier_(name);
        return image.isNull() ? QVariant() : QVariant(image);
    }
    return {};
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
