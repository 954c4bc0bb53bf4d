// Work on a file from a stranger, in a process that reads that file and writes nowhere: a fault in
// a codec then reaches neither the folder of the output nor anything else of the command's.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace kelto::host {

/// Does `work`, which reads `file` and `others` (files, or folders with all that is below them), in
/// a process of its own, in the sandbox, and gives what it returns. What `work` throws is thrown
/// here, as UsageError or Error, and what it prints with PrintMessage is printed. Throws Error that
/// names the file, too, where the process ends in any other way or the command is interrupted. To
/// be called while this process has no other thread. On Windows `work` is done in this process.
std::string ReadApart(const std::string& file, const std::vector<std::string>& others,
                      const std::function<std::string()>& work);

/// The same for work that gives numbers; `others` as above, `count` is how many. They are finite,
/// but otherwise what a process that the file has taken over makes of them.
std::vector<double> NumbersApart(const std::string& file, size_t count,
                                 const std::function<std::vector<double>()>& work,
                                 const std::vector<std::string>& others = {});

/// A number of NumbersApart as an integer. Throws Error that names the file where it is none or
/// lies beyond the bounds.
int64_t IntegerFrom(double number, int64_t least, int64_t most, const std::string& file);

}  // namespace kelto::host
