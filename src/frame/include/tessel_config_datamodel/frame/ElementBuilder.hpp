// The root of every generated builder: takes values and child builders by property, and makes the element.
// Ownership and thread rule: see plinth/Builder.hpp.
#pragma once

#include <initializer_list>
#include <memory>
#include <vector>

#include "plinth/Builder.hpp"
#include "tessel_config_datamodel/frame/PropertyKind.hpp"

namespace tessel::frame {

/// The builder of a single contained child.
class ChildBuilder {
 public:
  ChildBuilder() = default;
  ChildBuilder(ChildBuilder const&) = delete;
  ChildBuilder& operator=(ChildBuilder const&) = delete;
  ~ChildBuilder() { plinth::takeDown(std::move(m_builder)); }
  void set(std::unique_ptr<plinth::ModelElementBuilder> builder) noexcept {
    std::swap(m_builder, builder);
    plinth::takeDown(std::move(builder));
  }
  plinth::ModelElementBuilder* get() const noexcept { return m_builder.get(); }

 private:
  std::unique_ptr<plinth::ModelElementBuilder> m_builder;
};

/// The builders of contained children, in order.
class ChildBuilders {
 public:
  ChildBuilders() = default;
  ChildBuilders(ChildBuilders const&) = delete;
  ChildBuilders& operator=(ChildBuilders const&) = delete;
  ~ChildBuilders() { clear(); }
  void add(std::unique_ptr<plinth::ModelElementBuilder> builder) { m_builders.push_back(std::move(builder)); }
  void clear() noexcept {
    for (auto& builder : m_builders) plinth::takeDown(std::move(builder));
    m_builders.clear();
  }
  std::vector<std::unique_ptr<plinth::ModelElementBuilder>> const& all() const noexcept { return m_builders; }

 private:
  std::vector<std::unique_ptr<plinth::ModelElementBuilder>> m_builders;
};

/// The targets of a many-valued reference.
using ReferenceTargets = std::vector<plinth::ModelElement>;

class TESSEL_EXPORT ElementBuilder : public plinth::ModelElementBuilder {
 public:
  using ModelElementBuilder::setOrAdd;

  plinth::meta::Class const& getMetaClass() const final { return m_table->metaClass(); }
  void setOrAdd(plinth::meta::Property const& property, plinth::Value const& value) final;
  void setOrAdd(plinth::meta::Property const& property, std::unique_ptr<plinth::ModelElementBuilder> child) final;

  /// For the kinds: the property of this index has been given.
  void markSet(unsigned long index) noexcept { mark(index); }
  /// For the kinds: nobody reads this builder after the element is made.
  bool isSpent() const noexcept { return orchestrator() != nullptr && orchestrator()->spendsBuilders(); }

 protected:
  /// With a model, the class's own type stamps are given; without, none is.
  ElementBuilder(ClassTable const& table, plinth::Model const& model);
  explicit ElementBuilder(ClassTable const& table);

  /// Takes the value, or the child builder, for the property and gives its index; -1, with the child left to the
  /// caller, for a property that takes none such.
  long doSetOrAdd(plinth::meta::Property const& property, plinth::Value const& value);
  long doSetOrAdd(plinth::meta::Property const& property, std::unique_ptr<plinth::ModelElementBuilder>& child);
  plinth::ModelElement doCreate(bool deferred, boost::uuids::uuid const& uuid) final;
  void cascadeCreation(plinth::ModelElementImpl& parent, plinth::CascadeSteps& steps) final;
  void attach(plinth::ModelElementImpl& parent, plinth::meta::PropertyImpl& property,
              plinth::ModelElement const& child) final;
  /// Takes a child builder for the property of that index. Raises CannotAddIncompatibleTypes for a class that doesn't
  /// fit, NoSuchProperty for an empty one.
  void takeChild(unsigned long index, std::unique_ptr<plinth::ModelElementBuilder> child);
  /// What a child builder has made, or makes now, in the creation that is running; else an empty handle.
  plinth::ModelElement made(ChildBuilder const& child) const;
  /// Gives the class's own type stamps; the builder's fields must stand.
  void giveStamps();

 private:
  PropertyDescriptor const* rowOf(plinth::meta::Property const& property) const;
  long doSetOrAdd(PropertyDescriptor const& row, std::unique_ptr<plinth::ModelElementBuilder>& child);

  ClassTable const* m_table;
};

/// The field at a row's place in `builder`.
template <class T>
T& builderFieldOf(ElementBuilder& builder, PropertyDescriptor const& row) noexcept {
  return *reinterpret_cast<T*>(reinterpret_cast<std::byte*>(&builder) + row.builder);
}

}  // namespace tessel::frame
