// The inner functions and the seams to the platform, for ports, loadable modules and the library's own tests.
// They are exported, without a promise of stability.
#pragma once

#include "ZVLib.h"

#include <atomic>

// ---- foundation -------------------------------------------------------------------------------------------

/// Shows "Assertion Failure in file "%s", line %d." and throws ZVAssertFail.
[[noreturn]] ZV_API void Assert_Fail(char const* file, long line);

/// AllocMemZV at an alignment, a power of two; null when memory runs out and the new-handler gives up.
/// Released by FreeMemZV.
ZV_API void* Alloc_Aligned(unsigned long size, unsigned long alignment);

/// Sorts the stretch `left` to `right` of the table by id.
ZV_API void SortStringTable(ZVStringTable* table, long left, long right);

/// Shows a text already formatted; null and empty button texts are those of strings 100 and 101. 1 for the
/// first button.
ZV_API long User_Req(long unused, long twoButtons, char const* text, char const* first, char const* second);

/// Whether there is an interface to ask the user by, and the caller is on its thread.
ZV_API bool Has_Interface();

/// The callbacks of requesters: buttons and keys close them, with the answer in `requestResult`.
ZV_API void Req_Handler(ZVEvent* event);
ZV_API void scrollTextReqHandler(ZVEvent* event);  ///< Of UserScrollMessageZV, whose bar moves its text.

/// The function of a gadget that takes room and shows nothing. Always 1.
ZV_API long Dummy_Gad(ZVCustomEvent* event);

/// The spec of a file below the home directory, or when it is not there below the library's data directory;
/// the first of them when it is in neither. Free it with FreeFileSpecZV.
ZV_API char* Find_Library_File(char const* name);

/// The spec of the directory of the modules that are installed with the library, null when there is none.
/// Free it with FreeFileSpecZV.
ZV_API char* Find_Library_Plugins();

/// Set `homeDir` and `userDataDir`.
ZV_API void SetHomeDir();
ZV_API void SetUserDataDir();

// ---- the platform -----------------------------------------------------------------------------------------

/// Brings the platform up: memory sizes, display, metrics. 0 on failure, with the error text set.
ZV_API long Init_OS(long makeRootWindow);
ZV_API void Cleanup_OS();

ZV_API long Init_MouseQueue();  ///< 1, or 0 when memory runs out.
ZV_API void Free_MouseQueue();

/// The display's monitors, at most four, the main one first; the rectangles beyond the count become empty.
ZV_API void GetMonitorInfoZV(long* count, ZVRectT<long>* first, ZVRectT<long>* second, ZVRectT<long>* third,
                             ZVRectT<long>* fourth);

/// Native path of the directory that holds the executable (of the bundle's folder, when it lies in one), of
/// the one that holds the library, of the library's installed data, of the user and of temporary files, with
/// a closing slash. False when it cannot be had or does not fit.
ZV_API bool OS_Get_Program_Dir(char* path, unsigned long size);
ZV_API bool OS_Get_Library_Dir(char* path, unsigned long size);
ZV_API bool OS_Get_Library_Data_Dir(char* path, unsigned long size);
ZV_API bool OS_Get_User_Dir(char* path, unsigned long size);
ZV_API bool OS_Get_Temp_Dir(char* path, unsigned long size);

/// Starts and ends the movie layer. False when it is not there.
ZV_API bool OS_Enter_Movies();
ZV_API void OS_Exit_Movies();

/// Memory of the process and the machine, in bytes.
ZV_API uint64_t OS_Free_Memory();
ZV_API uint64_t OS_Total_Memory();

/// Sets `physicalMemory` and `residentLimit` for a machine with so many bytes.
ZV_API void Set_Memory_Limits(uint64_t machineBytes);

/// Locks pages when RLIMIT_MEMLOCK leaves room for them. 1 locked, 0 beyond the limit, -1 failed inside it.
/// Unlocking a block that is not locked succeeds.
ZV_API long OS_Lock_Pages(void* block, unsigned long size);
ZV_API bool OS_Unlock_Pages(void* block, unsigned long size);

/// Asks the kernel to back a block with huge pages, as far as its alignment allows.
ZV_API void OS_Advise_Huge_Pages(void* block, unsigned long size);

/// Bytes of the last-level cache that one processor reaches; 0 when unknown.
ZV_API unsigned long OS_Cache_Size();

/// Measures of a text in the interface font at the style's font size, in whole pixels, as it is drawn. A size
/// below 1 counts as 12, one above 1000 as 1000. Without any font a line is 1.2 and a character half of the
/// size.
ZV_API long Text_Width(char const* text);
ZV_API long Text_Height(char const* text);  ///< Ascent and descent of the font.

ZV_API void Delay(long ticks);  ///< Sleeps; a tick is 1/60 second.

ZV_API uint64_t OS_Microseconds();  ///< Since some moment; a clock that is never set.

/// Opens an address with the program that the desktop has for it. False when none could be started.
ZV_API bool OS_Open_URL(char const* url);

/// Code modules. The handle of a shared object, or of a bundle by the path of its folder; null when it cannot
/// be had, with the reason in OS_Module_Error. All its symbols are bound at once.
ZV_API void* OS_Open_Module(char const* path);
ZV_API void* OS_Open_Bundle(char const* path);
ZV_API void OS_Close_Module(void* module);
ZV_API ZVPluginProc OS_Find_Function(void* module, char const* symbol);  ///< Null when there is none.
ZV_API char const* OS_Module_Error();                                    ///< Of the last failure; never null.

/// The file seam. Results are 1 or 0 with the error number set; see ZVFileInfo.
ZV_API long File_Create(ZVFileInfo* file, char const* spec, ZVFilePermission permission, uint32_t type,
                        uint32_t creator, ZVFileFlags flags);
ZV_API long File_Open(ZVFileInfo* file, char const* spec, ZVFilePermission permission, ZVFileFlags flags);
/// The count goes in as wanted and comes out as got; the end of the file is a short count, not an error.
ZV_API long File_Read(ZVFileInfo* file, unsigned long* count, void* destination, ZVPollFunc poll,
                      long* pollResult);
ZV_API long File_Write(ZVFileInfo* file, unsigned long count, void const* source);
ZV_API void File_SetPos(ZVFileInfo* file, long mode, long offset);
ZV_API long File_GetPos(ZVFileInfo* file);
ZV_API int64_t File_GetLength(ZVFileInfo* file);  ///< Counts bytes still in a write buffer.
/// Makes a file longer; the new bytes are zeros and the position stays.
ZV_API long File_Extend(ZVFileInfo* file, int64_t length);
ZV_API long File_Truncate(ZVFileInfo* file, int64_t length);  ///< Cuts a file off; the position stays.
ZV_API int64_t File_GetModificationDate(ZVFileInfo* file);    ///< Seconds since 1 January 1970; 0 on failure.
ZV_API void File_Close(ZVFileInfo* file);

