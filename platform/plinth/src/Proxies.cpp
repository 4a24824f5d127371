#include <boost/uuid/string_generator.hpp>

#include "Teardown.hpp"
#include "plinth/Builder.hpp"
#include "plinth/Messages.hpp"
#include "plinth/ModelDirectory.hpp"
#include "plinth/meta/Type.hpp"

namespace plinth {

boost::uuids::uuid elementUuid(ProxyId const& id) noexcept {
  try {
    return boost::uuids::string_generator()(std::string(id.element.begin(), id.element.end()));
  } catch (std::exception const&) {
    return {};
  }
}

ModelElement internal::ModelState::lookUp(ProxyId const& id, bool load) const {
  Model const model =
      id.isLocal() ? Model(const_cast<ModelState*>(this)) : ModelDirectory::getInstance().find(*id.model, load);
  return model.isEmpty() ? ModelElement() : model->findElement(elementUuid(id), FindElementBehavior::IN_MEMORY);
}

ModelElement ModelImpl::resolveProxy(ModelElementImpl const*, ModelElement const& proxy) {
  ProxyId const* const known = proxyId(*proxy);
  if (known == nullptr) return proxy;
  // A loader may let go of the proxy, and of whatever field the caller has it from.
  ModelElement const held = proxy;
  ProxyId const id = *known;
  ModelElement const found = internal::stateOf(*this).lookUp(id, true);
  return found ? found : held;
}

ModelElement ModelImpl::peekResolveProxy(ModelElementImpl const*, ModelElement const& proxy) const {
  ProxyId const* const id = proxyId(*proxy);
  if (id == nullptr) return proxy;
  ModelElement const found = internal::stateOf(*this).lookUp(*id, false);
  return found ? found : proxy;
}

ModelElement ModelImpl::createProxy(meta::Class const& metaClass, ProxyId const& id) {
  std::unique_ptr<ModelElementBuilder> const builder = metaClass->instantiateBuilder(Model(this));
  boost::uuids::uuid const uuid = elementUuid(id);
  ModelElement proxy = Orchestrator::makeProxy(*builder, uuid.is_nil() ? generateNewUuid() : uuid);
  internal::stateOf(*this).proxyIds.emplace(proxy.impl(), id);
  internal::ElementCore& made = internal::core(*proxy);
  made.m_state |= PROXY;
  made.m_live = 1;
  return proxy;
}

ProxyId const* ModelImpl::proxyId(ModelElementImpl const& element) const noexcept {
  auto const& ids = internal::stateOf(element.model()).proxyIds;
  auto const found = ids.find(&element);
  return found == ids.end() ? nullptr : &found->second;
}

std::vector<ModelElementImpl const*> ModelImpl::proxies() const {
  std::vector<ModelElementImpl const*> proxies;
  for (auto const& [proxy, id] : internal::stateOf(*this).proxyIds) proxies.push_back(proxy);
  return proxies;
}

void ModelImpl::unload(ModelElement const& element) {
  if (!element) return;
  ModelElement const held = element;  // the handle may be one of those that are cut
  internal::core(*held).requireReal();
  if (&held->model() != this) {
    reportException(messages::CannotUnloadForeignElement(name(), held->model().name()));
  }
  Transaction transaction = beginTransaction(false);
  std::vector<ModelElementImpl*> leaving{held.impl()};
  for (std::size_t i = 0; i < leaving.size(); ++i) internal::core(*leaving[i]).collectContained(leaving);
  Teardown::convertToProxies(internal::stateOf(*this), leaving);
  held->destroy();
  transaction.commit();
}

}  // namespace plinth
