// The driver's eyes: what listeners are told, and the comparison of both models.
#include <tessel_config_datamodel/ext/ConfigProfile.hpp>
#include <tessel_config_datamodel/ext/ConfigStore.hpp>
#include <tessel_config_datamodel/runtime/CategoryState.hpp>

#include "collections_driver.hpp"
#include "plinth/ChangeSet.hpp"
#include "plinth/diagnostics/Verify.hpp"
#include "real_model.hpp"

namespace collections_test {

using plinth::element_cast;
using plinth::ElementMapBase;
using plinth::ModelElement;
using plinth::ReferenceCollection;
using namespace tessel::internal;
using tessel::internal::config::runtime::ControllableState;

template <class T>
void Driver::expectEqual(T const& found, T const& expected, std::string const& what) {
  if (!(found == expected)) fail(what + ": expected " + text(expected) + ", found " + text(found));
}

// What listeners are told.

void Driver::listen(plinth::ChangeSet const& changes) {
  for (plinth::Storage const* record : changes.changed()) {
    int const id = idOf(record->getUuid());
    auto const item = m_base.items.find(id);
    if (item == m_base.items.end() || !item->second.live) {
      fail("told as changed, but new: " + text(id));
      continue;
    }
    for (std::size_t i = 0; i < Coverage::FEATURES; ++i) {
      Place const place{id, static_cast<Feature>(i)};
      if (!owns(item->second.kind, place.second)) continue;
      auto const property = propertyOf(record->element(), nameOf(place.second));
      if (!record->isChanged(static_cast<unsigned long>(property->index()))) continue;
      m_told.insert(place);
      auto value = record->getOldValue(property, plinth::ReflectionPrivateTag::PUBLIC_ACCESS);
      std::set<int> proxies;
      auto const old = numbersIn(&value.referenceCollection(), place.second, &proxies);
      expectEqual(old, m_base.contents(place),
                  "old value of " + text(std::u16string(nameOf(place.second))) + " of " + text(id));
      expectEqual(proxies, m_base.proxiesIn(place), "old proxies of " + text(id));
      ++m_coverage.toldOld[i];
    }
  }
}

/// Every collection whose contents differ has been told, and so has one of several members that was changed and is
/// back.
void Driver::checkTold(PlainModel const& before) {
  for (auto const& [id, item] : m_plain.items) {
    if (!item.live || !before.isLive(id)) continue;
    for (std::size_t i = 0; i < Coverage::FEATURES; ++i) {
      Place const place{id, static_cast<Feature>(i)};
      if (!owns(item.kind, place.second)) continue;
      Numbers const present = m_plain.contents(place);
      bool const isBack = present == before.contents(place);
      bool changed = !isBack || (present.size() > 1 && m_plain.touched.count(place) != 0);
      if (isMap(place.second)) {
        for (int const member : present)
          changed = changed || m_plain.items.at(member).key != before.items.at(member).key;
      }
      if (!changed) continue;
      ++m_coverage.changed[i];
      if (m_registration != nullptr && m_told.count(place) == 0) {
        fail("not told: " + text(std::u16string(nameOf(place.second))) + " of " + text(id));
      }
    }
  }
}

// Comparing.

void Driver::compare() {
  std::size_t live = 0;
  for (auto const& [id, item] : m_plain.items) {
    auto const handle = m_handles.find(id);
    bool const isLive = handle != m_handles.end() && handle->second;
    if (isLive != item.live) fail("element " + text(id) + (isLive ? " lives" : " is dead"));
    if (!item.live || !isLive) continue;
    ++live;
    compareElement(id, item);
  }
  if (m_model->elementCount() != live)
    fail("elements: expected " + std::to_string(live) + ", found " + std::to_string(m_model->elementCount()));
  for (plinth::Finding const& finding : plinth::verify(m_model)) fail(finding.text());
}

void Driver::compareElement(int id, PlainModel::Item const& item) {
  ModelElement const& element = m_handles.at(id);
  auto const container = m_plain.containers.find(id);
  bool const contained = container != m_plain.containers.end();
  expectEqual(idOf(element->container()), contained ? container->second.first : -1, "container of " + text(id));
  auto const* const feature = core(*element).basicContainmentFeature();
  std::u16string const name = contained ? nameOf(container->second.second) : u"";
  expectEqual(feature == nullptr ? std::u16string() : feature->getName(), name, "containment feature of " + text(id));
  if (owns(item.kind, Feature::TAGS_OF)) {
    expectEqual(idOf(element_cast<ControllableState>(element)->getCategory()), m_plain.categoryOf(id),
                "category of " + text(id));
  }
  if (item.kind == Kind::STORE) {
    auto const active = m_plain.active.find(id);
    expectEqual(idOf(element_cast<ext::ConfigStore>(element)->getActiveProfile()),
                active == m_plain.active.end() ? -1 : active->second, "active profile");
  }
  for (std::size_t i = 0; i < Coverage::FEATURES; ++i) {
    if (owns(item.kind, static_cast<Feature>(i))) comparePlace({id, static_cast<Feature>(i)});
  }
}

void Driver::comparePlace(Place const& place) {
  std::string const where = text(std::u16string(nameOf(place.second))) + " of " + text(place.first);
  std::set<int> proxies;
  ReferenceCollection const* const collection = present(place);
  Numbers const expected = m_plain.contents(place);
  expectEqual(numbersIn(collection, place.second, &proxies), expected, where);
  expectEqual(proxies, m_plain.proxiesIn(place), "proxies in " + where);
  if (isMap(place.second) && collection != nullptr) {
    std::vector<std::u16string> keys;
    for (int const id : expected) keys.push_back(m_plain.items.at(id).key);
    expectEqual(static_cast<ElementMapBase const*>(collection)->keys(), keys, "keys of " + where);
  }
  ModelElement const& owner = m_handles.at(place.first);
  for (View const& view : views) {
    if (view.parent != place.second) continue;
    auto const* const subset = core(*owner).referenceCollection(*propertyOf(owner, view.name).impl());
    if (subset == nullptr) continue;
    Numbers shown;
    for (int const id : expected) {
      if (isShown(m_plain, id, view)) shown.push_back(id);
    }
    Numbers const present = numbersIn(subset, place.second);
    expectEqual(present, shown, "view of " + where);
    expectEqual(static_cast<int>(subset->rawSize()), static_cast<int>(shown.size()), "size of the view of " + where);
    if (subset->empty() != shown.empty()) fail("emptiness of the view of " + where);
  }
}

}  // namespace collections_test
