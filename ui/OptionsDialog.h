#pragma once

#include <QDialog>
#include <cstdint>
#include <functional>
#include <string>

class QCheckBox;
class QComboBox;
class QSpinBox;
class QVBoxLayout;

namespace qf {
class ChannelStore;
} // namespace qf

namespace qf::ui {

class IntervalEdit;
class SyncAccountBox;

// The reader's options. Where the channels data is kept: main memory or a storage card; choosing
// another volume and confirming the question moves the whole data folder there and makes it the
// volume in use, while a move that is refused or fails keeps the volume in use, and the user is
// told. Whether and how often all channels are updated by themselves, kept in the store; whether
// stories show their pictures and which colours the program draws in, kept in the settings and
// shown at once. The sync account, logged in to or out of at once.
class OptionsDialog : public QDialog {
    Q_OBJECT

public:
    using Question = std::function<bool(const QString& question)>;
    using Message = std::function<void(const QString& message)>;

    OptionsDialog(ChannelStore& store, Question ask, Message tell, QWidget* parent);

    QComboBox* volumes() const { return volumes_; }
    QCheckBox* autoUpdate() const { return autoUpdate_; }
    QSpinBox* updateValue() const;
    // Minutes, hours, days: the entries stand for the store's units of the same numbers.
    QComboBox* updateUnit() const;
    QCheckBox* showImages() const { return showImages_; }
    // Follow the desktop, light, dark: the entries stand for the Theme values of the same numbers.
    QComboBox* theme() const { return theme_; }
    SyncAccountBox* account() const { return account_; }
    // The volume an entry stands for: "\" for main memory, "\" + the card's name otherwise.
    std::u16string VolumeOf(int entry) const;

    void accept() override;

private:
    void AddUpdateChoice(QVBoxLayout* layout);
    void FillVolumes();
    void FillUpdate();
    void StoreUpdate();
    void StoreViewerOptions();
    void MoveTo(const std::u16string& volume);

    ChannelStore& store_;
    Question ask_;
    Message tell_;
    QComboBox* volumes_;
    QCheckBox* autoUpdate_;
    IntervalEdit* interval_;
    QCheckBox* showImages_;
    QComboBox* theme_;
    SyncAccountBox* account_;
    // The interval as the boxes showed it on opening: the store keeps a value the boxes cannot
    // show (a unit of seconds, a value below 1) unless the user changes it.
    int32_t shownValue_ = 0;
    int32_t shownUnit_ = 0;
};

} // namespace qf::ui
