#include "ui/ChannelPropertiesDialog.h"

#include "model/Channel.h"
#include "ui/DialogParts.h"
#include "ui/QtText.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

namespace qf::ui {

ChannelPropertiesDialog::ChannelPropertiesDialog(Channel& channel, QWidget* parent)
    : QDialog(parent), channel_(channel), address_(new QLineEdit(this)),
      title_(new QLineEdit(this)), lastUpdated_(new QLabel(this)) {
    setWindowTitle(QStringLiteral("Properties"));
    address_->setText(ToQString(channel.xmlUrl().view()));
    title_->setText(ToQString(channel.title().view()));
    lastUpdated_->setText(ToQString(channel.updateTime().FormatShortLocal()));
    lastUpdated_->setTextInteractionFlags(Qt::TextSelectableByMouse);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(BoldLabel(QStringLiteral("Channel URL:"), this));
    layout->addWidget(address_);
    layout->addWidget(BoldLabel(QStringLiteral("Channel Title:"), this));
    layout->addWidget(title_);
    layout->addWidget(BoldLabel(QStringLiteral("Last Updated:"), this));
    layout->addWidget(lastUpdated_);
    layout->addStretch();
    layout->addWidget(DoneCancelButtons(this));
    SizeLikeHandheldDialog(this);
}

void ChannelPropertiesDialog::accept() {
    // An emptied box stores an empty text: the setters leave a field alone only for a null one.
    channel_.SetXmlUrl(WString(address_->text().toStdU16String()));
    channel_.SetTitle(WString(title_->text().toStdU16String()));
    QDialog::accept();
}

} // namespace qf::ui
