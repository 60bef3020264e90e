// DPX pictures (SMPTE ST 268) of 10-bit RGB.
#pragma once

#include "picture.hpp"

namespace host {

struct DpxPicture {
    Picture words; // of 32 bits, one for every pixel, in the file's byte order
    VcbDpxFormat format;
    bool littleEndian;
};

// Whether the file begins as a DPX file does, or has the name of one. Throws Failure if it cannot be read.
bool isDpx(const std::filesystem::path &path);

// Throws Failure.
DpxPicture readDpx(const Library &library, const std::filesystem::path &path);

} // namespace host
