// Frames in memory, and in files: raw frames one after the other, and BMP pictures.
#pragma once

#include "files.hpp"
#include "layouts.hpp"
#include "library.hpp"

#include <cstdint>
#include <fstream>
#include <functional>
#include <vector>

namespace host {

// Rows have room for more pixels than the width: as many as kernels that take pixels in steps want.
class Frame {
public:
    Frame(const Layout &layout, int width, int height);

    const Layout &layout() const { return *itsLayout; }
    int width() const { return widthPixels; }
    int height() const { return heightLines; }
    std::byte *row(int plane, int y) { return planes[std::size_t(plane)].row(y); }
    const std::byte *row(int plane, int y) const { return planes[std::size_t(plane)].row(y); }

    // Repeats the last pixel of some lines as far as a width that there is room for.
    void extend(int firstLine, int endLine, int width);

private:
    struct Rows {
        std::size_t stride = 0;
        std::vector<std::byte> bytes;

        std::byte *row(int y) { return bytes.data() + std::size_t(y) * stride; }
        const std::byte *row(int y) const { return bytes.data() + std::size_t(y) * stride; }
    };

    const Layout *itsLayout;
    int widthPixels;
    int heightLines;
    std::array<Rows, 3> planes;
};

// What a file holds: a picture, or raw frames.
struct Input {
    const Layout *layout;
    int width;
    int height;
    std::int64_t frames;
    std::uint64_t bytesLeft;             // behind the last whole frame
    std::function<void(Frame &to)> read; // the next frame. Throws Failure
};

// Both throw Failure; a file of raw frames must hold at least one.
Input openPicture(const Library &library, const std::filesystem::path &path);
Input openRawFrames(const std::filesystem::path &path, const Layout &layout, int width, int height);

// Writes frames to a file that appears when it is complete: a BMP picture, of one frame as BGR24 or BGRA32, or raw
// frames.
class Output {
public:
    Output(const std::filesystem::path &path, bool asPicture, const Library &library);

    void write(const Frame &frame);
    void finish();

private:
    UnfinishedFile file;
    const Library *pictureLibrary;
    std::ofstream stream; // closed before the unfinished file goes
};

} // namespace host
