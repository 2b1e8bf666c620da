#include "model/ViewerSettings.h"

#include "model/DataFolder.h"
#include "model/FileUtil.h"
#include "platform/AtomicFile.h"
#include "platform/IniFile.h"
#include "platform/Text.h"
#include "platform/UserFolders.h"

#include <string>

namespace qf {

namespace {

constexpr std::string_view kSection = "Options";
constexpr std::string_view kStorageVolumeName = "StorageVolume";

// The numeric options in the order in which they are read and written. The switches are saved
// as 1 or 0 whatever non-zero value they hold; the text size is saved as it is.
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
};

// The settings file as it stands: an empty file when there is none yet, nullopt when it exists
// but cannot be read (a save would then destroy what it holds).
std::optional<IniFile> ReadSettingsFile(const std::filesystem::path& path) {
    std::error_code error;
    if (!std::filesystem::exists(path, error)) {
        return error ? std::nullopt : std::optional<IniFile>(IniFile());
    }
    const auto bytes = ReadFileBytes(FromFsPath(path));
    if (!bytes) {
        return std::nullopt;
    }
    return IniFile::Parse(*bytes);
}

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
    const auto path = SettingsFilePath();
    const auto file = path ? ReadSettingsFile(*path) : std::nullopt;
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
    const auto path = SettingsFilePath();
    if (!path) {
        return false;
    }
    auto file = ReadSettingsFile(*path);
    if (!file) {
        return false;
    }
    file->SetValue(kSection, kStorageVolumeName, settings.storageVolume().view());
    for (const NumericOption& option : kNumericOptions) {
        int32_t value = (settings.*option.get)();
        if (option.isSwitch) {
            value = value != 0 ? 1 : 0;
        }
        file->SetValue(kSection, option.name, AsciiToUtf16(std::to_string(value)));
    }
    std::error_code error;
    std::filesystem::create_directories(path->parent_path(), error);
    return !error && WriteFileAtomically(*path, file->Text());
}

} // namespace qf
