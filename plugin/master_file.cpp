// What a master keeps in a scene file: its recording, in one chunk. All else comes back from parameters and controls.

#include <algorithm>
#include <string>
#include <string_view>

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

/// Everything that the open chunk has left.
std::string ReadAll(ILoad& iload) {
    std::string bytes;
    for (;;) {
        const std::size_t before = bytes.size();
        bytes.resize(before + kPieceBytes);
        ULONG read = 0;
        const IOResult result = iload.Read(bytes.data() + before, ULONG(kPieceBytes), &read);
        bytes.resize(before + std::min(std::size_t(read), kPieceBytes));
        if (result != IO_OK || read < kPieceBytes) return bytes;
    }
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
    IOResult result = ReferenceMaker::Load(iload);
    if (result != IO_OK) return result;
    while ((result = iload->OpenChunk()) == IO_OK) {
        std::string problem;
        bool loaded = true;
        if (iload->CurChunkID() == kRecordingChunk) {
            StopRuns();
            rig_.ResetMotion();
            LeaveWorld();
            loaded = tavrik::LoadRecording(ReadAll(*iload), rig_.motion, problem);
            rig_.velocitiesStale = true;
        }
        iload->CloseChunk();
        if (loaded) continue;
        Complain(problem);
        return IO_ERROR;
    }
    if (result != IO_END) return result;
    iload->RegisterPostLoadCallback(new TavrikPostLoadCallback(*this));
    return IO_OK;
}

}  // namespace tavrik_plugin
