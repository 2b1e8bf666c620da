#pragma once

#include "ui/DeviceFamily.h"
#include "ui/WizardPage.h"

#include <QWizard>

namespace qf {
class ChannelStore;
} // namespace qf

namespace qf::ui {

class EnterUrlPage;
class HowToAddPage;
class PickChannelsPage;
class PickOpmlPage;

// The dialog through which the user subscribes: choose how, then pick channels from the built-in
// directory, type one address, or pick an OPML file and then channels from it. Back and Next go
// where each page says. Nothing changes until Apply runs after the dialog ended with Finish.
class AddChannelWizard : public QWizard {
    Q_OBJECT

public:
    AddChannelWizard(ChannelStore& store, DeviceFamily family, QWidget* parent = nullptr);
    ~AddChannelWizard() override;

    // Adds what was chosen to the store: the picked channels merged into their categories, or
    // the one typed channel. True when the store took it.
    bool Apply();

    int nextId() const override;
    // Next or Finish, whichever the current page offers.
    void Advance();
    // Back to the page the current one names, storing what was entered on the way.
    void GoBack();

    WizardData& wizardData() { return data_; }
    WizardPage* CurrentPage() const;
    HowToAddPage* howToAddPage() const { return howToAdd_; }
    PickChannelsPage* pickChannelsPage() const { return pickChannels_; }
    EnterUrlPage* enterUrlPage() const { return enterUrl_; }
    PickOpmlPage* pickOpmlPage() const { return pickOpml_; }

protected:
    void initializePage(int id) override;
    void showEvent(QShowEvent* event) override;

private:
    void TakeOverBackButton();
    // A handheld's screen is filled; on a desktop the dialog gets a comfortable size.
    void FitToScreen();

    ChannelStore& store_;
    WizardData data_;
    HowToAddPage* howToAdd_;
    PickChannelsPage* pickChannels_;
    EnterUrlPage* enterUrl_;
    PickOpmlPage* pickOpml_;
};

} // namespace qf::ui
