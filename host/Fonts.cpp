// The font service: fontconfig finds the faces.
#include "Fonts.h"

#include "CallDelete.h"
#include "FreeTypeFont.h"

#include <fontconfig/fontconfig.h>
#include <strings.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <new>
#include <tuple>
#include <utility>

namespace {

using FontConfig = Handle<FcConfig, FcConfigDestroy>;
using FontPattern = Handle<FcPattern, FcPatternDestroy>;
using FontObjects = Handle<FcObjectSet, FcObjectSetDestroy>;
using FontSet = Handle<FcFontSet, FcFontSetDestroy>;

constexpr double FixedOne = 64.0;  // sizes are in 26.6 fixed point

// ---- patterns ---------------------------------------------------------------------------------------------

int Get_Integer(FcPattern* pattern, char const* object, int fallback)
{
    int value = fallback;
    FcPatternGetInteger(pattern, object, 0, &value);
    return value;
}

/// A name in English where there is one, else the first.
std::string Get_Name(FcPattern* pattern, char const* object, char const* languages)
{
    FcChar8 *name = nullptr, *language = nullptr;
    int chosen = 0;
    for (int i = 0; FcPatternGetString(pattern, languages, i, &language) == FcResultMatch; ++i) {
        if (std::string_view(reinterpret_cast<char*>(language)) != "en") continue;
        chosen = i;
        break;
    }
    if (FcPatternGetString(pattern, object, chosen, &name) != FcResultMatch) return {};
    return reinterpret_cast<char*>(name);
}

std::string Get_Family(FcPattern* pattern)
{
    return Get_Name(pattern, FC_FAMILY, FC_FAMILYLANG);
}

/// A face of the list with what it is sorted by.
struct ListedFace {
    HostFontFace face;
    int formatRank;    ///< 0 for the format that is read best
    int width, slant;  ///< distance from the regular face
    int weight;
    bool isVariable;  ///< stands for a variable face as a whole

    auto Style_Key() const { return std::tie(width, slant, weight, face.style); }
};

/// Whether a match has to be made bold or italic. The configuration of fontconfig can tell how to do that,
/// and then describes the match as if it were done.
bool Lacks_Bold(FcPattern* match)
{
    FcBool isToEmbolden = FcFalse;
    FcPatternGetBool(match, FC_EMBOLDEN, 0, &isToEmbolden);
    return isToEmbolden || Get_Integer(match, FC_WEIGHT, FC_WEIGHT_REGULAR) < FC_WEIGHT_DEMIBOLD;
}

bool Lacks_Italic(FcPattern* match)
{
    FcMatrix* slope = nullptr;
    return FcPatternGetMatrix(match, FC_MATRIX, 0, &slope) == FcResultMatch ||
           Get_Integer(match, FC_SLANT, FC_SLANT_ROMAN) == FC_SLANT_ROMAN;
}

constexpr int NamedInstanceShift = 16;  // above the index of the face, counted from 1
constexpr int FaceIndexMask = 0xFFFF;

ListedFace Describe(FcPattern* pattern)
{
    FcChar8* file = nullptr;
    FcPatternGetString(pattern, FC_FILE, 0, &file);
    FcChar8* format = nullptr;
    FcPatternGetString(pattern, FC_FONTFORMAT, 0, &format);
    std::string_view const formatName = format ? reinterpret_cast<char*>(format) : "";
    FcBool isVariable = FcFalse;
    FcPatternGetBool(pattern, FC_VARIABLE, 0, &isVariable);
    int const index = Get_Integer(pattern, FC_INDEX, 0);
    int const instance = index >> NamedInstanceShift;
    return {.face = {.family = Get_Family(pattern),
                     .style = Get_Name(pattern, FC_STYLE, FC_STYLELANG),
                     .file = file ? reinterpret_cast<char*>(file) : "",
                     .index = index & FaceIndexMask,
                     .instance = instance > 0 ? instance - 1 : HostFontFace::NoInstance},
            .formatRank = formatName == "TrueType" || formatName == "CFF" ? 0 : 1,
            .width = std::abs(Get_Integer(pattern, FC_WIDTH, FC_WIDTH_NORMAL) - FC_WIDTH_NORMAL),
            .slant = std::abs(Get_Integer(pattern, FC_SLANT, FC_SLANT_ROMAN) - FC_SLANT_ROMAN),
            .weight = std::abs(Get_Integer(pattern, FC_WEIGHT, FC_WEIGHT_REGULAR) - FC_WEIGHT_REGULAR),
            .isVariable = isVariable == FcTrue};
}

int Compare_Families(std::string const& a, std::string const& b)
{
    int const order = strcasecmp(a.c_str(), b.c_str());
    return order ? order : a.compare(b);
}

/// The order of the list. One style out of several files has the best of them in front.
bool Stands_Before(ListedFace const& a, ListedFace const& b)
{
    if (int const order = Compare_Families(a.face.family, b.face.family); order) return order < 0;
    return std::tuple(a.Style_Key(), a.formatRank, std::tie(a.face.file, a.face.index, a.face.instance)) <
           std::tuple(b.Style_Key(), b.formatRank, std::tie(b.face.file, b.face.index, b.face.instance));
}

bool Is_Same_Style(ListedFace const& a, ListedFace const& b)
{
    return a.face.family == b.face.family && a.face.style == b.face.style;
}

// ---- the service ------------------------------------------------------------------------------------------

/// Finds and opens faces. Open fonts hold it, as they look for what they lack.
class FontFinder : public std::enable_shared_from_this<FontFinder> {
public:
    FontFinder(FontConfig config, FontLibrary library)
        : config_(std::move(config)), library_(std::move(library))
    {
    }