/// The native path of a spec or classic path. False without a volume part, for an unknown volume, and when it
/// does not fit; the buffer is then as it was.
ZV_API bool OS_Native_Path(char const* spec, char* path, unsigned long size);

/// Calls `visit` for each entry of a directory, in the order of their names and without "." and "..", until
/// it answers false. Names are written as in specs; a link to a directory counts as one.
/// @return  false when the directory cannot be read
ZV_API bool OS_Walk_Directory(char const* spec, bool (*visit)(char const* name, bool isDirectory, void* data),
                              void* data);

enum class OSEntryKind : uint8_t {
    File,
    Directory,
    Other  ///< no file to read: a pipe, a device, a link that leads nowhere
};

/// An entry of a directory. A link counts as what it leads to.
struct OSDirectoryEntry {
    char const* name;  ///< as in a spec
    OSEntryKind kind;
    bool isLink;
    uint32_t type;  ///< of a file, when codes are wanted
    uint32_t creator;
};

/// Calls `visit` for each entry of a directory, in alphabetical order without regard to case and without "."
/// and "..", until it answers false. The directory is read in one go, so `visit` may change it. Codes are
/// read by the task pool: whoever wants them is the one thread that may use it.
/// @return  false when the directory cannot be read
ZV_API bool OS_List_Directory(char const* spec, bool wantsCodes,
                              bool (*visit)(OSDirectoryEntry const&, void*), void* data);

/// An entry of a directory, for a browser. A link counts as what it leads to.
struct OSBrowsedEntry {
    char const* name;        ///< as in a spec; this and the next are valid during the visit
    char const* nativeName;  ///< as in the file system
    bool isDirectory;
    bool isHidden;  ///< begins with a dot, or is marked invisible
    uint32_t type;  ///< of a file
    uint32_t creator;
};
enum class OSBrowseResult : uint8_t { Done, Missing, Denied, Failed };

/// Calls `visit` for each directory and file of a directory, in the order of the file system, until it
/// answers false. Like the next call it may run on any thread, beside anything, and does not touch the error
/// number.
/// @param path  native
/// @return  Done also when `visit` ended it; Failed too when memory runs out
ZV_API OSBrowseResult OS_Browse_Directory(char const* path, bool (*visit)(OSBrowsedEntry const&, void*),
                                          void* data);

/// Bytes of a file, and the time of its last change in seconds since 1 January 1970. False when it is not
/// there.
/// @param path  native
ZV_API bool OS_Measure_File(char const* path, int64_t* size, int64_t* modified);

/// The letter below its accents, as the e of an é, by which names are sorted. 0 for an accent that is a
/// character of its own, and every other character itself. On any thread.
ZV_API char32_t OS_Character_Without_Accents(char32_t character);

/// What the file system tells of a file or directory; of what it leads to for a link.
struct OSFileStatus {
    int64_t size;
    int64_t modified;  ///< seconds since 1 January 1970
    uint64_t device;   ///< with `file`, the identity
    uint64_t file;
    uint16_t finderFlags;
};
ZV_API bool OS_Get_Status(char const* spec, OSFileStatus* status);  ///< False when it is not there.

/// The spec of what a link leads to in the end. False for a link that leads nowhere.
/// @param target  ZV_SPEC_SIZE bytes
ZV_API bool OS_Resolve_Link(char const* spec, char* target);

/// Calls `visit` with the name of each volume, the root file system first, until it answers false.
ZV_API void OS_List_Volumes(bool (*visit)(char const* name, void* data), void* data);

/// Native path of the user's desktop folder, with a closing slash.
ZV_API bool OS_Get_Desktop_Dir(char* path, unsigned long size);

// The sound seam. The player alone calls it; results are non-zero for success.
ZV_API void OSAudioSetFormat(ZVAudioFormat const* format);  ///< Of the next channel; null is ignored.
/// The function that fills output buffers with sound. It is called on a thread of the output's own.
ZV_API void OSAudioSetCallback(void (*fill)(void* out, unsigned long bytes));
ZV_API long
OSAudioInitPlayback();         ///< Opens a channel and makes its two buffers. 16-bit stereo alone is taken.
ZV_API long OSAudioPreload();  ///< Fills both buffers, on the caller's thread.
ZV_API long OSAudioPlay();     ///< Starts the output.
ZV_API void OSAudioStop();     ///< At once, and releases the channel: no call-back runs any more.
ZV_API void OSAudioSetVolume(double volume);  ///< Level of both channels, 1.0 full, in steps of 1/256.

ZV_API void OS_Beep();  ///< The terminal's bell, for a process that has one.

/// Takes a directory, made if missing, for this process alone, until it is released or the process ends.
/// @return  a claim above 0; 0 when another process has the directory, -1 when it cannot be made or opened
ZV_API long OS_Claim_Directory(char const* spec);
ZV_API void OS_Release_Directory(long claim);

struct OSThread;

/// Runs entry(argument) on a new thread. Null when there is none to be had.
ZV_API OSThread* OS_Start_Thread(void (*entry)(void*), void* argument);

/// Waits until the thread has ended, and releases the handle.
ZV_API void OS_Join_Thread(OSThread* thread);

/// Ends the thread where it stands, without unwinding, and releases the handle. When this returns the thread
/// executes no further instruction of the program. Not on the thread itself.
ZV_API void OS_Terminate_Thread(OSThread* thread);

/// Gives the thread a share of the processor of `weight` beside those of 100, as far as the user's limits
/// allow; a thread that has ended has none. False on any other failure.
ZV_API bool OS_Set_Thread_Weight(OSThread* thread, long weight);

/// Waits until the word is no longer `value`, at most so many milliseconds (below 0 without limit). It can
/// return early. A thread that is terminated while it waits leaves nothing behind in the word.
/// @return  false when the time is up
ZV_API bool OS_Wait_On_Word(std::atomic<uint32_t>& word, uint32_t value, long milliseconds);

/// Wakes one waiting thread, or all of them. The word itself is not touched and may be gone.
ZV_API void OS_Wake_Word(std::atomic<uint32_t>& word, bool all);

