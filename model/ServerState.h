#pragma once

#include "model/FeedDate.h"
#include "platform/WString.h"

namespace qf {

// What a channel's server told us about its feed, kept so that the next request is polite: the
// validators of the cached copy (sent back so that an unchanged feed costs no body), the time
// before which it asked not to be asked again, the end of the feed's freshness lifetime, and
// whether it said the feed is gone for good. All of it belongs to one address: a channel whose
// address changes starts afresh.
struct ServerState {
    // The ETag and Last-Modified headers exactly as received; null when the server sent none.
    WString etag;
    WString lastModified;
    // Not set (invalid) when the server asked for nothing.
    FeedDate notBefore;
    FeedDate freshUntil;
    bool gone = false;
    // Not kept in files: the last answer was "not modified".
    bool notModified = false;

    // The server keeps automatic refreshes away: the feed is gone, or the server asked for a
    // pause that has not ended yet.
    bool KeepsAway(const FeedDate& now) const {
        return gone || (notBefore.valid() && notBefore.Ticks() > now.Ticks());
    }
    // The server's copy still counts as fresh.
    bool IsFresh(const FeedDate& now) const {
        return freshUntil.valid() && freshUntil.Ticks() > now.Ticks();
    }
};

} // namespace qf
