#include "ui/AppScreens.h"

#include "model/ChannelStore.h"
#include "model/ViewerSettings.h"
#include "ui/ChannelScreen.h"
#include "ui/ChannelsScreen.h"
#include "ui/HtmlView.h"
#include "ui/MainWindow.h"
#include "ui/MenuTables.h"
#include "ui/SoftKeyBar.h"
#include "ui/StoryScreen.h"
#include "ui/WelcomeScreen.h"

#include <algorithm>

namespace qf::ui {

AppScreens::AppScreens(MainWindow& window, ChannelStore& store, DeviceFamily family)
    : window_(window), store_(store), welcome_(new WelcomeScreen(&window, family, &window)),
      channels_(new ChannelsScreen(&window, store, family, &window)),
      channel_(new ChannelScreen(&window, store, family, &window)),
      story_(new StoryScreen(&window, store, &window)) {
    window_.AddScreen(welcome_);
    window_.AddPanes({channels_, channel_, story_});
    const ViewerSettings& settings = store.settings();
    for (HtmlView* view : {welcome_->view(), story_->view()}) {
        view->SetTextSize(settings.shownTextSize());
        view->SetFitToScreen(settings.fitToScreen() != 0);
        view->SetClearType(settings.clearType() != 0);
    }
}

QWidget* AppScreens::Widget(Screen screen) const {
    switch (screen) {
    case kWelcomeScreen:
        return welcome_;
    case kChannelsScreen:
        return channels_;
    case kChannelScreen:
        return channel_;
    case kStoryScreen:
        return story_;
    default:
        return nullptr;
    }
}

void AppScreens::Show(Screen screen) {
    QWidget* widget = Widget(screen);
    if (widget == nullptr || (screen == current_ && window_.currentScreen() == widget)) {
        return;
    }
    if (screen != current_) {
        // Set first: giving the pane the focus tells the frame of it again.
        current_ = screen;
        window_.softKeys()->Load(MenuBarFor(screen));
    }
    window_.ShowScreen(widget);
}

void AppScreens::FollowFocus(const QWidget* pane) {
    for (const Screen screen : kPaneOrder) {
        if (Widget(screen) == pane && screen != current_) {
            current_ = screen;
            window_.softKeys()->Load(MenuBarFor(screen));
        }
    }
}

bool AppScreens::HasContent(Screen screen) const {
    return screen == kChannelScreen ? channel_->channel() != nullptr
           : screen == kStoryScreen ? story_->item() != nullptr
                                    : true;
}

void AppScreens::StepPane(bool forward) {
    const auto* const at = std::ranges::find(kPaneOrder, current_);
    if (at == kPaneOrder.end()) {
        return;
    }
    const std::size_t count = kPaneOrder.size();
    const auto index = static_cast<std::size_t>(at - kPaneOrder.begin());
    // Panes with nothing opened in them are passed over.
    for (std::size_t step = 1; step < count; ++step) {
        const Screen next = kPaneOrder[(index + (forward ? step : count - step)) % count];
        if (HasContent(next)) {
            Show(next);
            return;
        }
    }
}

void AppScreens::Back() {
    switch (current_) {
    case kWelcomeScreen:
    case kChannelsScreen:
        window_.showMinimized();
        break;
    case kChannelScreen:
        Show(kChannelsScreen);
        break;
    case kStoryScreen:
        Show(kChannelScreen);
        break;
    default:
        break;
    }
}

void AppScreens::Reactivate() {
    if (hiddenForBrowser_) {
        // Cleared first: showing the window again tells the frame once more.
        hiddenForBrowser_ = false;
        window_.showNormal();
    }
    SoftKeyBar* softKeys = window_.softKeys();
    if (softKeys->isHidden()) {
        softKeys->Load(MenuBarFor(current_));
        softKeys->show();
    }
}

void AppScreens::HideForBrowser() {
    hiddenForBrowser_ = true;
    // Minimised rather than hidden: a hidden window could not be brought back from the task bar.
    window_.showMinimized();
    window_.softKeys()->hide();
}

void AppScreens::RefillChannels() {
    channels_->FillList(store_.categoryId(), store_.newChannels() != 0);
}

void AppScreens::SetLinkHandler(const std::function<void(const QString& target)>& handler) {
    for (HtmlView* view : {story_->view(), channel_->banner()}) {
        view->SetLinkHandler(handler);
    }
}

void AppScreens::ShowProgress(bool shown) {
    channels_->ShowProgress(shown);
    // Side by side, the channels pane's bar speaks for the whole window: three would repeat it.
    const bool oneAtATime = !window_.panesSideBySide();
    channel_->ShowProgress(shown && oneAtATime);
    story_->ShowProgress(shown && oneAtATime);
}

std::array<ProgressBar*, 3> AppScreens::progressBars() const {
    return {channels_->progress(), channel_->progress(), story_->progress()};
}

HtmlView& AppScreens::textView() const {
    return current_ == kWelcomeScreen ? *welcome_->view() : *story_->view();
}

} // namespace qf::ui
