#include "host.hpp"

#include <gtest/gtest.h>
#include <vela/vela.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <span>

namespace {

using vela::test::Installation;
using vela::test::Library;

// --- Registration: table sets as what they are in memory, arrays of pointers to arrays of pointers --------

struct SubTable {
    const char *name;
    std::size_t position; // in the table set
    std::size_t slots;
    std::span<const VcbSlotInfo> list;
};

struct Family {
    const char *name;
    const char *registerExport;
    std::size_t positions;
    std::vector<SubTable> subTables;
};

std::vector<Family> listFamilies()
{
    std::vector<Family> families;
#define FAMILY(id, tables, registerExport, description) \
    using id##Tables = tables;                          \
    families.push_back({#id, #registerExport, sizeof(tables) / sizeof(void *), {}});
#define SUBTABLE(id, member, type, description)                                                  \
    families.back().subTables.push_back({#member, offsetof(id##Tables, member) / sizeof(void *), \
                                         sizeof(type) / sizeof(VcbKernel), vela::slotInfo<type>()});
#include <vela/slots/families.def>
#undef SUBTABLE
#undef FAMILY
    return families;
}

using Register = void VCB_CALL(void *tables) noexcept;
using Slots = std::vector<std::uintptr_t>;

constexpr std::size_t margin = 16; // entries before and behind a sub-table and a table set
constexpr std::uintptr_t outside = 0x5A5A5A5A5A5A5A5A;
constexpr std::uintptr_t hosts = 0x1111111111111111; // stands for a function of the host's

// A table set whose every word can be looked at. Registering never calls what it finds, so any bits will do.
class TableSet {
public:
    explicit TableSet(const Family &family) : family_(family), set_(family.positions + 2 * margin, outside)
    {
        for (const SubTable &subTable : family.subTables) {
            Slots slots(subTable.slots + 2 * margin, outside);
            std::fill_n(slots.begin() + margin, subTable.slots, 0);
            subTables_.push_back(std::move(slots));
        }
        for (std::size_t i = 0; i < subTables_.size(); ++i)
            offer(i, subTables_[i].data() + margin);
    }

    void offer(std::size_t subTable, std::uintptr_t *slots)
    {
        set_[margin + family_.subTables[subTable].position] = reinterpret_cast<std::uintptr_t>(slots);
    }
    std::uintptr_t &slot(std::size_t subTable, std::size_t number) { return subTables_[subTable][margin + number]; }

    void registerWith(Register &registerTables)
    {
        const Slots before = set_;
        registerTables(set_.data() + margin);
        EXPECT_EQ(set_, before) << "the table set itself was changed";
        for (const Slots &slots : subTables_) {
            EXPECT_EQ(std::count(slots.begin(), slots.begin() + margin, outside), margin);
            EXPECT_EQ(std::count(slots.end() - margin, slots.end(), outside), margin);
        }
    }

    const std::vector<Slots> &contents() const { return subTables_; }

private:
    const Family &family_;
    Slots set_;
    std::vector<Slots> subTables_;
};

class Registration : public testing::Test {
protected:
    template <class Check> void forEachFamily(Check check)
    {
        for (const Family &family : families) {
            SCOPED_TRACE(family.name);
            check(family, library.get<Register>(family.registerExport));
        }
    }

    const Installation installation;
    const Library library = installation.load();
    const std::vector<Family> families = listFamilies();
};

TEST_F(Registration, IsIdempotentAndStaysInsideTheSubTables)
{
    forEachFamily([](const Family &family, Register &registerTables) {
        TableSet tables(family);
        tables.registerWith(registerTables);
        const std::vector<Slots> first = tables.contents();
        tables.registerWith(registerTables);
        EXPECT_EQ(tables.contents(), first);
    });
}

TEST_F(Registration, KeepsTheHostsSlots)
{
    forEachFamily([](const Family &family, Register &registerTables) {
        TableSet own(family);
        own.registerWith(registerTables);
        for (const std::size_t parity : {0, 1}) {
            TableSet tables(family);
            std::vector<Slots> expected = own.contents();
            for (std::size_t i = 0; i < family.subTables.size(); ++i)
                for (std::size_t slot = parity; slot < family.subTables[i].slots; slot += 2)
                    tables.slot(i, slot) = expected[i][margin + slot] = hosts;
            tables.registerWith(registerTables);
            EXPECT_EQ(tables.contents(), expected);
        }
    });
}

TEST_F(Registration, NullSetsAndNullSubTablesAreSkipped)
{
    forEachFamily([](const Family &family, Register &registerTables) {
        registerTables(nullptr);
        TableSet own(family);
        own.registerWith(registerTables);
        TableSet none(family);
        for (std::size_t missing = 0; missing < family.subTables.size(); ++missing) {
            TableSet tables(family);
            tables.offer(missing, nullptr);
            none.offer(missing, nullptr);
            tables.registerWith(registerTables);
            for (std::size_t i = 0; i < family.subTables.size(); ++i) {
                if (i == missing)
                    continue;
                EXPECT_EQ(tables.contents()[i], own.contents()[i]) << family.subTables[missing].name;
            }
        }
        none.registerWith(registerTables);
    });
}

TEST_F(Registration, FillsExactlyTheSlotsOfTheLists)
{
    forEachFamily([](const Family &family, Register &registerTables) {
        TableSet tables(family);
        tables.registerWith(registerTables);
        for (std::size_t i = 0; i < family.subTables.size(); ++i) {
            std::vector<bool> listed(family.subTables[i].slots);
            for (const VcbSlotInfo &info : family.subTables[i].list)
                listed[static_cast<std::size_t>(info.number)] = true;
            for (std::size_t slot = 0; slot < listed.size(); ++slot)
                EXPECT_EQ(tables.slot(i, slot) != 0, listed[slot]) << family.subTables[i].name << " slot " << slot;
        }
    });
}

// --- Processor ---------------------------------------------------------------------------------------------

TEST(Processor, AnyExportDetects)
{
    // Each in a library of its own, since the first detection is remembered.
    std::vector<std::string> detecting = {"VCB_GetCPUInsHigh", "VCB_AutoLoadDLL"};
    for (const Family &family : listFamilies())
        detecting.push_back(family.registerExport);
    for (const std::string &name : detecting) {
        const Installation installation;
        const Library library = installation.load();
        const auto &cpuId = library.get<VcbCpuId>("g_CPUID");
        EXPECT_EQ(cpuId.cmov, 0) << "before " << name;
        if (name == "VCB_GetCPUInsHigh")
            library.get<decltype(VCB_GetCPUInsHigh)>(name.c_str())();
        else if (name == "VCB_AutoLoadDLL")
            library.get<decltype(VCB_AutoLoadDLL)>(name.c_str())(nullptr, nullptr);
        else
            library.get<Register>(name.c_str())(nullptr);
        EXPECT_EQ(cpuId.cmov, 1) << "after " << name; // every x86-64 processor has it
    }
}

TEST(Processor, Level)
{
    const Installation installation;
    const Library library = installation.load();
    EXPECT_EQ(library.get<decltype(VCB_GetCPUInsLower)>("VCB_GetCPUInsLower")(8), 7);
    EXPECT_EQ(library.get<VcbCpuId>("g_CPUID").cmov, 0) << "asking for the lower level detects nothing";
    const int32_t level = library.get<decltype(VCB_GetCPUInsHigh)>("VCB_GetCPUInsHigh")();
    const bool fma = library.get<decltype(VCB_SupportFMA)>("VCB_SupportFMA")() != 0;
    EXPECT_LE(level, VCB_CPU_AVX2);
    EXPECT_GE(level, VCB_CPU_SSE2);
    EXPECT_TRUE(!fma || level >= VCB_CPU_AVX);
    // On an emulated processor whoever runs the test knows better.
    const char *expected = std::getenv("VELA_EXPECT_LEVEL");
    EXPECT_EQ(std::to_string(level), expected ? expected : std::to_string(level));
}

// --- Data and modules --------------------------------------------------------------------------------------

TEST(Exports, CpuIdLiesBehindTheConfiguration)
{
    const Installation installation;
    const Library library = installation.load();
    EXPECT_EQ(reinterpret_cast<const char *>(&library.get<VcbCpuId>("g_CPUID")),
              reinterpret_cast<const char *>(&library.conf()) + sizeof(VcbTesselConf));
}

TEST(Exports, NoKernelModuleIsFound)
{
    const Installation installation;
    const Library library = installation.load();
    int tables = 0;
    int module = 0;
    EXPECT_EQ(library.get<decltype(VCB_AutoLoadDLL)>("VCB_AutoLoadDLL")(L"none", &tables), nullptr);
    EXPECT_EQ(library.get<decltype(VCB_LoadAssignDLL)>("VCB_LoadAssignDLL")(L"none", &tables, 7), nullptr);
    EXPECT_EQ(library.get<decltype(VCB_RegAPIFromDLL)>("VCB_RegAPIFromDLL")(nullptr, &module), -1);
    EXPECT_EQ(library.get<decltype(VCB_RegAPIFromDLL)>("VCB_RegAPIFromDLL")(&tables, nullptr), -1);
}

TEST(Exports, NullPointersAreFound)
{
    const Installation installation;
    const Library library = installation.load();
    auto &hasNull = library.get<decltype(VCB_HasNullPointer)>("VCB_HasNullPointer");
    int object = 0;
    const void *const pointers[] = {&object, &object, nullptr};
    EXPECT_EQ(hasNull(pointers, 2), 0);
    EXPECT_EQ(hasNull(pointers, 3), 1);
    EXPECT_EQ(hasNull(pointers + 2, 1), 1);
    EXPECT_EQ(hasNull(pointers + 2, 0), 0);
    EXPECT_EQ(hasNull(pointers + 2, -1), 0);
    EXPECT_EQ(hasNull(nullptr, 3), 0);
}

} // namespace
