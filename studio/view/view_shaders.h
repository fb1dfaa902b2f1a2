#pragma once
/// What the graphics card runs. Frames are sixteen numbers, row by row; there they are columns, and vectors multiply from the
/// right: the same product.

namespace tavrik_studio {

// Of meshes. Each of these may be defined:
//   FLAT     the mesh has no normals: each triangle faces where it lies
//   PICTURE  a picture colours it
//   TRACKS   tyre tracks lie on it
//   GLOSSY   it mirrors sun and sky
//   MASK     only where it is matters
//   CUT      what lies in front of a flat view's eye is left out
inline constexpr const char* kMeshVertex = R"(
layout(location = 0) in vec3 aPoint;
layout(location = 1) in vec3 aNormal;
layout(location = 2) in vec2 aSpot;
uniform mat4 uPlace;
uniform mat4 uClip;
uniform mat4 uTurn;  // of normals
uniform vec4 uSpots; // scale and offset of places in the picture
out vec3 vWorld;
#ifndef FLAT
out vec3 vNormal;
#endif
#ifdef PICTURE
out vec2 vSpot;
#endif
void main() {
    vec4 world = uPlace * vec4(aPoint, 1.0);
    vWorld = world.xyz;
#ifndef FLAT
    vNormal = (uTurn * vec4(aNormal, 0.0)).xyz;
#endif
#ifdef PICTURE
    vSpot = aSpot * uSpots.xy + uSpots.zw;
#endif
    gl_Position = uClip * world;
}
)";
inline constexpr const char* kMeshFragment = R"(
in vec3 vWorld;
#ifndef FLAT
in vec3 vNormal;
#endif
#ifdef PICTURE
in vec2 vSpot;
uniform sampler2D uPicture;
#endif
#ifdef TRACKS
uniform sampler2D uTracks;
uniform vec4 uTrackSquare;  // x, y of the lower corner, 1 / side
#endif
uniform vec4 uEye;     // w = 0: flat, and the rest is the direction back to the eye
uniform vec3 uColor;
uniform vec3 uGlow;
uniform vec3 uToSun;
uniform vec3 uSun;
uniform vec3 uFromAbove;
uniform vec3 uFromBelow;
uniform float uAlpha;
uniform float uCutoff; // what covers less is cut out; below 0: nothing is
uniform float uGloss;
uniform float uMetal;
#ifdef CUT
uniform float uCut;
#endif
out vec4 oColor;

vec3 ToScreen(vec3 c) {
    // The screen's curve in square roots, right to half a step of 255: without a graphics card powers take several times as long.
    c = clamp(c, 0.0, 1.0);
    vec3 r = sqrt(c), rr = sqrt(r), rrr = sqrt(rr);
    return clamp(0.662002687 * r + 0.684122060 * rr - 0.323583601 * rrr - 0.0225411470 * c, 0.0, 1.0);
}

void main() {
#ifdef CUT
    if (dot(uEye.xyz, vWorld) > uCut) discard;
#endif
#ifdef MASK
    oColor = vec4(1.0);
#else
    vec3 toEye = uEye.w > 0.5 ? uEye.xyz - vWorld : uEye.xyz;
#ifdef FLAT
    vec3 n = normalize(cross(dFdx(vWorld), dFdy(vWorld)));
#else
    vec3 n = normalize(vNormal);
#endif
    if (dot(n, toEye) < 0.0) n = -n;  // whichever side shows is lit
    vec4 color = vec4(uColor, uAlpha);
#ifdef PICTURE
    color *= texture(uPicture, vSpot);
    if (color.a < uCutoff) discard;
#endif
#ifdef TRACKS
    vec2 at = (vWorld.xy - uTrackSquare.xy) * uTrackSquare.z;
    if (at.x >= 0.0 && at.y >= 0.0 && at.x <= 1.0 && at.y <= 1.0) color.rgb *= texture(uTracks, vec2(at.x, 1.0 - at.y)).rgb;
#endif
    float lit = max(dot(n, uToSun), 0.0);
    vec3 sky = mix(uFromBelow, uFromAbove, 0.5 + 0.5 * n.z);
    vec3 light = uSun * lit + sky;
#ifdef GLOSSY
    toEye = normalize(toEye);
    float facing = clamp(1.0 - dot(n, toEye), 0.0, 1.0);
    float five = facing * facing * facing * facing * facing;
    vec3 head = mix(vec3(0.04), color.rgb, uMetal);
    vec3 mirrored = (head + (1.0 - head) * five) * uGloss;
    vec3 way = reflect(-toEye, n);
    vec3 seen = mix(uFromBelow, uFromAbove, smoothstep(-0.15, 0.25, way.z)) * 1.6;
    float glint = max(dot(way, uToSun), 0.0);
    glint *= glint; glint *= glint; glint *= glint; glint *= glint;
    vec3 shown = color.rgb * light * (1.0 - uMetal * uGloss) * (1.0 - mirrored) + mirrored * (seen + uSun * glint * glint * 4.0);
#else
    vec3 shown = color.rgb * light;
#endif
    oColor = vec4(ToScreen(shown + uGlow), color.a);
#endif
}
)";

