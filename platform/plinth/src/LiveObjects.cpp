#include "plinth/LiveObjects.hpp"

#include <atomic>
#include <mutex>
#include <unordered_set>

#include "groundwork/Counting.hpp"
#include "plinth/Model.hpp"

namespace plinth::detail {
namespace {

std::atomic<std::ptrdiff_t> elementObjects{0};
std::atomic<std::ptrdiff_t> metaElementObjects{0};

/// The models there are. Outlives those of static objects.
struct LiveModels {
  std::mutex mutex;
  std::unordered_set<ModelImpl*> models;
};
LiveModels& liveModels() {
  static LiveModels* const models = new LiveModels();
  return *models;
}

}  // namespace

void LiveObjects::addElement() noexcept { groundwork::addTo(elementObjects, std::ptrdiff_t{1}); }
void LiveObjects::removeElement() noexcept { groundwork::addTo(elementObjects, std::ptrdiff_t{-1}); }
void LiveObjects::addMetaElement() noexcept { groundwork::addTo(metaElementObjects, std::ptrdiff_t{1}); }
void LiveObjects::removeMetaElement() noexcept { groundwork::addTo(metaElementObjects, std::ptrdiff_t{-1}); }

void LiveObjects::enter(ModelImpl& model) {
  std::lock_guard const lock(liveModels().mutex);
  liveModels().models.insert(&model);
}

void LiveObjects::leave(ModelImpl& model) noexcept {
  std::lock_guard const lock(liveModels().mutex);
  liveModels().models.erase(&model);
}

std::size_t LiveObjects::elements() noexcept {
  return static_cast<std::size_t>(elementObjects.load() - metaElementObjects.load());
}

void LiveObjects::forEachModel(std::function<void(ModelImpl const&)> const& visit) {
  std::lock_guard const lock(liveModels().mutex);
  for (ModelImpl const* model : liveModels().models) visit(*model);
}

}  // namespace plinth::detail
