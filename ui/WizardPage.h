#pragma once

#include "model/ChannelStore.h"

#include <QString>
#include <QWizardPage>
#include <cstdint>
#include <memory>

class QAbstractItemView;

namespace qf::ui {

// How the user adds channels, as chosen on the first page.
enum AddMethod : int32_t {
    kAddFromDirectory = 0,
    kAddByUrl = 1,
    kAddFromOpmlFile = 2,
};

// The wizard's pages by their fixed ids; kNoPage where Back or Next leads nowhere.
enum WizardPageId : int {
    kNoPage = -1,
    kHowToAddPage = 0,
    kPickChannelsPage = 1,
    kEnterUrlPage = 2,
    kPickOpmlPage = 3,
};

// The height of a row in the pages' lists, in the handheld's pixels: taller than the text, so
// that a finger hits the row it means.
inline constexpr int kListRowHeight = 22;

// What the pages choose during one run of the wizard; every page reads and writes it.
struct WizardData {
    int32_t method = kAddFromDirectory;
    // Whether the picking page offers the built-in directory rather than the file `opmlPath`.
    bool useBuiltIn = true;
    QString url;
    QString title;
    QString opmlPath;
    // The categories read from the directory or the file while the picking page offers them.
    std::unique_ptr<ChannelStore> offered;
    // Copies of the offered categories, each holding only the channels the user checked, in the
    // order of the tree.
    ChannelStore::CategoryList picked;
};

// A page of the add-channel wizard. It fills its controls from the data each time it is shown
// and stores them back whenever it is left, Back or Next; it names the page that each of the two
// buttons leads to, and the wizard follows that rather than the order the pages were visited in.
class WizardPage : public QWizardPage {
    Q_OBJECT

public:
    WizardPage(WizardData& wizardData, QWidget* parent);

    virtual void Activate() = 0;
    virtual void Leave() = 0;
    virtual int PreviousPage() const = 0;
    // kNoPage on a page from which the wizard may finish.
    virtual int NextPage() const = 0;

    int nextId() const override { return NextPage(); }
    bool validatePage() override;

protected:
    // Enter on `view` goes on as Next or Finish would, Backspace goes back.
    void DriveWizardByKeys(QAbstractItemView* view);
    // Next or Finish, whichever the page offers.
    void Advance();
    bool eventFilter(QObject* watched, QEvent* event) override;

    WizardData& data_;
};

} // namespace qf::ui
