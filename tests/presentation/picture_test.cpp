// SPDX-License-Identifier: Apache-2.0
// Concerns: formats and sizes as a second reader sees them; the same from memory and from a file; sizes that
// the data cannot hold; formats that the second reader does not write, made here; every beginning of a
// picture.
#include "tests/support/environment.h"
#include "tests/support/file_helpers.h"

#include <core/files/file_io.h>
#include <core/files/memory_file.h>
#include <core/presentation.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>

namespace {

using namespace core;

/// What a file with these bytes says.
PictureInfo info_of_file(const std::string& bytes) {
    const auto file = open_memory_file(create_memory_data());
    write_all(*file, std::as_bytes(std::span(bytes)));
    return picture_info(*file);
}
/// What both ways say, which must be the same.
PictureInfo info_of(const std::string& bytes) {
    const PictureInfo info = picture_info(std::as_bytes(std::span(bytes)));
    EXPECT_EQ(info_of_file(bytes), info);
    return info;
}

/// Little-endian numbers and texts, one behind the other.
struct Bytes {
    std::string text;
    Bytes& text_of(std::string_view part) {
        text += part;
        return *this;
    }
    Bytes& number(std::uint64_t value, int size) {
        for (int i = 0; i < size; ++i)
            text += static_cast<char>(value >> (8 * i));
        return *this;
    }
    Bytes& zeros(std::size_t count) {
        text.append(count, '\0');
        return *this;
    }
};

std::string big_endian(std::uint32_t value) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8)
        text += static_cast<char>(value >> shift);
    return text;
}

std::string png(std::uint32_t width, std::uint32_t height, std::size_t more) {
    using namespace std::string_literals;
    return "\x89PNG\r\n\x1A\n"s + big_endian(13) + "IHDR" + big_endian(width) + big_endian(height) +
           "\x08\x02\x00\x00\x00"s + std::string(4 + more, '\0');
}

std::string bmp(std::uint32_t width, std::uint32_t height, std::size_t pixels) {
    Bytes bytes;
    bytes.text_of("BM").number(54 + pixels, 4).number(0, 4).number(54, 4).number(40, 4);
    bytes.number(width, 4).number(height, 4).number(1, 2).number(24, 2).zeros(24 + pixels);
    return bytes.text;
}

std::string emf(std::int32_t right, std::int32_t bottom, std::uint32_t size) {
    Bytes bytes;
    bytes.number(1, 4).number(88, 4).number(0, 8).number(static_cast<std::uint32_t>(right), 4);
    bytes.number(static_cast<std::uint32_t>(bottom), 4).number(0, 8).number(2540, 4).number(5080, 4);
    return bytes.text_of(" EMF").number(0x10000, 4).number(size, 4).zeros(36).text;
}

std::string wmf(std::int16_t width, std::int16_t height, std::uint16_t unitsPerInch) {
    Bytes bytes;
    bytes.number(0x9AC6CDD7, 4).number(0, 2).number(0, 4).number(static_cast<std::uint16_t>(width), 2);
    bytes.number(static_cast<std::uint16_t>(height), 2).number(unitsPerInch, 2).number(0, 4).number(0, 2);
    return bytes.number(1, 2)
        .number(9, 2)
        .number(0x300, 2)
        .number(9, 4)
        .number(0, 2)
        .number(0, 4)
        .number(0, 2)
        .text;
}

TEST(Pictures, AreWhatASecondReaderSees) {
    const std::string python = "PATH=/usr/bin:$PATH python3 -B "; // that of the package python3-pil first
    if (support::output_of(python + "-c 'import PIL; print(1)' 2>/dev/null") != "1\n")
        GTEST_SKIP() << "no python3 with PIL";
    const std::string folder = support::new_folder("pictures").string();
    ASSERT_EQ(std::system((python + CORE_SOURCE_DIR "/tests/presentation/pictures.py " + folder + " >" +
                           folder + "/list.txt")
                              .c_str()),
              0);
    const std::map<std::string, PictureFormat> formats = {
        {"PNG", PictureFormat::png},  {"JPEG", PictureFormat::jpeg}, {"GIF", PictureFormat::gif},
        {"BMP", PictureFormat::bmp},  {"ICO", PictureFormat::ico},   {"TIFF", PictureFormat::tiff},
        {"WEBP", PictureFormat::webp}};
    std::ifstream list(folder + "/list.txt");
    std::string name;
    std::string format;
    PictureInfo expected;
    int seen = 0;
    while (list >> name >> format >> expected.width >> expected.height >> expected.horizontalResolution >>
           expected.verticalResolution) {
        std::ifstream file(name, std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(file), {}};
        const PictureInfo info = info_of(bytes);
        EXPECT_EQ(info.format, formats.at(format)) << name;
        EXPECT_EQ(info.width, expected.width) << name;
        EXPECT_EQ(info.height, expected.height) << name;
        if (expected.horizontalResolution > 1) { // 1 is what that reader says of what it does not know
            EXPECT_NEAR(info.horizontalResolution, expected.horizontalResolution, 0.5) << name;
            EXPECT_NEAR(info.verticalResolution, expected.verticalResolution, 0.5) << name;
        }
        ++seen;
    }
    EXPECT_GT(seen, 200);
    std::filesystem::remove_all(folder);
}

