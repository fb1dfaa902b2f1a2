#pragma once
/// Chunks in a scene file.

#include "ref.h"

class PostLoadCallback {
 public:
    virtual ~PostLoadCallback() = default;
    /// Called once all references of the file are in place. Deletes itself.
    virtual void proc(ILoad* iload) = 0;
    /// Lower ones come first.
    virtual int Priority() { return 5; }
};

class ISave {
 public:
    virtual ~ISave() = default;
    virtual void BeginChunk(USHORT id) = 0;
    virtual void EndChunk() = 0;
    virtual IOResult Write(const void* buf, ULONG bytes, ULONG* written) = 0;
};

class ILoad {
 public:
    virtual ~ILoad() = default;
    /// @return IO_OK, or IO_END when no chunk is left
    virtual IOResult OpenChunk() = 0;
    virtual USHORT CurChunkID() = 0;
    virtual IOResult CloseChunk() = 0;
    /// Reads on in the open chunk. @return IO_ERROR, with what there was, where the chunk ends first
    virtual IOResult Read(void* buf, ULONG bytes, ULONG* read) = 0;
    virtual void RegisterPostLoadCallback(PostLoadCallback* callback) = 0;
};
