// The core's texts are UTF-8; the windows take UTF-16.
#pragma once

#include <string>
#include <string_view>

namespace quorvex::desktop {

std::wstring Wide(std::string_view utf8);
std::string Utf8(std::wstring_view wide);

}  // namespace quorvex::desktop
