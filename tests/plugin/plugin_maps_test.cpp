// The host's own maps, as treads of wheels and in scene files.

#include <png.h>
#include <unistd.h>

#include <cmath>
#include <filesystem>
#include <fstream>

#include "host/scene_file.h"
#include "host/sdk/desktop.h"
#include "host/sdk/texture_maps.h"
#include "tests/plugin/plugin_scene.h"
#include "tests/plugin/track_shading.h"

namespace plugin_test {
namespace {

using tavrik_host::BitmapMap;
using tavrik_host::CheckerMap;

constexpr ParamID kPatternMap = 5;

class HostMaps : public PluginScene {
 public:
    HostMaps() : folder(std::filesystem::temp_directory_path() / ("tavrik_maps_" + std::to_string(::getpid()))) {
        std::filesystem::create_directories(folder);
    }
    ~HostMaps() override {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }
    HostMaps(const HostMaps&) = delete;
    HostMaps& operator=(const HostMaps&) = delete;

    /// Writes a picture of rows from the top down.
    std::filesystem::path Picture(int width, int height, const std::vector<std::uint8_t>& pixels) const {
        png_image image = {};
        image.version = PNG_IMAGE_VERSION;
        image.width = png_uint_32(width);
        image.height = png_uint_32(height);
        image.format = PNG_FORMAT_GRAY;
        const auto file = folder / "tread.png";
        EXPECT_NE(png_image_write_to_file(&image, file.c_str(), 0, pixels.data(), 0, nullptr), 0);
        return file;
    }
    std::filesystem::path Bytes(const char* name, const std::string& bytes) const {
        const auto file = folder / name;
        std::ofstream(file, std::ios::binary) << bytes;
        return file;
    }
    static float At(Texmap& map, float u, float v) {
        WorldPoint place;
        place.uvw = Point3(u, v, 0);
        return map.EvalMono(place);
    }
    BitmapMap* Loaded(const std::filesystem::path& file) {
        auto* const map = new BitmapMap;
        hold.ReplaceReference(0, map);
        map->SetFile(file);
        Interval valid = FOREVER;
        map->Update(0, valid);
        map->LoadMapFiles(0);
        return map;
    }

