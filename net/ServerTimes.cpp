#include "net/ServerTimes.h"

#include "platform/Text.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qf {

namespace {

constexpr int32_t kStatusTooManyRequests = 429;
constexpr int32_t kStatusUnavailable = 503;
constexpr int64_t kSecondsPerHour = 3600;
constexpr int64_t kLongestBackOff = 48 * kSecondsPerHour;
constexpr int64_t kBackOffWithoutRetryAfter = kSecondsPerHour;
constexpr int64_t kLongestFreshness = 24 * kSecondsPerHour;

bool AllDigits(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

// Whole seconds, held far below any overflow; nothing when `text` is not plain digits.
std::optional<int64_t> Seconds(std::string_view text) {
    if (!AllDigits(text)) {
        return std::nullopt;
    }
    constexpr std::size_t kMostDigits = 12;
    return text.size() > kMostDigits ? INT64_C(999999999999) : std::stoll(std::string(text));
}

// Seconds from `now` until an HTTP date, or nothing when the text is no date.
std::optional<int64_t> SecondsUntil(std::string_view text, const FeedDate& now) {
    FeedDate date;
    if (!date.Parse(text)) {
        return std::nullopt;
    }
    return FeedDate::SecondsBetween(date, now);
}

FeedDate After(const FeedDate& now, int64_t seconds, int64_t longest) {
    FeedDate end;
    if (seconds <= 0) {
        return end;
    }
    end = now;
    end.AddSeconds(std::min(seconds, longest));
    return end;
}

// The value of one directive of a Cache-Control header ("max-age=600"), compared ignoring case.
std::optional<std::string_view> Directive(std::string_view header, std::string_view name) {
    while (!header.empty()) {
        const auto comma = header.find(',');
        std::string_view part = header.substr(0, comma);
        header = comma == std::string_view::npos ? std::string_view() : header.substr(comma + 1);
        part.remove_prefix(std::min(part.find_first_not_of(' '), part.size()));
        const auto equals = part.find('=');
        if (equals != std::string_view::npos && EqualsIgnoreCase(part.substr(0, equals), name)) {
            std::string_view value = part.substr(equals + 1);
            value = value.substr(0, value.find_first_of(" \t"));
            if (value.size() >= 2 && value.front() == '"' && value.back() == '"') {
                value = value.substr(1, value.size() - 2);
            }
            return value;
        }
    }
    return std::nullopt;
}

} // namespace

FeedDate BackOffEnd(const ResponseHead& answer, const FeedDate& now) {
    if (answer.status != kStatusTooManyRequests && answer.status != kStatusUnavailable) {
        return {};
    }
    std::optional<int64_t> asked;
    if (const auto header = answer.Header("Retry-After")) {
        asked = AllDigits(*header) ? Seconds(*header) : SecondsUntil(*header, now);
    }
    if (asked) {
        return After(now, *asked, kLongestBackOff);
    }
    // Too many requests without a word on how long to wait: an hour.
    return answer.status == kStatusTooManyRequests
               ? After(now, kBackOffWithoutRetryAfter, kLongestBackOff)
               : FeedDate();
}

FeedDate FreshnessEnd(const ResponseHead& answer, const FeedDate& now) {
    if (const auto cacheControl = answer.Header("Cache-Control")) {
        if (const auto maxAge = Directive(*cacheControl, "max-age")) {
            const int64_t age = Seconds(answer.Header("Age").value_or("")).value_or(0);
            return After(now, Seconds(*maxAge).value_or(0) - age, kLongestFreshness);
        }
    }
    if (const auto expires = answer.Header("Expires")) {
        return After(now, SecondsUntil(*expires, now).value_or(0), kLongestFreshness);
    }
    return {};
}

} // namespace qf
