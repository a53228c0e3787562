#include "desktop/band.h"

#include "desktop/control_ids.h"
#include "desktop/wide_text.h"
#include "model/draw_status.h"

namespace quorvex::desktop {

namespace {

struct BandState {
  std::string colour = kBandColour;
  std::string text;
  COLORREF fore = RGB(255, 255, 255);
  bool draggable = false;
};

BandState* State(HWND hwnd) {
  return reinterpret_cast<BandState*>(GetWindowLongPtrW(hwnd, GWLP_USERDATA));
}

void Paint(HWND hwnd) {
  PAINTSTRUCT ps;
  HDC dc = BeginPaint(hwnd, &ps);
  BandState* s = State(hwnd);
  RECT rc;
  GetClientRect(hwnd, &rc);
  const int w = rc.right, h = rc.bottom;
  // Drawn off screen first, so that a repaint does not flicker.
  HDC mem = CreateCompatibleDC(dc);
  HBITMAP bmp = CreateCompatibleBitmap(dc, w, h);
  HGDIOBJ old_bmp = SelectObject(mem, bmp);
  HGDIOBJ old_font = SelectObject(mem, UiFont());
  const std::wstring text = Wide(s->text);
  SIZE extent{0, 0};
  GetTextExtentPoint32W(mem, text.c_str(), static_cast<int>(text.size()),
                        &extent);
  StatusDrawing d =
      DrawStatus(w, h, s->colour, s->text,
                 {static_cast<int>(extent.cx), static_cast<int>(extent.cy)});
  for (int y = 0; y < static_cast<int>(d.rows.size()) && y < h; ++y) {
    const Rgb c = d.rows[static_cast<std::size_t>(y)];
    RECT row{0, y, w, y + 1};
    HBRUSH brush = CreateSolidBrush(RGB(c.r, c.g, c.b));
    FillRect(mem, &row, brush);
    DeleteObject(brush);
  }
  SetBkMode(mem, TRANSPARENT);
  SetTextColor(mem, s->fore);
  TextOutW(mem, static_cast<int>(d.text_x), static_cast<int>(d.text_y),
           text.c_str(), static_cast<int>(text.size()));
  BitBlt(dc, 0, 0, w, h, mem, 0, 0, SRCCOPY);
  SelectObject(mem, old_font);
  SelectObject(mem, old_bmp);
  DeleteObject(bmp);
  DeleteDC(mem);
  EndPaint(hwnd, &ps);
}

// Title-bar drag: the title lights up while the window follows the mouse.
void Drag(HWND hwnd) {
  BandState* s = State(hwnd);
  const std::string text = s->text;
  s->fore = RGB(0xE0, 0xE0, 0xE0);
  SetBand(hwnd, kDragColour, kWindowTitle);
  UpdateWindow(hwnd);
  ReleaseCapture();
  SendMessageW(GetAncestor(hwnd, GA_ROOT), WM_NCLBUTTONDOWN, HTCAPTION, 0);
  s->fore = RGB(255, 255, 255);
  SetBand(hwnd, kBandColour, text);
}

LRESULT CALLBACK BandProc(HWND hwnd, UINT msg, WPARAM wp, LPARAM lp) {
  switch (msg) {
    case WM_NCCREATE: {
      auto* cs = reinterpret_cast<CREATESTRUCTW*>(lp);
      auto* s = new BandState;
      s->draggable = cs->lpCreateParams != nullptr;
      SetWindowLongPtrW(hwnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(s));
      break;
    }
    case WM_NCDESTROY:
      delete State(hwnd);
      SetWindowLongPtrW(hwnd, GWLP_USERDATA, 0);
      break;
    case WM_ERASEBKGND:
      return 1;
    case WM_PAINT:
      Paint(hwnd);
      return 0;
    case WM_LBUTTONDOWN:
      if (State(hwnd)->draggable) {
        Drag(hwnd);
        return 0;
      }
      break;
    case WM_GETTEXT:
    case WM_GETTEXTLENGTH:
    case WM_SETTEXT:
      break;
  }
  return DefWindowProcW(hwnd, msg, wp, lp);
}

}  // namespace

HFONT UiFont() {
  static HFONT font = CreateFontW(Scaled(-11), 0, 0, 0, FW_NORMAL, 0, 0, 0,
                                  DEFAULT_CHARSET, 0, 0, 0, 0, L"Tahoma");
  return font;
}

int Scaled(int pixels_at_96_dpi) {
  static const int dpi = [] {
    HDC screen = GetDC(nullptr);
    const int d = GetDeviceCaps(screen, LOGPIXELSY);
    ReleaseDC(nullptr, screen);
    return d > 0 ? d : 96;
  }();
  return MulDiv(pixels_at_96_dpi, dpi, 96);
}

void RegisterBandClass(HINSTANCE instance) {
  WNDCLASSW wc{};
  wc.lpfnWndProc = BandProc;
  wc.hInstance = instance;
  wc.hCursor = LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_ARROW));
  wc.lpszClassName = kBandClass;
  RegisterClassW(&wc);
}

HWND CreateBand(HWND parent, int id, int x, int y, int w, int h,
                bool draggable) {
  return CreateWindowExW(
      0, kBandClass, L"", WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS, Scaled(x),
      Scaled(y), Scaled(w), Scaled(h), parent,
      reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)),
      reinterpret_cast<HINSTANCE>(GetWindowLongPtrW(parent, GWLP_HINSTANCE)),
      draggable ? reinterpret_cast<void*>(1) : nullptr);
}

void SetBand(HWND band, const std::string& colour, const std::string& text) {
  BandState* s = State(band);
  if (!s) return;
  s->colour = colour;
  s->text = text;
  // The window text follows, so that the band reads from outside.
  SetWindowTextW(band, Wide(text).c_str());
  InvalidateRect(band, nullptr, FALSE);
}

}  // namespace quorvex::desktop
