#include "ui/AddChannelWizard.h"

#include "model/ChannelStore.h"
#include "platform/StringTable.h"
#include "ui/EnterUrlPage.h"
#include "ui/HowToAddPage.h"
#include "ui/PickChannelsPage.h"
#include "ui/PickOpmlPage.h"
#include "ui/QtText.h"
#include "ui/UiScale.h"

#include <QAbstractButton>
#include <QScreen>
#include <algorithm>

namespace qf::ui {

namespace {

// Screens narrower than this are a handheld's, where the dialog takes the whole screen.
constexpr int kHandheldScreenWidth = 640;
// The dialog's size on a larger screen, in the handheld's pixels.
constexpr int kDesktopWidth = 420;
constexpr int kDesktopHeight = 480;

} // namespace

AddChannelWizard::AddChannelWizard(ChannelStore& store, DeviceFamily family, QWidget* parent)
    : QWizard(parent), store_(store), howToAdd_(new HowToAddPage(data_)),
      pickChannels_(new PickChannelsPage(data_, store, family)),
      enterUrl_(new EnterUrlPage(data_, store)), pickOpml_(new PickOpmlPage(data_, store)) {
    const std::u16string_view caption = LoadString(kStrAddChannel);
    setWindowTitle(ToQString(caption));
    setObjectName(QStringLiteral("AddChannelWizard"));
    // No banner or watermark pictures: the pages need every pixel of a handheld's screen.
    setWizardStyle(QWizard::ClassicStyle);
    setPage(kHowToAddPage, howToAdd_);
    setPage(kPickChannelsPage, pickChannels_);
    setPage(kEnterUrlPage, enterUrl_);
    setPage(kPickOpmlPage, pickOpml_);
    setStartId(kHowToAddPage);
    TakeOverBackButton();
}

AddChannelWizard::~AddChannelWizard() = default;

void AddChannelWizard::TakeOverBackButton() {
    // The wizard's own Back walks back through the pages visited; here each page names where
    // Back leads.
    QAbstractButton* back = button(QWizard::BackButton);
    back->disconnect(this);
    connect(back, &QAbstractButton::clicked, this, &AddChannelWizard::GoBack);
}

WizardPage* AddChannelWizard::CurrentPage() const {
    return qobject_cast<WizardPage*>(currentPage());
}

int AddChannelWizard::nextId() const {
    const WizardPage* page = CurrentPage();
    return page != nullptr ? page->NextPage() : kNoPage;
}

void AddChannelWizard::Advance() {
    for (const WizardButton which : {QWizard::NextButton, QWizard::FinishButton}) {
        QAbstractButton* target = button(which);
        if (target->isVisible() && target->isEnabled()) {
            target->click();
            return;
        }
    }
}

void AddChannelWizard::GoBack() {
    WizardPage* page = CurrentPage();
    if (page == nullptr || page->PreviousPage() == kNoPage) {
        return;
    }
    const int target = page->PreviousPage();
    page->Leave();
    if (!visitedIds().contains(target)) {
        if (target == startId()) {
            restart();
        }
        return;
    }
    while (currentId() != target && visitedIds().size() > 1) {
        back();
    }
    if (WizardPage* shown = CurrentPage()) {
        shown->Activate();
    }
}

void AddChannelWizard::initializePage(int id) {
    // Before the wizard decides between Next and Finish, which depends on what the page shows.
    if (auto* shown = qobject_cast<WizardPage*>(page(id))) {
        shown->Activate();
    }
}

bool AddChannelWizard::Apply() {
    if (data_.method == kAddByUrl) {
        return store_.AddChannel(WString(data_.url.toStdU16String()),
                                 WString(data_.title.toStdU16String())) != nullptr;
    }
    return store_.MergeCategories(data_.picked);
}

void AddChannelWizard::showEvent(QShowEvent* event) {
    FitToScreen();
    QWizard::showEvent(event);
}

void AddChannelWizard::FitToScreen() {
    const QScreen* shown = parentWidget() != nullptr ? parentWidget()->screen() : screen();
    if (shown == nullptr) {
        return;
    }
    const QRect available = shown->availableGeometry();
    if (available.width() < kHandheldScreenWidth) {
        setGeometry(available);
        return;
    }
    const QSize wanted(std::max(Scaled(kDesktopWidth, this), minimumSizeHint().width()),
                       std::max(Scaled(kDesktopHeight, this), minimumSizeHint().height()));
    resize(wanted.boundedTo(available.size()));
}

} // namespace qf::ui
