// Format modules: what reads and writes one kind of file. Every module is a ZVFormatDesc in the environment's
// list; the first one in the list that claims a file has it. Register modules once after InitZV, on the main
// thread, before the first clip. Matching names uses a buffer of the environment: one thread at a time.
#pragma once

#include "ZVBitmap.h"
#include "ZVList.h"
#include "ZVTags.h"

/// Options of a module, opaque to the library. A copy that the library makes is one block with Data behind
/// the header.
struct ZVFormatParams {
    void* Data;
    long Size;  ///< bytes at Data
};

/// What Data holds for pictures, where a module has nothing but a quality to choose.
struct ZVPictureOptions {
    int32_t Reserved;  ///< 0
    int32_t Quality;   ///< of JPEG files, from 1 to 100
};

/// What Data holds for PICT and PICS. Without a block, pictures are written with the codec 'raw '.
#pragma pack(push, 2)
struct ZVPICTOptions {
    uint32_t Codec;      ///< four-character code: 'raw ' and 'rle ' and 'png ', which lose nothing, or 'jpeg'
    uint32_t Component;  ///< 0; not read
    uint16_t Depth;      ///< 0; not read
    uint32_t Quality;    ///< of 'jpeg', from 0 to 1023
};
#pragma pack(pop)
static_assert(sizeof(ZVPICTOptions) == 14);

/// Property bits; others are passed through to applications.
enum ZVFormatProperty : long {
    ZV_FORMAT_ALPHA = 0x1,       ///< stores an alpha channel
    ZV_FORMAT_MULTIFRAME = 0x2,  ///< one file holds many frames; without it a clip is an image sequence
    ZV_FORMAT_READ = 0x4,
    ZV_FORMAT_WRITE = 0x8,
    ZV_FORMAT_SELF_SCALE = 0x10,    ///< GetFrame places and scales into a bitmap of the clip's type
    ZV_FORMAT_DEFAULT = 0x40,       ///< stands in for a clip without format
    ZV_FORMAT_HIDDEN = 0x80,        ///< not offered in file dialogs
    ZV_FORMAT_AUDIO_WRITE = 0x200,  ///< can write sound
    ZV_FORMAT_ANY_TYPE = 0x1000     ///< AddFrame takes a bitmap of any pixel type
};

/// The record that follows a frame through AddFrameAsync. The module hands it to the completion function
/// once, from any thread and whatever AddFrameAsync answers, and touches it no more. It has read the clip's
/// FileName and the region by the time AddFrameAsync returns; the bitmap stays until the completion.
struct ZVCompletionParams {
    ZVBitmap* Bitmap;  ///< converted copy of the frame, owned by this record, or null
    void (*Completion)(void*, unsigned long);
    void* Data;
    unsigned long Argument;
    long Done;        ///< becomes 1 when the module has finished with the frame; atomic access only
    long AutoDelete;  ///< 1: whoever completes the frame deletes the record; 0: the writer waits for it
};

using ZVFrameCompletion = void (*)(void* record, unsigned long status);

/// File type, then creator; ZV_BLANK_CODE in either place matches anything.
struct ZVTypePair {
    uint32_t type;
    uint32_t creator;
};

