// Helpers of the spectrum tests: spectra in the data list and outside it, ".spc" file bytes.
#pragma once

#include "support/test_host.h"
#include "store/data_list.h"
#include "store/image_header.h"
#include "store/memory.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace spectest {

// Y value i of the test spectra of `seed`; X value i is i * 0.25 - 1.
inline float TestY(int i, int seed) { return static_cast<float>(seed) + static_cast<float>(i) * 0.5f; }
inline float TestX(int i) { return static_cast<float>(i) * 0.25f - 1.0f; }

inline void FillSpectrum(ImageHeaderType* record, int n, int seed, float* samples)
{
    InitImageHeader(record, n, 1);
    record->ImType1 = IMTYPE_SPECTRUM;
    record->AcqMode = 12;
    record->DataSource = 2;
    std::snprintf(record->Title, sizeof record->Title, "Spectrum %d", seed);
    record->PixHandle = 1;
    record->PixData = reinterpret_cast<uint16_t*>(samples);
    for (int i = 0; i < n; ++i) {
        samples[i] = TestY(i, seed);
        samples[n + i] = TestX(i);
    }
}

// A spectrum item behind the current one, made current.
inline ImageHeaderType* MakeSpectrumItem(int n, int seed = 1)
{
    ImageHeaderType* item = AllocateListItem(CurrentItem);
    if (!item) return nullptr;
    float* samples = AllocSpecMem(n);
    if (!samples) return nullptr;
    FillSpectrum(item, n, seed, samples);
    CurrentItem = item;
    return item;
}

// A spectrum record outside the list, as the chain of an image holds them.
inline ImageHeaderType* MakeBareSpectrum(int n, int seed)
{
    ImageHeaderType* record = AllocateHeader();
    if (!record) return nullptr;
    float* samples = AllocSpecMem(n);
    if (!samples) return nullptr;
    FillSpectrum(record, n, seed, samples);
    return record;
}

// The bytes of a ".spc" file: the first `headerBytes` of the record, then the samples.
inline std::string SpcBytes(const ImageHeaderType& record, size_t headerBytes, const std::vector<float>& samples)
{
    return std::string(reinterpret_cast<const char*>(&record), headerBytes) +
           std::string(reinterpret_cast<const char*>(samples.data()), samples.size() * sizeof(float));
}

// A record of a spectrum of n points (not in the list), and its Y then X samples.
inline ImageHeaderType SpectrumRecord(int n)
{
    ImageHeaderType record;
    std::memset(&record, 0, sizeof record);
    InitImageHeader(&record, n, 1);
    record.ImType1 = IMTYPE_SPECTRUM;
    record.AcqMode = 12;
    return record;
}

inline std::vector<float> Samples(int n, int seed = 1)
{
    std::vector<float> s(static_cast<size_t>(n) * 2);
    for (int i = 0; i < n; ++i) {
        s[static_cast<size_t>(i)] = TestY(i, seed);
        s[static_cast<size_t>(n + i)] = TestX(i);
    }
    return s;
}

inline std::string Stored(const ImageHeaderType* record)
{
    return std::string(reinterpret_cast<const char*>(record), TAVRIN_HEADER_STORED_BYTES);
}

} // namespace spectest
