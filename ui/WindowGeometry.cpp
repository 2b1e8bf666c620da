#include "ui/WindowGeometry.h"

#include "platform/SettingsFile.h"
#include "platform/Text.h"
#include "ui/QtText.h"

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
// The pane widths, in pixels, separated by spaces.
constexpr std::string_view kPanesKey = "Panes";
// A phone held upright.
constexpr int kFirstWidth = 360;
constexpr int kFirstHeight = 640;
constexpr int kSmallestSide = 120;

std::optional<QRect> StoredGeometry() {
    const auto file = ReadSettingsFile();
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

QList<int> StoredPaneSizes(int count) {
    const auto file = ReadSettingsFile();
    const auto value = file ? file->Value(kSection, kPanesKey) : std::nullopt;
    if (!value) {
        return {};
    }
    QList<int> sizes;
    for (const QString& part : ToQString(*value).split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        sizes << part.toInt();
    }
    const bool usable =
        sizes.size() == count && std::ranges::all_of(sizes, [](int size) { return size > 0; });
    return usable ? sizes : QList<int>();
}

bool SaveGeometry(const QWidget& window, const QList<int>& paneSizes) {
    const QRect frame =
        window.normalGeometry().isValid() ? window.normalGeometry() : window.geometry();
    const std::array<int, 4> values = {frame.x(), frame.y(), frame.width(), frame.height()};
    QStringList panes;
    for (int size : paneSizes) {
        panes << QString::number(size);
    }
    return UpdateSettingsFile([&values, &panes](IniFile& file) {
        for (std::size_t i = 0; i < kKeys.size(); ++i) {
            file.SetValue(kSection, kKeys[i], AsciiToUtf16(std::to_string(values[i])));
        }
        if (!panes.isEmpty()) {
            file.SetValue(kSection, kPanesKey, panes.join(QLatin1Char(' ')).toStdU16String());
        }
    });
}

} // namespace qf::ui
