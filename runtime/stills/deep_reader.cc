#include "runtime/stills/deep_reader.h"

#include "runtime/stills/decoder.h"
#include "runtime/stills/turned_name.h"

namespace kelto::stills {
namespace {

/// Runs an operation; what it throws has no characters that break its line.
template <typename Operation>
void InOneLine(const StillFile& file, const Operation& operation) {
  try {
    operation();
    // What a decoder left out because its file could not be read would be missing in the picture.
    if (file.read_failed()) throw StillError(fnfErr, "the file cannot be read");
  } catch (StillError& error) {
    for (char& c : error.reason) {
      if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) c = '?';
    }
    throw;
  }
}

}  // namespace

struct DeepReader::File {
  explicit File(const TurnedName& turned) : file(turned.path), quarters(turned.quarters) {}
  StillFile file;
  int quarters;
  const Decoder* decoder = nullptr;
  StillInfo info;
};

DeepReader::DeepReader(const std::string& path)
    : file_(std::make_unique<File>(SplitTurnedName(path))) {
  InOneLine(file_->file, [&] {
    file_->decoder = &FindDecoder(file_->file);
    file_->info = file_->decoder->ReadInfo(file_->file);
    Turn(file_->info, file_->quarters);
    CheckSize(file_->info, file_->file, file_->info.deep_format());
  });
  const StillInfo& found = file_->info;
  info_.width = found.upright_width();
  info_.height = found.upright_height();
  info_.bits = found.bits;
  info_.floats = found.floats;
  info_.alpha = found.alpha;
  info_.scratch = found.deep_scratch;
}

DeepReader::~DeepReader() = default;

bool DeepReader::Read(void* pixels, ptrdiff_t rowBytes) {
  bool transparent = false;
  InOneLine(file_->file, [&] {
    const PixelBuffer target{static_cast<uint8_t*>(pixels), rowBytes, file_->info.deep_format(),
                             &transparent};
    file_->decoder->Decode(file_->file, file_->info, target);
  });
  return transparent;
}

}  // namespace kelto::stills
