// Writing past the cache. A large target would only push out what the cache holds, and an ordinary store
// reads each line from memory before it writes it; streamed, a picture beyond the cache's size costs little
// more than half.
#pragma once

/// Whether work on this many bytes, read and written together, is better streamed: the cache cannot hold
/// them.
bool Is_Beyond_Cache(long bytes);

/// Copies bytes past the cache. The memory must not overlap; another thread may rely on the bytes after
/// Finish_Stream.
void Stream_Bytes(void* target, void const* source, long bytes);

/// Ends a run of Stream_Bytes: orders its stores before all later ones.
void Finish_Stream();
