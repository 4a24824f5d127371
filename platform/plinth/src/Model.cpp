#include "plinth/Model.hpp"

#include "ModelState.hpp"
#include "plinth/Messages.hpp"
#include "plinth/ModelDirectory.hpp"
#include "plinth/meta/MetaRegistry.hpp"

namespace plinth {

using internal::ModelState;
using internal::stateOf;

Model Model::create() { return Model(new ModelState(), Adopt{}); }

meta::Class const& Model::metaClass() { return meta::MetaRegistry::getInstance().modelClass(); }

ModelImpl& Model::require() const {
  if (isEmpty()) reportException(messages::NoModel());
  return *impl();
}

Transaction Model::beginTransaction() const { return require().beginTransaction(false); }

ListenerRegistration Model::addListener(ChangeListener listener) const {
  ModelState& model = stateOf(require());
  if (!listener) reportException(messages::NoListener());
  return model.publisher.add(std::move(listener));
}

ModelImpl::ModelImpl() : ElementImpl(this, generateNewUuid()) {}

ModelImpl::~ModelImpl() = default;

Transaction ModelImpl::beginTransaction(bool thawed) {
  ModelState& state = stateOf(*this);
  state.begin(thawed);
  return Transaction(*this, level(), state.log.serialAt(level()));
}

std::size_t ModelImpl::undoSize() const noexcept { return stateOf(*this).log.size(); }

std::size_t ModelImpl::elementCount() const noexcept { return directory().size(); }

ElementDirectory const& ModelImpl::directory() const noexcept { return stateOf(*this).elements; }

ModelElement ModelImpl::findElement(boost::uuids::uuid const& uuid, FindElementBehavior) const {
  return ModelElement(directory().find(uuid));
}

void ModelImpl::setName(std::u16string name) {
  if (name == m_name) return;
  if (!name.empty()) ModelDirectory::getInstance().enter(name, *this);
  if (!m_name.empty()) ModelDirectory::getInstance().leave(m_name);
  m_name = std::move(name);
}

std::vector<std::exception_ptr> ModelImpl::takeListenerErrors() { return stateOf(*this).publisher.takeErrors(); }

std::size_t ModelImpl::listenerErrorCount() const noexcept { return stateOf(*this).publisher.errorCount(); }

}  // namespace plinth
