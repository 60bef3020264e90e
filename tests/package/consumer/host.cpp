#include <cstdio>
#include <vela/vela.hpp>

int main()
{
    const vela::VideoProcs procs;
    const uint8_t row[] = {100, 100, 200}, blurred[] = {100, 110, 180};
    uint8_t sharp[3] = {};

    procs.video.SharpenU8(sharp, row, blurred, 3);
    std::printf("processor level %d, %d worker threads\n", VCB_GetCPUInsHigh(), g_TesselConf.NumberOfThreads);
    return sharp[0] == 100 && sharp[1] == 97 && sharp[2] == 206 ? 0 : 1;
}
