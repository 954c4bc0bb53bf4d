// Where the FFmpeg libraries write a container's bytes.
#pragma once

extern "C" {
#include <libavformat/avio.h>
}

#include <exception>
#include <string>

#include "host/files/output_file.h"

namespace kelto::host {

/// The container's bytes on their way into an OutputFile. Exceptions must not cross the library's C
/// frames: the first one is kept and thrown by Check.
class ContainerOutput {
 public:
  explicit ContainerOutput(const std::string& output);
  ~ContainerOutput();
  ContainerOutput(const ContainerOutput&) = delete;
  ContainerOutput& operator=(const ContainerOutput&) = delete;

  AVIOContext* Context() const { return context_; }
  OutputFile& File() { return file_; }
  /// Throws the failure of a write so far, if there was one.
  void Check() const;
  /// Writes what is still held back and gives the file its name.
  void Finish();

 private:
  static int WriteBytes(void* self, uint8_t* bytes, int size);
  static int64_t SeekTo(void* self, int64_t offset, int whence);
  template <typename Step>
  bool Guard(Step step);

  OutputFile file_;
  AVIOContext* context_ = nullptr;
  std::exception_ptr failure_;
};

}  // namespace kelto::host
