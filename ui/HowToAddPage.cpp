#include "ui/HowToAddPage.h"

#include "platform/StringTable.h"
#include "ui/QtText.h"
#include "ui/UiScale.h"

#include <QLabel>
#include <QListWidget>
#include <QVBoxLayout>
#include <array>

namespace qf::ui {

namespace {

constexpr std::array kRowTexts = {kStrSelectFromList, kStrEnterChannelUrl, kStrImportFromOpml};
// The page each row leads to.
constexpr std::array kRowPages = {kPickChannelsPage, kEnterUrlPage, kPickOpmlPage};

} // namespace

HowToAddPage::HowToAddPage(WizardData& wizardData, QWidget* parent)
    : WizardPage(wizardData, parent), list_(new QListWidget(this)) {
    auto* prompt = new QLabel(QStringLiteral("How do you want to add Channel(s)?"), this);
    prompt->setWordWrap(true);
    list_->setObjectName(QStringLiteral("HowToAddList"));
    list_->setSelectionMode(QAbstractItemView::SingleSelection);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(prompt);
    layout->addWidget(list_, 1);
    // Which row is selected decides where Next leads and whether the wizard may finish here.
    connect(list_, &QListWidget::itemSelectionChanged, this, &QWizardPage::completeChanged);
    connect(list_, &QListWidget::itemActivated, this, [this] { Advance(); });
    DriveWizardByKeys(list_);
}

void HowToAddPage::Activate() {
    list_->clear();
    for (const int text : kRowTexts) {
        const std::u16string_view row = LoadString(text);
        auto* item = new QListWidgetItem(ToQString(row), list_);
        item->setSizeHint(QSize(0, Scaled(kListRowHeight, list_)));
    }
    const bool known = data_.method >= 0 && data_.method < static_cast<int32_t>(kRowTexts.size());
    list_->setCurrentRow(known ? data_.method : 0);
    list_->setFocus();
}

void HowToAddPage::Leave() {
    switch (SelectedRow()) {
    case 1:
        data_.method = kAddByUrl;
        break;
    case 2:
        data_.method = kAddFromOpmlFile;
        data_.useBuiltIn = false;
        break;
    default:
        data_.method = kAddFromDirectory;
        data_.useBuiltIn = true;
        break;
    }
}

int HowToAddPage::PreviousPage() const {
    return kNoPage;
}

int HowToAddPage::NextPage() const {
    const int row = SelectedRow();
    return row < 0 ? kNoPage : kRowPages.at(static_cast<size_t>(row));
}

int HowToAddPage::SelectedRow() const {
    const QList<QListWidgetItem*> selected = list_->selectedItems();
    return selected.isEmpty() ? -1 : list_->row(selected.front());
}

} // namespace qf::ui
