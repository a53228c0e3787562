#include "win32/win32_window_api.h"

#include <gtest/gtest.h>
#include <windows.h>

namespace quorvex::win32 {
namespace {

Hwnd ToHwnd(HWND h) {
  return static_cast<Hwnd>(reinterpret_cast<std::uintptr_t>(h));
}

// A hidden window with children made in this order.
class ChildrenTest : public testing::Test {
 protected:
  ChildrenTest() {
    parent = ::CreateWindowExA(0, "STATIC", "parent", WS_POPUP, 0, 0, 100, 100,
                               nullptr, nullptr, nullptr, nullptr);
  }
  ~ChildrenTest() override { ::DestroyWindow(parent); }
  HWND Add(const wchar_t* class_name, const wchar_t* caption) {
    return ::CreateWindowExW(0, class_name, caption, WS_CHILD, 0, 0, 10, 10,
                             parent, nullptr, nullptr, nullptr);
  }
  HWND parent;
  Win32WindowApi api;
};

// After a child of another class the binding searches on by itself: class
// and caption compared as the system compares them, ignoring case, the
// client's accented letters (Windows-1252) included.
TEST_F(ChildrenTest, ASearchOnFromAnotherClassIgnoresCase) {
  const HWND edit = Add(L"EDIT", L"");
  const HWND send = Add(L"BUTTON", L"Send Now");
  const HWND later = Add(L"BUTTON", L"\u00C9crire plus tard");
  Add(L"BUTTON", L"Send Nowx");
  EXPECT_EQ(
      api.FindWindowExA(ToHwnd(parent), ToHwnd(edit), "button", "SEND NOW"),
      ToHwnd(send));
  EXPECT_EQ(api.FindWindowExA(ToHwnd(parent), ToHwnd(edit), "Button",
                              "\u00E9CRIRE PLUS TARD"),
            ToHwnd(later));
  EXPECT_EQ(
      api.FindWindowExA(ToHwnd(parent), ToHwnd(edit), "button", "send no"), 0u);
  EXPECT_EQ(api.FindWindowExA(ToHwnd(parent), ToHwnd(edit), "buttons", nullptr),
            0u);
  EXPECT_EQ(api.FindWindowExA(ToHwnd(parent), ToHwnd(edit), "button", nullptr),
            ToHwnd(send));
}

}  // namespace
}  // namespace quorvex::win32
