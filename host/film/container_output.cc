#include "host/film/container_output.h"

extern "C" {
#include <libavutil/error.h>
#include <libavutil/mem.h>
}

#include <cerrno>
#include <new>

namespace kelto::host {
namespace {

constexpr int kBlockBytes = 1 << 20;

}  // namespace

ContainerOutput::ContainerOutput(const std::string& output) : file_(output) {
  auto* block = static_cast<uint8_t*>(av_malloc(kBlockBytes));
  if (block != nullptr) {
    context_ = avio_alloc_context(block, kBlockBytes, 1, this, nullptr, &WriteBytes,
                                  file_.CanSeek() ? &SeekTo : nullptr);
  }
  if (context_ == nullptr) {
    av_free(block);
    throw std::bad_alloc();
  }
}

ContainerOutput::~ContainerOutput() {
  av_freep(&context_->buffer);
  avio_context_free(&context_);
}

void ContainerOutput::Check() const {
  if (failure_) std::rethrow_exception(failure_);
}

void ContainerOutput::Finish() {
  avio_flush(context_);
  Check();
  file_.Finish();
}

int ContainerOutput::WriteBytes(void* self, uint8_t* bytes, int size) {
  auto& output = *static_cast<ContainerOutput*>(self);
  const auto write = [&] { output.file_.Write(bytes, static_cast<size_t>(size)); };
  return output.Guard(write) ? size : AVERROR(EIO);
}

int64_t ContainerOutput::SeekTo(void* self, int64_t offset, int whence) {
  auto& output = *static_cast<ContainerOutput*>(self);
  if ((whence & AVSEEK_SIZE) != 0) return output.file_.Size();
  if (whence != SEEK_SET) return AVERROR(EINVAL);
  return output.Guard([&] { output.file_.Seek(offset); }) ? offset : AVERROR(EIO);
}

template <typename Step>
bool ContainerOutput::Guard(Step step) {
  if (failure_) return false;
  try {
    step();
  } catch (...) {
    failure_ = std::current_exception();
  }
  return failure_ == nullptr;
}

}  // namespace kelto::host
