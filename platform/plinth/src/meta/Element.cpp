#include "plinth/meta/Element.hpp"

#include "plinth/Changes.hpp"
#include "plinth/LiveObjects.hpp"
#include "plinth/Messages.hpp"
#include "plinth/meta/MetaRegistry.hpp"

namespace plinth::meta {

MetaElementImpl::MetaElementImpl(Model const& model, boost::uuids::uuid const& uuid, CoreClass coreClass)
    : ModelElementImpl(model, uuid), m_coreClass(coreClass) {
  detail::LiveObjects::addMetaElement();
}

MetaElementImpl::~MetaElementImpl() { detail::LiveObjects::removeMetaElement(); }

Class const& MetaElementImpl::getMetaClass() const { return MetaRegistry::coreClass(m_coreClass); }

Changes* MetaElementImpl::createChanges() const {
  return new (recordPool()) Storage(getUuid(), model(), *getMetaClass().impl(), 0);
}

Storage* MetaElementImpl::createStorage() const {
  return new (recordPool()) Storage(getUuid(), model(), *getMetaClass().impl(), 1);
}

void MetaElementImpl::requireNew() const {
  if (!needsNoOldValues()) reportException(messages::CannotModifyFrozenModel());
}

void MetaElementImpl::becomePartOf(ModelElementImpl& owner) { basicSetContainer(&owner, nullptr, NO_INDEX); }

void MetaElementImpl::setName(std::u16string name) {
  requireNew();
  m_name = std::move(name);
}

}  // namespace plinth::meta