TEST(Pictures, SizesThatTheDataCannotHoldAreNotBelieved) {
    EXPECT_EQ(info_of(png(640, 480, 2000)).width, 640U);
    EXPECT_EQ(info_of(png(100'000, 100'000, 2000)), (PictureInfo{.format = PictureFormat::png}));
    EXPECT_EQ(info_of(png(0xFFFFFFFF, 1, 2000)).width, 0U);
    EXPECT_EQ(info_of(png(0, 5, 2000)).height, 0U);
    EXPECT_EQ(info_of(bmp(10, 10, 320)).width, 10U);
    EXPECT_EQ(info_of(bmp(10, 10, 319)).width, 0U);
    EXPECT_EQ(info_of(bmp(10, static_cast<std::uint32_t>(-10), 320)).height, 10U); // from the upper row on
    EXPECT_EQ(info_of(bmp(0x7FFFFFFF, 0x80000000, 320)).width, 0U);
    EXPECT_EQ(info_of(emf(99, 199, 88)).width, 100U);
    EXPECT_EQ(info_of(emf(99, 199, 89)).width, 0U);
    EXPECT_EQ(info_of(std::string("GIF89a\xFF\xFF\xFF\xFF\0\0\0", 13)).width, 0U);
}

TEST(Pictures, DrawingsTellTheirSizeAndItsUnit) {
    const PictureInfo extended = info_of(emf(99, 199, 88));
    EXPECT_EQ(extended, (PictureInfo{PictureFormat::emf, 100, 200, 100, 100}));
    EXPECT_EQ(info_of(wmf(1440, 720, 1440)), (PictureInfo{PictureFormat::wmf, 1440, 720, 1440, 1440}));
    EXPECT_EQ(info_of(wmf(1440, 720, 1440).substr(22)), (PictureInfo{.format = PictureFormat::wmf}));

    const auto svg = [](const std::string& text) { return info_of(text); };
    const auto sized = [](std::uint32_t width, std::uint32_t height) {
        return PictureInfo{PictureFormat::svg, width, height, 96, 96};
    };
    EXPECT_EQ(svg("<svg width='10' height=\"20px\"/>"), sized(10, 20));
    EXPECT_EQ(svg("\xEF\xBB\xBF<?xml version='1.0'?>\n<!-- <svg> --><!DOCTYPE svg [ <!ENTITY a 'b'> ]>\n"
                  "<s:svg xmlns:s='x' height = '1in' width='2.54cm' >"),
              sized(96, 96));
    EXPECT_EQ(svg("<svg viewBox='0 0 30 40.4'>"), sized(30, 40));
    EXPECT_EQ(svg("<svg viewBox='0,0,30,60' width='15'>"), sized(15, 30));
    EXPECT_EQ(svg("<svg width='100%' height='100%' viewBox='0 0 3 4'>"), sized(3, 4));
    for (const char* text :
         {"<svg width='1' height='1'", "<svg width=1 height=1>", "<svg>", "<svg width='-1' height='1'>",
          "<svg width='1e99' height='1'>", "<svg viewBox='0 0 1'>"})
        EXPECT_EQ(svg(text), (PictureInfo{.format = PictureFormat::svg})) << text;
    for (const char* text : {"", "<svgs>", "<html><svg width='1' height='1'/></html>", "<svg", "text"})
        EXPECT_EQ(svg(text), PictureInfo()) << text;
}

TEST(Pictures, TheBeginningOfAPictureNeverSaysAnotherSize) {
    const std::string wholes[] = {png(640, 480, 2000), bmp(10, 10, 320), emf(99, 199, 88),
                                  wmf(1440, 720, 1440), "<svg width='10' height='20'/>"};
    for (const std::string& whole : wholes) {
        const PictureInfo expected = info_of(whole);
        for (std::size_t size = 0; size < whole.size(); ++size) {
            const PictureInfo info = info_of(whole.substr(0, size));
            EXPECT_TRUE(info.width == 0 || (info.width == expected.width && info.height == expected.height))
                << size;
            EXPECT_TRUE(info.format == PictureFormat::unknown || info.format == expected.format) << size;
        }
    }
}

/// A piece of a WebP file, of an even size.
std::string webp_piece(std::string_view type, const std::string& body) {
    return Bytes{}.text_of(type).number(body.size(), 4).text_of(body).zeros(body.size() % 2).text;
}
std::string webp(const std::string& pieces) {
    return Bytes{}.text_of("RIFF").number(4 + pieces.size(), 4).text_of("WEBP").text_of(pieces).text;
}