/// What ZVCPUSupport tells.
struct OSProcessor {
    bool hasMMX, hasSSE, hasSSE2, has3DNow, hasHyperThreading, hasVE;
};
ZV_API OSProcessor OS_Inspect_Processor();
ZV_API long OS_Processor_Count();  ///< Processors that this process may run on; at least 1.

ZV_API long OS_Events_Waiting();  ///< 1 if events wait in the desktop's queue.

// ---- threads ----------------------------------------------------------------------------------------------

ZV_API void Init_MP();          ///< Sets `processors`.
ZV_API void Init_Threads();     ///< Makes the pool: a worker for each processor, none with a single one.
ZV_API void Cleanup_Threads();  ///< Waits for the workers' tasks and ends the pool.

/// Starts a thread that runs entry(param). The info's task and queues are filled in; its semaphores stay as
/// they are. 1, or 0 with nothing made.
ZV_API long Create_Task(TaskInfoZV* info, long (*entry)(void*), void* param);

/// Waits without limit for the end of a task of Create_Task and releases its thread and queues. Null, and an
/// info without a task, are ignored.
ZV_API void Task_Wait(TaskInfoZV* info);

/// Ends a task of Create_Task by force; see OS_Terminate_Thread. Task_Wait remains to be called.
ZV_API void Terminate_Task(TaskInfoZV* info);

/// Sets the task's share of the processor; see OS_Set_Thread_Weight. False without a task too.
ZV_API bool Set_Task_Weight(TaskInfoZV* info, long weight);

/// True from the moment on when the function of the task has returned or the task was terminated.
ZV_API bool Task_Has_Ended(TaskInfoZV const* info);

/// One pass over the jobs: the routine of each that runs and is not held back is called for a slice.
ZV_API void HandleJobs();

/// Gives each running job that has not had a slice by this call since its start one slice, held back or not.
ZV_API void HandlePriorityJobs();

/// What the event loop's job timer calls: a pass when a job is busy, none is held back by `jobsBlocked` and
/// the loop is not nested.
ZV_API void AppJobTimerProcZV();
inline constexpr double JobTimerInterval = 0.001;  ///< Of that timer, in seconds.

/// Unlinks the jobs that are left; they stay their owners'.
ZV_API void Cleanup_Jobs();

/// The pens of the two themes, and the colours of one in the same order; see SetPenPresetZV.
inline constexpr uint32_t PresetPens[] = {0xFF000001, 0xFF000002, 0xFF00000A, 0xFF000011, 0xFF000003,
                                          0xFF000004, 0xFF000005, 0xFF00000B, 0xFF00000C, 0xFF00000E,
                                          0xFF000007, 0xFF000008, 0xFF000009, 0xFF000006};
ZV_API uint32_t const* Pen_Preset(long which);

// ---- interface --------------------------------------------------------------------------------------------

/// Sends an event down its chain of callbacks and answers its result. `arg` is the event's `item`: a palette,
/// item, path or number; of a key event the character in the high and the code in the low half.
ZV_API unsigned long Do_Event(unsigned short type, unsigned long arg);

/// Sends a custom event to the function of its item and what that answers as an event. The caller fills in
/// type, item, position and movement, and replyData of event 117.
ZV_API long Do_CustomEvent(ZVCustomEvent* event);

/// The activation events of a window that has become active.
ZV_API void Do_WindowActivation(ZVWindow* window);

/// What every mouse event begins with: the position is stored, the item under the mouse found, and custom
/// events tell items that the mouse came, went or moved. The point is on the screen.
ZV_API void Handle_MouseMove(long x, long y);

/// Presses, moves, ticks and releases of the custom gadget that holds the mouse; the point is on the screen.
/// @param clickCount    quick presses at this place so far, this one included
/// @param isContextual  the press asks for the contextual menu
/// @return  1 when a custom gadget took it
ZV_API long Custom_Gad_MouseDown(long x, long y, long clickCount, long isContextual);
ZV_API void Custom_Gad_SecondButton(long x, long y);  ///< Another button while one is held, for a slider.
ZV_API void Custom_Gad_MouseMove(long x, long y);
ZV_API void Custom_Gad_MouseUp(long x, long y);
ZV_API void Custom_Gad_Tick();

/// Makes `modifiers` of the mouse's bits and those of the keyboard, as every event of the desktop begins.
ZV_API void Rebuild_Modifiers(uint32_t keyboard);

ZV_API void AppTickTimerProcZV();                 ///< What the event loop's tick timer calls.
inline constexpr double TickTimerInterval = 0.1;  ///< Of that timer, in seconds.
ZV_API void Do_VBL();                             ///< One step of the busy cursor.
inline constexpr double BusyTimerInterval = 0.02;

ZV_API void Set_Cursor(unsigned short code);
ZV_API void Update_Cursor();  ///< The cursor for the present mouse position; no events.

/// A record of the mouse queue, copied as it is.
struct MacMouseEvent {
    uint32_t point;
    uint16_t state;
};
ZV_API void Add_MouseQueue(MacMouseEvent const* event);  ///< The oldest are overwritten when it is full.
ZV_API long Get_MouseQueue(MacMouseEvent* event);        ///< 0 when it is empty.

/// The next palette of a window's tree: first sub-palette, next sibling, next sibling of the nearest parent
/// that has one. Null starts the walk, and ends it.
ZV_API ZVPalette* Get_Next_Palette(ZVWindow* window, ZVPalette* palette);

/// Makes a palette the active one of a window, or with `activate` 0 only a further one in it. It moves there
/// from the window that it was in; a null window is a new one at that place of the screen.
/// @return  0 with error 1 when no window can be made, the palette staying where it was
ZV_API long NewActivePalette(ZVWindow* window, ZVPalette* palette, long x, long y, long activate);
ZV_API void Free_Palette(ZVPalette* palette);  ///< With all that it owns; unlinked from its list.

/// Unlinks a window's record and frees it with its name, hooks and tags. Free_SysWindow ends with it.
ZV_API void Free_Window(ZVWindow* window);

/// The system window that a palette is in, and where the palette's own window lies in that: 0, 0 unless it is
/// a pseudo-window. Null, with 0, 0, without a palette or window. Outputs may be null.
ZV_API ZVWindow* GetParentSysWindow(ZVPalette const* palette, long* dx, long* dy);

ZV_API void RenderTabs(ZVWindow* window);  ///< Draws the tab bars of a window's palettes again.
ZV_API void ClearTabs(ZVWindow* window);   ///< Nothing: a tab bar that is drawn covers what was there.

