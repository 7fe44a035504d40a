// The environment: the one record of the process that holds what the library treats as global, the style with
// its pens and metrics, and the calls that bring the library up and down. Main thread only.
#pragma once

#include "ZVBase.h"
#include "ZVEvent.h"
#include "ZVList.h"
#include "ZVRect.h"
#include "ZVTags.h"

/// The six standard gadget widths in pixels, largest first.
struct ZVGadgetSizes {
    int16_t size6;
    int16_t size5;
    int16_t size4;
    int16_t size3;
    int16_t size2;
    int16_t size1;
};

inline constexpr unsigned long ZV_PEN_FIRST = 0xFF000001;  ///< background of palettes
inline constexpr unsigned long ZV_PEN_LAST = 0xFF000011;
inline constexpr int ZV_PEN_COUNT = 17;

/// Pen ids by their use.
enum ZVPen : uint32_t {
    ZV_PEN_PALETTE = 0xFF000001,     ///< background of palettes
    ZV_PEN_ROOT = 0xFF000002,        ///< background of windows of kinds 5 and 7
    ZV_PEN_DARK_EDGE = 0xFF000003,   ///< dark edge of sunken frames and outlines
    ZV_PEN_LIGHT_EDGE = 0xFF000004,  ///< light edge of sunken frames
    ZV_PEN_SHADOW = 0xFF000005,      ///< shadow of a border
    ZV_PEN_MARKED = 0xFF000006,      ///< marked or selected entries
    ZV_PEN_TEXT = 0xFF000007,        ///< text of gadgets
    ZV_PEN_TAB_BAR = 0xFF000008,     ///< tab bar area
    ZV_PEN_FACE = 0xFF00000A,        ///< face of gadgets
    ZV_PEN_TEXT_FIELD = 0xFF00000C,  ///< background of text fields
    ZV_PEN_FACE_ON = 0xFF000011      ///< face of gadgets that are on
};

/// Metrics and pens, in pixels where nothing else is said. Allocated by InitZV, kept for the environment's
/// life.
struct ZVStyle {
    int16_t gapWide;              ///< spacing of the wide gap tags, 4
    int16_t gapNormal;            ///< spacing between items, 2
    int16_t gapExtra;             ///< spacing of the extra gap tags, 12
    int16_t groupGap;             ///< spacing between groups, 12
    int16_t groupMargin;          ///< 12
    int16_t paletteMargin;        ///< 12
    int16_t pseudoGroupGap;       ///< groupGap for palettes in pseudo-windows, 12
    int16_t paletteGap;           ///< spacing between a palette and its neighbour, 2
    int16_t pseudoGroupMargin;    ///< 0
    int16_t pseudoPaletteMargin;  ///< 0
    int16_t screenMargin;         ///< taken twice from the monitor width for the gadget sizes, 0
    int16_t tabHeight;            ///< height of the tab bar of a floater, by monitor
    ZVGadgetSizes gadgetSizes;    ///< by monitor
    int16_t gadgetHeight;         ///< by font
    uint32_t pens[ZV_PEN_COUNT];  ///< 0xRRGGBB, by pen id from ZV_PEN_FIRST
    int32_t flat3D;               ///< draw frames and window content colours from the pens, 1
    int32_t fontSize;             ///< points, by monitor
    int32_t smallFontSize;        ///< points, by monitor
};

/// Ring of mouse records, kept by the native input layer.
struct ZVMouseQueue {
    void* read;
    void* write;
    void* end;
    void* base;
};

/// Left, top, width and height of a monitor.
struct ZVMonitor {
    int32_t left, top, width, height;
};

/// A point of the screen.
struct ZVScreenPoint {
    int32_t x, y;
};

struct ZVCriticalRegion;

