#pragma once

#include "platform/WString.h"

#include <cstdint>
#include <string_view>

namespace qf {

// The viewer options of the reader, kept in the settings file's [Options] section under the
// names "StorageVolume", "FitToScreen", "ClearType", "TextSize", "ShowImages", "AddressBar",
// "TolerantCertificates" and "Theme", plus the fixed connection settings that the HTTP fetcher asks
// for.
class ViewerSettings {
public:
    // Main memory; a storage card is "\" followed by its name.
    static constexpr std::u16string_view kMainMemoryVolume = u"\\";
    // Text sizes run from 0 (smallest) to 4 (largest).
    static constexpr int32_t kSmallestTextSize = 0;
    static constexpr int32_t kMediumTextSize = 2;
    static constexpr int32_t kLargestTextSize = 4;
    // The appearance: the desktop's own, or light or dark whatever the desktop says.
    static constexpr int32_t kFollowDesktopTheme = 0;
    static constexpr int32_t kLightTheme = 1;
    static constexpr int32_t kDarkTheme = 2;

    // The root of the volume that holds the data folder.
    const WString& storageVolume() const { return storageVolume_; }
    int32_t fitToScreen() const { return fitToScreen_; }
    int32_t clearType() const { return clearType_; }
    int32_t textSize() const { return textSize_; }
    int32_t showImages() const { return showImages_; }
    int32_t addressBar() const { return addressBar_; }
    // Whether https tolerates a certificate whose date or host name is wrong (never an untrusted
    // issuer); off unless the user turns it on in the file.
    int32_t tolerantCertificates() const { return tolerantCertificates_; }
    int32_t theme() const { return theme_; }
    void SetStorageVolume(const WString& volume) { storageVolume_.set(volume); }
    void SetFitToScreen(int32_t value) { fitToScreen_ = value; }
    void SetClearType(int32_t value) { clearType_ = value; }
    void SetTextSize(int32_t value) { textSize_ = value; }
    void SetShowImages(int32_t value) { showImages_ = value; }
    void SetAddressBar(int32_t value) { addressBar_ = value; }
    void SetTolerantCertificates(int32_t value) { tolerantCertificates_ = value; }
    void SetTheme(int32_t value) { theme_ = value; }

    // The text size the view shows: a stored size outside 0..4 shows as medium.
    int32_t shownTextSize() const {
        return textSize_ < kSmallestTextSize || textSize_ > kLargestTextSize ? kMediumTextSize
                                                                             : textSize_;
    }
    // The theme the program shows: a stored value other than light or dark follows the desktop.
    int32_t shownTheme() const {
        return theme_ == kLightTheme || theme_ == kDarkTheme ? theme_ : kFollowDesktopTheme;
    }

    // Fixed connection settings, the same every time: the platform's preconfigured Internet
    // setting (type 2), no explicit proxy, and a network time-out of 30 seconds.
    static constexpr int32_t connectionType() { return 2; }
    static constexpr bool useProxy() { return false; }
    static constexpr int32_t networkTimeoutSeconds() { return 30; }

private:
    WString storageVolume_{kMainMemoryVolume};
    int32_t fitToScreen_ = 1;
    int32_t clearType_ = 1;
    int32_t textSize_ = kMediumTextSize;
    int32_t showImages_ = 1;
    int32_t addressBar_ = 1;
    int32_t tolerantCertificates_ = 0;
    int32_t theme_ = kFollowDesktopTheme;
};

// Reads the settings file. The first run (no file, or no [Options] in it) keeps the defaults,
// except that the storage volume becomes the first storage card when there is one, and answers
// false so that the caller saves at once. A value missing from the file leaves its option as it
// was.
bool LoadSettings(ViewerSettings& settings);

// Writes every option into [Options] of the settings file, atomically, creating the file and its
// folder when needed; the switches are written as 1 or 0, the text size and the theme as they are.
// Everything else in the file stays. On failure the file is left as it was.
bool SaveSettings(const ViewerSettings& settings);

} // namespace qf
