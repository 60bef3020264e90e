#include "frames.hpp"

#include "picture.hpp"

#include <cstring>
#include <memory>

namespace host {
namespace {

constexpr int roomStep = 4; // the most pixels that a kernel takes in one step

int wholeUnits(int width, const Plane &plane) { return (width + plane.pixels - 1) / plane.pixels; }

// The planes of a frame as they follow each other in a file, without padding: calls each(row, bytes) with as much as
// lies in one piece.
template <class AnyFrame, class Each> void forEachPiece(AnyFrame &frame, Each each)
{
    for (int p = 0; p < frame.layout().planeCount(); ++p) {
        const Plane &plane = frame.layout().planes[std::size_t(p)];
        const std::size_t bytes = plane.rowBytes(frame.width());
        const int rows = plane.rows(frame.height());
        if (rows > 1 && frame.row(p, 0) + bytes == frame.row(p, 1)) {
            each(frame.row(p, 0), bytes * std::size_t(rows));
            continue;
        }
        for (int y = 0; y < rows; ++y)
            each(frame.row(p, y), bytes);
    }
}

std::size_t pixelRowBytes(const Picture &picture)
{
    return std::size_t(picture.width()) * std::size_t(picture.bytesPerPixel());
}

} // namespace

Frame::Frame(const Layout &layout, int width, int height) : itsLayout(&layout), widthPixels(width), heightLines(height)
{
    const int room = (width + roomStep - 1) / roomStep * roomStep;
    for (int p = 0; p < layout.planeCount(); ++p) {
        const Plane &plane = layout.planes[std::size_t(p)];
        planes[std::size_t(p)].stride = plane.rowBytes(room);
        planes[std::size_t(p)].bytes.resize(plane.rowBytes(room) * std::size_t(plane.rows(height)));
    }
}

void Frame::extend(int firstLine, int endLine, int width)
{
    for (int p = 0; p < itsLayout->planeCount(); ++p) {
        const Plane &plane = itsLayout->planes[std::size_t(p)];
        const int wanted = wholeUnits(width, plane);
        const auto unit = std::size_t(plane.bytes);
        for (int y = firstLine / plane.lines; y < plane.rows(endLine); ++y)
            for (int i = wholeUnits(widthPixels, plane); i < wanted; ++i)
                std::memcpy(row(p, y) + std::size_t(i) * unit, row(p, y) + std::size_t(i - 1) * unit, unit);
    }
}

Input openPicture(const Library &library, const std::filesystem::path &path)
{
    const auto picture = std::make_shared<Picture>(readBmp(library, path));
    const auto read = [picture](Frame &to) {
        for (int y = 0; y < to.height(); ++y)
            std::memcpy(to.row(0, y), picture->row(y), pixelRowBytes(*picture));
    };
    return {findLayout(picture->bytesPerPixel() == 4 ? "BGRA32" : "BGR24"),
            picture->width(),
            picture->height(),
            1,
            0,
            read};
}

Input openRawFrames(const std::filesystem::path &path, const Layout &layout, int width, int height)
{
    checkIsFile(path);
    const auto file = std::make_shared<std::ifstream>(path, std::ios::binary);
    if (!*file)
        throw unreadable(path, "no permission");
    // A file that really holds a frame bounds the memory that its conversion takes.
    const std::uint64_t bytes = std::filesystem::file_size(path);
    const std::uint64_t frameBytes = layout.frameBytes(width, height);
    if (bytes < frameBytes)
        throw unreadable(path, "it holds no whole frame: " + std::to_string(bytes) + " of " +
                                   std::to_string(frameBytes) + " bytes");
    const auto read = [file, path](Frame &to) {
        forEachPiece(to, [&](std::byte *piece, std::size_t count) {
            if (!file->read(reinterpret_cast<char *>(piece), static_cast<std::streamsize>(count)))
                throw unreadable(path, "the file has become shorter");
        });
    };
    return {&layout, width, height, static_cast<std::int64_t>(bytes / frameBytes), bytes % frameBytes, read};
}

Output::Output(const std::filesystem::path &path, bool asPicture, const Library &library)
    : file(path), pictureLibrary(asPicture ? &library : nullptr)
{
    if (asPicture)
        return;
    stream.open(file.pathUntilFinished(), std::ios::binary);
    if (!stream)
        throw unwritable(path, "the file cannot be created");
}

void Output::write(const Frame &frame)
{
    if (pictureLibrary) {
        Picture picture(frame.width(), frame.height(), frame.layout().planes[0].bytes);
        for (int y = 0; y < frame.height(); ++y)
            std::memcpy(picture.row(y), frame.row(0, y), pixelRowBytes(picture));
        writeBmp(*pictureLibrary, file.pathUntilFinished(), picture);
        return;
    }
    forEachPiece(frame, [&](const std::byte *piece, std::size_t count) {
        stream.write(reinterpret_cast<const char *>(piece), static_cast<std::streamsize>(count));
    });
}

void Output::finish()
{
    if (!pictureLibrary) {
        stream.close();
        if (!stream)
            throw unwritable(file.path(), "the file is incomplete; is the disk full?");
    }
    file.finish();
}

} // namespace host
