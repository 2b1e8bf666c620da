#pragma once

#include <QDialog>
#include <cstdint>
#include <utility>

class QLabel;
class QLineEdit;
class QRadioButton;

namespace qf {
class Channel;
class ChannelStore;
} // namespace qf

namespace qf::ui {

class IntervalEdit;

// A channel's address, title, user name, password and update interval to edit, and the time of
// its last update to read. Done stores them into the channel; Cancel changes nothing. Nothing is
// saved here: the store file is written whole when the frame saves it.
class ChannelPropertiesDialog : public QDialog {
    Q_OBJECT

public:
    ChannelPropertiesDialog(Channel& channel, const ChannelStore& store, QWidget* parent);

    QLineEdit* address() const { return address_; }
    QLineEdit* title() const { return title_; }
    QLabel* lastUpdated() const { return lastUpdated_; }
    QLineEdit* userName() const { return userName_; }
    QLineEdit* password() const { return password_; }
    // "as Options", or the channel's own interval in the box beside "Every".
    QRadioButton* asOptions() const { return asOptions_; }
    QRadioButton* ownInterval() const { return ownInterval_; }
    IntervalEdit* interval() const { return interval_; }

    void accept() override;

private:
    QWidget* MakeFields();
    QWidget* MakeIntervalRow(QWidget* parent);
    void ShowInterval(const ChannelStore& store);
    // The value and unit the controls give; kIntervalNotSet for both with "as Options".
    std::pair<int32_t, int32_t> ChosenInterval() const;

    Channel& channel_;
    // Made by MakeFields; the dialog owns them through their parents.
    QLineEdit* address_ = nullptr;
    QLineEdit* title_ = nullptr;
    QLabel* lastUpdated_ = nullptr;
    QLineEdit* userName_ = nullptr;
    QLineEdit* password_ = nullptr;
    QRadioButton* asOptions_ = nullptr;
    QRadioButton* ownInterval_ = nullptr;
    IntervalEdit* interval_ = nullptr;
    // What the controls showed on opening: an interval or credentials left alone are kept as the
    // channel has them, also where the controls cannot show them exactly.
    std::pair<int32_t, int32_t> openedInterval_;
    QString openedUserName_;
    QString openedPassword_;
};

} // namespace qf::ui
