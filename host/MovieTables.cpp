// A look of our own at the tables of a movie file. Before the libraries read them: a count of samples in it
// costs memory for each one, whether they are there or not. And for what they keep to themselves: how much
// later than it is decoded a sample is shown.
#include "MovieLibrary.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <vector>

namespace {

constexpr int Deepest = 8;

/// Samples of sound that one byte may stand for in the oldest way of counting them.
constexpr std::uint64_t SamplesPerByte = 64;

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

/// The boxes of a file, each with a type and maybe others inside.
class BoxWalk {
public:
    explicit BoxWalk(char const* path) : file_(std::fopen(path, "rbe"))
    {
        if (file_ && fseeko(file_.get(), 0, SEEK_END) == 0)
            size_ = static_cast<std::uint64_t>(ftello(file_.get()));
    }

    std::uint64_t Size() const { return size_; }

    static std::uint64_t Big(std::uint8_t const* bytes, int count)
    {
        std::uint64_t value = 0;
        for (int i = 0; i < count; ++i)
            value = value << 8 | bytes[i];
        return value;
    }

    /// Bytes at an offset, zeros behind the end.
    template <std::size_t count> std::array<std::uint8_t, count> At(std::uint64_t offset)
    {
        std::array<std::uint8_t, count> bytes{};
        Read(offset, bytes.data(), count);
        return bytes;
    }
    void Read(std::uint64_t offset, std::uint8_t* bytes, std::size_t count)
    {
        if (count == 0) return;
        std::size_t got = 0;
        if (fseeko(file_.get(), static_cast<off_t>(offset), SEEK_SET) == 0)
            got = std::fread(bytes, 1, count, file_.get());
        std::memset(bytes + got, 0, count - got);
    }

    /// Calls `visit` with the type of each box and where its body begins and ends, in the order of the file.
    /// False once that says so.
    template <typename Visit> bool Walk(Visit&& visit) { return size_ == 0 || Walk(0, size_, 0, visit); }

private:
    static bool Holds_Others(std::string_view type)
    {
        for (std::string_view known : {"moov", "trak", "mdia", "minf", "stbl", "moof", "traf"})
            if (type == known) return true;
        return false;
    }

    template <typename Visit> bool Walk(std::uint64_t at, std::uint64_t end, int depth, Visit& visit)
    {
        while (at + 8 <= end) {
            auto const head = At<16>(at);
            std::string_view const type(reinterpret_cast<char const*>(&head[4]), 4);
            std::uint64_t length = Big(&head[0], 4);
            std::uint64_t const headBytes = length == 1 ? 16 : 8;
            if (length == 1) length = Big(&head[8], 8);
            if (length == 0) length = end - at;
            if (length < headBytes) return true;  // no such file, or one that ends here
            std::uint64_t const last = length > end - at ? end : at + length;
            if (!visit(type, at + headBytes, last)) return false;
            if (Holds_Others(type) && depth < Deepest && !Walk(at + headBytes, last, depth + 1, visit))
                return false;
            at = last;
        }
        return true;
    }

    std::unique_ptr<std::FILE, FileCloser> file_;
    std::uint64_t size_ = 0;
};

/// Turns runs of equal offsets into one for each sample.
bool Take_Offsets(BoxWalk& file, std::uint64_t body, std::uint64_t end, std::vector<std::int32_t>& offsets)
{
    std::uint64_t const runs = BoxWalk::Big(&file.At<8>(body)[4], 4);
    if (runs * 8 > end - body - std::min<std::uint64_t>(8, end - body)) return false;
    std::vector<std::uint8_t> table(static_cast<std::size_t>(runs) * 8);
    file.Read(body + 8, table.data(), table.size());
    std::size_t filled = 0;
    for (std::size_t i = 0; i < table.size() && filled < offsets.size(); i += 8) {
        std::uint64_t const count = BoxWalk::Big(&table[i], 4);
        auto const offset = static_cast<std::int32_t>(BoxWalk::Big(&table[i + 4], 4));
        std::size_t const last = filled + static_cast<std::size_t>(std::min(count, offsets.size() - filled));
        std::fill(offsets.begin() + static_cast<std::ptrdiff_t>(filled),
                  offsets.begin() + static_cast<std::ptrdiff_t>(last), offset);
        filled = last;
    }
    return filled == offsets.size();
}

}  // namespace

bool Movie_Tables_Fit(char const* path)
{
    BoxWalk file(path);
    return file.Walk([&](std::string_view type, std::uint64_t body, std::uint64_t) {
        if (type == "stsz") return BoxWalk::Big(&file.At<12>(body)[8], 4) <= file.Size() * SamplesPerByte;
        if (type == "trun") return BoxWalk::Big(&file.At<8>(body)[4], 4) <= file.Size();
        return true;
    });
}

bool Read_Movie_Offsets(char const* path, int track, std::vector<std::int32_t>& offsets)
{
    BoxWalk file(path);
    std::uint64_t current = 0;
    bool isFound = false, isGood = true;
    std::ranges::fill(offsets, 0);
    file.Walk([&](std::string_view type, std::uint64_t body, std::uint64_t end) {
        if (type == "tkhd") {
            auto const fields = file.At<24>(body);
            current = BoxWalk::Big(&fields[fields[0] == 1 ? 20 : 12], 4);
        }
        if (type == "trak") current = 0;
        if (current != static_cast<std::uint64_t>(track)) return true;
        if (type == "stsz") {
            isFound = true;
            isGood = isGood && BoxWalk::Big(&file.At<12>(body)[8], 4) == offsets.size();
        }
        if (type == "ctts") isGood = isGood && Take_Offsets(file, body, end, offsets);
        return isGood;
    });
    return isFound && isGood;
}
