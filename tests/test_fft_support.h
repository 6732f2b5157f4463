// Shared pieces of the frequency-domain tests: a started library with a frame store, and a
// plain double-precision discrete Fourier transform to compare the library's transform with.
#pragma once

#include "test_frame_support.h"

#include "image/fft.h"
#include "image/fft_commands.h"
#include "image/fft_image.h"
#include "image/fft_mask.h"
#include "tavrin/dl_fft.h"

#include <cmath>
#include <complex>
#include <vector>

class FFTTestBase : public FrameStoreTest {
protected:
    void SetUp() override
    {
        FrameStoreTest::SetUp();
        ASSERT_EQ(fs.Open(1), 0);
        host.ClearCalls();
    }
    static uint16_t At(const ImageHeaderType* image, int x, int y)
    {
        return image->PixData[static_cast<size_t>(y) * image->nx + x];
    }
    bool ErrorShown(const std::string& text) const
    {
        for (const auto& box : host.messageBoxes)
            if (box.text.find(text) != std::string::npos) return true;
        return false;
    }
    TestFrameStore fs;
};

// The 2-D transform written out in double: forward with exp(-2 pi i ...) and 1 / (nx ny),
// inverse with exp(+2 pi i ...) unscaled. Data as (re, im) pairs, row-major.
inline std::vector<std::complex<double>> ReferenceDFT2D(const std::vector<float>& data, int nx, int ny, bool forward)
{
    const double sign = forward ? -1.0 : 1.0;
    const double pi2 = 2.0 * 3.14159265358979323846;
    std::vector<std::complex<double>> in(static_cast<size_t>(nx) * ny), rows(in.size()), out(in.size());
    for (size_t i = 0; i < in.size(); ++i) in[i] = {data[2 * i], data[2 * i + 1]};
    for (int y = 0; y < ny; ++y)
        for (int k = 0; k < nx; ++k) {
            std::complex<double> sum = 0;
            for (int j = 0; j < nx; ++j)
                sum += in[static_cast<size_t>(y) * nx + j] * std::polar(1.0, sign * pi2 * ((static_cast<long long>(j) * k) % nx) / nx);
            rows[static_cast<size_t>(y) * nx + k] = sum;
        }
    for (int x = 0; x < nx; ++x)
        for (int k = 0; k < ny; ++k) {
            std::complex<double> sum = 0;
            for (int j = 0; j < ny; ++j)
                sum += rows[static_cast<size_t>(j) * nx + x] * std::polar(1.0, sign * pi2 * ((static_cast<long long>(j) * k) % ny) / ny);
            out[static_cast<size_t>(k) * nx + x] = forward ? sum / static_cast<double>(nx * ny) : sum;
        }
    return out;
}
