#include <algorithm>
#include <cassert>
#include <cstring>

#include "host/sdk/standin.h"

namespace tavrik_host {
namespace {

// Chunks in chunks are refused: nothing here has any.
class ChunkWriter final : public ISave {
 public:
    void BeginChunk(USHORT id) override {
        assert(!open_);
        open_ = true;
        chunks.push_back({id, {}});
    }
    void EndChunk() override {
        assert(open_);
        open_ = false;
    }
    IOResult Write(const void* buf, ULONG bytes, ULONG* written) override {
        assert(open_);
        if (!open_) return IO_ERROR;
        chunks.back().bytes.append(static_cast<const char*>(buf), bytes);
        if (written != nullptr) *written = bytes;
        return IO_OK;
    }
    bool Open() const { return open_; }

    std::vector<Chunk> chunks;

 private:
    bool open_ = false;
};

}  // namespace

class ChunkReader final : public ILoad {
 public:
    ChunkReader(SceneLoad& load, std::span<const Chunk> chunks) : load_(load), chunks_(chunks) {}
    IOResult OpenChunk() override {
        assert(!open_);
        if (next_ == chunks_.size()) return IO_END;
        ++next_;
        at_ = 0;
        open_ = true;
        return IO_OK;
    }
    USHORT CurChunkID() override {
        assert(open_);
        return open_ ? chunks_[next_ - 1].id : USHORT(0);
    }
    IOResult CloseChunk() override {
        if (!open_) return IO_ERROR;
        open_ = false;
        const Chunk& chunk = chunks_[next_ - 1];
        if (at_ > 0 && at_ < chunk.bytes.size()) load_.partlyRead_ = chunk.id;
        return IO_OK;
    }
    IOResult Read(void* buf, ULONG bytes, ULONG* read) override {
        const std::string_view rest = open_ ? std::string_view(chunks_[next_ - 1].bytes).substr(at_) : std::string_view();
        const std::size_t count = std::min(std::size_t(bytes), rest.size());
        if (count > 0) std::memcpy(buf, rest.data(), count);
        at_ += count;
        if (read != nullptr) *read = ULONG(count);
        return count == bytes && open_ ? IO_OK : IO_ERROR;
    }
    void RegisterPostLoadCallback(PostLoadCallback* callback) override {
        assert(callback != nullptr);
        load_.callbacks_.push_back(callback);
    }

 private:
    SceneLoad& load_;
    std::span<const Chunk> chunks_;
    std::size_t next_ = 0, at_ = 0;
    bool open_ = false;
};

std::vector<Chunk> SaveChunks(ReferenceMaker& thing) {
    ChunkWriter writer;
    thing.Save(&writer);
    assert(!writer.Open());
    return std::move(writer.chunks);
}

SceneLoad::~SceneLoad() {
    for (PostLoadCallback* callback : callbacks_) delete callback;
}

bool SceneLoad::LoadChunks(ReferenceMaker& thing, std::span<const Chunk> chunks) {
    partlyRead_.reset();
    ChunkReader reader(*this, chunks);
    return thing.Load(&reader) != IO_ERROR;
}

void SceneLoad::RunCallbacks() {
    ChunkReader nothing(*this, {});
    // One at a time: a callback may register another, which then takes its turn by priority as well.
    while (!callbacks_.empty()) {
        const auto first = std::min_element(callbacks_.begin(), callbacks_.end(), [](PostLoadCallback* a, PostLoadCallback* b) {
            return a->Priority() < b->Priority();
        });
        PostLoadCallback* const callback = *first;
        callbacks_.erase(first);
        callback->proc(&nothing);
    }
}

}  // namespace tavrik_host
