// The rows of a conversion: blocks, ragged ends, line pairs and neighbours, for every layout alike. A conversion says
// how it handles one block of pixels; what lies between blocks and a caller's width is here.
//
// Blocks run from the left. The last one overlaps the one before, so that any width costs at most a block more than it
// needs. It travels through a block on the stack where it cannot overlap: in a row that is shorter than a block, and
// where an odd width would make it start in the middle of a chroma pair. So does, where it overlaps, a source that the
// destination may be. Blocks that read the next chroma sample repeat the last one at the end of a row: there a block of
// another kind. Nothing outside the rows is touched.
//
// Copies at the end of every row would cost a frame more than a block: loads that wait for them hold up the next row's.
#pragma once

// Conversions are put together from parts that make sense only in registers.
#define VELA_FUSED [[gnu::always_inline]]

namespace {

// --- Lists of types and of numbers ---------------------------------------------------------------------------

template <class... Types> struct List {
};

template <class... Lists> struct JoinLists;
template <class... Types> struct JoinLists<List<Types...>> {
    using Joined = List<Types...>;
};
template <class... A, class... B, class... Rest> struct JoinLists<List<A...>, List<B...>, Rest...> {
    using Joined = typename JoinLists<List<A..., B...>, Rest...>::Joined;
};
template <class... Lists> using Join = typename JoinLists<Lists...>::Joined;

template <bool, class Yes, class No> struct ChooseType {
    using Type = Yes;
};
template <class Yes, class No> struct ChooseType<false, Yes, No> {
    using Type = No;
};
template <bool which, class Yes, class No> using Choose = typename ChooseType<which, Yes, No>::Type;

template <int... i> struct Indices {
};
template <int n, int... i> struct CountTo : CountTo<n - 1, n - 1, i...> {
};
template <int... i> struct CountTo<0, i...> {
    using Type = Indices<i...>;
};
template <int n> using IndicesTo = typename CountTo<n>::Type;

// --- Rows ----------------------------------------------------------------------------------------------------

// A plane's rows hold `unit` bytes for every `pixels` (1 or 2) pixels. Of a plane of halved lines, one row serves two
// lines.
struct RowShape {
    int unit;
    int pixels = 1;
    bool halvedLines = false;