/// The pop-up list of a cycle: id and callback of its palette. There is one at a time.
inline constexpr unsigned short CyclePopUpPalette = 9000;
ZV_API void ListPaletteHandler(ZVEvent* event);

/// Position of the item's corner on the screen.
ZV_API long GadToScreenX(ZVItem const* item);
ZV_API long GadToScreenY(ZVItem const* item);

/// Follows the mouse with the outline of a palette's tab until the button comes up. Events go on meanwhile,
/// so that palettes and windows may be gone afterwards.
/// @param item    the tab bar that was pressed
/// @param x, y    the mouse in the palette's tab
/// @param target  in: the pseudo-window where the palette is at home, or null; it takes the palette wherever
///                the mouse is in it. Out: the window whose tab bar the mouse is on, or null for a free place
/// @param left, top  client position of a window of its own that has the tab there
/// @return  1, or 0 when the drag was broken off: a window was closed, or the application ends
ZV_API long Mac_Drag_Tab(ZVItem* item, ZVPalette* palette, long x, long y, ZVWindow** target, long* left,
                         long* top);

/// Window preferences: reads the file that InitZV was told, which has to be of a display of this size (1, or
/// 0 when there is none), and sets the size of the display in any case.
ZV_API long Load_WindowPrefs();

/// Takes down how things stand now. What there is no memory for is dropped, without an error.
ZV_API void Snapshot_WindowPrefs();

/// Where a palette was the last time. `window` is that of an open palette that was with it then, or its
/// pseudo-window, or null. Outputs may be null. The numbers can come from a file and be any.
/// @return  1 when something is known of the palette; the outputs are left alone otherwise
ZV_API long Get_Dest_Window(ZVPalette const* palette, ZVWindow** window, unsigned long* pseudoId, long* x,
                            long* y, long* width, long* height, long* active);

/// Lays a palette out in that size and brings the screen in line. -1 is the natural size.
ZV_API void Rebuild_SysPalette(ZVPalette* palette, long width, long height);

ZV_API short GetItemRefID(ZVGroup const* group, short reference);
ZV_API short GetGroupRefID(ZVPalette const* palette, short reference);

ZV_API void Set_Item_Size(ZVItem* item);    ///< Natural size of an item, into its base size too.
ZV_API long SetUp_Gadgets(ZVGroup* group);  ///< Natural size of a group. 0: a reference is not placed.
ZV_API void Build_Groups(ZVPalette* palette, long width, long height);
ZV_API long Build_Gadgets(ZVGroup* group);  ///< Final places of items. 0 as above, and for flex on both axes.
ZV_API unsigned short GetItemFont(ZVItem const* item);  ///< Standard font number.
ZV_API void Process_Dependencies(ZVItem* item);

/// What AddGadgetZV makes of a proportional gadget: arrow, track and arrow, in this order on the group's
/// list.
/// @return  the track; null with error 4 without an open group, with error 1 without memory, nothing made
ZV_API ZVItem* Add_HProp(unsigned short id, unsigned short position, short reference, ZVGadgetType type,
                         ZVGadgetSize size, char const* text, TagItem* tags);
ZV_API ZVItem* Add_VProp(unsigned short id, unsigned short position, short reference, ZVGadgetType type,
                         ZVGadgetSize size, char const* text, TagItem* tags);

/// Callback of the palette in which the value of a slider is typed; there is one at a time.
ZV_API void NumEntryCallBack(ZVEvent* event);
inline constexpr unsigned short NumEntryPalette = 8899;  ///< Its id.

/// SetTextBoxGadgetStateZV up to the count of lines; nothing is shown. 1 when the text has changed, else 0.
ZV_API long SetTextBoxGadgetState_internal(ZVItem* item, char const* text);

/// Key bindings. A file by its full spec is read into the chain, nothing freed first.
ZV_API void Parse_KeyFile(char const* spec, ZVKeySection* section);
/// The same for a name in the home directory.
ZV_API void Parse_Home_KeyFile(char const* name, ZVKeySection* section);
ZV_API long Find_Key(ZVKeySection const* section, long action);  ///< Key of the first binding, or 0.
ZV_API void Process_Keys(long key, unsigned long modifiers);     ///< Of the modal palette, else of InitZV.

/// Depth-first search for an id. The position is the one that Menu_Event takes: among the entries of its
/// menu that stand in place, and for one that stands in the application or help menu among those there.
/// @param result    may be null, and so may `position`; null and 0 when there is none
/// @return  1 when there is one
ZV_API long Find_MenuID(List const* list, long id, ZVMenu** result, long* position);

/// The entry of the bar with that action in that section; null when there is none.
ZV_API ZVMenu* Find_ActionID(long action, ZVKeySection const* section);

/// The section that applies: its own, that of the nearest ancestor, or the environment's; may be null.
ZV_API ZVKeySection* Section_Of_Menu(ZVMenu const* menu);
ZV_API void Set_Key_Command(ZVMenu* menu);  ///< Finds the shortcuts of a menu and all below it again.

/// Where an entry stands when it is not in its own menu.
ZV_API bool Is_In_Application_Menu(ZVMenu const* menu);
ZV_API bool Is_In_Help_Menu(ZVMenu const* menu);

/// Entry of the application or help menu by its position from 1 on, and the first one of the bar with a flag
/// (ZV_MENUF_QUIT or ZV_MENUF_PREFERENCES). Null when there is none.
ZV_API ZVMenu* Find_About_Item(long position);
ZV_API ZVMenu* Find_Help_Item(long position);
ZV_API ZVMenu* Find_Special_Menu_Item(unsigned long flag);
inline constexpr short HelpMenuNumber = -16490;
inline constexpr short ApplicationMenuNumber = 24930;

/// A choice by menu number (a menu id or one of the two above) and position among its entries in place; with
/// 0 the menu itself. Searched in the list, in the bar, or in a menu and below it.
ZV_API void Menu_Event(List* list, short menu, short item);
ZV_API void Menu_Event(short menu, short item);
ZV_API void Menu_Event(ZVMenu* root, short menu, short item);

/// The same for a known entry: its check mark follows, then event 15 is sent. The menu may be gone
/// afterwards.
ZV_API void Choose_Menu(ZVMenu* menu);

// The native seam: what the logic asks of the desktop layer.

ZV_API long Make_SysWindow(ZVWindow* window, ZVPalette* palette);  ///< 1 when it is there.
ZV_API void Rebuild_SysWindow(ZVWindow* window, ZVPalette* palette);
ZV_API void Free_SysWindow(ZVWindow* window);  ///< With the ZVWindow, unlinked.
ZV_API void Set_SysWindowName(ZVWindow* window, char const* name);
ZV_API ZVWindow* GetZVWind_From_SysWind(ZVSysWindow const* window);
ZV_API void Mac_Select_Window(ZVWindow* window);  ///< To the front.

