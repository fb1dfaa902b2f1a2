#include "studio/view/line_batch.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace tavrik_studio {

void LineBatch::Add(const Point3& from, const Point3& to, const Color& color, float alpha) {
    const auto byte = [](float c) { return std::uint8_t(std::lround(std::clamp(c, 0.0f, 1.0f) * 255.0f)); };
    const Corner corner{
        {from.x, from.y, from.z}, {to.x, to.y, to.z}, {byte(color.r), byte(color.g), byte(color.b), byte(alpha)}};
    corners_.insert(corners_.end(), 4, corner);
}

void LineBatch::Upload(const GlFunctions& gl) {
    if (array_ == 0) {
        gl.GenVertexArrays(1, &array_);
        gl.GenBuffers(1, &vertices_);
        gl.GenBuffers(1, &order_);
    }
    std::vector<std::uint32_t> order;
    for (std::uint32_t i = 0; i < std::uint32_t(corners_.size()); i += 4) {
        for (const std::uint32_t k : {0u, 1u, 2u, 2u, 1u, 3u}) order.push_back(i + k);
    }
    count_ = GLsizei(order.size());
    gl.BindVertexArray(array_);
    gl.BindBuffer(GL_ARRAY_BUFFER, vertices_);
    gl.BufferData(GL_ARRAY_BUFFER, GLsizeiptr(corners_.size() * sizeof(Corner)), corners_.data(), GL_DYNAMIC_DRAW);
    gl.BindBuffer(GL_ELEMENT_ARRAY_BUFFER, order_);
    gl.BufferData(GL_ELEMENT_ARRAY_BUFFER, GLsizeiptr(order.size() * sizeof(std::uint32_t)), order.data(), GL_DYNAMIC_DRAW);
    const auto at = [](std::size_t offset) { return reinterpret_cast<const void*>(offset); };
    gl.VertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, sizeof(Corner), at(offsetof(Corner, from)));
    gl.VertexAttribPointer(1, 3, GL_FLOAT, GL_FALSE, sizeof(Corner), at(offsetof(Corner, to)));
    gl.VertexAttribPointer(2, 4, GL_UNSIGNED_BYTE, GL_TRUE, sizeof(Corner), at(offsetof(Corner, color)));
    for (const GLuint i : {0u, 1u, 2u}) gl.EnableVertexAttribArray(i);
    gl.BindVertexArray(0);
}

void LineBatch::Draw(const GlFunctions& gl) const {
    if (count_ == 0) return;
    gl.BindVertexArray(array_);
    gl.DrawElements(GL_TRIANGLES, count_, GL_UNSIGNED_INT, nullptr);
    gl.BindVertexArray(0);
}

void LineBatch::Delete(const GlFunctions& gl) {
    if (array_ == 0) return;
    gl.DeleteVertexArrays(1, &array_);
    gl.DeleteBuffers(1, &vertices_);
    gl.DeleteBuffers(1, &order_);
    array_ = vertices_ = order_ = 0;
    count_ = 0;
}

}  // namespace tavrik_studio