    std::filesystem::path folder;
    Holder hold{nullptr};
};

TEST_F(HostMaps, PixelsHaveTheirValuesAtTheirMiddles) {
    BitmapMap* const map = Loaded(Picture(2, 2, {0, 51, 102, 255}));
    EXPECT_EQ(map->Problem(), "");
    EXPECT_NEAR(At(*map, 0.25f, 0.75f), 0.0f, 1e-6f);
    EXPECT_NEAR(At(*map, 0.75f, 0.75f), 0.2f, 1e-6f);
    EXPECT_NEAR(At(*map, 0.25f, 0.25f), 0.4f, 1e-6f);
    EXPECT_NEAR(At(*map, 0.75f, 0.25f), 1.0f, 1e-6f);
}

TEST_F(HostMaps, BetweenPixelsThePictureIsSmooth) {
    BitmapMap* const map = Loaded(Picture(2, 2, {0, 51, 102, 255}));
    EXPECT_NEAR(At(*map, 0.5f, 0.75f), 0.1f, 1e-6f);
    EXPECT_NEAR(At(*map, 0.5f, 0.5f), 0.4f, 1e-6f);
}

TEST_F(HostMaps, PicturesComeRoundAgain) {
    BitmapMap* const map = Loaded(Picture(2, 2, {0, 51, 102, 255}));
    EXPECT_NEAR(At(*map, 0.0f, 0.75f), 0.1f, 1e-6f);  // between the last pixel and the first
    EXPECT_NEAR(At(*map, 1.0f, 0.75f), 0.1f, 1e-6f);
    EXPECT_NEAR(At(*map, -2.75f, 3.75f), At(*map, 0.25f, 0.75f), 1e-5f);
    EXPECT_TRUE(std::isfinite(At(*map, NAN, INFINITY)));
}

TEST_F(HostMaps, TilingRepeatsAPicture) {
    BitmapMap* const map = Loaded(Picture(2, 1, {0, 255}));
    ASSERT_TRUE(map->GetParamBlockByID(0)->SetValue(tavrik_host::kTilingU, 0, 2.0f));
    Interval valid = FOREVER;
    map->Update(0, valid);
    EXPECT_NEAR(At(*map, 0.125f, 0.5f), 0.0f, 1e-6f);
    EXPECT_NEAR(At(*map, 0.375f, 0.5f), 1.0f, 1e-6f);
    EXPECT_NEAR(At(*map, 0.625f, 0.5f), 0.0f, 1e-6f);
}

TEST_F(HostMaps, AMissingPictureIsWhiteAndSaidInASentence) {
    BitmapMap* const map = Loaded(folder / "nowhere.png");
    EXPECT_EQ(At(*map, 0.3f, 0.6f), 1.0f);
    EXPECT_EQ(map->Problem(), (folder / "nowhere.png").string() + ": there is no such picture.");
    EXPECT_EQ(tavrik::TheDesktop().complaint, map->Problem());
}

TEST_F(HostMaps, ABrokenPictureIsWhiteAndSaidInASentence) {
    const auto good = Picture(64, 64, std::vector<std::uint8_t>(64 * 64, 9));
    std::string bytes(std::filesystem::file_size(good), '\0');
    std::ifstream(good, std::ios::binary).read(bytes.data(), std::streamsize(bytes.size()));
    for (const std::string& broken :
         {std::string(), std::string("no picture"), bytes.substr(0, bytes.size() / 2), bytes.substr(0, 40)}) {
        BitmapMap* const map = Loaded(Bytes("broken.png", broken));
        EXPECT_EQ(At(*map, 0.3f, 0.6f), 1.0f);
        EXPECT_NE(map->Problem().find("broken.png: "), std::string::npos) << map->Problem();
    }
}

TEST_F(HostMaps, AFolderIsNoPicture) { EXPECT_NE(Loaded(folder)->Problem(), ""); }

TEST_F(HostMaps, WithoutAFileAllIsWhiteAndNothingIsSaid) {
    BitmapMap* const map = Loaded({});
    EXPECT_EQ(At(*map, 0.5f, 0.5f), 1.0f);
    EXPECT_EQ(map->Problem(), "");
}

TEST_F(HostMaps, ACheckerboardHasTwoByTwoFields) {
    auto* const map = new CheckerMap;
    hold.ReplaceReference(0, map);
    ASSERT_TRUE(map->GetParamBlockByID(0)->SetValue(CheckerMap::kSecond, 0, 0.75f));
    Interval valid = FOREVER;
    map->Update(0, valid);
    EXPECT_EQ(At(*map, 0.25f, 0.25f), 0.0f);
    EXPECT_EQ(At(*map, 0.75f, 0.25f), 0.75f);
    EXPECT_EQ(At(*map, 0.25f, 0.75f), 0.75f);
    EXPECT_EQ(At(*map, 1.75f, -0.25f), 0.0f);
}

TEST_F(HostMaps, AreClassesOfTheHost) {
    EXPECT_EQ(tavrik_host::FindClass(TEXMAP_CLASS_ID, std::wstring(L"Bitmap")), &tavrik_host::BitmapMapClass());
    EXPECT_EQ(tavrik_host::FindClass(TEXMAP_CLASS_ID, std::wstring(L"Checker")), &tavrik_host::CheckerMapClass());
}

TEST_F(HostMaps, AClonedPictureIsTheSamePicture) {
    BitmapMap* const map = Loaded(Picture(2, 1, {0, 255}));
    Holder copy(nullptr);
    {
        DefaultRemapDir remap;
        copy.ReplaceReference(0, map->Clone(remap));
    }
    auto& cloned = static_cast<BitmapMap&>(*copy.GetReference(0));
    EXPECT_EQ(cloned.File(), map->File());
    EXPECT_EQ(At(cloned, 0.75f, 0.5f), 1.0f);
    EXPECT_EQ(At(cloned, 0.25f, 0.5f), 0.0f);
}

TEST_F(HostMaps, ScenesKeepTheTreadsOfWheels) {
    const Car car = AddCar();
    auto* const picture = new BitmapMap;
    picture->SetFile("profil \xC3\xBC.png");
    ASSERT_TRUE(picture->GetParamBlockByID(0)->SetValue(tavrik_host::kTilingV, 0, 30.0f));
    auto* const checker = new CheckerMap;
    ASSERT_TRUE(checker->GetParamBlockByID(0)->SetValue(CheckerMap::kFirst, 0, 0.25f));
    ASSERT_TRUE(BlockOf(*car.wheels[0]).SetValue(kPatternMap, 0, static_cast<Texmap*>(picture)));
    ASSERT_TRUE(BlockOf(*car.wheels[1]).SetValue(kPatternMap, 0, static_cast<Texmap*>(checker)));
    const ULONG handles[] = {car.wheels[0]->GetHandle(), car.wheels[1]->GetHandle()};
    tavrik_host::SceneDocument document;
    std::string bytes, again, problem;
    ASSERT_TRUE(tavrik_host::MakeSceneFile(document, bytes, problem)) << problem;

    ASSERT_TRUE(tavrik_host::LoadSceneBytes("treads.glb", bytes, document, problem)) << problem;

    const auto mapOf = [&](ULONG handle) {
        Texmap* map = nullptr;
        Interval valid = FOREVER;
        BlockOf(*GetCOREInterface()->GetINodeByHandle(handle)).GetValue(kPatternMap, 0, map, valid);
        return map;
    };
    auto* const loadedPicture = dynamic_cast<BitmapMap*>(mapOf(handles[0]));
    auto* const loadedChecker = dynamic_cast<CheckerMap*>(mapOf(handles[1]));
    ASSERT_NE(loadedPicture, nullptr);
    ASSERT_NE(loadedChecker, nullptr);
    EXPECT_EQ(loadedPicture->File(), std::filesystem::path("profil \xC3\xBC.png"));
    EXPECT_EQ(loadedPicture->GetParamBlockByID(0)->GetFloat(tavrik_host::kTilingV), 30.0f);
    EXPECT_EQ(loadedChecker->GetParamBlockByID(0)->GetFloat(CheckerMap::kFirst), 0.25f);
    ASSERT_TRUE(tavrik_host::MakeSceneFile(document, again, problem)) << problem;
    EXPECT_TRUE(bytes == again);
}

TEST_F(HostMaps, APictureWithAnImpossibleNameIsRefused) {
    auto* const map = new BitmapMap;
    hold.ReplaceReference(0, map);
    const tavrik_host::Chunk tooLong[] = {{1, std::string(5000, 'a')}}, withZero[] = {{1, std::string("a\0b", 3)}};
    tavrik_host::SceneLoad load;
    EXPECT_FALSE(load.LoadChunks(*map, tooLong));
    EXPECT_NE(tavrik::TheDesktop().complaint, "");
    EXPECT_FALSE(load.LoadChunks(*map, withZero));
    EXPECT_TRUE(map->File().empty());
}

}  // namespace
}  // namespace plugin_test
