#include "support/kernel_case.hpp"

#include <algorithm>

namespace vela::test {
namespace {

Extent linear(std::int64_t bytesPerUnit)
{
    return [bytesPerUnit](std::int64_t n) { return std::max<std::int64_t>(n, 0) * bytesPerUnit; };
}

Argument row(Argument::Kind kind, Extent bytes)
{
    Argument argument{.kind = kind, .bytes = {}, .values = {}};
    argument.bytes = [bytes = std::move(bytes)](std::int64_t n) { return n > 0 ? bytes(n) : 0; };
    return argument;
}

} // namespace

Argument destination(std::int64_t bytesPerUnit) { return destination(linear(bytesPerUnit)); }
Argument destination(Extent bytes) { return row(Argument::Kind::destination, std::move(bytes)); }
Argument source(std::int64_t bytesPerUnit) { return source(linear(bytesPerUnit)); }
Argument source(Extent bytes) { return row(Argument::Kind::source, std::move(bytes)); }

Argument paddedWords(Extent bytes, std::int64_t padding, std::uint32_t largest)
{
    Argument argument = source(std::move(bytes));
    argument.before = argument.after = padding;
    argument.largest = largest;
    return argument;
}

Argument signedCount()
{
    Argument argument{.kind = Argument::Kind::count, .bytes = {}, .values = {}};
    argument.isSigned = true;
    return argument;
}

Argument unsignedCount() { return {.kind = Argument::Kind::count, .bytes = {}, .values = {}}; }

Argument number(std::vector<Bits> values)
{
    return {.kind = Argument::Kind::number, .bytes = {}, .values = std::move(values)};
}

} // namespace vela::test
