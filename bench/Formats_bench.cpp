// EIDI packets on memory, and frames of 1920 x 1080 read and written through their modules with a warm page
// cache. The yardstick of a codec is one memcpy of the picture; of a file, the plain read or write of the
// picture's bytes.
#include "BenchSession.h"
#include "BenchTools.h"
#include "formats/EIDIPackets.h"
#include "formats/EIDIRows.h"

#include <ZVLibInternal.h>

#include <cmath>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>
#include <stdexcept>
#include <unistd.h>

namespace {

constexpr long width = 1920, height = 1080;
constexpr long pictureBytes = width * height * 4;
constexpr long framesInFile = 8;

using Bytes = std::vector<uint8_t>;

/// What a renderer delivers: a shaded ball over a dark sky with stars, and a floor of plain and of noisy
/// tiles.
Bytes Rendered_Picture()
{
    Bytes pixels(static_cast<std::size_t>(pictureBytes));
    std::mt19937 random(1);
    for (long y = 0; y < height; ++y) {
        for (long x = 0; x < width; ++x) {
            uint8_t* pixel = &pixels[static_cast<std::size_t>(4 * (y * width + x))];
            auto const set = [pixel](double red, double green, double blue, double alpha) {
                double const channels[] = {red, green, blue, alpha};
                std::copy_n(channels, 4, pixel);
            };
            double const distance = std::hypot(static_cast<double>(x - 960), static_cast<double>(y - 540));
            double const light = 1.0 - distance / 400.0;
            if (light > 0.0) {
                set(200 * light + 30, 120 * light + 20, 60 * light + 10, 255);
            } else if (y <= 700) {
                if (random() % 600 == 0) set(255, 255, 255, 0);
            } else if ((x / 16 + y / 16) % 2) {
                double const grain = static_cast<double>(random() % 12);
                set(90 + grain, 90 + grain, 80 + grain, 255);
            } else {
                set(40, 40, 60, 255);
            }
        }
    }
    return pixels;
}

auto Make_Memcpy()
{
    auto const from = std::make_shared<Bytes>(Rendered_Picture());
    auto const to = std::make_shared<Bytes>(*from);
    return [=] { std::memcpy(to->data(), from->data(), to->size()); };
}

// ---- packets --------------------------------------------------------------------------------------------

/// Rows of a picture to packets.
/// @return  the end of what was written
uint8_t* Encode(Bytes const& pixels, long unitBytes, Bytes& row, Bytes& packed)
{
    uint8_t* out = packed.data();
    for (long y = 0; y < height; ++y) {
        EIDI_Pixels_To_Row(pixels.data() + y * width * 4, unitBytes, row.data(), width);
        out = Pack_EIDI_Row(row.data(), width, unitBytes, out);
    }
    return out;
}

void Decode(uint8_t const* in, uint8_t const* end, long unitBytes, Bytes& row, Bytes& pixels)
{
    EIDIPalette const palette{};
    EIDIUnpacker unpacker{unitBytes};
    for (long y = 0; y < height; ++y) {
        unpacker.Unpack(in, end, row.data(), width);
        EIDI_Row_To_Pixels(row.data(), unitBytes * 8, palette, pixels.data() + y * width * 4, width);
    }
}

struct Codec {
    explicit Codec(long bytes)
        : unitBytes(bytes), row(static_cast<std::size_t>(width * bytes + EIDISlack)),
          packed(static_cast<std::size_t>(height * EIDI_Packed_Bound(width, bytes) + EIDISlack))
    {
        end = Encode(pixels, unitBytes, row, packed);
    }

    long unitBytes;
    Bytes pixels = Rendered_Picture();
    Bytes row, packed;
    uint8_t* end;
};

void Register_Codec(std::string const& bits, long unitBytes, double decodeLimit, double encodeLimit)
{
    Bench::Register("eidi/decode_" + bits, decodeLimit, [=] {
        auto const codec = std::make_shared<Codec>(unitBytes);
        auto const work = [=] {
            Decode(codec->packed.data(), codec->end, unitBytes, codec->row, codec->pixels);
        };
        return std::pair(work, Make_Memcpy());
    });
    Bench::Register("eidi/encode_" + bits, encodeLimit, [=] {
        auto const codec = std::make_shared<Codec>(unitBytes);
        auto const work = [=] { Encode(codec->pixels, unitBytes, codec->row, codec->packed); };
        return std::pair(work, Make_Memcpy());
    });
}

// ---- files ----------------------------------------------------------------------------------------------

/// A clip that is written or read over and over again, in turn of its frames, and the same done plainly.
class FileWork {
public:
    FileWork(std::string const& name, uint8_t alphaType) : name_(name), alphaType_(alphaType)
    {
        bitmap_ = AllocBitmapZV(width, height, ZV_BITMAP_RGBA8, nullptr);
        Bytes const picture = Rendered_Picture();
        std::memcpy(bitmap_->Pixels, picture.data(), picture.size());
        for (long i = 0; i < framesInFile; ++i)
            Write();
        Leave();
        plain_ = open(session_.Path("plain").c_str(), O_RDWR | O_CREAT, 0666);
        for (long i = 0; i < framesInFile; ++i)
            Write_Plain();
    }
    ~FileWork()
    {
        Leave();
        close(plain_);
        FreeBitmapZV(bitmap_);
    }
    FileWork(FileWork const&) = delete;
    FileWork& operator=(FileWork const&) = delete;

