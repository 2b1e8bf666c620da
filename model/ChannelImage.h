#pragma once

#include "platform/WString.h"

#include <cstdint>

namespace qf {

// A channel's logo: where it comes from, the name of its cached copy in the data folder and the
// size the feed announces for it.
class ChannelImage {
public:
    const WString& title() const { return title_; }
    const WString& url() const { return url_; }
    const WString& localFile() const { return localFile_; }
    int32_t width() const { return width_; }
    int32_t height() const { return height_; }

    // Text setters keep the old text when the source is null.
    void SetTitle(const WString& title) { title_.set(title); }
    void SetUrl(const WString& url) { url_.set(url); }
    void SetLocalFile(const WString& localFile) { localFile_.set(localFile); }
    void SetWidth(int32_t width) { width_ = width; }
    void SetHeight(int32_t height) { height_ = height; }

private:
    WString title_;
    WString url_;
    WString localFile_;
    int32_t width_ = 0;
    int32_t height_ = 0;
};

} // namespace qf
