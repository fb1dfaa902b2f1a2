#include "host/render/gizmo_picture.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "host/render/line_overlay.h"
#include "host/render/ray_scene.h"
#include "host/render/render_camera.h"
#include "host/render/render_frame.h"
#include "host/rig_objects.h"
#include "host/sdk/line_view.h"
#include "host/sdk/standin.h"

namespace tavrik_host {
namespace {

using tavrik::ObjectClass;
using tavrik::RgbImage;
using tavrik::RgbPixel;

struct NamedView {
    RigView view;
    std::string_view name;
};
constexpr NamedView kViews[] = {
    {RigView::Front, "front"}, {RigView::Side, "side"}, {RigView::Top, "top"}, {RigView::Perspective, "perspective"}};

constexpr RgbPixel kBackdrop{150, 156, 163}, kGap{52, 56, 60}, kInk{24, 26, 28};
constexpr int kGapWidth = 2;
constexpr float kPale = 0.42f;  // how much of the backdrop is mixed into surfaces, so that lines stand out from them

RgbPixel Mix(const RgbPixel& a, const RgbPixel& b, float part) {
    const auto mix = [part](std::uint8_t x, std::uint8_t y) {
        return std::uint8_t(std::lround(float(x) * (1.0f - part) + float(y) * part));
    };
    return {mix(a.red, b.red), mix(a.green, b.green), mix(a.blue, b.blue)};
}

// ---------------------------------------------------------------------------------------------------------- what is looked at

bool IsRigObject(INode& node) {
    const ObjectClass kind = ClassOf(node);
    return kind != ObjectClass::None && kind != ObjectClass::Other;
}

std::vector<INode*> AllRigObjects() {
    std::vector<INode*> nodes;
    for (INode* const node : AllNodes()) {
        if (IsRigObject(*node)) nodes.push_back(node);
    }
    return nodes;
}

/// A master's box and where a car starts tell little of how it is built; they are drawn, but nobody steps back for them.
bool IsAside(INode& node) {
    const ObjectClass kind = ClassOf(node);
    return kind == ObjectClass::Tavrik || kind == ObjectClass::Start;
}

/// The drawn lines, and the points that a view must hold.
struct RigLines {
    std::vector<ViewLine> lines;
    std::vector<Point3> points;
};

RigLines LinesOf(const std::vector<INode*>& nodes, TimeValue tick) {
    RigLines rig;
    LineView view{ViewCamera{}};
    std::vector<Point3> aside;
    for (INode* const node : nodes) {
        const std::size_t before = view.Window().Lines().size();
        view.DrawNode(tick, *node);
        std::vector<Point3>& points = IsAside(*node) ? aside : rig.points;
        for (std::size_t i = before; i < view.Window().Lines().size(); ++i) {
            points.push_back(view.Window().Lines()[i].from);
            points.push_back(view.Window().Lines()[i].to);
        }
    }
    rig.lines = view.Window().Lines();
    if (rig.points.empty()) rig.points = std::move(aside);
    return rig;
}

/// Which way the first car heads, degrees clockwise from +Y.
float HeadingOf(const std::vector<INode*>& nodes, TimeValue tick) {
    const auto head = [tick](INode& node) {
        const Point3 ahead = node.GetNodeTM(tick).GetRow(1);
        return ahead.x != 0.0f || ahead.y != 0.0f ? std::atan2(ahead.x, ahead.y) * 57.29578f : 0.0f;
    };
    for (INode* const node : nodes) {
        if (ClassOf(*node) == ObjectClass::Chassis) return head(*node);
    }
    const std::vector<INode*> others = NodesOf(ObjectClass::Chassis);
    return others.empty() ? 0.0f : head(*others.front());
}

// -------------------------------------------------------------------------------------------------------------------- cameras

ViewState StateOf(RigView view, float heading, int width, int height, const std::vector<Point3>& points) {
    ViewState state;
    state.width = width;
    state.height = height;
    state.perspective = view == RigView::Perspective;
    state.lens = 28.0f;
    switch (view) {
        case RigView::Front:
            state.heading = heading + 180.0f;
            break;
        case RigView::Side:
            state.heading = heading - 90.0f;
            break;
        case RigView::Top:
            state.heading = heading;
            state.pitch = -90.0f;
            break;
        case RigView::Perspective:
            state.heading = heading + 142.0f;
            state.pitch = -24.0f;
            break;
    }
    return Framed(state, points);
}

RenderCamera CameraFor(const ViewState& state, const std::vector<Point3>& points) {
    const ViewCamera view = CameraOf(state);
    RenderCamera camera;
    camera.eye = view.frame.GetTrans();
    camera.right = view.frame.GetRow(0);
    camera.up = view.frame.GetRow(1);
    camera.ahead = -view.frame.GetRow(2);
    camera.isFlat = !view.perspective;
    camera.aspect = float(state.width) / float(state.height);
    camera.halfHeight = 0.5f * float(state.height) / view.scale;
    if (!camera.isFlat) return camera;
    // A flat eye stands a little off the car, so that no hill between here and the horizon hides it.
    float nearest = 1e30f, farthest = -1e30f;
    for (const Point3& p : points) {
        nearest = std::min(nearest, DotProd(p - camera.eye, camera.ahead));
        farthest = std::max(farthest, DotProd(p - camera.eye, camera.ahead));
    }
    const float off = std::max(camera.halfHeight, farthest - nearest);
    camera.eye += camera.ahead * (nearest - off);
    return camera;
}

// ------------------------------------------------------------------------------------------------------------------- painting

void PaintText(RgbImage& image, int x, int y, std::string_view text, const tavrik::CanvasFont& font) {
    for (const char c : text) {
        const tavrik::Glyph& glyph = font.GlyphOf(c);
        for (int row = 0; row < glyph.height; ++row) {
            for (int column = 0; column < glyph.width; ++column) {
                const int px = x + glyph.left + column, py = y + font.ascent - glyph.top + row;
                if (px < 0 || py < 0 || px >= image.width || py >= image.height) continue;
                const std::uint8_t ink = glyph.coverage[std::size_t(row) * std::size_t(glyph.width) + std::size_t(column)];
                image.At(px, py) = Mix(image.At(px, py), {255, 255, 255}, float(ink) / 255.0f);
            }
        }
        x += glyph.advance;
    }
}

void PaintCaption(RgbImage& image, std::string_view text, const tavrik::CanvasFont& font) {
    constexpr int kPad = 4;
    const int right = std::min(image.width, font.WidthOf(text) + 2 * kPad),
              bottom = std::min(image.height, font.Height() + kPad);
    for (int y = 0; y < bottom; ++y) {
        for (int x = 0; x < right; ++x) image.At(x, y) = Mix(image.At(x, y), kInk, 0.75f);
    }
    PaintText(image, kPad, kPad / 2, text, font);
}

std::string_view NameOf(RigView view) {
    for (const NamedView& named : kViews) {
        if (named.view == view) return named.name;
    }
    return "";
}

/// One of the views, `width` x `height`.
RgbImage PaintView(const RayFrame& rays, const RenderModel& model, TimeValue tick, const RigLines& rig, const ViewState& state,
                   int threads) {
    const RenderCamera camera = CameraFor(state, rig.points);
    RenderSettings settings;
    settings.width = state.width;
    settings.height = state.height;
    settings.samples = 8;
    settings.threads = threads;
    RgbImage image = TakePicture(rays, model, camera, nullptr, tick, settings);
    const DepthPicture depths = TakeDepths(rays, camera, state.width, state.height, threads);
    for (std::size_t i = 0; i < image.pixels.size(); ++i) {
        const bool isSurface = std::isfinite(depths.depths[i]);
        image.pixels[i] = isSurface ? Mix(image.pixels[i], kBackdrop, kPale) : kBackdrop;
    }
    LineLook look;
    look.width = std::clamp(float(state.height) / 400.0f, 1.2f, 4.0f);
    look.sunk = 0.004f * state.distance;  // a tyre's rings lie on its rubber
    PaintLines(image, depths, camera, rig.lines, look);
    return image;
}

void PutInto(RgbImage& image, const RgbImage& part, int left, int top) {
    for (int y = 0; y < part.height; ++y) {
        for (int x = 0; x < part.width; ++x) image.At(left + x, top + y) = part.At(x, y);
    }
}

}  // namespace

std::optional<RigView> RigViewNamed(std::string_view name) {
    for (const NamedView& named : kViews) {
        if (named.name == name) return named.view;
    }
    return std::nullopt;
}

std::string RigViewNames() {
    std::string names;
    for (const NamedView& named : kViews) names += (names.empty() ? "" : ", ") + std::string(named.name);
    return names;
}

RgbImage TakeGizmoPicture(const RenderModel& model, TimeValue tick, const GizmoWish& wish, const tavrik::CanvasFonts& fonts) {
    const std::vector<INode*> nodes = wish.nodes.empty() ? AllRigObjects() : wish.nodes;
    const RigLines rig = LinesOf(nodes, tick);
    const float heading = HeadingOf(nodes, tick);
    const RayShapes shapes(model);
    const RayFrame rays(shapes, tick);
    RgbImage image{wish.width, wish.height, {}};
    image.pixels.assign(std::size_t(wish.width) * std::size_t(wish.height), kGap);
    const int count = int(wish.views.size()), columns = int(std::ceil(std::sqrt(float(count))));
    const int rows = (count + columns - 1) / columns;
    for (int i = 0; i < count; ++i) {
        const int row = i / columns, inRow = std::min(columns, count - row * columns), column = i - row * columns;
        // Where the last row has fewer views, they are wider.
        const int left = column * wish.width / inRow,
                  right = (column + 1) * wish.width / inRow - (column + 1 < inRow ? kGapWidth : 0);
        const int top = row * wish.height / rows, bottom = (row + 1) * wish.height / rows - (row + 1 < rows ? kGapWidth : 0);
        if (right <= left || bottom <= top) continue;
        const RigView view = wish.views[std::size_t(i)];
        const ViewState state = StateOf(view, heading, right - left, bottom - top, rig.points);
        RgbImage part = PaintView(rays, model, tick, rig, state, wish.threads);
        PaintCaption(part, NameOf(view), fonts.tahoma10);
        PutInto(image, part, left, top);
    }
    return image;
}

}  // namespace tavrik_host
