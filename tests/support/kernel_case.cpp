#include "support/kernel_case.hpp"

#include <algorithm>

namespace vela::test {
namespace {

Extent linear(std::int64_t bytesPerUnit)
{
    return [bytesPerUnit](std::int64_t n) { return n * bytesPerUnit; };
}

Extent constant(std::int64_t bytes)
{
    return [bytes](std::int64_t) { return bytes; };
}

Argument argumentOf(Argument::Kind kind)
{
    return {.kind = kind, .bytes = {}, .span = {}, .items = {}, .values = {}, .type = {}, .contents = {}};
}

Argument row(Argument::Kind kind, Extent bytes)
{
    Argument argument = argumentOf(kind);
    argument.bytes = [bytes = std::move(bytes)](std::int64_t n) { return n > 0 ? bytes(n) : 0; };
    return argument;
}

bool agrees(const Argument &argument, const Parameter &parameter)
{
    switch (argument.kind) {
    case Argument::Kind::destination:
        return parameter.kind == Parameter::Kind::row;
    case Argument::Kind::source:
        return parameter.kind == Parameter::Kind::constRow &&
               (argument.contents.empty() || argument.contents[0].size() == parameter.size ||
                (parameter.element != Element::integer && argument.contents[0].size() % parameter.size == 0));
    case Argument::Kind::sourceRows:
        return parameter.kind == Parameter::Kind::constRows;
    case Argument::Kind::count:
        return parameter.kind == Parameter::Kind::value && parameter.element == Element::integer;
    case Argument::Kind::number:
        break;
    }
    if (argument.values.empty() || parameter.kind != Parameter::Kind::value)
        return false;
    if (!argument.type)
        return parameter.element == Element::integer;
    return argument.type->element == parameter.element && argument.type->size == parameter.size;
}

bool sameLength(const Argument &a, const Argument &b)
{
    for (std::int64_t n = -1; n <= 300; ++n)
        if (a.bytes(n) != b.bytes(n))
            return false;
    return !a.before && !a.after && !b.before && !b.after;
}

bool mayCoincide(const std::vector<Argument> &arguments, std::size_t one, std::size_t other)
{
    using Kind = Argument::Kind;
    if (one >= arguments.size() || other >= arguments.size() || one == other)
        return false;
    const Argument &a = arguments[one];
    const Argument &b = arguments[other];
    if (a.items || (b.items && b.kind != Kind::sourceRows))
        return false;
    const bool rightKinds =
        a.kind == Kind::destination
            ? b.kind == Kind::destination || b.kind == Kind::source || b.kind == Kind::sourceRows
            : a.kind == Kind::source && b.kind == Kind::source && a.contents.empty() && b.contents.empty();
    return rightKinds && sameLength(a, b);
}

} // namespace

Argument destination(std::int64_t bytesPerUnit) { return destination(linear(bytesPerUnit)); }
Argument destination(Extent bytes) { return row(Argument::Kind::destination, std::move(bytes)); }
Argument source(std::int64_t bytesPerUnit) { return source(linear(bytesPerUnit)); }
Argument source(Extent bytes) { return row(Argument::Kind::source, std::move(bytes)); }

Argument paddedSource(Extent bytes, std::int64_t before, std::int64_t after)
{
    Argument argument = source(std::move(bytes));
    argument.before = before;
    argument.after = after;
    return argument;
}

Argument paddedWords(Extent bytes, std::int64_t padding, std::uint32_t largest)
{
    Argument argument = paddedSource(std::move(bytes), padding, padding);
    argument.largest = largest;
    return argument;
}

Argument continuedDestination(std::int64_t bytesPerUnit, std::int64_t before)
{
    Argument argument = destination(bytesPerUnit);
    argument.before = before;
    return argument;
}

Argument sourceBy(std::size_t parameter, SpanBy span)
{
    Argument argument = argumentOf(Argument::Kind::source);
    argument.span = std::move(span);
    argument.items = parameter;
    return argument;
}

Argument block(std::vector<std::vector<std::uint8_t>> contents)
{
    Argument argument = argumentOf(Argument::Kind::source);
    argument.bytes = constant(static_cast<std::int64_t>(contents.at(0).size()));
    argument.contents = std::move(contents);
    return argument;
}

Argument fixedSource(std::int64_t bytes) { return source(constant(bytes)); }
Argument fixedDestination(std::int64_t bytes) { return destination(constant(bytes)); }

Argument standingSource(std::int64_t bytes)
{
    Argument argument = argumentOf(Argument::Kind::source);
    argument.bytes = constant(bytes);
    return argument;
}

Argument standingDestination(std::int64_t bytes)
{
    Argument argument = argumentOf(Argument::Kind::destination);
    argument.bytes = constant(bytes);
    return argument;
}

Argument aligned(std::size_t alignment, Argument row)
{
    row.alignment = alignment;
    return row;
}

Argument sourceRows(std::int64_t bytesPerUnit, std::size_t inputs)
{
    Argument argument = row(Argument::Kind::sourceRows, linear(bytesPerUnit));
    argument.items = inputs;
    return argument;
}

Argument sourcePerInput(std::int64_t bytes, std::size_t inputs)
{
    Argument argument = fixedSource(bytes);
    argument.items = inputs;
    return argument;
}

Argument count() { return argumentOf(Argument::Kind::count); }

Argument number(std::vector<Bits> values)
{
    Argument argument = argumentOf(Argument::Kind::number);
    argument.values = std::move(values);
    return argument;
}

Span spanOf(const Argument &argument, std::int64_t n, std::int64_t items)
{
    if (argument.span)
        return n > 0 ? argument.span(n, items) : Span{};
    const std::int64_t bytes = argument.bytes(n) * std::max<std::int64_t>(items, 0);
    // A row of no units has no neighbours to read either.
    return bytes ? Span{argument.before, bytes, argument.after} : Span{};
}

std::optional<std::string> contradiction(const KernelCase &kernelCase)
{
    const std::vector<Argument> &arguments = kernelCase.arguments;
    if (arguments.size() != kernelCase.parameters.size())
        return std::to_string(arguments.size()) + " arguments for " + std::to_string(kernelCase.parameters.size()) +
               " parameters";
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string here = "argument " + std::to_string(i);
        if (!agrees(arguments[i], kernelCase.parameters[i]))
            return here + " is not what the signature says";
        const std::optional<std::size_t> items = arguments[i].items;
        if (items && (*items >= arguments.size() || arguments[*items].kind != Argument::Kind::number ||
                      kernelCase.parameters[*items].element != Element::integer))
            return here + " is counted by an argument that is no number";
    }
    for (const SharedRows &rows : kernelCase.shared)
        for (const auto &[one, other] : rows)
            if (!mayCoincide(arguments, one, other))
                return "arguments " + std::to_string(one) + " and " + std::to_string(other) +
                       " are no rows of one length that may coincide";
    return std::nullopt;
}

std::int64_t integerOf(Bits bits, const Parameter &parameter)
{
    const std::size_t unused = 64 - 8 * parameter.size;
    const Bits top = bits << unused;
    return parameter.isSigned ? static_cast<std::int64_t>(top) >> unused : static_cast<std::int64_t>(top >> unused);
}

} // namespace vela::test
