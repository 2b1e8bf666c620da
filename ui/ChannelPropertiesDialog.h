#pragma once

#include <QDialog>

class QLabel;
class QLineEdit;

namespace qf {
class Channel;
} // namespace qf

namespace qf::ui {

// A channel's address and title to edit, and the time of its last update to read. The user name
// and the password are kept with the channel but not offered here. Done stores both texts into
// the channel; Cancel changes nothing. Nothing is saved: the frame saves the store later.
class ChannelPropertiesDialog : public QDialog {
    Q_OBJECT

public:
    ChannelPropertiesDialog(Channel& channel, QWidget* parent);

    QLineEdit* address() const { return address_; }
    QLineEdit* title() const { return title_; }
    QLabel* lastUpdated() const { return lastUpdated_; }

    void accept() override;

private:
    Channel& channel_;
    QLineEdit* address_;
    QLineEdit* title_;
    QLabel* lastUpdated_;
};

} // namespace qf::ui
