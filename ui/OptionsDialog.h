#pragma once

#include <QDialog>
#include <functional>
#include <string>

class QComboBox;

namespace qf {
class ChannelStore;
} // namespace qf

namespace qf::ui {

// Where the channels data is kept: main memory or a storage card. Choosing another volume and
// confirming the question moves the whole data folder there and makes it the volume in use; a
// move that is refused or fails keeps the volume in use, and the user is told.
class OptionsDialog : public QDialog {
    Q_OBJECT

public:
    using Question = std::function<bool(const QString& question)>;
    using Message = std::function<void(const QString& message)>;

    OptionsDialog(ChannelStore& store, Question ask, Message tell, QWidget* parent);

    QComboBox* volumes() const { return volumes_; }
    // The volume an entry stands for: "\" for main memory, "\" + the card's name otherwise.
    std::u16string VolumeOf(int entry) const;

    void accept() override;

private:
    void FillVolumes();
    void MoveTo(const std::u16string& volume);

    ChannelStore& store_;
    Question ask_;
    Message tell_;
    QComboBox* volumes_;
};

} // namespace qf::ui
