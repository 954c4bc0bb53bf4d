#include "host/frames/caption_letters.h"

#include "host/terminal/terminal.h"

namespace kelto::host {

CaptionLetters::CaptionLetters(const RenderPlan& plan, const std::string& photo, PixelLayout layout)
    : rate_(plan.format.rate),
      letters_(plan.caption.text, LetterPlace::kCaption, plan.format, layout) {
  SetTimes(plan);
  if (letters_.MissingLetters() == 0) return;
  PrintMessage(photo + ": no font on this machine has " +
               std::to_string(letters_.MissingLetters()) +
               " of its caption's letters; install one that has them, such as fonts-noto");
}

void CaptionLetters::SetTimes(const RenderPlan& plan) {
  from_ = plan.caption.from;
  until_ = plan.caption.until > 0 ? plan.caption.until : plan.frames;
}

void CaptionLetters::Over(uint8_t* pixels, ptrdiff_t rowBytes, int32_t number) const {
  constexpr double kField = 0.5;
  const auto at = [&](double frame) { return CaptionOpacity(frame, from_, until_, rate_); };
  letters_.Over(pixels, rowBytes, at(number), at(number + kField));
}

}  // namespace kelto::host
