#include "plinth/diagnostics/Verify.hpp"

#include <boost/functional/hash.hpp>
#include <boost/uuid/uuid_io.hpp>
#include <ostream>
#include <unordered_map>
#include <unordered_set>

#include "groundwork/Unicode.hpp"
#include "plinth/ElementDirectory.hpp"
#include "plinth/ElementMembers.hpp"
#include "plinth/ModelDirectory.hpp"
#include "plinth/diagnostics/ElementPath.hpp"
#include "plinth/diagnostics/ValueText.hpp"

namespace plinth {

std::string Finding::text() const {
  std::string line = rule;
  if (!path.empty()) line += " of " + path;
  if (!property.empty()) line += ", " + property;
  return line + ": expected " + expected + ", found " + found;
}

std::ostream& operator<<(std::ostream& stream, Finding const& finding) { return stream << finding.text(); }

namespace {

using detail::shortName;

/// One run over a model. Elements are looked at only when the directory lists them: any other pointer may be stale.
class Verification {
 public:
  explicit Verification(Model const& model) : m_hold(model), m_model(*model.impl()) {
    for (ModelElementImpl const* proxy : m_model.proxies()) m_proxies.insert(proxy);
  }

  std::vector<Finding> run() {
    checkDirectory();
    for (ModelElementImpl const* element : m_order) checkProperties(*element);
    for (ModelElementImpl const* element : m_order) checkContainer(*element, m_elements.at(element));
    for (ModelElementImpl const* proxy : m_proxies) checkProxy(*proxy);
    checkCycles();
    checkOpposites();
    checkFarOpposites();
    checkReferenceCounts();
    checkUndo();
    return std::move(m_findings);
  }

 private:
  /// What the passes gather on one element.
  struct Facts {
    std::uint32_t handles = 0;  ///< that properties of this model hold
    bool contained = false;     ///< its container holds it
    enum { NEW, ON_PATH, DONE } walk = NEW;
  };
  /// `from` holds `to` in the property.
  struct Link {
    ModelElementImpl const* from;
    meta::PropertyImpl const* property;
    ModelElementImpl const* to;
    friend bool operator==(Link const& left, Link const& right) {
      return left.from == right.from && left.property == right.property && left.to == right.to;
    }
  };
  struct LinkHash {
    std::size_t operator()(Link const& link) const noexcept {
      std::size_t seed = 0;
      boost::hash_combine(seed, link.from);
      boost::hash_combine(seed, link.property);
      boost::hash_combine(seed, link.to);
      return seed;
    }
  };

  void checkDirectory();
  void checkListed(ModelElementImpl const& element, meta::ClassImpl const& metaClass);
  void checkProperties(ModelElementImpl const& element);
  void checkMembers(ModelElementImpl const& element, meta::PropertyImpl& property);
  void checkTarget(ModelElementImpl const& element, meta::PropertyImpl const& property, ModelElement const& target);
  void checkContained(ModelElementImpl const& element, meta::PropertyImpl const& property,
                      ModelElementImpl const& child);
  void checkKeys(ModelElementImpl const& element, meta::PropertyImpl const& property);
  void checkContainer(ModelElementImpl const& element, Facts const& facts);
  void checkProxy(ModelElementImpl const& proxy);
  void checkCycles();
  void checkOpposites();
  void checkFarOpposites();
  void checkReferenceCounts();
  void checkUndo();

  void noteLink(ModelElementImpl const& element, meta::PropertyImpl const& property, ModelElement const& target);
  bool isKnown(ModelElementImpl const* element) const { return m_elements.count(element) != 0; }
  std::vector<meta::PropertyImpl*> const& elementProperties(meta::ClassImpl const& metaClass);
  std::string containment(ModelElementImpl const* container, meta::PropertyImpl const* property) const;
  void report(char const* rule, ModelElementImpl const& element, meta::PropertyImpl const* property,
              std::string expected, std::string found);

