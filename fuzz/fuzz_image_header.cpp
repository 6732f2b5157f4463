// Fuzz target: the header reader of image files over any bytes.
#include "fuzz_support.h"
#include "files/tiff_header.h"
#include "platform/files.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzzsupport::StartOnce();
    const size_t blocks = LiveBlockCount();
    const std::string path = fuzzsupport::WriteInput(data, size);
    const FileHandle file = FileOpen(path, FileMode::Read);
    fuzzsupport::Check(file != kInvalidFile, "input file opens");
    ImageHeaderType* scratch = AllocateHeader();
    fuzzsupport::Check(scratch != nullptr, "scratch record");
    const int accepted = loadImageHeader(file, scratch);
    if (accepted) {
        // An accepted header is a valid image header, and the file stands at the pixels: for a
        // TIFF file at directory offset + IfdReserve, for a plain file behind the bytes its
        // revision stored.
        fuzzsupport::Check(CheckValidImageHeader(scratch) == 1, "accepted header is valid");
        fuzzsupport::Check(size >= 10, "ten bytes were there");
        uint32_t offset;
        uint16_t reserve;
        std::memcpy(&offset, data + 4, 4);
        std::memcpy(&reserve, data + 8, 2);
        const long long expected = IsTiffSignature(data) ? static_cast<long long>(offset) + reserve
                                                         : static_cast<long long>(StoredHeaderBytes(scratch->RevNo));
        fuzzsupport::Check(FileSeek(file, 0, FileOrigin::Current) == expected, "positioned at the pixels");
    }
    FileClose(file);
    FreeHeader(scratch);
    fuzzsupport::Check(LiveBlockCount() == blocks, "no block left behind");
    return 0;
}

extern "C" void TavrinFuzzSeeds(const char* directory) { fuzzsupport::WriteSeeds(directory); }
