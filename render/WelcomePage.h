#pragma once

#include <cstdint>
#include <string>

namespace qf {

// Bitmap numbers of the product logo that the welcome page shows.
inline constexpr int kWelcomeLogoLarge = 1041;
inline constexpr int kWelcomeLogoSmall = 1053;

// The greeting shown on first run, with the product name and a logo named "qf_logo.bmp" that
// the welcome screen supplies itself (see WelcomeLogo). The hint to tap "Continue" is added only
// on a Pocket PC of `platformCode` 4, the one device kind whose soft key reads so.
std::u16string BuildWelcomePage(bool smartphone, int32_t platformCode);

// The logo bitmap for a screen `screenWidth` pixels wide: the small one below 220 pixels.
int WelcomeLogo(int screenWidth);

} // namespace qf
