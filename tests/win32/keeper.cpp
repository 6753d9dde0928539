// Keeps Wine's daemons and desktop running: owns a window until it is ended. Writes the file named
// by its argument when the window exists.

#include <cstdio>

#include "com/windows_api.h"

int main(int argc, char** argv) {
  ::CreateWindowExW(0, L"STATIC", L"keeper", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr,
                    nullptr);
  if (std::FILE* ready = argc > 1 ? std::fopen(argv[1], "w") : nullptr) {
    std::fputs("kept\n", ready);
    std::fclose(ready);
  }
  MSG message;
  while (::GetMessageW(&message, nullptr, 0, 0) > 0) ::DispatchMessageW(&message);
}
