// What the resources of a Photoshop format plug-in tell of it: the property list `PiPL`, and its predecessor
// `PiMI`. Works on memory alone.
#pragma once

#include "ZVFormat.h"
#include "ZVPlugin.h"

#include <span>
#include <string>
#include <vector>

/// The image modes that the host takes: 0 to 3 and 11, one bit each.
inline constexpr long PluginModes = 0x80F;

inline constexpr uint32_t PluginHostSignature = ZV_FourCC("QVRN");

/// A plug-in as its resource tells of it.
struct PluginProperties {
    std::string name;       ///< empty when the resource has none
    std::string entryName;  ///< empty for the default entry
    unsigned long flags = ZV_PLUGIN_FORMAT;
    long fragmentOffset = 0;
    long fragmentLength = 0;
    long imageModes = 0;  ///< bit n for mode n
    long properties = 0;  ///< ZV_FORMAT_... and bits for applications
    long maxWidth = INT16_MAX;
    long maxHeight = INT16_MAX;
    uint32_t fileType = 0;
    uint32_t fileCreator = 0;
    std::vector<ZVTypePair> readTypes;
    std::vector<uint32_t> readExtensions;
    std::vector<ZVTypePair> filterTypes;
    std::vector<uint32_t> filterExtensions;
};

/// Reads a resource whose numbers are in the machine's order. False for one of another kind of plug-in, one
/// that this host is not for, and one whose lists do not fit; the properties are then in any state.
bool Parse_Property_List(std::span<uint8_t const> bytes, PluginProperties& plugin);
bool Parse_Module_Info(std::span<uint8_t const> bytes, PluginProperties& plugin);
