#include "parse/FeedSniff.h"

#include "parse/Charset.h"
#include "platform/CodePage.h"
#include "platform/Text.h"

#include <algorithm>
#include <array>
#include <string>
#include <type_traits>

namespace qf {

namespace {

constexpr std::string_view kDeclarationStart = "<?xml ";
constexpr std::string_view kDeclarationEnd = "?>";
constexpr std::array<std::string_view, 4> kFeedRootWords = {"rdf:RDF", "rss", "feed", "opml"};

// Where an ASCII word first occurs in a text of bytes or of UTF-16 units, from `from` on.
template <typename Char>
std::size_t Find(std::basic_string_view<Char> text, std::string_view word, std::size_t from = 0) {
    if constexpr (std::is_same_v<Char, char>) {
        return text.find(word, from);
    } else {
        if (from > text.size()) {
            return std::u16string_view::npos;
        }
        const auto* const found = std::search(text.begin() + static_cast<std::ptrdiff_t>(from),
                                              text.end(), word.begin(), word.end());
        return found == text.end() ? std::u16string_view::npos
                                   : static_cast<std::size_t>(found - text.begin());
    }
}

template <typename Char> bool HoldsFeedRootWord(std::basic_string_view<Char> text) {
    return std::any_of(kFeedRootWords.begin(), kFeedRootWords.end(), [text](std::string_view word) {
        return Find(text, word) != std::basic_string_view<Char>::npos;
    });
}

template <typename Char> bool LooksLikeFeedText(std::basic_string_view<Char> text) {
    constexpr std::size_t npos = std::basic_string_view<Char>::npos;
    const std::size_t declaration = Find(text, kDeclarationStart);
    if (declaration != npos &&
        Find(text, kDeclarationEnd, declaration + kDeclarationStart.size()) != npos) {
        return true;
    }
    return HoldsFeedRootWord(text);
}

} // namespace

bool LooksLikeFeedFile(std::string_view bytes) {
    // In UTF-8 every ASCII byte decodes to itself and no other byte decodes to ASCII, so with
    // UTF-8 as the default character set (the usual case) the ASCII words can be sought in the
    // bytes themselves, which saves converting a whole feed just to look at it.
    if (DefaultCharsetIsUtf8()) {
        return LooksLikeFeedText(bytes.substr(0, bytes.find('\0')));
    }
    const std::u16string text = BytesToWide(bytes, 0, bytes.size() + 1);
    return LooksLikeFeedText(std::u16string_view(text));
}

bool ContainsFeedRootWord(std::u16string_view text) {
    return HoldsFeedRootWord(text);
}

} // namespace qf
