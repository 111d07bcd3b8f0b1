#pragma once

namespace forms {

/// Lengths of windows and controls are twips; 15 of them are one logical pixel.
inline constexpr int TwipsPerPixel = 15;

constexpr int ToPixels(int twips) {
    return twips >= 0 ? (twips + TwipsPerPixel / 2) / TwipsPerPixel : -ToPixels(-twips);
}
constexpr int ToTwips(int pixels) {
    return pixels * TwipsPerPixel;
}

} // namespace forms
