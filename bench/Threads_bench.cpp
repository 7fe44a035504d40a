// Dividing work over the processors. An empty fork stands beside starting and joining threads for the same
// parts; work on the rows of a picture of 1920 x 1080 beside the same work on the caller's thread alone.
#include "BenchTools.h"
#include "ZVLibInternal.h"

#include <cmath>
#include <memory>
#include <thread>
#include <vector>

namespace {

constexpr long width = 1920, height = 1080;
constexpr int emptyForks = 100;

/// The library as long as one of its measurements needs it.
struct Environment {
    Environment() { InitZV(nullptr, nullptr, nullptr, nullptr, ZV_INIT_NO_GUI, 1, 0); }
    ~Environment() { CleanUpZV(); }
};

struct Pictures {
    std::vector<float> from = std::vector<float>(width * height * 4, 0.5F);
    std::vector<float> to = std::vector<float>(width * height * 4, 0.0F);
};

template <typename Pixel> long Work_On_Rows(long index, long count, void* data)
{
    auto& pictures = *static_cast<Pictures*>(data);
    long const rowSize = width * Pixel::channels;
    long const first = height * (index - 1) / count * rowSize, last = height * index / count * rowSize;
    float const* from = pictures.from.data();
    float* to = pictures.to.data();
    for (long i = first; i < last; ++i)
        to[i] = Pixel::Convert(from[i]);
    return 1;
}

// Bound by memory: one product for each value of a picture of four channels.
struct Gain {
    static constexpr long channels = 4;
    static float Convert(float value) { return value * 1.5F; }
};
// Bound by arithmetic: a power for each value of a single channel.
struct Gamma {
    static constexpr long channels = 1;
    static float Convert(float value) { return std::pow(value, 1 / 2.2F); }
};

template <typename Pixel> void Register_Rows(std::string const& name, double limit)
{
    Bench::Register(name, limit, [] {
        auto const environment = std::make_shared<Environment>();
        auto const pictures = std::make_shared<Pictures>();
        return std::pair([environment, pictures] { MPForkZV(Work_On_Rows<Pixel>, pictures.get(), height); },
                         [pictures] { Work_On_Rows<Pixel>(1, 1, pictures.get()); });
    });
}

void Fork_Nothing()
{
    for (int i = 0; i < emptyForks; ++i)
        MPForkZV([](long, long, void*) { return 1L; }, nullptr, GetProcessorsZV());
}

void Start_And_Join_Threads()
{
    for (int i = 0; i < emptyForks; ++i) {
        std::vector<std::thread> threads;
        for (long part = 0; part < GetProcessorsZV(); ++part)
            threads.emplace_back([] {});
        for (std::thread& thread : threads)
            thread.join();
    }
}

bool const isRegistered = [] {
    Bench::Register("fork/100_empty", 0, [] {
        auto const environment = std::make_shared<Environment>();
        return std::pair([environment] { Fork_Nothing(); }, [environment] { Start_And_Join_Threads(); });
    });
    Register_Rows<Gamma>("fork/rows_gamma_float", 1 / 1.9);
    Register_Rows<Gain>("fork/rows_gain_float", 0);
    return true;
}();

}  // namespace
