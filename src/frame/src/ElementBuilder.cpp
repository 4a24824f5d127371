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

PropertyDescriptor const* ElementBuilder::rowOf(plinth::meta::Property const& property) const {
  m_table->metaClass();
  return property.isEmpty() ? nullptr : findDescriptor(*m_table, *property.impl());
}

long ElementBuilder::doSetOrAdd(plinth::meta::Property const& property, plinth::Value const& value) {
  auto const* const row = rowOf(property);
  return row == nullptr || !row->kind->build(*this, *row, value) ? -1 : static_cast<long>(row->index);
}

long ElementBuilder::doSetOrAdd(plinth::meta::Property const& property,
                                std::unique_ptr<plinth::ModelElementBuilder>& child) {
  auto const* const row = rowOf(property);
  return row == nullptr ? -1 : doSetOrAdd(*row, child);
}

long ElementBuilder::doSetOrAdd(PropertyDescriptor const& row, std::unique_ptr<plinth::ModelElementBuilder>& child) {
  bool const fits = child != nullptr && child->getMetaClass()->conformsTo(*row.property->type());
  return fits && row.kind->build(*this, row, child) ? static_cast<long>(row.index) : -1;
}

void ElementBuilder::setOrAdd(plinth::meta::Property const& property, plinth::Value const& value) {
  long const index = doSetOrAdd(property, value);
  if (index < 0) return ModelElementBuilder::setOrAdd(property, value);
  mark(static_cast<unsigned long>(index));
}

void ElementBuilder::setOrAdd(plinth::meta::Property const& property,
                              std::unique_ptr<plinth::ModelElementBuilder> child) {
  long const index = doSetOrAdd(property, child);
  if (index < 0) return ModelElementBuilder::setOrAdd(property, std::move(child));
  mark(static_cast<unsigned long>(index));
}

void ElementBuilder::takeChild(unsigned long index, std::unique_ptr<plinth::ModelElementBuilder> child) {
  m_table->metaClass();
  PropertyDescriptor const& row = *findDescriptor(*m_table, index);
  if (doSetOrAdd(row, child) < 0) {
    return ModelElementBuilder::setOrAdd(plinth::meta::Property(row.property), std::move(child));
  }
  mark(row.index);
}

plinth::ModelElement ElementBuilder::made(ChildBuilder const& child) const {
  if (child.get() == nullptr || orchestrator() == nullptr) return {};
  orchestrator()->addBuilder(child.get());
  return child.get()->create();
}

plinth::ModelElement ElementBuilder::doCreate(bool deferred, boost::uuids::uuid const& uuid) {
  m_table->metaClass();
  plinth::ModelElement const made(m_table->make.allocate(*model().impl(), uuid), plinth::Adopt{});
  auto& element = static_cast<Element&>(*made);
  forEachSet(*m_table, mask(), [&](auto const& row) { row.kind->initialize(element, *this, row); });
  if (deferred) return made;
  // Links run the full setters, on an object that a handle holds: should one fail, nothing is left that points at freed
  // memory.
  forEachSet(*m_table, mask(), [&](auto const& row) { row.kind->link(element, *this, row); });
  core(element).notifyCreated();
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
