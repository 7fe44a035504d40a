// Where edited frames live: one file each in a directory that belongs to this process alone.
//
// Clip ids start at 1 in every process, so two processes at work below one scratch root would overwrite each
// other's frames. Therefore each claims a directory for itself: the first one "ZVScratch\", one that runs
// beside it "ZVScratch2\", and so on. A claim ends with its process, whatever way that ends; what a crashed
// one left behind goes when its directory is claimed the next time.
#include "ZVLibInternal.h"

#include <cstdio>
#include <cstring>
#include <utility>

namespace {

constexpr long maxScratchDirs = 1000;
constexpr long nameLength = 12;

/// Directory part of what was set, or of the user data directory.
bool Scratch_Root(char* out)
{
    char const* dir = ZVEnv->scratchDir ? ZVEnv->scratchDir : ZVEnv->userDataDir;
    return dir && std::strlen(dir) < ZV_SPEC_SIZE && GetPathZV(dir, out);
}

/// Spec of scratch directory `number`, from 1; false when the names in it would not fit.
bool Scratch_Dir(char* out, long number)
{
    char root[ZV_SPEC_SIZE];
    if (!Scratch_Root(root)) return false;
    char digits[24] = "";
    if (number > 1) std::snprintf(digits, sizeof digits, "%ld", number);
    int const length = std::snprintf(out, ZV_SPEC_SIZE, "%sZVScratch%s\\", root, digits);
    return length >= 0 && length + nameLength < ZV_SPEC_SIZE;
}

/// Spec of a file in a directory; false when it does not fit.
bool File_In(char* out, char const* dir, char const* name)
{
    return std::snprintf(out, ZV_SPEC_SIZE, "%s%s", dir, name) < ZV_SPEC_SIZE;
}

bool Delete_Entry(char const* name, bool isDirectory, void* dir)
{
    char spec[ZV_SPEC_SIZE];
    if (!isDirectory && File_In(spec, static_cast<char const*>(dir), name)) DeleteFileZV(spec);
    return true;
}

bool Has_Entry(char const*, bool, void* found)
{
    *static_cast<bool*>(found) = true;
    return false;
}

struct FileMove {
    char const* from;
    char const* to;
    bool isDone;
};

bool Move_Entry(char const* name, bool isDirectory, void* data)
{
    auto* move = static_cast<FileMove*>(data);
    char oldSpec[ZV_SPEC_SIZE], newSpec[ZV_SPEC_SIZE];
    if (isDirectory) return true;
    move->isDone = File_In(oldSpec, move->from, name) && File_In(newSpec, move->to, name) &&
                   RenameFileZV(oldSpec, newSpec);
    return move->isDone;
}

bool Move_Files(char const* from, char const* to)
{
    FileMove move{from, to, true};
    return OS_Walk_Directory(from, Move_Entry, &move) && move.isDone;
}

/// Takes a directory below the present root for this process and empties it.
bool Claim_Scratch_Dir()
{
    char spec[ZV_SPEC_SIZE];
    for (long number = 1; number <= maxScratchDirs && Scratch_Dir(spec, number); ++number) {
        long const claim = OS_Claim_Directory(spec);
        if (claim < 0) return false;
        if (claim == 0) continue;
        char* path = CopyFileSpecZV(spec);
        if (!path) {
            OS_Release_Directory(claim);
            return false;
        }
        OS_Walk_Directory(spec, Delete_Entry, spec);
        ZVEnv->scratchPath = path;
        ZVEnv->scratchClaim = claim;
        return true;
    }
    return false;
}

void Drop_Scratch_Dir(char* path, long claim)
{
    if (!path) return;
    DeleteDirZV(path);
    OS_Release_Directory(claim);
    FreeFileSpecZV(path);
}

/// Brings the frames below the new root; false with everything in the old place when that cannot be done.
bool Move_Scratch_Dir()
{
    char* oldPath = std::exchange(ZVEnv->scratchPath, nullptr);
    long const oldClaim = ZVEnv->scratchClaim;
    bool hasFiles = false;
    OS_Walk_Directory(oldPath, Has_Entry, &hasFiles);
    if (hasFiles && (!Claim_Scratch_Dir() || !Move_Files(oldPath, ZVEnv->scratchPath))) {
        if (ZVEnv->scratchPath && Move_Files(ZVEnv->scratchPath, oldPath))
            Drop_Scratch_Dir(ZVEnv->scratchPath, ZVEnv->scratchClaim);
        ZVEnv->scratchPath = oldPath;
        ZVEnv->scratchClaim = oldClaim;
        return false;
    }
    Drop_Scratch_Dir(oldPath, oldClaim);
    return true;
}

}  // namespace

void SetScratchDirZV(char const* spec)
{
    if (!ZVEnv) return;
    char* dir = CopyFileSpecZV(spec);
    if (spec && !dir) return;
    char oldRoot[ZV_SPEC_SIZE] = "", newRoot[ZV_SPEC_SIZE] = "";
    Scratch_Root(oldRoot);
    char* oldDir = std::exchange(ZVEnv->scratchDir, dir);
    Scratch_Root(newRoot);
    if (ZVEnv->scratchPath && std::strcmp(oldRoot, newRoot) != 0 && !Move_Scratch_Dir())
        std::swap(ZVEnv->scratchDir, oldDir);
    FreeFileSpecZV(oldDir);
}

char* Make_TempName(unsigned long id, long frame, long audio)
{
    if (frame >= 0 || !ZVEnv) return nullptr;
    // A directory that was deleted from outside is claimed anew: the old claim is one on a directory without
    // name.
    if (ZVEnv->scratchPath && !FileExistsZV(ZVEnv->scratchPath))
        Drop_Scratch_Dir(std::exchange(ZVEnv->scratchPath, nullptr), ZVEnv->scratchClaim);
    if (!ZVEnv->scratchPath && !Claim_Scratch_Dir()) {
        SetError(ZV_ERR_IO);
        return nullptr;
    }
    unsigned long const number = (0 - static_cast<unsigned long>(frame)) % 1000000;
    std::snprintf(ZVEnv->scratch2, sizeof ZVEnv->scratch2, "%s%04lu%04lu.%02lu%c", ZVEnv->scratchPath,
                  id % 10000, number / 100, number % 100, audio ? 'A' : 'V');
    return ZVEnv->scratch2;
}

void Cleanup_Clip()
{
    if (!ZVEnv) return;
    char spec[ZV_SPEC_SIZE];
    if (!ZVEnv->scratchPath && Scratch_Dir(spec, 1) && FileExistsZV(spec)) {
        // Left behind by a crash, unless another process has it.
        long const claim = OS_Claim_Directory(spec);
        if (claim > 0) {
            DeleteDirZV(spec);
            OS_Release_Directory(claim);
        }
    }
    Drop_Scratch_Dir(std::exchange(ZVEnv->scratchPath, nullptr), ZVEnv->scratchClaim);
    FreeFileSpecZV(std::exchange(ZVEnv->scratchDir, nullptr));
}
