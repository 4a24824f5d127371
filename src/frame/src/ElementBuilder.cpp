#include "tessel_config_datamodel/frame/ElementBuilder.hpp"

#include "tessel_config_datamodel/frame/Element.hpp"

namespace tessel::frame {
namespace {

/// The rows of the indexes in `mask`, root first, as the fields of an element are filled.
template <class Visitor>
void forEachSet(ClassTable const& table, std::uint64_t mask, Visitor const& visit) {
  for (; mask != 0; mask &= mask - 1) visit(*table.chain->byIndex[static_cast<std::size_t>(__builtin_ctzll(mask))]);
}

}  // namespace

ElementBuilder::ElementBuilder(ClassTable const& table, plinth::Model const& model)
    : ModelElementBuilder(model, table.lastIndex + 1), m_table(&table) {}

ElementBuilder::ElementBuilder(ClassTable const& table) : ModelElementBuilder(table.lastIndex + 1), m_table(&table) {}

void ElementBuilder::giveStamps() {
  m_table->metaClass();  // the rows are bound once the metamodel stands
  for (std::size_t i = 0; i < m_table->stampCount; ++i) {
    TypeStamp const& stamp = m_table->stamps[i];
    PropertyDescriptor const& row = stamp.declaringClass->properties[stamp.position];
    row.kind->stamp(*this, row, stamp.value);
  }
}

void ElementBuilder::setOrAdd(plinth::meta::Property const& property, plinth::Value const& value) {
  m_table->metaClass();
  auto const* const row = property.isEmpty() ? nullptr : findDescriptor(*m_table, *property.impl());
  if (row == nullptr || !row->kind->build(*this, *row, value)) {
    ModelElementBuilder::setOrAdd(property, value);
  } else {
    mark(row->index);
  }
}

void ElementBuilder::setOrAdd(plinth::meta::Property const& property,
                              std::unique_ptr<plinth::ModelElementBuilder> child) {
  m_table->metaClass();
  auto const* const row = property.isEmpty() ? nullptr : findDescriptor(*m_table, *property.impl());
  if (row == nullptr || !take(*row, child)) ModelElementBuilder::setOrAdd(property, std::move(child));
}

void ElementBuilder::takeChild(PropertyDescriptor const& row, std::unique_ptr<plinth::ModelElementBuilder> child) {
  m_table->metaClass();
  if (!take(row, child)) ModelElementBuilder::setOrAdd(plinth::meta::Property(row.property), std::move(child));
}

bool ElementBuilder::take(PropertyDescriptor const& row, std::unique_ptr<plinth::ModelElementBuilder>& child) {
  bool const fits = child != nullptr && child->getMetaClass()->conformsTo(*row.property->type());
  if (!fits || !row.kind->build(*this, row, child)) return false;
  mark(row.index);
  return true;
}

plinth::ModelElement ElementBuilder::made(ChildBuilder const& child) const {
  if (child.get() == nullptr || orchestrator() == nullptr) return {};
  orchestrator()->addBuilder(child.get());
  return child.get()->create();
}

plinth::ModelElement ElementBuilder::doCreate(bool deferred, boost::uuids::uuid const& uuid) {
  m_table->metaClass();
  plinth::ModelElement const made(m_table->allocate(*model().impl(), uuid), plinth::Adopt{});
  auto& element = static_cast<Element&>(*made);
  forEachSet(*m_table, mask(), [&](auto const& row) { row.kind->initialize(element, *this, row); });
  if (deferred) return made;
  // Links run the full setters, on an object that a handle holds: should one fail, nothing is left that points at freed
  // memory.
  forEachSet(*m_table, mask(), [&](auto const& row) { row.kind->link(element, *this, row); });
  element.notifyCreated();
  return made;
}

void ElementBuilder::cascadeCreation(plinth::ModelElementImpl& parent, plinth::CascadeSteps& steps) {
  auto& element = static_cast<Element&>(parent);
  forEachLink(*m_table, [&](auto const& row) {
    if (isSet(row.index)) row.kind->cascade(element, *this, row, steps);
  });
}

void ElementBuilder::attach(plinth::ModelElementImpl& parent, plinth::meta::PropertyImpl& property,
                            plinth::ModelElement const& child) {
  PropertyDescriptor const& row = *findDescriptor(*m_table, property);
  row.kind->attach(static_cast<Element&>(parent), row, child);
}

}  // namespace tessel::frame
