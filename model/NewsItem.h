#pragma once

#include "model/FeedDate.h"
#include "platform/WString.h"

#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <utility>

namespace qf {

// The text that tells a story apart from the others of its feed, from one download to the next:
// its link, or for a story without one its guid (the Atom id), or failing both its title. A text
// of nothing but white space counts as none, since it would make every such story look alike.
// Empty when the story has none of the three. Compared ignoring case.
inline std::u16string_view StoryKey(std::u16string_view link, std::u16string_view guid,
                                    std::u16string_view title) {
    for (const std::u16string_view text : {link, guid, title}) {
        if (text.find_first_not_of(u" \t\r\n") != std::u16string_view::npos) {
            return text;
        }
    }
    return {};
}

// One story of a channel, as the feed readers build it. Unlike the channel's own texts, setting a
// story text from a null source clears it: a reader that finds no value for a story means "none".
class NewsItem {
public:
    const WString& title() const { return title_; }
    const WString& link() const { return link_; }
    const WString& description() const { return description_; }
    // The RSS guid or Atom id. It only tells stories apart; it is never shown or followed.
    const WString& guid() const { return guid_; }
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
    void SetGuid(WString&& guid) { guid_ = std::move(guid); }
    void SetDate(const FeedDate& date) { date_ = date; }
    void SetRead(int32_t read) { read_ = read; }
    void SetCodePage(int32_t codePage) { codePage_ = codePage; }

    bool isRead() const { return read_ != 0; }
    std::u16string_view key() const { return StoryKey(link_.view(), guid_.view(), title_.view()); }

private:
    WString title_;
    WString link_;
    WString description_;
    WString guid_;
    FeedDate date_;
    int32_t read_ = 0;
    int32_t codePage_ = 0;
};

} // namespace qf
