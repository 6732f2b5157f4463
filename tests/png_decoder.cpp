#include "png_decoder.h"

#include <png.h>

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>

namespace fs = std::filesystem;

namespace png_check {

namespace {

// The script: "zlib" and "deflate" inflate a stream; "idat" checks the CRC of every chunk of
// a PNG file and inflates its image data, filter bytes included. Python's zlib is a decoder
// independent of the one that wrote the file.
const char kDecoder[] = R"PY(
import sys, zlib
kind, source, target = sys.argv[1:4]
data = open(source, 'rb').read()
if kind == 'zlib':
    out = zlib.decompress(data)
elif kind == 'deflate':
    out = zlib.decompress(data, -15)
else:
    assert data[:8] == b'\x89PNG\r\n\x1a\n', 'signature'
    at, idat = 8, b''
    while at < len(data):
        length = int.from_bytes(data[at:at + 4], 'big')
        chunk = data[at + 4:at + 8 + length]
        crc = int.from_bytes(data[at + 8 + length:at + 12 + length], 'big')
        assert zlib.crc32(chunk) == crc, 'CRC of chunk %r' % chunk[:4]
        if chunk[:4] == b'IDAT':
            idat += chunk[4:]
        at += 12 + length
    out = zlib.decompress(idat)
open(target, 'wb').write(out)
)PY";

} // namespace

Bytes ReadFile(const fs::path& path)
{
    std::ifstream in(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void WriteFile(const fs::path& path, const Bytes& bytes)
{
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

void PngDecoderTest::SetUp()
{
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    dir = fs::temp_directory_path() /
          ("tavrin_png_" + std::to_string(getpid()) + "_" + info->test_suite_name() + "_" + info->name());
    fs::remove_all(dir);
    fs::create_directories(dir);
}

void PngDecoderTest::TearDown()
{
    fs::remove_all(dir);
}

Bytes PngDecoderTest::Decode(const std::string& kind, const fs::path& file) { return RunDecoder(dir, kind, file); }

Bytes RunDecoder(const fs::path& dir, const std::string& kind, const fs::path& file)
{
    if (!fs::exists(dir / "decode.py")) std::ofstream(dir / "decode.py") << kDecoder;
    fs::path out = dir / "decoded.bin";
    fs::path errors = dir / "errors.txt";
    fs::remove(out);
    std::string command = "/usr/bin/python3 '" + (dir / "decode.py").string() + "' " + kind + " '" + file.string() +
                          "' '" + out.string() + "' 2> '" + errors.string() + "'";
    int status = std::system(command.c_str());
    if (status != 0) {
        Bytes text = ReadFile(errors);
        ADD_FAILURE() << "decoder failed (" << status << "): " << std::string(text.begin(), text.end());
        return {};
    }
    return ReadFile(out);
}

Bytes PngDecoderTest::Inflate(const std::string& kind, const Bytes& stream)
{
    fs::path file = dir / "stream.bin";
    WriteFile(file, stream);
    return Decode(kind, file);
}

PngDecoderTest::Decoded PngDecoderTest::DecodePng(const fs::path& file, size_t bytesPerPixel)
{
    return DecodePngFile(dir, file, bytesPerPixel);
}

namespace {

// The jump target of libpng's errors: nothing with a destructor is made here before the reads.
bool ReadPicture(png_structp png, png_infop info, FILE* in, size_t bytesPerPixel, DecodedPng* d)
{
    if (setjmp(png_jmpbuf(png))) return false;
    png_init_io(png, in);
    png_read_info(png, info);
    const png_uint_32 width = png_get_image_width(png, info), height = png_get_image_height(png, info);
    const int type = png_get_color_type(png, info);
    d->mode = type == PNG_COLOR_TYPE_RGB ? "RGB" : type == PNG_COLOR_TYPE_RGB_ALPHA ? "RGBA"
            : type == PNG_COLOR_TYPE_PALETTE ? "P" : "other";
    d->width = static_cast<int32_t>(width);
    d->height = static_cast<int32_t>(height);
    if (png_get_rowbytes(png, info) != width * bytesPerPixel) return false;
    d->pixels.resize(static_cast<size_t>(width) * height * bytesPerPixel);
    for (png_uint_32 y = 0; y < height; ++y) png_read_row(png, d->pixels.data() + y * width * bytesPerPixel, nullptr);
    png_read_end(png, nullptr);
    png_colorp palette = nullptr;
    int entries = 0;
    if (type == PNG_COLOR_TYPE_PALETTE && png_get_PLTE(png, info, &palette, &entries))
        for (int i = 0; i < entries; ++i) d->palette.insert(d->palette.end(), {palette[i].red, palette[i].green, palette[i].blue});
    return true;
}

} // namespace

// libpng reads the file (checking every chunk's CRC) and gives the rows as stored: no
// conversion, so a palette image gives its indices and the palette apart.
DecodedPng DecodePngFile(const fs::path& /*dir*/, const fs::path& file, size_t bytesPerPixel)
{
    DecodedPng d;
    FILE* in = std::fopen(file.c_str(), "rb");
    if (!in) {
        ADD_FAILURE() << "cannot open " << file;
        return d;
    }
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    bool ok = info && ReadPicture(png, info, in, bytesPerPixel, &d);
    png_destroy_read_struct(&png, &info, nullptr);
    std::fclose(in);
    if (!ok) {
        ADD_FAILURE() << "libpng could not read " << file;
        return DecodedPng{};
    }
    return d;
}

} // namespace png_check
