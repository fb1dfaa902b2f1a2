#include "host/render/ray_scene.h"

#include <embree3/rtcore.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>

#include "host/scene_axes.h"

namespace tavrik_host {
namespace {

// One thread builds, and one instruction set traces: the machines of a render farm may differ, their pictures should not.
constexpr const char* kDevice = "threads=1,isa=sse4.2";
// What a ray looks for.
constexpr unsigned kSeen = 1, kBlocks = 2;
constexpr float kNoArea = 1e-20f;

bool Casts(const RenderMaterial& material) { return material.cover != RenderMaterial::Cover::SeeThrough; }

RTCGeometry BuildPart(RTCDevice device, const RenderPart& part, const RenderMaterial& material) {
    RTCGeometry geometry = rtcNewGeometry(device, RTC_GEOMETRY_TYPE_TRIANGLE);
    void* const vertices =
        rtcSetNewGeometryBuffer(geometry, RTC_BUFFER_TYPE_VERTEX, 0, RTC_FORMAT_FLOAT3, 3 * sizeof(float), part.points.size());
    std::memcpy(vertices, part.points.data(), part.points.size() * sizeof(Point3));
    void* const corners = rtcSetNewGeometryBuffer(geometry, RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT3,
                                                  3 * sizeof(std::uint32_t), part.corners.size() / 3);
    std::memcpy(corners, part.corners.data(), part.corners.size() * sizeof(std::uint32_t));
    rtcSetGeometryMask(geometry, Casts(material) ? kSeen | kBlocks : kSeen);
    rtcCommitGeometry(geometry);
    return geometry;
}

RTCRay ToRtc(const Ray& ray, unsigned mask) {
    RTCRay rtc = {};
    rtc.org_x = ray.origin.x;
    rtc.org_y = ray.origin.y;
    rtc.org_z = ray.origin.z;
    rtc.dir_x = ray.direction.x;
    rtc.dir_y = ray.direction.y;
    rtc.dir_z = ray.direction.z;
    rtc.tnear = ray.near;
    rtc.tfar = ray.far;
    rtc.mask = mask;
    return rtc;
}

/// A direction across a surface, taken to the world: whatever the axes' scales, it stays across.
Point3 TurnAcross(const Point3& n, const Matrix3& place) {
    const Point3 x = place.GetRow(0), y = place.GetRow(1), z = place.GetRow(2);
    const Point3 turned = CrossProd(y, z) * n.x + CrossProd(z, x) * n.y + CrossProd(x, y) * n.z;
    // A mirrored frame turns the triangle's order round, and with it what is across.
    return DotProd(CrossProd(x, y), z) < 0.0f ? -Normalize(turned) : Normalize(turned);
}

bool CanStand(const Matrix3& place) {
    if (!IsFinite(place)) return false;
    const float volume = std::abs(DotProd(CrossProd(place.GetRow(0), place.GetRow(1)), place.GetRow(2)));
    return std::isfinite(volume) && volume > kNoArea;
}

Point3 Between(const std::vector<Point3>& values, const std::uint32_t* corners, float u, float v) {
    return values[corners[0]] * (1.0f - u - v) + values[corners[1]] * u + values[corners[2]] * v;
}

Point2 Between(const std::vector<Point2>& values, const std::uint32_t* corners, float u, float v) {
    const float w = 1.0f - u - v;
    const Point2 &a = values[corners[0]], &b = values[corners[1]], &c = values[corners[2]];
    return {a.x * w + b.x * u + c.x * v, a.y * w + b.y * u + c.y * v};
}

/// How fast the place in a picture moves along a triangle.
float SpotsPerUnit(const RenderPart& part, const std::uint32_t* corners, const Matrix3& place) {
    const Point3 a = part.points[corners[0]];
    const Point3 area =
        CrossProd(place.VectorTransform(part.points[corners[1]] - a), place.VectorTransform(part.points[corners[2]] - a));
    const Point2 &s = part.spots[corners[0]], &t = part.spots[corners[1]], &r = part.spots[corners[2]];
    const float spots = std::abs((t.x - s.x) * (r.y - s.y) - (r.x - s.x) * (t.y - s.y)), size = Length(area);
    return size > kNoArea ? std::sqrt(spots / size) : 0.0f;
}

}  // namespace

struct RayShapes::Device {
    RTCDevice device = rtcNewDevice(kDevice);
    std::vector<RTCScene> shapes;  // beside the model's