/// The front window that is no floater; null when there is none.
ZV_API ZVWindow* Mac_FrontNonFloatingWindow();

ZV_API void Mac_Show_Floaters();  ///< They are on screen only while the application is in front.
ZV_API void Mac_Hide_Floaters();

/// The library's window at a point of the screen, and the point in its client area. Null when there is none.
ZV_API ZVWindow* Mac_Find_Window(long x, long y, long* localX, long* localY);

/// Outer size of the window that would hold the palette, and a frame position as client position.
ZV_API void Get_SysWindowDimFromPalette(ZVPalette const* palette, ZVRectT<long>* size);
ZV_API void OffsetWindowToClient(ZVPalette const* palette, long* x, long* y);

ZV_API void Draw_Mark(ZVPalette* palette);  ///< The frame of one that is marked, or its place without.

ZV_API long Menu_Bar_Height();  ///< Of the strip at the top of the main monitor that windows leave free.

ZV_API void Make_MenuBar();                         ///< Shows the menus of the environment as they are now.
ZV_API void Free_SysMenus();                        ///< Takes the bar down.
ZV_API void Delete_Item(ZVMenu const* menu);        ///< It is about to be freed or moved.
ZV_API void Update_Item_State(ZVMenu const* menu);  ///< Its text, style, check mark or state has changed.
ZV_API void Disable_All_Menus();  ///< Nothing opens, and an open menu closes. For modal palettes.
ZV_API void Reenable_All_Menus();

/// Lights the title in the bar of a menu of the top level; null lights none.
ZV_API void Mac_Hilite_Menu(ZVMenu const* menu);

/// A key that nobody has taken: F10 by itself opens the first menu of the bar that can be opened.
ZV_API void Mac_Menu_Key(long key, unsigned long modifiers);

/// Opens a menu with its corner at that point of the screen and waits until the user has chosen, the press
/// that led here being over. Callbacks run meanwhile.
/// @return  the entry; null for none, also when menus have been freed meanwhile
ZV_API ZVMenu* Make_Popup_Menu(ZVMenu* menu, long x, long y);

/// The same with what an opened menu means for the mouse: nothing holds it any more, and the cursor is shown
/// anew afterwards.
ZV_API ZVMenu* Select_From_Menu(ZVMenu* menu, long x, long y);

ZV_API void Move_Sliders(ZVWindow* window);  ///< Brings the scroll bars to their edges and values.
ZV_API void Enable_Sliders(ZVWindow* window, long enabled);
ZV_API void Activate_Lists(ZVWindow* window, long on);  ///< Dimmed while the window is not in front.

ZV_API long Make_SysGroup(ZVGroup* group);
ZV_API void Destroy_SysGroup(ZVGroup* group);
ZV_API void Make_SysGroupFrame(ZVGroup* group);
ZV_API void Destroy_SysGroupFrame(ZVGroup* group);
ZV_API long Make_SysItem(ZVItem* item);
ZV_API void Destroy_SysItem(ZVItem* item);
ZV_API void Enable_SysItem(ZVItem* item);
ZV_API void Disable_SysItem(ZVItem* item);
ZV_API void Mac_Update_Item(ZVItem* item);  ///< The native object shows the state; see UpdateGadgetZV.
ZV_API void Mac_Validate(ZVWindow* window, ZVRectT<long> const& area);  ///< Needs no redraw any more.
ZV_API void Refresh_GUI();      ///< Draws what of the windows waits to be drawn again.
ZV_API void Mac_Refresh_All();  ///< Draws all windows again, in the present pens.
ZV_API void Mac_Invalidate(ZVWindow* window, ZVRectT<long> const& area);  ///< Has to be drawn again.
ZV_API bool
Mac_Is_Interface_Thread();        ///< A display is open, and the caller is on the thread that opened it.
ZV_API void Mac_Close_Display();  ///< When all windows are gone.

/// The keyboard goes to the first text field of the palette, or on from the item that has it in a ring of all
/// that can have it: false when there is no other.
ZV_API void Activate_First_Gadget(ZVPalette* palette);
ZV_API bool Tab_to_Next_Gad();
ZV_API bool Tab_to_Prev_Gad();

/// Makes the press in a text field, or in a list, of the window its own. The point is in the system window.
/// @param when  the display's clock
/// @return  1 when there was one
ZV_API long String_Gad_Check(ZVWindow* window, long x, long y);
ZV_API long List_Gad_Check(ZVWindow* window, long x, long y, unsigned long when);

/// A key, as `(character << 16) | code`, to the focused field or list, else as event 1.
/// @param isEntered  the character has been entered already, so a field does not take it from here
ZV_API void Handle_KeyStroke(unsigned long key, long isEntered);

ZV_API void
Mac_Drop_Focus(unsigned long reportBits);  ///< Text field or list loses it and reports by event 5.

ZV_API void Mac_Idle_Text_Field();  ///< The caret of the focused text field blinks.

/// The event loops, which call the timers' functions at their intervals. The inner ones run until the modal
/// palette on top is closed, or until ExitZV.
ZV_API void Mac_Run_Modal_Loop(ZVPalette* palette);
ZV_API void Mac_Run_Application_Loop();
ZV_API void Mac_End_Application_Loop();  ///< The loop ends as soon as it has control; without one, nothing.
ZV_API void Mac_End_Modal_Loop(ZVPalette* palette);
ZV_API void Mac_Handle_Waiting_Events();
ZV_API void Mac_Flush_Events();
ZV_API uint32_t Mac_Keyboard_State();  ///< Modifier bits of the keys that are held.
/// Tablets, which tell of themselves in mouse events: there is nothing to start, to end or to ask between.
ZV_API long Init_Tablet();  ///< Always 1.
ZV_API void Cleanup_Tablet();
ZV_API long Get_Pressure();
ZV_API long Eraser_Active();

/// Shows a cursor: 0 the arrow, below 128 one of the desktop's by its number, from 128 on a colour cursor of
/// the library, of which 128 to 135 are the frames of the busy cursor. ZV_CURSOR_NONE hides the pointer.
ZV_API void Mac_Show_Cursor(unsigned short code);
ZV_API void Mac_Move_Pointer_Freely(long on);  ///< The pointer is hidden and held, movements still come.
ZV_API long Mac_Double_Click_Time();           ///< Ticks of 1/60 second.
ZV_API uint32_t Mac_Tick_Count();  ///< Ticks of 1/60 second since start; the virtual clock's in memory.

