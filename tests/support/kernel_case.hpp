// What the tests and the bench know of a slot: the shape of its arguments. One case per slot serves every tier, the
// oracle, the check and the bench.
#pragma once

#include <vela/base.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace vela::test {

// An argument or result as 64 bits, whatever its type.
using Bits = std::uint64_t;

template <class T> T fromBits(Bits bits)
{
    if constexpr (std::is_pointer_v<T>) {
        return reinterpret_cast<T>(bits);
    } else {
        T value;
        static_assert(sizeof(T) <= sizeof(Bits) && std::is_trivially_copyable_v<T>);
        std::memcpy(&value, &bits, sizeof(T)); // little-endian: the low bytes
        return value;
    }
}

template <class T> Bits toBits(T value)
{
    Bits bits = 0;
    std::memcpy(&bits, &value, sizeof(value));
    return bits;
}

// Calls a kernel whose type has been forgotten.
using Invoke = Bits (*)(VcbKernel, const Bits *);

template <class Function> struct Signature;

template <class Result, class... Arguments> struct Signature<Result(VCB_CALL *)(Arguments...)> {
    static std::vector<bool> pointers() { return {std::is_pointer_v<Arguments>...}; }

    static Bits invoke(VcbKernel kernel, const Bits *arguments)
    {
        return [&]<std::size_t... I>(std::index_sequence<I...>)->Bits
        {
            const auto typed = reinterpret_cast<Result(VCB_CALL *)(Arguments...)>(kernel);
            if constexpr (std::is_void_v<Result>) {
                typed(fromBits<Arguments>(arguments[I])...);
                return 0;
            } else {
                return toBits(typed(fromBits<Arguments>(arguments[I])...));
            }
        }
        (std::index_sequence_for<Arguments...>{});
    }
};

// Bytes of a row for a count (or width) of n; n may be negative.
using Extent = std::function<std::int64_t(std::int64_t n)>;

struct Argument {
    enum class Kind { destination, source, count, number };

    Kind kind;
    Extent bytes;              // destination, source
    std::int64_t before = 0;   // bytes that the kernel may read ahead of a source row
    std::int64_t after = 0;    // and behind it
    std::uint32_t largest = 0; // if not 0, the largest 16-bit word of a source row
    bool isSigned = false;     // count: negative values are tried
    std::vector<Bits> values;  // number: the values to try
};

Argument destination(std::int64_t bytesPerUnit);
Argument destination(Extent bytes);
Argument source(std::int64_t bytesPerUnit);
Argument source(Extent bytes);
Argument paddedWords(Extent bytes, std::int64_t padding, std::uint32_t largest);
Argument signedCount();
Argument unsignedCount();
Argument number(std::vector<Bits> values);

struct KernelCase {
    std::size_t slot;
    Invoke invoke;
    std::vector<bool> pointers; // which parameters are pointers, by the signature
    std::vector<Argument> arguments;
    std::vector<std::size_t> inPlace; // sources that the first argument, the destination, may be identical to

    KernelCase &mayEqual(std::initializer_list<std::size_t> sources)
    {
        inPlace = sources;
        return *this;
    }
};

// The case of one slot, named by its member: kernelCase<&VcbVideoProcs::SharpenU8>({...}).
template <auto member> KernelCase kernelCase(std::vector<Argument> arguments)
{
    return []<class Table, class Function>(Function Table::*pointer, std::vector<Argument> shapes) {
        static const Table table{};
        const auto offset = reinterpret_cast<const char *>(&(table.*pointer)) - reinterpret_cast<const char *>(&table);
        return KernelCase{.slot = static_cast<std::size_t>(offset) / sizeof(VcbKernel),
                          .invoke = &Signature<Function>::invoke,
                          .pointers = Signature<Function>::pointers(),
                          .arguments = std::move(shapes),
                          .inPlace = {}};
    }(member, std::move(arguments));
}

} // namespace vela::test
