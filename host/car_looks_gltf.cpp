#include "host/car_looks_gltf.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <string_view>
#include <vector>

#include "host/gltf_accessor.h"
#include "host/read_file.h"
#include "host/side_path.h"

namespace tavrik {
namespace {

constexpr std::string_view kPng = "\x89PNG", kJpeg = "\xff\xd8\xff";

/// What the bytes are, whatever the file says of them. Empty for other formats, which glTF doesn't know.
std::string MimeTypeOf(std::string_view bytes) {
    return bytes.starts_with(kPng) ? "image/png" : bytes.starts_with(kJpeg) ? "image/jpeg" : "";
}

/// @return false where there are none to be had
bool FindImageBytes(const std::filesystem::path& file, const tinygltf::Model& gltf, const tinygltf::Image& image,
                    std::string& bytes) {
    if (image.bufferView >= 0) {
        if (std::size_t(image.bufferView) >= gltf.bufferViews.size()) return false;
        const tinygltf::BufferView& view = gltf.bufferViews[std::size_t(image.bufferView)];
        if (view.buffer < 0 || std::size_t(view.buffer) >= gltf.buffers.size()) return false;
        const std::vector<unsigned char>& data = gltf.buffers[std::size_t(view.buffer)].data;
        if (view.byteOffset > data.size() || view.byteLength > data.size() - view.byteOffset) return false;
        const auto first = data.begin() + std::ptrdiff_t(view.byteOffset);
        bytes.assign(first, first + std::ptrdiff_t(view.byteLength));
        return true;
    }
    if (!image.image.empty()) {
        bytes.assign(image.image.begin(), image.image.end());
        return true;
    }
    std::filesystem::path path;
    std::string problem;
    return FindSideFile(file, image.uri, path) && ReadWholeFile(path, bytes, problem);
}

std::shared_ptr<const ShapePicture> ReadPicture(const std::filesystem::path& file, const tinygltf::Model& gltf, int image,
                                                bool blurred, CarLooks& looks) {
    if (image < 0 || std::size_t(image) >= gltf.images.size()) return nullptr;
    auto picture = std::make_shared<ShapePicture>();
    picture->blurred = blurred;
    const tinygltf::Image& its = gltf.images[std::size_t(image)];
    if (FindImageBytes(file, gltf, its, picture->bytes)) picture->mimeType = MimeTypeOf(picture->bytes);
    if (!picture->mimeType.empty()) return picture;
    const std::string name = its.uri.empty() || its.uri.size() > 120 ? std::to_string(image) : "\"" + its.uri + "\"";
    looks.missed.push_back(
        fmt::format("{}: its picture {} is missing or no PNG or JPEG, so plain colours stand in.", file.string(), name));
    return nullptr;
}

bool IsBlurred(const tinygltf::Model& gltf, int sampler) {
    constexpr int kNearest = 9728;
    return sampler < 0 || std::size_t(sampler) >= gltf.samplers.size() ||
           gltf.samplers[std::size_t(sampler)].magFilter != kNearest;
}

float Number(const std::vector<double>& numbers, std::size_t i) {
    return i < numbers.size() ? float(std::clamp(numbers[i], 0.0, 1.0)) : 1.0f;
}

/// How a picture is shifted, turned and scaled before it is laid on.
struct PictureShift {
    double x = 0.0, y = 0.0, turn = 0.0, scaleX = 1.0, scaleY = 1.0;
    int spots = 0;  // which set of places in the picture
};

void ReadPair(const tinygltf::Value& value, const char* name, double& x, double& y) {
    if (!value.Has(name) || value.Get(name).ArrayLen() != 2) return;
    x = value.Get(name).Get(0).GetNumberAsDouble();
    y = value.Get(name).Get(1).GetNumberAsDouble();
}

PictureShift ReadShift(const tinygltf::TextureInfo& info) {
    PictureShift shift;
    shift.spots = info.texCoord;
    const auto extension = info.extensions.find("KHR_texture_transform");
    if (extension == info.extensions.end() || !extension->second.IsObject()) return shift;
    const tinygltf::Value& value = extension->second;
    ReadPair(value, "offset", shift.x, shift.y);
    ReadPair(value, "scale", shift.scaleX, shift.scaleY);
    if (value.Has("rotation")) shift.turn = value.Get("rotation").GetNumberAsDouble();
    if (value.Has("texCoord")) shift.spots = value.Get("texCoord").GetNumberAsInt();
    return shift;
}

void AppendSpots(const PictureShift& shift, const std::vector<double>& numbers, std::vector<float>& spots) {
    const double c = std::cos(shift.turn), s = std::sin(shift.turn);
    for (std::size_t i = 0; i + 1 < numbers.size(); i += 2) {
        const double u = numbers[i] * shift.scaleX, v = numbers[i + 1] * shift.scaleY;
        const float across = float(c * u + s * v + shift.x), down = float(c * v - s * u + shift.y);
        spots.push_back(std::isfinite(across) ? across : 0.0f);
        spots.push_back(std::isfinite(down) ? down : 0.0f);
    }
}

}  // namespace

bool KeepImageBytes(tinygltf::Image* image, const int, std::string*, std::string*, int, int, const unsigned char* bytes,
                    int size, void*) {
    // Those in a buffer view come without a check of its bounds.
    if (image->bufferView < 0 && size > 0) image->image.assign(bytes, bytes + size);
    return true;
}

void ReadGltfMaterials(const std::filesystem::path& file, const tinygltf::Model& gltf, CarLooks& looks) {
    std::vector<std::shared_ptr<const ShapePicture>> pictures(gltf.images.size());
    std::vector<bool> isRead(gltf.images.size(), false);
    for (const tinygltf::Material& material : gltf.materials) {
        const auto& surface = material.pbrMetallicRoughness;
        ShapeMaterial made{MaterialName(material.name),
                           Number(surface.baseColorFactor, 0),
                           Number(surface.baseColorFactor, 1),
                           Number(surface.baseColorFactor, 2),
                           float(std::clamp(surface.metallicFactor, 0.0, 1.0)),
                           float(std::clamp(surface.roughnessFactor, 0.0, 1.0)),
                           material.doubleSided};
        if (material.alphaMode == "BLEND") made.alpha = Number(surface.baseColorFactor, 3);
        std::shared_ptr<const ShapePicture> picture;
        const int texture = surface.baseColorTexture.index;
        if (texture >= 0 && std::size_t(texture) < gltf.textures.size()) {
            const tinygltf::Texture& its = gltf.textures[std::size_t(texture)];
            const std::size_t image = std::size_t(std::max(its.source, 0));
            if (its.source >= 0 && image < pictures.size()) {
                if (!isRead[image]) pictures[image] = ReadPicture(file, gltf, its.source, IsBlurred(gltf, its.sampler), looks);
                isRead[image] = true;
                picture = pictures[image];
            }
        }
        looks.materials.push_back({std::move(made), std::move(picture)});
    }
}

bool ReadGltfLooks(const tinygltf::Model& gltf, const tinygltf::Primitive& primitive, std::size_t points, std::size_t before,
                   std::size_t faces, PartLooks& looks, std::string& problem) {
    const bool isKnown = primitive.material >= 0 && std::size_t(primitive.material) < gltf.materials.size();
    looks.materials.insert(looks.materials.end(), faces, isKnown ? primitive.material : -1);
    const auto normal = primitive.attributes.find("NORMAL");
    if (normal != primitive.attributes.end()) {
        std::vector<DPoint3> normals;
        if (!ReadVectors(gltf, normal->second, points, normals, problem)) return false;
        looks.normals.resize(before);
        looks.normals.insert(looks.normals.end(), normals.begin(), normals.end());
    }
    if (!looks.normals.empty()) looks.normals.resize(before + points);
    if (isKnown) {
        const tinygltf::TextureInfo& info =
            gltf.materials[std::size_t(primitive.material)].pbrMetallicRoughness.baseColorTexture;
        const PictureShift shift = ReadShift(info);
        const auto spot = primitive.attributes.find(fmt::format("TEXCOORD_{}", shift.spots));
        if (info.index >= 0 && spot != primitive.attributes.end()) {
            std::vector<double> numbers;
            if (!ReadNumbers(gltf, spot->second, TINYGLTF_TYPE_VEC2, points, numbers, problem)) return false;
            looks.pictureSpots.resize(2 * before, 0.0f);
            AppendSpots(shift, numbers, looks.pictureSpots);
        }
    }
    if (!looks.pictureSpots.empty()) looks.pictureSpots.resize(2 * (before + points), 0.0f);
    return true;
}

}  // namespace tavrik