// ---- dialogs ----------------------------------------------------------------------------------------------

/// Bits of ZVFileRequest::Flags.
enum ZVFileRequestFlag : uint32_t { ZV_FILEREQF_SAVE = 1, ZV_FILEREQF_FORMATS = 2 };

/// What a file dialog offers as kinds of files. Entries of the pop-up count from 1: when opening, 1 is every
/// kind of the list, 2 all files and 3 a line; then the table's entries follow, and the modules.
struct ZVFileRequest {
    uint32_t Flags;       ///< ZVFileRequestFlag
    int32_t FirstEntry;   ///< number of the table's first entry; 0 when there is no pop-up
    int32_t ModuleEntry;  ///< number of the first module; 0 when there is no pop-up
    ZVFileTypeDescriptor* Types;
    ZVFormatDesc** FormatResult;
    ZVFileTypeDescriptor** TypeResult;
    int32_t Current;  ///< the entry that is chosen; 0 when there is no pop-up
};

/// Works out the numbers of a request whose flags, table and results are set.
ZV_API void Start_File_Request(ZVFileRequest* request);

/// Makes an entry the current one and stores the results.
ZV_API void Choose_File_Kind(ZVFileRequest* request, long entry);

/// Whether the current entry shows a file in the list of files to open.
/// @param spec  of the file; modules may look into it
ZV_API bool Is_File_Shown(ZVFileRequest const* request, char const* spec, uint32_t creator, uint32_t type);

/// The module of an entry, or its table entry; null for an entry that is none.
ZV_API ZVFormatDesc* File_Kind_Module(ZVFileRequest const* request, long entry);
ZV_API ZVFileTypeDescriptor* File_Kind_Type(ZVFileRequest const* request, long entry);

/// AskFileNameZV and AskDirectoryZV.
ZV_API char* NavServices_AskFileName(TagItem* tags);
ZV_API char* NavServices_AskDirectory(TagItem* tags);

// ---- pixels -----------------------------------------------------------------------------------------------

/// Frees the blocks that AllocateResidentBlock keeps for reuse. False when there was none.
ZV_API bool Empty_Block_Cache();

/// Rewrites packed pixels with alpha first: `bytes` bytes, a whole number of pixels, from the start of
/// `source`. There is an instance for ZV_BITMAP_RGBA10 and for ZV_BITMAP_RGBA12.
template <typename Buffer, typename Pixel, typename Channel>
void RGBA_To_ARGB(Buffer const* source, void* out, long bytes);

/// Frees all icons.
ZV_API void CleanupIconList();

/// The factor of an exponent byte: 0.0 for 0, else 2 to the power of (e - 128).
extern ZV_API std::array<double, 256> const _expTable;

/// Copies one sample of N bytes.
template <int N> struct ZVSampleCopy {
    static constexpr int size = N;
    void operator()(unsigned char* to, unsigned char const* from) const { std::memcpy(to, from, N); }
};
using Copy1 = ZVSampleCopy<1>;
using Copy2 = ZVSampleCopy<2>;
using Copy3 = ZVSampleCopy<3>;
using Copy4 = ZVSampleCopy<4>;
using Copy8 = ZVSampleCopy<8>;

// What ExtractGBufferLayerZV is made of. All planes have one size, the X values are one sample wider, and the
// rectangle lies inside. Ids are bytes or shorts; a sample is wanted when its id is `id` and `mode` is 1, or
// when neither holds.

/// The picture, with an instance for each of the five RGBA buffers. Bitmaps of one size; the rectangle lies
/// inside them too.
/// @param input  of which the colour, coverage, weight, transparency and X values are used
template <typename Buffer, typename Pixel>
void ExtractGBufferLayer_T(Buffer const* src, Buffer* dst, unsigned short id, ZVGBuffer const& ids,
                           ZVGBufferArray const& input, long mode, ZVRectT<long> const& rect);

/// One channel, with an instance for each of the copies above. Of a pixel without wanted samples the front
/// becomes `fill`; of one whose front is not wanted the first further sample that is wanted moves to the
/// front.
template <typename CopyN>
void extract_1_GB_layer(CopyN copy, ZVGBuffer const& src, ZVGBuffer* dst, unsigned short id,
                        unsigned char const* fill, ZVGBuffer const& ids, long mode, ZVGBuffer const* xValues,
                        ZVRectT<long> const* rect);

/// The X values that go with it, from those in `src`.
ZV_API void extract_x_values(ZVGBuffer const& src, ZVGBuffer* dst, unsigned short id, ZVGBuffer const& ids,
                             long mode, ZVRectT<long> const* rect);

/// The weights of further samples, from the coverage (null: full) and transparency (null: none) of the same
/// samples.
ZV_API void extract_weight(ZVGBuffer* weight, ZVGBuffer const* coverage, ZVGBuffer const* transparency,
                           ZVGBuffer const* xValues, ZVRectT<long> const* rect);

// ---- drawing ----------------------------------------------------------------------------------------------

/// A port over the pixels of a native bitmap, which are the port's from then on, to be freed by FreeMemZV.
/// @param pixels  aligned to 4 bytes, and so are the rows
/// @return  null when memory runs out; the pixels are then still the caller's
ZV_API ZVPort* Make_SysPort(unsigned char* pixels, long width, long height, long depth, long rowBytes);
ZV_API void Free_SysPort(ZVPort* port);  ///< Null is accepted.

/// The port of a system window, which owns it; null for a window that cannot be drawn on.
ZV_API ZVPort* Mac_Window_Port(ZVWindow* window);

/// A context on a port. Null without a port or an environment.
ZV_API ZVDrawInfo* Begin_Drawing(ZVPort* port, ZVDevice* device, long originX, long originY);

/// Make the context's port the current one, and the one before it again.
ZV_API void ReadyDraw(ZVDrawInfo* draw);
ZV_API void RevertDraw(ZVDrawInfo* draw);

/// Clip the port to the context's rectangle, and as it was before.
ZV_API void Set_ClipRegion(ZVDrawInfo* draw);
ZV_API void Revert_ClipRegion(ZVDrawInfo* draw);

/// A bevel border of `w` by `h` pixels in three colours.
ZV_API void DrawShineBorder(ZVDrawInfo* draw, long x, long y, long w, long h, unsigned long frame,
                            unsigned long light, unsigned long dark);

