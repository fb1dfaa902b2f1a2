#include "studio/view/gpu_model.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace tavrik_studio {
namespace {

using tavrik_host::Picture;
using tavrik_host::PictureColor;
using tavrik_host::PictureEdge;
using tavrik_host::RenderMaterial;
using tavrik_host::RenderPart;

struct Vertex {
    float point[3];
    std::int8_t normal[4];
    float spot[2];
};

std::int8_t ToByte(float x) { return std::int8_t(std::lround(std::clamp(x, -1.0f, 1.0f) * 127.0f)); }

std::vector<Vertex> VerticesOf(const RenderPart& part) {
    std::vector<Vertex> vertices(part.points.size());
    const bool hasNormals = part.normals.size() == part.points.size(), hasSpots = part.spots.size() == part.points.size();
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        const Point3& p = part.points[i];
        Vertex& vertex = vertices[i];
        vertex = {{p.x, p.y, p.z}, {0, 0, 127, 0}, {0.0f, 0.0f}};
        if (hasNormals) {
            const Point3 n = Normalize(part.normals[i]);
            vertex.normal[0] = ToByte(n.x);
            vertex.normal[1] = ToByte(n.y);
            vertex.normal[2] = ToByte(n.z);
        }
        if (hasSpots) {
            vertex.spot[0] = part.spots[i].x;
            vertex.spot[1] = part.spots[i].y;
        }
    }
    return vertices;
}

GpuPart UploadPart(const GlFunctions& gl, const RenderPart& part) {
    GpuPart gpu;
    gpu.material = part.material;
    gpu.count = GLsizei(part.corners.size());
    gpu.hasNormals = part.normals.size() == part.points.size();
    gpu.hasSpots = part.spots.size() == part.points.size();
    for (const Point3& p : part.points) gpu.box += p;
    const std::vector<Vertex> vertices = VerticesOf(part);
    gl.GenVertexArrays(1, &gpu.array);
    gl.GenBuffers(1, &gpu.vertices);
    gl.GenBuffers(1, &gpu.corners);
    gl.BindVertexArray(gpu.array);
    gl.BindBuffer(GL_ARRAY_BUFFER, gpu.vertices);
    gl.BufferData(GL_ARRAY_BUFFER, GLsizeiptr(vertices.size() * sizeof(Vertex)), vertices.data(), GL_STATIC_DRAW);
    gl.BindBuffer(GL_ELEMENT_ARRAY_BUFFER, gpu.corners);
    gl.BufferData(GL_ELEMENT_ARRAY_BUFFER, GLsizeiptr(part.corners.size() * sizeof(std::uint32_t)), part.corners.data(),
                  GL_STATIC_DRAW);
    const auto at = [](std::size_t offset) { return reinterpret_cast<const void*>(offset); };
    gl.VertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, sizeof(Vertex), at(offsetof(Vertex, point)));
    gl.VertexAttribPointer(1, 3, GL_BYTE, GL_TRUE, sizeof(Vertex), at(offsetof(Vertex, normal)));
    gl.VertexAttribPointer(2, 2, GL_FLOAT, GL_FALSE, sizeof(Vertex), at(offsetof(Vertex, spot)));
    for (const GLuint i : {0u, 1u, 2u}) gl.EnableVertexAttribArray(i);
    gl.BindVertexArray(0);
    return gpu;
}

/// From linear to the screen's bytes.
std::uint8_t ToScreenByte(float c) {
    static const std::vector<std::uint8_t> table = [] {
        std::vector<std::uint8_t> bytes(4097);
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            const float x = float(i) / 4096.0f;
            const float screen = x <= 0.0031308f ? 12.92f * x : 1.055f * std::pow(x, 1.0f / 2.4f) - 0.055f;
            bytes[i] = std::uint8_t(screen * 255.0f + 0.5f);
        }
        return bytes;
    }();
    return table[std::size_t(std::clamp(c, 0.0f, 1.0f) * 4096.0f + 0.5f)];
}

GLuint UploadPicture(const GlFunctions& gl, const Picture& picture) {
    constexpr int kMostPixels = 2048;  // to a side: a screen shows no more of it at once
    if (picture.width() <= 0 || picture.height() <= 0) return 0;
    int step = 1;
    while (std::max(picture.width(), picture.height()) / step > kMostPixels) step *= 2;
    const int width = std::max(1, picture.width() / step), height = std::max(1, picture.height() / step);
    std::vector<std::uint8_t> bytes(std::size_t(width) * std::size_t(height) * 4);
    std::uint8_t* out = bytes.data();
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x, out += 4) {
            const PictureColor c = picture.At((float(x) + 0.5f) / float(width), (float(y) + 0.5f) / float(height), float(step),
                                              PictureEdge::Clamp, PictureEdge::Clamp, false);
            out[0] = ToScreenByte(c.red);
            out[1] = ToScreenByte(c.green);
            out[2] = ToScreenByte(c.blue);
            out[3] = std::uint8_t(std::clamp(c.alpha, 0.0f, 1.0f) * 255.0f + 0.5f);
        }
    }
    return MakeTexture(gl, width, height, bytes);
}

GLint WrapOf(PictureEdge edge) {
    return edge == PictureEdge::Repeat ? GL_REPEAT : edge == PictureEdge::Clamp ? GL_CLAMP_TO_EDGE : GL_MIRRORED_REPEAT;
}

}  // namespace

GLuint MakeTexture(const GlFunctions& gl, int width, int height, const std::vector<std::uint8_t>& bytes) {
    GLuint texture = 0;
    gl.GenTextures(1, &texture);
    gl.BindTexture(GL_TEXTURE_2D, texture);
    gl.PixelStorei(GL_UNPACK_ALIGNMENT, 1);
    gl.TexImage2D(GL_TEXTURE_2D, 0, GL_SRGB8_ALPHA8, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, bytes.data());
    gl.GenerateMipmap(GL_TEXTURE_2D);
    gl.TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR);
    gl.TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    gl.TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    gl.TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    return texture;
}

void GpuModel::Upload(const GlFunctions& gl, const tavrik_host::RenderModel& model) {
    Delete(gl);
    for (const tavrik_host::RenderShape& shape : model.shapes) {
        std::vector<GpuPart>& parts = shapes_.emplace_back();
        for (const RenderPart& part : shape.parts) {
            if (!part.corners.empty()) parts.push_back(UploadPart(gl, part));
        }
    }
    for (const Picture& picture : model.pictures) pictures_.push_back(UploadPicture(gl, picture));
}

void GpuModel::Delete(const GlFunctions& gl) {
    for (const std::vector<GpuPart>& parts : shapes_) {
        for (const GpuPart& part : parts) {
            gl.DeleteVertexArrays(1, &part.array);
            gl.DeleteBuffers(1, &part.vertices);
            gl.DeleteBuffers(1, &part.corners);
        }
    }
    for (const GLuint picture : pictures_) {
        if (picture != 0) gl.DeleteTextures(1, &picture);
    }
    shapes_.clear();
    pictures_.clear();
}

bool GpuModel::BindPicture(const GlFunctions& gl, const RenderMaterial& material) const {
    const std::size_t number = std::size_t(material.picture);
    if (material.picture < 0 || number >= pictures_.size() || pictures_[number] == 0) return false;
    gl.BindTexture(GL_TEXTURE_2D, pictures_[number]);
    gl.TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, WrapOf(material.edges[0]));
    gl.TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, WrapOf(material.edges[1]));
    gl.TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, material.blurred ? GL_LINEAR : GL_NEAREST);
    return true;
}

}  // namespace tavrik_studio
