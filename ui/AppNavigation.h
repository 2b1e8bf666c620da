#pragma once

#include <QString>
#include <string_view>

namespace qf {
class Channel;
class ChannelStore;
class NewsItem;
class RefreshEngine;
class WString;
} // namespace qf

namespace qf::ui {

class AppDialogs;
class AppRefresh;
class AppScreens;

// Going from the list to a channel and from a channel to its stories: a channel opens from its
// cached feed or is updated first, a story opened is marked read, the previous and next ones
// follow the channel's list, and links go to the desktop's browser.
class AppNavigation {
public:
    AppNavigation(ChannelStore& store, AppScreens& screens, AppRefresh& refresh,
                  RefreshEngine& engine, const AppDialogs& dialogs);

    void OpenChannel(Channel* channel);
    void ShowChannel(Channel* channel);
    // The channel before or after the shown one, or the channels list after the last.
    void StepChannel(bool next);
    void ShowStory(Channel* channel, NewsItem* item);
    void StepStory(bool next);
    // Hands a story's link to the browser, the window stepping aside for it; when no browser
    // starts, the user is told and the window stays.
    void OpenInBrowser(const WString& link);
    // A link in a page; nothing for an empty target.
    void OpenLink(const QString& target);

private:
    std::u16string_view volume() const;

    ChannelStore& store_;
    AppScreens& screens_;
    AppRefresh& refresh_;
    RefreshEngine& engine_;
    const AppDialogs& dialogs_;
};

} // namespace qf::ui