TEST(Pictures, WebPCanvasesAreThoseOfTheirPixels) {
    const auto lossy = [](std::uint32_t width, std::uint32_t height, unsigned first = 0) {
        return webp_piece(
            "VP8 ", Bytes{}.number(first, 3).text_of("\x9D\x01\x2A").number(width, 2).number(height, 2).text);
    };
    const auto lossless = [](std::uint32_t width, std::uint32_t height, unsigned first = 0x2F) {
        return webp_piece("VP8L", Bytes{}.number(first, 1).number((width - 1) | (height - 1) << 14, 4).text);
    };
    const auto frame = [](std::uint32_t left, std::uint32_t top, std::uint32_t width, std::uint32_t height) {
        return webp_piece("ANMF", Bytes{}
                                      .number(left / 2, 3)
                                      .number(top / 2, 3)
                                      .number(width - 1, 3)
                                      .number(height - 1, 3)
                                      .zeros(4)
                                      .text);
    };
    const std::string canvas =
        webp_piece("VP8X", Bytes{}.zeros(4).number(640 - 1, 3).number(480 - 1, 3).text);
    const std::string colors = webp_piece("ICCP", "odd");
    const PictureInfo known{.format = PictureFormat::webp, .width = 640, .height = 480};
    for (const std::string& pieces :
         {lossy(640, 480), lossless(640, 480), canvas + lossy(640, 480), canvas + lossless(640, 480),
          canvas + colors + lossy(640, 480), canvas + frame(0, 0, 640, 480),
          canvas + colors + frame(320, 240, 320, 240)}) {
        const std::string whole = webp(pieces);
        EXPECT_EQ(info_of(whole), known);
        for (std::size_t size = 0; size < whole.size(); ++size) {
            const PictureInfo info = info_of(whole.substr(0, size));
            EXPECT_TRUE(info.width == 0 || info == known) << size;
        }
    }
    const PictureInfo unknown{.format = PictureFormat::webp};
    for (const std::string& pieces :
         {lossy(640, 480, 1), lossless(640, 480, 0x2E), canvas, canvas + colors, canvas + lossy(640, 481),
          canvas + lossy(641, 480), canvas + lossless(639, 480), canvas + lossy(640, 480, 1),
          canvas + frame(322, 0, 320, 1), canvas + frame(0, 242, 1, 240), webp_piece("VP8X", "short"),
          webp_piece("VP8?", std::string(10, 'x')), webp_piece("VP8 ", std::string(10, '\0'))})
        EXPECT_EQ(info_of(webp(pieces)), unknown);
}

TEST(Pictures, NoMoreThan64KBytesAreLookedAt) {
    // Segments without end in front of the frame.
    std::string jpeg = "\xFF\xD8";
    for (int i = 0; i < 100'000; ++i)
        jpeg += std::string("\xFF\xE1\0\2", 4);
    jpeg += std::string("\xFF\xC0\0\x11\x08\0\x10\0\x10", 9);
    EXPECT_EQ(picture_info(std::as_bytes(std::span(jpeg))), (PictureInfo{.format = PictureFormat::jpeg}));
    EXPECT_EQ(info_of_file(jpeg), (PictureInfo{.format = PictureFormat::jpeg}));
    // A segment of 64 KB, which is passed over.
    jpeg = std::string("\xFF\xD8\xFF\xE1\xFF\xFF", 6) + std::string(65533, 'x') +
           std::string("\xFF\xC0\0\x11\x08\0\x10\0\x20\3", 10);
    EXPECT_EQ(info_of(jpeg), (PictureInfo{.format = PictureFormat::jpeg, .width = 32, .height = 16}));
}

TEST(Pictures, AreEqualByTheirBytesOrTheirName) {
    const auto picture = [](const std::string& bytes) {
        const auto span = std::as_bytes(std::span(bytes));
        return Picture::fromBytes({span.begin(), span.end()});
    };
    const Picture first = picture(bmp(10, 10, 320));
    EXPECT_EQ(first, picture(bmp(10, 10, 320)));
    EXPECT_EQ(first.hash(), picture(bmp(10, 10, 320)).hash());
    EXPECT_NE(first, picture(bmp(10, 9, 320)));
    EXPECT_NE(first, Picture());
    EXPECT_EQ(Picture::named(u"Print"), Picture::named(u"PRINT"));
    EXPECT_EQ(Picture::named(u"Print").hash(), Picture::named(u"PRINT").hash());
    EXPECT_NE(Picture::named(u"Print"), Picture());
    EXPECT_THROW(static_cast<void>(picture("no picture")), PresentationException);
    EXPECT_EQ(first.presentation(), u"BMP, 10 × 10");
}

} // namespace
