// Fuzz target: the header reader of image files over any bytes.
#include "fuzz_support.h"
#include "files/tiff_header.h"
#include "platform/files.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const bool ready = [] {
        ResetProcessState();
        fuzzsupport::WorkDirectory();
        return true;
    }();
    (void)ready;
    const size_t blocks = LiveBlockCount();
    const std::string path = fuzzsupport::WriteInput(data, size);
    const FileHandle file = FileOpen(path, FileMode::Read);
    fuzzsupport::Check(file != kInvalidFile, "input file opens");
    ImageHeaderType* scratch = AllocateHeader();
    fuzzsupport::Check(scratch != nullptr, "scratch record");
    const int accepted = loadImageHeader(file, scratch);
    if (accepted) {
        // An accepted header is a valid image header, positioned at or behind the record.
        fuzzsupport::Check(CheckValidImageHeader(scratch) == 1, "accepted header is valid");
        fuzzsupport::Check(FileSeek(file, 0, FileOrigin::Current) >= 902, "positioned behind the header");
    }
    FileClose(file);
    FreeHeader(scratch);
    fuzzsupport::Check(LiveBlockCount() == blocks, "no block left behind");
    return 0;
}

extern "C" void TavrinFuzzSeeds(const char* directory) { fuzzsupport::WriteSeeds(directory); }
