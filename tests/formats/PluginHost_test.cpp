// Photoshop format plug-ins: how their resources register them, and how pictures go through them in both
// directions.
#include "FormatTest.h"
#include "ZVFormatRecord.h"
#include "files/ResourceFile.h"
#include "pixels/BitmapVisit.h"

#include <map>
#include <sstream>

namespace fs = std::filesystem;

namespace {

constexpr char const* TileOrders[] = {"1000,1000,0,0", "3,2,0,1", "5,1,1,0",
                                      "1,1,2,1",       "4,3,2,0", "1000,1,1,1"};

Bytes Text(std::string_view text)
{
    return {text.begin(), text.end()};
}

/// Properties of a plug-in that reads and writes RGB, under the given ones.
using Properties = std::map<std::string, Bytes>;
Bytes Property_List(Properties properties = {})
{
    properties.merge(Properties{{"kind", Text("8BIF")},
                                {"mode", {0x7C, 0x10}},
                                {"name", Text("\4Test")},
                                {"fmTC", Text("TESTtest")},
                                {"fmtf", {0x30, 0, 0, 0}},
                                {"RdTy", Text("TEST    ")},
                                {"RdEx", Text("TST ")}});
    ByteWriter list;
    list.Put32(0).Put32(static_cast<long>(properties.size()));
    for (auto const& [key, data] : properties)
        list.Put("8BIM")
            .Put(key.c_str())
            .Put32(0)
            .Put32(static_cast<long>(data.size()))
            .Put(data)
            .PutZeros((4 - data.size() % 4) % 4);
    return list.bytes;
}

Bytes Module_Info(long modes, char const* host = "    ", long types = 1)
{
    ByteWriter info;
    info.Put16(1).PutZeros(8).Put16(modes).Put(host).Put16(types).Put16(2).Put16(0x100).Put16(0x100);
    info.PutZeros(8).Put16(4).PutZeros(24).Put16(2000).Put16(1000).Put("TESTtest");
    return info.Put("TEST    ").Put("TST ").Put("T2  ").bytes;
}

/// A file of the test plug-ins.
Bytes Picture_File(short width, short height, short planes, short depth, Bytes const& samples)
{
    short const numbers[] = {width, height, planes, depth};
    Bytes file = Text("TEST");
    auto const* const bytes = reinterpret_cast<uint8_t const*>(numbers);
    file.insert(file.end(), bytes, bytes + sizeof numbers);
    file.insert(file.end(), samples.begin(), samples.end());
    return file;
}

class PluginHost : public FormatTest {
protected:
    PluginHost() : FormatTest(TestEnvironment::Home::Directory) { Forget(); }
    ~PluginHost() override { Forget(); }

    static void Forget()
    {
        for (char const* name : {"ZV_TEST_TILES", "ZV_TEST_FAIL", "ZV_TEST_CALLS"})
            unsetenv(name);
    }

    static void Behave(char const* tiles, char const* fail = "")
    {
        setenv("ZV_TEST_TILES", tiles, 1);
        setenv("ZV_TEST_FAIL", fail, 1);
        unsetenv("ZV_TEST_CALLS");
    }

    static std::string Calls()
    {
        char const* const calls = std::getenv("ZV_TEST_CALLS");
        return calls ? calls : "";
    }

    static std::vector<ZVFormatDesc*> Plugins()
    {
        std::vector<ZVFormatDesc*> plugins;
        for (Node* node = List_First(&ZVEnv->formats); node; node = List_Next(node))
            if (auto* const desc = reinterpret_cast<ZVFormatDesc*>(node); desc->Plugin)
                plugins.push_back(desc);
        return plugins;
    }

    struct Resource {
        uint32_t type;
        char const* name;
        Bytes bytes;
    };

