#include "platform/CodePage.h"

#include "platform/Text.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstdlib>
#include <iconv.h>
#include <memory>
#include <utility>
#include <vector>

namespace qf {
namespace {

constexpr char16_t kReplacementChar = 0xFFFD;
constexpr char kDefaultChar = '?';
constexpr const char* kUtf8Name = "UTF-8";
constexpr const char* kUtf16Name =
    std::endian::native == std::endian::little ? "UTF-16LE" : "UTF-16BE";

// A thread keeps this many converters open; feeds naming ever new code pages must not make the
// cache grow without end.
constexpr std::size_t kMaxCachedConverters = 16;

// Owns one iconv conversion descriptor.
class IconvHandle {
public:
    IconvHandle() = default;
    IconvHandle(const char* to, const char* from) : cd_(iconv_open(to, from)) {}
    ~IconvHandle() {
        if (valid()) {
            iconv_close(cd_);
        }
    }
    IconvHandle(IconvHandle&& other) noexcept : cd_(std::exchange(other.cd_, Invalid())) {}
    IconvHandle& operator=(IconvHandle&& other) noexcept {
        std::swap(cd_, other.cd_);
        return *this;
    }
    IconvHandle(const IconvHandle&) = delete;
    IconvHandle& operator=(const IconvHandle&) = delete;

    bool valid() const { return cd_ != Invalid(); }
    iconv_t get() const { return cd_; }
    // Forgets the shift state a previous, possibly broken, text left behind.
    void reset() const { iconv(cd_, nullptr, nullptr, nullptr, nullptr); }

private:
    // iconv_open's failure value is (iconv_t)-1 by its own definition.
    // NOLINTNEXTLINE(performance-no-int-to-ptr)
    static iconv_t Invalid() { return reinterpret_cast<iconv_t>(static_cast<intptr_t>(-1)); }

    iconv_t cd_ = Invalid();
};

// Both directions between UTF-16 and one character set, with what the fast paths need to know.
struct Converter {
    std::string charset;
    bool utf8 = false;
    bool asciiCompatible = false;
    IconvHandle decoder; // charset -> UTF-16
    IconvHandle encoder; // UTF-16 -> charset