    constexpr ptrdiff_t bytes(ptrdiff_t n) const { return (n + pixels - 1) / pixels * unit; }
};

// A layout lists the elements and the shapes of its planes: `Elements` and `rows`. A conversion of a line, or of a line
// pair, gets a row for every line of a plane; a plane of halved lines has one.
template <class Layout, int lines> struct RowsOf {
    static constexpr int planes = sizeof(Layout::rows) / sizeof(RowShape);

    static constexpr int linesOf(int plane) { return Layout::rows[plane].halvedLines ? 1 : lines; }
    static constexpr int indexOf(int plane, int line)
    {
        int index = linesOf(plane) == 1 ? 0 : line;
        for (int before = 0; before < plane; ++before)
            index += linesOf(before);
        return index;
    }
    static constexpr int count()
    {
        int rows = 0;
        for (int plane = 0; plane < planes; ++plane)
            rows += linesOf(plane);
        return rows;
    }
    static constexpr RowShape shape(int row)
    {
        int plane = 0;
        for (; row >= linesOf(plane); ++plane)
            row -= linesOf(plane);
        return Layout::rows[plane];
    }

    // The types of the pointers to all rows, for arguments.
    template <class Element, int n> struct Repeat {
        using Types = List<Element *>;
    };
    template <class Element> struct Repeat<Element, 2> {
        using Types = List<Element *, Element *>;
    };
    template <int plane, class Elements> struct Pointers {
        using Types = List<>;
        using ConstTypes = List<>;
    };
    template <int plane, class Element, class... Rest> struct Pointers<plane, List<Element, Rest...>> {
        using Next = Pointers<plane + 1, List<Rest...>>;
        using Types = Join<typename Repeat<Element, linesOf(plane)>::Types, typename Next::Types>;
        using ConstTypes = Join<typename Repeat<const Element, linesOf(plane)>::Types, typename Next::ConstTypes>;
    };
    using Types = typename Pointers<0, typename Layout::Elements>::Types;
    using ConstTypes = typename Pointers<0, typename Layout::Elements>::ConstTypes;
};

template <class Layout> constexpr bool halvesLines()
{
    for (const RowShape &shape : Layout::rows)
        if (shape.halvedLines)
            return true;
    return false;
}

// The rows of one line at the current block, by plane.
template <class Byte, int planes> struct LineAt {
    Byte *plane[planes];
};

// --- Ends ----------------------------------------------------------------------------------------------------

// What becomes of a row's last block.
struct EndPlan {
    RowShape shape;
    bool always; // set aside even if the block is a whole one
    bool next;   // a block reads the unit behind it
    int offset;  // in the room for blocks set aside
};

template <int n> struct EndPlans {
    EndPlan row[n];
    int room;
    bool next; // any of the rows
};

template <int n> constexpr EndPlans<n> layOut(EndPlans<n> plans, int size)
{
    plans.room = 0;
    plans.next = false;
    for (EndPlan &plan : plans.row) {
        plan.offset = plans.room;
        plans.room += ((int)plan.shape.bytes(size) + (plan.next ? plan.shape.unit : 0) + 15) / 16 * 16;
        plans.next = plans.next || plan.next;
    }
    return plans;
}

// Points `ends` at the last `count` pixels of every row, which start at pixel `first`; where they are set aside, copies
// them. Out of line: one row in hundreds of blocks comes here.
[[gnu::noinline]] void setAside(const EndPlan *plans, int rows, const uint8_t *const *from, const uint8_t **ends,
                                uint8_t *room, ptrdiff_t first, ptrdiff_t count, bool whole)
{
    for (int i = 0; i < rows; ++i) {
        const EndPlan plan = plans[i];
        const uint8_t *end = from[i] + plan.shape.bytes(first);
        ends[i] = end;
        if (whole && !plan.always)
            continue;
        uint8_t *to = room + plan.offset;
        const ptrdiff_t bytes = plan.shape.bytes(count);
        copyFew(to, end, bytes);
        if (plan.next)
            for (int k = 0; k < plan.shape.unit; ++k)
                to[bytes + k] = end[bytes - plan.shape.unit + k];
        ends[i] = to;
    }
}

[[gnu::noinline]] void giveBack(const EndPlan *plans, int rows, uint8_t *const *to, const uint8_t *room,
                                ptrdiff_t first, ptrdiff_t count)
{
    for (int i = 0; i < rows; ++i)
        copyFew(to[i] + plans[i].shape.bytes(first), room + plans[i].offset, plans[i].shape.bytes(count));
}

// Runs blocks until `count` pixels are covered.
template <class Conversion, class Step, int... t, int... s>
[[gnu::noinline]] void runBlocks(uint8_t *const *targets, const uint8_t *const *sources, ptrdiff_t count,
                                 const Step &givenStep, Indices<t...>, Indices<s...>)
{
    const Step step = givenStep; // a copy that no store to a row can change
    uint8_t *target[] = {targets[t]...};
    const uint8_t *source[] = {sources[s]...};
    for (; count > 0; count -= Conversion::size) {
        Conversion::block(target, source, step);
        ((target[t] += Conversion::targetShape(t).bytes(Conversion::size)), ...);
        ((source[s] += Conversion::sourceShape(s).bytes(Conversion::size)), ...);
    }
}
template <class Conversion, class Step>
inline void runBlocks(uint8_t *const *targets, const uint8_t *const *sources, ptrdiff_t count, const Step &step)
{
    runBlocks<Conversion>(targets, sources, count, step, IndicesTo<Conversion::Targets::count()>(),
                          IndicesTo<Conversion::Sources::count()>());
}

template <class Conversion, int... t> constexpr auto targetEnds(Indices<t...>)
{
    return layOut<sizeof...(t)>({{{Conversion::targetShape(t), false, false, 0}...}, 0, false}, Conversion::size);
}
template <class Conversion, int... s> constexpr auto sourceEnds(Indices<s...>)
{
    return layOut<sizeof...(s)>(
        {{{Conversion::sourceShape(s), Conversion::mayBeTarget(s), Conversion::readsNext(s), 0}...}, 0, false},
        Conversion::size);
}

// A block that reads nothing behind it.
template <class Conversion> struct AtEnd : Conversion {
    template <class Step> VELA_FUSED static void block(uint8_t *const *to, const uint8_t *const *from, const Step &step)
    {
        Conversion::template blockAt<true>(to, from, step);
    }
};

// Converts n pixels. A conversion has the Targets and Sources (RowsOf), the shapes of their rows (units of 0 bytes for
// those that blocks do not touch), its block's `size` in pixels, `inPairs` if blocks must start at even pixels, says
// which sources it reads one unit beyond the block, unless that is at the end of a row (blockAt<true>), and which may
// be the target, and does a block.
template <class Conversion, class Step>
inline void convertRows(uint8_t *const *to, const uint8_t *const *from, ptrdiff_t n, const Step &step)
{
    constexpr int size = Conversion::size;
    constexpr int targets = Conversion::Targets::count();
    constexpr int sources = Conversion::Sources::count();
    static constexpr auto planTo = targetEnds<Conversion>(IndicesTo<targets>());
    static constexpr auto planFrom = sourceEnds<Conversion>(IndicesTo<sources>());
    if (n <= 0)
        return;
    const ptrdiff_t lap = Conversion::inPairs ? (n - size + 1) & ~(ptrdiff_t)1 : n - size;
    const ptrdiff_t last = lap > 0 ? lap : 0;
    const bool whole = n - last == size;
    if (!planFrom.next && n % size == 0) { // no block overlaps another
        runBlocks<Conversion>(to, from, n, step);
        return;
    }
    alignas(16) uint8_t roomFrom[planFrom.room];
    alignas(16) uint8_t roomTo[planTo.room];
    const uint8_t *lastFrom[sources];
    uint8_t *lastTo[targets];
    if constexpr (planFrom.next) {
        if (whole) {
            for (int i = 0; i < sources; ++i)
                lastFrom[i] = from[i] + planFrom.row[i].shape.bytes(last);
            for (int i = 0; i < targets; ++i)
                lastTo[i] = to[i] + planTo.row[i].shape.bytes(last);
            runBlocks<Conversion>(to, from, last, step);
            runBlocks<AtEnd<Conversion>>(lastTo, lastFrom, size, step);
            return;
        }
    }
    setAside(planFrom.row, sources, from, lastFrom, roomFrom, last, n - last, whole);
    for (int i = 0; i < targets; ++i)
        lastTo[i] = whole ? to[i] + planTo.row[i].shape.bytes(last) : roomTo + planTo.row[i].offset;
    runBlocks<Conversion>(to, from, last, step);
    runBlocks<Conversion>(lastTo, lastFrom, size, step);
    if (!whole)
        giveBack(planTo.row, targets, to, roomTo, last, n - last);
}

} // namespace
