// Changes to where a film looks, and when.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "editor/document/document.h"
#include "framing/pixel_size.h"
#include "host/options/photo_rect.h"
#include "host/plan/tour.h"

namespace kelto::editor {

/// The parts of the photo that the film's views show, in order; empty for a film of keys. Throws
/// Error for a view that the effect cannot show.
std::vector<host::PhotoRect> PartsOf(const host::RenderPlan& plan, PixelSize photo);

/// The film's views with the times that they really take, in seconds: those given, scaled to the
/// film's length, or evenly spread where none are given.
std::vector<host::TourView> TimedTour(const host::RenderPlan& plan);

/// The document with this list of views. With `timed`, the film is as long as the list says.
Document WithTour(const Document& document, const std::vector<host::TourView>& tour, bool timed);

/// View `index` shows `part`.
Document WithPart(const Document& document, size_t index, const host::PhotoRect& part);

/// One more view, behind view `after`; it and the way to it take two seconds.
Document WithStopAfter(const Document& document, size_t after, const host::PhotoRect& part);

/// Without view `index`; the last one cannot be removed. The film keeps its length.
Document WithoutStop(const Document& document, size_t index);

/// (hold, go) of each view, in seconds. The film is as long as they say.
Document WithTimes(const Document& document, const std::vector<std::pair<double, double>>& times);

/// The first view's and the last one's places are exchanged.
Document WithEndsSwapped(const Document& document);

/// The film backwards.
Document WithTourReversed(const Document& document);

/// A move by name, as `kelto render --move` takes it, in place of all views; the film keeps its
/// length. Throws Error.
Document WithMove(const Document& document, PixelSize photo, const std::string& move);

/// The parts of the photo as first and last view.
Document WithEnds(const Document& document, const host::PhotoRect& from, const host::PhotoRect& to);

/// Two views or more in place of all; the film keeps its length.
Document WithViewsOf(const Document& document, const std::vector<host::TourView>& views);

/// How the way behind view `index` is left and how the next is reached, by the project's words
/// ("linear", "ease", "constant", "hold"); an empty word leaves it to the usual.
Document WithEasing(const Document& document, size_t index, const std::string& out,
                    const std::string& in);

/// A film of keys as one of views: one for each moment at which zoom or position has a key. Throws
/// Error, "views[N].view: ...", where the keys look beside the photo.
Document WithKeysAsViews(const Document& document, PixelSize photo);

}  // namespace kelto::editor
