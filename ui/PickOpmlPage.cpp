#include "ui/PickOpmlPage.h"

#include "platform/Volumes.h"
#include "ui/QtText.h"
#include "ui/UiScale.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace qf::ui {

namespace {

QString ChooseWithDialog(QWidget* parent, const QString& folder) {
    return QFileDialog::getOpenFileName(parent, QStringLiteral("Select File"), folder,
                                        QStringLiteral("OPML files (*.opml);;All files (*)"));
}

} // namespace

PickOpmlPage::PickOpmlPage(WizardData& wizardData, const ChannelStore& store, QWidget* parent)
    : WizardPage(wizardData, parent), store_(store), list_(new QListWidget(this)),
      browse_(new QPushButton(QStringLiteral("Browse..."), this)), chooser_(&ChooseWithDialog) {
    auto* prompt = new QLabel(QStringLiteral("Select File:"), this);
    prompt->setWordWrap(true);
    prompt->setBuddy(list_);
    list_->setObjectName(QStringLiteral("OpmlFileList"));
    list_->setSelectionMode(QAbstractItemView::SingleSelection);
    browse_->setAutoDefault(false);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(prompt);
    layout->addWidget(list_, 1);
    layout->addWidget(browse_, 0, Qt::AlignLeft);
    connect(browse_, &QPushButton::clicked, this, &PickOpmlPage::Browse);
    connect(list_, &QListWidget::itemActivated, this, [this] { Advance(); });
    DriveWizardByKeys(list_);
}

QString PickOpmlPage::VolumeFolderPath() const {
    const auto folder = VolumeFolder(store_.settings().storageVolume().view());
    return folder ? ToQString(folder->u16string()) : QString();
}

void PickOpmlPage::Activate() {
    list_->clear();
    const QString folder = VolumeFolderPath();
    if (!folder.isEmpty()) {
        const QDir dir(folder);
        for (const QString& name :
             dir.entryList({QStringLiteral("*.opml")}, QDir::Files | QDir::Readable, QDir::Name)) {
            AddFile(dir.filePath(name));
        }
    }
    for (const QString& path : browsed_) {
        AddFile(path);
    }
    list_->setCurrentRow(0);
    list_->setFocus();
}

void PickOpmlPage::AddFile(const QString& path) {
    auto* item = new QListWidgetItem(QFileInfo(path).fileName(), list_);
    item->setData(Qt::UserRole, path);
    item->setToolTip(QDir::toNativeSeparators(path));
    item->setSizeHint(QSize(0, Scaled(kListRowHeight, list_)));
}

void PickOpmlPage::Browse() {
    const QString path = chooser_(this, VolumeFolderPath());
    if (path.isEmpty()) {
        return;
    }
    if (!browsed_.contains(path)) {
        browsed_ << path;
        AddFile(path);
    }
    for (int row = 0; row < list_->count(); ++row) {
        if (list_->item(row)->data(Qt::UserRole).toString() == path) {
            list_->setCurrentRow(row);
        }
    }
    list_->setFocus();
}

void PickOpmlPage::Leave() {
    const QList<QListWidgetItem*> selected = list_->selectedItems();
    if (!selected.isEmpty()) {
        data_.opmlPath = selected.front()->data(Qt::UserRole).toString();
    }
}

int PickOpmlPage::PreviousPage() const {
    return kHowToAddPage;
}

int PickOpmlPage::NextPage() const {
    return kPickChannelsPage;
}

} // namespace qf::ui
