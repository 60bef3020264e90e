// Wide text in a place of fixed size.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace vela::frame {

// Holds up to Capacity characters and a terminator; what does not fit is cut off.
template <std::size_t Capacity> class FixedText {
public:
    FixedText &append(std::wstring_view text) noexcept
    {
        const std::size_t count = std::min(text.size(), Capacity - length_);
        std::copy_n(text.data(), count, text_ + length_);
        length_ += count;
        text_[length_] = L'\0';
        return *this;
    }

    // A number that is not negative, with leading zeros; of a longer one the last digits.
    FixedText &appendDigits(int value, std::size_t digits) noexcept
    {
        wchar_t text[10] = {};
        digits = std::min(digits, std::size(text));
        for (std::size_t i = digits; i-- > 0; value /= 10)
            text[i] = static_cast<wchar_t>(L'0' + value % 10);
        return append({text, digits});
    }

    std::wstring_view view() const noexcept { return {text_, length_}; }

private:
    std::size_t length_ = 0;
    wchar_t text_[Capacity + 1] = {};
};

} // namespace vela::frame
