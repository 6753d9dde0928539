// A DLL that contains the language's run-time library and does almost nothing.

#include <exception>
#include <string>

extern "C" __declspec(dllexport) int ReadNumber(const char* text) {
  try {
    return std::stoi(std::string(text));
  } catch (const std::exception&) {
    return 0;
  }
}
