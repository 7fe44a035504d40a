// Layout: thousands of palettes, declared through the interface and worked out by the model beside it, have
// to agree in every rectangle; and rules whose results can be told by hand.
#include "interface/InterfaceTest.h"
#include "interface/LayoutModel.h"

#include <random>

namespace {

/// Makes up palettes, in the model's words.
class Maker {
public:
    explicit Maker(unsigned seed) : random_(seed) {}

    Model::Palette Make(int depth = 0)
    {
        Model::Palette palette;
        palette.id = 100 + nextPalette_++;
        palette.margin = {12, 12, 12, 12};
        if (One_In(3)) palette.margin = {Number(0, 20), Number(0, 20), Number(0, 20), Number(0, 20)};
        if (One_In(6)) palette.leastContent = {Number(0, 400), Number(0, 300)};
        long const subs = depth < 2 && One_In(3) ? Number(1, 3) : 0;
        for (long i = 0; i < subs; ++i) {
            Model::Palette sub = Make(depth + 1);
            sub.position = Code({0, 1, 2, 3, 4, 9, 10});
            if (!palette.subs.empty() && One_In(2)) sub.reference = palette.subs.back().id;
            if (One_In(4)) sub.forced = {Number(50, 400), -1};
            palette.subs.push_back(sub);
        }
        for (long i = Number(depth ? 1 : 0, 6); i > 0; --i)
            palette.groups.push_back(Make_Group(static_cast<int>(palette.groups.size())));
        return palette;
    }

    long Number(long low, long high) { return std::uniform_int_distribution<long>(low, high)(random_); }
    bool One_In(long count) { return Number(1, count) == 1; }

private:
    int Pick(std::vector<int> const& from)
    {
        return from[static_cast<std::size_t>(Number(0, static_cast<long>(from.size()) - 1))];
    }
    int Code(std::vector<int> const& halves)
    {
        int const low = Pick(halves);
        return low | Pick(halves) << 8;
    }

    Model::Gap Make_Gap()
    {
        Model::Gap gap;
        if (One_In(3)) gap.pixels = Number(0, 15);
        if (One_In(6)) gap.percent = Number(1, 100);
        return gap;
    }

    Model::Group Make_Group(int before)
    {
        Model::Group group;
        group.id = before + 1;
        group.position = Code({0, 1, 2, 3, 4, 5, 6, 9, 10, 2, 4});
        if (before && !One_In(6)) group.reference = static_cast<int>(Number(1, before));
        for (std::size_t a = 0; a < 2; ++a) {
            group.full[a] = One_In(6);
            group.shares[a] = !group.full[a] && One_In(3);
            if (One_In(5)) group.percent[a] = Number(0, 100);
            if (One_In(8)) group.offset[a] = Number(-10, 10);
        }
        if (before && One_In(8)) group.align[static_cast<std::size_t>(Number(0, 3))] = 1;
        group.gap = Make_Gap();
        group.gap.round = group.gap.percent && One_In(2);
        group.margin = {12, 12, 12, 12};
        if (One_In(2)) group.margin = {Number(0, 9), Number(0, 9), Number(0, 9), Number(0, 9)};
        if (One_In(3)) group.content = Code({3, 4, 6, 9, 10});
        group.out = One_In(10);
        flexAxis_ = static_cast<int>(Number(0, 3));
        for (long i = Number(0, 8); i > 0; --i)
            Add_Item(group);
        return group;
    }

