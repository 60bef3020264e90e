// Mixes and gains of bytes and words by a weight in fixed point: see the head of mem_arith_ops.def.
//
// The formulas add in 5 or 3 fraction bits and round the sum. A whole number passes the rounding unchanged,
//   (32 * b + t + 16) >> 5 = b + ((t + 16) >> 5),
// so only the product is rounded here and the other input added as it is, in words or in limited bytes.
#pragma once

namespace {

// Fraction bits of a product with a weight or a gain.
constexpr int ofWeights = 5;
constexpr int ofGains = 3;

// --- Products ------------------------------------------------------------------------------------------------

// (128 * x * factor) >> 16 for x in -255..255: 128 * x fits a word.
inline WideBytes product(WideBytes x, i16s factor)
{
    return both(x, [factor](i16s h) { return multiplyHigh(shiftLeft<7>(h), factor); });
}
inline WideBytes product(u8s x, i16s factor) { return product(widen(x), factor); }

// The product of bytes and a factor that is not negative, rounded and limited to a byte. As 256 * x fits an unsigned
// word, this takes one more fraction bit, which the rounding drops: with u = (256 * x * factor) >> 16, at most 32639,
// (128 * x * factor) >> 16 is u >> 1, and ((u >> 1) + 16) >> 5 is (u + 32) >> 6.
template <int fractionBits> inline u8s roundedProduct(u8s x, u16s factor)
{
    return narrow(both(widenTop(x), [factor](i16s h) {
        const u16s u = multiplyHigh(as<u16s>(h), factor);
        return as<i16s>(shiftRight<fractionBits + 1>(u + splat16(1 << fractionBits)));
    }));
}

// --- Weighted differences ------------------------------------------------------------------------------------

// b + weight * (a - b). The product lies within 16320, its rounded value within 510.
void MemBlend8(uint8_t *dst, const uint8_t *a, const uint8_t *b, double weight, uint64_t count)
{
    const i16s factor = splatI16(toFixed<weightBits>(weight));
    map<u8s>(
        dst, (ptrdiff_t)count,
        [factor](u8s x, u8s y) {
            const WideBytes base = widen(y);
            return narrow(base + shiftRightRounded<ofWeights>(product(widen(x) - base, factor)));
        },
        a, b);
}

// 128 + weight * (a - b). The rounding and 128 in one addition: 16320 + 1024 + 4.
void MemMixOp15(uint8_t *dst, const uint8_t *a, const uint8_t *b, double weight, uint64_t count)
{
    const i16s factor = splatI16(toFixed<gainBits>(weight));
    map<u8s>(
        dst, (ptrdiff_t)count,
        [factor](u8s x, u8s y) {
            const auto centre = [](i16s h) { return shiftRight<ofGains>(h + splatI16((128 << ofGains) + 4)); };
            return narrow(both(product(widen(x) - widen(y), factor), centre));
        },
        a, b);
}

// a + weight * (b - 128). 256 * (b - 128) fits a word: one more fraction bit, dropped by the rounding.
void MemMixOp17(uint8_t *dst, const uint8_t *a, const uint8_t *b, double weight, uint64_t count)
{
    const i16s factor = splatI16(toFixed<weightBits>(weight));
    map<u8s>(
        dst, (ptrdiff_t)count,
        [factor](u8s x, u8s y) {
            const WideBytes products =
                both(widenTop(y ^ splat8(128)), [factor](i16s h) { return multiplyHigh(h, factor); });
            return narrow(widen(x) + shiftRightRounded<ofWeights + 1>(products));
        },
        a, b);
}

// b + weight * mask / 255 * (a - b). The mask becomes 0..256; 64 times that fits a word, and the upper half of its
// product with the weight, -8192..8191, has the fraction bits of a gain.
void MemMixOp47(uint8_t *dst, const uint8_t *a, const uint8_t *b, const uint8_t *mask, double weight, uint64_t count)
{
    const i16s factor = splatI16(toFixed<weightBits>(weight));
    map<u8s>(
        dst, (ptrdiff_t)count,
        [factor](u8s x, u8s y, u8s m) {
            const auto opacity = [factor](i16s h) { return multiplyHigh(shiftLeft<6>(h + shiftRight<7>(h)), factor); };
            const auto mixed = [](i16s p, i16s q, i16s by) {
                const i16s change = multiplyHigh(shiftLeft<7>(p - q), by);
                return q + shiftRight<ofGains>(change + splatI16(1 << (ofGains - 1)));
            };
            const WideBytes top = widen(x);
            const WideBytes base = widen(y);
            const WideBytes by = both(widen(m), opacity);
            return narrow(WideBytes{mixed(top.first, base.first, by.first), mixed(top.second, base.second, by.second)});
        },
        a, b, mask);
}

// --- Weighted layers -----------------------------------------------------------------------------------------

// x + factor * layer(x, y), the layer in bytes. A negative product t is rounded as t is, -t being at hand:
// (t + 16) >> 5 = -((15 - t) >> 5).
template <class Layer>
inline void addLayer(uint8_t *dst, const uint8_t *a, const uint8_t *b, int factor, ptrdiff_t n, Layer layer)
{
    if (factor >= 0) {
        const u16s up = splat16((uint16_t)factor);
        map<u8s>(
            dst, n, [=](u8s x, u8s y) { return addLimited(x, roundedProduct<ofWeights>(layer(x, y), up)); }, a, b);
    } else {
        const i16s down = splatI16((int16_t)factor);
        const auto rounded = [](i16s t) { return shiftRight<ofWeights>(splatI16(15) - t); };
        map<u8s>(
            dst, n, [=](u8s x, u8s y) { return subtractLimited(x, narrow(both(product(layer(x, y), down), rounded))); },
            a, b);
    }
}

void MemMixOp13(uint8_t *dst, const uint8_t *a, const uint8_t *b, double weight, uint64_t count)
{
    addLayer(dst, a, b, toFixed<weightBits>(weight), (ptrdiff_t)count, [](u8s, u8s y) { return y; });
}

void MemMixOp19(uint8_t *dst, const uint8_t *a, const uint8_t *b, double weight, uint64_t count)
{
    addLayer(dst, a, b, toFixed<weightBits>(weight), (ptrdiff_t)count,
             [](u8s x, u8s y) { return subtractLimited(y, x); });
}

// weight * (b - a) where b is darker is -weight * (a - b).
void MemMixOp21(uint8_t *dst, const uint8_t *a, const uint8_t *b, double weight, uint64_t count)
{
    addLayer(dst, a, b, -toFixed<weightBits>(weight), (ptrdiff_t)count,
             [](u8s x, u8s y) { return subtractLimited(x, y); });
}

// --- Gains and sums ------------------------------------------------------------------------------------------

// A gain for bytes: what is negative gives 0, as 0 does.
inline u16s byteGain(double gain)
{
    const int16_t factor = toFixed<gainBits>(gain);
    return splat16((uint16_t)(factor > 0 ? factor : 0));
}

void MemScale8(uint8_t *dst, const uint8_t *src, double gain, uint64_t count)
{
    const u16s factor = byteGain(gain);
    map<u8s>(
        dst, (ptrdiff_t)count, [factor](u8s x) { return roundedProduct<ofGains>(x, factor); }, src);
}

void MemMixOp23(uint8_t *dst, const uint8_t *a, const uint8_t *b, double weight, uint64_t count)
{
    const u16s factor = byteGain(weight);
    map<u8s>(
        dst, (ptrdiff_t)count, [factor](u8s x, u8s y) { return roundedProduct<ofGains>(distance(x, y), factor); }, a,
        b);
}

// The larger product of two by weights from 0 to 1, with the fraction bit more of roundedProduct: at most 16320.
void MemMixOp4(uint8_t *dst, const uint8_t *a, const uint8_t *b, double weight, uint64_t count)
{
    const auto limited = [](double y) { return y > 0 ? (y < 1 ? y : 1) : 0; };
    const u16s factorA = splat16((uint16_t)toFixed<weightBits>(limited(2 - 2 * weight)));
    const u16s factorB = splat16((uint16_t)toFixed<weightBits>(limited(2 * weight)));
    map<u8s>(
        dst, (ptrdiff_t)count,
        [factorA, factorB](u8s x, u8s y) {
            const auto rounded = [factorA, factorB](i16s p, i16s q) {
                const i16s fromA = as<i16s>(multiplyHigh(as<u16s>(p), factorA));
                const i16s fromB = as<i16s>(multiplyHigh(as<u16s>(q), factorB));
                return shiftRight<ofWeights + 1>(larger(fromA, fromB) + splatI16(1 << ofWeights));
            };
            const WideBytes p = widenTop(x);
            const WideBytes q = widenTop(y);
            return narrow(WideBytes{rounded(p.first, q.first), rounded(p.second, q.second)});
        },
        a, b);
}

// Products within 16320 each: two of them and the rounding fit a word.
void MemMixOp37(uint8_t *dst, const uint8_t *a, const uint8_t *b, int16_t weightA, int16_t weightB, uint64_t count)
{
    const i16s factorA = splatI16(weightA);
    const i16s factorB = splatI16(weightB);
    map<u8s>(
        dst, (ptrdiff_t)count,
        [factorA, factorB](u8s x, u8s y) {
            return narrow(shiftRightRounded<ofWeights>(product(x, factorA) + product(y, factorB)));
        },
        a, b);
}

// --- Any number of inputs ------------------------------------------------------------------------------------

// Keeps the sums of some registers over all inputs. Factors are converted once a call; where there are more inputs than
// room, for every block again.
class InputMix {
public:
    InputMix(const uint8_t *const *src, const float *weights, int32_t inputs)
        : src_(src), weights_(weights), inputs_(inputs)
    {
        if (inputs <= room)
            convert(0, inputs);
    }

