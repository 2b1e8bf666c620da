#include "ui/DeviceFamily.h"

#include "platform/Text.h"

#include <cstdlib>

namespace qf::ui {

namespace {

// The OS major version the Linux program reports for itself.
constexpr int kLinuxOsMajor = 5;

struct CodeRow {
    int osMajor;
    int32_t queryFailed;
    int32_t smartphone;
    int32_t pocketPc;
    int32_t other;
};

constexpr CodeRow kCodeRows[] = {
    {3, 1, 10, 2, 1},
    {4, 3, 11, 3, 3},
    {5, 4, 12, 4, 4},
};
constexpr int32_t kAnyOtherCode = 4;

} // namespace

int32_t PlatformCode(int osMajor, std::optional<std::u16string_view> platformType) {
    for (const CodeRow& row : kCodeRows) {
        if (row.osMajor != osMajor) {
            continue;
        }
        if (!platformType) {
            return row.queryFailed;
        }
        if (EqualsIgnoreCase(*platformType, u"Smartphone")) {
            return row.smartphone;
        }
        return EqualsIgnoreCase(*platformType, u"PocketPC") ? row.pocketPc : row.other;
    }
    return kAnyOtherCode;
}

bool IsSmartphoneCode(int32_t platformCode) {
    return platformCode >= 10 && platformCode <= 12;
}

DeviceFamily DetectDeviceFamily() {
    const char* chosen = std::getenv("QUILLFEED_PLATFORM");
    const bool smartphone =
        chosen != nullptr && EqualsIgnoreCase(Utf8ToUtf16(chosen), u"smartphone");
    const int32_t code = PlatformCode(kLinuxOsMajor, smartphone ? u"Smartphone" : u"PocketPC");
    return {IsSmartphoneCode(code), code};
}

} // namespace qf::ui
