#include "host/png_file.h"

#include <gtest/gtest.h>
#include <png.h>

#include <filesystem>
#include <iterator>
#include <string>
#include <vector>

namespace tavrik::test {
namespace {

std::filesystem::path FreshFolder() {
    const auto* test = testing::UnitTest::GetInstance()->current_test_info();
    const std::filesystem::path folder = std::filesystem::path(testing::TempDir()) / (std::string("png_") + test->name());
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    return folder;
}

RgbImage SmallImage() {
    RgbImage image = {5, 3, std::vector<RgbPixel>(15)};
    for (std::int32_t y = 0; y < 3; ++y) {
        for (std::int32_t x = 0; x < 5; ++x) image.At(x, y) = {std::uint8_t(50 * x), std::uint8_t(100 * y), 7};
    }
    return image;
}

RgbImage ReadBack(const std::filesystem::path& file) {
    png_image header = {};
    header.version = PNG_IMAGE_VERSION;
    EXPECT_NE(png_image_begin_read_from_file(&header, file.c_str()), 0) << header.message;
    EXPECT_EQ(header.format, png_uint_32(PNG_FORMAT_RGB));
    header.format = PNG_FORMAT_RGB;
    RgbImage image = {std::int32_t(header.width), std::int32_t(header.height), {}};
    image.pixels.resize(std::size_t(image.width) * std::size_t(image.height));
    EXPECT_NE(png_image_finish_read(&header, nullptr, image.pixels.data(), 0, nullptr), 0) << header.message;
    return image;
}

TEST(WritePngFile, KeepsEveryPixel) {
    const std::filesystem::path file = FreshFolder() / "small.png";
    std::string problem;
    ASSERT_TRUE(WritePngFile(file, SmallImage(), problem)) << problem;
    const RgbImage back = ReadBack(file);
    EXPECT_EQ(back.width, 5);
    EXPECT_EQ(back.height, 3);
    EXPECT_EQ(back.pixels, SmallImage().pixels);
}

TEST(WritePngFile, LeavesNothingElseInTheFolder) {
    const std::filesystem::path folder = FreshFolder();
    std::string problem;
    ASSERT_TRUE(WritePngFile(folder / "small.png", SmallImage(), problem)) << problem;
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 1);
}

TEST(WritePngFile, NamesTheFileThatCantBeWritten) {
    const std::filesystem::path file = FreshFolder() / "no_folder" / "small.png";
    std::string problem;
    EXPECT_FALSE(WritePngFile(file, SmallImage(), problem));
    EXPECT_NE(problem.find("small.png"), std::string::npos) << problem;
}

TEST(WritePngFile, RefusesAnEmptyPictureAndKeepsTheOldFile) {
    const std::filesystem::path file = FreshFolder() / "small.png";
    std::string problem;
    ASSERT_TRUE(WritePngFile(file, SmallImage(), problem)) << problem;
    EXPECT_FALSE(WritePngFile(file, RgbImage{}, problem));
    EXPECT_EQ(problem, file.string() + ": a picture without pixels can't be written as PNG.");
    EXPECT_EQ(ReadBack(file).pixels, SmallImage().pixels);
}

}  // namespace
}  // namespace tavrik::test
