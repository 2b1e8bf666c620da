#pragma once

#include "ui/DeviceFamily.h"
#include "ui/WizardPage.h"

class QTreeWidget;
class QTreeWidgetItem;

namespace qf {
class Category;
class Channel;
} // namespace qf

namespace qf::ui {

// The page that offers the channels of the built-in directory or of the chosen OPML file as a
// tree with check boxes: "All Categories" at the root, the categories below it and their
// channels below them. Channels the user already subscribes to are not offered. Checking an item
// gives all the items below it the same check.
class PickChannelsPage : public WizardPage {
    Q_OBJECT

public:
    PickChannelsPage(WizardData& wizardData, const ChannelStore& store, DeviceFamily family,
                     QWidget* parent = nullptr);

    void Activate() override;
    void Leave() override;
    int PreviousPage() const override;
    int NextPage() const override;

    QTreeWidget* tree() const { return tree_; }
    // The record an item stands for; nullptr for the root and for items of the other kind.
    static Category* CategoryOf(const QTreeWidgetItem* item);
    static Channel* ChannelOf(const QTreeWidgetItem* item);

private:
    void FillTree();
    void AddCategoryItem(QTreeWidgetItem* root, Category& category);
    void CheckDescendants(QTreeWidgetItem* item);
    void PickCheckedChannels(const QTreeWidgetItem* categoryItem);

    const ChannelStore& store_;
    DeviceFamily family_;
    QTreeWidget* tree_;
    bool checking_ = false;
};

} // namespace qf::ui
