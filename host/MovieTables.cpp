// A look at the tables of a movie file before the libraries read them: a count of samples in it costs memory
// for each one, whether they are there or not.
#include "MovieLibrary.h"

#include <array>
#include <cstdio>
#include <cstring>
#include <string_view>

namespace {

constexpr int Deepest = 8;

/// Samples of sound that one byte may stand for in the oldest way of counting them.
constexpr std::uint64_t SamplesPerByte = 64;

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

class TableCheck {
public:
    explicit TableCheck(char const* path) : file_(std::fopen(path, "rbe"))
    {
        if (file_ && fseeko(file_.get(), 0, SEEK_END) == 0)
            size_ = static_cast<std::uint64_t>(ftello(file_.get()));
    }

    bool Passes() { return size_ == 0 || Walk(0, size_, 0); }

private:
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
        if (fseeko(file_.get(), static_cast<off_t>(offset), SEEK_SET) == 0) {
            std::size_t const got = std::fread(bytes.data(), 1, count, file_.get());
            std::memset(bytes.data() + got, 0, count - got);
        }
        return bytes;
    }

    static bool Holds_Others(std::string_view type)
    {
        for (std::string_view known : {"moov", "trak", "mdia", "minf", "stbl", "moof", "traf"})
            if (type == known) return true;
        return false;
    }

    /// Whether a table's count can be meant.
    bool Is_Count_Plausible(std::string_view type, std::uint64_t body)
    {
        if (type == "stsz") {
            auto const fields = At<12>(body);
            return Big(&fields[4], 4) == 0 || Big(&fields[8], 4) <= size_ * SamplesPerByte;
        }
        if (type == "trun") {
            auto const fields = At<8>(body);
            return Big(&fields[4], 4) <= size_;
        }
        return true;
    }

    bool Walk(std::uint64_t at, std::uint64_t end, int depth)
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
            if (!Is_Count_Plausible(type, at + headBytes)) return false;
            if (Holds_Others(type) && depth < Deepest && !Walk(at + headBytes, last, depth + 1)) return false;
            at = last;
        }
        return true;
    }

    std::unique_ptr<std::FILE, FileCloser> file_;
    std::uint64_t size_ = 0;
};

}  // namespace

bool Movie_Tables_Fit(char const* path)
{
    return TableCheck(path).Passes();
}
