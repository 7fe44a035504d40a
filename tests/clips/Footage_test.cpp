// Footage presets: what a picture size tells of a clip.
#include "TestEnvironment.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

struct {
    char const* why;
    long width, height;
    long isFound;
    unsigned long type;
    double rate, aspect;
    FieldOrder order;
} const sizeCases[] = {
    {"the first row of a size wins", 640, 480, 1, 1, 29.97, 1.0, ZV_FIELDS_UPPER_FIRST},
    {"", 720, 480, 1, 14, 29.97, 0.9, ZV_FIELDS_LOWER_FIRST},
    {"", 720, 486, 1, 4, 29.97, 0.9, ZV_FIELDS_LOWER_FIRST},
    {"", 720, 576, 1, 15, 25.0, 1.0666666, ZV_FIELDS_LOWER_FIRST},
    {"", 768, 576, 1, 3, 25.0, 1.0, ZV_FIELDS_UPPER_FIRST},
    {"20 rows more", 1828, 1576, 1, 10, 24.0, 2.0, ZV_FIELDS_NONE},
    {"", 1828, 1556, 1, 10, 24.0, 2.0, ZV_FIELDS_NONE},
    {"", 1828, 1332, 1, 17, 24.0, 1.0, ZV_FIELDS_NONE},
    {"within 3 per cent", 1300, 730, 1, 8, 30.0, 1.0, ZV_FIELDS_NONE},
    {"within 3 per cent", 1900, 1060, 1, 9, 24.0, 1.0, ZV_FIELDS_NONE},
    {"at 97 per cent", 1242, 699, 1, 8, 30.0, 1.0, ZV_FIELDS_NONE},
    {"too narrow by a pixel", 1241, 720, 0, 11, 25.0, 1.0, ZV_FIELDS_NONE},
    {"height misses", 1280, 742, 0, 11, 25.0, 1.0, ZV_FIELDS_NONE},
    {"small sizes match exactly", 724, 486, 0, 11, 25.0, 1.0, ZV_FIELDS_NONE},
    {"", 1024, 768, 0, 11, 25.0, 1.0, ZV_FIELDS_NONE},
    {"", 0, 0, 0, 11, 25.0, 1.0, ZV_FIELDS_NONE},
};

using Footage = EnvironmentTest;

TEST_F(Footage, ASizeTellsRateAspectAndFieldOrder)
{
    for (auto const& row : sizeCases) {
        SCOPED_TRACE(testing::Message() << row.width << " x " << row.height << " " << row.why);
        unsigned long type;
        char name[256];
        double rate, aspect;
        FieldOrder order;
        EXPECT_EQ(FindFootagePresetsZV(row.width, row.height, &type, name, &rate, &aspect, &order),
                  row.isFound);
        EXPECT_TRUE(type == row.type && rate == row.rate && aspect == row.aspect && order == row.order);
        ZVFootagePreset const* preset = FindFootagePresetsZV(static_cast<long>(type));
        EXPECT_STREQ(name, GetStringZV(preset->Name));
    }
    EXPECT_EQ(FindFootagePresetsZV(640, 480, nullptr, nullptr, nullptr, nullptr, nullptr), 1);
}

TEST_F(Footage, ATypeFindsItsRow)
{
    EXPECT_EQ(NumFootagePresetsZV(), 16);
    EXPECT_EQ(FindFootagePresetsZV(19)->PixelAspect, 1.2);
    EXPECT_EQ(FindFootagePresetsZV(16)->Width, 3656);
    for (long unused : {0, 6, 7, 12, 13, 21})
        EXPECT_EQ(FindFootagePresetsZV(unused), nullptr);
}

}  // namespace
