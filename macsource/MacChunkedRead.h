// Reads of whole frames in chunks, so that the caller's poll function runs while the disk works.
#pragma once

#include "ZVFile.h"

/// Reads one chunk after another, at most 128 KiB each, from the present position of an open file. With a
/// poll function a worker reads what must come from the disk while the calling thread polls; a poll that
/// answers non-zero ends the read, which returns when the last started chunk is there and puts the position
/// back.
/// @param count  bytes wanted; receives the bytes got, 0 after an abort
/// @return  0 or the errno value of the failure; ECANCELED after an abort
int Mac_Read_Chunked(int descriptor, unsigned long* count, void* destination, ZVPollFunc poll,
                     long* pollResult);

/// One read, repeated until the bytes are there, the file ends or the read fails.
/// @param count  bytes wanted; receives the bytes got
/// @return  0 or the errno value of the failure
int Mac_Read_Plain(int descriptor, unsigned long* count, void* destination);
