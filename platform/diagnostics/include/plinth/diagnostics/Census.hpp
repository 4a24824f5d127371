// How many elements there are, by class: in a model and in the process.
// Ownership: plain numbers; classes belong to the metamodel.
// Thread rule: of a model, its thread; of the process, while no other thread creates or destroys elements or models.
// The counting itself is safe from any thread.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "plinth/Model.hpp"
#include "plinth/meta/Type.hpp"

namespace plinth {

struct TESSEL_EXPORT Census {
  struct Row {
    meta::ClassImpl const* metaClass;
    std::size_t count;
  };
  /// Live elements by exact class, in the order of the classes' names; none with a count of zero.
  std::vector<Row> classes;
  std::size_t models = 0;
  /// Objects that no model counts as its elements: proxies, and dead elements that a handle keeps in memory. Of the
  /// process only; 0 in the census of a model.
  std::size_t others = 0;

  std::size_t elements() const noexcept;
  std::size_t countOf(meta::ClassImpl const& metaClass) const noexcept;
  /// A line for each class, and for models and others where there are any.
  std::string text() const;
};

/// The live elements of the model. O(classes).
[[nodiscard]] TESSEL_EXPORT Census census(Model const& model);

/// Everything there is in the process except the metamodel itself. O(models * classes).
[[nodiscard]] TESSEL_EXPORT Census census();

/// What `after` has beyond `before`, class by class.
TESSEL_EXPORT Census surplus(Census const& before, Census const& after);

}  // namespace plinth
