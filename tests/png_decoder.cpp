#include "png_decoder.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>

namespace fs = std::filesystem;

namespace png_check {

namespace {

// The script: "png" writes "mode width height", a newline, the pixel bytes and, for a
// palette image, the palette.
const char kDecoder[] = R"PY(
import sys, zlib
from PIL import Image
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
    if kind == 'idat':
        out = zlib.decompress(idat)
    else:
        image = Image.open(source)
        image.load()
        out = ('%s %d %d\n' % (image.mode, image.size[0], image.size[1])).encode() + image.tobytes()
        if image.mode == 'P':
            out += bytes(image.getpalette())
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

DecodedPng DecodePngFile(const fs::path& dir, const fs::path& file, size_t bytesPerPixel)
{
    DecodedPng d;
    Bytes all = RunDecoder(dir, "png", file);
    auto newline = std::find(all.begin(), all.end(), '\n');
    if (newline == all.end()) {
        ADD_FAILURE() << "no header line from the decoder";
        return d;
    }
    std::istringstream header(std::string(all.begin(), newline));
    header >> d.mode >> d.width >> d.height;
    size_t count = static_cast<size_t>(d.width) * static_cast<size_t>(d.height) * bytesPerPixel;
    size_t start = static_cast<size_t>(newline - all.begin()) + 1;
    if (all.size() < start + count) {
        ADD_FAILURE() << "short pixel data from the decoder";
        return d;
    }
    d.pixels.assign(all.begin() + static_cast<ptrdiff_t>(start), all.begin() + static_cast<ptrdiff_t>(start + count));
    d.palette.assign(all.begin() + static_cast<ptrdiff_t>(start + count), all.end());
    return d;
}

} // namespace png_check