    bool usable() const { return utf8 || (decoder.valid() && encoder.valid()); }
};

enum class Stop { Done, Full, Invalid, Incomplete };

// Runs iconv from `in` into `out` (appending whole units), letting `out` grow to at most
// `maxUnits` units. Answers why it stopped; `in` is left at the first unconverted byte.
template <typename Out>
Stop Pump(const IconvHandle& cd, std::string_view& in, Out& out, std::size_t maxUnits) {
    using Unit = typename Out::value_type;
    std::size_t used = out.size();
    std::size_t size = std::min(maxUnits, used + in.size() + 16);
    for (;;) {
        out.resize(size);
        char* src = const_cast<char*>(in.data());
        std::size_t srcLeft = in.size();
        char* dst = reinterpret_cast<char*>(out.data() + used);
        std::size_t dstLeft = (size - used) * sizeof(Unit);
        const std::size_t result = iconv(cd.get(), &src, &srcLeft, &dst, &dstLeft);
        const int error = errno;
        in.remove_prefix(in.size() - srcLeft);
        used = size - dstLeft / sizeof(Unit);
        if (result != static_cast<std::size_t>(-1)) {
            out.resize(used);
            return Stop::Done;
        }
        if (error != E2BIG || size == maxUnits) {
            out.resize(used);
            return error == E2BIG ? Stop::Full : error == EINVAL ? Stop::Incomplete : Stop::Invalid;
        }
        size = std::min(maxUnits, std::max(size * 2, used + 16));
    }
}

// Writes what the converter still holds back, when it fits: the bytes that return a stateful
// character set to its initial state, or a letter kept back in case a combining mark follows
// (the Hebrew and Vietnamese code pages do that).
template <typename Out> void Flush(const IconvHandle& cd, Out& out, std::size_t maxUnits) {
    using Unit = typename Out::value_type;
    Unit buffer[16];
    char* dst = reinterpret_cast<char*>(buffer);
    std::size_t dstLeft = sizeof buffer;
    if (iconv(cd.get(), nullptr, nullptr, &dst, &dstLeft) == static_cast<std::size_t>(-1)) {
        return;
    }
    const std::size_t units = (sizeof buffer - dstLeft) / sizeof(Unit);
    if (out.size() + units <= maxUnits) {
        out.append(buffer, units);
    }
}

std::u16string DecodeWithIconv(const Converter& converter, std::string_view bytes,
                               std::size_t maxUnits) {
    converter.decoder.reset();
    std::u16string out;
    for (;;) {
        const Stop stop = Pump(converter.decoder, bytes, out, maxUnits);
        if (stop != Stop::Full) {
            Flush(converter.decoder, out, maxUnits);
        }
        if (stop == Stop::Done || out.size() >= maxUnits) {
            return out;
        }
        out.push_back(kReplacementChar);
        if (stop == Stop::Incomplete) {
            return out;
        }
        bytes.remove_prefix(1);
    }
}

bool IsHighSurrogate(char16_t c) {
    return c >= 0xD800 && c <= 0xDBFF;
}
bool IsLowSurrogate(char16_t c) {
    return c >= 0xDC00 && c <= 0xDFFF;
}

std::string EncodeWithIconv(const Converter& converter, std::u16string_view text,
                            std::size_t maxBytes) {
    converter.encoder.reset();
    std::string out;
    std::string_view bytes(reinterpret_cast<const char*>(text.data()),
                           text.size() * sizeof(char16_t));
    for (;;) {
        const Stop stop = Pump(converter.encoder, bytes, out, maxBytes);
        if (stop != Stop::Full) {
            Flush(converter.encoder, out, maxBytes);
        }
        if (stop == Stop::Done || stop == Stop::Full || out.size() >= maxBytes) {
            return out;
        }
        // The converter stopped at a character it cannot write or at an unpaired surrogate.
        out.push_back(kDefaultChar);
        const std::u16string_view rest = text.substr(text.size() - bytes.size() / sizeof(char16_t));
        const bool pair = rest.size() >= 2 && IsHighSurrogate(rest[0]) && IsLowSurrogate(rest[1]);
        bytes.remove_prefix(pair ? 2 * sizeof(char16_t) : sizeof(char16_t));
    }
}

bool IsAscii(std::string_view bytes) {
    unsigned char all = 0;
    for (const char c : bytes) {
        all |= static_cast<unsigned char>(c);
    }
    return all < 0x80;
}

bool IsAscii(std::u16string_view text) {
    char16_t all = 0;
    for (const char16_t c : text) {
        all |= c;
    }
    return all < 0x80;
}

// Most character sets write ASCII as ASCII; for those, texts without other characters are copied
// unit by unit, which is what most feed texts are.
bool MapsAsciiToItself(const Converter& converter) {
    std::string ascii;
    for (int c = 1; c < 0x80; ++c) {
        ascii.push_back(static_cast<char>(c));
    }
    const std::u16string wide(ascii.begin(), ascii.end());
    return DecodeWithIconv(converter, ascii, std::u16string::npos) == wide &&
           EncodeWithIconv(converter, wide, std::string::npos) == ascii;
}

bool IsUtf8Name(std::string_view charset) {
    std::string upper(charset);
    std::transform(upper.begin(), upper.end(), upper.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
    return upper == "UTF-8" || upper == "UTF8";
}

std::unique_ptr<Converter> OpenConverter(const std::string& charset) {
    auto converter = std::make_unique<Converter>();
    converter->charset = charset;
    if (IsUtf8Name(charset)) {
        converter->utf8 = true;
        converter->asciiCompatible = true;
        return converter;
    }
    converter->decoder = IconvHandle(kUtf16Name, charset.c_str());
    converter->encoder = IconvHandle(charset.c_str(), kUtf16Name);
    converter->asciiCompatible = converter->usable() && MapsAsciiToItself(*converter);
    return converter;
}

// The converter for a character set, or null when the system has none. Opening one costs far
// more than converting a typical text, so each thread keeps the ones it used; a descriptor holds
// conversion state and must not be shared between threads.
const Converter* FindConverter(const std::string& charset) {
    thread_local std::vector<std::unique_ptr<Converter>> cache;
    auto found = std::find_if(cache.begin(), cache.end(),
                              [&](const auto& converter) { return converter->charset == charset; });
    if (found == cache.end()) {
        if (cache.size() >= kMaxCachedConverters) {
            cache.erase(cache.begin());
        }
        cache.push_back(OpenConverter(charset));
        found = cache.end() - 1;
    }
    return (*found)->usable() ? found->get() : nullptr;
}

// The system's name for a Windows code page; empty for 0 (and for numbers below it), which has
// none of its own. An empty name must never reach iconv, which would take the locale's set.
std::string CharsetName(int32_t codePage) {
    if (codePage <= 0) {
        return {};
    }
    if (codePage == kUtf8CodePage) {
        return kUtf8Name;
    }
    return "CP" + std::to_string(codePage);
}

std::string DefaultCharsetName() {
    const char* value = std::getenv(kDefaultCodePageVariable);
    if (value == nullptr || *value == '\0') {
        return kUtf8Name;
    }
    const std::string_view text(value);
    if (std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; })) {
        const std::string name = CharsetName(LeadingDecimal(text));
        return name.empty() ? kUtf8Name : name;
    }
    return std::string(text);
}

const Converter& ConverterFor(int32_t codePage) {
    if (const std::string name = CharsetName(codePage); !name.empty()) {
        if (const Converter* converter = FindConverter(name)) {
            return *converter;
        }
    }
    if (const Converter* converter = FindConverter(DefaultCharsetName())) {
        return *converter;
    }
    return *FindConverter(kUtf8Name);
}

} // namespace

