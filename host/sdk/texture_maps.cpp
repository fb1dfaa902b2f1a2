#include "host/sdk/texture_maps.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "host/sdk/desktop.h"
#include "host/sdk/ioapi.h"

// Every float that goes through the dots of a table is promoted: that is how such calls work.
#pragma GCC diagnostic ignored "-Wdouble-promotion"

namespace tavrik_host {
namespace {

constexpr USHORT kFileChunk = 1;
constexpr std::size_t kLongestName = 4096;

template <typename Map>
class MapClass final : public ClassDesc2 {
 public:
    MapClass(const MCHAR* name, Class_ID id) : name_(name), id_(id) {}
    int IsPublic() override { return 1; }
    void* Create(BOOL) override { return static_cast<ReferenceTarget*>(new Map); }
    const MCHAR* ClassName() override { return name_; }
    SClass_ID SuperClassID() override { return TEXMAP_CLASS_ID; }
    Class_ID ClassID() override { return id_; }
    const MCHAR* Category() override { return L""; }

 private:
    const MCHAR* name_;
    Class_ID id_;
};

/// The place within one round of the map. Where there is no number there is no place either: the map's corner.
float Around(float place) {
    const float within = place - std::floor(place);
    return within >= 0.0f && within < 1.0f ? within : 0.0f;
}

float FloatOf(IParamBlock2* block, ParamID id, TimeValue t) { return block == nullptr ? 0.0f : block->GetFloat(id, t); }

}  // namespace

// --------------------------------------------------------------------------------------------------------------------- GreyMap

AColor GreyMap::EvalColor(ShadeContext& sc) {
    const float value = EvalMono(sc);
    return {value, value, value, 1.0f};
}

float GreyMap::EvalMono(ShadeContext& sc) {
    const Point3 uvw = sc.UVW(0);
    return ValueAt(uvw.x * tilingU_, uvw.y * tilingV_);
}

void GreyMap::Update(TimeValue t, Interval& valid) {
    ReadValues(t);
    valid.SetInfinite();
}

void GreyMap::Reset() { class_.MakeAutoParamBlocks(this); }

ParamDlg* GreyMap::CreateParamDlg(HWND hwMtlEdit, IMtlParams* imp) { return class_.CreateParamDlgs(hwMtlEdit, imp, this); }

void GreyMap::ReadValues(TimeValue t) {
    tilingU_ = FloatOf(block_, kTilingU, t);
    tilingV_ = FloatOf(block_, kTilingV, t);
}

RefResult GreyMap::NotifyRefChanged(const Interval&, RefTargetHandle hTarget, PartID&, RefMessage message, BOOL) {
    if (message == REFMSG_TARGET_DELETED && hTarget == block_) block_ = nullptr;
    return REF_SUCCEED;
}

RefTargetHandle GreyMap::Clone(RemapDir& remap) {
    auto* const copy = static_cast<GreyMap*>(static_cast<ReferenceTarget*>(class_.Create(FALSE)));
    *static_cast<MtlBase*>(copy) = *static_cast<MtlBase*>(this);
    CopyTo(*copy);
    copy->ReplaceReference(0, remap.CloneRef(block_));
    BaseClone(this, copy, remap);
    return copy;
}

// ------------------------------------------------------------------------------------------------------------------- BitmapMap

ClassDesc2& BitmapMapClass() {
    static auto& mapClass = *new MapClass<BitmapMap>(L"Bitmap", Class_ID(0x1001, 0));
    // clang-format off
    static auto& table = *new ParamBlockDesc2(
        0, L"parameters", 0, &mapClass, P_AUTO_CONSTRUCT, 0,
        kTilingU, L"U_Tiling", TYPE_FLOAT, 0, 0, p_default, 1.0f, p_range, 0.0001f, 10000.0f, p_end,
        kTilingV, L"V_Tiling", TYPE_FLOAT, 0, 0, p_default, 1.0f, p_range, 0.0001f, 10000.0f, p_end,
        p_end);
    // clang-format on
    static_cast<void>(table);
    return mapClass;
}

BitmapMap::BitmapMap() : GreyMap(BitmapMapClass()) {}

void BitmapMap::SetFile(std::filesystem::path file) {
    file_ = std::move(file);
    image_ = {};
    problem_.clear();
}

void BitmapMap::LoadMapFiles(TimeValue) {
    image_ = {};
    problem_.clear();
    if (file_.empty() || ReadGreyPng(file_, image_, problem_)) return;
    tavrik::TheDesktop().complaint = problem_;
}

float BitmapMap::ValueAt(float u, float v) const {
    if (image_.pixels.empty()) return 1.0f;
    const std::int32_t width = image_.width, height = image_.height;
    // Pixels have their values at their middles; rows lie from the top down.
    const float x = Around(u) * float(width) - 0.5f, y = (1.0f - Around(v)) * float(height) - 0.5f;
    const float left = std::floor(x), top = std::floor(y), fx = x - left, fy = y - top;
    const auto at = [&](std::int32_t column, std::int32_t row) {
        const std::size_t c = std::size_t((column + width) % width), r = std::size_t((row + height) % height);
        return float(image_.pixels[r * std::size_t(width) + c]) / 255.0f;
    };
    const std::int32_t column = std::int32_t(left), row = std::int32_t(top);
    const float upper = at(column, row) * (1.0f - fx) + at(column + 1, row) * fx;
    const float lower = at(column, row + 1) * (1.0f - fx) + at(column + 1, row + 1) * fx;
    return upper * (1.0f - fy) + lower * fy;
}

void BitmapMap::CopyTo(GreyMap& copy) const {
    auto& other = static_cast<BitmapMap&>(copy);
    other.file_ = file_;
    other.image_ = image_;
    other.problem_ = problem_;
}

IOResult BitmapMap::Save(ISave* isave) {
    const std::u8string name = file_.u8string();
    if (name.empty()) return IO_OK;
    isave->BeginChunk(kFileChunk);
    ULONG written = 0;
    const IOResult result = isave->Write(name.data(), ULONG(name.size()), &written);
    isave->EndChunk();
    return result;
}

IOResult BitmapMap::Load(ILoad* iload) {
    while (iload->OpenChunk() == IO_OK) {
        if (iload->CurChunkID() == kFileChunk) {
            char8_t name[kLongestName + 1];
            ULONG read = 0;
            iload->Read(name, ULONG(sizeof name), &read);  // reads what there is
            const std::u8string text(name, read);
            if (read > kLongestName || text.find(u8'\0') != std::u8string::npos) {
                tavrik::TheDesktop().complaint =
                    "A texture map names its picture in a way that no file can be called; choose it again.";
                return IO_ERROR;
            }
            SetFile(std::filesystem::path(text));
        }
        iload->CloseChunk();
    }
    return IO_OK;
}

// ------------------------------------------------------------------------------------------------------------------ CheckerMap

ClassDesc2& CheckerMapClass() {
    static auto& mapClass = *new MapClass<CheckerMap>(L"Checker", Class_ID(0x1002, 0));
    // clang-format off
    static auto& table = *new ParamBlockDesc2(
        0, L"parameters", 0, &mapClass, P_AUTO_CONSTRUCT, 0,
        kTilingU, L"U_Tiling", TYPE_FLOAT, 0, 0, p_default, 1.0f, p_range, 0.0001f, 10000.0f, p_end,
        kTilingV, L"V_Tiling", TYPE_FLOAT, 0, 0, p_default, 1.0f, p_range, 0.0001f, 10000.0f, p_end,
        CheckerMap::kFirst, L"First", TYPE_FLOAT, 0, 0, p_default, 0.0f, p_range, 0.0f, 1.0f, p_end,
        CheckerMap::kSecond, L"Second", TYPE_FLOAT, 0, 0, p_default, 1.0f, p_range, 0.0f, 1.0f, p_end,
        p_end);
    // clang-format on
    static_cast<void>(table);
    return mapClass;
}

CheckerMap::CheckerMap() : GreyMap(CheckerMapClass()) {}

void CheckerMap::ReadValues(TimeValue t) {
    GreyMap::ReadValues(t);
    first_ = FloatOf(block_, kFirst, t);
    second_ = FloatOf(block_, kSecond, t);
}

float CheckerMap::ValueAt(float u, float v) const { return (Around(u) < 0.5f) == (Around(v) < 0.5f) ? first_ : second_; }

}  // namespace tavrik_host
