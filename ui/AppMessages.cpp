#include "ui/AppMessages.h"

#include "ui/AppCommands.h"
#include "ui/AppMenus.h"
#include "ui/AppNavigation.h"
#include "ui/AppRefresh.h"
#include "ui/AppScreens.h"
#include "ui/ChannelsScreen.h"
#include "ui/PrivateMessages.h"

namespace qf::ui {

AppMessages::AppMessages(AppScreens& screens, AppNavigation& navigation, AppCommands& commands,
                         AppMenus& menus, AppRefresh& refresh)
    : screens_(screens), navigation_(navigation), commands_(commands), menus_(menus),
      refresh_(refresh) {}

void AppMessages::OnPrivateMessage(PrivateMessageEvent& event) {
    const bool fromChannelList = event.sourceControl == kCtlChannelList;
    switch (event.message()) {
    case QFM_OPENCHANNEL:
        navigation_.OpenChannel(screens_.channels().SelectedChannel());
        break;
    case QFM_OPENSTORY:
        navigation_.ShowStory(event.channel, event.item);
        break;
    case QFM_LEAVEWELCOME:
        commands_.LeaveWelcome(kCmdContinue);
        break;
    case QFM_ITEMACTIVATE:
        if (fromChannelList) {
            navigation_.OpenChannel(screens_.channels().SelectedChannel());
        }
        break;
    case QFM_ITEMMENU:
        if (fromChannelList) {
            menus_.ShowChannelMenu();
        }
        break;
    case QFM_NAVPREVIOUS:
    case QFM_NAVNEXT: {
        const bool next = event.message() == QFM_NAVNEXT;
        if (event.sourceControl == kCtlChannelView) {
            navigation_.StepChannel(next);
        } else if (event.sourceControl == kCtlStoryView) {
            navigation_.StepStory(next);
        }
        break;
    }
    case QFM_REFRESHDONE:
        if (event.channel != nullptr && event.completion) {
            event.completion(*event.channel);
        }
        break;
    case kHandOverEvent:
        refresh_.RunNextHandOver();
        break;
    }
}

} // namespace qf::ui
