#include "yuv.hpp"

#include <algorithm>
#include <cmath>

namespace host {
namespace {

constexpr float redWeight = 0.299f; // BT.601
constexpr float blueWeight = 0.114f;
constexpr float greenWeight = 1.0f - redWeight - blueWeight;
constexpr float chromaZero = 128.0f;
// B - Y and R - Y span twice (1 - weight) of the range; chroma is scaled to span it once.
constexpr float blueSpan = 2.0f * (1.0f - blueWeight);
constexpr float redSpan = 2.0f * (1.0f - redWeight);

std::uint8_t toByte(float value) { return static_cast<std::uint8_t>(std::lround(std::clamp(value, 0.0f, 255.0f))); }

void bgraPixelToYuva(std::uint8_t *yuva, const std::uint8_t *bgra)
{
    const float b = bgra[0];
    const float g = bgra[1];
    const float r = bgra[2];
    const float y = redWeight * r + greenWeight * g + blueWeight * b;
    yuva[0] = toByte(y);
    yuva[1] = toByte((b - y) / blueSpan + chromaZero);
    yuva[2] = toByte((r - y) / redSpan + chromaZero);
    yuva[3] = bgra[3];
}

void yuvaPixelToBgra(std::uint8_t *bgra, const std::uint8_t *yuva)
{
    const float y = yuva[0];
    const float b = y + blueSpan * (yuva[1] - chromaZero);
    const float r = y + redSpan * (yuva[2] - chromaZero);
    bgra[0] = toByte(b);
    bgra[1] = toByte((y - redWeight * r - blueWeight * b) / greenWeight);
    bgra[2] = toByte(r);
    bgra[3] = yuva[3];
}

template <class PixelStep> Picture mapPixels(const Picture &source, PixelStep step)
{
    Picture result(source.width(), source.height(), 4);
    for (int y = 0; y < source.height(); ++y)
        for (int x = 0; x < source.width(); ++x)
            step(result.row(y) + 4 * x, source.row(y) + 4 * x);
    return result;
}

} // namespace

Picture toYuva(const Picture &bgra) { return mapPixels(bgra, bgraPixelToYuva); }

Picture toBgra(const Picture &yuva) { return mapPixels(yuva, yuvaPixelToBgra); }

double meanSquaredError(const Picture &a, const Picture &b, int channel)
{
    double sum = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const int difference = a.row(y)[4 * x + channel] - b.row(y)[4 * x + channel];
            sum += difference * difference; // whole numbers below 2^53: exact
        }
    }
    return sum / (static_cast<double>(a.width()) * a.height());
}

double peakSignalToNoise(double meanSquaredError) { return 10.0 * std::log10(255.0 * 255.0 / meanSquaredError); }

} // namespace host
