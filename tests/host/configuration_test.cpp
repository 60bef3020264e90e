#include "host.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

bool operator==(const VcbTesselConf &a, const VcbTesselConf &b) { return std::memcmp(&a, &b, sizeof(a)) == 0; }

void PrintTo(const VcbTesselConf &conf, std::ostream *out)
{
    *out << conf.OutputLog << ' ' << conf.NumberOfThreads << ' ' << conf.Resampling << ' ' << conf.Deinterlacing << ' '
         << conf.ColorSpaceMultiThread;
}

namespace {

using vela::test::Installation;
using vela::test::Library;
using vela::test::readFile;
using vela::test::writeFile;

const char defaultIni[] = "[Log]\r\nOutputLog=0\r\n"
                          "[MultithreadedOptimization]\r\nNumberOfThreads=4\r\nResampling=0\r\nDeinterlacing=0\r\n"
                          "ColorSpaceMultiThread=1\r\n";

TEST(Configuration, FirstRunWritesTheFileAndTheSecondReadsIt)
{
    const Installation installation;
    EXPECT_EQ(installation.load().conf(), (VcbTesselConf{0, 4, 0, 0, 0}));
    EXPECT_EQ(readFile(installation.ini()), defaultIni);
    EXPECT_EQ(installation.load().conf(), (VcbTesselConf{0, 4, 0, 0, 1}));
    EXPECT_EQ(readFile(installation.ini()), defaultIni);
    EXPECT_FALSE(std::filesystem::exists(installation.logDirectory()));
}

struct Case {
    const char *what;
    const char *before;
    VcbTesselConf conf;
    const char *after;
};

const Case cases[] = {
    {"complete file",
     "[Log]\r\nOutputLog=0\r\n[MultithreadedOptimization]\r\nNumberOfThreads=16\r\nResampling=1\r\n"
     "Deinterlacing=2\r\nColorSpaceMultiThread=-3\r\n",
     {0, 16, 1, 2, -3},
     "[Log]\r\nOutputLog=0\r\n[MultithreadedOptimization]\r\nNumberOfThreads=16\r\nResampling=1\r\n"
     "Deinterlacing=2\r\nColorSpaceMultiThread=-3\r\n"},
    {"-1 counts as missing",
     "[Log]\r\nOutputLog=-1\r\n[MultithreadedOptimization]\r\nNumberOfThreads=-1\r\nResampling=-1\r\n"
     "Deinterlacing=4294967295\r\nColorSpaceMultiThread=-1\r\n",
     {0, 4, 0, 0, 0},
     defaultIni},
    {"the host's own lines stay, missing keys are added",
     "; ours\r\n[Host]\r\nOutputLog=7\r\n[MultithreadedOptimization]\r\n; cores\r\nNumberOfThreads=8\r\n[Log]\r\n"
     "OutputLog=0\r\n",
     {0, 8, 0, 0, 0},
     "; ours\r\n[Host]\r\nOutputLog=7\r\n[MultithreadedOptimization]\r\n; cores\r\nNumberOfThreads=8\r\n"
     "Resampling=0\r\nDeinterlacing=0\r\nColorSpaceMultiThread=1\r\n[Log]\r\nOutputLog=0\r\n"},
};

TEST(Configuration, ExistingFiles)
{
    for (const Case &c : cases) {
        const Installation installation;
        writeFile(installation.ini(), c.before);
        EXPECT_EQ(installation.load().conf(), c.conf) << c.what;
        EXPECT_EQ(readFile(installation.ini()), c.after) << c.what;
    }
}

TEST(Configuration, AnyDirectoryNameWorks)
{
    const Installation installation(std::u8string(u8"caf\u00E9 \u65E5\u672C \U0001F3AC [x]"));
    installation.switchLogOn();
    {
        const Library library = installation.load();
        EXPECT_EQ(library.conf(), (VcbTesselConf{1, 4, 0, 0, 0}));
        library.writeLog()(VCB_LOG_MESSAGE, nullptr, nullptr, L"here");
    }
    EXPECT_NE(installation.log().find(u"here"), std::u16string::npos);
    EXPECT_NE(readFile(installation.ini()).find("ColorSpaceMultiThread=1"), std::string::npos);
}

TEST(Configuration, AFileInTheLogDirectorysPlaceStopsTheLogAlone)
{
    const Installation installation;
    installation.switchLogOn();
    writeFile(installation.logDirectory(), "mine");
    {
        const Library library = installation.load();
        EXPECT_EQ(library.conf(), (VcbTesselConf{1, 4, 0, 0, 0}));
        library.writeLog()(VCB_LOG_MESSAGE, nullptr, nullptr, L"nowhere");
    }
    EXPECT_EQ(readFile(installation.logDirectory()), "mine");
}

TEST(Configuration, ADirectoryInTheFilesPlaceGivesDefaults)
{
    const Installation installation;
    std::filesystem::create_directory(installation.ini());
    EXPECT_EQ(installation.load().conf(), (VcbTesselConf{0, 4, 0, 0, 0}));
}

TEST(Configuration, CopiesOfTheLibraryAreIndependent)
{
    const Installation first;
    const Installation second;
    writeFile(first.ini(), "[MultithreadedOptimization]\r\nNumberOfThreads=2\r\n");
    writeFile(second.ini(), "[MultithreadedOptimization]\r\nNumberOfThreads=3\r\n");
    const Library a = first.load();
    const Library b = second.load();
    EXPECT_EQ(a.conf().NumberOfThreads, 2);
    EXPECT_EQ(b.conf().NumberOfThreads, 3);
}

} // namespace
