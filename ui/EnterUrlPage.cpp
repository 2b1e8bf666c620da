#include "ui/EnterUrlPage.h"

#include "model/ChannelStore.h"
#include "ui/QtText.h"

#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

namespace qf::ui {

namespace {

QLabel* NewLabel(const QString& text, QLineEdit* buddy, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setWordWrap(true);
    label->setBuddy(buddy);
    return label;
}

} // namespace

EnterUrlPage::EnterUrlPage(WizardData& wizardData, const ChannelStore& store, QWidget* parent)
    : WizardPage(wizardData, parent), store_(store), url_(new QLineEdit(this)),
      title_(new QLineEdit(this)) {
    url_->setObjectName(QStringLiteral("ChannelUrlBox"));
    title_->setObjectName(QStringLiteral("ChannelTitleBox"));
    url_->setInputMethodHints(Qt::ImhUrlCharactersOnly | Qt::ImhNoAutoUppercase);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(NewLabel(QStringLiteral("Channel URL:"), url_, this));
    layout->addWidget(url_);
    layout->addWidget(NewLabel(QStringLiteral("Channel Title:"), title_, this));
    layout->addWidget(title_);
    layout->addStretch(1);
}

void EnterUrlPage::Activate() {
    url_->setText(data_.url);
    if (data_.title.isEmpty()) {
        data_.title = ToQString(store_.ProposedTitle());
    }
    title_->setText(data_.title);
    url_->setFocus();
}

void EnterUrlPage::Leave() {
    data_.url = url_->text();
    data_.title = title_->text();
}

int EnterUrlPage::PreviousPage() const {
    return kHowToAddPage;
}

int EnterUrlPage::NextPage() const {
    return kNoPage;
}

} // namespace qf::ui
