// What the tests and the bench know of a slot: the shape of its arguments. A case serves every tier, the oracle, the
// check and the bench.
#pragma once

#include <vela/base.h>
#include <vela/math3d.h>
#include <vela/matrix.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <optional>
#include <string>
#include <type_traits>
#include <typeindex>
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

// What a row, parameter or result consists of, as far as filling and comparing it depends on that.
enum class Element { integer, float32, float64 };

struct Parameter {
    enum class Kind { value, row, constRow, constRows };

    Kind kind = Kind::value;
    Element element = Element::integer; // of the value or of the row
    std::size_t size = 0;               // of the value or of the row's elements
    bool isSigned = false;

    bool operator==(const Parameter &) const = default;
};

// What a row of T is filled and compared as. Structures of floats are their floats.
template <class T> struct ElementsOf {
    using Type = T;
};
template <> struct ElementsOf<VcbMat4> {
    using Type = float;
};
template <> struct ElementsOf<VcbVec4> {
    using Type = float;
};
template <> struct ElementsOf<VcbVec3> {
    using Type = float;
};

template <class T> constexpr Parameter parameterOf(Parameter::Kind kind = Parameter::Kind::value)
{
    if constexpr (std::is_void_v<T>) {
        return {kind, Element::integer, 1, false};
    } else if constexpr (!std::is_pointer_v<T>) {
        constexpr bool isFloat = std::is_same_v<std::remove_cv_t<T>, float>;
        constexpr bool isDouble = std::is_same_v<std::remove_cv_t<T>, double>;
        return {kind,
                isFloat    ? Element::float32
                : isDouble ? Element::float64
                           : Element::integer,
                sizeof(T), std::is_signed_v<T>};
    } else {
        using Pointee = std::remove_pointer_t<T>;
        if constexpr (std::is_pointer_v<Pointee>) {
            static_assert(std::is_const_v<Pointee> && std::is_const_v<std::remove_pointer_t<Pointee>>);
            return parameterOf<std::remove_pointer_t<Pointee>>(Parameter::Kind::constRows);
        } else {
            using Item = typename ElementsOf<std::remove_const_t<Pointee>>::Type;
            return parameterOf<Item>(std::is_const_v<Pointee> ? Parameter::Kind::constRow : Parameter::Kind::row);
        }
    }
}

// Calls a kernel whose type has been forgotten.
using Invoke = Bits (*)(VcbKernel, const Bits *);

template <class Function> struct Signature;

