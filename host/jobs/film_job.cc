#include "host/jobs/film_job.h"

#include <algorithm>
#include <memory>

#include "host/base/error.h"
#include "host/effect/photo.h"
#include "host/files/output_file.h"
#include "host/film/codecs.h"
#include "host/film/depth.h"
#include "host/jobs/deep_choice.h"
#include "host/jobs/picture_memory.h"
#include "host/sources/photos.h"
#include "host/terminal/interrupt.h"
#include "host/terminal/terminal.h"

#if defined(__linux__)
#include <sched.h>
#endif

namespace kelto::host {
namespace {

/// Fewer do not pay for a worker's loading of the photograph.
constexpr int32_t kFramesPerWorker = 25;

}  // namespace

int32_t CoreCount() {
#if defined(__linux__)
  cpu_set_t cores;
  CPU_ZERO(&cores);
  if (sched_getaffinity(0, sizeof cores, &cores) == 0) return std::max(1, CPU_COUNT(&cores));
#endif
  return 1;
}

int32_t UsualWorkers(int32_t frames) {
  return std::clamp(frames / kFramesPerWorker, 1, CoreCount());
}

std::string SoundFor(const RenderPlan& plan, const FilmKind& kind) {
  return plan.audio == plan.over && !IsContainer(kind.name) ? "" : plan.audio;
}

void CheckFilm(const FilmKind& kind, const FilmRequest& request,
               const std::vector<std::string>& sources) {
  CheckRequest(kind, request);
  if (request.output == kStandardOutput && StandardOutputIsTerminal()) {
    throw UsageError("-o -: will not write a film to the terminal; send it to a program or file");
  }
  if (WouldReplaceAny(kind, request, sources)) {
    throw UsageError(request.output + ": is what the film is made of; give the film another name");
  }
}

void CheckJob(FilmJob& job) {
  const RenderPlan& plan = job.scene.plan;
  CheckFilm(*job.kind, job.request, {plan.photo, plan.over, job.request.audio});
  CheckDepth(*job.kind, {&plan, 1}, job.depth, job.request);
  const InterruptsEndAtOnce whileItOpens;
  Photo photo = CheckPhoto(PhotoName(plan));
  ChooseDepth(*job.kind, {&plan, 1}, {&photo, 1}, job.depth, job.request);
  if (job.request.deep) photo.memory = photo.deepMemory;
  job.workers = WorkersFor(photo, job.workers);
  job.memory = photo.memory * static_cast<uint64_t>(job.workers);
}

void MakeFilm(const FilmJob& job, const FrameDone& done) {
  const PixelLayout layout = FrameLayout(*job.kind, job.request);
  SceneList list{job.module, layout, {job.scene}};
  // Workers before the encoder, which has threads.
  const std::unique_ptr<FrameSource> frames = RenderInWorkers(std::move(list), job.workers);
  const std::unique_ptr<FrameSink> film = OpenFilm(*job.kind, job.request);
  const int32_t count = job.scene.part.Count();
  EndFades ends(job.ends, job.request.format, layout, count);
  for (int32_t number = 0; number < count; ++number) {
    const FrameView frame = ends.Of(frames->Next(), number);
    film->Write(frame);
    done(number + 1, frame);
  }
  film->Finish();
}

}  // namespace kelto::host
