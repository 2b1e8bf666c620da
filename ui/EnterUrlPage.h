#pragma once

#include "ui/WizardPage.h"

class QLineEdit;

namespace qf::ui {

// The page where the user types one channel's address and title. An empty title is proposed as
// "Channel #" with the id the channel will get.
class EnterUrlPage : public WizardPage {
    Q_OBJECT

public:
    EnterUrlPage(WizardData& wizardData, const ChannelStore& store, QWidget* parent = nullptr);

    void Activate() override;
    void Leave() override;
    int PreviousPage() const override;
    int NextPage() const override;

    QLineEdit* urlBox() const { return url_; }
    QLineEdit* titleBox() const { return title_; }

private:
    const ChannelStore& store_;
    QLineEdit* url_;
    QLineEdit* title_;
};

} // namespace qf::ui