/// The record. Application code reads it; fields belong to the call families named beside them.
struct ZVEnvironment {
    List menus;                         ///< top level of the menu tree
    List windows;                       ///< all windows, the root window first
    List jobs;                          ///< background jobs
    List threads;                       ///< worker tasks of the pool
    List icons;                         ///< loaded icons
    TagItem* initTags;                  ///< flat clone of the tags of InitZV
    ZVKeySection* keySection;           ///< of ZV_INIT_KEY_SECTION
    char* prefsFile;                    ///< name of the window preferences file, or null
    List windowPrefs;                   ///< see ZVWindowPrefs.h
    int32_t screenWidth, screenHeight;  ///< size of the display
    char* homeDir;                      ///< file spec with a closing separator
    char* userDataDir;                  ///< file spec with a closing separator
    char* scratchDir;                   ///< file spec of SetScratchDirZV, or null
    char* scratchPath;  ///< file spec of the process's own directory for scratch files, or null before its
                        ///< first use
    long scratchClaim;  ///< its hold on that directory
    ZVStringTable* stringTable;
    List stringFiles;  ///< names of the string files read so far
    void (*callback)(ZVEvent*);
    ZVWindow* rootWindow;       ///< the window of kind 5 or 7, or null
    ZVPalette* currentPalette;  ///< what calls without a palette argument act on
    ZVGroup* currentGroup;      ///< under construction
    ZVMenu* currentMenu;        ///< under construction
    ZVStyle* style;
    ZVPalette* buildingPalette;  ///< under construction
    ZVPalette* mousePalette;     ///< palette of the item under the mouse
    int32_t mouseX, mouseY, deltaX, deltaY;
    uint32_t modifiers;
    uint32_t ticks;  ///< ticks since start
    int16_t cursor;
    uint32_t error;       ///< see ZVMemory.h
    char* errorString;    ///< see GetErrorStringZV
    char* appTitle;       ///< of ZV_INIT_APP_TITLE; null when empty or absent
    char scratch1[1024];  ///< text work buffer: one use at a time, not reentrant
    char scratch2[1024];  ///< second one, for paths
    ZVItem* trackedItem;
    ZVItem* tickItem;
    double fracTable[256];  ///< i / 255.0
    int32_t infiniteMouse, trackMouse;
    int32_t hasRootTag;
    int32_t eraseOnDestroy;
    int32_t modalResult, requestResult;
    int32_t modalDepth, guiLevel;
    int32_t jobsBlocked;  ///< number of reasons to hold jobs back
    int32_t busyLevel;
    int32_t exitRequested;  ///< ExitZV was called
    int32_t isStarting;     ///< InitZV has not come to the library's texts yet: messages go to standard error
    List formats;           ///< format modules; the order decides which one claims a file
    ZVTablet tablet;        ///< given to events by pointer
    ZVPalette* modalPalette;
    ZVPalette* activeDocument;
    ZVPalette* activePalette;
    ZVPalette* pendingPalette;
    ZVPalette* displayedPalette;  ///< laid out, on its way into a window; null at other times
    uint32_t paletteCount;        ///< palettes made so far
    ZVItem* scheduledFocusItem;   ///< of ScheduleItemForFocusZV, or null
    int32_t hasMovies;            ///< the movie layer is there
    int32_t processors;           ///< number of processors
    int32_t monitorCount;         ///< 1 to 4
    ZVMonitor monitors[4];
    uint32_t errorMode;  ///< see SetErrorModeZV
    int32_t toolTipsOn;
    uint32_t residentLimit;  ///< memory reserve in bytes that bitmap allocation keeps free; 0 for none
    int32_t lastPseudoWindowId, lastPaletteId;
    ZVMouseQueue mouseQueue;
    ZVCriticalRegion* region;  ///< library-wide
    int32_t scriptCode;
    ZVItem* focusedTextItem;
    ZVItem* focusedListItem;
    ZVWindow* frontWindow;
    ZVItem* lastClickItem;
    uint32_t lastClickTime;
    ZVScreenPoint lastClickPoint;
    ZVItem* trackingItem;
    uint32_t buttonState;
    int32_t dragDistance;
    ZVSysWindow* rootSysWindow;
    void* savedPort;
    void* savedResFile;
    int32_t eventsSuspended;
    int32_t thirdPartyDialog;  ///< a dialog of someone else's gets the events
    uint32_t systemVersion;
    uint32_t physicalMemory;  ///< bytes; 0xC9999999 on a machine of 4 GiB or more
    void* tickTimer;
    void* jobTimer;
    unsigned long clipCounter;             ///< ClipID of the clip allocated last
    uint16_t clipsByScratchNumber[10000];  ///< living clips, by the four digits of ClipID in scratch names
    long seqRateSet;                       ///< overrides of the sequence dialog, filled by applications
    double seqRate;
    long seqAspectSet;
    double seqAspect;
    long seqFieldsSet;
    uint8_t seqFields;
    uint8_t timeUnits;               ///< how applications show frame numbers
    int32_t pointerX, pointerY;      ///< the mouse on the screen; stays while it moves without end
    int32_t movedToX, movedToY;      ///< where the last mouse event left it, from which movements count
    uint32_t capsLockState;          ///< ZV_MOD_CAPS_LOCK as the last key event of its own told it
    int32_t busySteps, busyFrame;    ///< of the busy cursor: timer steps of this frame, and its colour cursor
    int32_t missingMenus;            ///< menus opened inside others that there was no memory for
    int32_t menuIdBase;              ///< of SetBaseUniqueMenuID; 0 before
    int32_t nextMenuId, nextItemId;  ///< where the search for free menu and item ids goes on
};

extern ZV_API ZVEnvironment* ZVEnv;    ///< the environment, null before InitZV and after CleanUpZV
extern ZV_API ZVEnvironment* ZVEnvOS;  ///< the same record

