#pragma once

#include "parse/FeedDate.h"
#include "platform/WString.h"

#include <cstdint>
#include <utility>

namespace qf {

// One story of a channel, as the feed readers build it. Unlike the channel's own texts, setting a
// story text from a null source clears it: a reader that finds no value for a story means "none".
class NewsItem {
public:
    const WString& title() const { return title_; }
    const WString& link() const { return link_; }
    const WString& description() const { return description_; }
    const FeedDate& date() const { return date_; }
    int32_t read() const { return read_; }
    int32_t codePage() const { return codePage_; }

    // Texts the readers make, which may be long, are taken rather than copied.
    void SetTitle(const WString& title) { title_ = title; }
    void SetTitle(WString&& title) { title_ = std::move(title); }
    void SetLink(const WString& link) { link_ = link; }
    void SetLink(WString&& link) { link_ = std::move(link); }
    void SetDescription(const WString& description) { description_ = description; }
    void SetDescription(WString&& description) { description_ = std::move(description); }
    void SetDate(const FeedDate& date) { date_ = date; }
    void SetRead(int32_t read) { read_ = read; }
    void SetCodePage(int32_t codePage) { codePage_ = codePage; }

    bool isRead() const { return read_ != 0; }

private:
    WString title_;
    WString link_;
    WString description_;
    FeedDate date_;
    int32_t read_ = 0;
    int32_t codePage_ = 0;
};

} // namespace qf
