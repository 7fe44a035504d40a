// The entries of a Photoshop format plug-in in the list of formats that have to do with frames.
#pragma once

#include "ZVLibInternal.h"

long Plugin_Open(ZVClip* clip, TagItem* tags);
long Plugin_GetFrame(ZVClip* clip, ZVBitmap* bitmap, long frame, ZVRectT<long>* sourceOffset, long width,
                     long height, long layer, void* data, long dataSize);
long Plugin_AddFrame(ZVClip* clip, ZVBitmap* bitmap, long frame, ZVRectT<long>* region);
