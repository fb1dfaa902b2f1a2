// Pictures of scenes that somebody has worked on: cameras, textures of the ground, treads.

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

// Takes names from <cstdio> without asking for them.
#include <jpeglib.h>

#include "host/glb_writer.h"
#include "host/png_file.h"
#include "host/render/picture.h"
#include "host/render/render_camera.h"
#include "host/render/render_sequence.h"
#include "host/render/track_painter.h"
#include "host/rig_objects.h"
#include "host/sdk/standin.h"
#include "tests/cli/driven_scene.h"
#include "tests/cli/program.h"
#include "tests/host/temp_folder.h"

namespace tavrik::test {
namespace {

using Json = nlohmann::ordered_json;
using tavrik_host::PictureColor;
using tavrik_host::SceneDocument;

bool Has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

/// A file's picture, pixel by pixel.
class Pixels {
 public:
    explicit Pixels(const std::filesystem::path& file) {
        std::string problem;
        EXPECT_TRUE(picture_.Decode(FileBytes(file), problem)) << file << ": " << problem;
    }
    int width() const { return picture_.width(); }
    int height() const { return picture_.height(); }
    PictureColor At(int x, int y) const {
        constexpr auto kEdge = tavrik_host::PictureEdge::Clamp;
        return picture_.At((float(x) + 0.5f) / float(width()), (float(y) + 0.5f) / float(height()), 0.0f, kEdge, kEdge, false);
    }

 private:
    tavrik_host::Picture picture_;
};

/// How much of two pictures differs clearly, 0..1.
double Difference(const Pixels& a, const Pixels& b) {
    EXPECT_EQ(a.width(), b.width());
    int different = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const PictureColor p = a.At(x, y), q = b.At(x, y);
            different += std::max({std::abs(p.red - q.red), std::abs(p.green - q.green), std::abs(p.blue - q.blue)}) > 0.03f;
        }
    }
    return double(different) / double(a.width() * a.height());
}

/// A JPEG whose left half is red and whose right half is blue.
std::string TwoColouredJpeg() {
    constexpr unsigned kSize = 64;
    jpeg_compress_struct info = {};
    jpeg_error_mgr errors = {};
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char* bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &bytes, &size);
    info.image_width = info.image_height = kSize;
    info.input_components = 3;
    info.in_color_space = JCS_RGB;
    jpeg_set_defaults(&info);
    jpeg_start_compress(&info, TRUE);
    std::array<unsigned char, kSize * 3> row{};
    for (unsigned x = 0; x < kSize; ++x) row[3 * x + (x < kSize / 2 ? 0 : 2)] = 220;
    for (JSAMPROW rows[] = {row.data()}; info.next_scanline < kSize;) jpeg_write_scanlines(&info, rows, 1);
    jpeg_finish_compress(&info);
    std::string file(reinterpret_cast<const char*>(bytes), size);
    jpeg_destroy_compress(&info);
    std::free(bytes);
    return file;
}

Json& GroundPrimitive(SceneDocument& document) {
    INode* const ground = tavrik_host::TrackGrounds().front();
    const std::size_t mesh = document.nodeParts.at(ground->GetHandle()).at("mesh").get<std::size_t>();
    return document.json["meshes"][mesh]["primitives"][0];
}

/// Lays a picture's coordinates on the ground, an unwrapped sheet of which it takes the upper half.
void Unwrap(SceneDocument& document) {
    const Json accessor = document.json["accessors"][GroundPrimitive(document)["attributes"]["POSITION"].get<std::size_t>()];
    const Json view = document.json["bufferViews"][accessor["bufferView"].get<std::size_t>()];
    const std::size_t count = accessor["count"].get<std::size_t>();
    const std::size_t first = view.value("byteOffset", std::size_t(0)) + accessor.value("byteOffset", std::size_t(0));
    std::vector<float> spots;
    for (std::size_t i = 0; i < count; ++i) {
        float metres[3];
        std::memcpy(metres, document.binary.data() + first + i * sizeof metres, sizeof metres);
        spots.push_back((metres[0] + 150.0f) / 300.0f);
        spots.push_back((metres[2] + 150.0f) / 600.0f);  // south is +z in the file
    }
    tavrik::GlbWriter glb(std::move(document.json), std::move(document.binary));
    const int texcoord = glb.AddFloats(spots, 2, tavrik::GlbWriter::Use::Vertices, false);
    document.json = std::move(glb.json);
    document.binary = glb.TakeBinary();
    GroundPrimitive(document)["attributes"]["TEXCOORD_0"] = texcoord;
}

