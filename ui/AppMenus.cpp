#include "platform/StringTable.h"
#include "ui/App.h"
#include "ui/ChannelScreen.h"
#include "ui/ChannelsScreen.h"
#include "ui/MenuTables.h"
#include "ui/SoftKeyBar.h"
#include "ui/StoryScreen.h"

#include <QMenu>
#include <array>

namespace qf::ui {

namespace {

constexpr int kStrRefreshAll = 40256;
constexpr int kStrStopRefreshAll = 40257;
constexpr int kStrRefreshChannel = 40282;
constexpr int kStrStopRefreshChannel = 40283;
constexpr std::array kPodcastCommands = {kCmdDownloadPodcast, kCmdPlayPodcast, kCmdCopyPodcast,
                                         kCmdDeletePodcast};
// The size command of each text size level, smallest first.
constexpr std::array kTextSizeCommands = {kCmdTextSmallest, kCmdTextSmaller, kCmdTextMedium,
                                          kCmdTextLarger, kCmdTextLargest};

void Enable(QMenu* menu, int command, bool enabled) {
    if (QAction* action = FindCommand(menu, command)) {
        action->setEnabled(enabled);
    }
}

void Check(QMenu* menu, int command, bool checked) {
    if (QAction* action = FindCommand(menu, command)) {
        action->setCheckable(true);
        action->setChecked(checked);
    }
}

void SetText(QMenu* menu, int command, int stringId) {
    if (QAction* action = FindCommand(menu, command)) {
        const std::u16string_view text = LoadString(stringId);
        action->setText(QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size())));
    }
}

} // namespace

void App::OnMenuPopup(QMenu* menu, bool fromMenuKey) {
    UpdateMenuState(menu);
    UpdateMenuChecks(menu, fromMenuKey);
    if (screen_ == kStoryScreen) {
        if (QAction* offline = FindCommand(menu, kCmdReadOffline)) {
            offline->setVisible(false);
            menu->removeAction(offline);
        }
    }
}

void App::UpdateMenuState(QMenu* menu) {
    const bool busy = store_.refresh().busy();
    // The category entries share their numbers with other commands (40109 is also "Delete
    // Channel"); what those commands allow must not grey out a category.
    if (menu->title() ==
        QString::fromUtf16(kCategorySubmenuCaption.data(),
                           static_cast<qsizetype>(kCategorySubmenuCaption.size()))) {
        return;
    }
    if (screen_ == kChannelsScreen) {
        const bool selected = channelsScreen_->SelectedChannel() != nullptr;
        for (int command :
             {kCmdShowChannel, kCmdDownloadChannel, kCmdDeleteChannel, kCmdChannelProperties}) {
            Enable(menu, command, selected);
        }
        SetText(menu, kCmdRefreshAll, busy ? kStrStopRefreshAll : kStrRefreshAll);
    } else if (screen_ == kChannelScreen) {
        const Channel* shown = channelScreen_->channel();
        Enable(menu, kCmdAscending, store_.sortBy() != kSortNone);
        Enable(menu, kCmdPreviousChannel, channelsScreen_->PreviousChannel(shown, true) != nullptr);
        Enable(menu, kCmdNextChannel, channelsScreen_->NextChannel(shown, true) != nullptr);
        SetText(menu, kCmdRefreshChannel, busy ? kStrStopRefreshChannel : kStrRefreshChannel);
    } else if (screen_ == kStoryScreen) {
        const bool listed = storyScreen_->channel() == channelScreen_->channel();
        const NewsItem* shown = storyScreen_->item();
        Enable(menu, kCmdPreviousNews,
               listed && channelScreen_->PreviousStory(shown, true) != nullptr);
        Enable(menu, kCmdNextNews, listed && channelScreen_->NextStory(shown, true) != nullptr);
        Enable(menu, kCmdFitToScreen, true);
        for (int command : kTextSizeCommands) {
            Enable(menu, command, true);
        }
    }
    if (screen_ == kChannelScreen || screen_ == kStoryScreen) {
        for (int command : kPodcastCommands) {
            Enable(menu, command, false);
        }
    }
}

void App::CheckTextSize(QMenu* menu) {
    const int32_t size = store_.settings().textSize();
    const int checked = size >= 0 && size < static_cast<int32_t>(kTextSizeCommands.size())
                            ? kTextSizeCommands[static_cast<std::size_t>(size)]
                            : kCmdTextMedium;
    for (int command : kTextSizeCommands) {
        Check(menu, command, command == checked);
    }
}

void App::UpdateMenuChecks(QMenu* menu, bool fromMenuKey) {
    const ViewerSettings& settings = store_.settings();
    if (screen_ == kWelcomeScreen || screen_ == kStoryScreen) {
        Check(menu, kCmdFitToScreen, settings.fitToScreen() != 0);
        Check(menu, kCmdClearType, settings.clearType() != 0);
        CheckTextSize(menu);
    } else if (screen_ == kChannelsScreen && !store_.refresh().busy()) {
        Check(menu, kCmdNewChannelsOnly, store_.newChannels() != 0);
        const QList<QAction*> actions = menu->actions();
        if (fromMenuKey && !actions.isEmpty() && actions.first()->menu() != nullptr) {
            UpdateCategoryList(actions.first()->menu());
        }
    } else if (screen_ == kChannelScreen) {
        const int32_t sortBy = store_.sortBy();
        Check(menu, kCmdNewHeadlinesOnly, store_.newHeadlines() != 0);
        Check(menu, kCmdDoNotSort, sortBy == kSortNone);
        Check(menu, kCmdSortByDate, sortBy == kSortByDate);
        Check(menu, kCmdSortByStatus, sortBy == kSortByStatus);
        Check(menu, kCmdAscending, sortBy != kSortNone && store_.sortOrder() == 1);
    }
}

void App::UpdateCategoryList(QMenu* categories) {
    for (int i = 0; i < kMaxCategoryEntries; ++i) {
        QAction* entry = FindCommand(categories, kCmdFirstCategory + i);
        if (entry == nullptr) {
            break;
        }
        categories->removeAction(entry);
        entry->deleteLater();
    }
    Check(categories, kCmdAllCategories, false);
    const auto& list = store_.categories();
    for (std::size_t i = 0; i < list.size(); ++i) {
        QAction* entry = categories->addAction(QString::fromStdU16String(list[i]->name().str()));
        entry->setData(kCmdFirstCategory + static_cast<int>(i));
    }
    const int32_t selected = store_.categoryId();
    const bool one = selected >= 0 && selected < static_cast<int32_t>(list.size());
    Check(categories, one ? kCmdFirstCategory + selected : kCmdAllCategories, true);
}

} // namespace qf::ui
