// Resources of Photoshop format plug-ins: the first byte of the input chooses between property list and old
// resource, the others are the resource. What is registered must not be more than the resource holds.
#include "ClipFuzz.h"

#include <vector>

extern "C" __attribute__((visibility("default"))) int LLVMFuzzerTestOneInput(uint8_t const* data,
                                                                             std::size_t size)
{
    Fuzz_Module(ZV_FourCC("VPB "));
    if (size < 1) return 0;
    // A block of its own, so that a read beyond the end is seen.
    std::vector<uint8_t> bytes(data + 1, data + size);
    char name[] = "old";
    ZVResource resource = {bytes.data(), name, 128, static_cast<long>(bytes.size())};
    ZVPluginScan scan = {"Root:\\plugin.8bi", nullptr, "", 0};
    auto const target = reinterpret_cast<long>(&scan);
    Parse_8BIF(&resource, target);
    long const before = List_Entries(&ZVEnv->formats);
    bool const isTaken = data[0] & 1 ? Parse_PIPL(&resource, target) : Parse_PIMI(&resource, target);
    if (List_Entries(&ZVEnv->formats) != before + isTaken) std::abort();
    for (Node* node = List_First(&ZVEnv->formats); node;) {
        auto* const desc = reinterpret_cast<ZVFormatDesc*>(node);
        node = List_Next(node);
        if (!desc->Plugin) continue;
        long const listed = 8 * (desc->ReadTypeCount + desc->FilterTypeCount) +
                            4 * (desc->ReadExtensionCount + desc->FilterExtensionCount);
        if (listed > resource.Size || !(desc->ImageModes & 0x80F) || std::strlen(desc->Node.name) < 1)
            std::abort();
        desc->CanLoad(desc, "", ZV_BLANK_CODE, 1, 1);
        Remove(&desc->Node);
        Free_Format_Mod(desc);
    }
    return 0;
}
