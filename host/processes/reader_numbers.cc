#include <cmath>
#include <cstring>

#include "host/base/error.h"
#include "host/processes/reader_process.h"

namespace kelto::host {
namespace {

[[noreturn]] void FailOn(const std::string& file) {
  throw Error(file + ": the process that reads it gave what cannot be");
}

}  // namespace

std::vector<double> NumbersApart(const std::string& file, size_t count,
                                 const std::function<std::vector<double>()>& work,
                                 const std::vector<std::string>& others) {
  const std::string bytes = ReadApart(file, others, [&] {
    const std::vector<double> numbers = work();
    return std::string(reinterpret_cast<const char*>(numbers.data()),
                       numbers.size() * sizeof(double));
  });
  if (bytes.size() != count * sizeof(double)) FailOn(file);
  std::vector<double> numbers(count);
  std::memcpy(numbers.data(), bytes.data(), bytes.size());
  for (const double number : numbers) {
    if (!std::isfinite(number)) FailOn(file);
  }
  return numbers;
}

int64_t IntegerFrom(double number, int64_t least, int64_t most, const std::string& file) {
  if (!(number >= static_cast<double>(least) && number <= static_cast<double>(most)) ||
      number != std::floor(number)) {
    FailOn(file);
  }
  return static_cast<int64_t>(number);
}

}  // namespace kelto::host
