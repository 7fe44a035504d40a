// The frame map: every edit replaces one run of the table by the parts that the edit leaves of it.
#include "FrameMap.h"

#include "ClipMemory.h"

#include <algorithm>
#include <span>

namespace {

/// Where a frame stands; at the end of the map `run` is FrameMapUsed.
struct RunPlace {
    long run;
    long offset;
};

/// Up to three runs, none of them empty.
class RunParts {
public:
    void Add(ZVFrameRun run)
    {
        if (run.Count > 0) runs_[count_++] = run;
    }
    std::span<ZVFrameRun const> Runs() const { return {runs_, count_}; }

private:
    ZVFrameRun runs_[3];
    std::size_t count_ = 0;
};

/// `count` frames of a run, from `skip` on. Scratch numbers go down.
ZVFrameRun Part_Of(ZVFrameRun run, long skip, long count)
{
    return {run.Start < 0 ? run.Start - skip : run.Start + skip, count};
}

RunPlace Find_Frame(ZVClip const& clip, long frame)
{
    long run = 0;
    while (run < clip.FrameMapUsed && frame >= clip.FrameMap[run].Count)
        frame -= clip.FrameMap[run++].Count;
    return {run, frame};
}

bool Resize_Map(ZVClip& clip, long size)
{
    auto* map = Alloc_Zeroed<ZVFrameRun>(size);
    if (!map) return false;
    std::copy_n(clip.FrameMap, clip.FrameMapUsed, map);
    FreeMemZV(clip.FrameMap);
    clip.FrameMap = map;
    clip.FrameMapSize = size;
    return true;
}

/// Puts `parts` in the place of `replaced` runs, 0 or 1, at `run`.
bool Splice_Runs(ZVClip& clip, long run, long replaced, RunParts const& parts)
{
    auto const added = static_cast<long>(parts.Runs().size());
    long const used = clip.FrameMapUsed + added - replaced;
    if (used > clip.FrameMapSize && !Resize_Map(clip, clip.FrameMapSize + frameMapStep)) {
        SetError(ZV_ERR_MEMORY);
        return false;
    }
    ZVFrameRun* place = clip.FrameMap + run;
    std::memmove(place + added, place + replaced,
                 static_cast<std::size_t>(clip.FrameMapUsed - run - replaced) * sizeof *place);
    std::ranges::copy(parts.Runs(), place);
    clip.FrameMapUsed = used;
    return true;
}

}  // namespace

bool Make_Frame_Map(ZVClip& clip)
{
    if (clip.FrameMap) return true;
    auto* map = Alloc_Zeroed<ZVFrameRun>(frameMapStep);
    if (!map) {
        SetError(ZV_ERR_MEMORY);
        return false;
    }
    map[0] = {0, clip.RawFrames};
    clip.FrameMap = map;
    clip.FrameMapSize = frameMapStep;
    clip.FrameMapUsed = 1;
    return true;
}

bool Replace_Mapped_Frame(ZVClip& clip, long frame, long scratch)
{
    RunPlace const place = Find_Frame(clip, frame);
    if (frame < 0 || place.run == clip.FrameMapUsed) return false;
    ZVFrameRun const run = clip.FrameMap[place.run];
    if (run.Count == 1) {
        clip.FrameMap[place.run].Start = scratch;
        return true;
    }
    RunParts parts;
    parts.Add(Part_Of(run, 0, place.offset));
    parts.Add({scratch, 1});
    parts.Add(Part_Of(run, place.offset + 1, run.Count - place.offset - 1));
    if (!Splice_Runs(clip, place.run, 1, parts)) return false;
    Compact_Frame_Map(clip);
    return true;
}

bool Insert_Mapped_Frame(ZVClip& clip, long frame, long scratch)
{
    RunPlace const place = Find_Frame(clip, frame);
    bool const isAtEnd = place.run == clip.FrameMapUsed;
    if (frame < 0 || (isAtEnd && place.offset > 0)) return false;
    RunParts parts;
    if (place.offset == 0) {
        parts.Add({scratch, 1});
        return Splice_Runs(clip, place.run, 0, parts);
    }
    ZVFrameRun const run = clip.FrameMap[place.run];
    parts.Add(Part_Of(run, 0, place.offset));
    parts.Add({scratch, 1});
    parts.Add(Part_Of(run, place.offset, run.Count - place.offset));
    return Splice_Runs(clip, place.run, 1, parts);
}

bool Delete_Mapped_Frame(ZVClip& clip, long frame)
{
    RunPlace const place = Find_Frame(clip, frame);
    if (frame < 0 || place.run == clip.FrameMapUsed) return false;
    ZVFrameRun const run = clip.FrameMap[place.run];
    RunParts parts;
    parts.Add(Part_Of(run, 0, place.offset));
    parts.Add(Part_Of(run, place.offset + 1, run.Count - place.offset - 1));
    if (!Splice_Runs(clip, place.run, 1, parts)) return false;
    if (parts.Runs().size() == 2) Compact_Frame_Map(clip);
    return true;
}

void Compact_Frame_Map(ZVClip& clip)
{
    if (clip.FrameMapUsed == 0) return;
    long kept = 0;
    for (long i = 1; i < clip.FrameMapUsed; ++i) {
        ZVFrameRun& last = clip.FrameMap[kept];
        ZVFrameRun const run = clip.FrameMap[i];
        // What would follow a scratch run is never 0 or above, and the other way round, so kinds do not mix.
        if (run.Start == Part_Of(last, last.Count, 0).Start)
            last.Count += run.Count;
        else
            clip.FrameMap[++kept] = run;
    }
    clip.FrameMapUsed = kept + 1;
    // Without memory for a smaller table the larger one serves as well.
    if (clip.FrameMapSize - clip.FrameMapUsed > frameMapStep) Resize_Map(clip, clip.FrameMapUsed);
}
