#include "rows.hpp"

#include "system.hpp"

#include <algorithm>
#include <chrono>
#include <iostream>
#include <thread>

namespace host {
namespace {

constexpr const char *clearLine = "\r\x1b[K";

} // namespace

void overRows(int height, int threads, const std::function<void(int first, int end)> &work)
{
    const int bands = std::clamp(threads, 1, std::max(height, 1));
    const auto start = [&](int band) { return static_cast<int>(static_cast<long long>(height) * band / bands); };

    std::vector<std::jthread> others; // joined on the way out
    for (int band = 1; band < bands; ++band)
        others.emplace_back([&, band] { work(start(band), start(band + 1)); });
    work(0, start(1));
}

Progress::Progress() : visible(errorStreamIsTerminal()) {}

Progress::~Progress()
{
    if (visible)
        std::cerr << clearLine << std::flush;
}

void Progress::show(const std::string &text)
{
    if (visible)
        std::cerr << clearLine << text << std::flush;
}

double secondsOf(const std::function<void()> &work)
{
    using Clock = std::chrono::steady_clock;
    const Clock::time_point start = Clock::now();
    work();
    return std::chrono::duration<double>(Clock::now() - start).count();
}

double medianOf(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

double medianSeconds(int runs, const std::function<void(int run)> &announce, const std::function<void()> &work)
{
    std::vector<double> seconds;
    for (int run = 0; run < runs; ++run) {
        announce(run);
        seconds.push_back(secondsOf(work));
    }
    return medianOf(std::move(seconds));
}

} // namespace host