    FcConfig* Config() const { return config_.get(); }

    std::unique_ptr<HostFont> Open(HostFontRequest const& request)
    {
        return Open_Match(Find_Face(request).get(), request, Substitutes_For(request));
    }

    std::unique_ptr<HostFont> Open(HostFontFace const& face, HostFontRequest const& request)
    {
        if (request.bold || request.italic) {
            FontPattern const match = Find_Face(request);
            if (match && Get_Family(match.get()) == face.family)
                return Open_Match(match.get(), request, Substitutes_For(request));
        }
        int const index = face.index | (face.instance + 1) << NamedInstanceShift;
        return Open_File(face.file.c_str(), index, request.pixelSize, {request.bold, request.italic},
                         Substitutes_For(request));
    }

private:
    FontPattern Pattern_Of(HostFontRequest const& request) const
    {
        FontPattern pattern{FcPatternCreate()};
        if (!pattern) throw std::bad_alloc();
        FcPatternAddString(pattern.get(), FC_FAMILY, reinterpret_cast<FcChar8 const*>(request.family));
        FcPatternAddDouble(pattern.get(), FC_PIXEL_SIZE, request.pixelSize);
        FcPatternAddInteger(pattern.get(), FC_WEIGHT, request.bold ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR);
        FcPatternAddInteger(pattern.get(), FC_SLANT, request.italic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
        FcPatternAddBool(pattern.get(), FC_OUTLINE, FcTrue);
        // A named instance of a variable font is chosen by its index alone, axes would have to be set one by
        // one.
        FcPatternAddBool(pattern.get(), FC_VARIABLE, FcFalse);
        FcConfigSubstitute(config_.get(), pattern.get(), FcMatchPattern);
        FcDefaultSubstitute(pattern.get());
        return pattern;
    }

    /// The description of the installed face that fits best, or null.
    FontPattern Find_Face(HostFontRequest const& request) const
    {
        FontPattern const pattern = Pattern_Of(request);
        FcResult result = FcResultNoMatch;
        FontPattern match{FcFontMatch(config_.get(), pattern.get(), &result)};
        if (result == FcResultOutOfMemory) throw std::bad_alloc();
        return match;
    }

    SubstituteFinder Substitutes_For(HostFontRequest const& request)
    {
        return [self = shared_from_this(), size = request.pixelSize, bold = request.bold,
                italic = request.italic](uint32_t character) {
            return self->Find_Substitute(size, bold, italic, character);
        };
    }

    /// The face nearest to a style that has a character.
    std::unique_ptr<FreeTypeFont> Find_Substitute(double pixelSize, bool bold, bool italic,
                                                  uint32_t character)
    {
        HostFontRequest const request{"sans", pixelSize, bold, italic};
        FontSet& faces = substitutes_[bold * 2 + italic];
        if (!faces) {
            FontPattern const pattern = Pattern_Of(request);
            FcResult result = FcResultNoMatch;
            faces.reset(FcFontSort(config_.get(), pattern.get(), FcTrue, nullptr, &result));
        }
        for (int i = 0; faces && i < faces->nfont; ++i) {
            FcBool isVariable = FcFalse;  // as a whole; its instances stand in the list besides
            if (FcPatternGetBool(faces->fonts[i], FC_VARIABLE, 0, &isVariable) == FcResultMatch && isVariable)
                continue;
            FcCharSet* characters = nullptr;
            if (FcPatternGetCharSet(faces->fonts[i], FC_CHARSET, 0, &characters) != FcResultMatch ||
                !FcCharSetHasChar(characters, character))
                continue;
            // What the list says may not be true any more.
            auto font = Open_Match(faces->fonts[i], request, nullptr);
            if (font && font->Has_Character(character)) return font;
        }
        return nullptr;
    }

    std::unique_ptr<FreeTypeFont> Open_Match(FcPattern* match, HostFontRequest const& request,
                                             SubstituteFinder substitutes)
    {
        FcChar8* file = nullptr;
        if (!match || FcPatternGetString(match, FC_FILE, 0, &file) != FcResultMatch) return nullptr;
        FontSynthesis const synthesis{request.bold && Lacks_Bold(match),
                                      request.italic && Lacks_Italic(match)};
        return Open_File(reinterpret_cast<char const*>(file), Get_Integer(match, FC_INDEX, 0),
                         request.pixelSize, synthesis, std::move(substitutes));
    }

    std::unique_ptr<FreeTypeFont> Open_File(char const* file, int index, double size, FontSynthesis synthesis,
                                            SubstituteFinder substitutes)
    {
        double const pixelSize = std::clamp(size, 1.0, HostFontSizeLimit);
        FT_Face opened = nullptr;
        FT_Error const error = FT_New_Face(library_.get(), file, index, &opened);
        if (error == FT_Err_Out_Of_Memory) throw std::bad_alloc();
        if (error != 0) return nullptr;
        FontFace face{opened};
        auto const height = static_cast<FT_F26Dot6>(std::lround(pixelSize * FixedOne));
        if (!FT_IS_SCALABLE(opened) || opened->units_per_EM == 0) return nullptr;
        if (FT_Set_Char_Size(opened, 0, height, 72, 72) != 0) return nullptr;
        return std::make_unique<FreeTypeFont>(library_, std::move(face), pixelSize, synthesis,
                                              std::move(substitutes));
    }

    FontConfig config_;
    FontLibrary library_;
    std::array<FontSet, 4> substitutes_;  // by style, once they were looked for
};

class FontConfigFonts : public HostFonts {
public:
    FontConfigFonts(FontConfig config, FontLibrary library)
        : finder_(std::make_shared<FontFinder>(std::move(config), std::move(library)))
    {
    }

