#include "ui/NewsRowDelegate.h"

#include "ui/NewsListModel.h"
#include "ui/RowList.h"
#include "ui/SvgImages.h"
#include "ui/Theme.h"
#include "ui/UiScale.h"

#include <QPainter>
#include <algorithm>

namespace qf::ui {

namespace {

constexpr int kHandheldIconSize = 16;
constexpr double kRowFontScale = 0.92;
constexpr int kStoryLines = 2;
constexpr int kMessageLines = 3;
// The separator lines between rows.
const QColor kGrey(128, 128, 128);

// The room above the tallest letters within the font's height (where accents go): the height
// less the em size.
int InternalLeading(const QFont& font) {
    return std::max(0, QFontMetrics(font).height() - QFontInfo(font).pixelSize());
}

int Indent(const QFont& listFont) {
    return QFontMetrics(listFont).horizontalAdvance(QLatin1Char('x')) / 2;
}

// Paints text over a filled background, as text drawn opaque over the title would be.
void DrawOpaque(QPainter* painter, const QRect& area, int flags, const QString& text,
                const QBrush& background) {
    const QRect bounds = painter->boundingRect(area, flags, text);
    painter->fillRect(bounds.intersected(area), background);
    painter->drawText(area, flags, text);
}

} // namespace

NewsRowDelegate::NewsRowDelegate(std::function<bool()> messageMode, QWidget* list)
    : QStyledItemDelegate(list), messageMode_(std::move(messageMode)) {
    LoadIcon(list);
}

void NewsRowDelegate::LoadIcon(const QWidget* list) {
    iconSize_ = Scaled(kHandheldIconSize, list);
    icon_ = RenderSvgPixmap(QStringLiteral(":/icons/story.svg"), QSize(iconSize_, iconSize_),
                            list->devicePixelRatioF());
}

QFont NewsRowDelegate::NormalFont(const QFont& listFont) {
    QFont font = listFont;
    font.setPixelSize(
        std::max(1, static_cast<int>(QFontInfo(listFont).pixelSize() * kRowFontScale)));
    return font;
}

QFont NewsRowDelegate::BoldFont(const QFont& listFont) {
    QFont font = NormalFont(listFont);
    font.setWeight(QFont::Bold);
    return font;
}

int NewsRowDelegate::RowHeight(const QFont& listFont, bool messageMode) const {
    const QFont font = BoldFont(listFont);
    const QFontMetrics bold(font);
    const int lines = messageMode ? kMessageLines : kStoryLines;
    return std::max(bold.height() * lines + InternalLeading(font), iconSize_ + 2);
}

QSize NewsRowDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const {
    return {option.rect.width(), RowHeight(option.font, messageMode_())};
}

void NewsRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                            const QModelIndex& index) const {
    painter->save();
    const bool selected = option.state.testFlag(QStyle::State_Selected);
    const QPalette& palette = option.palette;
    painter->fillRect(option.rect, selected ? palette.highlight() : palette.base());
    painter->setPen(selected ? palette.highlightedText().color() : palette.text().color());
    if (messageMode_()) {
        PaintMessage(painter, option, index);
    } else {
        PaintStory(painter, option, index);
    }
    painter->restore();
    PaintCurrentRowFrame(painter, option);
}

void NewsRowDelegate::PaintStory(QPainter* painter, const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const {
    const QRect row = option.rect;
    const int indent = Indent(option.font);
    const QBrush background = option.state.testFlag(QStyle::State_Selected)
                                  ? option.palette.highlight()
                                  : option.palette.base();
    const int iconTop = (row.top() + row.bottom() + 1 - iconSize_) / 2;
    painter->drawPixmap(row.left() + indent, iconTop, icon_);

    const QRect text(QPoint(row.left() + indent + iconSize_ + indent, row.top()),
                     QPoint(row.right() - indent, row.bottom()));
    const bool read = index.data(NewsListModel::kReadRole).toBool();
    painter->setClipRect(row);
    painter->setFont(read ? NormalFont(option.font) : BoldFont(option.font));
    painter->drawText(text, Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap,
                      index.data(Qt::DisplayRole).toString());

    // The date goes under a blank first line so it sits right-aligned on the second.
    const QFont normal = NormalFont(option.font);
    painter->setFont(normal);
    painter->setPen(SecondaryText(option.palette, option.state.testFlag(QStyle::State_Selected)));
    const int lineHeight = QFontMetrics(normal).lineSpacing();
    const QRect dateLine(text.left(), text.top() + lineHeight, text.width(), lineHeight);
    DrawOpaque(painter, dateLine, Qt::AlignRight | Qt::AlignTop | Qt::TextSingleLine,
               QLatin1Char(' ') + index.data(NewsListModel::kDateRole).toString(), background);

    // Neighbouring rows share one separator: the lower row draws it along its top, and only the
    // last row draws its bottom edge.
    painter->setPen(QPen(kGrey, 0));
    if (index.row() != 0) {
        painter->drawLine(row.topLeft(), row.topRight());
    }
    if (index.row() == index.model()->rowCount() - 1) {
        painter->drawLine(row.bottomLeft(), row.bottomRight());
    }
}

void NewsRowDelegate::PaintMessage(QPainter* painter, const QStyleOptionViewItem& option,
                                   const QModelIndex& index) const {
    const QRect row = option.rect;
    const int indent = Indent(option.font);
    const QRect area(QPoint(row.left() + indent, row.top()),
                     QPoint(row.right() - indent, row.bottom()));
    const QString text = index.data(Qt::DisplayRole).toString();
    const qsizetype at = text.indexOf(QLatin1Char('@'));
    painter->setClipRect(row);
    const bool selected = option.state.testFlag(QStyle::State_Selected);
    painter->setFont(BoldFont(option.font));
    painter->setPen(ErrorText(option.palette, selected));
    painter->drawText(area, Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap,
                      at < 0 ? text : text.left(at));
    if (at >= 0) {
        painter->setFont(NormalFont(option.font));
        painter->setPen(SecondaryText(option.palette, selected));
        const QBrush background = selected ? option.palette.highlight() : option.palette.base();
        DrawOpaque(painter, area, Qt::AlignRight | Qt::AlignVCenter | Qt::TextSingleLine,
                   text.mid(at + 1), background);
    }
}

} // namespace qf::ui