// Of lines with a width, each two triangles that always face the eye. What is in front of the near plane is cut off here, since
// a line's two ends decide together which way it goes across the picture.
inline constexpr const char* kLineVertex = R"(
layout(location = 0) in vec3 aFrom;
layout(location = 1) in vec3 aTo;
layout(location = 2) in vec4 aColor;
uniform mat4 uClip;
uniform vec2 uHalfSize;   // of the picture, pixels
uniform float uHalfWidth;
uniform float uRim;
uniform vec4 uEye;        // as for meshes
uniform float uPull;      // towards the eye: in perspective a share of the way, else units
out vec4 vColor;
out vec3 vWorld;
noperspective out float vAcross;
void main() {
    int corner = gl_VertexID & 3;
    vColor = aColor;
    vec3 a = aFrom, b = aTo;
    vec4 ca = uClip * vec4(a, 1.0), cb = uClip * vec4(b, 1.0);
    float da = ca.z + ca.w, db = cb.z + cb.w;
    if (da <= 0.0 && db <= 0.0) {
        gl_Position = vec4(2.0, 2.0, 2.0, 1.0);
        vWorld = a;
        vAcross = 0.0;
        return;
    }
    float t = da / (da - db);
    if (da < 0.0) { a = mix(a, b, t); ca = mix(ca, cb, t); }
    else if (db < 0.0) { b = mix(a, b, t); cb = mix(ca, cb, t); }
    vec2 sa = ca.xy / ca.w * uHalfSize, way = cb.xy / cb.w * uHalfSize - sa;
    float size = length(way);
    vec2 d = size > 1e-3 ? way / size : vec2(1.0, 0.0);
    bool isEnd = (corner & 1) == 1;
    float side = (corner & 2) == 0 ? -1.0 : 1.0;
    float reach = uHalfWidth + 0.5 + uRim;
    vec4 c = isEnd ? cb : ca;
    vWorld = isEnd ? b : a;
    vec2 off = vec2(-d.y, d.x) * (side * reach) + d * ((isEnd ? 0.5 : -0.5) * uHalfWidth);
    c.xy += off / uHalfSize * c.w;
    vec3 pulled = uEye.w > 0.5 ? mix(vWorld, uEye.xyz, uPull) : vWorld + uEye.xyz * uPull;
    vec4 pc = uClip * vec4(pulled, 1.0);
    c.z = clamp(pc.z / pc.w, -0.99999, 1.0) * c.w;
    vAcross = side * reach;
    gl_Position = c;
}
)";
inline constexpr const char* kLineFragment = R"(
in vec4 vColor;
in vec3 vWorld;
noperspective in float vAcross;
uniform float uHalfWidth;
uniform float uRim;
uniform vec3 uRimColor;
uniform float uRimAlpha;
uniform float uAlpha;
uniform float uLeast;  // what covers less of a pixel is left out
uniform vec4 uFade;  // a middle, and how far from it lines have faded; 0: they don't
out vec4 oColor;
void main() {
    float d = abs(vAcross);
    float core = clamp(uHalfWidth + 0.5 - d, 0.0, 1.0);
    float rim = uRim > 0.0 ? clamp(uHalfWidth + 0.5 + uRim - d, 0.0, 1.0) * uRimAlpha : 0.0;
    float cover = core + (1.0 - core) * rim;
    if (cover < uLeast) discard;
    float fade = uFade.w > 0.0 ? 1.0 - smoothstep(0.35, 1.0, distance(vWorld, uFade.xyz) / uFade.w) : 1.0;
    oColor = vec4(mix(uRimColor, vColor.rgb, core / max(cover, 1e-3)), cover * vColor.a * uAlpha * fade);
}
)";

// Over the whole picture.
inline constexpr const char* kScreenVertex = R"(
out vec2 vAt;
void main() {
    vAt = vec2((gl_VertexID & 1) * 4 - 1, (gl_VertexID & 2) * 2 - 1);
    gl_Position = vec4(vAt, 1.0, 1.0);
}
)";
inline constexpr const char* kSkyFragment = R"(
in vec2 vAt;
uniform vec3 uAhead, uRight, uUp;  // the last two reach to the picture's edges
uniform vec3 uZenith, uHorizon, uHaze;
out vec4 oColor;
void main() {
    float z = normalize(uAhead + uRight * vAt.x + uUp * vAt.y).z;
    vec3 c = z < 0.0 ? mix(uHorizon, uHaze, min(1.0, -z * 12.0)) : mix(uHorizon, uZenith, min(1.0, sqrt(z) * 1.15));
    oColor = vec4(c, 1.0);
}
)";
/// Marks the edge of whatever a mask shows.
inline constexpr const char* kOutlineFragment = R"(
in vec2 vAt;
uniform sampler2D uMask;
uniform vec2 uPixel;  // in places of the mask
uniform vec3 uColor;
out vec4 oColor;
float Near(vec2 at, float r) {
    vec2 p = uPixel * r, q = p * 0.7;
    float m = texture(uMask, at + vec2(p.x, 0.0)).r;
    m = max(m, texture(uMask, at - vec2(p.x, 0.0)).r);
    m = max(m, texture(uMask, at + vec2(0.0, p.y)).r);
    m = max(m, texture(uMask, at - vec2(0.0, p.y)).r);
    m = max(m, texture(uMask, at + q).r);
    m = max(m, texture(uMask, at - q).r);
    m = max(m, texture(uMask, at + vec2(q.x, -q.y)).r);
    return max(m, texture(uMask, at - vec2(q.x, -q.y)).r);
}
void main() {
    vec2 at = vAt * 0.5 + 0.5;
    if (texture(uMask, at).r > 0.5) discard;
    float inner = Near(at, 2.0);
    float outer = inner > 0.5 ? 1.0 : Near(at, 3.2) * 0.35;
    if (outer < 0.1) discard;
    oColor = vec4(inner > 0.5 ? uColor : vec3(0.0), outer);
}
)";

}  // namespace tavrik_studio