    ~Device() {
        for (RTCScene scene : shapes) rtcReleaseScene(scene);
        rtcReleaseDevice(device);
    }
};

RayShapes::RayShapes(const RenderModel& model) : model_(model), device_(std::make_unique<Device>()) {
    for (const RenderShape& shape : model.shapes) {
        RTCScene scene = rtcNewScene(device_->device);
        device_->shapes.push_back(scene);
        rtcSetSceneFlags(scene, RTC_SCENE_FLAG_ROBUST);
        for (std::size_t i = 0; i < shape.parts.size(); ++i) {
            if (shape.parts[i].corners.empty()) continue;
            RTCGeometry part = BuildPart(device_->device, shape.parts[i], model.materials[shape.parts[i].material]);
            rtcAttachGeometryByID(scene, part, unsigned(i));
            rtcReleaseGeometry(part);
        }
        rtcCommitScene(scene);
    }
}

RayShapes::~RayShapes() = default;

struct RayFrame::Top {
    RTCScene scene = nullptr;
    ~Top() { rtcReleaseScene(scene); }
};

RayFrame::RayFrame(const RayShapes& shapes, TimeValue tick) : shapes_(shapes), top_(std::make_unique<Top>()) {
    const RayShapes::Device& device = *shapes.device_;
    top_->scene = rtcNewScene(device.device);
    rtcSetSceneFlags(top_->scene, RTC_SCENE_FLAG_ROBUST);
    for (const RenderThing& thing : shapes.Model().things) {
        const Matrix3 place = thing.node->GetObjectTM(tick);
        places_.push_back(place);
        if (!CanStand(place)) continue;  // scaled to nothing: nobody sees it
        RTCGeometry instance = rtcNewGeometry(device.device, RTC_GEOMETRY_TYPE_INSTANCE);
        rtcSetGeometryInstancedScene(instance, device.shapes[thing.shape]);
        float columns[12];
        for (int r = 0; r < 4; ++r) {
            const Point3 row = place.GetRow(r);
            columns[3 * r] = row.x;
            columns[3 * r + 1] = row.y;
            columns[3 * r + 2] = row.z;
        }
        rtcSetGeometryTransform(instance, 0, RTC_FORMAT_FLOAT3X4_COLUMN_MAJOR, columns);
        rtcSetGeometryMask(instance, kSeen | kBlocks);
        rtcCommitGeometry(instance);
        rtcAttachGeometryByID(top_->scene, instance, unsigned(places_.size() - 1));
        rtcReleaseGeometry(instance);
    }
    rtcCommitScene(top_->scene);
}

RayFrame::~RayFrame() = default;

bool RayFrame::Meets(const Ray& ray, RayHit& hit) const {
    RTCIntersectContext context;
    rtcInitIntersectContext(&context);
    RTCRayHit asked = {};
    asked.ray = ToRtc(ray, kSeen);
    asked.hit.geomID = RTC_INVALID_GEOMETRY_ID;
    asked.hit.instID[0] = RTC_INVALID_GEOMETRY_ID;
    rtcIntersect1(top_->scene, &context, &asked);
    if (asked.hit.geomID == RTC_INVALID_GEOMETRY_ID) return false;
    const RenderModel& model = shapes_.Model();
    hit.thing = asked.hit.instID[0];
    const Matrix3& place = places_[hit.thing];
    const RenderPart& part = model.shapes[model.things[hit.thing].shape].parts[asked.hit.geomID];
    const std::uint32_t* const corners = &part.corners[3 * std::size_t(asked.hit.primID)];
    hit.part = &part;
    hit.distance = asked.ray.tfar;
    hit.point = ray.origin + ray.direction * hit.distance;
    hit.flat = TurnAcross(Point3(asked.hit.Ng_x, asked.hit.Ng_y, asked.hit.Ng_z), place);
    hit.normal = hit.flat;
    if (!part.normals.empty()) {
        const Point3 shaded = TurnAcross(Between(part.normals, corners, asked.hit.u, asked.hit.v), place);
        if (LengthSquared(shaded) > 0.5f) hit.normal = shaded;
    }
    if (DotProd(hit.flat, ray.direction) > 0.0f) hit.flat = -hit.flat;
    if (DotProd(hit.normal, hit.flat) < 0.0f) hit.normal = -hit.normal;
    hit.spot = Point2(0.0f, 0.0f);
    hit.spotsPerUnit = 0.0f;
    if (!part.spots.empty()) {
        hit.spot = Between(part.spots, corners, asked.hit.u, asked.hit.v);
        hit.spotsPerUnit = SpotsPerUnit(part, corners, place);
    }
    return true;
}

bool RayFrame::IsBlocked(const Ray& ray) const {
    RTCIntersectContext context;
    rtcInitIntersectContext(&context);
    RTCRay asked = ToRtc(ray, kBlocks);
    rtcOccluded1(top_->scene, &context, &asked);
    return asked.tfar < 0.0f;
}

}  // namespace tavrik_host
