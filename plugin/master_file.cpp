// What a master keeps in a scene file: its recording, in one chunk. All else comes back from parameters and controls.

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

#include "plugin/desktop.h"
#include "plugin/master.h"
#include "rig/recording_bytes.h"

namespace tavrik_plugin {
namespace {

constexpr USHORT kRecordingChunk = 20;
constexpr std::size_t kPieceBytes = std::size_t(1) << 20;

IOResult WriteAll(ISave& isave, std::string_view bytes) {
    while (!bytes.empty()) {
        const std::string_view piece = bytes.substr(0, kPieceBytes);
        ULONG written = 0;
        const IOResult result = isave.Write(piece.data(), ULONG(piece.size()), &written);
        if (result != IO_OK) return result;
        bytes.remove_prefix(piece.size());
    }
    return IO_OK;
}

/// Reads on until `bytes` has `size` of them, or the chunk has no more. Room grows with what really comes, so that a wrong
/// count can't fill the memory.
void ReadUpTo(ILoad& iload, std::size_t size, std::string& bytes) {
    while (bytes.size() < size) {
        const std::size_t before = bytes.size(), piece = std::min(size - before, kPieceBytes);
        bytes.resize(before + piece);
        ULONG read = 0;
        const IOResult result = iload.Read(bytes.data() + before, ULONG(piece), &read);
        bytes.resize(before + std::min(std::size_t(read), piece));
        if (result != IO_OK || read < piece) return;
    }
}

/// The recording in the open chunk: never a byte more than its own head asks for, as a host need not say where a chunk ends.
std::string ReadRecordingImage(ILoad& iload) {
    std::string bytes;
    for (std::size_t wanted = 1; bytes.size() < wanted;) {
        wanted = tavrik::RecordingBytes(bytes);
        const std::size_t before = bytes.size();
        ReadUpTo(iload, wanted, bytes);
        if (bytes.size() == before) break;
        wanted = tavrik::RecordingBytes(bytes);
    }
    return bytes;
}

/// Makes a car of the locked nodes once the whole file is there.
class TavrikPostLoadCallback final : public PostLoadCallback {
 public:
    explicit TavrikPostLoadCallback(Tavrik& master) : master_(&master) {}
    int Priority() override { return 5; }
    void proc(ILoad*) override {
        // The host may have thrown the master away again since.
        const std::vector<Tavrik*>& masters = Tavrik::All();
        if (std::ranges::find(masters, master_) != masters.end()) master_->Reattach();
        delete this;
    }

 private:
    Tavrik* master_;
};

}  // namespace

IOResult Tavrik::Save(ISave* isave) {
    isave->BeginChunk(kRecordingChunk);
    const IOResult result = WriteAll(*isave, tavrik::SaveRecording(rig_.motion));
    isave->EndChunk();
    return result;
}

IOResult Tavrik::Load(ILoad* iload) {
    if (const IOResult result = ReferenceMaker::Load(iload); result != IO_OK) return result;
    while (iload->OpenChunk() == IO_OK) {
        if (iload->CurChunkID() == kRecordingChunk) {
            // A damaged recording leaves the car the motion that it had, and the artist the rest of the scene: whoever loads
            // may still refuse on hearing it.
            tavrik::RecordedMotion loaded;
            std::string problem;
            if (tavrik::LoadRecording(ReadRecordingImage(*iload), loaded, problem)) {
                StopRuns();
                rig_.motion = std::move(loaded);
                rig_.velocitiesStale = true;
            } else {
                Complain(problem);
            }
        }
        iload->CloseChunk();
    }
    iload->RegisterPostLoadCallback(new TavrikPostLoadCallback(*this));
    return IO_OK;
}

}  // namespace tavrik_plugin
