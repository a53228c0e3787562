// The drawn band of a title bar or of the status strip: a child window
// that paints what DrawStatus computes for its size, colour and text. A
// title band also drags its window.
#pragma once

#include <windows.h>

#include <string>

namespace quorvex::desktop {

void RegisterBandClass(HINSTANCE instance);

// A band child window; `draggable` makes it a title bar.
HWND CreateBand(HWND parent, int id, int x, int y, int w, int h,
                bool draggable);
// Sets the band's colour text ("#4488BB") and text, and repaints it.
void SetBand(HWND band, const std::string& colour, const std::string& text);

// The font every window of the program uses.
HFONT UiFont();

// Windows are laid out in pixels at 100 % (96 DPI); on a screen set
// larger (120 DPI, 150 % = 144 DPI) every size and font grows with it, as
// the program says in its manifest that it scales itself.
int Scaled(int pixels_at_96_dpi);

}  // namespace quorvex::desktop
