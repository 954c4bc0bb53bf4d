#include "tests/openfx/property_set.h"

#include <type_traits>

namespace kelto::test {
namespace {

std::mutex& LivingMutex() {
  static auto& mutex = *new std::mutex;
  return mutex;
}

/// Properties that hosts are known to leave out: asking for one is no fault.
bool MayBeMissing(const std::string& name) {
  return name == ofx::prop::kRenderScale || name == ofx::prop::kFieldToRender ||
         name == ofx::prop::kImageRegionOfDefinition;
}

std::set<PropertySet*>& Living() {
  static auto& living = *new std::set<PropertySet*>;
  return living;
}

}  // namespace

Faults& TheFaults() {
  static auto& faults = *new Faults;
  return faults;
}

PropertySet::PropertySet(std::string owner) : owner_(std::move(owner)) {
  const std::lock_guard lock(LivingMutex());
  Living().insert(this);
}

PropertySet::~PropertySet() {
  const std::lock_guard lock(LivingMutex());
  Living().erase(this);
}

PropertySet* PropertySet::Of(ofx::Properties handle) {
  auto* set = reinterpret_cast<PropertySet*>(handle);
  const std::lock_guard lock(LivingMutex());
  if (Living().contains(set)) return set;
  TheFaults().Note("a property set that is none");
  return nullptr;
}

PropertySet& PropertySet::Ints(const char* name, std::vector<int> values, int dimension) {
  Property& property = properties_[name];
  property.type = 'i';
  property.dimension = dimension < 0 ? static_cast<int>(values.size()) : dimension;
  property.ints = std::move(values);
  return *this;
}

PropertySet& PropertySet::Doubles(const char* name, std::vector<double> values) {
  Property& property = properties_[name];
  property.type = 'd';
  property.dimension = static_cast<int>(values.size());
  property.doubles = std::move(values);
  return *this;
}

PropertySet& PropertySet::Strings(const char* name, std::vector<std::string> values,
                                  int dimension) {
  Property& property = properties_[name];
  property.type = 's';
  property.dimension = dimension < 0 ? static_cast<int>(values.size()) : dimension;
  property.strings = std::move(values);
  return *this;
}

PropertySet& PropertySet::Pointer(const char* name, void* value) {
  Property& property = properties_[name];
  property.type = 'p';
  property.pointers = {value};
  return *this;
}

PropertySet& PropertySet::Seal() {
  sealed_ = true;
  return *this;
}

std::string PropertySet::String(const char* name, size_t index) const {
  return properties_.at(name).strings.at(index);
}
int PropertySet::Int(const char* name) const { return properties_.at(name).ints.at(0); }
double PropertySet::Double(const char* name, size_t index) const {
  return properties_.at(name).doubles.at(index);
}
void* PropertySet::PointerOf(const char* name) const { return properties_.at(name).pointers.at(0); }
std::vector<std::string> PropertySet::AllStrings(const char* name) const {
  return properties_.at(name).strings;
}

PropertySet::Property* PropertySet::Find(const char* name, char type, int index, bool writes) {
  const auto fault = [&](const char* what) {
    TheFaults().Note(owner_ + ": " + (name == nullptr ? "null" : name) + ": " + what);
    return nullptr;
  };
  if (name == nullptr) return fault("no name");
  const auto found = properties_.find(name);
  if (found == properties_.end()) {
    return !writes && MayBeMissing(name) ? nullptr : fault("unknown property");
  }
  Property& property = found->second;
  if (property.type != type) return fault("another type");
  if (writes && sealed_) return fault("written, but only to be read");
  const size_t size = property.ints.size() + property.doubles.size() + property.strings.size() +
                      property.pointers.size();
  const auto end = static_cast<int>(size) + (writes && property.dimension == 0 ? 1 : 0);
  if (index < 0 || index >= end) return fault("no such index");
  return &property;
}

/// The suite's functions, by type.
struct PropertySet::Access {
  template <auto member, char type, typename Value, typename Given>
  static ofx::Status Set(ofx::Properties handle, const char* name, int index, Given value) {
    const AtWork host(AtWork::kHost);
    PropertySet* set = Of(handle);
    if (set == nullptr) return ofx::kBadHandle;
    Property* property = set->Find(name, type, index, true);
    if (property == nullptr) return ofx::kUnknown;
    auto& values = property->*member;
    if (static_cast<size_t>(index) == values.size()) values.emplace_back();
    values[static_cast<size_t>(index)] = Value(value);
    return ofx::kOk;
  }

