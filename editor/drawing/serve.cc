#include "editor/drawing/serve.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <functional>
#include <new>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "editor/drawing/film_drawing.h"
#include "editor/messages/answers.h"
#include "editor/messages/message_stream.h"
#include "editor/messages/plain_bytes.h"
#include "editor/messages/requests.h"
#include "host/base/error.h"
#include "host/effect/deep_photo.h"
#include "host/effect/module_file.h"
#include "host/film/sound_peaks.h"
#include "host/plan/default_plan.h"
#include "host/project/project_file.h"
#include "host/sandbox/sandbox.h"

namespace kelto::editor {
namespace {

/// Pixels of a photo that the editor shows: 128 MB.
constexpr int64_t kPhotoPixels = 32'000'000;
/// Pixels that show all of a photo at once on most screens.
constexpr int64_t kScreenPixels = 1'200'000;

void WriteAll(int out, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(out, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) throw host::Error("the editor: " + std::generic_category().message(errno));
    bytes.remove_prefix(static_cast<size_t>(written));
  }
}

class Server {
 public:
  Server(std::string module, int out) : module_(std::move(module)), out_(out) {}

  void Answer(const StreamMessage& request) {
    try {
      switch (request.kind) {
        case MessageKind::kPlan:
          return TakePlan(request.body);
        case MessageKind::kDraw:
          return SendFrame(DrawRequestOf(request.body));
        case MessageKind::kWay:
          return Send(MessageKind::kWay, BodyOf(Film().Way(FromBytes<int32_t>(request.body))));
        case MessageKind::kPhoto:
          return SendPhoto(FromBytes<PhotoRequest>(request.body).quickly != 0);
        case MessageKind::kSize:
          return SendSizes(TextsOf(request.body));
        case MessageKind::kDepth:
          return SendDepths(TextsOf(request.body));
        case MessageKind::kThumbnail:
          return SendThumbnail(ThumbnailRequestOf(request.body));
        case MessageKind::kSound:
          return SendSound(request.body);
        default:
          throw host::Error("the editor asked for what is no request");
      }
    } catch (const BrokenLine&) {
      throw;
    } catch (const std::bad_alloc&) {
      Send(MessageKind::kFailed, "there is not enough memory");
    } catch (const host::Error& error) {
      Send(MessageKind::kFailed, error.what());
    }
  }

 private:
  /// The editor has gone.
  class BrokenLine : public host::Error {
   public:
    using host::Error::Error;
  };

  FilmDrawing& Film() {
    if (!fault_.empty()) throw host::Error(fault_);
    if (!film_) throw host::Error("there is no film yet");
    return *film_;
  }

  /// What is wrong with a plan is the answer to what is asked of it.
  void TakePlan(const std::string& text) {
    fault_.clear();
    try {
      ReadPlan(text);
    } catch (const host::Error& error) {
      fault_ = error.what();
    }
  }

  void ReadPlan(const std::string& body) {
    const PlanRequest request = PlanRequestOf(body);
    const auto planOf = [](const std::string& text) {
      return host::ParseProject(text, "/film.json");
    };
    const host::RenderPlan plan = planOf(request.film);
    FadesAround fades;
    if (!request.before.empty()) fades.before = planOf(request.before);
    if (!request.after.empty()) fades.after = planOf(request.after);
    fades.in = request.numbers.in;
    fades.out = request.numbers.out;
    fades.dip = request.numbers.dip != 0;
    fades.title = request.title;
    fades.titleFrames = request.numbers.titleFrames;
    std::vector<std::string> files = {plan.photo, plan.over};
    for (const auto& other : {fades.before, fades.after}) {
      if (other) files.push_back(other->photo);
    }
    Begin(plan, files);
    std::optional<bool> deep;
    if (request.numbers.deep >= 0) deep = request.numbers.deep != 0;
    film_->SetPlan(plan, fades, deep);
  }

  /// Opens the film, which is of these files from now on.
  void Begin(const host::RenderPlan& plan, const std::vector<std::string>& files) {
    if (!soundFile_.empty()) throw host::Error("the preview cannot open another file");
    if (!film_) {
      host::SandboxAccess access{host::ModuleFolders(module_), {}};
      access.reads.insert(access.reads.end(), files.begin(), files.end());
      host::EnterSandbox(access);
      film_.emplace(module_, plan);
      files_ = files;
    } else if (files != files_) {
      throw host::Error("the preview cannot open another photo");
    }
  }

