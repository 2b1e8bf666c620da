#include "ui/OptionsDialog.h"

#include "model/ChannelStore.h"
#include "model/DataFolder.h"
#include "model/ViewerSettings.h"
#include "platform/StringTable.h"
#include "ui/DialogParts.h"
#include "ui/QtText.h"
#include "ui/WaitCursor.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QVBoxLayout>

namespace qf::ui {

OptionsDialog::OptionsDialog(ChannelStore& store, Question ask, Message tell, QWidget* parent)
    : QDialog(parent), store_(store), ask_(std::move(ask)), tell_(std::move(tell)),
      volumes_(new QComboBox(this)) {
    setWindowTitle(QStringLiteral("Options"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(BoldLabel(QStringLiteral("Store channels data:"), this));
    layout->addWidget(volumes_);
    layout->addStretch();
    layout->addWidget(DoneCancelButtons(this));
    FillVolumes();
    SizeLikeHandheldDialog(this);
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