/// One module. Allocated zeroed with AllocMemZV by who registers it, then owned by the environment's list,
/// which also owns its four arrays.
///
/// Contract of the entries. GetImportProperties is always there, and the built-in modules have Open, Close,
/// Create, BeginIO, EndIO, GetFrame, CanLoad and GetExportProperties too. An entry that is null means that
/// the module does not offer the feature.
///
/// Open is called with FileName set, FileFrameRate -1.0 or what the caller passed, PixelAspect 0. It must set
/// Width, Height, BitDepth, RawFrames and Media, should set AlphaType to 2 when the file holds alpha, and may
/// set FileFrameRate, PixelAspect, FieldOrder, AudioFormat and Layers. Close is called once for each
/// successful Open or Create. GetFrame gets a frame number within the file that FileName names now, and
/// unless the module has ZV_FORMAT_SELF_SCALE a bitmap of exactly the clip's size and type with a zero
/// offset. AddFrame must not keep the bitmap. CanLoad is called for every module in turn: it must be cheap
/// and change nothing. Cleanup runs once, before the descriptor goes.
struct ZVFormatDesc {
    ::Node Node;       ///< its name is the display name
    ZVPlugin* Plugin;  ///< the code module that holds the entries, owned; null for a built-in module
    ZVFormatParams* DefaultVideoParams;  ///< options used last with this format, or null
    ZVFormatParams* DefaultAudioParams;
    long Reserved1;
    long Reserved2;
    long MaxWidth;
    long MaxHeight;
    uint32_t FileType;     ///< given to created files
    uint32_t FileCreator;  ///< given to created files
    long ReadTypeCount;
    ZVTypePair* ReadTypes;
    long FilterTypeCount;
    ZVTypePair* FilterTypes;  ///< pairs of files that a plug-in has to look into before it claims them
    long ReadExtensionCount;
    uint32_t* ReadExtensions;  ///< extension codes; the first is that of created names
    long FilterExtensionCount;
    uint32_t* FilterExtensions;  ///< the same by extension
    long ImageModes;             ///< of a Photoshop plug-in: bit n for mode n; else 0
    long CachedProperties;       ///< of a loaded module; the global word of a Photoshop plug-in
    long PluginProperties;       ///< property bits that the resources of a Photoshop plug-in tell; else 0
    void* ModuleInfo;            ///< of a loaded module: a ZVModuleInfo

    long (*Open)(ZVClip*, TagItem*);
    void (*Close)(ZVClip*);
    long (*Create)(ZVClip*, unsigned long createFlags);
    long (*BeginIO)(ZVClip*, long writing);
    long (*EndIO)(ZVClip*, long writing);
    long (*GetFrame)(ZVClip*, ZVBitmap*, long frame, ZVRectT<long>* sourceOffset, long width, long height,
                     long layer, void* data, long dataSize);
    long (*AddFrame)(ZVClip*, ZVBitmap*, long frame, ZVRectT<long>* region);
    /// Non-zero when the caller shall read `*size` bytes (0: the whole file) into `*data` or a buffer of its
    /// own.
    long (*GetFrameDataReference)(ZVClip*, long frame, long layer, long long* offset, long* size,
                                  void** data);
    long (*GetGBuffer)(ZVClip*, long frame, unsigned long mask, ZVGBufferArray*, long layer, void* data,
                       long dataSize);
    void (*Options)(ZVClip*, bool silent);
    void (*AudioOptions)(ZVClip*, bool silent);
    void (*About)(ZVFormatDesc*);
    long (*CanLoad)(ZVFormatDesc*, char const* spec, unsigned long creator, unsigned long type,
                    unsigned long extension);
    long (*GetImportProperties)(ZVFormatDesc*);
    long (*GetExportProperties)(ZVFormatDesc*, ZVClip*);
    long (*GetFrameData)(ZVClip*, long frame, unsigned long what, void* buffer, long size);
    void (*Cleanup)(ZVFormatDesc*);
    long (*GetAudio)(ZVClip*, void* samples, unsigned long first, unsigned long count);
    long (*AddAudio)(ZVClip*, void* samples, unsigned long count);
    void (*ConvertEndianOptions)(ZVClip*);
    unsigned long (*GetCodecFcc)(ZVClip*);
    long (*AddFrameAsync)(ZVClip*, ZVBitmap*, long frame, ZVRectT<long>* region, ZVFrameCompletion,
                          ZVCompletionParams*, long reserved);
};

/// Where registration may show its progress; DrawInfo null for no display. A null pointer to it is allowed
/// too.
struct ZVScanDesc {
    ZVDrawInfo* DrawInfo;
    long X;
    long Y;
    long Width;
    long Height;
};

/// An entry of a table that the caller owns; a null Value ends the table.
struct ZVFileTypeDescriptor {
    void* Value;
    char const* Extension;  ///< at least three lower-case characters
    uint32_t Type;
};

