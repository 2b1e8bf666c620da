#pragma once

#include "render/PageContext.h"

#include <string>

namespace qf {

class Channel;

// The narrow banner above a channel's headlines, for a banner view of `width` x `height`
// pixels: the channel's title, its logo when the file is on disk, or both. A Pocket PC shows
// the title with the logo in a second cell to its right; a Smartphone shows the logo alone,
// aligned left, when there is one. The logo is scaled to fit the banner, so the page is
// rebuilt whenever the banner changes size. The whole page is held to 519 characters.
std::u16string BuildChannelPage(const Channel& channel, int width, int height, bool smartphone,
                                const PageContext& context);

// Height of the banner view for a channel screen whose client area is `clientHeight` pixels
// high: 15 % of it, truncated (268 gives 40).
int BannerHeight(int clientHeight);

} // namespace qf
