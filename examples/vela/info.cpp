// vela info: what the library offers to this processor.
#include "commands.hpp"
#include "paths.hpp"
#include "slots.hpp"
#include "table.hpp"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <iostream>
#include <memory>

namespace host {
namespace {

struct InfoOptions {
    std::string slotsOf;
    bool verbose = false;
};

const char *yesNo(bool value) { return value ? "yes" : "no"; }

void printProcessor(const Library &library)
{
    const int32_t level = library.processorLevel(); // fills g_CPUID as well
    const VcbCpuId &features = *LIBRARY_EXPORT(library, g_CPUID);
    std::cout << "processor      level " << level << " (" << levelName(level) << ")"
              << ", FMA " << yesNo(LIBRARY_EXPORT(library, VCB_SupportFMA)() != 0) << ", POPCNT "
              << yesNo(features.popcnt != 0) << ", CMOV " << yesNo(features.cmov != 0) << '\n';
}

void printConfiguration(const Library &library)
{
    const VcbTesselConf &conf = *LIBRARY_EXPORT(library, g_TesselConf);
    std::cout << "configuration  OutputLog " << conf.OutputLog << ", NumberOfThreads " << conf.NumberOfThreads
              << ", Resampling " << conf.Resampling << ", Deinterlacing " << conf.Deinterlacing
              << ", ColorSpaceMultiThread " << conf.ColorSpaceMultiThread << '\n';
}

// The number of filled slots for which the given tier runs.
std::size_t countOfTier(const FilledSubTable &table, const TierDescription &tier, int32_t level)
{
    return static_cast<std::size_t>(std::ranges::count_if(table.list, [&](const VcbSlotInfo &slot) {
        const TierDescription *runs = tierThatRuns(slot, level);
        return table.kernels[static_cast<std::size_t>(slot.number)] && runs && runs->tier == tier.tier;
    }));
}

// A zero is shown as a dot, so that the eye finds the numbers.
std::string countOrDot(std::size_t count) { return count == 0 ? "." : std::to_string(count); }

void printFamilies(const Library &library)
{
    using enum Table::Align;
    const int32_t level = library.processorLevel();
    std::vector<Table::Column> columns{{"family", left}, {"sub-table", left}, {"slots", right}, {"filled", right}};
    for (const TierDescription &tier : tiers)
        columns.push_back({tier.name, right});
    columns.push_back({"contents", left});

    Table table(columns);
    for (const FilledFamily &family : registerAllFamilies(library)) {
        for (const FilledSubTable &subTable : family.subTables) {
            const auto filled =
                std::ranges::count_if(subTable.kernels, [](VcbKernel kernel) { return kernel != nullptr; });
            const bool first = &subTable == &family.subTables.front();
            std::vector<std::string> cells{first ? family.id : "", subTable.member,
                                           std::to_string(subTable.kernels.size()), std::to_string(filled)};
            for (const TierDescription &tier : tiers)
                cells.push_back(countOrDot(countOfTier(subTable, tier, level)));
            cells.push_back(subTable.description);
            table.addRow(cells);
        }
    }
    table.print(std::cout);
}

void printSlots(const Library &library, const FilledFamily &family, bool verbose)
{
    using enum Table::Align;
    const int32_t level = library.processorLevel();
    for (const FilledSubTable &subTable : family.subTables) {
        std::cout << family.id << '.' << subTable.member << ": " << subTable.list.size() << " of "
                  << subTable.kernels.size() << " slots have a kernel in this version\n";
        if (subTable.list.empty())
            continue;
        std::vector<Table::Column> columns{{"slot", right}, {"tier", left}, {"name", left}};
        if (verbose)
            columns.push_back({"signature", left});
        Table table(columns);
        for (const VcbSlotInfo &slot : subTable.list) {
            const TierDescription *tier = tierThatRuns(slot, level);
            const bool filled = subTable.kernels[static_cast<std::size_t>(slot.number)] != nullptr;
            table.addRow({std::to_string(slot.number), filled && tier ? tier->name : "-", slotName(family.id, slot),
                          slot.signature});
        }
        table.print(std::cout);
    }
}

std::string joined(const std::vector<std::string> &words)
{
    std::string text;
    for (const std::string &word : words)
        text += (text.empty() ? "" : ", ") + word;
    return text;
}

void runInfo(const InfoOptions &options, Session &session)
{
    const std::vector<std::string> ids = familyIds();
    const bool slotsWanted = !options.slotsOf.empty();
    if (slotsWanted && std::ranges::find(ids, options.slotsOf) == ids.end())
        throw UsageError("no family '" + options.slotsOf + "'; the families are " + joined(ids));

    const Library &library = session.library();
    if (slotsWanted) {
        const std::vector<FilledFamily> families = registerAllFamilies(library);
        printSlots(library, *std::ranges::find(families, options.slotsOf, &FilledFamily::id), options.verbose);
        return;
    }
    std::cout << "VelaCPUBase    " << VELA_VERSION_MAJOR << '.' << VELA_VERSION_MINOR << '.' << VELA_VERSION_PATCH
              << ", " << utf8(library.path()) << '\n';
    printProcessor(library);
    printConfiguration(library);
    std::cout << '\n';
    printFamilies(library);
}

} // namespace

void addInfoCommand(CLI::App &app, Session &session)
{
    const auto options = std::make_shared<InfoOptions>();
    CLI::App *command = app.add_subcommand("info", "Show version, processor, configuration and kernels");
    command->add_option("--slots", options->slotsOf, "List the slots of one family: " + joined(familyIds()))
        ->type_name("FAMILY");
    command->add_flag("-v,--verbose", options->verbose, "With --slots: show signatures too");
    command->footer("Examples:\n  vela info\n  vela info --slots colorspace --verbose");
    command->callback([options, &session] { runInfo(*options, session); });
}

} // namespace host
