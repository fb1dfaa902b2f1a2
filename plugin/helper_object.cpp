#include "plugin/helper_object.h"

#include "plugin/wide_text.h"

namespace tavrik_plugin {
namespace {

constexpr float kQuarterTurn = 1.5708f;

/// What a view draws into; null where there is none.
GraphicsWindow* WindowOf(ViewExp* view) { return view != nullptr && view->IsAlive() ? view->getGW() : nullptr; }

Box3 BoxAround(const std::vector<Point3>& points) {
    Box3 box;
    box.Init();
    for (const Point3& p : points) box += p;
    return box;
}

Box3 BoxAround(const std::vector<Point3>& points, const Matrix3& tm) {
    Box3 box;
    box.Init();
    for (const Point3& p : points) box += p * tm;
    return box;
}

}  // namespace

// ------------------------------------------------------------------------------------------------------------------- creation

int RigCreateCallBack::proc(ViewExp* vpt, int msg, int point, int, IPoint2 m, Matrix3& mat) {
    if (vpt == nullptr || !vpt->IsAlive()) return CREATE_ABORT;
    if (msg == MOUSE_FREEMOVE) vpt->SnapPreview(m, m, nullptr, SNAP_IN_3D);
    if (msg == MOUSE_ABORT) return CREATE_ABORT;
    if (msg != MOUSE_POINT && msg != MOUSE_MOVE) return CREATE_CONTINUE;
    if (object_ == nullptr) return CREATE_ABORT;  // deleted meanwhile
    if (point == 0) FirstPoint(*vpt, m, mat);
    return point == 1 ? SecondPoint(*vpt, msg, m, mat) : CREATE_CONTINUE;
}

void RigCreateCallBack::FirstPoint(ViewExp& vpt, IPoint2 m, Matrix3& mat) {
    firstPixel_ = m;
    first_ = vpt.SnapPoint(m, m, nullptr, SNAP_IN_3D);
    mat.IdentityMatrix();
    if (object_->LiesAtFirstPoint()) mat.RotateY(kQuarterTurn);
    mat.SetTrans(first_);
}

int RigCreateCallBack::SecondPoint(ViewExp& vpt, int msg, IPoint2 m, Matrix3& mat) {
    const Point3 second = vpt.SnapPoint(m, m, nullptr, SNAP_IN_3D);
    mat.IdentityMatrix();
    mat.SetTrans(first_);
    const bool hasSize = object_->Drag(second - first_);
    if (IParamBlock2* const block = object_->Block()) block->GetDesc()->InvalidateUI();
    if (msg != MOUSE_POINT) return CREATE_CONTINUE;
    return hasSize ? CREATE_STOP : CREATE_ABORT;
}

// ---------------------------------------------------------------------------------------------------------------------- frame

RigHelper::~RigHelper() {
    statics_.create.Forget(this);
    DeleteAllRefsFromMe();
}

void RigHelper::TAVRIK_GET_CLASS_NAME(s) { s = WideText(class_.Identity().getClassName); }

void RigHelper::BeginEditParams(IObjParam* ip, ULONG flags, Animatable* prev) {
    statics_.ip = ip;
    class_.BeginEditParams(ip, this, flags, prev);
    if (ParamMap2UserDlgProc* const proc = DialogProc()) BlockDescOf(class_.Identity().objectClass).SetUserDlgProc(proc);
}

void RigHelper::EndEditParams(IObjParam* ip, ULONG flags, Animatable* next) {
    class_.EndEditParams(ip, this, flags, next);
    statics_.ip = nullptr;
}

MSTR RigHelper::TAVRIK_SUB_ANIM_NAME { return StringOf(tavrik::kParametersString); }

IParamBlock2* RigHelper::GetParamBlockByID(BlockID id) { return pblock_ != nullptr && pblock_->ID() == id ? pblock_ : nullptr; }

RefResult RigHelper::NotifyRefChanged(const Interval&, RefTargetHandle hTarget, PartID&, RefMessage message, BOOL) {
    if (message == REFMSG_TARGET_DELETED && hTarget == pblock_) pblock_ = nullptr;
    return REF_SUCCEED;
}

RefTargetHandle RigHelper::Clone(RemapDir& remap) {
    auto* const copy = static_cast<RigHelper*>(class_.Create(FALSE));
    if (copy == nullptr) return nullptr;
    copy->ReplaceReference(0, remap.CloneRef(pblock_));
    BaseClone(this, copy, remap);
    return copy;
}

const MCHAR* RigHelper::TAVRIK_GET_OBJECT_NAME { return WideText(class_.Identity().getObjectName); }

CreateMouseCallBack* RigHelper::GetCreateMouseCallBack() {
    statics_.create.SetObject(this);
    return &statics_.create;
}

Color RigHelper::LineColor(INode& node) const {
    if (node.Selected() != 0) return {1.0f, 1.0f, 1.0f};
    if (ShowsLock() && IsLocked(node)) return {0.0f, 0.0f, 1.0f};
    return Color(node.GetWireColor());
}

void RigHelper::Draw(GraphicsWindow& gw, TimeValue, INode&) const { DrawLines(gw, Lines()); }

int RigHelper::Display(TimeValue t, INode* inode, ViewExp* vpt, int) {
    GraphicsWindow* const gw = WindowOf(vpt);
    if (gw == nullptr) return 0;
    ReadValues(t);
    gw->setTransform(inode->GetObjectTM(t));
    gw->setColor(LINE_COLOR, LineColor(*inode));
    Draw(*gw, t, *inode);
    return 0;
}

int RigHelper::HitTest(TimeValue t, INode* inode, int type, int crossing, int, IPoint2* p, ViewExp* vpt) {
    GraphicsWindow* const gw = WindowOf(vpt);
    if (gw == nullptr) return 0;
    const auto draw = [&] {
        ReadValues(t);
        gw->setTransform(inode->GetObjectTM(t));
        Draw(*gw, t, *inode);
    };
    const auto report = [&](DWORD distance) { vpt->LogHit(inode, nullptr, distance, 0, nullptr); };
    return HitsDrawing(*gw, type, crossing, p, draw, report) ? 1 : 0;
}

void RigHelper::GetWorldBoundBox(TimeValue t, INode* inode, ViewExp*, Box3& box) {
    ReadValues(t);
    box = BoxAround(Extent(), inode->GetObjectTM(t));
}

void RigHelper::GetLocalBoundBox(TimeValue t, INode* inode, ViewExp* vpt, Box3& box) { GetWorldBoundBox(t, inode, vpt, box); }

void RigHelper::GetDeformBBox(TimeValue t, Box3& box, Matrix3*, BOOL) {
    ReadValues(t);
    box = BoxAround(Extent());
}

void RigHelper::InitNodeName(MSTR& s) { s = WideText(class_.Identity().initNodeName); }

Interval RigHelper::ObjectValidity(TimeValue t) {
    ReadValues(t);
    return Interval(t, t);
}

std::vector<Point3> BoxCorners(const Point3& low, const Point3& high) {
    std::vector<Point3> corners;
    for (int i = 0; i < 8; ++i) {
        corners.emplace_back((i & 1) != 0 ? high.x : low.x, (i & 2) != 0 ? high.y : low.y, (i & 4) != 0 ? high.z : low.z);
    }
    return corners;
}

std::vector<Point3> BoxCorners(float x, float y, float z) { return BoxCorners(Point3(-x, -y, -z), Point3(x, y, z)); }

}  // namespace tavrik_plugin
