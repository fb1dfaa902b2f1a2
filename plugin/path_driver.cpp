#include "plugin/path_driver.h"

#include <splshape.h>

#include "drive/target_driver.h"
#include "plugin/convert.h"
#include "plugin/master.h"
#include "rig/parameter_tables.h"

namespace tavrik_plugin {
namespace {

tavrik::PolyLine LineOf(const PolyLine& line, const Matrix3& tm) {
    tavrik::PolyLine result;
    result.closed = line.IsClosed() != FALSE;
    for (int i = 0; i < line.numPts; ++i) result.points.push_back(FromHost(line.pts[i].p * tm));
    return result;
}

/// A node's spline in world space.
class NodeSpline final : public tavrik::PathSource {
 public:
    explicit NodeSpline(INode& node) : node_(node) {}
    bool MakePolyShape(tavrik::PolyShape& shape) override {
        Object* const object = node_.EvalWorldState(0).obj;
        if (object == nullptr || object->CanConvertToType(splineShapeClassID) == 0) return false;
        const Matrix3 tm = node_.GetObjectTM(0);
        auto* const spline = static_cast<ShapeObject*>(object->ConvertToType(0, splineShapeClassID));
        if (spline == nullptr) return false;
        PolyShape flat;
        spline->MakePolyShape(0, flat, PSHAPE_BUILTIN_STEPS, FALSE);
        if (spline != object) spline->MaybeAutoDelete();  // made for us alone
        for (int i = 0; i < flat.numLines; ++i) shape.lines.push_back(LineOf(flat.lines[i], tm));
        return true;
    }

 private:
    INode& node_;
};

class NodePositions final : public tavrik::TargetPositions {
 public:
    explicit NodePositions(INode& node) : node_(node) {}
    tavrik::Point3 PositionAt(TimeValue tick) const override { return FromHost(node_.GetObjectTM(tick).GetTrans()); }

 private:
    INode& node_;
};

}  // namespace

void PathDriver::ReadSettings() {
    INode* const node = NodeOf(master_.Block(), tavrik::MasterParam::Driving_Target);
    target_ = node != nullptr ? node->GetHandle() : 0;
}

INode* PathDriver::Target() const { return target_ != 0 ? GetCOREInterface()->GetINodeByHandle(target_) : nullptr; }

bool PathDriver::TargetIsShape() const {
    INode* const node = Target();
    Object* const object = node != nullptr ? node->EvalWorldState(0).obj : nullptr;
    return object != nullptr && object->CanConvertToType(genericShapeClassID) != 0;
}

void PathDriver::BuildPath() {
    tavrik::PathField& path = master_.Session().path;
    INode* const node = Target();
    if (node == nullptr) {
        path.Release();
        return;
    }
    NodeSpline spline(*node);
    path.Build(&spline);
}

void PathDriver::DriveToTarget(tavrik::DriveSession& session) {
    INode* const node = Target();
    if (node == nullptr) return;
    const NodePositions positions(*node);
    tavrik::DriveToTarget(session, &positions);
}

void PathDriver::DriveAlongPath(tavrik::DriveSession& session) { tavrik::DriveAlongPath(session); }

}  // namespace tavrik_plugin
