// DPX files whose header is silent about the ends of their rows.
#include "DPXPadding.h"

#include <array>
#include <cstring>

namespace {

constexpr int64_t PaddingField = 812;  // of the first element
constexpr uint32_t Undefined = 0xFFFFFFFF;

using Proxy = OIIO::Filesystem::IOFile;

/// Numbers of a header, in the byte order that its first four bytes show.
class HeadReader {
public:
    explicit HeadReader(std::span<uint8_t const> head)
        : head_(head), isBig_(std::memcmp(head.data(), "SDPX", 4) == 0)
    {
    }

    uint32_t Number(std::size_t offset, int bytes) const
    {
        uint32_t value = 0;
        for (int i = 0; i < bytes; ++i)
            value = value << 8 | head_[offset + static_cast<std::size_t>(isBig_ ? i : bytes - 1 - i)];
        return value;
    }

private:
    std::span<uint8_t const> head_;
    bool isBig_;
};

/// Values of a pixel by the number of its descriptor; 0 for the ones that are subsampled or private.
uint32_t Components(uint32_t descriptor)
{
    switch (descriptor) {
    case 1:
    case 2:
    case 3:
    case 4:
    case 6:
    case 8: return 1;
    case 50:
    case 102: return 3;
    case 51:
    case 52:
    case 103: return 4;
    default: return 0;
    }
}

/// The file itself, but for the bytes of one field.
class PatchedFile : public Proxy {
public:
    PatchedFile(std::string const& path, uint32_t padding, bool isBig) : Proxy(path, Read)
    {
        for (std::size_t i = 0; i < field_.size(); ++i)
            field_[i] = static_cast<uint8_t>(padding >> 8 * (isBig ? field_.size() - 1 - i : i));
    }

    std::size_t read(void* buffer, std::size_t size) override
    {
        int64_t const offset = tell();
        std::size_t const count = Proxy::read(buffer, size);
        Patch(static_cast<uint8_t*>(buffer), count, offset);
        return count;
    }

    std::size_t pread(void* buffer, std::size_t size, int64_t offset) override
    {
        std::size_t const count = Proxy::pread(buffer, size, offset);
        Patch(static_cast<uint8_t*>(buffer), count, offset);
        return count;
    }

private:
    void Patch(uint8_t* bytes, std::size_t count, int64_t offset) const
    {
        for (std::size_t i = 0; i < field_.size(); ++i) {
            int64_t const at = PaddingField + static_cast<int64_t>(i) - offset;
            if (at >= 0 && at < static_cast<int64_t>(count)) bytes[at] = field_[i];
        }
    }

    std::array<uint8_t, 4> field_{};
};

}  // namespace

uint32_t DPX_Row_Padding(std::span<uint8_t const> head, int64_t fileBytes)
{
    if (head.size() < DPXHeadSize ||
        (std::memcmp(head.data(), "SDPX", 4) != 0 && std::memcmp(head.data(), "XPDS", 4) != 0))
        return 0;
    HeadReader const reader(head);
    uint32_t const padding = reader.Number(PaddingField, 4);
    uint32_t const bits = reader.Number(803, 1), packing = reader.Number(804, 2);
    bool const isFilled = bits == 12 && (packing == 1 || packing == 2);
    bool const isWhole = bits == 8 || bits == 16 || isFilled;
    bool const isEncoded = reader.Number(806, 2) == 1;
    if ((padding != 0 && padding != Undefined) || !isWhole || isEncoded) return 0;
    int64_t const rowBytes =
        int64_t{reader.Number(772, 4)} * Components(reader.Number(800, 1)) * (bits > 8 ? 2 : 1);
    int64_t const missing = (4 - rowBytes % 4) % 4;
    // Some writers pack the rows all the same, which shows in the length of the file.
    int64_t const padded = reader.Number(808, 4) + (rowBytes + missing) * int64_t{reader.Number(776, 4)};
    return fileBytes >= padded ? static_cast<uint32_t>(missing) : 0;
}

std::unique_ptr<OIIO::Filesystem::IOProxy> Mend_DPX_Padding(std::string const& path)
{
    Proxy file(path, Proxy::Read);
    std::array<uint8_t, DPXHeadSize> head;
    if (!file.opened() || file.read(head.data(), head.size()) != head.size()) return nullptr;
    uint32_t const padding = DPX_Row_Padding(head, static_cast<int64_t>(file.size()));
    if (padding == 0) return nullptr;
    return std::make_unique<PatchedFile>(path, padding, head[0] == 'S');
}