  void SendThumbnail(const ThumbnailRequest& request) {
    host::RenderPlan plan = host::DefaultPlan(request.photo);
    plan.format.size = request.size;
    Begin(plan, {plan.photo});
    film_->SetPlan(film_->Filled(plan));
    SendFrame({0, request.size, 1.0});
  }

  void SendFrame(const DrawRequest& request) {
    const host::FrameView frame = Film().Draw(request.frame, request.size, request.quality);
    const size_t rowBytes = static_cast<size_t>(frame.size.width) * 4;
    std::string message = HeadOf(MessageKind::kFrame, {request.frame, frame.size});
    message.reserve(message.size() + rowBytes * frame.size.height);
    for (int32_t row = 0; row < frame.size.height; ++row) {
      message.append(reinterpret_cast<const char*>(frame.Row(row)), rowBytes);
    }
    // At once: the editor wakes up for each write, which takes longer than drawing the frame.
    Write(message);
  }

  void SendPhoto(bool quickly) {
    PictureHead head;
    const std::vector<uint8_t> pixels =
        quickly ? Film().QuickPhotoPixels(kScreenPixels, kPhotoPixels, head.size)
                : Film().PhotoPixels(kPhotoPixels, head.size);
    const PixelSize photo = Film().PhotoSize();
    const int64_t all = int64_t{photo.width} * photo.height;
    const int64_t shown = int64_t{head.size.width} * head.size.height;
    head.frame = quickly && shown < std::min(all, kPhotoPixels) / 2 ? 1 : 0;
    Write(HeadOf(MessageKind::kPhoto, head));
    Write({reinterpret_cast<const char*>(pixels.data()), pixels.size()});
  }

  /// For an editor that has no film of the photos yet.
  void SendSizes(const std::vector<std::string>& paths) {
    SendOfEach(paths, [this](const std::string& path) {
      const host::Photo photo = host::OpenPhoto(path);
      Send(MessageKind::kSize, BodyOf(PixelSize{photo.width, photo.height}));
    });
  }

  void SendDepths(const std::vector<std::string>& paths) {
    SendOfEach(paths, [this](const std::string& path) {
      host::Photo photo = host::OpenPhoto(path);
      host::FindDepth(photo);
      // Which may take decoding all of it.
      const bool deep = photo.bits > 8 || host::IsTransparent(photo);
      Send(MessageKind::kDepth, BytesOf(PhotoDepth{deep ? 1 : 0, photo.deepMemory > 0 ? 1 : 0}));
    });
  }

  /// Answers `send`s for each, or why it cannot be read. This run opens nothing else.
  void SendOfEach(const std::vector<std::string>& paths,
                  const std::function<void(const std::string& path)>& send) {
    host::EnterSandbox({paths, {}});
    for (const std::string& path : paths) {
      try {
        host::CheckNotReplaced(path);
        send(path);
      } catch (const BrokenLine&) {
        throw;
      } catch (const host::Error& error) {
        Send(MessageKind::kFailed, error.what());
      }
    }
  }

  void SendSound(const std::string& file) {
    if (film_ || !soundFile_.empty()) throw host::Error("the preview cannot open another file");
    soundFile_ = file;
    host::EnterSandbox({{file}, {}});
    host::CheckNotReplaced(file);
    constexpr double kLongest = 6 * 3600.0;
    Send(MessageKind::kSound, BodyOf(host::SoundPeaks(file, kPeaksPerSecond, kLongest)));
  }

  /// What goes ahead of the pixels.
  static std::string HeadOf(MessageKind kind, const PictureHead& head) {
    const size_t pixels = static_cast<size_t>(head.size.width) * head.size.height;
    return MessageHead(kind, sizeof head + pixels * 4) + BytesOf(head);
  }
  void Send(MessageKind kind, const std::string& body) {
    Write(MessageHead(kind, body.size()) + body);
  }
  void Write(std::string_view bytes) {
    try {
      WriteAll(out_, bytes);
    } catch (const host::Error& error) {
      throw BrokenLine(error.what());
    }
  }

  std::string module_;
  int out_;
  std::string soundFile_, fault_;
  std::vector<std::string> files_;  ///< of the film
  std::optional<FilmDrawing> film_;
};

}  // namespace

void ServeDrawing(const std::string& module, int in, int out) {
  Server server(module, out);
  MessageReader reader;
  std::array<char, 65536> bytes;
  for (;;) {
    const ssize_t count = read(in, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return;
    reader.Add({bytes.data(), static_cast<size_t>(count)});
    while (const auto request = reader.Next()) server.Answer(*request);
  }
}

}  // namespace kelto::editor