    /// Scans the folder with one plug-in in it, of a mode and with those resources, and gives the last
    /// format.
    ZVFormatDesc* Scan(std::vector<Resource> const& resources, int mode = 3, char const* file = "a.8bi")
    {
        Free_Format_Modules();
        fs::remove(environment.Path(std::string("Plugins/") + file));  // code that is mapped must not change
        fs::create_directories(environment.Path("Plugins"));
        fs::copy_file(ZV_TEST_PLUGIN_DIR "/zv_test_plugin_" + std::to_string(mode) + ".8bi",
                      environment.Path(std::string("Plugins/") + file), fs::copy_options::overwrite_existing);
        auto const companion =
            ZVResourceFile::Create(environment.Spec(std::string("Plugins\\") + file).c_str(),
                                   ResourcePlace::Companion, ZV_FourCC("8BIF"), ZV_FourCC("Qrnd"));
        for (Resource const& resource : resources)
            companion->Add(resource.type, companion->Unique_ID(resource.type), resource.name, resource.bytes);
        companion->Save();
        InitAllFormatModulesZV(nullptr);
        std::vector<ZVFormatDesc*> const plugins = Plugins();
        return plugins.empty() ? nullptr : plugins.back();
    }
    ZVFormatDesc* Scan(Bytes const& list, int mode = 3)
    {
        return Scan({{ZV_FourCC("PiPL"), "", list}}, mode);
    }

    /// All that registration fills in, numbers in hexadecimal; a dot is a zero in a code.
    static std::string Described(ZVFormatDesc const* desc)
    {
        if (!desc) return "none";
        std::ostringstream text;
        auto const codes = [&](auto const* list, long count) {
            auto const* const words = reinterpret_cast<uint32_t const*>(list);
            for (long i = 0; i < count * static_cast<long>(sizeof *list) / 4; ++i)
                for (int shift = 24; shift >= 0; shift -= 8)
                    text << (words[i] >> shift & 0xFF ? static_cast<char>(words[i] >> shift) : '.');
            text << '|';
        };
        ZVPlugin const& plugin = *desc->Plugin;
        auto* const own = const_cast<ZVFormatDesc*>(desc);
        text << std::hex << desc->Node.name << ' ' << plugin.Flags << ' '
             << (plugin.EntryName ? plugin.EntryName : "-");
        for (long value :
             {plugin.FragmentOffset, plugin.FragmentLength, desc->ImageModes, GetImportPropertiesZV(own),
              GetExportPropertiesZV(own), desc->MaxWidth, desc->MaxHeight})
            text << ' ' << value;
        text << ' ';
        codes(&desc->FileType, 2);
        codes(desc->ReadTypes, desc->ReadTypeCount);
        codes(desc->ReadExtensions, desc->ReadExtensionCount);
        codes(desc->FilterTypes, desc->FilterTypeCount);
        codes(desc->FilterExtensions, desc->FilterExtensionCount);
        return text.str();
    }

    /// A channel of a pixel as it is stored, in a word of 32 bits.
    static uint32_t Channel(ZVBitmap& bitmap, long x, long y, int channel)
    {
        uint32_t word = 0;
        Visit_RGBA(bitmap, [&](auto& buffer) {
            auto const value = buffer.GetIterator(x, y)->Get(channel);
            std::memcpy(&word, &value, sizeof value);
        });
        return word;
    }