/// GetFontOutlineZV without commands that close a contour.
ZV_API float* ATSUI_GetOutline(unsigned long character, ZVFont* font, double x, double y);

// ---- clips ------------------------------------------------------------------------------------------------

/// Spec of a scratch file in scratch2, its directory made if missing; null for a frame of 0 or above, and
/// with error 7 when there can be no such directory. Each process has a directory of its own.
ZV_API char* Make_TempName(unsigned long id, long frame, long audio);
ZV_API void Cleanup_Clip();  ///< Deletes the process's scratch directory and forgets its root.

/// Read flags of Get_Frame; the first three exclude each other in this order.
inline constexpr unsigned long FRAME_INTERPOLATE_LOWER = 1;  ///< keep the even rows, rebuild the odd ones
inline constexpr unsigned long FRAME_INTERPOLATE_UPPER = 2;  ///< keep the odd rows, rebuild the even ones
inline constexpr unsigned long FRAME_BLEND_FIELDS = 4;       ///< vertical low-pass
inline constexpr unsigned long FRAME_INTERPRET_ALPHA = 8;    ///< apply the clip's alpha settings

ZV_API double Get_Time(ZVTimeValue const* time);  ///< Seconds; 0 for a Scale of 0.
ZV_API long Get_Frame(ZVClip const* clip, ZVTimeValue const* time);
ZV_API long Get_Field(ZVClip const* clip, ZVTimeValue const* time);

/// The source frame of a presented frame; negative for a scratch frame. Beyond the map's end, the frame
/// itself.
ZV_API long Get_FrameMapping(ZVClip const* clip, long frame);

/// Number of frames that can be read: those of the map when there is one, else RawFrames.
ZV_API long Get_ReadableFrames(ZVClip const* clip);

/// Reads one frame, scaled and placed.
ZV_API long Get_Frame(ZVClip* clip, unsigned long frame, ZVBitmap* bitmap, unsigned long flags,
                      ZVRectT<long> const* rect, long width, long height, AsyncParams& async);

/// Reads one film frame of a clip under pull-down.
ZV_API long Get_Frame_PullDown(ZVClip* clip, unsigned long filmFrame, ZVBitmap* bitmap, unsigned long flags,
                               ZVRectT<long> const* rect, long width, long height, AsyncParams& async);

/// The wrapper around the module's GetFrame: swaps in the file of a sequence and fetches the frame's data.
ZV_API long Plugin_GetFrame(ZVClip* clip, ZVBitmap* bitmap, long frame, ZVRectT<long>* rect, long width,
                            long height, long layer, AsyncParams& async);

/// Clears the pixels outside the area that a frame placed at `rect` with this size covers.
template <typename Buffer, typename Pixel>
void Crop_Bitmap(Buffer* bitmap, ZVClip const* clip, ZVRectT<long> const* rect, long width, long height);

/// The default writer of AddFrameZV.
ZV_API long Add_Frame(ZVClip* clip, ZVBitmap* bitmap, long frame, ZVRectT<long>* region, long noOverwrite,
                      void (*completion)(void*, unsigned long), void* data, unsigned long argument);
ZV_API void AddFrameCompletionFunc(void* record, unsigned long status);

/// Finds the other files of an image sequence and takes them into the clip. 1 or 0.
ZV_API long SequenceCheckZV(ZVClip* clip, TagItem* tags);

/// Fills output with the player's sound, four bytes a frame, and moves its position on. Allocates nothing.
ZV_API void read_source(void* out, unsigned long bytes);

/// Position in the cadence and output number of a frame written under pull-down. Always 1.
ZV_API long FrameNumberToSequenceNumberZV(long* position, long* number, long frame, long isFirst,
                                          ZVClip const* clip);

/// Whether all `count` files of a sequence exist (numbers null: 0 to count - 1); a count of 0 passes the
/// second.
ZV_API long IsSequenceValidZV(char const* spec, long const* numbers, long count);
ZV_API long IsSequenceDataValidZV(char const* spec, long const* numbers, long count);

// Field filters, in place. A bitmap of fewer than two rows, and a mono type, stays as it is.
ZV_API void Interpolate_Lower_Field(ZVBitmap* bitmap);  ///< Keeps the upper field (even rows).
ZV_API void Interpolate_Upper_Field(ZVBitmap* bitmap);  ///< Keeps the lower field (odd rows).

// The templates below have an instance for each of the five RGBA buffers.

/// 1-2-1 filter down each column.
template <typename Buffer, typename Pixel, typename Channel> void Blend_Fields(Buffer* bitmap);

/// destination = (or +=) source times weight, each product truncated in integer types. Same size and type.
template <typename Buffer, typename Pixel, typename Channel>
void Copy_Opacity(Buffer const* source, ZVBitmap* destination, double weight);
template <typename Buffer, typename Pixel, typename Channel>
void Merge_Opacity(Buffer const* source, ZVBitmap* destination, double weight);

/// The same with a weight for the field that comes first in time and one for the other.
template <typename Buffer, typename Pixel, typename Channel>
void Copy_Fields_With_Opacity(Buffer const* source, Buffer* destination, ZVClip const* clip, double first,
                              double second);
template <typename Buffer, typename Pixel, typename Channel>
void Merge_Fields_With_Opacity(Buffer const* source, Buffer* destination, ZVClip const* clip, double first,
                               double second);

/// The clip's alpha convention to straight alpha, in place, inside the area (right and bottom exclusive).
template <typename Buffer, typename Pixel>
void Interpret_Alpha(Buffer* bitmap, ZVClip* clip, long left, long top, long right, long bottom);

// ---- dialogs ----------------------------------------------------------------------------------------------
//
// The dialogs of the media half, which stand above the clips and formats that ask by them. Each is modal and
// starts from what its choice holds; a choice that is given up stays as it was. Only with an interface.

/// What is to become of a series of files.
struct ZVSequenceChoice {
    bool IsWhole;      ///< load the series, and not the one file that was pointed at; not read
    long First, Last;  ///< frames of the series
    double FrameRate;
    double PixelAspect;
    uint8_t FieldOrder;
};

/// @param frames  of the whole series, at least 1
/// @return  false with error 21 when the user gives up, with error 1 when memory runs out
ZV_API bool Ask_Sequence(long frames, ZVSequenceChoice* choice);
ZV_API void Sequence_Handler(ZVEvent* event);  ///< The callback of that dialog.

