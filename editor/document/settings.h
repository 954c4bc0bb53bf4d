// Changes to all that a project says besides its views.
#pragma once

#include <optional>
#include <string>

#include "editor/document/document.h"
#include "host/base/film_format.h"
#include "host/options/motion_law.h"
#include "host/plan/setting.h"

namespace kelto::editor {

Document WithMotion(const Document& document, host::MotionLaw law);
Document WithSize(const Document& document, int32_t width, int32_t height);
/// Frames a second, as `--fps` takes them; the film keeps its seconds.
Document WithRate(const Document& document, const std::string& rate);
Document WithFields(const Document& document, host::FieldOrder fields);
/// Seconds of the whole film, to which its views' times are scaled.
Document WithLength(const Document& document, double seconds);
/// One value of a parameter, by its key and its list's text.
Document WithParameter(const Document& document, const std::string& parameter,
                       const host::SettingValue& value);
/// All keys of a parameter, in order of time.
Document WithKeys(const Document& document, const host::Setting& setting);
/// Files by their paths; empty for none.
Document WithAudio(const Document& document, const std::string& path);
Document WithVideo(const Document& document, const std::string& path);
/// Words over the picture, as `--caption` takes them; empty for none.
Document WithCaption(const Document& document, const std::string& text);

Document WithPhoto(const Document& document, const std::string& path);

}  // namespace kelto::editor
