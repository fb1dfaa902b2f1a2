#include "surface/surface_triangle.h"

#include <cmath>

namespace tavrik {

bool SetUpTriangle(const Point3& p0, const Point3& p1, const Point3& p2, SurfaceTriangle& triangle) {
    triangle.normal = {};
    triangle.planeD = 0.0f;
    for (float& element : triangle.m) element = 0.0f;
    triangle.baseU = triangle.baseV = 0.0f;
    triangle.axisU = triangle.axisV = triangle.spare = 0;

    const Point3 product = Cross(p1 - p0, p2 - p0);
    const float length = Length(product);
    // A sliver's product may be above zero and its square below the smallest float. Kept as it is, such a tiny normal would be
    // one that rays can hit.
    if (!(length > 0.0f)) return false;
    const Point3 normal = product * (1.0f / length);
    triangle.normal = normal;
    triangle.planeD = Dot(Centroid(p0, p1, p2), normal);

    const float nx = std::fabs(normal.x), ny = std::fabs(normal.y), nz = std::fabs(normal.z);
    if (nz > nx && nz > ny) {
        triangle.axisU = 0, triangle.axisV = 1;
    } else if (nx > ny) {
        triangle.axisU = 1, triangle.axisV = 2;
    } else {
        triangle.axisU = 2, triangle.axisV = 0;
    }

    //   m = adj(p1 - p0 | p2 - p0) / det     in the two axes, its elements in the order of the basis
    triangle.baseU = p0[triangle.axisU];
    triangle.baseV = p0[triangle.axisV];
    float* m = triangle.m;
    m[0] = p1[triangle.axisU] - triangle.baseU;
    m[1] = p1[triangle.axisV] - triangle.baseV;
    m[2] = p2[triangle.axisU] - triangle.baseU;
    m[3] = p2[triangle.axisV] - triangle.baseV;
    const float det = m[0] * m[3] - m[2] * m[1];
    for (int i = 0; i < 4; ++i) m[i] /= det;
    return true;
}

}  // namespace tavrik
