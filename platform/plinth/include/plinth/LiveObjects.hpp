// What the census of the process counts: the constructors and destructors of models and elements tell it here.
// Thread rule: safe from any thread.
#pragma once

#include <cstddef>
#include <functional>

#include "plinth/ModelFwd.hpp"

namespace plinth::detail {

/// An object is there from `add` to `remove`; each is one relaxed addition to a counter.
class LiveObjects {
 public:
  static void addElement() noexcept;
  static void removeElement() noexcept;
  /// An object of the metamodel, which is counted as an element too.
  static void addMetaElement() noexcept;
  static void removeMetaElement() noexcept;
  /// Takes a lock. Raises std::bad_alloc.
  static void enter(ModelImpl& model);
  static void leave(ModelImpl& model) noexcept;

  /// How many elements there are that are none of the metamodel's.
  static std::size_t elements() noexcept;
  /// Holds a lock meanwhile: no model comes or goes.
  static void forEachModel(std::function<void(ModelImpl const&)> const& visit);
};

}  // namespace plinth::detail