/// How the pictures of a movie are compressed; see ZVMovieOptions.
struct ZVVideoChoice {
    uint32_t Codec;
    long Depth;  ///< bits of a pixel, 32 with alpha, else 24
    long Quality;
    long KeyFrameInterval;
    long BytesPerSecond;
    double FrameRate;
    bool HasFixedRate;  ///< the rate is not to be chosen
    bool IsStreamed;    ///< offer only what can be streamed
};
ZV_API bool Ask_Video_Settings(ZVVideoChoice* choice);

/// How the sound of a movie is compressed.
struct ZVSoundChoice {
    uint32_t Codec;        ///< 0 keeps the samples as they are
    ZVAudioFormat Format;  ///< one or two channels of one or two bytes
    bool IsStreamed;
};
ZV_API bool Ask_Sound_Settings(ZVSoundChoice* choice);

/// How a movie is cut into packets to be streamed.
struct ZVStreamChoice {
    long PacketBytes;         ///< of a packet at most; shown
    long PacketMilliseconds;  ///< of sound in a packet; 0 for the least
    bool HasSound;
};
ZV_API bool Ask_Stream_Settings(ZVStreamChoice* choice);

/// The dialog of the streaming format, from which those for compression and streaming are opened.
ZV_API void Ask_Stream_Options(ZVClip* clip, bool isSound);
ZV_API void Handle_Options(ZVEvent* event);  ///< The callback of that dialog.

/// How a picture is compressed.
ZV_API bool Ask_Picture_Settings(ZVPICTOptions* choice);

// ---- formats ----------------------------------------------------------------------------------------------

/// Up to four characters behind the last dot of the file name, lower case, first one highest; 0 without a
/// dot.
ZV_API uint32_t Extension_Code(char const* spec);

/// The rule of most modules: a pair of ReadTypes, then an entry of ReadExtensions, claims the file.
ZV_API long Standard_CanLoad(ZVFormatDesc* desc, char const* spec, unsigned long creator, unsigned long type,
                             unsigned long extension);

/// What the registration of a built-in module tells of itself.
struct ZVBuiltinFormat {
    char const* name;
    uint32_t fileType;
    uint32_t fileCreator;
    ZVTypePair const* readTypes;
    long readTypeCount;
    uint32_t const* readExtensions;
    long readExtensionCount;
};

/// A zeroed descriptor with name, limits, codes and arrays; the caller fills in its entries and adds it to
/// the list. Null when memory runs out.
ZV_API ZVFormatDesc* Make_Format_Desc(ZVBuiltinFormat const& format);

/// A copy in one block, Data behind the header; null for null.
ZV_API ZVFormatParams* Copy_Format_Params(ZVFormatParams const* params);

/// Puts a loaded module in the list: before the first plug-in that is no such module, behind everything else.
ZV_API void Insert_Loaded_Format(ZVFormatDesc* desc);

/// Frees the record with what it owns, the code included however often it was loaded.
ZV_API void Free_Plugin(ZVPlugin* plugin);

/// The callback of Add_Plugin_Formats: registers what is in a file. `data` is the ZVScanDesc*. Always 1.
ZV_API long FormatModule_CheckFile(char const* spec, unsigned long type, long data, long* stop);

/// Registers a module of the library's own kind, which is loaded to ask what it reads and unloaded at once. 1
/// or 0.
ZV_API long Init_IFM(char const* spec, ZVScanDesc* scan);
/// Loads a module and lets it fill its descriptor again. 0 with the stubs in place and without arrays.
ZV_API long Load_IFM(ZVFormatDesc* desc);
ZV_API void Unload_IFM(ZVFormatDesc* desc);  ///< Counts one use less and puts the stubs back.

/// What the parsers of a Photoshop plug-in's resources share during the scan of its file.
struct ZVPluginScan {
    char const* FileSpec;  ///< of the plug-in
    ZVScanDesc* Scan;
    char Name[256];  ///< of the `8BIF` resource seen last
    long ID;         ///< the same
};

/// Resource callbacks: register the format plug-in that a resource tells of, whose bytes are as in the file.
/// `scan` is a ZVPluginScan*. Parse_8BIF takes the name for the next Parse_PIMI.
/// @return  1, or 0 for one that is refused
ZV_API long Parse_PIPL(ZVResource* resource, long scan);
ZV_API long Parse_PIMI(ZVResource* resource, long scan);
ZV_API long Parse_8BIF(ZVResource* resource, long scan);

/// Turn the numbers of a resource from the file's order into the machine's, in place.
/// @return  0; -4942, with the bytes in either order, for another version and for lists that do not fit
ZV_API long Flip_PiPL(void* bytes, long size);
ZV_API long Flip_PIMI(void* bytes, long size);

struct FormatRecord;
/// Puts the host's functions in a record. Suites that it has already are filled in.
ZV_API void Init_Callbacks(FormatRecord* record, ZVPlugin* plugin);
ZV_API void Cleanup_Callbacks(FormatRecord* record, ZVPlugin* plugin);  ///< Does nothing.

/// What is known of a picture (PICT data, without the 512 bytes that a file has in front of it).
struct ZVPictureInfo {
    long width, height;  ///< of its frame, at least 1
    long depth;          ///< bits of a pixel of its deepest bitmap; 0 when it has none
};
/// False with error 18 for what is no picture. One that is damaged behind its header is a picture.
ZV_API bool Inspect_Picture(void const* bytes, unsigned long size, ZVPictureInfo* info);

/// Draws a picture so that its frame fills the area, which may reach beyond the bitmap. The bitmap, of type
/// ZV_BITMAP_RGBA8, is erased first: what nobody draws is white with alpha 0. Bitmaps in the picture that
/// hold alpha bring it along, all else is opaque.
/// @return  false with the error number set; what was drawn up to the damage stays
ZV_API bool Draw_Picture(void const* bytes, unsigned long size, ZVBitmap* bitmap, ZVRectT<long> const& area);

/// The picture as a new RGBA8 bitmap of its own size, released by FreeBitmapZV; null with the error number
/// set.
ZV_API ZVBitmap* Decode_Picture(void const* bytes, unsigned long size);

ZV_API long Add_PICT_Format(ZVScanDesc* scan);
ZV_API long Add_PICS_Format(ZVScanDesc* scan);
ZV_API long Add_Filmstrip_Format(ZVScanDesc* scan);
ZV_API long Add_EIDI_Format(ZVScanDesc* scan);
ZV_API long Add_RAM_Format(ZVScanDesc* scan);
ZV_API long Add_VPB_Format(ZVScanDesc* scan);
ZV_API void Free_Format_Modules();  ///< Empties the environment's list.
