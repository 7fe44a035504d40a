// Which channels of a file belong together.
#include "PictureLayers.h"

#include <algorithm>
#include <cctype>

namespace {

/// Channels of a part with one prefix, as they stand in the file.
struct Group {
    std::string prefix;
    std::vector<std::string> names;  ///< without the prefix, plain
    std::vector<int> channels;
};

std::vector<Group> Group_Channels(PicturePart const& part)
{
    std::vector<Group> groups;
    for (std::size_t i = 0; i < part.channels.size(); ++i) {
        std::string const& channel = part.channels[i];
        std::size_t const dot = channel.rfind('.');
        std::string const prefix = dot == channel.npos ? "" : channel.substr(0, dot);
        auto group = std::ranges::find(groups, prefix, &Group::prefix);
        if (group == groups.end()) group = groups.insert(group, {prefix, {}, {}});
        group->names.push_back(Plain_Name(dot == channel.npos ? channel : channel.substr(dot + 1)));
        group->channels.push_back(static_cast<int>(i));
    }
    return groups;
}

int Find_Channel(Group const& group, std::initializer_list<char const*> names)
{
    for (char const* name : names)
        if (auto const found = std::ranges::find(group.names, name); found != group.names.end())
            return group.channels[static_cast<std::size_t>(found - group.names.begin())];
    return -1;
}

/// What the group shows: its colours, its luminance, or the first channels that it has.
std::array<int, 4> Shown_Channels(Group const& group, int alphaChannel)
{
    int alpha = Find_Channel(group, {"a", "alpha"});
    if (alpha < 0 && std::ranges::find(group.channels, alphaChannel) != group.channels.end())
        alpha = alphaChannel;
    std::array<int, 4> const colours{Find_Channel(group, {"r", "red"}), Find_Channel(group, {"g", "green"}),
                                     Find_Channel(group, {"b", "blue"}), alpha};
    if (std::ranges::none_of(colours.begin(), colours.begin() + 3, [](int channel) { return channel < 0; }))
        return colours;
    int const grey = Find_Channel(group, {"y", "l", "luminance", "i"});
    std::vector<int> rest = group.channels;
    std::erase(rest, alpha);
    // A vector has a y too, and is shown with its components as colours.
    bool const isVector = Find_Channel(group, {"x"}) >= 0;
    if (grey >= 0 && !isVector) return {grey, grey, grey, alpha};
    if (rest.size() >= 3) return {rest[0], rest[1], rest[2], alpha};
    if (rest.empty()) return {alpha, alpha, alpha, -1};
    return {rest[0], rest[0], rest[0], alpha};
}

bool Has_Picture(Group const& group)
{
    return Find_Channel(group, {"r", "red", "y", "l", "luminance"}) >= 0;
}

std::string Layer_Name(std::string const& part, std::string const& prefix, bool isOnlyPart)
{
    if (prefix.empty() || prefix == part) return part;
    return part.empty() || isOnlyPart ? prefix : part + "." + prefix;
}

}  // namespace

std::string Plain_Name(std::string const& name)
{
    std::string plain;
    for (char c : name)
        if (std::isalnum(static_cast<unsigned char>(c)))
            plain += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return plain;
}

PictureLayers Find_Layers(std::vector<PicturePart> const& parts, bool hasComposite, char const* pageName)
{
    PictureLayers found;
    bool hasFlat = false;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        PicturePart const& part = parts[i];
        std::string partName = part.name;
        if (partName.empty() && parts.size() > 1) partName = pageName + std::to_string(i + 1);
        std::vector<Group> const groups = Group_Channels(part);
        for (Group const& group : groups) {
            PictureLayer const layer{Layer_Name(partName, group.prefix, parts.size() == 1),
                                     static_cast<int>(i), Shown_Channels(group, part.alphaChannel)};
            bool const isPlain = group.prefix.empty() && Has_Picture(group);
            if (i == 0 && (!hasFlat || isPlain)) found.flat = layer;
            hasFlat = true;
            // Loose channels beside the layers of a part, such as Z, are data rather than a picture.
            bool const isLoose = group.prefix.empty() && groups.size() > 1 && !Has_Picture(group);
            if (!layer.name.empty() && !isLoose && !(hasComposite && i == 0)) found.layers.push_back(layer);
        }
    }
    return found;
}
