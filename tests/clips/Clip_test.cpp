// Life of a clip: defaults, creating, closing and freeing, I/O, cloning, default names and scratch files.
#include "FailingHeap.h"
#include "clips/ClipFixture.h"

#include <cstring>
#include <set>

namespace {

using Clip = ClipTest;

TEST_F(Clip, ANewClipHasTheDefaults)
{
    TestFormat first("one", ZV_FORMAT_READ | ZV_FORMAT_DEFAULT),
        last("two", ZV_FORMAT_READ | ZV_FORMAT_DEFAULT);
    clip = NewClipZV();
    EXPECT_EQ(clip->Format, last.desc) << "the last module that stands in for none";
    EXPECT_EQ(clip->Background, 0xFF000000u);
    EXPECT_TRUE(clip->SequenceStep == 1 && clip->AlphaPremultiplied == 1 && clip->ClipMode == 1);
    EXPECT_TRUE(clip->LastFrame == -1 && clip->Flags == 0 && List_Empty(&clip->Layers));
    clip->Format = nullptr;
}

TEST_F(Clip, TheDepthTellsThePixelType)
{
    clip = NewClipZV();
    std::pair<long, ZVBitmapType> const cases[] = {
        {8, ZV_BITMAP_RGBA8},      {10, ZV_BITMAP_RGBA10}, {12, ZV_BITMAP_RGBA12}, {16, ZV_BITMAP_RGBA16},
        {32, ZV_BITMAP_RGBAFLOAT}, {0, ZV_BITMAP_RGBA8},   {24, ZV_BITMAP_RGBA8}};
    for (auto const& [depth, type] : cases) {
        clip->BitDepth = depth;
        EXPECT_EQ(GetBitmapTypeZV(clip), type) << depth;
    }
}

TEST_F(Clip, ClipsThatLiveAtOneTimeNeverShareAScratchNumber)
{
    clip = NewClipZV();
    unsigned long const number = clip->ClipID % 10000;
    std::set<unsigned long> seen;
    for (int i = 0; i < 25000; ++i) {
        ZVClip* const other = NewClipZV();
        ASSERT_NE(other->ClipID % 10000, number);
        ASSERT_TRUE(seen.insert(other->ClipID).second);
        FreeClipZV(other);
    }
}

TEST_F(Clip, EachOpenIsClosedOnce)
{
    for (bool const usesModuleData : {true, false}) {
        format.calls.clear();
        format.usesModuleData = usesModuleData;
        Open();
        EXPECT_EQ(clip->Flags & (ZV_CLIP_OPEN | ZV_CLIP_WRITING | ZV_CLIP_IO), ZV_CLIP_OPEN | ZV_CLIP_IO);
        CloseClipZV(clip);
        CloseClipZV(clip);
        EXPECT_EQ(format.Count("Close"), 1);
        EXPECT_EQ(format.Count("EndIO"), 1) << "closing ends I/O";
        EXPECT_EQ(clip->Flags & (ZV_CLIP_OPEN | ZV_CLIP_IO), 0u);
        EXPECT_EQ(OpenClipZV(clip, nullptr), 1);
        EXPECT_EQ(OpenClipZV(clip, nullptr), 1) << "open already";
        EXPECT_EQ(format.Count("Open"), 2);
        FreeClipZV(std::exchange(clip, nullptr));
        EXPECT_EQ(format.Count("Close"), 2);
    }
}

TEST_F(Clip, IOIsBracketedByTheModule)
{
    Open();
    EXPECT_EQ(format.Last("BeginIO").argument, 0);
    EXPECT_EQ(BeginClipIOZV(clip, nullptr), 1);
    EXPECT_EQ(format.Count("BeginIO"), 1);
    format.failing = {"EndIO", "BeginIO"};
    EXPECT_EQ(EndClipIOZV(clip, nullptr), 0);
    EXPECT_FALSE(clip->Flags & ZV_CLIP_IO) << "out of it, whatever the module answers";
    EXPECT_EQ(BeginClipIOZV(clip, nullptr), 0);
    EXPECT_EQ(GetErrorZV(), ZV_ERR_CLIP);
    EXPECT_FALSE(clip->Flags & ZV_CLIP_IO);

    ZVClip* const none = NewClipZV();
    none->Format = nullptr;
    EXPECT_EQ(BeginClipIOZV(none, nullptr), 1);
    EXPECT_EQ(EndClipIOZV(none, nullptr), 1);
    FreeClipZV(none);
    EXPECT_EQ(BeginClipIOZV(nullptr, nullptr), 0);
}

TEST_F(Clip, CreateAnswersByFormatMediaAndModule)
{
    struct {
        char const* why;
        char const* name;
        long properties;
        unsigned long media;
        std::set<std::string> failing;
        unsigned long moduleError, answer, error;
    } const cases[] = {
        {"by extension", "out.tst", ZV_FORMAT_WRITE, ZV_MEDIA_VIDEO, {}, 0, 1, 0},
        {"no name", nullptr, ZV_FORMAT_WRITE, 0, {}, 0, 0, ZV_ERR_NOT_FOUND},
        {"nothing claims the name", "out.xyz", ZV_FORMAT_WRITE, 0, {}, 0, 0, ZV_ERR_NO_FORMAT},
        {"the default takes it", "out.xyz", ZV_FORMAT_WRITE | ZV_FORMAT_DEFAULT, 0, {}, 0, 1, 0},
        {"cannot write", "out.tst", ZV_FORMAT_READ, ZV_MEDIA_VIDEO, {}, 0, 0, ZV_ERR_CLIP},
        {"cannot write sound", "out.tst", ZV_FORMAT_WRITE, 3, {}, 0, 0, ZV_ERR_CLIP},
        {"can", "out.tst", ZV_FORMAT_WRITE | ZV_FORMAT_AUDIO_WRITE, 3, {}, 0, 1, 0},
        {"module fails", "out.tst", ZV_FORMAT_WRITE, 0, {"Create"}, 0, 0, ZV_ERR_CLIP},
        {"with a number that may stand", "out.tst", ZV_FORMAT_WRITE, 0, {"Create"}, 6, 0, 6},
        {"", "out.tst", ZV_FORMAT_WRITE, 0, {"Create"}, 23, 0, 23},
        {"and with one that may not", "out.tst", ZV_FORMAT_WRITE, 0, {"Create"}, 7, 0, ZV_ERR_CLIP},
        {"", "out.tst", ZV_FORMAT_WRITE, 0, {"Create"}, 27, 0, ZV_ERR_CLIP},
    };
    for (auto const& row : cases) {
        format.properties = row.properties;
        format.failing = row.failing;
        format.errors["Create"] = row.moduleError;
        FreeClipZV(clip);
        clip = NewClipZV();
        clip->Format = nullptr;
        clip->RawFrames = 5;
        clip->Media = row.media;
        if (row.name) clip->FileName = CopyFileSpecZV(environment.Spec(row.name).c_str());
        EXPECT_EQ(CreateClipZV(clip, 42), static_cast<long>(row.answer)) << row.why;
        EXPECT_EQ(GetErrorZV(), row.error) << row.why;
        EXPECT_EQ(clip->Flags, row.answer ? ZV_CLIP_OPEN | ZV_CLIP_WRITING : 0u) << row.why;
        EXPECT_EQ(clip->RawFrames, row.answer ? 0 : 5) << row.why;
        EXPECT_TRUE(!row.answer || format.Last("Create").argument == 42);
    }
    EXPECT_EQ(CreateClipZV(nullptr, 0), 0);
}

TEST_F(Clip, AWrittenClipOpensForReading)
{
    clip = Create_Output(format.desc, take, 8, 6, 25.0, 25.0);
    ASSERT_TRUE(BeginClipIOZV(clip, nullptr));
    EXPECT_EQ(format.Last("BeginIO").argument, 1);
    CloseClipZV(clip);
    EXPECT_EQ(format.Last("EndIO").argument, 1);
    ASSERT_TRUE(OpenClipZV(clip, nullptr));
    EXPECT_EQ(clip->Flags & (ZV_CLIP_OPEN | ZV_CLIP_WRITING), ZV_CLIP_OPEN);
    EXPECT_EQ(clip->RawFrames, 10) << "what the file holds now";
    EXPECT_EQ(CreateClipZV(clip, 0), 1);
    EXPECT_EQ(format.Count("Close"), 2) << "an open clip is closed before it is created anew";
}

TEST_F(Clip, ACloneOwnsCopiesOfAllThatIsCloned)
{
    format.layers = {{"front", 4, 3, 16, 2}, {"back", 5, 4, 8, 0}};
    Open();
    EndClipIOZV(clip, nullptr);
    format.options = {1, 2, 3};
    TestFormat::Options(clip, true);
    clip->AudioParams = clip->VideoParams;
    clip->SequenceNumbers = static_cast<long*>(AllocMemZV(10 * sizeof(long), ZV_MEM_CLEAR));
    clip->SequenceNumbers[9] = 99;
    clip->User1 = 5;
    clip->MatteBlue = 0.5;
    clip->ScratchCount = 4;
    ZVTimeValue const time = Frame_Time(3);
    ASSERT_TRUE(DeleteFrameZV(clip, &time));

    ZVClip* const clone = CloneClipZV(clip, nullptr);
    ASSERT_TRUE(clone);
    EXPECT_NE(clone->ClipID, clip->ClipID);
    EXPECT_EQ(clone->Flags, clip->Flags);
    EXPECT_FALSE(clone->ModuleData || clone->OpenModule || clone->FileAlphaType || clone->User1);
    EXPECT_TRUE(clone->FileName != clip->FileName && clone->VideoParams != clip->VideoParams);
    EXPECT_STREQ(clone->FileName, clip->FileName);
    EXPECT_EQ(clone->AudioParams, clone->VideoParams) << "one block stays one block";
    EXPECT_TRUE(clone->VideoParams->Size == 3 && !std::memcmp(clone->VideoParams->Data, "\1\2\3", 3));
    EXPECT_EQ(clone->SequenceNumbers[9], 99);
    EXPECT_EQ(clone->MatteBlue, 0.5);
    EXPECT_EQ(Get_ReadableFrames(clone), 9);
    EXPECT_EQ(Get_FrameMapping(clone, 3), 4);
    ASSERT_EQ(List_Entries(&clone->Layers), 2);
    auto const* layer = reinterpret_cast<ZVClipLayer*>(List_Entry(&clone->Layers, 0));
    EXPECT_STREQ(layer->Node.name, "front");
    EXPECT_EQ(layer->BitDepth, 16);

    FreeClipZV(clone);
    EXPECT_EQ(format.Count("Close"), 0) << "it never was open itself";
}

TEST_F(Clip, ATargetKeepsItsOwnIdentity)
{
    Open();
    ZVClip* const target = NewClipZV();
    unsigned long const id = target->ClipID;
    int data;
    target->ModuleData = &data;
    target->FieldBitmap = AllocBitmapZV(2, 2, ZV_BITMAP_RGBA8, "test");
    target->ScratchCount = 7;
    target->FileName = CopyFileSpecZV("Root:\\old");
    ASSERT_EQ(CloneClipZV(clip, target), target);
    EXPECT_EQ(target->ClipID, id);
    EXPECT_EQ(target->ModuleData, &data);
    EXPECT_TRUE(target->FieldBitmap);
    EXPECT_EQ(target->ScratchCount, 7) << "its own scratch files are still there";
    EXPECT_STREQ(target->FileName, clip->FileName);
    EXPECT_FALSE(target->Flags & ZV_CLIP_IO);
    EXPECT_EQ(CloneClipZV(clip, clip), clip);
    EXPECT_STREQ(clip->FileName, take.c_str());
    FreeClipZV(target);
}

TEST_F(Clip, ACloneThatCannotBeMadeLeavesTheTargetAsItWas)
{
    if (!FailingHeap::Is_Available()) GTEST_SKIP();
    Open();
    clip->SequenceNumbers = static_cast<long*>(AllocMemZV(10 * sizeof(long), ZV_MEM_CLEAR));
    ZVTimeValue const time{};
    ASSERT_TRUE(DeleteFrameZV(clip, &time));
    ZVClip* const target = NewClipZV();
    target->FileName = CopyFileSpecZV("Root:\\old");
    long after = 0;
    for (bool isDone = false; !isDone; ++after) {
        FailingHeap heap(after);
        isDone = CloneClipZV(clip, target) != nullptr;
        FailingHeap::Recover();
        if (isDone) break;
        EXPECT_EQ(GetErrorZV(), ZV_ERR_MEMORY);
        EXPECT_STREQ(target->FileName, "Root:\\old");
        EXPECT_FALSE(target->FrameMap || target->SequenceNumbers || target->Frames);
    }
    EXPECT_EQ(after, 3) << "name, map and numbers";
    FreeClipZV(target);

    FailingHeap heap(0);
    ZVClip* const none = NewClipZV();
    FailingHeap::Recover();
    EXPECT_FALSE(none);
    EXPECT_EQ(GetErrorZV(), ZV_ERR_MEMORY);
}

TEST_F(Clip, ACloneOfAnOpenClipReadsThroughItsOwnModule)
{
    Open();
    ZVClip* const clone = CloneClipZV(clip, nullptr);
    clone->Width = 5;
    ASSERT_TRUE(BeginClipIOZV(clone, nullptr));
    EXPECT_EQ(format.Count("Open"), 2);
    EXPECT_TRUE(clone->ModuleData);
    EXPECT_EQ(clone->Width, 5) << "settings stay";
    EXPECT_EQ(Frame_Bytes(clone, 2), Picture_Bytes(2, 5, 6));
    FreeClipZV(clone);
    EXPECT_EQ(format.Count("Close"), 1);
    EXPECT_TRUE(clip->Flags & ZV_CLIP_OPEN);

    ZVClip* const other = CloneClipZV(clip, nullptr);
    format.failing = {"Open"};
    EXPECT_TRUE(BeginClipIOZV(other, nullptr)) << "the module may read without";
    FreeClipZV(other);
    EXPECT_EQ(format.Count("Close"), 1);
}

TEST_F(Clip, AModuleAtWorkGoesOnWithItsFileAndEndsWithAnother)
{
    TestFormat other("oth");
    Open();
    ZVClip* const edited = CloneClipZV(clip, nullptr);
    edited->Background = 0xFF123456;
    CloseClipZV(edited);
    CloneClipZV(edited, clip);
    ChangeClipFormatParamsZV(clip, format.desc, false);
    EXPECT_EQ(clip->Background, 0xFF123456u);
    EXPECT_EQ(clip->Flags & (ZV_CLIP_OPEN | ZV_CLIP_IO), ZV_CLIP_OPEN | ZV_CLIP_IO)
        << "settings copied back, the same format set: same file, same module";
    EXPECT_EQ(format.Count("Close"), 0);

    FreeFileSpecZV(edited->FileName);
    edited->FileName = CopyFileSpecZV(environment.Write("other.tst", "x").c_str());
    CloneClipZV(edited, clip);
    EXPECT_EQ(format.Count("Close"), 1) << "the module had another file open";
    EXPECT_EQ(clip->Flags & (ZV_CLIP_OPEN | ZV_CLIP_IO), 0u);
    FreeClipZV(edited);

    Open();
    SetClipOptionsZV(clip, ZV_CLIP_FORMAT, "oth\0");
    EXPECT_EQ(clip->Format, other.desc);
    EXPECT_EQ(format.Count("Close"), 2) << "the clip has another format";
    FreeClipZV(std::exchange(clip, nullptr));
    EXPECT_EQ(other.Count("Close"), 0);
}

TEST_F(Clip, ADefaultNameHasNumberingAndExtension)
{
    TestFormat picture("pict", ZV_FORMAT_WRITE), tiny("ei", ZV_FORMAT_MULTIFRAME),
        ram("", ZV_FORMAT_MULTIFRAME);
    struct {
        TestFormat const* format;
        char const* base;
        char const* name;
    } const cases[] = {{&picture, "shot", "shot[#####].pic"},
                       {&tiny, "shot", "shot.ei"},
                       {&ram, "shot", "shot"},
                       {&format, nullptr, ".tst"}};
    clip = NewClipZV();
    char out[ZV_SPEC_SIZE];
    for (auto const& row : cases) {
        clip->Format = row.format->desc;
        EXPECT_EQ(MakeDefaultClipNameZV(clip, row.base, out), out);
        EXPECT_STREQ(out, row.name);
    }
    std::string const tooLong(ZV_SPEC_SIZE - 2, 'a');
    EXPECT_EQ(MakeDefaultClipNameZV(clip, tooLong.c_str(), out), out);
    EXPECT_STREQ(out, "");
    EXPECT_EQ(GetErrorZV(), ZV_ERR_NOT_FOUND);
    clip->Format = nullptr;
    EXPECT_STREQ(MakeDefaultClipNameZV(clip, "shot", out), "shot");
    EXPECT_STREQ(out, "");
}

class Scratch : public Clip {
protected:
    std::string Default_Dir() { return environment.Spec("Brinmoor User Data\\ZVScratch\\"); }
    static void Write(std::string const& spec)
    {
        CloseFileZV(
            CreateFileZV(spec.c_str(), ZVFilePermWrite, ZV_BLANK_CODE, ZV_BLANK_CODE, ZVFileFlagNone));
        EXPECT_TRUE(FileExistsZV(spec.c_str())) << spec;
    }
};

TEST_F(Scratch, ANameTellsClipFrameAndKind)
{
    struct {
        unsigned long id;
        long frame, audio;
        char const* name;
    } const cases[] = {
        {12345, -7, 0, "23450000.07V"}, {1, -1, 1, "00010000.01A"}, {10000, -123456, 0, "00001234.56V"}};
    for (auto const& row : cases) {
        char const* const name = Make_TempName(row.id, row.frame, row.audio);
        EXPECT_EQ(name, ZVEnv->scratch2);
        EXPECT_EQ(name, Default_Dir() + row.name);
    }
    EXPECT_TRUE(FileExistsZV(Default_Dir().c_str()));
    EXPECT_FALSE(Make_TempName(1, 0, 0));
    EXPECT_FALSE(Make_TempName(1, 5, 0));
}

TEST_F(Scratch, TheRootIsTheDirectoryPartOfWhatWasSetAndFramesMoveAlong)
{
    environment.Make_Directory("disk");
    SetScratchDirZV(environment.Spec("disk/file").c_str());
    EXPECT_EQ(Make_TempName(1, -1, 0), environment.Spec("disk/ZVScratch/00010000.01V"));
    SetScratchDirZV(environment.Spec("nowhere/").c_str());
    EXPECT_FALSE(FileExistsZV(environment.Spec("disk/ZVScratch/").c_str())) << "an empty one is left";
    EXPECT_FALSE(Make_TempName(1, -1, 0));
    EXPECT_EQ(GetErrorZV(), ZV_ERR_IO);
    SetScratchDirZV(nullptr);
    EXPECT_EQ(Make_TempName(1, -1, 0), Default_Dir() + "00010000.01V");

    for (long frame : {-1L, -2L})
        Write(Make_TempName(1, frame, 0));
    SetScratchDirZV(environment.Spec("disk/").c_str());
    EXPECT_TRUE(FileExistsZV(Make_TempName(1, -1, 0)));
    EXPECT_TRUE(FileExistsZV(environment.Spec("disk/ZVScratch/00010000.02V").c_str()));
    EXPECT_FALSE(FileExistsZV(Default_Dir().c_str()));
    SetScratchDirZV(environment.Spec("nowhere/").c_str());
    EXPECT_TRUE(FileExistsZV(Make_TempName(1, -1, 0))) << "where they cannot go they do not";
}

TEST_F(Scratch, AProcessThatRunsBesideKeepsItsFrames)
{
    long const claim = OS_Claim_Directory(Default_Dir().c_str());
    ASSERT_GT(claim, 0);
    std::string const theirs = Default_Dir() + "00010000.01V";
    Write(theirs);
    std::string const ours = Make_TempName(1, -1, 0);
    EXPECT_EQ(ours, environment.Spec("Brinmoor User Data\\ZVScratch2\\00010000.01V"));
    Write(ours);
    Cleanup_Clip();
    EXPECT_TRUE(FileExistsZV(theirs.c_str()));
    EXPECT_FALSE(FileExistsZV(environment.Spec("Brinmoor User Data\\ZVScratch2\\").c_str()));
    OS_Release_Directory(claim);
}

TEST_F(Scratch, WhatACrashLeftBehindGoesAndWhatIsMissingIsMadeAgain)
{
    environment.Make_Directory("Brinmoor User Data/ZVScratch");
    std::string const stale = environment.Write("Brinmoor User Data/ZVScratch/00010000.01V", "old");
    EXPECT_EQ(Make_TempName(1, -1, 0), stale);
    EXPECT_FALSE(FileExistsZV(stale.c_str())) << "when the directory is used";
    std::filesystem::remove_all(environment.Path("Brinmoor User Data/ZVScratch"));
    Write(Make_TempName(1, -1, 0));
    EXPECT_EQ(OS_Claim_Directory(Default_Dir().c_str()), 0)
        << "a directory deleted from outside is ours again";
    Cleanup_Clip();
    environment.Write("Brinmoor User Data/ZVScratch/00010000.01V", "old");
    Cleanup_Clip();
    EXPECT_FALSE(FileExistsZV(Default_Dir().c_str())) << "at the end at the latest";
}

TEST_F(Scratch, FreeingAClipDeletesItsFrames)
{
    Open();
    unsigned long const id = clip->ClipID;
    ZVTimeValue const end = Frame_Time(9);
    BitmapBlock const bitmap = Make_Bitmap(8, 6);
    FillBitmapZV(bitmap.get(), 0);
    // The last of them lies beyond the source's count.
    ASSERT_TRUE(ModifyFrameZV(clip, bitmap.get(), &end, nullptr, nullptr));
    ASSERT_TRUE(InsertFrameAfterZV(clip, &end));
    ZVTimeValue const behind = Frame_Time(10);
    ASSERT_TRUE(ModifyFrameZV(clip, bitmap.get(), &behind, nullptr, nullptr));
    std::string const first = Make_TempName(id, -1, 0), second = Make_TempName(id, -2, 0);
    ASSERT_TRUE(FileExistsZV(first.c_str()) && FileExistsZV(second.c_str()));

    FreeClipZV(CloneClipZV(clip, nullptr));
    EXPECT_TRUE(FileExistsZV(first.c_str())) << "they are not the clone's";
    SetError(99);
    FreeClipZV(std::exchange(clip, nullptr));
    EXPECT_FALSE(FileExistsZV(first.c_str()) || FileExistsZV(second.c_str()));
}

}  // namespace
