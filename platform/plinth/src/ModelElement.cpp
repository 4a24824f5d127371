#include "plinth/ModelElement.hpp"

#include <boost/uuid/uuid_io.hpp>

#include "ModelState.hpp"
#include "Teardown.hpp"
#include "plinth/LiveObjects.hpp"
#include "plinth/Messages.hpp"
#include "plinth/Value.hpp"
#include "plinth/meta/MetaRegistry.hpp"

namespace plinth {

ReflectionPrivateTag const ReflectionPrivateTag::PUBLIC_ACCESS;
ReflectionPrivateTag const ReflectionPrivateTag::IN_MEMORY_ONLY;
ReflectionPrivateTag const ReflectionPrivateTag::NO_PROXY_RESOLVE;

namespace {

[[noreturn]] void reportNoSuchProperty(ModelElementImpl const& element, meta::Property const& property) {
  reportException(messages::NoSuchProperty(property.isEmpty() ? u"" : property->getName(),
                                           element.getMetaClass()->getQualifiedName()));
}

ModelImpl& requireModel(Model const& model) {
  if (model.isEmpty()) reportException(messages::CannotCreateWithoutModel());
  return *model.impl();
}

}  // namespace

meta::Class const& ModelElement::metaClass() { return meta::MetaRegistry::getInstance().modelElementClass(); }

ModelElementImpl::ModelElementImpl(Model const& model, boost::uuids::uuid const& uuid)
    : ModelElementImpl(requireModel(model), uuid) {}

ModelElementImpl::ModelElementImpl(ModelImpl& model, boost::uuids::uuid const& uuid)
    : ElementCore(model, uuid.is_nil() ? generateNewUuid() : uuid) {
  detail::LiveObjects::addElement();
}

ModelElementImpl::~ModelElementImpl() {
  if (isProxy()) internal::stateOf(*m_model).proxyIds.erase(this);
  detail::LiveObjects::removeElement();
}

Model ModelElementImpl::getModel() const noexcept {
  // A dead element may have outlived its model; its pointer is good for comparison only.
  return (m_state & DESTROYED) != 0 ? Model() : Model(m_model);
}

bool ModelElementImpl::hasPropertyValue(meta::Property const& property, ReflectionPrivateTag const&) const {
  reportNoSuchProperty(*this, property);
}

Value ModelElementImpl::getPropertyValue(meta::Property const& property, ReflectionPrivateTag const&) const {
  reportNoSuchProperty(*this, property);
}

void ModelElementImpl::setPropertyValue(meta::Property const& property, Value const&, ReflectionPrivateTag const&) {
  reportNoSuchProperty(*this, property);
}

bool ModelElementImpl::hasPropertyValue(meta::Property const& property) const {
  return hasPropertyValue(property, ReflectionPrivateTag::PUBLIC_ACCESS);
}

Value ModelElementImpl::getPropertyValue(meta::Property const& property) const {
  return getPropertyValue(property, ReflectionPrivateTag::PUBLIC_ACCESS);
}

void ModelElementImpl::setPropertyValue(meta::Property const& property, Value const& value) {
  setPropertyValue(property, value, ReflectionPrivateTag::PUBLIC_ACCESS);
}

Value ModelElementImpl::invoke(meta::Operation const& operation, std::vector<Value> const&,
                               ReflectionPrivateTag const&) {
  reportException(
      messages::NoSuchProperty(operation.isEmpty() ? u"" : operation->getName(), getMetaClass()->getQualifiedName()));
}

meta::Property ModelElementImpl::getPropertyByIndex(unsigned long) const { return {}; }

std::u16string ModelElementImpl::identifier() const {
  std::string const text = boost::uuids::to_string(m_uuid);
  return {text.begin(), text.end()};
}

void ModelElementImpl::destroy() { Teardown::destroy(*this); }

boost::optional<ProxyId> ModelElementImpl::getProxyId() const {
  ProxyId const* const id = isProxy() ? m_model->proxyId(*this) : nullptr;
  return id == nullptr ? boost::optional<ProxyId>() : *id;
}

ProxyId ModelElementImpl::getPersistentProxyId(bool local) const {
  ProxyId id{getMetaClass()->getQualifiedName(), ModelElementImpl::identifier(), boost::none};
  // A dead element may have outlived its model.
  if (!local && (m_state & DESTROYED) == 0 && !m_model->name().empty()) id.model = m_model->name();
  return id;
}

ModelElement ModelElementImpl::container() const noexcept { return ModelElement(m_container); }

meta::Property ModelElementImpl::containmentFeature() const noexcept { return meta::Property(m_containmentProperty); }

}  // namespace plinth
