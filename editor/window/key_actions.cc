// The keys of a film that has no list of views: dragged, typed, added, copied and removed.
#include <QtWidgets>
#include <algorithm>

#include "editor/document/settings.h"
#include "editor/rules/key_drag.h"
#include "editor/window/key_panel.h"
#include "editor/window/main_window.h"
#include "editor/window/scenes.h"

namespace kelto::editor {

void MainWindow::ConnectKeys() {
  connect(timeline_, &Timeline::KeysMoved, this,
          [this](size_t lane, const std::vector<double>& times, Gesture gesture) {
            ChangeKeys(
                lane, tr("Move Keys"),
                [&](std::vector<host::SettingKey>& keys) {
                  for (size_t i = 0; i < std::min(keys.size(), times.size()); ++i) {
                    keys[i].time = times[i];
                  }
                },
                gesture);
          });
  connect(timeline_, &Timeline::KeyAdded, this, [this](size_t lane, double time) {
    size_t place = 0;
    ChangeKeys(lane, tr("Add Key"),
               [&](std::vector<host::SettingKey>& keys) { place = AddKey(keys, time); });
    // Its value is what comes next.
    timeline_->SelectKey({lane, place});
  });
  connect(timeline_, &Timeline::KeysRemoved, this, [this](const std::vector<KeyPlace>& places) {
    const Gesture gesture = NewGesture();
    for (auto place = places.rbegin(); place != places.rend(); ++place) {
      ChangeKeys(place->lane, tr("Remove Keys"),
                 [&](std::vector<host::SettingKey>& keys) {
                   if (keys.size() > 2)
                     keys.erase(keys.begin() + static_cast<ptrdiff_t>(place->key));
                 },
                 {gesture.id, place + 1 == places.rend()});
    }
  });
  connect(timeline_, &Timeline::KeysCopied, this,
          [this](const std::vector<KeyPlace>& places, double later) {
            const Gesture gesture = NewGesture();
            for (const KeyPlace& place : places) {
              ChangeKeys(place.lane, tr("Copy Keys"),
                         [&](std::vector<host::SettingKey>& keys) {
                           host::SettingKey copy = keys.at(place.key);
                           copy.time += later;
                           const auto after =
                               std::find_if(keys.begin(), keys.end(),
                                            [&](const auto& key) { return key.time >= copy.time; });
                           if (after == keys.end() || after->time > copy.time)
                             keys.insert(after, copy);
                         },
                         {gesture.id, false});
            }
          });

  connect(timeline_, &Timeline::KeysSelected, this, [this] {
    if (session_.IsOpen()) keyPanel_->Show(session_.Plan(), timeline_->SelectedKeys());
  });
  connect(keyPanel_, &KeyPanel::TimeTyped, this, [this](const KeyPlace& place, double seconds) {
    const double frames = session_.Plan().frames;
    const double time = seconds * session_.Plan().format.rate.PerSecond() / frames;
    ChangeKeys(place.lane, tr("Move Keys"), [&](std::vector<host::SettingKey>& keys) {
      std::vector<double> times;
      times.reserve(keys.size());
      for (const host::SettingKey& key : keys) times.push_back(key.time);
      const std::array moved = {place.key};
      times = KeysMoved(times, moved, time - times.at(place.key), 1.0 / frames);
      keys[place.key].time = times[place.key];
    });
  });
  connect(keyPanel_, &KeyPanel::ValueTyped, this,
          [this](const KeyPlace& place, const host::SettingValue& value) {
            ChangeKeys(place.lane, tr("Change Key"), [&](std::vector<host::SettingKey>& keys) {
              keys.at(place.key).value = value;
            });
          });
}

void MainWindow::ChangeKeys(size_t lane, const QString& name,
                            const std::function<void(std::vector<host::SettingKey>&)>& change,
                            Gesture gesture) {
  const host::Setting* setting = SettingOfLane(session_.Plan(), lane);
  if (setting == nullptr) return;
  Change(
      name,
      [&](const Document& d) {
        host::Setting changed = *setting;
        change(changed.keys);
        return WithKeys(d, changed);
      },
      gesture);
  // What could not be changed is shown as it is.
  keyPanel_->Show(session_.Plan(), timeline_->SelectedKeys());
}

}  // namespace kelto::editor