    std::unique_ptr<HostFont> Open(HostFontRequest const& request) override { return finder_->Open(request); }

    std::unique_ptr<HostFont> Open(HostFontFace const& face, double pixelSize, bool bold,
                                   bool italic) override
    {
        return finder_->Open(face, {face.family.c_str(), pixelSize, bold, italic});
    }

    std::span<HostFontFace const> Faces() override
    {
        if (!isListed_) List_Faces();
        return faces_;
    }

private:
    void List_Faces()
    {
        isListed_ = true;
        FontPattern const all{FcPatternCreate()};
        FontObjects const objects{FcObjectSetBuild(FC_FAMILY, FC_FAMILYLANG, FC_STYLE, FC_STYLELANG, FC_FILE,
                                                   FC_INDEX, FC_FONTFORMAT, FC_VARIABLE, FC_WIDTH, FC_SLANT,
                                                   FC_WEIGHT, nullptr)};
        if (!all || !objects) return;
        FcPatternAddBool(all.get(), FC_OUTLINE, FcTrue);
        FontSet const found{FcFontList(finder_->Config(), all.get(), objects.get())};
        if (!found) return;
        std::vector<ListedFace> listed;
        for (int i = 0; i < found->nfont; ++i) {
            ListedFace face = Describe(found->fonts[i]);
            // A variable face is listed as its instances, which fontconfig gives besides.
            if (!face.isVariable && !face.face.file.empty() && !face.face.family.empty())
                listed.push_back(std::move(face));
        }
        std::ranges::sort(listed, Stands_Before);
        listed.erase(std::unique(listed.begin(), listed.end(), Is_Same_Style), listed.end());
        for (ListedFace& face : listed)
            faces_.push_back(std::move(face.face));
    }

    std::shared_ptr<FontFinder> finder_;
    std::vector<HostFontFace> faces_;
    bool isListed_ = false;
};

}  // namespace

std::unique_ptr<HostFonts> Make_Host_Fonts()
{
    // A configuration of our own: the current one of the process may be in use by the application, which
    // leaves nobody to say when it can go.
    FontConfig config{FcInitLoadConfigAndFonts()};
    FT_Library opened = nullptr;
    if (!config || FT_Init_FreeType(&opened) != 0) return nullptr;
    return std::make_unique<FontConfigFonts>(std::move(config), FontLibrary{opened, FT_Done_FreeType});
}
