#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace qf::ui {

// The kind of handheld the program behaves as: a Smartphone (no touch screen, no auto-update,
// narrow count column) or a Pocket PC, with the platform code that the pages and the view host
// consult.
struct DeviceFamily {
    bool smartphone = false;
    int32_t platformCode = 4;
};

// The platform code for an operating system's major version and the platform type text it
// reports (nullopt when the query failed), compared ignoring case.
int32_t PlatformCode(int osMajor, std::optional<std::u16string_view> platformType);

// Whether a platform code is one of the Smartphone codes.
bool IsSmartphoneCode(int32_t platformCode);

// The family this run behaves as: a Smartphone when QUILLFEED_PLATFORM is "smartphone" (in any
// case), otherwise a Pocket PC of OS major version 5.
DeviceFamily DetectDeviceFamily();

} // namespace qf::ui
