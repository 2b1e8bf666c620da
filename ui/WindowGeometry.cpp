#include "ui/WindowGeometry.h"

#include "model/FileUtil.h"
#include "platform/AtomicFile.h"
#include "platform/IniFile.h"
#include "platform/Text.h"
#include "platform/UserFolders.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>
#include <algorithm>
#include <array>
#include <optional>

namespace qf::ui {

namespace {

constexpr std::string_view kSection = "Window";
constexpr std::array<std::string_view, 4> kKeys = {"X", "Y", "Width", "Height"};
// A phone held upright.
constexpr int kFirstWidth = 360;
constexpr int kFirstHeight = 640;
constexpr int kSmallestSide = 120;

std::optional<IniFile> ReadSettings() {
    const auto path = SettingsFilePath();
    if (!path) {
        return std::nullopt;
    }
    const std::u16string file = FromFsPath(*path);
    if (const auto bytes = ReadFileBytes(file)) {
        return IniFile::Parse(*bytes);
    }
    // A file that is there but cannot be read must not be replaced by one with only the window.
    return FileExists(file) ? std::nullopt : std::optional<IniFile>(IniFile());
}

std::optional<QRect> StoredGeometry() {
    const auto file = ReadSettings();
    if (!file || !file->HasSection(kSection)) {
        return std::nullopt;
    }
    std::array<int, 4> values{};
    for (std::size_t i = 0; i < kKeys.size(); ++i) {
        const auto value = file->Value(kSection, kKeys[i]);
        if (!value) {
            return std::nullopt;
        }
        values[i] = LeadingDecimal(*value);
    }
    if (values[2] < kSmallestSide || values[3] < kSmallestSide) {
        return std::nullopt;
    }
    return QRect(values[0], values[1], values[2], values[3]);
}

} // namespace

void RestoreGeometry(QWidget& window) {
    const QScreen* screen = QGuiApplication::primaryScreen();
    const QRect available = screen != nullptr ? screen->availableGeometry() : QRect();
    if (const auto stored = StoredGeometry();
        stored && (available.isEmpty() || available.intersects(*stored))) {
        window.resize(stored->size());
        window.move(stored->topLeft());
        return;
    }
    QSize size(kFirstWidth, kFirstHeight);
    if (!available.isEmpty()) {
        size = size.boundedTo(available.size());
    }
    window.resize(size);
}

bool SaveGeometry(const QWidget& window) {
    const auto path = SettingsFilePath();
    auto file = ReadSettings();
    if (!path || !file) {
        return false;
    }
    const QRect frame =
        window.normalGeometry().isValid() ? window.normalGeometry() : window.geometry();
    const std::array<int, 4> values = {frame.x(), frame.y(), frame.width(), frame.height()};
    for (std::size_t i = 0; i < kKeys.size(); ++i) {
        file->SetValue(kSection, kKeys[i], AsciiToUtf16(std::to_string(values[i])));
    }
    std::error_code ignored;
    std::filesystem::create_directories(path->parent_path(), ignored);
    return WriteFileAtomically(*path, file->Text());
}

} // namespace qf::ui
