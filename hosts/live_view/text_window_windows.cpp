// A window with a long text to read: an edit control without a frame of its own.
#include "live_view/text_window_windows.hpp"

#include <windows.h>

#include "system/text.hpp"

namespace orvane::host {

namespace {

// The control takes other line ends for none.
std::wstring textOfControl(const std::string& utf8) {
  std::string lines;
  for (const char letter : utf8) {
    lines += letter == '\n' ? std::string("\r\n") : std::string(1, letter);
  }
  return pathFromUtf8(lines).native();
}

}  // namespace

void showTextWindow(const wchar_t* title, const std::string& utf8) {
  HWND window = CreateWindowExW(0, L"EDIT", title,
                                WS_OVERLAPPEDWINDOW | WS_VSCROLL | ES_MULTILINE | ES_READONLY,
                                CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, nullptr,
                                nullptr, nullptr, nullptr);
  SendMessageW(window, WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(ANSI_FIXED_FONT)),
               FALSE);
  SendMessageW(window, EM_SETLIMITTEXT, 0, 0);
  SendMessageW(window, EM_SETSEL, 0, -1);  // the title, which the control shows as its text, too
  SendMessageW(window, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(textOfControl(utf8).c_str()));
  SendMessageW(window, EM_SETSEL, 0, 0);
  SendMessageW(window, EM_SCROLLCARET, 0, 0);
  ShowWindow(window, SW_SHOWNORMAL);
  MSG message{};
  while (IsWindow(window) != 0 && GetMessageW(&message, nullptr, 0, 0) > 0) {
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
}

}  // namespace orvane::host
