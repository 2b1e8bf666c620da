#include "model/ViewerSettings.h"

#include "model/DataFolder.h"
#include "platform/SettingsFile.h"
#include "platform/Text.h"

#include <string>

namespace qf {

namespace {

constexpr std::string_view kSection = "Options";
constexpr std::string_view kStorageVolumeName = "StorageVolume";

// The numeric options in the order in which they are read and written. The switches are saved
// as 1 or 0 whatever non-zero value they hold; the text size and the theme are saved as they are.
struct NumericOption {
    std::string_view name;
    int32_t (ViewerSettings::*get)() const;
    void (ViewerSettings::*set)(int32_t);
    bool isSwitch;
};

constexpr NumericOption kNumericOptions[] = {
    {"FitToScreen", &ViewerSettings::fitToScreen, &ViewerSettings::SetFitToScreen, true},
    {"ClearType", &ViewerSettings::clearType, &ViewerSettings::SetClearType, true},
    {"TextSize", &ViewerSettings::textSize, &ViewerSettings::SetTextSize, false},
    {"ShowImages", &ViewerSettings::showImages, &ViewerSettings::SetShowImages, true},
    {"AddressBar", &ViewerSettings::addressBar, &ViewerSettings::SetAddressBar, true},
    {"TolerantCertificates", &ViewerSettings::tolerantCertificates,
     &ViewerSettings::SetTolerantCertificates, true},
    {"Theme", &ViewerSettings::theme, &ViewerSettings::SetTheme, false},
};

// On the first run the data goes to the first storage card, when there is one.
void ChooseFirstRunVolume(ViewerSettings& settings) {
    if (StorageCardCount() > 0) {
        if (const auto name = StorageCardName(0)) {
            settings.SetStorageVolume(
                WString(std::u16string(ViewerSettings::kMainMemoryVolume) + *name));
        }
    }
}

} // namespace

bool LoadSettings(ViewerSettings& settings) {
    const auto file = ReadSettingsFile();
    if (!file || !file->HasSection(kSection)) {
        ChooseFirstRunVolume(settings);
        return false;
    }
    if (auto volume = file->Value(kSection, kStorageVolumeName)) {
        settings.SetStorageVolume(WString(std::move(*volume)));
    }
    for (const NumericOption& option : kNumericOptions) {
        if (const auto value = file->Value(kSection, option.name)) {
            (settings.*option.set)(LeadingDecimal(*value));
        }
    }
    return true;
}

bool SaveSettings(const ViewerSettings& settings) {
    return UpdateSettingsFile([&settings](IniFile& file) {
        file.SetValue(kSection, kStorageVolumeName, settings.storageVolume().view());
        for (const NumericOption& option : kNumericOptions) {
            int32_t value = (settings.*option.get)();
            if (option.isSwitch) {
                value = value != 0 ? 1 : 0;
            }
            file.SetValue(kSection, option.name, AsciiToUtf16(std::to_string(value)));
        }
    });
}

} // namespace qf