    void Add_Item(Model::Group& group)
    {
        Model::Item item;
        auto const index = static_cast<int>(group.items.size());
        item.id = index + 1;
        item.position = Code({0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 1, 2});
        Model::Item const* reference = nullptr;
        if (index) {
            do
                reference = &group.items[static_cast<std::size_t>(Number(0, index - 1))];
            while (reference->label);
            item.reference = reference->id;
        }
        for (int a = 0; a < 2; ++a) {
            int const half = item.Half(a);
            bool const inParent = half == 3 || half == 9 || half == 10;
            // What stands in its group alone has no place for others to stand beside; first items have none.
            bool const isLoose = !reference || Is_In_Group(*reference, a);
            if (isLoose && !inParent) item.position &= a ? 0x00FF : 0xFF00;
            if (isLoose && !inParent && reference) item.position |= 9 << (8 * a);
        }
        for (std::size_t a = 0; a < 2; ++a) {
            item.base[a] = Number(1, 80);
            if (One_In(8)) item.offset[a] = Number(-9, 9);
            if (One_In(4)) item.percent[a] = Number(0, 100);
            if (One_In(4)) item.least[a] = Number(0, 90);
        }
        item.gap = Make_Gap();
        int const flexHalf = flexAxis_ < 2 ? item.Half(flexAxis_) : 0;
        int const otherHalf = flexAxis_ < 2 ? item.Half(1 - flexAxis_) : 0;
        item.gap.flex = item.gap.pixels >= 0 && flexHalf && otherHalf != 1 && otherHalf != 2 && One_In(2);
        item.out = One_In(8);
        group.items.push_back(item);
        while (One_In(4))
            Add_Label(group, static_cast<std::size_t>(index));
    }

    static bool Is_In_Group(Model::Item const& item, int axis)
    {
        int const half = item.Half(axis);
        return half == 3 || half == 9 || half == 10;
    }

    /// A label on one side of an item, in its middle on the other axis.
    void Add_Label(Model::Group& group, std::size_t owner)
    {
        if (Is_In_Group(group.items[owner], 0) || Is_In_Group(group.items[owner], 1)) return;
        auto const side = static_cast<std::size_t>(Number(0, 3));
        int const beside = side % 2 ? 2 : 1;
        Model::Item label;
        label.id = 65534;
        label.label = true;
        label.position = side < 2 ? beside | 0x0500 : beside << 8 | 5;
        label.reference = group.items[owner].id;
        label.out = group.items[owner].out;
        group.items[owner].sides[side].push_back(static_cast<int>(group.items.size()));
        group.items.push_back(label);
    }

    std::mt19937 random_;
    int nextPalette_ = 0;
    int flexAxis_ = 0;
};

/// Declares what the model describes.
class Declarer {
public:
    void Declare(Model::Palette& model)
    {
        InitPaletteZV();
        for (Model::Palette& sub : model.subs) {
            Declare(sub);
            std::vector<TagItem> tags = Palette_Tags(sub);
            tags.push_back({ZV_PAL_POSITION, Tag_Word(sub.position)});
            tags.push_back({ZV_PAL_RELATIVE_TO, Tag_Word(sub.reference)});
            if (sub.forced[0] != -1) tags.push_back({ZV_PAL_FORCE_WIDTH, Tag_Word(sub.forced[0])});
            tags.push_back({});
            EndPaletteZV(static_cast<unsigned short>(sub.id), "", tags.data());
        }
        for (Model::Group& group : model.groups)
            Declare(group);
    }

    static std::vector<TagItem> Palette_Tags(Model::Palette const& model)
    {
        std::vector<TagItem> tags;
        for (unsigned long i = 0; i < 4; ++i)
            tags.push_back({ZV_MARGIN_LEFT + i, Tag_Word(model.margin[i])});
        if (model.leastContent[0] >= 0) {
            tags.push_back({ZV_PAL_MIN_WIDTH, Tag_Word(model.leastContent[0])});
            tags.push_back({ZV_PAL_MIN_HEIGHT, Tag_Word(model.leastContent[1])});
        }
        return tags;
    }

private:
    static void Add_Gap(std::vector<TagItem>& tags, Model::Gap const& gap)
    {
        if (gap.pixels >= 0)
            tags.push_back({gap.flex ? ZV_GAP_FIXED_FLEX : ZV_GAP_FIXED, Tag_Word(gap.pixels)});
        if (gap.percent) tags.push_back({gap.round ? ZV_GAP_GROW_ROUND : ZV_GAP_GROW, Tag_Word(gap.percent)});
    }