  template <auto member, char type, typename Value>
  static ofx::Status Get(ofx::Properties handle, const char* name, int index, Value* value) {
    const AtWork host(AtWork::kHost);
    PropertySet* set = Of(handle);
    if (set == nullptr) return ofx::kBadHandle;
    Property* property = set->Find(name, type, index, false);
    if (property == nullptr) return ofx::kUnknown;
    auto& found = (property->*member)[static_cast<size_t>(index)];
    if constexpr (type == 's') {
      *value = found.data();
    } else {
      *value = found;
    }
    return ofx::kOk;
  }

  template <auto one, typename Value>
  static ofx::Status Each(ofx::Properties handle, const char* name, int count, Value* values) {
    for (int i = 0; i < count; ++i) {
      ofx::Status status = 0;
      if constexpr (std::is_invocable_v<decltype(one), ofx::Properties, const char*, int, Value*>) {
        status = one(handle, name, i, &values[i]);
      } else {
        status = one(handle, name, i, values[i]);
      }
      if (status != ofx::kOk) return status;
    }
    return ofx::kOk;
  }

  static ofx::Status Reset(ofx::Properties, const char* name) {
    const AtWork host(AtWork::kHost);
    TheFaults().Note(std::string("reset of ") + name);
    return ofx::kUnknown;
  }

  static ofx::Status Dimension(ofx::Properties handle, const char* name, int* count) {
    const AtWork host(AtWork::kHost);
    PropertySet* set = Of(handle);
    if (set == nullptr) return ofx::kBadHandle;
    const auto found = set->properties_.find(name);
    if (found == set->properties_.end()) return ofx::kUnknown;
    const Property& property = found->second;
    *count = static_cast<int>(property.ints.size() + property.doubles.size() +
                              property.strings.size() + property.pointers.size());
    return ofx::kOk;
  }

  static constexpr auto setPointer = Set<&Property::pointers, 'p', void*, void*>;
  static constexpr auto setString = Set<&Property::strings, 's', std::string, const char*>;
  static constexpr auto setDouble = Set<&Property::doubles, 'd', double, double>;
  static constexpr auto setInt = Set<&Property::ints, 'i', int, int>;
  static constexpr auto getPointer = Get<&Property::pointers, 'p', void*>;
  static constexpr auto getString = Get<&Property::strings, 's', char*>;
  static constexpr auto getDouble = Get<&Property::doubles, 'd', double>;
  static constexpr auto getInt = Get<&Property::ints, 'i', int>;
};

const ofx::PropertySuite& PropertySet::Suite() {
  static const ofx::PropertySuite suite{Access::setPointer,
                                        Access::setString,
                                        Access::setDouble,
                                        Access::setInt,
                                        Access::Each<Access::setPointer, void* const>,
                                        Access::Each<Access::setString, const char* const>,
                                        Access::Each<Access::setDouble, const double>,
                                        Access::Each<Access::setInt, const int>,
                                        Access::getPointer,
                                        Access::getString,
                                        Access::getDouble,
                                        Access::getInt,
                                        Access::Each<Access::getPointer, void*>,
                                        Access::Each<Access::getString, char*>,
                                        Access::Each<Access::getDouble, double>,
                                        Access::Each<Access::getInt, int>,
                                        Access::Reset,
                                        Access::Dimension};
  return suite;
}

}  // namespace kelto::test
