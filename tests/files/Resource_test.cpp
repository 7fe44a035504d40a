// Resource files: the classic map, in a file and in its companion, read and changed.
#include "FileSizeLimit.h"
#include "FileTestTools.h"
#include "TestEnvironment.h"
#include "files/ResourceFile.h"

namespace {

using Resources = std::unique_ptr<ZVResourceFile>;

constexpr uint32_t Text = ZV_FourCC("TEXT"), Pict = ZV_FourCC("PICT");

/// Big-endian numbers and texts in a row.
class Image {
public:
    Image& Put(uint32_t value, int size)
    {
        for (int i = size - 1; i >= 0; --i)
            bytes.push_back(static_cast<uint8_t>(value >> (8 * i)));
        return *this;
    }
    Image& Put(std::string_view text)
    {
        bytes.insert(bytes.end(), text.begin(), text.end());
        return *this;
    }
    Bytes bytes;
};

constexpr std::size_t MapAt = 20 + 4 + 5 + 4 + 0 + 4 + 3;  ///< behind the data below

/// A fork written out by hand: TEXT 128 "hello" with the name "first", TEXT -7 empty, PICT 5 "abc". The data
/// begin at 20, an uncommon place, and the map holds PICT first.
Bytes Fork()
{
    Image image;
    std::size_t const mapSize = 28 + 2 + 16 + 36 + 6;
    image.Put(20, 4).Put(MapAt, 4).Put(MapAt - 20, 4).Put(mapSize, 4).Put(0, 4);
    image.Put(5, 4).Put("hello").Put(0, 4).Put(3, 4).Put("abc");
    image.Put(0, 4).Put(0, 4).Put(0, 4).Put(0, 4).Put(0, 4).Put(0, 4);
    image.Put(28, 2).Put(28 + 2 + 16 + 36, 2).Put(1, 2);
    image.Put("PICT").Put(0, 2).Put(18, 2).Put("TEXT").Put(1, 2).Put(30, 2);
    image.Put(5, 2).Put(0xFFFF, 2).Put(0, 1).Put(13, 3).Put(0, 4);
    image.Put(128, 2).Put(0, 2).Put(0x20, 1).Put(0, 3).Put(0, 4);
    image.Put(0xFFF9, 2).Put(0xFFFF, 2).Put(0, 1).Put(9, 3).Put(0, 4);
    return image.Put(5, 1).Put("first").bytes;
}

/// A companion with Finder information, and the fork behind four idle bytes.
Bytes Companion()
{
    Bytes const fork = Fork();
    Image image;
    image.Put(0x00051607, 4).Put(0x00020000, 4).Put(0, 4).Put(0, 4).Put(0, 4).Put(0, 4).Put(2, 2);
    image.Put(9, 4).Put(50, 4).Put(32, 4);
    image.Put(2, 4).Put(86, 4).Put(static_cast<uint32_t>(fork.size()), 4);
    image.Put("TYPEcrea").Put(std::string(28, 'f'));
    image.bytes.insert(image.bytes.end(), fork.begin(), fork.end());
    return image.bytes;
}

long Note(ZVResource* resource, long data)
{
    auto& noted = *reinterpret_cast<std::string*>(data);
    noted += std::to_string(resource->ID) + resource->Name + "=" +
             std::string(static_cast<char const*>(resource->Data), static_cast<std::size_t>(resource->Size)) +
             ";";
    return 0;
}

class ResourceFiles : public EnvironmentTest {
protected:
    std::string Write(std::string const& name, Bytes const& bytes) const
    {
        return environment.Write(name, As_Text(bytes));
    }

    /// All resources of the two types as the callback sees them, or "none" when the file cannot be opened.
    static std::string All(std::string const& spec)
    {
        ZVResourceFile* const file = BeginResourceAccessZV(spec.c_str());
        if (!file) return "none";
        std::string noted;
        for (char const* type : {"TEXT", "PICT"})
            EXPECT_EQ(EnumResourceIDZV(file, type, Note, reinterpret_cast<long>(&noted), nullptr), 1);
        EndResourceAccessZV(file);
        return noted;
    }

