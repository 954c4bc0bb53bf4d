#include "adapters/openfx/frame_store.h"

#include <algorithm>
#include <mutex>
#include <vector>

namespace kelto::openfx {
namespace {

/// As many as render threads commonly work side by side; photographs are shared between them.
constexpr size_t kMostIdle = 8;

struct IdleMaker {
  frei0r::Role role;
  uint32_t width, height;
  std::unique_ptr<FrameMaker> maker;
};

struct Store {
  std::mutex mutex;
  std::vector<IdleMaker> idle;  ///< the one used last at the end
};

Store& TheStore() {
  static auto& store = *new Store;  // outlives render threads that outlive exit()
  return store;
}

}  // namespace

LentMaker::LentMaker(frei0r::Role role, uint32_t width, uint32_t height)
    : role_(role), width_(width), height_(height) {
  Store& store = TheStore();
  {
    const std::lock_guard lock(store.mutex);
    store.idle.reserve(kMostIdle + 1);  // so that giving back needs no memory
    const auto found =
        std::find_if(store.idle.rbegin(), store.idle.rend(), [&](const IdleMaker& entry) {
          return entry.role == role && entry.width == width && entry.height == height;
        });
    if (found != store.idle.rend()) {
      maker_ = std::move(found->maker);
      store.idle.erase(std::next(found).base());
    }
  }
  if (!maker_) {
    maker_ = std::make_unique<FrameMaker>(role, width, height, width, frei0r::FrameClock());
  }
}

LentMaker::~LentMaker() {
  std::unique_ptr<FrameMaker> oldest;  // ends outside the lock
  Store& store = TheStore();
  const std::lock_guard lock(store.mutex);
  if (store.idle.size() >= kMostIdle) {
    oldest = std::move(store.idle.front().maker);
    store.idle.erase(store.idle.begin());
  }
  store.idle.push_back({role_, width_, height_, std::move(maker_)});
}

void EmptyFrameStore() {
  std::vector<IdleMaker> idle;
  idle.reserve(kMostIdle + 1);  // the store's from now on
  Store& store = TheStore();
  const std::lock_guard lock(store.mutex);
  idle.swap(store.idle);
}

}  // namespace kelto::openfx
