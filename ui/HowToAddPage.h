#pragma once

#include "ui/WizardPage.h"

class QListWidget;

namespace qf::ui {

// The first page: a list of the three ways to add channels.
class HowToAddPage : public WizardPage {
    Q_OBJECT

public:
    HowToAddPage(WizardData& wizardData, QWidget* parent = nullptr);

    void Activate() override;
    void Leave() override;
    int PreviousPage() const override;
    int NextPage() const override;

    QListWidget* list() const { return list_; }

private:
    // The selected row; -1 with none.
    int SelectedRow() const;

    QListWidget* list_;
};

} // namespace qf::ui