    static bool Add(Resources const& file, uint32_t type, int16_t id, std::string_view name,
                    std::string_view text)
    {
        return file->Add(type, id, name, {reinterpret_cast<uint8_t const*>(text.data()), text.size()});
    }
};

constexpr char Everything[] = "128first=hello;-7=;5=abc;";

TEST_F(ResourceFiles, AreReadFromTheFileOrItsCompanion)
{
    std::string const plain = Write("plain.rsrc", Fork());
    EXPECT_EQ(All(plain), Everything);
    std::string const beside = environment.Write("beside", "the data");
    Write("._beside", Companion());
    EXPECT_EQ(All(beside), Everything);

    Bytes bare = Companion();
    bare.resize(86);
    bare[25] = 1;
    Write("._plain.rsrc", bare);
    EXPECT_EQ(All(plain), Everything) << "a companion without resources does not count";

    ZVResourceFile* const outer = BeginResourceAccessZV(plain.c_str());
    ZVResourceFile* const inner = BeginResourceAccessZV(beside.c_str());
    EndResourceAccessZV(inner);
    EXPECT_EQ(NumResourceIDZV(outer, "TEXT"), 2);
    EXPECT_EQ(NumResourceIDZV(outer, "none"), 0);
    EXPECT_EQ(NumResourceIDZV(nullptr, "TEXT"), 0);
    EndResourceAccessZV(outer);
    EndResourceAccessZV(nullptr);
}

TEST_F(ResourceFiles, AreShownByTheirIndices)
{
    ZVResourceFile* const file = BeginResourceAccessZV(Write("a", Fork()).c_str());
    struct {
        long first, last;
        char const* shown;
    } const rows[] = {
        {1, 2, "128first=hello;-7=;"}, {2, 2, "-7=;"}, {2, 1, ""}, {0, 9, "128first=hello;-7=;"}, {3, 3, ""}};
    for (auto const& row : rows) {
        std::string noted;
        EXPECT_EQ(EnumResourceIDZV(file, "TEXT", Note, reinterpret_cast<long>(&noted), ZV_RESOURCE_FIRST,
                                   row.first, ZV_RESOURCE_LAST, row.last, ZV_RESOURCE_RESERVED, 1, 0),
                  1);
        EXPECT_EQ(noted, row.shown) << row.first << " to " << row.last;
    }
    EndResourceAccessZV(file);
}

TEST_F(ResourceFiles, DamageIsRefusedOrPassedOver)
{
    struct {
        char const* why;
        std::size_t at;
        uint32_t value;
        int size;
        char const* left;
    } const rows[] = {
        {"data outside the file", 0, 0x7FFFFFFF, 4, "none"},
        {"map inside the header", 4, 8, 4, "none"},
        {"lengths that overflow", 8, 0xFFFFFFFF, 4, "none"},
        {"map without room for its own header", 12, 20, 4, "none"},
        {"types outside the map", MapAt + 24, 90, 2, "none"},
        {"more types than there is room for", MapAt + 28, 0x1000, 2, "none"},
        {"resources outside the map", MapAt + 36, 90, 2, "none"},
        {"more resources than there is room for", MapAt + 34, 0x4000, 2, "none"},
        {"lists that share their bytes", MapAt + 34, 2, 2, "none"},
        {"no types", MapAt + 28, 0xFFFF, 2, ""},
        {"names outside the map", MapAt + 26, 0xFFF0, 2, "128=hello;-7=;5=abc;"},
        {"bytes outside the data", MapAt + 51, 0xFFFFFF, 3, "128first=hello;-7=;"},
        {"bytes that do not end in the data", 33, 4, 4, "128first=hello;-7=;"},
    };
    for (auto const& row : rows) {
        Image patch;
        patch.Put(row.value, row.size);
        Bytes fork = Fork();
        std::copy(patch.bytes.begin(), patch.bytes.end(), fork.begin() + static_cast<long>(row.at));
        EXPECT_EQ(All(Write("damaged", fork)), row.left) << row.why;
        bool const isRefused = row.left == std::string("none");
        EXPECT_TRUE(!isRefused || GetErrorZV() == ZV_ERR_IO) << row.why;
    }
    for (Bytes const& whole : {Fork(), Companion()})
        for (std::size_t size = 0; size < whole.size(); size += 3)
            EXPECT_EQ(All(Write("cut", Head(whole, size))), "none") << size;
    EXPECT_EQ(BeginResourceAccessZV(environment.Spec("missing").c_str()), nullptr);
    EXPECT_EQ(GetErrorZV(), ZV_ERR_NOT_FOUND);
}

TEST_F(ResourceFiles, KeepWhatIsWritten)
{
    for (ResourcePlace place : {ResourcePlace::File, ResourcePlace::Companion}) {
        bool const isCompanion = place == ResourcePlace::Companion;
        std::string const name = isCompanion ? "beside" : "plain", spec = environment.Write(name, "the data");
        Resources file = ZVResourceFile::Create(spec.c_str(), place, ZV_FourCC("PICS"), ZV_FourCC("ttxt"));
        ASSERT_TRUE(file);
        EXPECT_EQ(All(spec), "");
        EXPECT_EQ(file->Unique_ID(Text), 128);
        EXPECT_TRUE(Add(file, Text, 128, "first", "one"));
        EXPECT_TRUE(Add(file, Pict, 129, std::string(300, 'n'), "picture"));
        EXPECT_TRUE(Add(file, Text, 3, "", ""));
        EXPECT_EQ(file->Unique_ID(Text), 129);
        EXPECT_EQ(All(spec), "") << "nothing counts before it is saved";
        EXPECT_TRUE(file->Save());
        EXPECT_EQ(All(spec), "128first=one;3=;129" + std::string(255, 'n') + "=picture;");
        EXPECT_TRUE(Add(file, Text, 128, "again", "another one"));
        file->Remove(*file->Find_ID(Pict, 129));
        EXPECT_EQ(file->Find_Name(Text, "again")->id, 128);
        EXPECT_EQ(file->Find(Text, 3), nullptr);
        EXPECT_TRUE(file->Save());
        EXPECT_EQ(All(spec), "128again=another one;3=;");
        EXPECT_EQ(Bytes_In_File(environment.Path(name)) == To_Bytes("the data"), isCompanion);
    }
    uint32_t type = 0, creator = 0;
    Get_FileInfo(environment.Spec("plain").c_str(), &creator, &type);
    EXPECT_EQ(type, ZV_FourCC("PICS"));
    Resources const closed = ZVResourceFile::Open(environment.Spec("plain").c_str(), ZVFilePermRead);
    EXPECT_FALSE(Add(closed, Text, 1, "", ""));
    EXPECT_EQ(GetErrorZV(), ZV_ERR_LOCKED);
}

TEST_F(ResourceFiles, ACompanionKeepsItsOtherParts)
{
    std::string const spec = environment.Write("beside", "");
    Bytes companion = Companion();
    companion.insert(companion.end(), 10, 'x');  // behind the fork, which has to move before it can grow
    Write("._beside", companion);
    {
        Resources const file = ZVResourceFile::Open(spec.c_str(), ZVFilePermReadWrite);
        ASSERT_TRUE(file && Add(file, Text, 9, "", "new") && file->Save());
    }
    EXPECT_EQ(All(spec), "128first=hello;-7=;9=new;5=abc;");
    ASSERT_TRUE(ZVResourceFile::Create(spec.c_str(), ResourcePlace::Companion, Text, Text));
    EXPECT_EQ(All(spec), "");
    Bytes const now = Bytes_In_File(environment.Path("._beside"));
    EXPECT_NE(std::search(now.begin(), now.end(), companion.begin() + 50, companion.begin() + 82), now.end());
    EXPECT_TRUE(ZVResourceFile::Create(spec.c_str(), ResourcePlace::File, Text, Text));
    EXPECT_FALSE(std::filesystem::exists(environment.Path("._beside")));
}

TEST_F(ResourceFiles, StaySmallHoweverOftenTheyAreSaved)
{
    std::string const spec = environment.Spec("many");
    ASSERT_TRUE(ZVResourceFile::Create(spec.c_str(), ResourcePlace::File, Text, Text));
    auto const content = [](int i) { return std::string(3000, static_cast<char>('a' + i % 26)); };
    for (int i = 0; i < 300; ++i) {
        Resources const file = ZVResourceFile::Open(spec.c_str(), ZVFilePermReadWrite);
        ASSERT_TRUE(file && Add(file, Text, static_cast<int16_t>(i), "", content(i)) && file->Save()) << i;
    }
    EXPECT_LT(Native_Info(environment.Path("many")).st_size, 300 * 3004 * 3 / 2 + (1 << 17));
    Resources file = ZVResourceFile::Open(spec.c_str(), ZVFilePermReadWrite);
    ASSERT_EQ(file->Count(Text), 300);
    for (int i = 0; i < 300; ++i) {
        std::string bytes(3000, ' ');
        ASSERT_TRUE(file->Read(*file->Find(Text, i + 1), bytes.data()));
        EXPECT_EQ(bytes, content(i)) << i;
    }
    while (file->Count(Text) > 1)
        file->Remove(*file->Find(Text, 1));
    EXPECT_TRUE(file->Save());
    EXPECT_LT(Native_Info(environment.Path("many")).st_size, 4000);
    EXPECT_EQ(All(spec), "299=" + content(299) + ";");

    std::string const large(9 << 20, 'l');
    EXPECT_TRUE(Add(file, Pict, 1, "", large) && Add(file, Pict, 2, "", large));
    EXPECT_FALSE(Add(file, Pict, 3, "", "does not begin within three bytes of offset"));
    EXPECT_EQ(GetErrorZV(), ZV_ERR_DISK_FULL);
    file->Remove(*file->Find(Pict, 1));
    EXPECT_TRUE(Add(file, Pict, 3, "", "has room now")) << GetErrorZV();
    EXPECT_TRUE(file->Save());
    EXPECT_EQ(file->Count(Pict), 2);
}

TEST_F(ResourceFiles, AFailedChangeLeavesTheFileAsItWas)
{
    for (bool isCompanion : {false, true}) {
        std::string const spec = isCompanion ? environment.Write("beside", "") : Write("plain", Fork());
        if (isCompanion) Write("._beside", Companion());
        bool isSaved = false;
        for (rlim_t room = 0; !isSaved && room < 250; room += 9) {
            {
                FileSizeLimit const limit(room + (isCompanion ? Companion() : Fork()).size());
                Resources const file = ZVResourceFile::Open(spec.c_str(), ZVFilePermReadWrite);
                isSaved = Add(file, Text, 1, "", std::string(60, 'x')) && file->Save();
            }
            EXPECT_TRUE(isSaved || All(spec) == Everything) << room;
        }
        EXPECT_TRUE(isSaved);
    }
}

}  // namespace
