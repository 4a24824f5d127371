// Copy operations for the values that script objects own.
// Thread rule: pure functions.
#pragma once

namespace corvid::factory {

/// Values whose copy constructor makes the copy.
struct DataTypePolicy {};

template <class Policy>
struct Marshaler;

template <>
struct Marshaler<DataTypePolicy> {
  /// A copier for BindingRegistry::announceWithoutStoring.
  template <class T>
  static void* copier(void const* native) {
    return new T(*static_cast<T const*>(native));
  }
};

}  // namespace corvid::factory
