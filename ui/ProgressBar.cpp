#include "ui/ProgressBar.h"

#include "model/ChannelStore.h"
#include "ui/CommandIds.h"
#include "ui/SvgImages.h"
#include "ui/Theme.h"
#include "ui/UiScale.h"

#include <QApplication>
#include <QFontInfo>
#include <QPainter>
#include <QProgressBar>
#include <QStyleOptionProgressBar>
#include <QToolButton>
#include <algorithm>

namespace qf::ui {

namespace {

constexpr int kTextCapacity = 260;
constexpr double kFontScale = 0.92;
constexpr int kBarPadding = 4;
constexpr int kMinimumBarHeight = 12;
constexpr int kControlMargin = 5;
// How far inside a part's outer edge its colour is sampled, halfway down where the text runs.
constexpr int kSampleInset = 2;
// What a screen reader calls the control and the bar while the bar has no text.
QString DefaultName() {
    return QStringLiteral("Refresh progress");
}

// The system font a little smaller, as the handheld's controls used it.
QFont ControlFont() {
    QFont font = QApplication::font();
    font.setPixelSize(static_cast<int>(QFontInfo(font).pixelSize() * kFontScale));
    return font;
}

// The hosted bar: the platform's bar, with the owner's text drawn over it in black or white,
// whichever reads better on the colour under each half.
class TextOverBar : public QProgressBar {
public:
    TextOverBar(const ProgressBar& owner, QWidget* parent) : QProgressBar(parent), owner_(owner) {
        setTextVisible(false);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        const QImage base = PaintBase();
        QPainter painter(this);
        painter.drawImage(0, 0, base);
        DrawText(painter, base);
    }

private:
    QImage PaintBase() {
        const qreal ratio = devicePixelRatioF();
        QImage image(size() * ratio, QImage::Format_ARGB32_Premultiplied);
        image.setDevicePixelRatio(ratio);
        image.fill(palette().window().color());
        QPainter painter(&image);
        QStyleOptionProgressBar option;
        initStyleOption(&option);
        option.textVisible = false;
        style()->drawControl(QStyle::CE_ProgressBar, &option, &painter, this);
        return image;
    }

    void DrawText(QPainter& painter, const QImage& base) {
        const QRect client = rect();
        if (owner_.text().isEmpty() || client.isEmpty()) {
            return;
        }
        const int split = SplitColumn(client.left(), client.width(), minimum(), maximum(), value());
        const QRect filled(QPoint(client.left(), client.top()), QPoint(split - 1, client.bottom()));
        const QRect empty(QPoint(split, client.top()), client.bottomRight());
        painter.setFont(font());
        const int middle = client.center().y();
        DrawPart(painter, base, filled, QPoint(client.left() + kSampleInset, middle));
        DrawPart(painter, base, empty, QPoint(client.right() - kSampleInset, middle));
    }

    void DrawPart(QPainter& painter, const QImage& base, const QRect& part, QPoint sample) {
        const qreal ratio = base.devicePixelRatio();
        const QPoint pixel(static_cast<int>(sample.x() * ratio),
                           static_cast<int>(sample.y() * ratio));
        if (!base.rect().contains(pixel)) {
            return;
        }
        painter.save();
        painter.setPen(TextOn(base.pixelColor(pixel)));
        painter.setClipRect(part);
        // A line longer than the bar ends in an ellipsis rather than being cut at both ends.
        const QString text =
            painter.fontMetrics().elidedText(owner_.text(), Qt::ElideRight, rect().width());
        painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine, text);
        painter.restore();
    }

    const ProgressBar& owner_;
};

} // namespace

int SplitColumn(int left, int width, int low, int high, int position) {
    int split =
        high - low >= 1
            ? left + static_cast<int>(static_cast<long long>(width) * position / (high - low))
            : left + width / 2;
    if (width % 2 != 0) {
        ++split;
    }
    return split;
}

ProgressBar::ProgressBar(ChannelStore& store, QWidget* parent)
    : QWidget(parent), store_(store), bar_(new TextOverBar(*this, this)),
      stopButton_(new QToolButton(this)) {
    setObjectName(QStringLiteral("QFProgressBar"));
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Button);
    setFont(ControlFont());
    bar_->setObjectName(QString::number(40306));
    bar_->setFont(font());
    stopButton_->setObjectName(QString::number(kCmdStopProgress));
    stopButton_->setToolTip(QStringLiteral("Stop"));
    stopButton_->setAccessibleName(QStringLiteral("Stop refresh"));
    setAccessibleName(DefaultName());
    bar_->setAccessibleName(DefaultName());
    stopButton_->setAutoRaise(true);
    connect(stopButton_, &QToolButton::clicked, this, &ProgressBar::Stop);
}

void ProgressBar::SetText(const QString& text) {
    text_ = text.left(kTextCapacity - 1);
    bar_->setAccessibleName(text_.isEmpty() ? DefaultName() : text_);
    bar_->update();
}

void ProgressBar::SetRange(int low, int high) {
    bar_->setRange(low, high);
    DescribeValue();
}

void ProgressBar::SetPosition(int position) {
    bar_->setValue(position);
    DescribeValue();
}

void ProgressBar::DescribeValue() {
    // A screen reader that does not ask for the value still hears how far the refresh has come;
    // an empty range is a refresh whose length is not known.
    const int range = bar_->maximum() - bar_->minimum();
    const int done = std::clamp(bar_->value() - bar_->minimum(), 0, std::max(range, 0));
    bar_->setAccessibleDescription(
        range <= 0 ? QString()
                   : QStringLiteral("%1%").arg(static_cast<long long>(done) * 100 / range));
}

int ProgressBar::BarHeight() const {
    return fontMetrics().height() + Scaled(kBarPadding, this);
}

int ProgressBar::PreferredHeight() const {
    return std::max(BarHeight(), Scaled(kMinimumBarHeight, this)) + Scaled(kControlMargin, this);
}

void ProgressBar::resizeEvent(QResizeEvent*) {
    const QRect client = rect();
    const int side = std::max(0, client.height() - 2);
    stopButton_->setGeometry(client.right() - side, 1, side, side);
    stopButton_->setIcon(QIcon(RenderSvgPixmap(QStringLiteral(":/icons/stop.svg"),
                                               QSize(side, side) * 3 / 4, devicePixelRatioF())));
    stopButton_->setIconSize(QSize(side, side) * 3 / 4);
    const int barHeight = BarHeight();
    bar_->setGeometry(client.left() + 1, (client.height() - barHeight) / 2,
                      std::max(0, client.width() - 2 - side - 1), barHeight);
}

void ProgressBar::Stop() {
    store_.refresh().RequestAbort();
}

} // namespace qf::ui