    static long Read(ZVClip* clip, ZVBitmap* bitmap, ZVRectT<long> rect)
    {
        return clip->Format->GetFrame(clip, bitmap, 0, &rect, rect.width, rect.height, 0, nullptr, 0);
    }
};

// ---- registration -----------------------------------------------------------------------------------------

TEST_F(PluginHost, APropertyListTellsAllOfAPlugIn)
{
    EXPECT_EQ(Described(Scan(Property_List({{"mach", Text("ENTRYPOINT1")},
                                            {"mode", {0x50, 0x10}},
                                            {"fmtf", {0x20, 0, 0, 0x80}},
                                            {"mxsz", {0x12, 0x34, 0x7F, 0xFF}},
                                            {"mxch", {0, 1, 0, 1, 0, 1, 0, 4}},
                                            {"RdTy", Text("TESTabcd    PICT")},
                                            {"RdEx", Text("TST aBcD")},
                                            {"fftT", Text("FILTfilt")},
                                            {"fftE", Text("F   ")},
                                            {"zzzz", Text("???")}}))),
              "PS Test 11 ENTRYPOINT1 0 0 80a 405 10415 1234 7fff "
              "TESTtest|TESTabcd    PICT|tst.abcd|FILTfilt|f...|");
    Bytes const fragment = {0, 0, 1, 0, 0, 0, 2, 0, 'm', 'a', 'i', 'n', 0};
    Scan({{ZV_FourCC("PiPL"), "", Property_List()},
          {ZV_FourCC("PiPL"), "",
           Property_List({{"pwpc", fragment}, {"name", {0}}, {"host", Text("DSLG")}})}});
    ASSERT_EQ(Plugins().size(), 2U);
    EXPECT_EQ(Described(Plugins()[0]),
              "a.8bi 91 main 100 200 83e c 1001c 7fff 7fff TESTtest|TEST    |tst.|||")
        << "those for this host come first";
}

TEST_F(PluginHost, OldResourcesGoInPairs)
{
    for (uint32_t type : {ZV_FourCC("PiMI"), ZV_FourCC("PIMI")}) {
        ZVFormatDesc const* const desc = Scan({{ZV_FourCC("8BIF"), "First", {}},
                                               {ZV_FourCC("8BIF"), "Second", {}},
                                               {type, "", Module_Info(0x10)},
                                               {type, "", Module_Info(0x808, "QVRN")},
                                               {type, "", Module_Info(8, "8BIM")},
                                               {type, "", Module_Info(8, "    ", 2)}});
        EXPECT_EQ(Described(desc),
                  "PS Second 11 - 0 0 808 9000d 9001d 7d0 3e8 TESTtest|TEST    |tst.t2..|||");
        EXPECT_EQ(Plugins().size(), 1U) << "the others were refused";
    }
}

TEST_F(PluginHost, ListsOfOthersAndDamagedOnesAreRefused)
{
    Bytes const whole = Property_List();
    auto const changed = [&](std::size_t at, uint8_t value) {
        Bytes list = whole;
        list[at] = value;
        return list;
    };
    struct {
        char const* why;
        Bytes list;
    } const rows[] = {
        {"another kind", Property_List({{"kind", Text("8BFM")}})},
        {"no mode of ours", Property_List({{"mode", {0x0F, 0xEF}}})},
        {"half a mode", Property_List({{"mode", {0x78}}})},
        {"a later interface", Property_List({{"vers", {0, 0, 0, 2}}})},
        {"another host", Property_List({{"host", Text("abcd")}})},
        {"a name without its length", Property_List({{"name", {}}})},
        {"another version", changed(3, 1)},
        {"more properties than there are", changed(7, 99)},
        {"a property beyond the end", changed(20, 0x7F)},
        {"a negative length", changed(20, 0xFF)},
    };
    for (auto const& row : rows)
        EXPECT_FALSE(Scan({{ZV_FourCC("PiPL"), "", row.list}})) << row.why;
    for (std::size_t length = 0; length < whole.size() - 3; ++length)
        ASSERT_FALSE(Scan({{ZV_FourCC("PiPL"), "", Head(whole, length)}})) << length;
    EXPECT_TRUE(Scan({{ZV_FourCC("PiPL"), "", rows[0].list}, {ZV_FourCC("PiPL"), "", whole}}))
        << "the next one is tried";
}

TEST_F(PluginHost, ClaimsFilesByItsListsOrAfterALookIntoThem)
{
    std::string const mine = Write("mine.flt", Picture_File(1, 1, 1, 8, {7})),
                      other = environment.Write("other.flt", "no such file");
    Properties const filters = {{"fftT", Text("FILTabcd        ")}, {"fftE", Text("OTH FLT ")}};
    ZVFormatDesc* desc = Scan(Property_List(filters));
    ASSERT_TRUE(desc);
    EXPECT_EQ(GetFormatModuleZV(environment.Write("a.tst", "").c_str()), desc);
    EXPECT_EQ(Calls(), "") << "no need to ask";
    EXPECT_EQ(GetFormatModuleZV(mine.c_str()), desc);
    EXPECT_EQ(Calls(), "17 ");
    EXPECT_EQ(GetFormatModuleZV(other.c_str()), nullptr);
    EXPECT_EQ(Calls(), "17 17 17 ") << "also the extension after the type";
    Properties writer = filters;
    writer["fmtf"] = {0x10, 0, 0, 0};
    ASSERT_TRUE(Scan(Property_List(writer)));
    EXPECT_EQ(GetFormatModuleZV(environment.Spec("a.tst").c_str()), nullptr);
    EXPECT_EQ(GetFormatModuleZV(mine.c_str()), nullptr);
}

// ---- reading ----------------------------------------------------------------------------------------------

TEST_F(PluginHost, DeliversEachModeInTilesOfAnyOrder)
{
    struct {
        int mode;
        short planes, depth;
    } const rows[] = {{0, 1, 1},   {1, 1, 8},   {2, 1, 8},   {3, 3, 8},   {3, 4, 8},  {3, 5, 8},
                      {11, 3, 16}, {11, 4, 16}, {11, 4, 10}, {11, 3, 12}, {11, 4, 32}};
    constexpr short width = 11, height = 5;
    for (auto const& row : rows) {
        std::size_t const size = row.depth <= 8 ? 1 : row.depth <= 16 ? 2 : 4;
        Bytes samples = Random_Bytes(static_cast<unsigned>(row.mode),
                                     size * width * height * static_cast<std::size_t>(row.planes));
        if (row.depth == 1)
            for (uint8_t& sample : samples)
                sample &= 1;
        ZVFormatDesc* const desc = Scan(Property_List(), row.mode);
        ASSERT_TRUE(desc);
        ClipPtr const clip =
            Open(Write("a.tst", Picture_File(width, height, row.planes, row.depth, samples)));
        ASSERT_TRUE(clip) << row.mode;
        EXPECT_EQ(clip->AlphaType, row.planes == 4 ? ZV_ALPHA_CHANNEL : ZV_ALPHA_NONE);
        BitmapPtr const bitmap = Make_Bitmap(width, height, {}, GetBitmapTypeZV(clip.get()));
        uint32_t const mask = row.depth == 10 ? 1023 : row.depth == 12 ? 4095 : 0xFFFFFFFF;
        uint32_t const full = row.depth == 32 ? 0x3F800000 : (1U << std::max<short>(row.depth, 8)) - 1;
        auto const expected = [&](long x, long y, int channel) -> uint32_t {
            uint32_t sample = 0;
            long const plane = row.planes == 1 ? 0 : channel;
            if (channel == 3 && row.planes < 4) return full;
            std::memcpy(&sample,
                        &samples[static_cast<std::size_t>((y * width + x) * row.planes + plane) * size],
                        size);
            if (row.mode == 0) return sample * 255;
            if (row.mode != 2) return sample & mask;
            return channel == 0 ? 255 - sample : channel == 1 ? sample / 2 : sample ^ 0x55;
        };
        for (char const* tiles : TileOrders) {
            Behave(tiles);
            std::memset(bitmap->Pixels, 0xEE, static_cast<std::size_t>(bitmap->Size));
            ASSERT_EQ(Read(clip.get(), bitmap.get(), {0, 0, width, height}), 1);
            long wrong = 0;
            for (long y = 0; y < height; ++y)
                for (long x = 0; x < width; ++x)
                    for (int channel = 0; channel < 4; ++channel)
                        wrong += Channel(*bitmap, x, y, channel) != expected(x, y, channel);
            EXPECT_EQ(wrong, 0) << "mode " << row.mode << ", depth " << row.depth << ", planes " << row.planes
                                << ", tiles " << tiles;
        }
    }
}

TEST_F(PluginHost, ScalesByNearestSamples)
{
    constexpr long width = 8, height = 6;
    Bytes const samples = Random_Bytes(1, width * height);
    ASSERT_TRUE(Scan(Property_List(), 1));
    ClipPtr const clip = Open(Write("a.tst", Picture_File(width, height, 1, 8, samples)));
    ASSERT_TRUE(clip);
    ZVRectT<long> const places[] = {{0, 0, 4, 3},
                                    {0, 0, 16, 6},
                                    {2, 1, 11, 5},
                                    {-2, -1, 3, 9},
                                    {4, 0, 4, 3},
                                    {-6, 0, 4, 3},
                                    {0, 0, INT32_MAX, INT32_MAX},
                                    {-1, -1, 8, 6},
                                    {1, 1, 8, 6}};
    for (ZVRectT<long> const& rect : places)
        for (char const* tiles : TileOrders) {
            Behave(tiles);
            BitmapPtr const bitmap = Make_Bitmap(6, 5);
            ASSERT_EQ(Read(clip.get(), bitmap.get(), rect), 1);
            for (long y = 0; y < 5; ++y)
                for (long x = 0; x < 6; ++x) {
                    long const across = x + rect.x, down = y + rect.y;
                    bool const isInside =
                        across >= 0 && across < rect.width && down >= 0 && down < rect.height;
                    long const column = across * (width * 65536 / rect.width) >> 16,
                               row = down * (height * 65536 / rect.height) >> 16;
                    long const expected =
                        isInside ? samples[static_cast<std::size_t>(row * width + column)] : 0xEE;
                    ASSERT_EQ(bitmap->Pixels[4 * (6 * y + x)], expected)
                        << rect.x << " " << rect.width << " at " << x << "," << y;
                }
        }
    EXPECT_EQ(Read(clip.get(), Make_Bitmap(2, 2).get(), {0, 0, 0, 3}), 0);
}

TEST_F(PluginHost, PassesOverWhatHasNoPlaceInThePicture)
{
    struct {
        char const* why;
        int mode;
        char const* tiles;
        long answer;
    } const rows[] = {{"CMYK", 4, "2,1,0,0", 1},
                      {"tiles outside", 3, "2,1,4,0", 1},
                      {"a mode of 8 bits", 1, "2,2,0,0", 1},
                      {"tiles without end", 3, "2,2,3,0", 0}};
    for (auto const& row : rows) {
        ASSERT_TRUE(Scan(Property_List(), row.mode));
        ClipPtr const clip = Open(Write("a.tst", Picture_File(2, 2, 4, 8, Bytes(16, 1))));
        ASSERT_TRUE(clip);
        Behave(row.tiles);
        BitmapPtr const bitmap = Make_Bitmap(2, 2, {}, row.mode == 1 ? ZV_BITMAP_RGBA16 : ZV_BITMAP_RGBA8);
        EXPECT_EQ(Read(clip.get(), bitmap.get(), {0, 0, 2, 2}), row.answer) << row.why;
        if (!row.answer) continue;
        EXPECT_EQ(Pixels_Of(*bitmap), Bytes(static_cast<std::size_t>(bitmap->Size), 0xEE)) << row.why;
        EXPECT_EQ(Calls().substr(0, 6), "1 2 3 ") << row.why;
    }
}

TEST_F(PluginHost, ReadsASequenceFileByFile)
{
    ASSERT_TRUE(Scan(Property_List(), 1));
    for (uint8_t i = 0; i < 3; ++i)
        Write("shot" + std::to_string(i) + ".tst", Picture_File(1, 1, 1, 8, {i}));
    ClipPtr const clip = Open(environment.Spec("shot0.tst"));
    ASSERT_TRUE(clip);
    ASSERT_EQ(clip->Frames, 3);
    for (long i : {2, 0, 1})
        EXPECT_EQ(Clip_Frame(clip.get(), i)[0], i);
    CloseClipZV(clip.get());
    fs::remove(environment.Path("shot0.tst"));
    EXPECT_EQ(OpenClipZV(clip.get(), nullptr), 0) << "looked at anew";
}

// ---- writing ----------------------------------------------------------------------------------------------

TEST_F(PluginHost, GetsEachTypeOfBitmapInTilesOfAnyOrder)
{
    constexpr short width = 7, height = 4;
    struct {
        long depth;
        uint8_t alphaType;
        short planes;
        long modes;
    } const rows[] = {
        {8, ZV_ALPHA_CHANNEL, 4, 0x50},   {8, ZV_ALPHA_NONE, 3, 0x50},      {10, ZV_ALPHA_CHANNEL, 4, 0x50},
        {12, ZV_ALPHA_NONE, 3, 0x50},     {16, ZV_ALPHA_CHANNEL, 4, 0x50},  {32, ZV_ALPHA_NONE, 3, 0x50},
        {8, ZV_ALPHA_LUMINANCE, 1, 0x50}, {8, ZV_ALPHA_LUMINANCE, 1, 0x20}, {8, ZV_ALPHA_LUMINANCE, 3, 0x10}};
    for (auto const& row : rows) {
        ZVFormatDesc* const desc = Scan(Property_List({{"mode", {static_cast<uint8_t>(row.modes), 0}}}));
        ASSERT_TRUE(desc);
        ClipPtr const clip = Create(desc, "out.tst", width, height, 25, row.alphaType);
        ASSERT_TRUE(clip);
        clip->BitDepth = row.depth;
        BitmapPtr const bitmap = Make_Bitmap(width, height, {}, GetBitmapTypeZV(clip.get()));
        Bytes const noise =
            Random_Bytes(static_cast<unsigned>(row.depth), static_cast<std::size_t>(bitmap->Size));
        std::copy(noise.begin(), noise.end(), bitmap->Pixels);
        if (row.depth == 32) FillBitmapZV(bitmap.get(), 0x80406020);  // no NaN
        BitmapPtr const stored = Make_Bitmap(width, height, {}, bitmap->Type);
        InterpretAlphaZV(clip.get(), bitmap.get(), stored.get(), nullptr);
        std::size_t const size = row.depth == 8 ? 1 : row.depth == 32 ? 4 : 2;
        Bytes samples;
        for (long y = 0; y < height; ++y)
            for (long x = 0; x < width; ++x)
                for (int plane = 0; plane < row.planes; ++plane) {
                    uint32_t const word = Channel(*stored, x, y, plane);
                    auto const* const bytes = reinterpret_cast<uint8_t const*>(&word);
                    samples.insert(samples.end(), bytes, bytes + size);
                }
        for (char const* tiles : TileOrders) {
            Behave(tiles);
            ASSERT_EQ(Add_Frame_At(clip.get(), 0, bitmap.get()), 1) << row.depth;
            EXPECT_EQ(FormatTest::Read("out.tst"),
                      Picture_File(width, height, row.planes, static_cast<short>(row.depth), samples))
                << row.depth << ", tiles " << tiles;
            EXPECT_EQ(Type_Of("out.tst"), ZV_FourCC("TEST"));
            EXPECT_FALSE(fs::exists(environment.Path("._out.tst"))) << "no resources";
        }
        EXPECT_EQ(clip->RawFrames, std::ssize(TileOrders));
    }
    ClipPtr const clip = Create(Module(ZV_FourCC("TEST")), "out.tst", width, height, 25);
    Behave("2,2,3,0");
    EXPECT_EQ(Add_Frame_At(clip.get(), 0, Make_Bitmap(width, height).get()), 0) << "tiles without end";
    Behave("7,4,5,0");
    EXPECT_EQ(Add_Frame_At(clip.get(), 0, Make_Bitmap(width, height).get()), 1);
    auto const resources = ZVResourceFile::Open(environment.Spec("out.tst").c_str(), ZVFilePermRead);
    EXPECT_TRUE(resources && resources->Find_ID(ZV_FourCC("TEST"), 128));
}

// ---- failures ---------------------------------------------------------------------------------------------

TEST_F(PluginHost, FinishFollowsAFailureAndTheFirstOneCounts)
{
    ZVFormatDesc* const desc = Scan(Property_List());
    ASSERT_TRUE(desc);
    Write("a.tst", Picture_File(1, 1, 3, 8, {1, 2, 3}));
    struct {
        char what;
        char const* fail;
        char const* calls;
        bool isShown;
    } const rows[] = {
        {'o', "1,-36", "1 ", false},
        {'o', "2,-1", "1 2 ", false},
        {'o', "4,-1", "1 2 4 ", false},
        {'r', "1,-36", "1 ", true},
        {'r', "2,-30501", "1 2 4 ", true},
        {'r', "3,-39", "1 2 3 4 ", true},
        {'r', "4,-128", "1 2 3 4 ", false},
        {'w', "9,-108", "9 12 ", true},
        {'w', "10,-34", "9 10 12 ", true},
        {'w', "11,-20", "9 10 11 12 ", true},
        {'w', "12,-1", "9 10 11 12 ", false},
        {'w', "13,-45", "9 10 11 12 13 16 ", true},
        {'w', "14,-46", "9 10 11 12 13 14 16 ", true},
        {'w', "15,-23", "9 10 11 12 13 14 15 16 ", true},
        {'w', "16,-30900", "9 10 11 12 13 14 15 16 ", true},
    };
    BitmapPtr const bitmap = Make_Bitmap(1, 1);
    for (auto const& row : rows) {
        Behave("1,1,0,0", row.fail);
        fs::remove(environment.Path("out.tst"));
        ClipPtr const clip = New_Output(desc, row.what == 'w' ? "out.tst" : "a.tst", 1, 1, 25);
        testing::internal::CaptureStderr();
        EXPECT_EQ(row.what == 'o'   ? desc->Open(clip.get(), nullptr)
                  : row.what == 'r' ? Read(clip.get(), bitmap.get(), {0, 0, 1, 1})
                                    : desc->AddFrame(clip.get(), bitmap.get(), 0, nullptr),
                  0);
        EXPECT_EQ(testing::internal::GetCapturedStderr() != "", row.isShown) << row.fail;
        EXPECT_EQ(Calls(), row.calls);
        EXPECT_EQ(GetErrorZV(), row.what == 'o' ? ZV_ERR_CLIP_EXCEPTION : ZV_ERR_CLIP);
        EXPECT_FALSE(clip->ModuleData || clip->RawFrames);
        EXPECT_EQ(fs::exists(environment.Path("out.tst")), row.what == 'w' && std::atoi(row.fail) >= 13)
            << row.fail;
    }
}

TEST_F(PluginHost, WithoutFileOrCodeNothingIsDone)
{
    BitmapPtr const bitmap = Make_Bitmap(1, 1);
    ClipPtr const clip = New_Output(Scan(Property_List()), "missing.tst", 1, 1, 25);
    EXPECT_EQ(Read(clip.get(), bitmap.get(), {0, 0, 1, 1}), 0);
    EXPECT_EQ(Calls(), "");
    ZVFormatDesc* const desc = clip->Format =
        Scan(Property_List({{"mach", Text("nowhere")}, {"fftE", Text("FLT ")}}));
    std::string const spec = Write("missing.tst", {});
    SetErrorModeZV(ZV_ERRORMODE_NO);
    EXPECT_EQ(desc->Create(clip.get(), 0) + desc->AddFrame(clip.get(), bitmap.get(), 0, nullptr) +
                  desc->Open(clip.get(), nullptr) +
                  desc->CanLoad(desc, spec.c_str(), 1, 1, ZV_FourCC("flt\0")),
              0);
    EXPECT_EQ(GetErrorZV(), ZV_ERR_CLIP);
    desc->About(desc);
    SetErrorModeZV(0);
}

// ---- options and suites -----------------------------------------------------------------------------------

TEST_F(PluginHost, OptionsStayWithTheClip)
{
    ZVFormatDesc* const desc = Scan(Property_List());
    ASSERT_TRUE(desc);
    ClipPtr const clip = New_Output(desc, "out.tst", 1, 1, 25);
    desc->Options(clip.get(), true);
    EXPECT_EQ(Calls(), "5 ");
    EXPECT_FALSE(clip->VideoParams);
    EXPECT_EQ(desc->Create(clip.get(), 0), 1);
    EXPECT_EQ(Calls(), "5 5 6 8 ") << "asked before the first frame";
    ASSERT_TRUE(clip->VideoParams);
    EXPECT_EQ(std::string(static_cast<char*>(clip->VideoParams->Data), 4), "opts");
    EXPECT_EQ(desc->Create(clip.get(), 0), 1);
    ClipOptionsZV(clip.get());
    EXPECT_EQ(desc->DefaultVideoParams->Size, 4);
    desc->About(desc);
    EXPECT_EQ(Calls(), "5 5 6 8 5 6 8 0 ");
    EXPECT_EQ(desc->CachedProperties, 8) << "the plug-in's own word counts its calls";
}

TEST_F(PluginHost, HandlesOfTheSuiteForOthersCanGrow)
{
    HandleProcs* const procs = AllocHandleProcs();
    PIHandle const handle = procs->newProc(2);
    std::memcpy(procs->lockProc(handle, 0), "ab", 2);
    EXPECT_EQ(procs->setSizeProc(handle, 1000), 0);
    EXPECT_EQ(procs->setSizeProc(handle, -1), memFullErr);
    EXPECT_EQ(procs->getSizeProc(handle), 1000);
    EXPECT_EQ(std::memcmp(procs->lockProc(handle, 0), "ab", 3), 0);
    procs->disposeProc(handle);
    FreeHandleProcs(procs);
}

}  // namespace