/// Tags of InitZV. Data is a long where nothing else is said.
enum ZVInitTag : unsigned long {
    ZV_INIT_ROOT_WINDOW = 2560,  ///< put a root window behind all palettes; data ignored
    ZV_INIT_KEY_SECTION = 2561,  ///< ZVKeySection*: read the key file into it
    ZV_INIT_FONT_SIZE = 2562,    ///< points; by monitor when absent
    ZV_INIT_APP_NAME = 2563,     ///< char const*; read by the class layer
    ZV_INIT_APP_TITLE = 2564,    ///< char const*; stored in appTitle
    ZV_INIT_HOME_DIR = 2565,     ///< char const*: directory as spec or native path, closing separator or not
    ZV_INIT_NO_ROOT_WINDOW = 2567,  ///< the root window is the application's; data ignored
    ZV_INIT_MONITOR_COUNT = 2568,   ///< 1 to 4; 0 asks the display
    ZV_INIT_MONITOR_1 = 2569,  ///< pointer to four longs: left, top, width, height; the display's when absent
    ZV_INIT_MONITOR_2 = 2570,
    ZV_INIT_MONITOR_3 = 2571,
    ZV_INIT_MONITOR_4 = 2572,
    ZV_INIT_MONITOR = 2573,  ///< 0 to 3: monitor whose width sets the metrics; the narrowest when absent
    ZV_INIT_NO_GUI = 2575    ///< run without the interface: no display is opened, whatever other tags say
};

/// Brings the library up. A second call returns the environment that is there and changes nothing.
/// The directory of KL_APP_DATA_DIR, when that variable is set, holds "Brinmoor User Data", which becomes the
/// user data directory; otherwise the user's Documents folder does.
/// @param callback   application-level event callback, or null
/// @param prefsName  name of the window preferences file in the user data directory, or null
/// @param keyFile    key file relative to the home directory; counts only with ZV_INIT_KEY_SECTION
/// @param reserved   not read
/// @return  the environment; null when memory runs out or no interface can be had, with everything released,
///          GetErrorZV then 1 and GetErrorStringZV telling why, which is also said once on standard error
ZV_API ZVEnvironment* InitZV(void (*callback)(ZVEvent*), char const* prefsName, char const* keyFile,
                             void* reserved, TagItem* tags);
template <ZVTagKey Key, ZVTagValue... Rest>
ZVEnvironment* InitZV(void (*callback)(ZVEvent*), char const* prefsName, char const* keyFile, void* reserved,
                      Key first, Rest... rest)
{
    return InitZV(callback, prefsName, keyFile, reserved, Tag_Array(first, rest...).data());
}

/// Ends everything and frees the record. Free clips and bitmaps first.
ZV_API void CleanUpZV();

/// Takes the window preferences down in memory and closes all windows, so that an application can restart its
/// interface: its palettes then open where they were. Writing them to a file is the application's part, by
/// SaveWindowPositionsZV before this call or CleanUpZV.
ZV_API void CleanUpWindowsZV();

/// Asks the event loop to end.
ZV_API void ExitZV();

ZV_API ZVEnvironment* GetEnvironmentZV();

/// Stores the colour of a pen; a number outside the pen range is ignored. A pen as the colour stands for its
/// colour of now. The ZVFloatRGB form scales by 255, truncates and keeps the low byte; below 0 is 0.
ZV_API void SetStylePenZV(unsigned long pen, unsigned long colour);
ZV_API void SetStylePenZV(unsigned long pen, struct ZVFloatRGB const* colour);
template <std::integral Colour> void SetStylePenZV(unsigned long pen, Colour colour)
{
    SetStylePenZV(pen, static_cast<unsigned long>(colour));
}

/// The colour stored for a pen id; any other value unchanged.
ZV_API unsigned long GetColorZV(unsigned long colour);

/// Gives the pens the colours of a theme, and shows them in all open windows: 1 is the light theme, any other
/// number the dark one. Pens that a theme has no colour for stay as they are.
ZV_API void SetPenPresetZV(long which);

/// Converts a colour from display gamma 2.2 to 1.8, in place; the top byte becomes 0.
ZV_API void GammaCorrect(unsigned long* colour);

/// Works out the six widths for `columns` columns on a monitor `width` wide (at most 1600 counts). Without a
/// column nothing is stored.
ZV_API void CalcGadgetSizes(ZVGadgetSizes* sizes, long width, long columns, long gap);

/// Applies the present pens to all open windows.
ZV_API void RefreshUIZV();

/// No effect: window stacking belongs to the window manager.
ZV_API void SetAlwaysOnTopZV(long on);

/// The directories that InitZV stores, worked out without an environment, as specs with a closing separator.
/// Free them with FreeFileSpecZV. A home directory that cannot be had is the root, "Root:\". A directory for
/// temporary files that cannot be had is an assertion failure.
ZV_API char* FindHomeDirZV();
ZV_API char* FindUserDataDirZV();
ZV_API char* FindTempDirZV();
