#pragma once
/// The host's own texture maps: a picture from a file, and a checkerboard. Both are grey.

#include <filesystem>

#include "host/sdk/grey_image.h"
#include "host/sdk/imtl.h"
#include "host/sdk/iparamb2.h"

namespace tavrik_host {

/// What both have in common: one block of parameters, and a value at each place of the map, which comes round again outside of
/// 0..1.
class GreyMap : public Texmap {
 public:
    GreyMap(const GreyMap&) = delete;
    GreyMap& operator=(const GreyMap&) = delete;
    ~GreyMap() override { DeleteAllRefsFromMe(); }

    AColor EvalColor(ShadeContext& sc) override;
    float EvalMono(ShadeContext& sc) override;
    Point3 EvalNormalPerturb(ShadeContext&) override { return {0, 0, 0}; }
    void Update(TimeValue t, Interval& valid) override;
    void Reset() override;
    Interval Validity(TimeValue) override { return FOREVER; }
    ParamDlg* CreateParamDlg(HWND hwMtlEdit, IMtlParams* imp) override;

    Class_ID ClassID() override { return class_.ClassID(); }
    void GetClassName(MSTR& s) override { s = class_.ClassName(); }
    int NumSubs() override { return 1; }
    Animatable* SubAnim(int) override { return block_; }
    MSTR SubAnimName(int) override { return L"Parameters"; }
    int NumParamBlocks() override { return 1; }
    IParamBlock2* GetParamBlock(int) override { return block_; }
    IParamBlock2* GetParamBlockByID(BlockID id) override { return block_ != nullptr && block_->ID() == id ? block_ : nullptr; }
    int NumRefs() override { return 1; }
    RefTargetHandle GetReference(int) override { return block_; }
    RefResult NotifyRefChanged(const Interval&, RefTargetHandle hTarget, PartID&, RefMessage message, BOOL) override;
    RefTargetHandle Clone(RemapDir& remap) override;

 protected:
    explicit GreyMap(ClassDesc2& mapClass) : class_(mapClass) { class_.MakeAutoParamBlocks(this); }
    void SetReference(int, RefTargetHandle target) override { block_ = static_cast<IParamBlock2*>(target); }
    /// Takes over what stands in the block.
    virtual void ReadValues(TimeValue t);
    /// @param u, v  after the tiling; v runs upwards
    virtual float ValueAt(float u, float v) const = 0;
    virtual void CopyTo(GreyMap&) const {}

    IParamBlock2* block_ = nullptr;

 private:
    ClassDesc2& class_;
    float tilingU_ = 1.0f, tilingV_ = 1.0f;
};

// Parameters of both.
constexpr ParamID kTilingU = 0, kTilingV = 1;

/// A picture, smooth between the middles of its pixels. Without a picture, or with one that can't be read, it is white all
/// over.
class BitmapMap final : public GreyMap {
 public:
    BitmapMap();
    const std::filesystem::path& File() const { return file_; }
    /// It is read by the next `LoadMapFiles`; its name goes into scene files as it stands.
    void SetFile(std::filesystem::path file);
    const GreyImage& Image() const { return image_; }
    /// Why there is no picture, one sentence; empty where all went well.
    const std::string& Problem() const { return problem_; }

    /// What goes wrong is told to the desktop as well.
    void LoadMapFiles(TimeValue) override;
    IOResult Save(ISave* isave) override;
    IOResult Load(ILoad* iload) override;

 protected:
    float ValueAt(float u, float v) const override;
    void CopyTo(GreyMap& copy) const override;

 private:
    std::filesystem::path file_;
    GreyImage image_;
    std::string problem_;
};

/// Two by two fields.
class CheckerMap final : public GreyMap {
 public:
    static constexpr ParamID kFirst = 2, kSecond = 3;  // 0..1; the first fields lie at the lower left and the upper right
    CheckerMap();

 protected:
    void ReadValues(TimeValue t) override;
    float ValueAt(float u, float v) const override;

 private:
    float first_ = 0.0f, second_ = 1.0f;
};

ClassDesc2& BitmapMapClass();
ClassDesc2& CheckerMapClass();

}  // namespace tavrik_host