    // take(row, j) hands out register j of an input, give(j, x) gets that of the mix.
    template <int registers, class Take, class Give> void mix(Take take, Give give)
    {
        WideBytes sums[registers];
#pragma GCC unroll 4
        for (WideBytes &sum : sums)
            sum = {zero<i16s>(), zero<i16s>()};
        for (ptrdiff_t first = 0; first < inputs_; first += room) {
            const ptrdiff_t n = inputs_ - first < room ? inputs_ - first : room;
            if (inputs_ > room)
                convert(first, n);
            for (ptrdiff_t k = 0; k < n; ++k) {
                const uint8_t *row = src_[first + k];
#pragma GCC unroll 4
                for (int j = 0; j < registers; ++j) {
                    const WideBytes products = product(take(row, j), factors_[k]);
                    sums[j] = {addLimited(sums[j].first, products.first), addLimited(sums[j].second, products.second)};
                }
            }
        }
#pragma GCC unroll 4
        for (int j = 0; j < registers; ++j) {
            const i16s half = splatI16(1 << (ofWeights - 1));
            give(j, narrow(both(sums[j], [half](i16s t) { return shiftRight<ofWeights>(addLimited(t, half)); })));
        }
    }

private:
    static constexpr ptrdiff_t room = 16;

    void convert(ptrdiff_t first, ptrdiff_t n)
    {
        for (ptrdiff_t k = 0; k < n; ++k)
            factors_[k] =
                splatI16(toFixed<weightBits>((double)loadPiece<float>((const uint8_t *)(weights_ + first + k))));
    }

