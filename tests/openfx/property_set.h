// Properties as a strict host keeps them: names, types and dimensions are known beforehand, and
// every use of another one is noted as a fault of the plug-in.
#pragma once

#include <map>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/openfx.h"

namespace kelto::test {

/// What a plug-in did that a host need not put up with.
class Faults {
 public:
  void Note(const std::string& fault) {
    const std::lock_guard lock(mutex_);
    faults_.push_back(fault);
  }
  std::vector<std::string> Taken() {
    const std::lock_guard lock(mutex_);
    return std::exchange(faults_, {});
  }

 private:
  std::mutex mutex_;
  std::vector<std::string> faults_;
};
Faults& TheFaults();

/// Who is at work: the plug-in while it is called, and the host within that while it is called
/// back. A test that takes the plug-in's memory away spares the host.
class AtWork {
 public:
  enum Who { kHost, kPlugin };
  explicit AtWork(Who who) : before_(current) { Set(who); }
  ~AtWork() { Set(before_); }
  AtWork(const AtWork&) = delete;
  /// Called whenever that changes; null: nobody wants to know, as with several threads.
  static inline void (*changed)(Who) = nullptr;

 private:
  static void Set(Who who) {
    current = who;
    if (changed != nullptr) changed(who);
  }
  static inline thread_local Who current = kHost;
  Who before_;
};

class PropertySet {
 public:
  explicit PropertySet(std::string owner);
  ~PropertySet();
  PropertySet(const PropertySet&) = delete;

  /// Makes properties known; `dimension` 0 grows by one index after the other.
  PropertySet& Ints(const char* name, std::vector<int> values, int dimension = -1);
  PropertySet& Doubles(const char* name, std::vector<double> values);
  PropertySet& Strings(const char* name, std::vector<std::string> values, int dimension = -1);
  PropertySet& Pointer(const char* name, void* value);
  /// The same, that a plug-in must not write.
  PropertySet& Seal();

  std::string String(const char* name, size_t index = 0) const;
  int Int(const char* name) const;
  double Double(const char* name, size_t index = 0) const;
  void* PointerOf(const char* name) const;
  std::vector<std::string> AllStrings(const char* name) const;

  ofx::Properties handle() { return reinterpret_cast<ofx::Properties>(this); }
  /// Null, and a fault, for what is not a living set.
  static PropertySet* Of(ofx::Properties handle);

  static const ofx::PropertySuite& Suite();

 private:
  struct Access;
  struct Property {
    char type = 'i';
    int dimension = 1;
    std::vector<int> ints;
    std::vector<double> doubles;
    std::vector<std::string> strings;
    std::vector<void*> pointers;
  };
  Property* Find(const char* name, char type, int index, bool writes);

  std::string owner_;
  std::map<std::string, Property> properties_;
  bool sealed_ = false;
};

}  // namespace kelto::test