    void Write()
    {
        if (frame_++ % framesInFile == 0) {
            Leave();
            Create();
        }
        Check(clip_->Format->AddFrame(clip_, bitmap_, frame_, nullptr));
    }
    void Read()
    {
        if (!clip_) {
            clip_ = OpenClipZV(session_.Spec(name_).c_str(), ZV_OPEN_NO_ALPHA_GUESS, 1, 0);
            Check(clip_ != nullptr);
        }
        ZVRectT<long> rect;
        Check(clip_->Format->GetFrame(clip_, bitmap_, frame_++ % framesInFile, &rect, width, height, 0,
                                      nullptr, 0));
    }
    /// What is in the file that was written.
    Bytes Bytes_Behind(std::size_t offset) const
    {
        std::ifstream file(session_.Path(name_), std::ios::binary);
        file.seekg(static_cast<std::streamoff>(offset));
        return Bytes(std::istreambuf_iterator<char>(file), {});
    }
    void Write_Plain()
    {
        if (plainFrame_++ % framesInFile == 0)
            Check(ftruncate(plain_, 0) == 0 && lseek(plain_, 0, SEEK_SET) == 0);
        Check(write(plain_, bitmap_->Pixels, pictureBytes) == pictureBytes);
    }
    void Read_Plain()
    {
        long const offset = plainFrame_++ % framesInFile * pictureBytes;
        Check(pread(plain_, bitmap_->Pixels, pictureBytes, offset) == pictureBytes);
    }

private:
    static void Check(bool isDone)
    {
        if (!isDone) throw std::runtime_error("a frame could not be read or written");
    }

    void Create()
    {
        clip_ = NewClipZV();
        clip_->FileName = CopyFileSpecZV(session_.Spec(name_).c_str());
        clip_->Width = width;
        clip_->Height = height;
        clip_->Media = ZV_MEDIA_VIDEO;
        clip_->FrameRate = clip_->FileFrameRate = 25.0;
        clip_->AlphaType = alphaType_;
        clip_->AlphaPremultiplied = 0;
        Check(CreateClipZV(clip_, 0));
    }
    void Leave() { FreeClipZV(std::exchange(clip_, nullptr)); }

    Bench::Session session_;
    std::string name_;
    uint8_t alphaType_;
    ZVBitmap* bitmap_;
    ZVClip* clip_ = nullptr;
    long frame_ = 0, plainFrame_ = 0;
    int plain_;
};

/// A picture as PICT data, drawn from memory.
class PictureWork {
public:
    explicit PictureWork(uint8_t alphaType)
    {
        FileWork file("clip.pct", alphaType);
        picture_ = file.Bytes_Behind(512);
        bitmap_ = AllocBitmapZV(width, height, ZV_BITMAP_RGBA8, nullptr);
    }
    ~PictureWork() { FreeBitmapZV(bitmap_); }
    PictureWork(PictureWork const&) = delete;
    PictureWork& operator=(PictureWork const&) = delete;

    void Draw()
    {
        if (!Draw_Picture(picture_.data(), picture_.size(), bitmap_, {0, 0, width, height}))
            throw std::runtime_error("a picture could not be drawn");
    }

private:
    Bytes picture_;
    ZVBitmap* bitmap_;
};

void Register_Picture(std::string const& name, uint8_t alphaType, double limit)
{
    Bench::Register(name, limit, [=] {
        auto const picture = std::make_shared<PictureWork>(alphaType);
        return std::pair([=] { picture->Draw(); }, Make_Memcpy());
    });
}

/// @param fileName  its extension selects the module
void Register_File(std::string const& name, std::string const& fileName, uint8_t alphaType, double readLimit,
                   double writeLimit)
{
    Bench::Register(name + "_read", readLimit, [=] {
        auto const file = std::make_shared<FileWork>(fileName, alphaType);
        return std::pair([=] { file->Read(); }, [=] { file->Read_Plain(); });
    });
    Bench::Register(name + "_write", writeLimit, [=] {
        auto const file = std::make_shared<FileWork>(fileName, alphaType);
        return std::pair([=] { file->Write(); }, [=] { file->Write_Plain(); });
    });
}

[[maybe_unused]] bool const isRegistered = [] {
    Register_Codec("24", 3, 4.0, 6.0);
    Register_Codec("32", 4, 3.0, 5.0);
    Register_File("filmstrip/frame", "clip.flm", ZV_ALPHA_CHANNEL, 1.2, 2.0);
    Register_Picture("pict/decode_24", ZV_ALPHA_NONE, 6.0);
    Register_Picture("pict/decode_32", ZV_ALPHA_CHANNEL, 6.0);
    Register_File("pict/frame_24", "clip.pct", ZV_ALPHA_NONE, 0, 0);
    Register_File("pict/frame_32", "clip.pct", ZV_ALPHA_CHANNEL, 0, 0);
    Register_File("eidi/frame_24", "clip.ei", ZV_ALPHA_NONE, 0, 0);
    Register_File("eidi/frame_32", "clip.ei", ZV_ALPHA_CHANNEL, 0, 0);
    return true;
}();

}  // namespace
