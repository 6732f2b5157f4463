// The 2-D transform of the frequency-domain commands, forward and inverse, at 1024 by 1024 and
// 4096 by 4096 complex f32, on one thread and on two, beside FFTW in single precision
// (fftwf_plan_dft_2d with FFTW_MEASURE; FFTW's own unscaled transform) in the same run. At the
// end the ratio of our best time to FFTW's best time is printed for each case, and for one
// thread also the ratio of the best processor times of the working thread, which a loaded
// machine disturbs less. Without FFTW at build time only our figures are given. bench/fft_numpy.py times numpy.fft on the same sizes.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <map>
#include <random>
#include <string>
#include <time.h>
#include <vector>

#include "image/fft.h"

#ifdef TAVRIN_BENCH_FFTW
#include <fftw3.h>
#endif

namespace {

std::vector<float> Input(int n)
{
    std::vector<float> data(static_cast<size_t>(n) * n * 2);
    std::mt19937 random(static_cast<uint32_t>(n));
    std::uniform_real_distribution<float> value(0.0f, 1024.0f);
    for (size_t i = 0; i < data.size(); i += 2) data[i] = value(random);
    return data;
}

// The processor time of the calling thread: on one thread it leaves out the time the thread
// waited for a core, so that a loaded machine still gives a fair comparison.
double ThreadSeconds()
{
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + 1e-9 * static_cast<double>(t.tv_nsec);
}

std::map<std::string, double>& BestTimes()
{
    static std::map<std::string, double> best;
    return best;
}

void Note(const std::string& name, double seconds)
{
    auto& best = BestTimes();
    auto it = best.find(name);
    if (it == best.end() || seconds < it->second) best[name] = seconds;
}

std::string Key(const char* who, int n, bool forward, int threads)
{
    return std::string(who) + (forward ? " forward " : " inverse ") + std::to_string(n) + " t" + std::to_string(threads);
}

void Ours(benchmark::State& state)
{
    const int n = static_cast<int>(state.range(0));
    const bool forward = state.range(1) != 0;
    const int threads = static_cast<int>(state.range(2));
    const int log2n = PowerOfTwoExponent(n);
    const std::vector<float> input = Input(n);
    std::vector<float> data = input;
    FFT2D(data.data(), log2n, log2n, n, forward, FFTProgress{}, threads);   // tables made
    for (auto _ : state) {
        // Every pass starts from the same input: repeated passes would shrink the values
        // towards subnormal numbers (forward) or grow them without bound (inverse).
        std::copy(input.begin(), input.end(), data.begin());
        const double cpuStart = ThreadSeconds();
        const auto start = std::chrono::steady_clock::now();
        FFT2D(data.data(), log2n, log2n, n, forward, FFTProgress{}, threads);
        const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        state.SetIterationTime(seconds);
        Note(Key("ours", n, forward, threads), seconds);
        if (threads == 1) Note(Key("ours cpu", n, forward, threads), ThreadSeconds() - cpuStart);
        benchmark::DoNotOptimize(data.data());
    }
}

#ifdef TAVRIN_BENCH_FFTW
void Fftw(benchmark::State& state)
{
    const int n = static_cast<int>(state.range(0));
    const bool forward = state.range(1) != 0;
    const int threads = static_cast<int>(state.range(2));
#ifdef TAVRIN_BENCH_FFTW_THREADS
    static const bool ready = fftwf_init_threads() != 0;
    if (ready) fftwf_plan_with_nthreads(threads);
#else
    if (threads != 1) {
        state.SkipWithError("FFTW without threads");
        return;
    }
#endif
    auto* data = static_cast<fftwf_complex*>(fftwf_malloc(sizeof(fftwf_complex) * n * n));
    fftwf_plan plan = fftwf_plan_dft_2d(n, n, data, data, forward ? FFTW_FORWARD : FFTW_BACKWARD, FFTW_MEASURE);
    const std::vector<float> input = Input(n);
    for (auto _ : state) {
        std::copy(input.begin(), input.end(), reinterpret_cast<float*>(data));
        const double cpuStart = ThreadSeconds();
        const auto start = std::chrono::steady_clock::now();
        fftwf_execute(plan);
        const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        state.SetIterationTime(seconds);
        Note(Key("fftw", n, forward, threads), seconds);
        if (threads == 1) Note(Key("fftw cpu", n, forward, threads), ThreadSeconds() - cpuStart);
        benchmark::DoNotOptimize(data);
    }
    fftwf_destroy_plan(plan);
    fftwf_free(data);
}
#endif

void Sizes(benchmark::internal::Benchmark* b)
{
    for (int n : {1024, 4096})
        for (int forward : {1, 0})
            for (int threads : {1, 2}) b->Args({n, forward, threads});
    b->UseManualTime()->Unit(benchmark::kMillisecond);
}

} // namespace

BENCHMARK(Ours)->Apply(Sizes);
#ifdef TAVRIN_BENCH_FFTW
BENCHMARK(Fftw)->Apply(Sizes);
#endif

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    std::printf("\nbest times (ms) and ratio ours / FFTW:\n");
    for (int n : {1024, 4096})
        for (bool forward : {true, false})
            for (int threads : {1, 2}) {
                const auto& best = BestTimes();
                const auto ours = best.find(Key("ours", n, forward, threads));
                const auto fftw = best.find(Key("fftw", n, forward, threads));
                if (ours == best.end()) continue;
                if (fftw == best.end())
                    std::printf("%-24s %9.2f\n", Key("", n, forward, threads).c_str(), ours->second * 1e3);
                else
                    std::printf("%-24s %9.2f  fftw %9.2f  ratio %5.2f\n", Key("", n, forward, threads).c_str(),
                                ours->second * 1e3, fftw->second * 1e3, ours->second / fftw->second);
                const auto oursCpu = best.find(Key("ours cpu", n, forward, threads));
                const auto fftwCpu = best.find(Key("fftw cpu", n, forward, threads));
                if (oursCpu != best.end() && fftwCpu != best.end())
                    std::printf("%-24s %9.2f  fftw %9.2f  ratio %5.2f  (processor time of the thread)\n",
                                Key("", n, forward, threads).c_str(), oursCpu->second * 1e3, fftwCpu->second * 1e3,
                                oursCpu->second / fftwCpu->second);
            }
    return 0;
}
