#include "runtime/hfx/failure.h"

#include <exception>

namespace hfx {

std::string CurrentExceptionText() {
  try {
    throw;
  } catch (int number) {
    return "threw the integer " + std::to_string(number);
  } catch (const std::exception& exception) {
    return std::string("threw: ") + exception.what();
  } catch (const std::string& text) {
    return "threw: " + text;
  } catch (const char* text) {
    return std::string("threw: ") + (text != nullptr ? text : "a null text");
  } catch (...) {
    return "threw an exception of an unknown type";
  }
}

std::string OneLine(std::string text) {
  for (char& c : text) {
    if (static_cast<unsigned char>(c) < ' ') c = ' ';
  }
  text.erase(text.find_last_not_of(' ') + 1);
  return text;
}

bool Fail(std::string* error, const std::string& text) {
  if (error != nullptr) *error = OneLine(text);
  return false;
}

}  // namespace hfx