    const uint8_t *const *src_;
    const float *weights_;
    ptrdiff_t inputs_;
    i16s factors_[room];
};

void MemMixOp6(uint8_t *dst, const uint8_t *const *src, const float *weights, int32_t inputs, uint64_t count)
{
    constexpr ptrdiff_t size = u8s::lanes;
    constexpr int registers = 4;
    const ptrdiff_t n = (ptrdiff_t)count;
    if (!n)
        return;
    InputMix mix(src, weights, inputs);
    ptrdiff_t i = 0;
    const auto take = [&i](const uint8_t *row, int j) { return load<u8s>(row + i + j * size); };
    const auto give = [&i, dst](int j, u8s x) { store(dst + i + j * size, x); };
    for (; i <= n - registers * size; i += registers * size)
        mix.mix<registers>(take, give);
    for (; i <= n - size; i += size)
        mix.mix<1>(take, give);
    if (i < n)
        mix.mix<1>([=](const uint8_t *row, int) { return loadEnds<u8s>(row + i, n - i); },
                   [=](int, u8s x) { storeEnds(dst + i, x, n - i); });
}

// --- Words ---------------------------------------------------------------------------------------------------

// b + weight * (a - b) = weight * a + (1 - weight) * b. Less 2^15 the words are signed, as multiplyAddPairs takes them,
// and as the sum of both factors is 2^14, so is the result less 2^15. 2^15 * (32767 + 16383) + 2^13 is below 2^31.
void MemMixOp61(uint16_t *dst, const uint16_t *a, const uint16_t *b, double weight, uint16_t lower, uint16_t upper,
                uint64_t count)
{
    const int16_t fixed = toFixed<weightBits>(weight);
    const int ofA = fixed > -16383 ? fixed : -16383;
    const int ofB = (1 << weightBits) - ofA;
    const i16s factors = as<i16s>(splat32((uint16_t)ofA | (uint32_t)ofB << 16));
    const u16s sign = splat16(0x8000);
    const i16s least = as<i16s>(splat16(lower) ^ sign);
    const i16s most = as<i16s>(splat16(upper) ^ sign);
    map<u16s>(
        dst, (ptrdiff_t)count,
        [=](u16s x, u16s y) {
            const auto mixed = [factors](u16s pairs) {
                const i32s sums = multiplyAddPairs(as<i16s>(pairs), factors);
                return shiftRight<weightBits>(sums + splatI32(1 << (weightBits - 1)));
            };
            const u16s p = x ^ sign;
            const u16s q = y ^ sign;
            const i16s r = narrow(mixed(interleaveLow(p, q)), mixed(interleaveHigh(p, q)));
            return as<u16s>(smaller(larger(r, least), most)) ^ sign;
        },
        a, b);
}

} // namespace
