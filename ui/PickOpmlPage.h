#pragma once

#include "ui/WizardPage.h"

#include <QStringList>
#include <functional>

class QListWidget;
class QPushButton;

namespace qf::ui {

// The page that lists the OPML files beside the data folder on the storage volume in use, with
// "Browse..." to choose one anywhere else.
class PickOpmlPage : public WizardPage {
    Q_OBJECT

public:
    // Asks the user for a file, starting in `folder`; an empty answer when none was chosen.
    using FileChooser = std::function<QString(QWidget* parent, const QString& folder)>;

    PickOpmlPage(WizardData& wizardData, const ChannelStore& store, QWidget* parent = nullptr);

    void Activate() override;
    void Leave() override;
    int PreviousPage() const override;
    int NextPage() const override;

    QListWidget* list() const { return list_; }
    QPushButton* browseButton() const { return browse_; }
    void SetFileChooser(FileChooser chooser) { chooser_ = std::move(chooser); }

private:
    // The folder of the volume in use; empty when the volume is not there.
    QString VolumeFolderPath() const;
    void AddFile(const QString& path);
    void Browse();

    const ChannelStore& store_;
    QListWidget* list_;
    QPushButton* browse_;
    FileChooser chooser_;
    // Files chosen with "Browse...", offered again after the volume's own files.
    QStringList browsed_;
};

} // namespace qf::ui
