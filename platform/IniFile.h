#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qf {

// A settings file in the INI form that Qt's QSettings reads and writes, so that the core and the
// GUI can share one file: values are UTF-8 with QSettings' escapes ("\\" for a backslash, quotes
// around text holding ';', ',' or '=' or starting or ending in a space). Changing a value leaves
// every other line of the file as it was, so sections that someone else writes survive.
class IniFile {
public:
    // Reads the text of a file. Lines that are neither a section, a key nor a comment are kept
    // but mean nothing, as QSettings ignores them.
    static IniFile Parse(std::string_view text);

    bool HasSection(std::string_view section) const;
    // The unescaped value of `key` in `section`; the last one when the key appears more than once.
    std::optional<std::u16string> Value(std::string_view section, std::string_view key) const;
    // Replaces the key's line in place (dropping any repetition), or adds it at the end of the
    // section, adding the section at the end of the file when it is missing.
    void SetValue(std::string_view section, std::string_view key, std::u16string_view value);
    // Drops every line of `key` in `section`; the section's header stays.
    void RemoveKey(std::string_view section, std::string_view key);

    std::string Text() const;

    // The value as QSettings writes it on the right of "=".
    static std::string EscapeValue(std::u16string_view value);
    // The value text of a line (right of "=", comment removed) as QSettings reads it.
    static std::u16string UnescapeValue(std::string_view raw);

private:
    struct Line {
        std::string text;    // as in the file, line end included
        std::string section; // the section the line belongs to ("" before the first one)
        std::string key;     // empty for anything but a "key=value" line
        std::string value;   // the raw text right of "=", without a trailing comment
        bool isHeader = false;
        // What must be added to the text before another line can follow (only the file's last
        // line can need anything).
        std::string terminator;
    };

    static Line ReadLine(std::string_view text, std::size_t& i, std::string& section);

    void AppendToSection(Line keyLine);

    std::vector<Line> lines_;
};

} // namespace qf
