// Layers: parts of files, and channels with prefixes.
#include "PictureLayers.h"

#include "PictureTest.h"

namespace {

using Names = std::vector<std::string>;

/// "name part:red,green,blue,alpha" of each layer, the flat picture first.
Names Describe(PictureLayers const& found)
{
    Names texts;
    auto const add = [&](PictureLayer const& layer) {
        std::string text = layer.name + " " + std::to_string(layer.part) + ":";
        for (int channel : layer.channels)
            text += std::to_string(channel) + ",";
        text.pop_back();
        texts.push_back(text);
    };
    add(found.flat);
    for (PictureLayer const& layer : found.layers)
        add(layer);
    return texts;
}

struct LayerCase {
    char const* why;
    std::vector<PicturePart> parts;
    bool hasComposite;
    Names layers;
};

LayerCase const layerCases[] = {
    {"a plain picture has no layers", {{"", {"R", "G", "B", "A"}, 3}}, false, {" 0:0,1,2,3"}},
    {"grey", {{"", {"Y", "A"}, 1}}, false, {" 0:0,0,0,1"}},
    {"alpha that only its place tells", {{"", {"R", "G", "B", "channel3"}, 3}}, false, {" 0:0,1,2,3"}},
    {"prefixes are layers, loose data is none",
     {{"",
       {"R", "G", "B", "A", "Z", "sun.light.R", "sun.light.G", "sun.light.B", "N.X", "N.Y", "N.Z", "mask.A"},
       3}},
     false,
     {" 0:0,1,2,3", "sun.light 0:5,6,7,-1", "N 0:8,9,10,-1", "mask 0:11,11,11,-1"}},
    {"without a plain picture the first layer is flat",
     {{"", {"b.B", "b.G", "b.R", "a.Y"}, -1}},
     false,
     {"b 0:2,1,0,-1", "b 0:2,1,0,-1", "a 0:3,3,3,-1"}},
    {"parts are layers, by their name or their number",
     {{"12", {"R", "G", "B"}, -1}, {"", {"R", "G", "B"}, -1}, {"x", {"x.Y", "y.R", "y.G", "y.B"}, -1}},
     false,
     {"12 0:0,1,2,-1", "12 0:0,1,2,-1", "Page 2 1:0,1,2,-1", "x 2:0,0,0,-1", "x.y 2:1,2,3,-1"}},
    {"a composite is none",
     {{"", {"R", "G", "B"}, -1}, {"sky", {"R", "G", "B", "A"}, 3}},
     true,
     {"Page 1 0:0,1,2,-1", "sky 1:0,1,2,3"}},
};

}  // namespace

class PictureLayersTest : public PictureTest {
protected:
    static Names Layer_Names(ZVClip const* clip)
    {
        Names names;
        for (Node const* node = List_First(&clip->Layers); node; node = List_Next(node))
            names.push_back(node->name);
        return names;
    }

    /// Red of the first pixel of a layer as an application reads it.
    static double First_Red(ZVClip* clip, long number)
    {
        ClipPtr const layer = Open_Layer(clip, number);
        BitmapPtr const bitmap = Make_Bitmap(layer->Width, layer->Height, {}, ZV_BITMAP_RGBAFLOAT);
        EXPECT_TRUE(GetFrameZV(layer.get(), bitmap.get(), nullptr, nullptr, nullptr));
        return Value(*bitmap, 0, 0, 0);
    }
};

TEST_F(PictureLayersTest, ComeFromNames)
{
    for (LayerCase const& row : layerCases)
        EXPECT_EQ(Describe(Find_Layers(row.parts, row.hasComposite, "Page ")), row.layers) << row.why;
}

TEST_F(PictureLayersTest, PartsAndPrefixesOfOpenEXR)
{
    OIIO::ImageSpec const spec(8, 6, 4, OIIO::TypeDesc::HALF);
    Write_Float_Picture("one.exr", spec, {"R", "G", "B", "A", "glow.R", "glow.G", "glow.B", "glow.A"});
    ClipPtr const clip = Open_Picture("one.exr");
    ASSERT_TRUE(clip);
    EXPECT_EQ(Layer_Names(clip.get()), (Names{"glow"}));
    ClipPtr const glow = Open_Layer(clip.get(), 1);
    ASSERT_TRUE(glow);
    EXPECT_TRUE(glow->Flags & ZV_CLIP_ALPHA_KNOWN);
    EXPECT_EQ(glow->AlphaPremultiplied, 1);
    BitmapPtr const bitmap = Stored_Frame(glow.get());
    ASSERT_TRUE(bitmap);
    EXPECT_EQ(Value(*bitmap, 3, 2, 1), Float_Value(3, 2, 5));

    Run("oiiotool --create 8x6 3 --addc 0.25 -d half -o p1.exr --create 8x6 3 --addc 0.5 -d half -o p2.exr; "
        "exrmultipart -combine -i p1.exr:0::first p2.exr:0::second -o two.exr -override 1 && "
        "exrmultipart -combine -i p2.exr:0::second p1.exr:0::first -o two2.exr -override 1 && mv two.exr "
        "two1.exr");
    ClipPtr const series = Open_Picture("two1.exr");
    ASSERT_TRUE(series);
    EXPECT_EQ(series->Frames, 2);
    EXPECT_EQ(Layer_Names(series.get()), (Names{"first", "second"}));
    ClipPtr const second = Open_Layer(series.get(), 2);
    for (long frame : {0, 1})
        EXPECT_EQ(Value(*Stored_Frame(second.get(), frame), 0, 0, 0), 0.5) << "a layer goes by its name";
}

TEST_F(PictureLayersTest, PagesOfTIFFMakeIconFiles)
{
    Run("oiiotool --create 18x18 4 --addc 1,0,0,1 -d uint8 -o 1.tif --create 10x12 4 --addc 0,1,0,1 -d uint8 "
        "-o 2.tif; "
        "tiffcp 1.tif 2.tif icons.tif; tiffset -d 0 -s 285 101 icons.tif; tiffset -d 1 -s 285 102 icons.tif");
    ClipPtr const clip = Open_Picture("icons.tif");
    ASSERT_TRUE(clip);
    EXPECT_EQ(Layer_Names(clip.get()), (Names{"101", "102"}));
    ClipPtr const layer = Open_Layer(clip.get(), 2);
    ASSERT_TRUE(layer);
    EXPECT_EQ(layer->Width, 10);
    EXPECT_EQ(layer->Height, 12);
    EXPECT_EQ(First_Red(clip.get(), 1), 1.0);
    EXPECT_EQ(First_Red(clip.get(), 2), 0.0);
    EXPECT_FALSE(Open_Layer(clip.get(), 3));
}