bool DefaultCharsetIsUtf8() {
    const std::string name = DefaultCharsetName();
    return EqualsIgnoreCase(name, "UTF-8") || EqualsIgnoreCase(name, "UTF8") ||
           FindConverter(name) == nullptr;
}

std::u16string DecodeCodePage(std::string_view bytes, int32_t codePage, std::size_t maxUnits) {
    const Converter& converter = ConverterFor(codePage);
    if (converter.asciiCompatible && IsAscii(bytes)) {
        bytes = bytes.substr(0, maxUnits);
        return std::u16string(bytes.begin(), bytes.end());
    }
    if (!converter.utf8) {
        return DecodeWithIconv(converter, bytes, maxUnits);
    }
    std::u16string out = Utf8ToUtf16(bytes);
    if (out.size() > maxUnits) {
        out.resize(maxUnits);
        if (!out.empty() && IsHighSurrogate(out.back())) {
            out.pop_back();
        }
    }
    return out;
}

std::string EncodeCodePage(std::u16string_view text, int32_t codePage, std::size_t maxBytes) {
    const Converter& converter = ConverterFor(codePage);
    if (converter.asciiCompatible && IsAscii(text)) {
        text = text.substr(0, maxBytes);
        return std::string(text.begin(), text.end());
    }
    if (!converter.utf8) {
        return EncodeWithIconv(converter, text, maxBytes);
    }
    std::string out = Utf16ToUtf8(text);
    if (out.size() > maxBytes) {
        std::size_t cut = maxBytes;
        while (cut > 0 && (static_cast<unsigned char>(out[cut]) & 0xC0) == 0x80) {
            --cut;
        }
        out.resize(cut);
    }
    return out;
}

} // namespace qf
