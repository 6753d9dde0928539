// A DLL that brings the language's run-time library along and does next to nothing.

#include <exception>
#include <string>

extern "C" __declspec(dllexport) int ReadNumber(const char* text) {
  try {
    return std::stoi(std::string(text));
  } catch (const std::exception&) {
    return 0;
  }
}
