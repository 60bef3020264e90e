#include "frame/log.hpp"

#include "frame/text.hpp"

#include <mutex>

#include <vela/frame.h>

namespace vela::frame {
namespace {

constexpr std::size_t messageCapacity = 512;
constexpr std::size_t textCapacity = 1023;
using LineText = FixedText<textCapacity>;
using Line = FixedText<textCapacity + 64>; // with date and time, marks and line end

constexpr wchar_t byteOrderMark = 0xFEFF;

// UTF-16LE, whatever the width of wchar_t.
class Utf16Bytes {
public:
    explicit Utf16Bytes(std::wstring_view text) noexcept
    {
        for (const wchar_t character : text)
            append(static_cast<char32_t>(character));
    }

    const void *data() const noexcept { return bytes_; }
    std::size_t size() const noexcept { return size_; }

private:
    void append(char32_t character) noexcept
    {
        if (character > 0x10FFFF)
            character = 0xFFFD; // not a character; lone surrogates pass, as they do where wchar_t is 16 bits wide
        if (character < 0x10000)
            return appendUnit(character);
        appendUnit(0xD800 + ((character - 0x10000) >> 10));
        appendUnit(0xDC00 + (character & 0x3FF));
    }

    void appendUnit(char32_t unit) noexcept
    {
        bytes_[size_++] = static_cast<unsigned char>(unit);
        bytes_[size_++] = static_cast<unsigned char>(unit >> 8);
    }

    std::size_t size_ = 0;
    unsigned char bytes_[4 * sizeof(Line) / sizeof(wchar_t)];
};

void append(platform::AppendFile &file, std::wstring_view text) noexcept
{
    const Utf16Bytes bytes(text);
    file.append(bytes.data(), bytes.size());
}

// "MM/DD/YY HH:MM:SS"
void appendNow(Line &line) noexcept
{
    const platform::LocalTime now = platform::localTime(platform::secondsNow()).value_or(platform::LocalTime{});
    line.appendDigits(now.month, 2).append(L"/").appendDigits(now.day, 2).append(L"/").appendDigits(now.year, 2);
    line.append(L" ");
    line.appendDigits(now.hour, 2).append(L":").appendDigits(now.minute, 2).append(L":").appendDigits(now.second, 2);
}

// A line: its first part, date and time, its other parts. In one write, so that not even the lines of a forked child
// can come between.
template <class... Parts>
void appendStamped(platform::AppendFile &file, std::wstring_view before, const Parts &...after) noexcept
{
    Line line;
    line.append(before);
    appendNow(line);
    (line.append(after), ...);
    append(file, line.view());
}

std::wstring_view tagOf(int32_t level) noexcept
{
    switch (level) {
    case VCB_LOG_MESSAGE:
        return L"<Message>    ";
    case VCB_LOG_WARNING:
        return L"<Warning>    ";
    case VCB_LOG_ERROR:
        return L"<Error!!>    ";
    case VCB_LOG_CRASH:
        return L"<!!Crash>    ";
    default:
        return L"<Unknown>    ";
    }
}

void appendLabel(LineText &text, const wchar_t *label) noexcept
{
    text.append(label ? label : L"Unknown").append(L"    ");
}

} // namespace

void Log::start(std::wstring_view path) noexcept
{
    const std::lock_guard lock(mutex_);
    if (path.size() < pathCapacity)
        path_[path.copy(path_, pathCapacity - 1)] = L'\0';
    started_.store(true, std::memory_order_release);
}

void Log::open() noexcept
{
    if (path_[0] == L'\0')
        return;
    state_ = file_.create(path_) ? State::open : State::failed;
    if (state_ != State::open)
        return;
    append(file_, {&byteOrderMark, 1});
    appendStamped(file_, L"\r\n#### Log Start - ", L" ####\r\n");
}

void Log::close() noexcept
{
    if (state_ == State::open)
        appendStamped(file_, L"#### Log Stop - ", L" ####\r\n");
    file_.close();
    state_ = State::unopened;
}

void Log::write(std::wstring_view text) noexcept
{
    const std::lock_guard lock(mutex_);
    if (!isStarted())
        return;
    if (state_ == State::unopened)
        open();
    if (state_ == State::open && file_.size() > restartSize) {
        close();
        open();
    }
    if (state_ == State::open)
        appendStamped(file_, L"## ", L"    ", text, L" ##\r\n");
}

void Log::stop(bool othersAreGone) noexcept
{
    std::unique_lock lock(mutex_, std::defer_lock);
    if (!othersAreGone)
        lock.lock();
    else if (!lock.try_lock())
        return;
    if (isStarted())
        close();
    path_[0] = L'\0';
    started_.store(false, std::memory_order_release);
}

constinit Log processLog;

} // namespace vela::frame

extern "C" void VCB_CALL VCB_WriteLog(int32_t level, const wchar_t *label1, const wchar_t *label2,
                                      const wchar_t *format, ...) noexcept
{
    using namespace vela::frame;
    if (g_TesselConf.OutputLog == 0 || !processLog.isStarted())
        return;

    wchar_t message[messageCapacity + 1] = {};
    if (format) {
        std::va_list arguments;
        va_start(arguments, format);
        vela::platform::formatText(message, std::size(message), format, arguments);
        va_end(arguments);
    }

    LineText text;
    text.append(tagOf(level));
    appendLabel(text, label1);
    appendLabel(text, label2);
    text.append(message);
    processLog.write(text.view());
}
