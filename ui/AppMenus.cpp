#include "ui/AppMenus.h"

#include "model/ChannelStore.h"
#include "platform/StringTable.h"
#include "ui/AppScreens.h"
#include "ui/ChannelScreen.h"
#include "ui/ChannelsScreen.h"
#include "ui/MainWindow.h"
#include "ui/MenuTables.h"
#include "ui/QtText.h"
#include "ui/SoftKeyBar.h"
#include "ui/StoryScreen.h"

#include <QMenu>
#include <algorithm>
#include <array>

namespace qf::ui {

namespace {

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
        action->setText(ToQString(LoadString(stringId)));
    }
}

} // namespace

AppMenus::AppMenus(const ChannelStore& store, const AppScreens& screens,
                   const CommandHandler& onCommand)
    : store_(store), screens_(screens), contextMenu_(new QMenu(&screens.window())) {
    contextMenu_->setObjectName(QStringLiteral("ChannelContextMenu"));
    AddMenuEntries(contextMenu_, ChannelContextMenu(), [](QMenu*) {});
    QObject::connect(contextMenu_, &QMenu::aboutToShow, contextMenu_,
                     [this] { OnPopup(contextMenu_, false); });
    QObject::connect(contextMenu_, &QMenu::triggered, contextMenu_, [onCommand](QAction* action) {
        if (const int command = CommandOf(action); command != 0) {
            onCommand(command);
        }
    });
}

void AppMenus::ShowChannelMenu() {
    const Channel* selected = screens_.channels().SelectedChannel();
    if (selected == nullptr) {
        return;
    }
    const QRect row = screens_.channels().RowRectOnScreen(selected);
    contextMenu_->popup(row.bottomLeft());
}

void AppMenus::CloseChannelMenu() {
    contextMenu_->close();
}

void AppMenus::OnPopup(QMenu* menu, bool fromMenuKey) {
    UpdateState(menu);
    UpdateChecks(menu, fromMenuKey);
    if (screens_.current() == kStoryScreen) {
        if (QAction* offline = FindCommand(menu, kCmdReadOffline)) {
            offline->setVisible(false);
            menu->removeAction(offline);
        }
    }
}

void AppMenus::UpdateState(QMenu* menu) {
    const bool busy = store_.refresh().busy();
    if (screens_.current() == kChannelsScreen) {
        const bool selected = screens_.channels().SelectedChannel() != nullptr;
        for (int command :
             {kCmdShowChannel, kCmdDownloadChannel, kCmdDeleteChannel, kCmdChannelProperties}) {
            Enable(menu, command, selected);
        }
        SetText(menu, kCmdRefreshAll, busy ? kStrStopRefreshAll : kStrRefreshAll);
    } else if (screens_.current() == kChannelScreen) {
        const Channel* shown = screens_.channel().channel();
        Enable(menu, kCmdAscending, store_.sortBy() != kSortNone);
        Enable(menu, kCmdPreviousChannel,
               screens_.channels().PreviousChannel(shown, true) != nullptr);
        Enable(menu, kCmdNextChannel, screens_.channels().NextChannel(shown, true) != nullptr);
        SetText(menu, kCmdRefreshChannel, busy ? kStrStopRefreshChannel : kStrRefreshChannel);
    } else if (screens_.current() == kStoryScreen) {
        const bool listed = screens_.story().channel() == screens_.channel().channel();
        const NewsItem* shown = screens_.story().item();
        Enable(menu, kCmdPreviousNews,
               listed && screens_.channel().PreviousStory(shown, true) != nullptr);
        Enable(menu, kCmdNextNews, listed && screens_.channel().NextStory(shown, true) != nullptr);
        Enable(menu, kCmdFitToScreen, true);
        for (int command : kTextSizeCommands) {
            Enable(menu, command, true);
        }
    }
    if (screens_.current() == kChannelScreen || screens_.current() == kStoryScreen) {
        for (int command : kPodcastCommands) {
            Enable(menu, command, false);
        }
    }
}

void AppMenus::CheckTextSize(QMenu* menu) {
    const int32_t size = store_.settings().textSize();
    const int checked = size >= 0 && size < static_cast<int32_t>(kTextSizeCommands.size())
                            ? kTextSizeCommands[static_cast<std::size_t>(size)]
                            : kCmdTextMedium;
    for (int command : kTextSizeCommands) {
        Check(menu, command, command == checked);
    }
}

void AppMenus::UpdateChecks(QMenu* menu, bool fromMenuKey) {
    const ViewerSettings& settings = store_.settings();
    if (screens_.current() == kWelcomeScreen || screens_.current() == kStoryScreen) {
        Check(menu, kCmdFitToScreen, settings.fitToScreen() != 0);
        Check(menu, kCmdClearType, settings.clearType() != 0);
        CheckTextSize(menu);
    } else if (screens_.current() == kChannelsScreen && !store_.refresh().busy()) {
        Check(menu, kCmdNewChannelsOnly, store_.newChannels() != 0);
        // The View submenu holds the category list, which is filled in as it opens.
        auto* categories = menu->findChild<QMenu*>(QLatin1StringView(kCategorySubmenuName),
                                                   Qt::FindDirectChildrenOnly);
        if (fromMenuKey && categories != nullptr) {
            UpdateCategoryList(categories);
        }
    } else if (screens_.current() == kChannelScreen) {
        const int32_t sortBy = store_.sortBy();
        Check(menu, kCmdNewHeadlinesOnly, store_.newHeadlines() != 0);
        Check(menu, kCmdDoNotSort, sortBy == kSortNone);
        Check(menu, kCmdSortByDate, sortBy == kSortByDate);
        Check(menu, kCmdSortByStatus, sortBy == kSortByStatus);
        Check(menu, kCmdAscending, sortBy != kSortNone && store_.sortOrder() == 1);
    }
}

void AppMenus::UpdateCategoryList(QMenu* categories) {
    for (QAction* entry : categories->actions()) {
        if (IsCategoryEntry(CommandOf(entry))) {
            categories->removeAction(entry);
            entry->deleteLater();
        }
    }
    Check(categories, kCmdAllCategories, false);
    const auto& list = store_.categories();
    const int shown = std::min(static_cast<int>(list.size()), kMaxCategoryEntries);
    for (int i = 0; i < shown; ++i) {
        QAction* entry =
            categories->addAction(ToQString(list[static_cast<std::size_t>(i)]->name().str()));
        entry->setData(kCmdFirstCategory + i);
    }
    const int32_t selected = store_.categoryId();
    const bool one = selected >= 0 && selected < shown;
    Check(categories, one ? kCmdFirstCategory + selected : kCmdAllCategories, true);
}

} // namespace qf::ui
