#include "ui/ChannelPropertiesDialog.h"

#include "model/Channel.h"
#include "model/ChannelStore.h"
#include "ui/DialogParts.h"
#include "ui/IntervalEdit.h"
#include "ui/QtText.h"

#include <QButtonGroup>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QScrollArea>
#include <QVBoxLayout>

namespace qf::ui {

namespace {

// A bold caption over its box, which it names for screen readers.
void AddField(QVBoxLayout* layout, const QString& caption, QWidget* box) {
    QLabel* label = BoldLabel(caption, box->parentWidget());
    label->setBuddy(box);
    layout->addWidget(label);
    layout->addWidget(box);
}

} // namespace

ChannelPropertiesDialog::ChannelPropertiesDialog(Channel& channel, const ChannelStore& store,
                                                 QWidget* parent)
    : QDialog(parent), channel_(channel) {
    setWindowTitle(QStringLiteral("Properties"));
    // On a small screen the fields scroll while Done and Cancel stay in reach.
    auto* scroll = new QScrollArea(this);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setWidget(MakeFields());

    address_->setText(ToQString(channel.xmlUrl().view()));
    title_->setText(ToQString(channel.title().view()));
    lastUpdated_->setText(ToQString(channel.updateTime().FormatShortLocal()));
    userName_->setText(ToQString(channel.userName().view()));
    password_->setText(ToQString(channel.password().view()));
    ShowInterval(store);
    openedUserName_ = userName_->text();
    openedPassword_ = password_->text();
    openedInterval_ = ChosenInterval();

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(scroll, 1);
    layout->addWidget(DoneCancelButtons(this));
    SizeLikeHandheldDialog(this);
}

QWidget* ChannelPropertiesDialog::MakeFields() {
    auto* fields = new QWidget(this);
    address_ = new QLineEdit(fields);
    title_ = new QLineEdit(fields);
    lastUpdated_ = new QLabel(fields);
    lastUpdated_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    userName_ = new QLineEdit(fields);
    password_ = new QLineEdit(fields);
    password_->setEchoMode(QLineEdit::Password);

    auto* layout = new QVBoxLayout(fields);
    layout->setContentsMargins(0, 0, 0, 0);
    AddField(layout, QStringLiteral("Channel URL:"), address_);
    AddField(layout, QStringLiteral("Channel Title:"), title_);
    AddField(layout, QStringLiteral("Last Updated:"), lastUpdated_);
    AddField(layout, QStringLiteral("User Name:"), userName_);
    AddField(layout, QStringLiteral("Password:"), password_);
    layout->addWidget(BoldLabel(QStringLiteral("Update Interval:"), fields));
    asOptions_ = new QRadioButton(QStringLiteral("as Options"), fields);
    layout->addWidget(asOptions_);
    layout->addWidget(MakeIntervalRow(fields));
    layout->addStretch();
    return fields;
}

QWidget* ChannelPropertiesDialog::MakeIntervalRow(QWidget* parent) {
    auto* row = new QWidget(parent);
    ownInterval_ = new QRadioButton(QStringLiteral("Every"), row);
    interval_ = new IntervalEdit(row);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(ownInterval_);
    layout->addWidget(interval_, 1);
    // The two buttons sit in different widgets, so they are grouped by hand.
    auto* choice = new QButtonGroup(this);
    choice->addButton(asOptions_);
    choice->addButton(ownInterval_);
    connect(ownInterval_, &QRadioButton::toggled, interval_, &QWidget::setEnabled);
    return row;
}

void ChannelPropertiesDialog::ShowInterval(const ChannelStore& store) {
    const bool own = channel_.updateValue() != kIntervalNotSet;
    // Following the options, the box starts from their interval.
    interval_->SetInterval(own ? channel_.updateValue() : store.updateValue(),
                           own ? channel_.updateUnit() : store.updateUnit());
    (own ? ownInterval_ : asOptions_)->setChecked(true);
    interval_->setEnabled(own);
}

std::pair<int32_t, int32_t> ChannelPropertiesDialog::ChosenInterval() const {
    if (asOptions_->isChecked()) {
        return {kIntervalNotSet, kIntervalNotSet};
    }
    return {interval_->value(), interval_->unit()};
}

void ChannelPropertiesDialog::accept() {
    // An emptied box stores an empty text: the setters leave a field alone only for a null one.
    channel_.SetXmlUrl(WString(address_->text().toStdU16String()));
    channel_.SetTitle(WString(title_->text().toStdU16String()));
    if (userName_->text() != openedUserName_) {
        channel_.SetUserName(WString(userName_->text().toStdU16String()));
    }
    if (password_->text() != openedPassword_) {
        channel_.SetPassword(WString(password_->text().toStdU16String()));
    }
    if (const auto chosen = ChosenInterval(); chosen != openedInterval_) {
        channel_.SetUpdateValue(chosen.first);
        channel_.SetUpdateUnit(chosen.second);
    }
    QDialog::accept();
}

} // namespace qf::ui
