#pragma once
/// The map that paints tyre tracks: an artist puts it into the ground's material and names a master, whose wheels then leave
/// their marks wherever they went, on whatever surface the map lies.

#include <custcont.h>
#include <imtl.h>
#include <iparamb2.h>
#include <iparamm2.h>

#include <cstdint>

#include "plugin/sdk_year.h"
#include "tracks/painted_trail.h"

namespace tavrik_plugin {

class TavrikTrackTex final : public Texmap {
 public:
    TavrikTrackTex();
    ~TavrikTrackTex() override;
    TavrikTrackTex(const TavrikTrackTex&) = delete;
    TavrikTrackTex& operator=(const TavrikTrackTex&) = delete;

    /// Takes the master's present trail and the present treads of its wheels; both stay alive until the next call. Without a
    /// master there is nothing to paint, and every answer is white and flat.
    void Update(TimeValue t, Interval& valid) override;
    void Reset() override;
    Interval Validity(TimeValue t) override;
    // Any number of threads may ask at once.
    AColor EvalColor(ShadeContext& sc) override;
    float EvalMono(ShadeContext& sc) override;
    Point3 EvalNormalPerturb(ShadeContext& sc) override;
    void GetUVTransform(Matrix3& uvtrans) override { uvtrans.IdentityMatrix(); }
    ParamDlg* CreateParamDlg(HWND hwMtlEdit, IMtlParams* imp) override;

    // What its page does.
    void OpenPage(HWND page);
    void ClosePage();
    /// Lets the artist pick a master in a view.
    void StartPicking();
    /// @param node  passed the filter
    void TakeMaster(INode& node);
    void CheckPickButton(bool checked);

    void DeleteThis() override { delete this; }
    void TAVRIK_GET_CLASS_NAME(s) override;
    SClass_ID SuperClassID() override { return TEXMAP_CLASS_ID; }
    Class_ID ClassID() override;
    int NumSubs() override { return 1; }
    Animatable* SubAnim(int) override { return pblock_; }
    MSTR TAVRIK_SUB_ANIM_NAME override;
    int NumParamBlocks() override { return 1; }
    IParamBlock2* GetParamBlock(int) override { return pblock_; }
    IParamBlock2* GetParamBlockByID(BlockID id) override;

    RefResult NotifyRefChanged(const Interval& changeInt, RefTargetHandle hTarget, PartID& partID, RefMessage message,
                               BOOL propagate) override;
    int NumRefs() override { return 1; }
    RefTargetHandle GetReference(int) override { return pblock_; }
    RefTargetHandle Clone(RemapDir& remap) override;

 protected:
    void SetReference(int, RefTargetHandle target) override { pblock_ = static_cast<IParamBlock2*>(target); }

 private:
    INode* MasterNode() const;
    void ShowMasterName();

    /// What tyres did to a point of the surface.
    struct Mark;
    Mark MarkAt(ShadeContext& sc) const;

    tavrik::TrackParams params_;
    tavrik::PaintedTrail painted_;
    std::uint64_t painting_ = 0;  // no two updates of any maps have the same
    HWND rollout_ = nullptr;
    ICustButton* pickButton_ = nullptr;
    IParamBlock2* pblock_ = nullptr;
};

}  // namespace tavrik_plugin
