// The whole state of a model as canonical text, to compare a model with itself at another time, or with a copy.
//
// Elements stand in the order of their UUIDs, each with its container link and the value of every property that is not
// derived. Two models have equal fingerprints when they hold the same elements in the same state; how they came to it,
// the order in sets and the model's name don't matter. Ownership: a fingerprint holds texts and refers to the metamodel
// only; it outlives its model. Thread rule: taken on the model's thread, a plain value afterwards.
#pragma once

#include <boost/optional.hpp>
#include <boost/uuid/uuid.hpp>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

#include "plinth/Model.hpp"
#include "plinth/meta/Type.hpp"

namespace plinth {

class TESSEL_EXPORT Fingerprint {
 public:
  /// Where two fingerprints part.
  struct TESSEL_EXPORT Difference {
    std::string path;      ///< of the element, see ElementPath.hpp
    std::string property;  ///< empty when only one side has the element; "container" for the container link
    std::string left;      ///< the value there; "absent" for no element
    std::string right;

    std::string text() const;
  };

  /// Resolves no proxy and changes nothing. A reference is written as the target's UUID, with the model's name in
  /// quotes where that is another one; a proxy as its id, each part in quotes; a dead target as dead; values as
  /// `valueText` says. O(n log n) in the model's elements, otherwise linear; without recursion.
  static Fingerprint of(Model const& model);

  /// All of it, an element a paragraph. Linear.
  std::string text() const;
  /// Of the text: equal fingerprints have equal ones, on every run of one build. Linear.
  std::uint64_t hash() const;
  std::size_t elementCount() const noexcept { return m_entries.size(); }

  friend TESSEL_EXPORT bool operator==(Fingerprint const& left, Fingerprint const& right);
  friend bool operator!=(Fingerprint const& left, Fingerprint const& right) { return !(left == right); }
  /// The first difference in canonical order, or none. Linear.
  friend TESSEL_EXPORT boost::optional<Difference> diff(Fingerprint const& left, Fingerprint const& right);

 private:
  friend class FingerprintTaker;

  struct Entry {
    boost::uuids::uuid uuid{};
    boost::uuids::uuid container{};  ///< nil: none
    meta::ClassImpl const* metaClass = nullptr;
    std::string step;                 ///< from the container, as in a path
    std::vector<std::string> values;  ///< of the class's stored properties, in order

    std::string containerText() const;
    bool operator==(Entry const& other) const;
  };

  std::string pathOf(Entry const& entry) const;
  Entry const* find(boost::uuids::uuid const& uuid) const;
  static boost::optional<Difference> compare(Fingerprint const& fingerprint, Entry const& left, Entry const& right);

  std::vector<Entry> m_entries;  ///< by UUID
};

[[nodiscard]] TESSEL_EXPORT boost::optional<Fingerprint::Difference> diff(Fingerprint const& left,
                                                                          Fingerprint const& right);
TESSEL_EXPORT std::ostream& operator<<(std::ostream& stream, Fingerprint::Difference const& difference);

}  // namespace plinth
