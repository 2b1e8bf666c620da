#include "ui/PickChannelsPage.h"

#include "platform/StringTable.h"
#include "store/OpmlImport.h"
#include "ui/QtText.h"
#include "ui/SvgImages.h"
#include "ui/UiScale.h"

#include <QHeaderView>
#include <QLabel>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace qf::ui {

namespace {

constexpr int kIconSize = 16;

enum ItemKind : int { kRootItem = QTreeWidgetItem::UserType, kCategoryItem, kChannelItem };

QTreeWidgetItem* NewItem(QTreeWidgetItem* parent, const QString& text, ItemKind kind) {
    auto* item = new QTreeWidgetItem(parent, QStringList{text}, kind);
    item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
    item->setCheckState(0, Qt::Unchecked);
    return item;
}

} // namespace

PickChannelsPage::PickChannelsPage(WizardData& wizardData, const ChannelStore& store,
                                   DeviceFamily family, QWidget* parent)
    : WizardPage(wizardData, parent), store_(store), family_(family), tree_(new QTreeWidget(this)) {
    auto* prompt = new QLabel(QStringLiteral("Select the Channel(s) to add:"), this);
    prompt->setWordWrap(true);
    tree_->setObjectName(QStringLiteral("PickChannelsTree"));
    tree_->setHeaderHidden(true);
    tree_->setColumnCount(1);
    tree_->setIconSize(QSize(Scaled(kIconSize, this), Scaled(kIconSize, this)));
    tree_->setTextElideMode(Qt::ElideRight);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(prompt);
    layout->addWidget(tree_, 1);
    connect(tree_, &QTreeWidget::itemChanged, this, [this](QTreeWidgetItem* item, int) {
        if (!checking_) {
            checking_ = true;
            CheckDescendants(item);
            checking_ = false;
        }
    });
    DriveWizardByKeys(tree_);
}

Category* PickChannelsPage::CategoryOf(const QTreeWidgetItem* item) {
    if (item == nullptr || item->type() != kCategoryItem) {
        return nullptr;
    }
    return static_cast<Category*>(item->data(0, Qt::UserRole).value<void*>());
}

Channel* PickChannelsPage::ChannelOf(const QTreeWidgetItem* item) {
    if (item == nullptr || item->type() != kChannelItem) {
        return nullptr;
    }
    return static_cast<Channel*>(item->data(0, Qt::UserRole).value<void*>());
}

void PickChannelsPage::Activate() {
    // The items point into the offered categories, so they go before the records do.
    tree_->clear();
    data_.offered = std::make_unique<ChannelStore>();
    const OpmlSource source = data_.useBuiltIn ? OpmlSource(BuiltInDirectory{})
                                               : OpmlSource(data_.opmlPath.toStdU16String());
    if (ImportOpml(source, *data_.offered)) {
        FillTree();
    }
}

void PickChannelsPage::FillTree() {
    auto* root = NewItem(nullptr, {}, kRootItem);
    const std::u16string_view allCategories = LoadString(kStrAllCategories);
    root->setText(0, ToQString(allCategories));
    tree_->addTopLevelItem(root);
    root->setExpanded(true);
    for (const auto& category : data_.offered->categories()) {
        if (category && !category->channels().empty()) {
            AddCategoryItem(root, *category);
        }
    }
    if (root->childCount() > 0) {
        tree_->scrollToItem(root->child(0));
    }
    tree_->setCurrentItem(root);
    tree_->setFocus();
}

void PickChannelsPage::AddCategoryItem(QTreeWidgetItem* root, Category& category) {
    const qreal ratio = devicePixelRatioF();
    const QSize iconSize = tree_->iconSize();
    auto* item = NewItem(root, ToQString(category.name().view()), kCategoryItem);
    item->setIcon(0, RenderSvgPixmap(QStringLiteral(":/icons/category.svg"), iconSize, ratio));
    item->setData(0, Qt::UserRole, QVariant::fromValue(static_cast<void*>(&category)));
    const QPixmap channelIcon =
        RenderSvgPixmap(QStringLiteral(":/icons/channel-idle.svg"), iconSize, ratio);
    for (const auto& channel : category.channels()) {
        if (!channel || store_.Contains(channel->xmlUrl().view())) {
            continue;
        }
        auto* child = NewItem(item, ToQString(channel->title().view()), kChannelItem);
        child->setIcon(0, channelIcon);
        child->setData(0, Qt::UserRole, QVariant::fromValue(static_cast<void*>(channel.get())));
    }
    // Without touch, opening every category saves the user a key press per category.
    item->setExpanded(family_.smartphone);
}

void PickChannelsPage::CheckDescendants(QTreeWidgetItem* item) {
    const Qt::CheckState state = item->checkState(0);
    for (int i = 0; i < item->childCount(); ++i) {
        QTreeWidgetItem* child = item->child(i);
        child->setCheckState(0, state);
        CheckDescendants(child);
    }
}

void PickChannelsPage::Leave() {
    data_.picked.clear();
    const QTreeWidgetItem* root = tree_->topLevelItem(0);
    if (root == nullptr) {
        return;
    }
    for (int i = 0; i < root->childCount(); ++i) {
        PickCheckedChannels(root->child(i));
    }
}

void PickChannelsPage::PickCheckedChannels(const QTreeWidgetItem* categoryItem) {
    const Category* source = CategoryOf(categoryItem);
    if (source == nullptr) {
        return;
    }
    Category* picked = nullptr;
    for (int i = 0; i < categoryItem->childCount(); ++i) {
        const QTreeWidgetItem* item = categoryItem->child(i);
        const Channel* channel = ChannelOf(item);
        if (channel == nullptr || item->checkState(0) != Qt::Checked) {
            continue;
        }
        if (picked == nullptr) {
            data_.picked.push_back(std::make_unique<Category>(source->name()));
            picked = data_.picked.back().get();
        }
        auto copy = std::make_unique<Channel>();
        copy->CopyFrom(*channel, false);
        picked->AddChannel(std::move(copy));
    }
}

int PickChannelsPage::PreviousPage() const {
    return data_.useBuiltIn ? kHowToAddPage : kPickOpmlPage;
}

int PickChannelsPage::NextPage() const {
    return kNoPage;
}

} // namespace qf::ui
