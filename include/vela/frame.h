/*
 * The frame of VelaCPUBase: configuration, log, processor detection, kernel modules, image files.
 *
 * When the library is loaded it reads "VelaTesselSDKConf.ini" beside itself (creating it, or the keys that are
 * missing), fills g_TesselConf and, if OutputLog is set, prepares a log file in the directory "TesselLog" beside
 * itself; log files older than seven days are deleted by a background thread. When it is unloaded the log is
 * closed. No failure here ever stops the library from loading.
 */
#ifndef VELA_FRAME_H
#define VELA_FRAME_H

#include <vela/base.h>
#include <wchar.h>

#if defined(__cplusplus)
extern "C" {
#endif

/* --- Configuration ------------------------------------------------------------------------------------- */

/* The configuration as read at load; constant afterwards. The kernels never read it: it is for the host. */
typedef struct VcbTesselConf {
    int32_t OutputLog;             /* [Log]: non-zero lets VCB_WriteLog write */
    int32_t NumberOfThreads;       /* [MultithreadedOptimization]: worker threads advised to the host */
    int32_t Resampling;            /* [MultithreadedOptimization]: resample on several threads */
    int32_t Deinterlacing;         /* [MultithreadedOptimization]: deinterlace on several threads */
    int32_t ColorSpaceMultiThread; /* [MultithreadedOptimization]: convert colours on several threads */
} VcbTesselConf;

/* Processor features that kernels ask for at call time; zero until the first detection. */
typedef struct VcbCpuId {
    uint8_t popcnt; /* 1 if POPCNT is available */
    uint8_t cmov;   /* 1 if CMOV is available */
} VcbCpuId;

/* Inside the library g_CPUID lies directly behind g_TesselConf. (An ELF program that links the library and reads
 * them without -fPIC gets copies of its own; both stay right, but no longer adjoin.) */
extern VCB_API VcbTesselConf g_TesselConf;
extern VCB_API VcbCpuId g_CPUID;

/* --- Processor ----------------------------------------------------------------------------------------- */

/* What processor and operating system support together, best last. */
typedef enum VcbCpuLevel {
    VCB_CPU_NONE = 0,
    VCB_CPU_SSE2 = 1,
    VCB_CPU_SSE3 = 2,
    VCB_CPU_SSSE3 = 3,
    VCB_CPU_SSE41 = 4,
    VCB_CPU_SSE42 = 5,
    VCB_CPU_AVX = 6,
    VCB_CPU_AVX2 = 7,
    VCB_CPU_UNDETECTED = 8
} VcbCpuLevel;

/* The processor's level, 0 to 7; detects it on the first call. */
VCB_API int32_t VCB_CALL VCB_GetCPUInsHigh(void) VCB_NOEXCEPT;

/* The next lower level: 0 for 0, level - 1 for 1 to 8, 7 for anything else. Detects nothing. */
VCB_API int32_t VCB_CALL VCB_GetCPUInsLower(int32_t level) VCB_NOEXCEPT;

/* 1 if processor and operating system support FMA3, else 0. Asks the processor at every call. */
VCB_API uint8_t VCB_CALL VCB_SupportFMA(void) VCB_NOEXCEPT;

/* --- Log ----------------------------------------------------------------------------------------------- */

typedef enum VcbLogLevel {
    VCB_LOG_MESSAGE = 0, /* "<Message>" */
    VCB_LOG_WARNING = 1, /* "<Warning>" */
    VCB_LOG_ERROR = 2,   /* "<Error!!>" */
    VCB_LOG_CRASH = 3    /* "<!!Crash>"; any other value is "<Unknown>" */
} VcbLogLevel;

/*
 * Appends one line to the log: level, two labels (null becomes "Unknown"), and a message in the format of the
 * platform's wide printf ("%ls" is a wide string on both systems). Messages are cut at 512 characters, lines at
 * 1023. Does nothing while OutputLog is 0. Lines of different threads never mix. A log that passes 1 MiB starts
 * over empty. The file is UTF-16LE with a byte-order mark and "\r\n" line ends on both systems.
 */
VCB_API void VCB_CALL VCB_WriteLog(int32_t level, const wchar_t *label1, const wchar_t *label2, const wchar_t *format,
                                   ...) VCB_NOEXCEPT;

/* --- Kernel modules ------------------------------------------------------------------------------------ */

/* This version knows no kernel modules yet and answers as if every module were missing. */

/* Loads the kernel module for the running processor and lets it fill the table set. Null if there is none. */
VCB_API void *VCB_CALL VCB_AutoLoadDLL(const wchar_t *baseName, void *tables) VCB_NOEXCEPT;

/* The same for a given processor level, 0 to 7. */
VCB_API void *VCB_CALL VCB_LoadAssignDLL(const wchar_t *baseName, void *tables, int32_t level) VCB_NOEXCEPT;

/* Lets a module that the host has loaded fill the table set. -1 if an argument is null. */
VCB_API int32_t VCB_CALL VCB_RegAPIFromDLL(void *tables, void *module) VCB_NOEXCEPT;

/* 1 if one of the first count pointers is null, else 0; 0 for a null array or a count below 1. */
VCB_API int32_t VCB_CALL VCB_HasNullPointer(const void *const *pointers, int32_t count) VCB_NOEXCEPT;

/* --- Image files --------------------------------------------------------------------------------------- */

/*
 * Rows are copied byte for byte; nothing is converted. stride is the distance between rows in the buffer, in
 * bytes; pixels points to row 0, so with a negative stride the other rows lie below it in memory. flip starts at
 * the last row of the buffer. Paths are wide strings; on Linux they become UTF-8, and a lone surrogate U+DC80 to
 * U+DCFF stands for the byte 0x80 to 0xFF of a name that is not UTF-8.
 */

/*
 * Writes an uncompressed Windows bitmap; 8 bits per pixel get a grey palette. A file row holds width pixels and,
 * at 8 and 24 bits per pixel, is padded to a multiple of 4 bytes with the character '0'. Two habits of the format's
 * older writers are kept: if the file row equals the step from row to row, the rows are written in one piece with
 * whatever the buffer holds as padding; and a 24-bit image whose stride is less than (3 * width) mod 4, such as
 * any negative stride, is written without padding.
 * Returns 1 if written, 0 if the file could not be opened. Also 0, with no file touched: a null path or pixels,
 * bits per pixel below 0 or above 65535, a width below 0, a file of 4 GiB or more. A height or row of 0 writes
 * headers alone.
 * A stride of 0 repeats one row. Nothing beyond the buffer (height rows of |stride| bytes) is read: if |stride| is
 * shorter than a row, bytes past its end are written as '0'. Write errors are not reported.
 */
VCB_API int32_t VCB_CALL VCB_WriteBMP(const wchar_t *path, const void *pixels, int64_t stride, int32_t bitsPerPixel,
                                      int32_t width, uint32_t height, uint8_t flip) VCB_NOEXCEPT;

/*
 * Reads a bitmap: header fields through the non-null out pointers and, unless pixels is null, the rows that follow
 * the 54 header bytes (at 8 bits per pixel that is the palette). The magic and the data offset are not looked at.
 * The length of a file row is image size / height or, where that gives 0, (bits per pixel / 8) * width rounded up
 * to a multiple of 4.
 * Returns 1 if the header was read, 0 if the file could not be opened or is shorter than its headers (out values
 * are then untouched). Call once without pixels to learn the size. A row of the buffer receives at most |stride|
 * bytes, and at most height rows are written; a height of 0 or less (top-down files), a stride of 0, or a row
 * length that is not between 1 and 2^31 - 1 reads no pixels. A file that ends early leaves the rest of the buffer
 * as it was.
 */
VCB_API int32_t VCB_CALL VCB_ReadBMP(const wchar_t *path, void *pixels, int64_t stride, int32_t *bitsPerPixel,
                                     int32_t *width, int32_t *height, uint8_t flip) VCB_NOEXCEPT;

/* Pixel formats that VCB_ReadDPX reports: 10-bit components in 32-bit words, by descriptor and packing. */
typedef enum VcbDpxFormat {
    VCB_DPX_RGB_A = 1037,  /* RGB, packing 1 (filled, method A) */
    VCB_DPX_RGB_B = 1039,  /* RGB, packing 2 (filled, method B) */
    VCB_DPX_RGBA_A = 1041, /* RGBA, packing 1 */
    VCB_DPX_ABGR_A = 1042, /* ABGR, packing 1 */
    VCB_DPX_RGBA_B = 1043, /* RGBA, packing 2 */
    VCB_DPX_ABGR_B = 1044, /* ABGR, packing 2 */
    VCB_DPX_UNSUPPORTED = 0x7FFFFFFF
} VcbDpxFormat;

/*
 * Reads a DPX file (SMPTE ST 268): width, height and format and, unless pixels is null, the packed rows of
 * element 1, in the file's own byte order. Rows are 4 * width bytes long (RGB) or ((3 * width + 2) / 3) * 4
 * (RGBA, ABGR, in 32-bit arithmetic); end-of-line padding is skipped, 0xFFFFFFFF meaning none.
 * Returns 1 if the header was read, 0 if the file could not be opened, is shorter than 2080 bytes, or an out
 * pointer is null; width and height are then 0 and the format VCB_DPX_UNSUPPORTED. An unsupported layout gives 1
 * with VCB_DPX_UNSUPPORTED and reads no pixels; no pixels are read either for a width or height of 0 or less, a row
 * length that is not between 1 and 2^31 - 1, or a stride of 0. A row of the buffer receives at most |stride| bytes,
 * and at most height rows are written. A file that ends early leaves the rest of the buffer as it was.
 */
VCB_API int32_t VCB_CALL VCB_ReadDPX(const wchar_t *path, void *pixels, int64_t stride, int32_t *width, int32_t *height,
                                     int32_t *format, uint8_t flip) VCB_NOEXCEPT;

#if defined(__cplusplus)
}
#endif

#endif
