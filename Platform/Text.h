#pragma once
// Between the runner's UTF-8 and the UTF-16 units of window messages and key buffers.
#include <string>
#include <string_view>

namespace vesk {

std::u16string Text_ToUtf16(std::string_view utf8); // malformed bytes become U+FFFD
std::string Text_ToUtf8(std::u16string_view utf16); // lone surrogates become U+FFFD

} // namespace vesk
