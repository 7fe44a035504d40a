// File specs: the input is a file of stored specs, and a name for every call that works on texts alone.
#include <ZVLibInternal.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

namespace {

constexpr std::size_t SpecSize = ZV_SPEC_SIZE;

/// A block of its own of just the size that a call may fill, so that a write beyond it is seen.
using Buffer = std::unique_ptr<char[]>;

Buffer New_Buffer(std::size_t size = SpecSize)
{
    return Buffer(new char[size]());
}

Buffer Copy_Of(char const* text, std::size_t room = 0)
{
    Buffer copy = New_Buffer(std::strlen(text) + 1 + room);
    std::strcpy(copy.get(), text);
    return copy;
}

void Check(bool holds)
{
    if (!holds) std::abort();
}

void Read_Records(std::vector<uint8_t> bytes, unsigned long tag)
{
    auto const size = static_cast<long>(bytes.size());
    ZVFileInfo* file = OpenFileinMemoryZV(bytes.data(), bytes.size(), ZVFilePermRead);
    if (!file) return;
    long isSequence = 0, dataValid = 0;
    Buffer const stored = New_Buffer(512);
    for (int i = 0; i < 50; ++i) {
        long const start = SeekFileZV(file, 0, 1);
        FreeFileSpecZV(ReadFileSpecZV(file, tag, 1, ZVFSV_IsSequence, &isSequence, ZVFSV_DataValid,
                                      &dataValid, ZVFSV_StoredPath, stored.get()));
        long const end = SeekFileZV(file, 0, 1);
        Check(end <= size && (start + 4 > size ? end == start : end >= start + 4));
        Check(std::strlen(stored.get()) <= 509);
    }
    SeekFileZV(file, 0, 0);
    Buffer const line = New_Buffer(40);
    while (FGetStringZV(file, line.get(), 40))
        Check(line[0] != 0);
    CloseFileZV(file);
}

void Count_On(char const* text, ZVIncFileSpec direction)
{
    Buffer const number = New_Buffer(), prefix = New_Buffer(), suffix = New_Buffer();
    char* const parts = GetFileSpecNextNumber(text, '.', direction, number.get(), prefix.get(), suffix.get());
    char* const next = ManageIncrementFileSpecZV(text, '.', direction, nullptr);
    // A number that narrows on its way down is the one case in which the two differ.
    if (parts && next) Check(std::strstr(next, prefix.get()) != nullptr);
    FreeFileSpecZV(next);
}

void Convert_Encodings(char const* text)
{
    std::size_t const length = std::strlen(text);
    for (std::size_t size : {std::size_t{0}, length / 2, length, length + 1}) {
        Buffer const copy = New_Buffer(size);
        unsigned long count = 0, units = 0;
        long const result = UTF8ToSystemEncoding(text, copy.get(), size, &count);
        Check(count <= size && std::memcmp(copy.get(), text, count) == 0);
        std::vector<uint16_t> wide(size);
        long const wideResult = SystemEncodingToUnicode(text, wide.data(), 2 * size, &units);
        Check(units <= size && (result == -108) == (wideResult == -108));
    }
}

void Take_Apart(char* text)
{
    Buffer const name = New_Buffer(), path = New_Buffer(), other = New_Buffer();
    bool const isWhole = GetPathZV(text, path.get()) && GetFileNameZV(text, name.get());
    // A text without separators is its own path and its own name.
    if (isWhole && !isPondgateZV(text) && std::strpbrk(text, ":\\"))
        Check(std::string(path.get()) + name.get() == text);
    GetExtensionZV(text, other.get());
    FileSpecToDosZV(other.get(), text);
    GetPondGatePath(text, other.get());
    Check(FileSpecCompareZV(text, text) == 1);

    Buffer const truncated = Copy_Of(text);
    TruncateExtensionZV(truncated.get());
    FreeFileSpecZV(MakeNewFileSpecZV(text, "ext"));
    ZVExtension const wanted{"", "ext"};
    FreeFileSpecZV(MakeValidExtensionZV(text, 0, &wanted, nullptr, 0));
}

void Convert_Paths(char const* text)
{
    char* const spec = MakeFileSpecZV(text);
    char* const again = MakeFileSpecZV(spec);
    // Colons in a row make a text that begins with a spec's mark only after the first conversion.
    Check(std::strstr(spec, ":\\") == nullptr || std::strcmp(spec, again) == 0);
    FreeFileSpecZV(spec);
    FreeFileSpecZV(again);
    Buffer const inPlace = Copy_Of(text, 1);
    ConvertPathtoDOSZV(inPlace.get());
    if (std::strlen(text) >= SpecSize) return;
    for (bool native : {false, true}) {
        Buffer const buffer = New_Buffer();
        std::strcpy(buffer.get(), text);
        ConvertDOStoPathZV(buffer.get(), native);
    }
}

}  // namespace

extern "C" __attribute__((visibility("default"))) int LLVMFuzzerTestOneInput(uint8_t const* data,
                                                                             std::size_t size)
{
    std::vector<uint8_t> const bytes(data, data + size);
    Read_Records(bytes, ZV_TAG_IGNORE);
    Read_Records(bytes, ZVFSV_NoCheck);

    std::string const input(bytes.begin(), bytes.end());
    Buffer const text = Copy_Of(input.c_str());
    Take_Apart(text.get());
    Convert_Paths(text.get());
    Convert_Encodings(text.get());
    Count_On(text.get(), ZVIncFileSpecUp);
    Count_On(text.get(), ZVIncFileSpecDown);
    return 0;
}