    void Declare(Model::Group& model)
    {
        ZVGroup* const group = InitGroupZV();
        for (Model::Item& item : model.items)
            Declare(item);
        std::vector<TagItem> tags;
        for (unsigned long a = 0; a < 2; ++a) {
            if (model.full[a]) tags.push_back({ZV_GRP_FULL_WIDTH + a, 0});
            if (model.shares[a]) tags.push_back({ZV_GRP_AUTO_WIDTH + a, 0});
            if (model.percent[a]) tags.push_back({ZV_GRP_GROW_WIDTH + a, Tag_Word(model.percent[a])});
            if (model.offset[a]) tags.push_back({ZV_GRP_OFFSET_X + a, Tag_Word(model.offset[a])});
        }
        for (unsigned long i = 0; i < 4; ++i) {
            tags.push_back({ZV_MARGIN_LEFT + i, Tag_Word(model.margin[i])});
            if (model.align[i]) tags.push_back({ZV_GRP_ALIGN_LEFT + i, Tag_Word(model.align[i])});
        }
        Add_Gap(tags, model.gap);
        tags.push_back({ZV_GRP_CONTENT_POSITION, Tag_Word(model.content)});
        tags.push_back({ZV_GRP_IGNORE_IF_HIDDEN, 0});
        tags.push_back({});
        EndGroupZV(static_cast<short>(model.id), static_cast<unsigned short>(model.position),
                   static_cast<short>(model.reference), "", tags.data());
        GroupVisibleZV(group, !model.out);
    }

    static void Declare(Model::Item& model)
    {
        std::vector<TagItem> tags{{ZV_ITEM_IGNORE_IF_HIDDEN, 0}};
        Add_Gap(tags, model.gap);
        for (unsigned long a = 0; a < 2; ++a) {
            tags.push_back({ZV_ITEM_WIDTH + a, Tag_Word(model.base[a])});
            tags.push_back({ZV_ITEM_MIN_WIDTH + a, Tag_Word(model.least[a])});
            tags.push_back({ZV_ITEM_OFFSET_X + a, Tag_Word(model.offset[a])});
            if (model.percent[a] >= 0) tags.push_back({ZV_ITEM_GROW_WIDTH + a, Tag_Word(model.percent[a])});
        }
        tags.push_back({});
        auto const id = static_cast<unsigned short>(model.id);
        auto const position = static_cast<unsigned short>(model.position);
        auto const reference = static_cast<short>(model.reference);
        ZVItem* const item = model.label ? AddTextZV(id, position, reference, "label", tags.data())
                                         : AddGadgetZV(id, position, reference, ZV_GAD_CUSTOM, ZV_SIZE_CUSTOM,
                                                       "", tags.data());
        ASSERT_TRUE(item);
        if (model.label) model.base = {item->baseWidth, item->baseHeight};
        ItemVisibleZV(item, !model.out);
    }
};

using Rects = std::vector<std::array<long, 4>>;

void Collect(Model::Palette const& palette, Rects& rects, bool isTop = true)
{
    if (!isTop) rects.push_back({palette.at[0], palette.at[1], palette.size[0], palette.size[1]});
    rects.push_back({palette.size[0], palette.size[1], palette.least[0], palette.least[1]});
    for (Model::Group const& group : palette.groups) {
        rects.push_back({group.at[0], group.at[1], group.size[0], group.size[1]});
        for (Model::Item const& item : group.items)
            rects.push_back({item.at[0], item.at[1], item.size[0], item.size[1]});
    }
    for (Model::Palette const& sub : palette.subs)
        Collect(sub, rects, false);
}

void Collect(ZVPalette const& palette, Rects& rects)
{
    if (ZVPalette const* parent = palette.parent)
        rects.push_back(
            {palette.x - parent->originX, palette.y - parent->originY, palette.width, palette.height});
    rects.push_back({palette.width, palette.height, palette.minWidth, palette.minHeight});
    for (Node* g = palette.groups.head; g->next; g = g->next) {
        auto const& group = *reinterpret_cast<ZVGroup*>(g);
        rects.push_back({group.x, group.y, group.width, group.height});
        for (Node* i = group.items.head; i->next; i = i->next) {
            auto const& item = *reinterpret_cast<ZVItem*>(i);
            rects.push_back({item.x, item.y, item.width, item.height});
        }
    }
    for (Node* sub = palette.subPalettes.head; sub->next; sub = sub->next)
        Collect(*reinterpret_cast<ZVPalette*>(sub), rects);
}

class Layout : public InterfaceTest {
protected:
    static Model::Metrics Style()
    {
        ZVStyle const& style = *ZVEnv->style;
        return {style.gapNormal, style.groupGap, style.paletteGap};
    }

