#include "platform/IniFile.h"

#include "platform/Text.h"

#include <algorithm>
#include <utility>

namespace qf {

namespace {

bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}

bool IsLineBreak(char c) {
    return c == '\n' || c == '\r';
}

bool IsHexDigit(char16_t c) {
    return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
}

int HexValue(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    return (c | 0x20) - 'a' + 10;
}

std::string_view Trim(std::string_view text) {
    while (!text.empty() && IsBlank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && IsBlank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

// Index just past the line break at `i` ("\n", "\r", "\r\n" or "\n\r"), or `i` itself when there
// is none.
std::size_t SkipLineBreak(std::string_view text, std::size_t i) {
    if (i >= text.size() || !IsLineBreak(text[i])) {
        return i;
    }
    const char first = text[i++];
    if (i < text.size() && IsLineBreak(text[i]) && text[i] != first) {
        ++i;
    }
    return i;
}

std::size_t EndOfPhysicalLine(std::string_view text, std::size_t i) {
    while (i < text.size() && !IsLineBreak(text[i])) {
        ++i;
    }
    return i;
}

// Where a key line's content ends and where the next line starts. A backslash escapes the next
// character, a line break included, and quotes hold ';' and line breaks, as QSettings reads them.
struct KeyLineExtent {
    std::size_t equals = std::string_view::npos;
    std::size_t contentEnd = 0;
    std::size_t next = 0;
    // What must follow the line when it is the last one and something is added after it.
    std::string terminator;
};

KeyLineExtent ScanKeyLine(std::string_view text, std::size_t i) {
    KeyLineExtent extent;
    bool inQuotes = false;
    bool danglingEscape = false;
    while (i < text.size()) {
        const char c = text[i];
        if (c == '\\') {
            danglingEscape = i + 1 == text.size();
            i = !danglingEscape && IsLineBreak(text[i + 1]) ? SkipLineBreak(text, i + 1)
                                                            : std::min(i + 2, text.size());
        } else if (c == '"') {
            inQuotes = !inQuotes;
            ++i;
        } else if (inQuotes) {
            ++i;
        } else if (c == ';' || IsLineBreak(c)) {
            break;
        } else {
            if (c == '=' && extent.equals == std::string_view::npos) {
                extent.equals = i;
            }
            ++i;
        }
    }
    extent.contentEnd = i;
    const std::size_t end = EndOfPhysicalLine(text, i);
    extent.next = SkipLineBreak(text, end);
    if (extent.next == end) {
        // A last line may end inside quotes or an escape, which would swallow an added line.
        // Giving a lone backslash a line break to escape and closing the quotes adds nothing to
        // the value; the final break must not pair with a "\r" that ends the text into one break.
        if (danglingEscape) {
            extent.terminator += '\n';
        }
        if (inQuotes) {
            extent.terminator += '"';
        }
        extent.terminator += extent.terminator.empty() && text.ends_with('\r') ? '\r' : '\n';
    }
    return extent;
}

// Decodes one backslash escape starting after the backslash at `i`; answers the index after it.
std::size_t DecodeEscape(std::string_view raw, std::size_t i, std::u16string& out) {
    static constexpr std::string_view kCodes = "abfnrtv\"?'\\";
    static constexpr std::u16string_view kValues = u"\a\b\f\n\r\t\v\"?'\\";
    const char c = raw[i++];
    if (const auto code = kCodes.find(c); code != std::string_view::npos) {
        out += kValues[code];
    } else if (c == 'x' && i < raw.size() && IsHexDigit(static_cast<unsigned char>(raw[i]))) {
        char16_t value = 0;
        for (; i < raw.size() && IsHexDigit(static_cast<unsigned char>(raw[i])); ++i) {
            value = static_cast<char16_t>((value << 4) + HexValue(raw[i]));
        }
        out += value;
    } else if (c >= '0' && c <= '7') {
        auto value = static_cast<char16_t>(c - '0');
        for (; i < raw.size() && raw[i] >= '0' && raw[i] <= '7'; ++i) {
            value = static_cast<char16_t>((value << 3) + (raw[i] - '0'));
        }
        out += value;
    } else if (IsLineBreak(c)) {
        i = SkipLineBreak(raw, i - 1);
    }
    // Any other escaped character is dropped together with its backslash.
    return i;
}

std::string Hex(unsigned value) {
    std::string digits;
    do {
        digits.insert(digits.begin(), "0123456789abcdef"[value & 0xF]);
        value >>= 4;
    } while (value != 0);
    return digits;
}

void AppendEscapedRun(std::string& out, std::u16string& run) {
    out += Utf16ToUtf8(run);
    run.clear();
}

} // namespace

IniFile IniFile::Parse(std::string_view text) {
    static constexpr std::string_view kUtf8Bom = "\xEF\xBB\xBF";
    IniFile file;
    std::string section;
    std::size_t i = 0;
    if (text.starts_with(kUtf8Bom)) {
        Line bom;
        bom.text = kUtf8Bom;
        file.lines_.push_back(std::move(bom));
        i = kUtf8Bom.size();
    }
    while (i < text.size()) {
        file.lines_.push_back(ReadLine(text, i, section));
    }
    return file;
}

IniFile::Line IniFile::ReadLine(std::string_view text, std::size_t& i, std::string& section) {
    Line line;
    std::size_t first = i;
    while (first < text.size() && IsBlank(text[first])) {
        ++first;
    }
    std::size_t next;
    if (first < text.size() && (text[first] == '[' || text[first] == ';')) {
        const std::size_t end = EndOfPhysicalLine(text, first);
        if (text[first] == '[') {
            const std::string_view inside = text.substr(first + 1, end - first - 1);
            section = std::string(Trim(inside.substr(0, inside.find(']'))));
            line.isHeader = true;
        }
        next = SkipLineBreak(text, end);
        line.terminator.assign(next == end ? 1 : 0, '\n');
    } else {
        KeyLineExtent extent = ScanKeyLine(text, first);
        if (extent.equals != std::string_view::npos) {
            line.key = Trim(text.substr(first, extent.equals - first));
            line.value = text.substr(extent.equals + 1, extent.contentEnd - extent.equals - 1);
        }
        next = extent.next;
        line.terminator = std::move(extent.terminator);
    }
    line.text = text.substr(i, next - i);
    line.section = section;
    i = next;
    return line;
}

bool IniFile::HasSection(std::string_view section) const {
    return std::any_of(lines_.begin(), lines_.end(),
                       [&](const Line& line) { return line.isHeader && line.section == section; });
}

std::optional<std::u16string> IniFile::Value(std::string_view section, std::string_view key) const {
    const auto found = std::find_if(lines_.rbegin(), lines_.rend(), [&](const Line& line) {
        return !line.isHeader && !line.key.empty() && line.section == section && line.key == key;
    });
    if (found == lines_.rend()) {
        return std::nullopt;
    }
    return UnescapeValue(found->value);
}

void IniFile::SetValue(std::string_view section, std::string_view key, std::u16string_view value) {
    const std::string escaped = EscapeValue(value);
    Line keyLine;
    keyLine.text = std::string(key) + "=" + escaped + "\n";
    keyLine.section = section;
    keyLine.key = key;
    keyLine.value = escaped;
    bool replaced = false;
    for (auto line = lines_.begin(); line != lines_.end();) {
        if (line->isHeader || line->section != section || line->key != key) {
            ++line;
        } else if (replaced) {
            line = lines_.erase(line);
        } else {
            *line = keyLine;
            replaced = true;
            ++line;
        }
    }
    if (!replaced) {
        AppendToSection(std::move(keyLine));
    }
}

void IniFile::RemoveKey(std::string_view section, std::string_view key) {
    std::erase_if(lines_, [&](const Line& line) {
        return !line.isHeader && line.section == section && line.key == key;
    });
}

void IniFile::AppendToSection(Line keyLine) {
    const std::string& section = keyLine.section;
    auto last = lines_.end();
    for (auto line = lines_.begin(); line != lines_.end(); ++line) {
        if (line->section == section && (line->isHeader || !line->key.empty())) {
            last = line;
        }
    }
    const bool newSection = last == lines_.end();
    if (newSection) {
        last = lines_.empty() ? lines_.end() : std::prev(lines_.end());
    }
    if (last != lines_.end()) {
        last->text += std::exchange(last->terminator, {});
    }
    auto at = last == lines_.end() ? lines_.begin() : std::next(last);
    if (newSection) {
        std::string header;
        if (!lines_.empty()) {
            header += '\n';
        }
        header.append(1, '[').append(section).append("]\n");
        Line headerLine;
        headerLine.text = std::move(header);
        headerLine.section = section;
        headerLine.isHeader = true;
        at = std::next(lines_.insert(at, std::move(headerLine)));
    }
    lines_.insert(at, std::move(keyLine));
}

std::string IniFile::Text() const {
    std::string text;
    for (const Line& line : lines_) {
        text += line.text;
    }
    return text;
}

std::string IniFile::EscapeValue(std::u16string_view value) {
    std::string out = value.starts_with(u'@') ? "@" : "";
    std::u16string run;
    bool needsQuotes = false;
    bool escapeNextIfDigit = false;
    for (const char16_t c : value) {
        needsQuotes = needsQuotes || c == u';' || c == u',' || c == u'=';
        // A hex digit right after a numeric escape would be read as part of it.
        if (escapeNextIfDigit && IsHexDigit(c)) {
            AppendEscapedRun(out, run);
            out += "\\x" + Hex(c);
            continue;
        }
        escapeNextIfDigit = false;
        static constexpr std::u16string_view kNamed = u"\a\b\f\n\r\t\v\"\\";
        static constexpr std::string_view kNames = "abfnrtv\"\\";
        if (const auto named = kNamed.find(c); named != std::u16string_view::npos) {
            AppendEscapedRun(out, run);
            out += '\\';
            out += kNames[named];
        } else if (c < 0x20) {
            AppendEscapedRun(out, run);
            out += c == 0 ? "\\0" : "\\x" + Hex(c);
            escapeNextIfDigit = true;
        } else {
            run += c;
        }
    }
    AppendEscapedRun(out, run);
    if (needsQuotes || (!out.empty() && (out.front() == ' ' || out.back() == ' '))) {
        out = "\"" + out + "\"";
    }
    return out;
}

std::u16string IniFile::UnescapeValue(std::string_view raw) {
    std::u16string out;
    std::size_t keep = 0; // trailing blanks before this index came from escapes or quotes
    bool quoted = false;
    bool inQuotes = false;
    std::size_t i = 0;
    auto skipBlanks = [&] {
        while (i < raw.size() && IsBlank(raw[i])) {
            ++i;
        }
    };
    skipBlanks();
    while (i < raw.size()) {
        if (raw[i] == '\\') {
            if (++i >= raw.size()) {
                break;
            }
            i = DecodeEscape(raw, i, out);
            keep = out.size();
        } else if (raw[i] == '"') {
            ++i;
            quoted = true;
            inQuotes = !inQuotes;
            if (!inQuotes) {
                skipBlanks();
            }
        } else {
            const std::size_t end = raw.find_first_of("\\\"", i);
            const std::size_t stop = end == std::string_view::npos ? raw.size() : end;
            out += Utf8ToUtf16(raw.substr(i, stop - i));
            i = stop;
        }
    }
    if (!quoted) {
        while (out.size() > keep && (out.back() == u' ' || out.back() == u'\t')) {
            out.pop_back();
        }
    }
    if (out.starts_with(u"@@")) {
        out.erase(0, 1);
    }
    return out;
}

} // namespace qf