  Model m_hold;
  ModelImpl& m_model;
  std::unordered_map<ModelElementImpl const*, Facts> m_elements;
  std::vector<ModelElementImpl const*> m_order;  ///< that of the directory: findings come in the same order every time
  std::unordered_map<meta::ClassImpl const*, std::vector<meta::PropertyImpl*>> m_properties;
  std::unordered_set<Link, LinkHash> m_links;
  std::vector<Link> m_directLinks;  ///< those whose other end has to agree
  std::vector<Link> m_farLinks;     ///< the same, with the other end in another model
  std::unordered_set<ModelElementImpl const*> m_proxies;
  std::vector<Finding> m_findings;
};

void Verification::report(char const* rule, ModelElementImpl const& element, meta::PropertyImpl const* property,
                          std::string expected, std::string found) {
  std::string path = detail::elementPath(element, [this](auto const& container) { return isKnown(&container); });
  m_findings.push_back({rule, std::move(path), property == nullptr ? "" : groundwork::toUtf8(property->getName()),
                        std::move(expected), std::move(found)});
}

/// The properties of the class, and of its bases, that hold elements.
std::vector<meta::PropertyImpl*> const& Verification::elementProperties(meta::ClassImpl const& metaClass) {
  auto const [at, isNew] = m_properties.try_emplace(&metaClass);
  if (isNew) {
    for (meta::PropertyImpl* property : detail::storedProperties(metaClass)) {
      if (detail::holdsElements(*property)) at->second.push_back(property);
    }
  }
  return at->second;
}

std::string Verification::containment(ModelElementImpl const* container, meta::PropertyImpl const* property) const {
  if (container == nullptr) return property == nullptr ? "no container" : "no container, yet a containment property";
  std::string const name = property == nullptr ? "no property" : groundwork::toUtf8(property->getName());
  if (m_proxies.count(container) != 0) return name + " of a proxy";
  return name + " of " + (isKnown(container) ? shortName(*container) : "what is no live element of this model");
}

void Verification::checkDirectory() {
  ElementDirectory const& directory = m_model.directory();
  m_elements.reserve(directory.size());
  m_order.reserve(directory.size());
  auto const classes = directory.classes();
  for (meta::ClassImpl const* metaClass : classes) {
    for (ModelElementImpl const* element : directory.elementsOf(*metaClass)) {
      if (m_elements.try_emplace(element).second) {
        m_order.push_back(element);
      } else {
        report("directory", *element, nullptr, "one entry in the lists of the classes", "two");
      }
    }
  }
  for (meta::ClassImpl const* metaClass : classes) {
    for (ModelElementImpl const* element : directory.elementsOf(*metaClass)) checkListed(*element, *metaClass);
  }
  if (m_elements.size() != directory.size()) {
    m_findings.push_back({"directory", "", "",
                          std::to_string(directory.size()) + " elements in the lists of the classes",
                          std::to_string(m_elements.size())});
  }
}

void Verification::checkListed(ModelElementImpl const& element, meta::ClassImpl const& metaClass) {
  if (element.getMetaClass().impl() != &metaClass) {
    report("directory", element, nullptr, "an entry in the list of its own class",
           "one in that of " + metaClass.narrowName());
  }
  if (!element.isLive() || !element.isAnnounced() || element.isProxy()) {
    report("directory", element, nullptr, "a live element",
           element.isProxy() ? "a proxy" : (element.isLive() ? "one not announced" : "a dead one"));
  }
  if (core(element).modelIdentity() != &m_model) {
    report("directory", element, nullptr, "an element of this model", "one of another model");
  }
  ModelElementImpl const* const byUuid = m_model.directory().find(element.getUuid());
  if (byUuid != &element) {
    report("directory", element, nullptr, "to be found by the UUID " + boost::uuids::to_string(element.getUuid()),
           byUuid == nullptr ? "nothing" : "another element");
  }
}

void Verification::checkProperties(ModelElementImpl const& element) {
  for (meta::PropertyImpl* property : elementProperties(*element.getMetaClass().impl())) {
    checkMembers(element, *property);
    ReferenceCollection const* const collection =
        property->isMany() ? core(element).referenceCollection(*property) : nullptr;
    if (collection == nullptr) continue;
    if (m_model.level() == 0 && collection->oldSize() != collection->rawSize()) {
      report("undo", element, property, "a collection without undo", "one that still knows older contents");
    }
    if (property->valueFlags() == meta::MAP && property->qualifiedBy() != nullptr) checkKeys(element, *property);
  }
}

void Verification::checkMembers(ModelElementImpl const& element, meta::PropertyImpl& property) {
  bool const once = property.valueFlags() == meta::SEQUENCE && property.isUnique();
  std::unordered_set<ModelElementImpl const*> seen;
  for (ModelElement const& member : detail::membersOf(element, property)) {
    if (member.isEmpty()) {
      report("target", element, &property, "an element", "an empty handle");
      continue;
    }
    bool const isProxy = member && member->isProxy();  // goes where it is resolved and its element is there
    if (once && !isProxy && !seen.insert(member.impl()).second) {
      report("uniqueness", element, &property, shortName(*member) + " once", "it a second time");
    }
    checkTarget(element, property, member);
    auto const known = m_elements.find(member.impl());
    if (known != m_elements.end()) {
      ++known->second.handles;
      if (property.isComposite()) checkContained(element, property, *member);
    }
    if (property.opposite() != nullptr) noteLink(element, property, member);
  }
}

void Verification::checkTarget(ModelElementImpl const& element, meta::PropertyImpl const& property,
                               ModelElement const& target) {
  if (core(*target).refCount() == 0 || core(*target).refCount() >= ElementImpl::REFCOUNT_DELETING) {
    report("target", element, &property, "a target that is in memory", "one that has been deleted");
    return;
  }
  if (!target) {
    // A dead one of another model has gone with that model: whoever reads it is not shown it.
    bool const isOurs = core(*target).modelIdentity() == &m_model;
    if (property.isComposite() || (property.opposite() != nullptr && isOurs)) {
      report("target", element, &property, "a live element", "the dead " + shortName(*target));
    }
    return;
  }
  if (!target->getMetaClass()->conformsTo(*property.type())) {
    report("class", element, &property, property.type()->narrowName(), target->getMetaClass()->narrowName());
  }
  if (target->isProxy()) return;
  if (target->model().directory().find(target->getUuid()) != target.impl()) {
    report("target", element, &property, "an element in the directory of its model",
           shortName(*target) + ", not there");
  } else if (property.isComposite() && &target->model() != &m_model) {
    report("target", element, &property, "an element of this model", shortName(*target) + " of another model");
  }
}

void Verification::checkContained(ModelElementImpl const& element, meta::PropertyImpl const& property,
                                  ModelElementImpl const& child) {
  if (core(child).basicContainer() == &element && core(child).basicContainmentFeature() == &property) {
    m_elements[&child].contained = true;
  } else {
    report("containment", element, &property, shortName(child) + " to have it as its container link",
           containment(core(child).basicContainer(), core(child).basicContainmentFeature()));
  }
}

void Verification::checkKeys(ModelElementImpl const& element, meta::PropertyImpl const& property) {
  ReferenceCollection& map = *core(element).referenceCollection(property);
  std::vector<std::u16string> const keys = detail::keysOf(map);
  std::size_t at = 0;
  map.forEachReal([&](ModelElementImpl& member) {
    if (at >= keys.size()) return;
    std::u16string const& key = keys[at++];
    if (!member.getMetaClass()->conformsTo(*property.qualifiedBy()->owningType())) return;
    std::u16string const borne = detail::keyBorneBy(member, *property.qualifiedBy());
    if (borne != key) report("key", element, &property, "the key " + quoted(borne), quoted(key));
  });
}

void Verification::noteLink(ModelElementImpl const& element, meta::PropertyImpl const& property,
                            ModelElement const& target) {
  if (target && target->isProxy()) {
    ModelElement const real = m_model.peekResolveProxy(&element, target);
    if (!real->isProxy()) m_links.insert({&element, &property, real.impl()});
    return;
  }
  Link const link{&element, &property, target.impl()};
  m_links.insert(link);
  if (isKnown(target.impl())) {
    m_directLinks.push_back(link);
  } else if (target && core(*target).modelIdentity() != &m_model) {
    m_farLinks.push_back(link);
  }
}

void Verification::checkContainer(ModelElementImpl const& element, Facts const& facts) {
  ModelElementImpl const* const container = core(element).basicContainer();
  meta::PropertyImpl const* const property = core(element).basicContainmentFeature();
  if (container == nullptr && property == nullptr) return;
  // The parts of a metamodel know their owner, which holds them by other means than properties.
  bool const isMetaPart = property == nullptr && dynamic_cast<meta::MetaElementImpl const*>(&element) != nullptr;
  if (isMetaPart && isKnown(container)) return;
  if (!facts.contained) {
    report("containment", element, property, "a container that holds it", containment(container, property));
  }
}

void Verification::checkProxy(ModelElementImpl const& proxy) {
  if (core(proxy).basicContainer() != nullptr) {
    report("proxy", proxy, nullptr, "no container",
           containment(core(proxy).basicContainer(), core(proxy).basicContainmentFeature()));
  }
  for (meta::PropertyImpl* property : elementProperties(*proxy.getMetaClass().impl())) {
    auto const members = detail::membersOf(proxy, *property);
    if (!members.empty()) report("proxy", proxy, property, "nothing", std::to_string(members.size()) + " elements");
  }
}

void Verification::checkCycles() {
  std::vector<Facts*> path;
  for (ModelElementImpl const* each : m_order) {
    auto at = m_elements.find(each);
    while (at != m_elements.end() && at->second.walk == Facts::NEW) {
      at->second.walk = Facts::ON_PATH;
      path.push_back(&at->second);
      each = core(*each).basicContainer();
      at = m_elements.find(each);
    }
    if (at != m_elements.end() && at->second.walk == Facts::ON_PATH) {
      report("containment cycle", *each, nullptr, "no element to contain itself", shortName(*each) + " inside itself");
    }
    for (Facts* facts : path) facts->walk = Facts::DONE;
    path.clear();
  }
}

void Verification::checkOpposites() {
  for (Link const& link : m_directLinks) {
    meta::PropertyImpl const& far = *link.property->opposite();
    if (m_links.count({link.to, &far, link.from}) != 0) continue;
    report("opposite", *link.from, link.property,
           shortName(*link.to) + " to list it in " + groundwork::toUtf8(far.getName()), "no entry there");
  }
}

void Verification::checkFarOpposites() {
  // What a property of a far element lists, proxies by what they stand for; gathered once for all links that end there.
  using Place = std::pair<ModelElementImpl const*, meta::PropertyImpl const*>;
  std::unordered_map<Place, std::unordered_set<ModelElementImpl const*>, boost::hash<Place>> listed;
  for (Link const& link : m_farLinks) {
    meta::PropertyImpl& far = *link.property->opposite();
    auto const [at, isNew] = listed.try_emplace(Place(link.to, &far));
    if (isNew) {
      for (ModelElement const& member : detail::membersOf(*link.to, far)) {
        bool const isProxy = member && member->isProxy();
        at->second.insert((isProxy ? link.to->model().peekResolveProxy(link.to, member) : member).impl());
      }
    }
    if (at->second.count(link.from) != 0) continue;
    report("opposite", *link.from, link.property,
           shortName(*link.to) + " of another model to list it in " + groundwork::toUtf8(far.getName()),
           "no entry there");
  }
}

void Verification::checkReferenceCounts() {
  for (ModelElementImpl const* element : m_order) {
    std::uint32_t const atLeast = m_elements.at(element).handles + 1;  // the model's own
    if (core(*element).refCount() >= atLeast && core(*element).refCount() < ElementImpl::REFCOUNT_DELETING) continue;
    report("reference count", *element, nullptr, "at least " + std::to_string(atLeast),
           std::to_string(core(*element).refCount()));
  }
}

void Verification::checkUndo() {
  if (m_model.level() != 0 || m_model.undoSize() == 0) return;
  m_findings.push_back(
      {"undo", "", "", "an empty log outside a transaction", std::to_string(m_model.undoSize()) + " entries"});
}

}  // namespace

std::vector<Finding> verify(Model const& model) {
  return model.isEmpty() ? std::vector<Finding>() : Verification(model).run();
}

std::vector<Finding> verifyNamedModels() {
  std::vector<Finding> all;
  for (Model const& model : ModelDirectory::getInstance().models()) {
    for (Finding& finding : verify(model)) {
      finding.path = groundwork::toUtf8(model->name()) + ":" + finding.path;
      all.push_back(std::move(finding));
    }
  }
  return all;
}

}  // namespace plinth
