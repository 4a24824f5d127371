#include "plinth/Messages.hpp"
#include "plinth/Step.hpp"
#include "tessel_config_datamodel/frame/GeneratedClass.hpp"

namespace tessel::frame {
namespace {

/// The stamps of the bases first, so that the most derived class has the last word.
void stamp(Element& element, ClassTable const& table) {
  if (table.base != nullptr) stamp(element, *table.base);
  for (std::size_t i = 0; i < table.stampCount; ++i) {
    TypeStamp const& stamp = table.stamps[i];
    PropertyDescriptor const& row = stamp.declaringClass->properties[stamp.position];
    row.kind->stamp(element, row, stamp.value);
  }
}

}  // namespace

plinth::ModelElement createElement(ClassTable const& table, plinth::Model const& model,
                                   boost::uuids::uuid const& uuid) {
  if (model.isEmpty()) plinth::reportException(plinth::messages::CannotCreateWithoutModel());
  table.metaClass();                 // the metamodel stands before its first element
  plinth::Step step(*model.impl());  // announcing the element is the one thing that changes the model
  plinth::ModelElement element(table.make.allocate(*model.impl(), uuid), plinth::Adopt{});
  stamp(static_cast<Element&>(*element), table);
  core(*element).notifyCreated();
  step.commit();
  return element;
}

plinth::ModelElement createChild(Element& self, PropertyDescriptor const& row, plinth::ModelElementBuilder& builder,
                                 boost::uuids::uuid const& uuid) {
  core(self).requireModifiable();
  if (builder.model().impl() != &self.model()) builder.setModel(self.getModel());
  plinth::Orchestrator orchestrator(&builder, plinth::Orchestrator::Builders::SPENT);
  row.kind->attach(self, row, orchestrator.run(uuid));
  return orchestrator.commit();
}

}  // namespace tessel::frame
