#include "platform/StringTable.h"

#include <algorithm>
#include <array>
#include <utility>

namespace qf {

namespace {

struct Entry {
    int id;
    std::u16string_view text;
};

// Sorted by id, so a text is found by binary search. Texts are kept exactly as the program has
// always shown them, those of features that no longer act included.
constexpr auto kStrings = std::to_array<Entry>({
    {3, u"POCKETQF"},
    {101, u"Quillfeed"},
    {40031, u"Add Channel"},
    {40043, u"Delete Channel"},
    {40044, u"Channel Properties..."},
    {40052, u"Do you want to move the channels data to the chosen location?"},
    {40211, u"Failed to open Channels file '%s'."},
    {40227, u"Default"},
    {40242, u"Main Memory"},
    {40243, u"Channel #"},
    {40244, u"Failed to download the channel; Error code: "},
    {40245, u"Failed to parse the channel"},
    {40246, u"All Categories"},
    {40247, u"Do you want to delete this channel?"},
    {40248, u"Cu&t"},
    {40249, u"&Copy"},
    {40250, u"&Paste"},
    {40251, u"C&lear"},
    {40252, u"&Select All"},
    {40253, u"1 Select from list"},
    {40254, u"2 Enter Channel URL"},
    {40255, u"3 Import from OPML file"},
    {40256, u"Refresh All Channels"},
    {40257, u"Stop Refresh"},
    {40258, u"<center><img src=\"qf_logo.bmp\"><br><br>Welcome to <b>%s</b>!<br><br>This RSS "
            u"newsreader puts the latest headlines, weather, sports, business, and entertainment "
            u"news right in your hands.<br>You just need to select what news feeds (Channels) you "
            u"are interested in.</center>"},
    {40259, u"<center><br><br>To get started, please tap <b>Continue</b>.</center>"},
    {40269, u"downloading channel file"},
    {40270, u"parsing channel file"},
    {40271, u"downloading image file"},
    {40272, u"downloading embedded images"},
    {40273, u"downloading stories"},
    {40276, u"downloading podcasts"},
    {40277, u"Couldn't delete the file because it's used by another application, most likely, "
            u"Windows Media Player. Please close that application and try again."},
    {40278, u"Couldn't delete the file."},
    {40279, u"Do you want to delete this podcast?"},
    {40280, u"Download Podcast"},
    {40281, u"Stop Download"},
    {40282, u"Refresh Channel"},
    {40283, u"Stop Refresh"},
});

// Strictly increasing: a duplicate id would make one of its texts unreachable.
static_assert(std::adjacent_find(kStrings.begin(), kStrings.end(),
                                 [](const Entry& a, const Entry& b) { return a.id >= b.id; }) ==
              kStrings.end());

} // namespace

std::u16string_view LoadString(int id) {
    const auto* const it = std::lower_bound(kStrings.begin(), kStrings.end(), id,
                                            [](const Entry& e, int key) { return e.id < key; });
    return it != kStrings.end() && it->id == id ? it->text : std::u16string_view();
}

} // namespace qf
