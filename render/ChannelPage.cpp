#include "render/ChannelPage.h"

#include "model/Channel.h"
#include "render/PageMarkup.h"

#include <cstdint>

namespace qf {

namespace {

using namespace markup;

// The banner page has always lived in a buffer of this many units, one kept for a terminator;
// a long title or path cuts the page there, closing tags included.
constexpr std::size_t kBannerPageCapacity = kUrlCapacity;
// The picture is kept this many pixels inside the banner on the side it is fitted to.
constexpr int64_t kBannerInset = 4;
constexpr double kBannerShare = -0.15;

constexpr std::u16string_view kTableOpen =
    u"<table border=\"0\" cellPadding=\"0\" cellSpacing=\"0\" width=\"100%\">";

struct PictureSize {
    int64_t width = 0;
    int64_t height = 0;
};

void Add(std::u16string& page, std::initializer_list<std::u16string_view> pieces) {
    AppendPieces(page, pieces, kBannerPageCapacity);
}

std::u16string Decimal(int64_t value) {
    return AsciiToUtf16(std::to_string(value));
}

// Fits the declared size into the banner. Only one correction is ever made: a picture that was
// narrowed is not checked against the height again, so it may still stand taller than the
// banner. The comparisons use the banner's own size, the new sizes the inset one.
PictureSize ScalePicture(PictureSize declared, int64_t bannerWidth, int64_t bannerHeight) {
    const bool bannerEmpty = bannerWidth <= 0 || bannerHeight <= 0;
    if (bannerEmpty) {
        return declared;
    }
    const int64_t w = declared.width;
    const int64_t h = declared.height;
    if (w == 0 || h == 0) {
        return {w, bannerHeight - kBannerInset};
    }
    if (w <= bannerWidth) {
        if (h > bannerHeight) {
            return {(bannerHeight - kBannerInset) * w / h, bannerHeight - kBannerInset};
        }
        return declared;
    }
    return {bannerWidth - kBannerInset, h * (bannerWidth - kBannerInset) / w};
}

void AppendPicture(std::u16string& page, std::u16string_view path, PictureSize size,
                   bool smartphone) {
    if (!smartphone) {
        Add(page, {u"</td><td>"});
    }
    Add(page, {u"<img src=\"", kFileUrlScheme, path, u"\""});
    if (size.width != 0) {
        Add(page, {u" width=", Decimal(size.width)});
    }
    if (size.height != 0) {
        Add(page, {u" height=", Decimal(size.height)});
    }
    Add(page, {smartphone ? u" align=left" : u" align=right", u" >"});
}

} // namespace

std::u16string BuildChannelPage(const Channel& channel, int width, int height, bool smartphone,
                                const PageContext& context) {
    std::u16string page;
    Add(page, {kHtmlOpen});
    AppendCharset(page, channel.encoding(), kBannerPageCapacity);
    Add(page, {kBodyOpen, kTableOpen, u"<tr>", u"<td height=\"",
               Decimal(int64_t{height} - kBannerInset), u"\">"});

    const std::u16string logoPath = LogoPath(channel.image(), context);
    const bool logoOnDisk = LogoOnDisk(logoPath);
    if (!(smartphone && logoOnDisk)) {
        Add(page, {kBannerTitleOpen, channel.title().view(), kBannerTitleClose});
    }
    if (logoOnDisk) {
        const PictureSize declared{channel.image().width(), channel.image().height()};
        AppendPicture(page, logoPath, ScalePicture(declared, width, height), smartphone);
    }
    Add(page, {u"</td></tr>", kPageClose});
    return page;
}

int BannerHeight(int clientHeight) {
    // Computed as the banner's top edge moving up by a negative share, truncated toward zero.
    return -static_cast<int>(clientHeight * kBannerShare);
}

} // namespace qf