void Texture(SceneDocument& document, const std::string& bytes) {
    tavrik::GlbWriter glb(std::move(document.json), std::move(document.binary));
    const int image = glb.Add("images", {{"bufferView", glb.AddBytes(bytes)}, {"mimeType", "image/jpeg"}});
    const int texture = glb.Add("textures", {{"source", image}});
    const int material =
        glb.Add("materials", {{"pbrMetallicRoughness",
                               {{"baseColorTexture", {{"index", texture}}}, {"metallicFactor", 0}, {"roughnessFactor", 1}}}});
    document.json = std::move(glb.json);
    document.binary = glb.TakeBinary();
    GroundPrimitive(document)["material"] = material;
}

class RenderScene : public testing::Test {
 protected:
    void Make(const std::function<void(SceneDocument&)>& edit) const { folder.Write("scene.glb", EditedScene(edit)); }
    std::string Expect(const std::vector<std::string>& words) const {
        const ProgramResult result = RunTavrik(folder.path(), words);
        EXPECT_EQ(result.status, 0) << result.error;
        EXPECT_EQ(result.error, "");
        return result.out;
    }
    std::string Render(std::vector<std::string> words) const {
        words.insert(words.begin(), {"render", "scene.glb", "--size", "80x45", "--samples", "4"});
        return Expect(words);
    }

    TempFolder folder;
};

// ----------------------------------------------------------------------------------------------------------------- cameras

/// A scene with a camera ten metres above where the car starts, which looks down with north at its top.
void AddCrane(const TempFolder& folder) {
    ::Point3 car;
    std::string text = EditedScene([&car](SceneDocument&) {
        INode* const master = tavrik_host::NodesOf(ObjectClass::Tavrik).front();
        car = tavrik_host::ChassisOf(*master)->GetNodeTM(0).GetTrans();
    });
    std::string problem;
    ASSERT_TRUE(tavrik_host::ToFileForm("scene.gltf", text, problem)) << problem;
    Json json = Json::parse(text);
    json["cameras"] = {{{"type", "orthographic"}, {"orthographic", {{"xmag", 9}, {"ymag", 5}, {"znear", 0.1}, {"zfar", 100}}}},
                       {{"type", "perspective"}, {"perspective", {{"yfov", 0.9272952}, {"znear", 0.1}}}}};
    for (int camera = 0; camera < 2; ++camera) {
        json["scenes"][0]["nodes"].push_back(json["nodes"].size());
        json["nodes"].push_back({{"name", camera == 0 ? "Crane" : "Drone"},
                                 {"camera", camera},
                                 {"translation", {car.x * 0.01f, car.z * 0.01f + 10.0f, -car.y * 0.01f}},
                                 {"rotation", {-0.70710678, 0, 0, 0.70710678}}});
    }
    folder.Write("scene.gltf", json.dump());
}

TEST_F(RenderScene, ACameraOfTheSceneShowsWhatItLooksAt) {
    AddCrane(folder);
    const auto shoot = [this](const char* out, const std::vector<std::string>& camera) {
        std::vector<std::string> words = {"render", "scene.gltf", "--size", "80x45", "--frames", "0", "--out", out, "--camera"};
        words.insert(words.end(), camera.begin(), camera.end());
        Expect(words);
        return Pixels(folder / out);
    };
    const Pixels top = shoot("top.png", {"top", "--span", "10"});
    EXPECT_LT(Difference(shoot("crane.png", {"Crane"}), top), 0.02);
    EXPECT_GT(Difference(shoot("wide.png", {"top", "--span", "20"}), top), 0.05);  // what is seen is no empty ground
    // From ten metres up, a lens of 2 * atan(0.5) shows about as much; the car's roof is nearer and so larger.
    const double drone = Difference(shoot("drone.png", {"Drone"}), top);
    EXPECT_LT(drone, 0.15);
    EXPECT_GT(drone, 0.0);
}

TEST_F(RenderScene, AWrongCameraIsToldThoseThatAreThere) {
    AddCrane(folder);
    const ProgramResult result =
        RunTavrik(folder.path(), {"render", "scene.gltf", "--frames", "0", "--out", "a.png", "--camera", "Drome"});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(Has(result.error, "no camera \"Drome\"") && Has(result.error, "\"Crane\", \"Drone\"")) << result.error;
}

// ---------------------------------------------------------------------------------------------------------- the ground's
// picture

TEST_F(RenderScene, AJpegLiesOnTheGroundByItsTextureCoordinates) {
    Make([](SceneDocument& document) {
        Unwrap(document);
        Texture(document, TwoColouredJpeg());
    });
    Render({"--frames", "0", "--out", "a.png", "--camera", "top", "--span", "100", "--no-tracks"});
    const Pixels seen(folder / "a.png");
    EXPECT_GT(seen.At(2, 4).red, 3.0f * seen.At(2, 4).blue);
    EXPECT_GT(seen.At(77, 4).blue, 3.0f * seen.At(77, 4).red);
}

