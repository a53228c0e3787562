// Text conversions between the core's UTF-8 and what the platform's
// functions take: the client's 8-bit code page (Windows-1252) for the "A"
// functions, UTF-16 for the "W" ones. No platform header is needed, so the
// conversions behave the same whatever code page the machine runs with.
#pragma once

#include <string>
#include <string_view>

namespace quorvex::win32 {

// UTF-8 to Windows-1252. Characters the code page lacks, and bytes that
// are not UTF-8, become "?".
std::string Utf8ToCp1252(std::string_view utf8);
// Windows-1252 to UTF-8. The five bytes the code page leaves undefined
// (0x81, 0x8D, 0x8F, 0x90, 0x9D) map to the control characters of the
// same number, as the platform maps them, so every byte comes back.
std::string Cp1252ToUtf8(std::string_view bytes);

std::wstring Utf8ToWide(std::string_view utf8);
std::string WideToUtf8(std::wstring_view wide);
// UTF-16 to what an 8-bit reader of the text sees: each character through
// Windows-1252 ("?" when it has no byte there), back to UTF-8.
std::string WideThroughCp1252(std::wstring_view wide);

}  // namespace quorvex::win32
