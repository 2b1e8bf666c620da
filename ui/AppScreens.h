#pragma once

#include "ui/CommandIds.h"
#include "ui/DeviceFamily.h"

#include <QString>
#include <array>
#include <functional>

class QWidget;

namespace qf {
class ChannelStore;
} // namespace qf

namespace qf::ui {

class ChannelScreen;
class ChannelsScreen;
class HtmlView;
class MainWindow;
class ProgressBar;
class StoryScreen;
class WelcomeScreen;

// The four screens in the main window and which of them is current: the one shown alone, or,
// while the window is wide, the pane with the keyboard focus. Switching screens loads the
// screen's soft keys, Back steps towards the channels list (from pane to pane when wide), Tab
// steps between the panes, and the window steps aside for the browser and comes back when it is
// in use again.
class AppScreens {
public:
    // Creates the screens in `window`, their pages as the settings of `store` ask.
    AppScreens(MainWindow& window, ChannelStore& store, DeviceFamily family);

    Screen current() const { return current_; }
    // Shows the screen, or gives its pane the focus.
    void Show(Screen screen);
    // The focus went into the pane `pane`, which becomes the current screen.
    void FollowFocus(const QWidget* pane);
    // The next (`forward`) or previous pane that shows something gets the focus.
    void StepPane(bool forward);
    // The Back key: one screen back, or the window minimised from the first screens.
    void Back();
    // The window is in use again: back from the browser, the soft keys shown.
    void Reactivate();
    // Steps aside for the browser that was handed a link.
    void HideForBrowser();
    // The channels list again, as the store's category and filter ask.
    void RefillChannels();
    // Where the story screen's and the channel banner's links go.
    void SetLinkHandler(const std::function<void(const QString& target)>& handler);
    void ShowProgress(bool shown);
    std::array<ProgressBar*, 3> progressBars() const;

    MainWindow& window() const { return window_; }
    WelcomeScreen& welcome() const { return *welcome_; }
    ChannelsScreen& channels() const { return *channels_; }
    ChannelScreen& channel() const { return *channel_; }
    StoryScreen& story() const { return *story_; }
    // The page the text commands change: the welcome page on its screen, the story elsewhere.
    HtmlView& textView() const;

private:
    // The screens that stand side by side in a wide window, left to right.
    static constexpr std::array<Screen, 3> kPaneOrder = {kChannelsScreen, kChannelScreen,
                                                         kStoryScreen};

    QWidget* Widget(Screen screen) const;
    // Whether the screen's pane shows anything: a channel, a story.
    bool HasContent(Screen screen) const;

    MainWindow& window_;
    const ChannelStore& store_;
    // The main window owns the screens.
    WelcomeScreen* welcome_;
    ChannelsScreen* channels_;
    ChannelScreen* channel_;
    StoryScreen* story_;
    Screen current_ = kNoScreen;
    bool hiddenForBrowser_ = false;
};

} // namespace qf::ui
