// The player: one for the process, which feeds the machine's sound output from a buffer in memory. A position
// is a frame of sound on the caller's time line, where the buffer begins at the buffer offset; what lies
// outside the buffer sounds as its first or last frame. Position and region are brought in line with each
// other wherever one of them is set: with an empty region the position is 0; a looping player takes the
// position by whole lengths into the region; otherwise it is the region's nearest frame.
//
// Calls belong to the application's thread. The output takes sound on a thread of its own, so a position that
// is set while it fills a buffer can be lost.
#pragma once

#include "ZVAudio.h"

/// Chooses the buffer, 16-bit stereo, which stays the caller's and must outlive its use; null for none. The
/// speed becomes 1, and a player that was playing stops. A buffer with the samples that are in use changes
/// nothing.
/// @return  1, or 0 for null
ZV_API long SetAudioPlaybackBufferZV(ZVAudioBuffer* buffer);
ZV_API ZVAudioBuffer* GetAudioPlaybackBufferZV();

/// Starts at the position; 1 also when the player plays already. 0 without a buffer, for a format that the
/// output does not take, and without memory. At the end of its region a player that does not loop stays on
/// the last frame.
ZV_API long StartAudioPlaybackZV(long loop);
ZV_API void StopAudioPlaybackZV();
ZV_API long AudioIsPlayingZV();

/// The region: its first frame and the one behind its last. Set in either order.
ZV_API void SetAudioPlaybackRegionZV(long begin, long end);
ZV_API void GetAudioPlaybackRegionZV(long* begin, long* end);  ///< Either pointer may be null.

ZV_API void SetAudioPositionZV(long position);
ZV_API long GetAudioPositionZV();  ///< The frame heard now.

ZV_API void SetAudioBufferTimeOffsetZV(long offset);
ZV_API long GetAudioBufferTimeOffsetZV();

/// Speed, 1.0 being normal, from 0 to just below 65536 in steps of 1/65536. Frames are repeated or left out.
/// It takes effect with the next output buffer.
ZV_API void SetAudioFrequencyZV(double speed);
ZV_API double GetAudioFrequencyZV();  ///< The whole part of the speed.

ZV_API void SetAudioVolumeZV(double volume);  ///< 1.0 is full; in steps of 1/256.
ZV_API double GetAudioVolumeZV();
ZV_API void MuteAudioZV(long muted);
ZV_API long GetAudioMuteStateZV();

/// Sounds for the application.
class ZV_API ZVCAudio {
public:
    virtual ~ZVCAudio() = default;

    static long Beep(int duration);  ///< The platform's beep, of its own length. Always 1.

    /// Plays a file of the home directory to its end, for five seconds at most, and returns when it is done.
    /// The player's offset and region are then as before, and it has no buffer. A muted player plays nothing.
    /// @return  0 when the file has no sound or cannot be read
    static long PlayFile(char const* name);
};