/// Registers the built-in modules.
ZV_API void InitFormatModulesZV(ZVScanDesc* scan);

/// The same, and the modules of the directory Plugins in the home directory with all that lies below it. They
/// come behind the built-in ones and stay unloaded until a clip needs them; see ZVModule.h, and
/// ZVFormatRecord.h for Photoshop format plug-ins.
ZV_API void InitAllFormatModulesZV(ZVScanDesc* scan);

/// Registers those modules alone. A file that is none, or whose code cannot be had, is passed over.
/// @return  1; 0 without an environment
ZV_API long Add_Plugin_Formats(ZVScanDesc* scan);

/// Registers the modules that are installed with the library, in "zvlib/Plugins" beside it: Pictures, where
/// it is installed. Neither of the first two calls does, since what stands behind these modules takes time to
/// load.
/// @return  1; 0 without an environment or such a directory
ZV_API long Add_Library_Formats(ZVScanDesc* scan);

/// Registers the movie module, as two entries: movies, and movies that are prepared for streaming. Neither of
/// the calls above does. 1, or 0 without a movie layer (`hasMovies`) and when memory runs out.
///
/// A missing "data\QuickTimeCodecs.txt" is created in the home directory. It lists codecs by their four
/// characters: up to the line "QuickTime 10-bit codecs" those of 16 bits a channel, behind it those of 10.
ZV_API long Add_QuickTime_Format(ZVScanDesc* scan);

/// Gives the options of a movie clip the settings of its streaming. Each block that there is, VideoParams and
/// AudioParams, is replaced by one with the settings behind it; a block that has some keeps them, and stays,
/// unless the user chooses others.
///
/// The settings are an atom container: big-endian atoms of a size, a four-character type and an id, the inner
/// ones `pksz` with the largest number of bytes of a packet, which is fixed, and where it is not the least
/// `pkms` with the most milliseconds of sound in a packet. A video block then has at 132 a long other than
/// 0, at 136 the bytes of the settings, and the settings from 144 on; an audio block has them at 44, 48
/// and 56.
/// @param clip    of a movie format, with at least one of the blocks
/// @param silent  takes the usual settings without asking, as is done without an interface too
/// @return  1; 0 without a block, when the user gives up, and without memory (error 1), the blocks then being
///          as they were
ZV_API long Quicktime_StreamingOptions(ZVClip* clip, bool silent);

/// The module that claims a file, or null with error 15.
ZV_API ZVFormatDesc* GetFormatModuleZV(char const* spec);

/// The first entry that matches the file's type or its three-character extension, or null.
ZV_API ZVFileTypeDescriptor* FindFileTypeDescZV(ZVFileTypeDescriptor* table, char const* spec);

/// Property bits; 0 for null. With a clip the module may answer for that clip.
ZV_API long GetImportPropertiesZV(ZVFormatDesc* desc);
ZV_API long GetExportPropertiesZV(ZVClip* clip);
ZV_API long GetExportPropertiesZV(ZVFormatDesc* desc);

/// Gives a clip another format (null for none) and drops its options; with `fetch` the format's default
/// options are worked out when it has none yet.
/// @return  0 for a null clip, else 1
ZV_API long ChangeClipFormatParamsZV(ZVClip* clip, ZVFormatDesc* desc, bool fetch);

ZV_API void ClipOptionsZV(ZVClip* clip);       ///< Runs the module's dialog for video options.
ZV_API void ClipAudioOptionsZV(ZVClip* clip);  ///< Runs the module's dialog for audio options.

/// Converts stored options after a change of byte order; options that nobody can convert are dropped.
ZV_API void ClipConvertEndianOptionsZV(ZVClip* clip);

ZV_API unsigned long GetCodecFccZV(ZVClip* clip);  ///< Codec code, 0 when there is none.

ZV_API void Free_Format_Mod(ZVFormatDesc* desc);  ///< Releases a descriptor that is not in the list.