TEST_F(RenderScene, TracksDarkenAGroundWithAPicture) {
    Make([](SceneDocument& document) {
        Unwrap(document);
        Texture(document, TwoColouredJpeg());
    });
    Render({"--frames", "110", "--out", "with.png", "--camera", "top", "--roll", "1"});
    Render({"--frames", "110", "--out", "without.png", "--camera", "top", "--no-tracks"});
    EXPECT_FALSE(FileBytes(folder / "with.png") == FileBytes(folder / "without.png"));
}

TEST_F(RenderScene, ABrokenPictureIsLeftOutWithAWord) {
    Make([](SceneDocument& document) {
        Unwrap(document);
        Texture(document, "\xff\xd8 broken");
    });
    const std::string out = Render({"--frames", "0", "--out", "a.png"});
    EXPECT_TRUE(Has(out, "can't be shown")) << out;
    EXPECT_TRUE(FileBytes(folder / "a.png").starts_with("\x89PNG"));
}

TEST_F(RenderScene, TracksAreBakedIntoTheGroundsOwnTextureCoordinates) {
    constexpr int kSize = 2048;
    const auto bake = [this](const char* color, const char* bump) {
        return Expect({"tracks", "scene.glb", "--bake", color, "--bump", bump, "--size", std::to_string(kSize)});
    };
    Make([](SceneDocument&) {});
    EXPECT_TRUE(Has(bake("flat.png", "flat_n.png"), "straight down"));
    Make(Unwrap);
    EXPECT_TRUE(Has(bake("own.png", "own_n.png"), "the ground's own texture coordinates"));
    const Pixels flat(folder / "flat.png"), own(folder / "own.png"), bumps(folder / "own_n.png");
    // The car went north from (1, 2). Ten metres on, its tracks cross a row of the sheet, whose upper half is the ground.
    const int row = int((150.0 - 12.0) / 600.0 * kSize);
    int dark = 0, leaning = 0;
    for (int x = 0; x < kSize; ++x) {
        EXPECT_NEAR(own.At(x, row).red, flat.At(x, 2 * row).red, 0.15) << x;  // half a pixel to the north
        dark += own.At(x, row).red < 0.97f;
        leaning += bumps.At(x, row).blue < 0.95f;
    }
    EXPECT_GE(dark, 2);
    EXPECT_LT(dark, 20);
    EXPECT_GE(leaning, 1);
    for (int y = kSize / 2 + 8; y < kSize; y += 8) ASSERT_EQ(own.At(kSize / 2 + 7, y).red, 1.0f) << y;
}

// ------------------------------------------------------------------------------------------------------------------- treads

class RenderTread : public RenderScene {
 protected:
    void MakeWithTread() const {
        // Black, so that no tyre presses on anything.
        tavrik::RgbImage black;
        black.width = black.height = 8;
        black.pixels.assign(64, {0, 0, 0});
        std::string problem;
        ASSERT_TRUE(tavrik::WritePngFile(folder / "tread.png", black, problem)) << problem;
        Make([this](SceneDocument&) {
            std::string fault;
            EXPECT_TRUE(tavrik_host::SetTreads(folder / "tread.png", fault)) << fault;
        });
    }
    /// Whether a picture from above shows tracks.
    bool ShowsTracks() {
        // Without relief: a tyre dents the ground whatever its tread is.
        told = Render(
            {"--frames", "110", "--out", "with.png", "--camera", "top", "--roll", "1", "--dent", "0", "--tread-depth", "0"});
        Render({"--frames", "110", "--out", "without.png", "--camera", "top", "--no-tracks"});
        return FileBytes(folder / "with.png") != FileBytes(folder / "without.png");
    }

    std::string told;  // by the program
};

TEST_F(RenderTread, TheScenesOwnTreadIsRead) {
    MakeWithTread();
    EXPECT_FALSE(ShowsTracks());
    EXPECT_FALSE(Has(told, "Note")) << told;
}

TEST_F(RenderTread, WhosePictureIsMissingPressesEvenlyAndIsTold) {
    MakeWithTread();
    std::filesystem::remove(folder / "tread.png");
    EXPECT_TRUE(ShowsTracks());
    EXPECT_TRUE(Has(told, "Note") && Has(told, "tread.png")) << told;
}

TEST_F(RenderTread, WhosePictureIsBrokenPressesEvenlyAndIsTold) {
    MakeWithTread();
    folder.Write("tread.png", "\x89PNG\r\n\x1a\n broken");
    EXPECT_TRUE(ShowsTracks());
    EXPECT_TRUE(Has(told, "Note") && Has(told, "tread.png")) << told;
}

}  // namespace
}  // namespace tavrik::test