    static void Expect_Same(Model::Palette const& model, ZVPalette const& palette, char const* when)
    {
        Rects expected, real;
        Collect(model, expected);
        Collect(palette, real);
        ASSERT_EQ(real, expected) << when;
    }

    /// The size that a display settles on: at least what the palette needs.
    static void Display_Model(Model::Palette& model)
    {
        Model::Pair fill = model.forced;
        Model::Lay_Out(model, fill, Style());
        bool again = false;
        for (std::size_t a = 0; a < 2; ++a)
            if (fill[a] > 0 && fill[a] < model.least[a]) {
                fill[a] = model.least[a];
                again = true;
            }
        if (again) Model::Lay_Out(model, fill, Style());
    }
};

/// Chooses other items and groups to be hidden, in the model and in the palette.
void Change_Hidden(Maker& maker, Model::Palette& model, ZVPalette& palette)
{
    Node* g = palette.groups.head;
    for (Model::Group& group : model.groups) {
        group.out = maker.One_In(6);
        GroupVisibleZV(reinterpret_cast<ZVGroup*>(g), !group.out);
        Node* i = reinterpret_cast<ZVGroup*>(g)->items.head;
        for (Model::Item& item : group.items) {
            if (!item.label) {
                item.out = maker.One_In(5);
                for (auto const& side : item.sides)
                    for (int label : side)
                        group.items[static_cast<std::size_t>(label)].out = item.out;
                ItemVisibleZV(reinterpret_cast<ZVItem*>(i), !item.out);
            }
            i = i->next;
        }
        g = g->next;
    }
}

}  // namespace

TEST_F(Layout, AgreesWithTheModelWhenDisplayedResizedAndChanged)
{
    for (unsigned seed = 1; seed <= 1000; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Maker maker(seed);
        Model::Palette model = maker.Make();
        Declarer().Declare(model);
        ZVPalette* const palette = ZVEnv->buildingPalette;
        std::vector<TagItem> tags = Declarer::Palette_Tags(model);
        for (std::size_t a = 0; a < 2; ++a)
            if (maker.One_In(3)) model.forced[a] = maker.Number(1, 900);
        tags.push_back({ZV_PAL_FORCE_WIDTH, Tag_Word(model.forced[0])});
        tags.push_back({ZV_PAL_FORCE_HEIGHT, Tag_Word(model.forced[1])});
        tags.push_back({});
        ASSERT_TRUE(DisplayPaletteZV(tags.data()));
        Display_Model(model);
        ASSERT_NO_FATAL_FAILURE(Expect_Same(model, *palette, "when displayed"));

        Model::Pair const size{maker.Number(1, 900), maker.One_In(3) ? -1 : maker.Number(1, 900)};
        ResizePaletteZV(palette, size[0], size[1]);
        Model::Lay_Out(model, size, Style());
        ASSERT_NO_FATAL_FAILURE(Expect_Same(model, *palette, "when resized"));

        Change_Hidden(maker, model, *palette);
        RebuildPaletteZV(palette);
        Model::Lay_Out(model, size, Style());
        ASSERT_NO_FATAL_FAILURE(Expect_Same(model, *palette, "when other items are hidden"));
        ClosePaletteZV(palette);
    }
}