template <class Result, class... Arguments> struct Signature<Result(VCB_CALL *)(Arguments...)> {
    static std::vector<Parameter> parameters() { return {parameterOf<Arguments>()...}; }
    static Parameter result() { return std::is_void_v<Result> ? Parameter{} : parameterOf<Result>(); }

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

// Where a row lies around the address that the kernel gets, in bytes.
struct Span {
    std::int64_t before = 0; // ahead of it
    std::int64_t bytes = 0;  // from it on
    std::int64_t after = 0;  // behind these: what may be read besides
};

// The span of a row whose length depends on a parameter too.
using SpanBy = std::function<Span(std::int64_t n, std::int64_t parameter)>;

struct Argument {
    enum class Kind { destination, source, sourceRows, count, number };

    Kind kind;
    Extent bytes;                     // rows
    SpanBy span;                      // rows that have no `bytes`
    std::int64_t before = 0;          // bytes that the kernel may read ahead of a row
    std::int64_t after = 0;           // and behind it
    std::uint32_t largest = 0;        // if not 0, the largest 16-bit word of a source row
    std::size_t alignment = 1;        // of the row's first byte, where it has none of its padding
    std::optional<std::size_t> items; // the number argument that says how many rows, how often `bytes`, or which span
    std::vector<Bits> values;         // number: the values to try
    std::optional<Parameter> type;    // number: their type, where it was given
    std::vector<std::vector<std::uint8_t>> contents; // a row of prepared bytes: those to try
};

// Rows of so many bytes a unit of the count, or of any extent. A row does not exist at a count below 1.
Argument destination(std::int64_t bytesPerUnit);
Argument destination(Extent bytes);
Argument source(std::int64_t bytesPerUnit);
Argument source(Extent bytes);

// A row with neighbours that the kernel may read.
Argument paddedSource(Extent bytes, std::int64_t before, std::int64_t after);
Argument paddedWords(Extent bytes, std::int64_t padding, std::uint32_t largest);

// A row that goes on where another ended: the kernel may read so many bytes of that.
Argument continuedDestination(std::int64_t bytesPerUnit, std::int64_t before);

// A row whose span the number argument at position `parameter` decides: a stride, a number of taps.
Argument sourceBy(std::size_t parameter, SpanBy span);

// A structure that the kernel reads, or an array of floats: one of these, at any address and at every count. The last
// one is the one that the bench uses.
Argument block(std::vector<std::vector<std::uint8_t>> contents);
template <class T> Argument blocks(const std::vector<T> &values)
{
    std::vector<std::vector<std::uint8_t>> contents;
    for (const T &value : values) {
        const auto *bytes = reinterpret_cast<const std::uint8_t *>(&value);
        contents.emplace_back(bytes, bytes + sizeof(T));
    }
    return block(std::move(contents));
}

// Rows whose length the count does not change: look-up tables, results of a group.
Argument fixedSource(std::int64_t bytes);
Argument fixedDestination(std::int64_t bytes);
Argument standingSource(std::int64_t bytes); // these are there at a count below 1 too, and without any count
Argument standingDestination(std::int64_t bytes);

// A row that kernels may expect at a multiple of so many bytes.
Argument aligned(std::size_t alignment, Argument row);

// An array of row pointers and a row of so many bytes for each of them. The number argument at position `inputs` says
// how many there are.
Argument sourceRows(std::int64_t bytesPerUnit, std::size_t inputs);
Argument sourcePerInput(std::int64_t bytes, std::size_t inputs);

// The signature says whether negative counts are to be tried.
Argument count();

// The last value is the one that the bench uses.
Argument number(std::vector<Bits> values);
template <class T> Argument numbers(const std::vector<T> &values)
{
    std::vector<Bits> bits;
    for (const T value : values)
        bits.push_back(toBits(value));
    Argument argument = number(std::move(bits));
    argument.type = parameterOf<T>();
    return argument;
}

// Arguments that are one row: the first of a pair lies where the second does. A destination may lie where a source does
// or where another destination does, a source where another source does.
using SharedRows = std::vector<std::pair<std::size_t, std::size_t>>;

struct KernelCase {
    std::type_index table; // the sub-table's type
    std::size_t slot;
    Invoke invoke;
    std::vector<Parameter> parameters; // by the signature
    Parameter result;                  // of size 0 if there is none; a pointer is relative to the first argument
    std::vector<Argument> arguments;
    std::vector<SharedRows> shared; // the ways in which rows may coincide, besides not at all
    bool asksForPopcnt = false;
    bool timedOnEqualRows = false;
    std::string variant;

    // Sources that the first argument, the destination, may be identical to.
    KernelCase &mayEqual(std::initializer_list<std::size_t> sources)
    {
        for (const std::size_t source : sources)
            shared.push_back({{0, source}});
        return *this;
    }
    KernelCase &mayShare(SharedRows rows)
    {
        shared.push_back(std::move(rows));
        return *this;
    }
    // The kernel reads g_CPUID.popcnt and must give the same result either way.
    KernelCase &readsPopcnt()
    {
        asksForPopcnt = true;
        return *this;
    }
    // The kernel is done where its sources differ: the bench gives it equal ones.
    KernelCase &endsAtDifference()
    {
        timedOnEqualRows = true;
        return *this;
    }
    // Tells the further cases of one slot apart, whose extents hold for other parameters.
    KernelCase &named(std::string name)
    {
        variant = std::move(name);
        return *this;
    }
};

// The span of a row for a count of n, where the number argument that `items` names has this value.
Span spanOf(const Argument &argument, std::int64_t n, std::int64_t items);

// What contradicts the signature, or itself, in a case.
std::optional<std::string> contradiction(const KernelCase &kernelCase);

// An integer argument's value; for a count the sign matters.
std::int64_t integerOf(Bits bits, const Parameter &parameter);

// The case of one slot, named by its member: kernelCase<&VcbVideoProcs::SharpenU8>({...}).
template <auto member> KernelCase kernelCase(std::vector<Argument> arguments)
{
    return []<class Table, class Function>(Function Table::*pointer, std::vector<Argument> shapes) {
        static const Table table{};
        const auto offset = reinterpret_cast<const char *>(&(table.*pointer)) - reinterpret_cast<const char *>(&table);
        return KernelCase{.table = typeid(Table),
                          .slot = static_cast<std::size_t>(offset) / sizeof(VcbKernel),
                          .invoke = &Signature<Function>::invoke,
                          .parameters = Signature<Function>::parameters(),
                          .result = Signature<Function>::result(),
                          .arguments = std::move(shapes),
                          .shared = {},
                          .variant = {}};
    }(member, std::move(arguments));
}

} // namespace vela::test
