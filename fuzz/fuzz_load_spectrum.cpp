// Fuzz target: the spectrum reader, the chain of spectra behind the pixels of an image file,
// and the load of a ".spc" file into the data list. Every failure must leave no block alive
// and the list empty; every spectrum read must be one the library can work on.
#include "fuzz_support.h"
#include "files/attached_spectra.h"
#include "files/spectrum_files.h"

namespace {

void CheckSpectrum(const ImageHeaderType* s)
{
    fuzzsupport::Check(s->PixData != nullptr && s->PixHandle != 0, "spectrum has samples");
    fuzzsupport::Check(CheckValidSpecHeader(s) == 1 && CheckHeaderIsSpecType(s) == 1, "spectrum is valid");
    fuzzsupport::Check(s->SPSOwnerId == -1, "spectrum refers to no image");
    fuzzsupport::Check(s->FFTDataPtr == nullptr && s->FFTData == 0, "spectrum has no FFT block");
    fuzzsupport::Check(s->CITSHeaderPtr == nullptr && s->CITSHeader == 0, "spectrum has no mapping");
    fuzzsupport::Check((s->SPSRefData != 0) == (s->SPSRefDataPtr != nullptr), "chain flag matches its link");
    // Every sample can be read.
    fuzzsupport::ReadEverySample(s);
}

void ReadOne(const std::string& path)
{
    const size_t blocks = LiveBlockCount();
    const FileHandle file = FileOpen(path, FileMode::Read);
    fuzzsupport::Check(file != kInvalidFile, "input opens");
    ImageHeaderType* spectrum = loadSpec(file);
    FileClose(file);
    if (!spectrum) {
        fuzzsupport::Check(LiveBlockCount() == blocks, "a refused spectrum leaves no block");
        return;
    }
    CheckSpectrum(spectrum);
    FreeSpectrumRecord(spectrum);
    fuzzsupport::Check(LiveBlockCount() == blocks, "a spectrum frees with its samples");
}

// The input as the spectra behind an image of the given revision, up to `wanted` of them.
void ReadChain(const std::string& path, int revNo, int wanted)
{
    const size_t blocks = LiveBlockCount();
    ImageHeaderType image;
    std::memset(&image, 0, sizeof image);
    InitImageHeader(&image, 16, 16);
    image.RevNo = static_cast<int16_t>(revNo);
    image.nSPSRefData = static_cast<int16_t>(wanted);
    const FileHandle file = FileOpen(path, FileMode::Read);
    fuzzsupport::Check(file != kInvalidFile, "input opens");
    const int read = ReadSPSRefData(file, &image);
    FileClose(file);
    fuzzsupport::Check(read >= 0 && read <= wanted && read == image.nSPSRefData, "count read");
    int n = 0;
    for (const ImageHeaderType* s = image.SPSRefDataPtr; s; s = s->SPSRefDataPtr) {
        CheckSpectrum(s);
        ++n;
    }
    fuzzsupport::Check(n == read && (read > 0) == (image.SPSRefData != 0), "chain holds what was read");
    FreeSPSRefChain(&image);
    fuzzsupport::Check(LiveBlockCount() == blocks, "the chain frees every spectrum");
}

void LoadIntoList(const std::string& path)
{
    fuzzsupport::Check(FirstItem == nullptr, "empty list before the load");
    const size_t blocks = LiveBlockCount();
    if (LoadSpecFile(path.c_str(), 0, 1) != 0) {
        fuzzsupport::Check(FirstItem == nullptr && CurrentItem == nullptr, "failed load leaves no item");
        fuzzsupport::Check(LiveBlockCount() == blocks, "failed load leaves no block");
        return;
    }
    fuzzsupport::Check(FirstItem != nullptr && FirstItem == CurrentItem && FirstItem->Next == nullptr,
                       "one new current item");
    CheckSpectrum(CurrentItem);
    EraseItem(CurrentItem);
    fuzzsupport::Check(FirstItem == nullptr && LiveBlockCount() == blocks, "erase frees every block");
}

// A spectrum of n points made by our writer, as bytes.
std::string WrittenSpectrum(const std::string& directory, int n, int revNo, size_t headerBytes)
{
    ImageHeaderType* record = AllocateHeader();
    float* samples = AllocSpecMem(n);
    if (!record || !samples) return {};
    InitImageHeader(record, n, 1);
    record->ImType1 = 2;
    record->AcqMode = 12;
    record->PixHandle = 1;
    record->PixData = reinterpret_cast<uint16_t*>(samples);
    for (int i = 0; i < n; ++i) {
        samples[i] = static_cast<float>(i) * 0.25f - 3.0f;
        samples[n + i] = static_cast<float>(i);
    }
    const std::string path = directory + "/written.spc";
    SaveSpecFile(record, path.c_str());
    FreeSpectrumRecord(record);
    FILE* f = std::fopen(path.c_str(), "rb");
    std::string bytes;
    if (f) {
        char buffer[4096];
        size_t got;
        while ((got = std::fread(buffer, 1, sizeof buffer, f)) > 0) bytes.append(buffer, got);
        std::fclose(f);
    }
    std::remove(path.c_str());
    if (headerBytes < 6090 && bytes.size() >= 6090) {
        // An old short record: its revision, the class of that revision, and the samples behind.
        const int16_t rev = static_cast<int16_t>(revNo);
        std::memcpy(bytes.data(), &rev, sizeof rev);
        bytes[411] = 6;   // OldImageType: a spectrum
        bytes = bytes.substr(0, headerBytes) + bytes.substr(6090);
    }
    return bytes;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzzsupport::StartOnce();
    const std::string path = fuzzsupport::WriteInput(data, size);
    ReadOne(path);
    // The revision of the image and the count come from the input's last byte, so that every
    // space rule is reached.
    const uint8_t last = size ? data[size - 1] : 0;
    static const int kRevisions[] = {700, 404, 303, 200};
    ReadChain(path, kRevisions[last & 3], 1 + ((last >> 2) & 7));
    LoadIntoList(path);
    return 0;
}

extern "C" void TavrinFuzzSeeds(const char* directory)
{
    ResetProcessState();
    const std::string dir = directory;
    const std::string three = WrittenSpectrum(dir, 3, 700, 6090);
    const std::string hundred = WrittenSpectrum(dir, 100, 700, 6090);
    const std::string old303 = WrittenSpectrum(dir, 8, 303, 902);
    const std::string old404 = WrittenSpectrum(dir, 5, 404, 1872);
    fuzzsupport::WriteBytes(dir + "/seed_three.spc", three);
    fuzzsupport::WriteBytes(dir + "/seed_hundred.spc", hundred);
    fuzzsupport::WriteBytes(dir + "/seed_rev303.spc", old303);
    fuzzsupport::WriteBytes(dir + "/seed_rev404.spc", old404);
    fuzzsupport::WriteBytes(dir + "/seed_chain.spc", three + hundred + three);
    fuzzsupport::WriteBytes(dir + "/seed_old_chain.spc", old303 + old303 + std::string(5188, '\0'));
    ResetProcessState();
}
