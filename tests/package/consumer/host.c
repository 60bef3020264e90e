#include <stdio.h>
#include <vela/vela.h>

int main(void)
{
    VcbVideoProcs video = {0};
    VcbVideoProcTables tables = {.video = &video};
    const uint8_t row[] = {100, 100, 200}, blurred[] = {100, 110, 180};
    uint8_t sharp[3] = {0};

    VCB_RegVideoProc(&tables);
    video.SharpenU8(sharp, row, blurred, 3);
    printf("processor level %d, %d worker threads\n", (int)VCB_GetCPUInsHigh(), (int)g_TesselConf.NumberOfThreads);
    return sharp[0] == 100 && sharp[1] == 97 && sharp[2] == 206 ? 0 : 1;
}
