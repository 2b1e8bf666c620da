#pragma once

#include "model/FeedDate.h"
#include "net/HttpSession.h"

namespace qf {

// The times a server's answer sets for the next automatic request of its feed.

// The end of the pause that a 429 or 503 answer asks for with Retry-After (seconds or an HTTP
// date), at most 48 hours from `now`; a 429 without it asks for an hour. Not set (invalid) for
// any other answer, and when the pause would already be over.
FeedDate BackOffEnd(const ResponseHead& answer, const FeedDate& now);

// The end of the answer's freshness lifetime: Cache-Control max-age less Age, or else Expires; at
// most 24 hours from `now`. Not set when the answer gives none or it has already passed.
FeedDate FreshnessEnd(const ResponseHead& answer, const FeedDate& now);

} // namespace qf
