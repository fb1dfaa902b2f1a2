#include "host/render/track_painter.h"

#include <cassert>

#include "host/rig_objects.h"
#include "host/sdk/iparamb2.h"
#include "host/sdk/notify.h"
#include "host/sdk/texture_maps.h"
#include "rig/class_identities.h"
#include "rig/parameter_tables.h"

namespace tavrik_host {
namespace {

using Param = tavrik::TrackTexParam;
constexpr BlockID kBlock = BlockID(tavrik::kBlockId);

Texmap* NewMap(INode& master, const TrackLook& look) {
    const tavrik::ClassIdentity* const identity = tavrik::FindClass("TavrikTrackTex");
    auto* const map = static_cast<Texmap*>(CreateInstance(TEXMAP_CLASS_ID, Class_ID(identity->id.a, identity->id.b)));
    assert(map != nullptr);
    IParamBlock2& block = *map->GetParamBlockByID(kBlock);
    block.SetValue(Param::Frame_Step, 0, int(master.GetHandle()));
    block.SetValue(Param::General_Intensity, 0, look.roll);
    block.SetValue(Param::Brake_Intensity, 0, look.skid);
    block.SetValue(Param::Samples, 0, look.samples);
    block.SetValue(Param::Base_Bump, 0, look.dent);
    block.SetValue(Param::Pattern_Bump, 0, look.tread);
    return map;
}

}  // namespace

/// Holds a map as materials do.
class TrackPainter::Holder final : public ReferenceMaker {
 public:
    explicit Holder(Texmap* map) { ReplaceReference(0, map); }
    Holder(const Holder&) = delete;
    Holder& operator=(const Holder&) = delete;
    ~Holder() override { DeleteAllRefsFromMe(); }
    Texmap& Map() const { return *map_; }
    SClass_ID SuperClassID() override { return 0; }
    int NumRefs() override { return 1; }
    RefTargetHandle GetReference(int) override { return map_; }
    RefResult NotifyRefChanged(const Interval&, RefTargetHandle, PartID&, RefMessage, BOOL) override { return REF_SUCCEED; }

 protected:
    void SetReference(int, RefTargetHandle target) override { map_ = static_cast<Texmap*>(target); }

 private:
    Texmap* map_ = nullptr;
};

TrackPainter::TrackPainter(std::span<INode* const> masters, const TrackLook& look) {
    for (INode* const master : masters) maps_.push_back(std::make_unique<Holder>(NewMap(*master, look)));
}

TrackPainter::~TrackPainter() = default;

void TrackPainter::Update(TimeValue tick) {
    for (const auto& map : maps_) {
        Interval valid = FOREVER;
        map->Map().Update(tick, valid);
    }
}

TrackMark TrackPainter::At(ShadeContext& point) const {
    TrackMark mark;
    for (const auto& map : maps_) {
        mark.value *= map->Map().EvalColor(point).r;
        mark.bump += map->Map().EvalNormalPerturb(point);
    }
    return mark;
}

void BeginRender() { BroadcastNotification(NOTIFY_PRE_RENDER); }
void EndRender() { BroadcastNotification(NOTIFY_POST_RENDER); }

bool SetTreads(const std::filesystem::path& picture, std::string& problem) {
    GreyImage image;
    if (!ReadGreyPng(picture, image, problem)) return false;
    const std::vector<INode*> wheels = NodesOf(tavrik::ObjectClass::Wheel);
    if (wheels.empty()) return true;
    auto* const map = new BitmapMap;  // the wheels own it
    map->SetFile(picture);
    for (INode* const wheel : wheels) {
        wheel->GetObjectRef()->GetParamBlockByID(kBlock)->SetValue(ParamID(tavrik::WheelParam::Pattern_Map), 0,
                                                                   static_cast<Texmap*>(map));
    }
    return true;
}

}  // namespace tavrik_host
