#include "ui/OptionsDialog.h"

#include "model/ChannelStore.h"
#include "model/DataFolder.h"
#include "model/UpdateInterval.h"
#include "model/ViewerSettings.h"
#include "platform/StringTable.h"
#include "ui/DialogParts.h"
#include "ui/IntervalEdit.h"
#include "ui/QtText.h"
#include "ui/SyncAccountBox.h"
#include "ui/Theme.h"
#include "ui/WaitCursor.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QSpinBox>
#include <QVBoxLayout>

namespace qf::ui {

OptionsDialog::OptionsDialog(ChannelStore& store, Question ask, Message tell, QWidget* parent)
    : QDialog(parent), store_(store), ask_(std::move(ask)), tell_(std::move(tell)),
      volumes_(new QComboBox(this)),
      autoUpdate_(new QCheckBox(QStringLiteral("Update channels automatically"), this)),
      interval_(new IntervalEdit(this)),
      showImages_(new QCheckBox(QStringLiteral("Show pictures in stories"), this)),
      theme_(new QComboBox(this)), account_(new SyncAccountBox(tell_, this)) {
    setWindowTitle(QStringLiteral("Options"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(BoldLabel(QStringLiteral("Store channels data:"), this));
    layout->addWidget(volumes_);
    AddUpdateChoice(layout);
    layout->addWidget(showImages_);
    layout->addWidget(BoldLabel(QStringLiteral("Appearance:"), this));
    theme_->addItems(
        {QStringLiteral("Follow the desktop"), QStringLiteral("Light"), QStringLiteral("Dark")});
    layout->addWidget(theme_);
    layout->addWidget(account_);
    layout->addStretch();
    layout->addWidget(DoneCancelButtons(this));
    FillVolumes();
    FillUpdate();
    showImages_->setChecked(store_.settings().showImages() != 0);
    theme_->setCurrentIndex(store_.settings().shownTheme());
    SizeLikeHandheldDialog(this);
}

QSpinBox* OptionsDialog::updateValue() const {
    return interval_->valueBox();
}

QComboBox* OptionsDialog::updateUnit() const {
    return interval_->unitBox();
}

void OptionsDialog::AddUpdateChoice(QVBoxLayout* layout) {
    layout->addWidget(autoUpdate_);
    auto* row = new QHBoxLayout;
    auto* every = new QLabel(QStringLiteral("Every"), this);
    every->setBuddy(interval_->valueBox());
    row->addWidget(every);
    row->addWidget(interval_, 1);
    layout->addLayout(row);
    connect(autoUpdate_, &QCheckBox::toggled, interval_, &QWidget::setEnabled);
}

void OptionsDialog::FillUpdate() {
    autoUpdate_->setChecked(store_.autoUpdate() != 0);
    interval_->setEnabled(autoUpdate_->isChecked());
    interval_->SetInterval(store_.updateValue(), store_.updateUnit());
    // What the boxes first show is written back only when the user changed it, so that an
    // interval they cannot show as it is (in seconds, or of no length) survives an unrelated Done.
    shownValue_ = interval_->value();
    shownUnit_ = interval_->unit();
}

void OptionsDialog::FillVolumes() {
    volumes_->clear();
    volumes_->addItem(ToQString(LoadString(kStrMainMemory)));
    // A card whose name cannot be found is not offered.
    for (int32_t card = 0; card < StorageCardCount(); ++card) {
        if (const auto name = StorageCardName(card)) {
            volumes_->addItem(ToQString(*name));
        }
    }
    // The volume in use is matched exactly, case included; main memory when none matches.
    const std::u16string_view current = store_.settings().storageVolume().view();
    volumes_->setCurrentIndex(0);
    for (int entry = 1; entry < volumes_->count(); ++entry) {
        if (VolumeOf(entry) == current) {
            volumes_->setCurrentIndex(entry);
        }
    }
}

std::u16string OptionsDialog::VolumeOf(int entry) const {
    std::u16string volume(ViewerSettings::kMainMemoryVolume);
    if (entry > 0) {
        volume += volumes_->itemText(entry).toStdU16String();
    }
    return volume;
}

void OptionsDialog::accept() {
    StoreUpdate();
    StoreViewerOptions();
    const int entry = volumes_->currentIndex();
    if (entry >= 0) {
        // Exact comparison, unlike the case-blind ones elsewhere: "\Card" and "\card" differ here.
        const std::u16string volume = VolumeOf(entry);
        if (volume != store_.settings().storageVolume().view() &&
            ask_(ToQString(LoadString(kStrMoveQuestion)))) {
            MoveTo(volume);
        }
    }
    QDialog::accept();
}

// The store has no changed mark: it is saved whole when the program ends.
void OptionsDialog::StoreUpdate() {
    store_.SetAutoUpdate(autoUpdate_->isChecked() ? 1 : 0);
    if (interval_->value() != shownValue_) {
        store_.SetUpdateValue(interval_->value());
    }
    if (interval_->unit() != shownUnit_) {
        store_.SetUpdateUnit(interval_->unit());
    }
}

void OptionsDialog::StoreViewerOptions() {
    ViewerSettings& settings = store_.settings();
    settings.SetShowImages(showImages_->isChecked() ? 1 : 0);
    if (theme_->currentIndex() != settings.shownTheme()) {
        settings.SetTheme(theme_->currentIndex());
        ApplyTheme(settings.shownTheme());
    }
}

void OptionsDialog::MoveTo(const std::u16string& volume) {
    WaitCursor wait;
    const std::u16string oldVolume(store_.settings().storageVolume().view());
    if (!MoveData(oldVolume, volume)) {
        wait.Restore();
        tell_(QStringLiteral("The channels data could not be moved there; it stays where it was."));
        return;
    }
    store_.settings().SetStorageVolume(WString(volume));
    store_.SetChannelStorePath(ChannelStorePath(volume).value_or(std::u16string()));
    // The data now lies on the new volume: the choice is saved at once, so that a crash before
    // the end of the run cannot leave the settings pointing at the emptied folder.
    SaveSettings(store_.settings());
}

} // namespace qf::ui
