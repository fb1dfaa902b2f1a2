#include "host/scene_shapes.h"

#include <fmt/format.h>

#include <cmath>
#include <vector>

#include "host/scene_axes.h"
#include "host/scene_json.h"

namespace tavrik_host {
namespace {

constexpr int kLineLoop = 2, kLineStrip = 3;

}  // namespace

int WriteShape(tavrik::GlbWriter& glb, const LineShape& shape, const std::string& name, double metresPerUnit) {
    Json primitives = Json::array();
    for (const ShapeLine& line : shape.lines) {
        if (line.points.size() < 2) continue;
        std::vector<float> positions;
        for (const Point3& point : line.points) {
            const tavrik::DPoint3 p = ToFileAxes({double(point.x), double(point.y), double(point.z)}) * metresPerUnit;
            for (const double number : {p.x, p.y, p.z}) {
                positions.push_back(float(number));
                if (!std::isfinite(positions.back())) {
                    Refuse(fmt::format("the spline of node \"{}\" has a point that is not finite.", name));
                }
            }
        }
        const int position = glb.AddFloats(positions, 3, tavrik::GlbWriter::Use::Vertices, /*bounds=*/true);
        primitives.push_back({{"attributes", {{"POSITION", position}}}, {"mode", line.closed ? kLineLoop : kLineStrip}});
    }
    return primitives.empty() ? -1 : glb.Add("meshes", {{"primitives", std::move(primitives)}});
}

}  // namespace tavrik_host
