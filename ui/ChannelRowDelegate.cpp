#include "ui/ChannelRowDelegate.h"

#include "ui/ChannelListModel.h"
#include "ui/RowList.h"
#include "ui/SvgImages.h"
#include "ui/UiScale.h"

#include <QPainter>
#include <algorithm>

namespace qf::ui {

namespace {

constexpr int kHandheldIconSize = 16;
constexpr std::array<const char*, 3> kStateIcons = {
    ":/icons/channel-idle.svg", ":/icons/channel-updating.svg", ":/icons/channel-failed.svg"};

QFont BoldFont(const QFont& font) {
    QFont bold = font;
    bold.setWeight(QFont::Bold);
    return bold;
}

} // namespace

ChannelRowDelegate::ChannelRowDelegate(const ChannelListModel* model,
                                       std::function<bool()> unreadAlone, QWidget* list)
    : QStyledItemDelegate(list), model_(model), unreadAlone_(std::move(unreadAlone)) {
    LoadIcons(list);
    // A new list is measured afresh; a changed row, which a refresh sends for every channel,
    // only widens the column when its count is wider, so that the whole list is not walked each
    // time.
    const auto forget = [this] { countWidth_ = -1; };
    connect(model, &QAbstractItemModel::modelReset, this, forget);
    connect(model, &QAbstractItemModel::rowsInserted, this, forget);
    connect(model, &QAbstractItemModel::rowsRemoved, this, forget);
    connect(model, &QAbstractItemModel::dataChanged, this,
            [this](const QModelIndex& first, const QModelIndex& last) {
                if (countWidth_ >= 0) {
                    countWidth_ =
                        std::max(countWidth_, WidestCount(QFontMetrics(BoldFont(countFont_)),
                                                          first.row(), last.row()));
                }
            });
}

int ChannelRowDelegate::WidestCount(const QFontMetrics& bold, int first, int last) const {
    int widest = 0;
    for (int row = first; row <= last; ++row) {
        const QModelIndex index = model_->index(row);
        widest =
            std::max(widest, bold.horizontalAdvance(CountText(
                                 index.data(ChannelListModel::kUnreadRole).toInt(),
                                 index.data(ChannelListModel::kTotalRole).toInt(), countAlone_)));
    }
    // Half an "x" either side keeps a long count apart from the title.
    return widest > 0 ? widest + bold.horizontalAdvance(QLatin1Char('x')) : 0;
}

void ChannelRowDelegate::LoadIcons(const QWidget* list) {
    iconSize_ = Scaled(kHandheldIconSize, list);
    for (std::size_t i = 0; i < kStateIcons.size(); ++i) {
        icons_[i] = RenderSvgPixmap(QString::fromLatin1(kStateIcons[i]),
                                    QSize(iconSize_, iconSize_), list->devicePixelRatioF());
    }
}

int ChannelRowDelegate::CountWidth(const QFont& listFont) const {
    const bool alone = unreadAlone_();
    if (countWidth_ >= 0 && countFont_ == listFont && countAlone_ == alone) {
        return countWidth_;
    }
    const QFontMetrics bold(BoldFont(listFont));
    const QString sample = alone ? QStringLiteral("XXX") : QStringLiteral("XXX/XXX");
    countFont_ = listFont;
    countAlone_ = alone;
    countWidth_ =
        std::max(bold.horizontalAdvance(sample), WidestCount(bold, 0, model_->rowCount() - 1));
    return countWidth_;
}

int ChannelRowDelegate::RowHeight(const QFont& listFont) const {
    return std::max(QFontMetrics(listFont).height(), iconSize_ + 2);
}

QSize ChannelRowDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const {
    return {option.rect.width(), RowHeight(option.font)};
}

void ChannelRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                               const QModelIndex& index) const {
    const QRect row = option.rect;
    const bool selected = option.state.testFlag(QStyle::State_Selected);
    const QPalette& palette = option.palette;
    painter->save();
    painter->fillRect(row, selected ? palette.highlight() : palette.base());
    painter->setPen(selected ? palette.highlightedText().color() : palette.text().color());

    const int indent = QFontMetrics(option.font).horizontalAdvance(QLatin1Char('x')) / 2;
    const int state = std::clamp(index.data(ChannelListModel::kIconRole).toInt(), 0, 2);
    const int iconTop = (row.top() + row.bottom() + 1 - iconSize_) / 2;
    painter->drawPixmap(row.left() + indent, iconTop, icons_[static_cast<std::size_t>(state)]);

    const bool unread = index.data(ChannelListModel::kLiveUnreadRole).toInt() != 0;
    painter->setFont(unread ? BoldFont(option.font) : option.font);
    const int titleWidth = row.width() - CountWidth(option.font);
    const QRect title(QPoint(row.left() + indent + iconSize_ + indent, row.top()),
                      QPoint(row.left() + titleWidth - 1, row.bottom()));
    painter->setClipRect(title);
    painter->drawText(title, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                      index.data(Qt::DisplayRole).toString());
    painter->setClipping(false);

    const QRect counts(QPoint(row.left() + titleWidth, row.top()), row.bottomRight());
    const QString countText =
        CountText(index.data(ChannelListModel::kUnreadRole).toInt(),
                  index.data(ChannelListModel::kTotalRole).toInt(), unreadAlone_());
    painter->drawText(counts, Qt::AlignCenter | Qt::TextSingleLine, countText);

    painter->restore();
    PaintCurrentRowFrame(painter, option);
}

} // namespace qf::ui
