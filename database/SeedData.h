#pragma once

#include <span>

/// The reference data that every database holds: the regions and the dialling codes of their towns.
namespace seed {

struct Town {
    const char16_t* name;
    int code;
};

struct Region {
    const char16_t* name;
    std::span<const Town> towns;
};

/// In the order of writing, which numbers the regions from 1.
std::span<const Region> AllRegions();

/// The two portions in which the towns are written.
std::span<const Region> FirstRegions();
std::span<const Region> LastRegions();

} // namespace seed
