// What element collections and value collections share: the field, which is made when somebody first asks for it, and
// the old value, which is the collection's journal. Ownership: the element owns the collection. Thread rule: the
// model's thread.
#pragma once

#include <memory>

#include "plinth/AbstractOwnedCollection.hpp"
#include "tessel_config_datamodel/frame/FieldKind.hpp"
#include "tessel_config_datamodel/frame/Fields.hpp"

namespace tessel::frame {

class TESSEL_EXPORT CollectionKind : public PropertyKind {
 public:
  /// Whether the collection is there and not empty.
  bool has(Element const& element, Row const& row) const override;
  Slot slot() const noexcept final { return {sizeof(plinth::OldCollection), alignof(plinth::OldCollection)}; }
  void keepOld(Element const& element, ElementStorage& storage, Row const& row) const final;
  void dropOld(ElementStorage& storage, Row const& row) const noexcept final;
  void moveOld(ElementStorage& from, ElementStorage& to, Row const& row) const noexcept final;
  plinth::Value oldValue(ElementStorage& storage, Row const& row) const final;
  void sealOld(ElementStorage& storage, Row const& row) const noexcept final;
  plinth::AbstractOwnedCollection* collection(Element const& element, Row const& row) const final;

  /// The collection of the row, made if it is not there yet.
  plinth::AbstractOwnedCollection& requireAny(Element& element, Row const& row) const;

 protected:
  ~CollectionKind() = default;
  virtual CollectionField make(Element& element, Row const& row) const = 0;
};

}  // namespace tessel::frame
