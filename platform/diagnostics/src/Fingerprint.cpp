#include "plinth/diagnostics/Fingerprint.hpp"

#include <algorithm>
#include <boost/uuid/uuid_io.hpp>
#include <functional>
#include <ostream>
#include <unordered_map>

#include "groundwork/Unicode.hpp"
#include "plinth/AbstractPrimitiveCollection.hpp"
#include "plinth/ElementDirectory.hpp"
#include "plinth/ElementMembers.hpp"
#include "plinth/ProxyId.hpp"
#include "plinth/diagnostics/ElementPath.hpp"
#include "plinth/diagnostics/ValueText.hpp"

namespace plinth {

/// Takes one fingerprint.
class FingerprintTaker {
 public:
  explicit FingerprintTaker(Model const& model) : m_model(*model.impl()) {}

  Fingerprint take() {
    std::vector<ModelElementImpl*> elements = m_model.directory().all();
    std::sort(elements.begin(), elements.end(),
              [](auto const* left, auto const* right) { return left->getUuid() < right->getUuid(); });
    m_fingerprint.m_entries.reserve(elements.size());
    for (ModelElementImpl const* element : elements) open(*element);
    for (ModelElementImpl const* element : elements) fill(*element);
    return std::move(m_fingerprint);
  }

 private:
  using Entry = Fingerprint::Entry;
  using Properties = std::vector<meta::PropertyImpl*>;

  void open(ModelElementImpl const& element);
  void fill(ModelElementImpl const& element);
  std::string propertyText(ModelElementImpl const& element, meta::PropertyImpl& property);
  std::string membersText(ModelElementImpl const& element, meta::PropertyImpl& property);
  static std::string valuesText(ModelElementImpl const& element, meta::PropertyImpl& property);
  std::string targetText(ModelElement const& target) const;
  void nameStep(ModelElementImpl const& element, meta::PropertyImpl const& property, ModelElement const& member,
                std::size_t position);
  Entry& entryOf(ModelElementImpl const& element) { return m_fingerprint.m_entries[m_places.at(&element)]; }

  ModelImpl& m_model;
  Fingerprint m_fingerprint;
  std::unordered_map<ModelElementImpl const*, std::size_t> m_places;
  std::unordered_map<meta::ClassImpl const*, Properties> m_properties;
};

namespace {

std::string joined(std::vector<std::string> const& texts, char const* open, char const* close) {
  std::string result = open;
  char const* separator = "";
  for (std::string const& text : texts) {
    result += separator + text;
    separator = ", ";
  }
  return result + close;
}

}  // namespace

void FingerprintTaker::open(ModelElementImpl const& element) {
  m_places.emplace(&element, m_fingerprint.m_entries.size());
  Entry entry;
  entry.uuid = element.getUuid();
  entry.metaClass = element.getMetaClass().impl();
  if (ModelElementImpl const* const container = core(element).basicContainer()) {
    entry.container = container->getUuid();
    // Stays if no property of the container says better.
    meta::PropertyImpl const* const feature = core(element).basicContainmentFeature();
    entry.step = feature == nullptr ? detail::shortName(element) : groundwork::toUtf8(feature->getName());
  } else {
    entry.step = detail::shortName(element);
  }
  m_fingerprint.m_entries.push_back(std::move(entry));
}

void FingerprintTaker::fill(ModelElementImpl const& element) {
  meta::ClassImpl const& metaClass = *element.getMetaClass().impl();
  auto const [properties, isNew] = m_properties.try_emplace(&metaClass);
  if (isNew) properties->second = detail::storedProperties(metaClass);
  std::vector<std::string> values;
  values.reserve(properties->second.size());
  for (meta::PropertyImpl* property : properties->second) values.push_back(propertyText(element, *property));
  entryOf(element).values = std::move(values);
}

std::string FingerprintTaker::propertyText(ModelElementImpl const& element, meta::PropertyImpl& property) {
  if (detail::holdsElements(property)) return membersText(element, property);
  if (property.isMany()) return valuesText(element, property);
  return valueText(element.getPropertyValue(meta::Property(&property), ReflectionPrivateTag::IN_MEMORY_ONLY));
}

std::string FingerprintTaker::valuesText(ModelElementImpl const& element, meta::PropertyImpl& property) {
  meta::Property const handle(&property);
  std::vector<std::string> texts;
  // To ask for the value of a collection that is not there would make it.
  if (element.hasPropertyValue(handle, ReflectionPrivateTag::IN_MEMORY_ONLY)) {
    Value const value = element.getPropertyValue(handle, ReflectionPrivateTag::IN_MEMORY_ONLY);
    for (Value const& each : value.primitiveCollection().getAllValues()) texts.push_back(valueText(each));
  }
  return joined(texts, "[", "]");
}

std::string FingerprintTaker::membersText(ModelElementImpl const& element, meta::PropertyImpl& property) {
  std::vector<ModelElement> const members = detail::membersOf(element, property);
  bool const isMap = property.valueFlags() == meta::MAP;
  std::vector<std::u16string> const keys = isMap && !members.empty()
                                               ? detail::keysOf(*core(element).referenceCollection(property))
                                               : std::vector<std::u16string>();
  std::vector<std::string> texts;
  texts.reserve(members.size());
  for (std::size_t i = 0; i < members.size(); ++i) {
    texts.push_back((i < keys.size() ? quoted(keys[i]) + ": " : "") + targetText(members[i]));
    nameStep(element, property, members[i], property.valueFlags() == meta::SEQUENCE ? i : detail::NO_POSITION);
  }
  if (!property.isMany()) return texts.empty() ? "none" : texts.front();
  if (property.valueFlags() == meta::SEQUENCE) return joined(texts, "[", "]");
  // The real elements of a map are in order; the proxies behind them, and all of a set, are not.
  std::sort(texts.begin() + static_cast<std::ptrdiff_t>(keys.size()), texts.end());
  return joined(texts, "{", "}");
}

/// A contained member learns how it is reached from its container.
void FingerprintTaker::nameStep(ModelElementImpl const& element, meta::PropertyImpl const& property,
                                ModelElement const& member, std::size_t position) {
  if (!property.isComposite() || !member || core(*member).basicContainer() != &element) return;
  auto const place = m_places.find(member.impl());
  if (place != m_places.end()) {
    m_fingerprint.m_entries[place->second].step = detail::pathStep(property, *member, position);
  }
}

std::string FingerprintTaker::targetText(ModelElement const& target) const {
  if (target.isEmpty()) return "none";
  std::string uuid = boost::uuids::to_string(target->getUuid());
  if (!target) return "dead(" + uuid + ")";
  if (auto const id = target->getProxyId()) {
    // Each part in quotes, so that no two ids have one text, nor a list of them the text of another list.
    return "proxy(" + quoted(id->className) + " " + quoted(id->element) + (id->model ? "@" + quoted(*id->model) : "") +
           ")";
  }
  bool const isOurs = &target->model() == &m_model;
  return isOurs ? uuid : uuid + "@" + quoted(target->model().name());
}

Fingerprint Fingerprint::of(Model const& model) {
  return model.isEmpty() ? Fingerprint() : FingerprintTaker(model).take();
}

std::string Fingerprint::Entry::containerText() const {
  return container.is_nil() ? "none" : boost::uuids::to_string(container) + "/" + step;
}

bool Fingerprint::Entry::operator==(Entry const& other) const {
  return uuid == other.uuid && metaClass == other.metaClass && container == other.container && step == other.step &&
         values == other.values;
}

bool operator==(Fingerprint const& left, Fingerprint const& right) { return left.m_entries == right.m_entries; }

std::string Fingerprint::text() const {
  std::string result;
  for (Entry const& entry : m_entries) {
    result += entry.metaClass->narrowName() + " " + boost::uuids::to_string(entry.uuid) + "\n  in " +
              entry.containerText() + "\n";
    auto const properties = detail::storedProperties(*entry.metaClass);
    for (std::size_t i = 0; i < properties.size(); ++i) {
      result += "  " + groundwork::toUtf8(properties[i]->getName()) + " = " + entry.values[i] + "\n";
    }
  }
  return result;
}

std::uint64_t Fingerprint::hash() const { return std::hash<std::string>()(text()); }

Fingerprint::Entry const* Fingerprint::find(boost::uuids::uuid const& uuid) const {
  auto const found =
      std::lower_bound(m_entries.begin(), m_entries.end(), uuid,
                       [](Entry const& entry, boost::uuids::uuid const& wanted) { return entry.uuid < wanted; });
  return found == m_entries.end() || found->uuid != uuid ? nullptr : &*found;
}

std::string Fingerprint::pathOf(Entry const& entry) const {
  std::vector<std::string const*> steps{&entry.step};
  // A cycle of containers would never end.
  for (Entry const* each = find(entry.container); each != nullptr && steps.size() <= m_entries.size();) {
    steps.push_back(&each->step);
    each = find(each->container);
  }
  std::string path = *steps.back();
  std::for_each(steps.rbegin() + 1, steps.rend(), [&](std::string const* step) { path += "/" + *step; });
  return path;
}

boost::optional<Fingerprint::Difference> Fingerprint::compare(Fingerprint const& fingerprint, Entry const& left,
                                                              Entry const& right) {
  if (left.metaClass != right.metaClass) {
    return Difference{fingerprint.pathOf(left), "", left.metaClass->narrowName(), right.metaClass->narrowName()};
  }
  // Values first: the step tells a key or a position, which is the element's or the container's to report.
  auto const properties = detail::storedProperties(*left.metaClass);
  for (std::size_t i = 0; i < properties.size(); ++i) {
    if (left.values[i] == right.values[i]) continue;
    return Difference{fingerprint.pathOf(left), groundwork::toUtf8(properties[i]->getName()), left.values[i],
                      right.values[i]};
  }
  if (left.containerText() == right.containerText()) return boost::none;
  return Difference{fingerprint.pathOf(left), "container", left.containerText(), right.containerText()};
}

boost::optional<Fingerprint::Difference> diff(Fingerprint const& left, Fingerprint const& right) {
  auto at = left.m_entries.begin();
  auto other = right.m_entries.begin();
  while (at != left.m_entries.end() || other != right.m_entries.end()) {
    if (other == right.m_entries.end() || (at != left.m_entries.end() && at->uuid < other->uuid)) {
      return Fingerprint::Difference{left.pathOf(*at), "", at->metaClass->narrowName(), "absent"};
    }
    if (at == left.m_entries.end() || other->uuid < at->uuid) {
      return Fingerprint::Difference{right.pathOf(*other), "", "absent", other->metaClass->narrowName()};
    }
    if (auto difference = Fingerprint::compare(left, *at, *other)) return difference;
    ++at;
    ++other;
  }
  return boost::none;
}

std::string Fingerprint::Difference::text() const {
  return path + (property.empty() ? "" : ", " + property) + ": " + left + " against " + right;
}

std::ostream& operator<<(std::ostream& stream, Fingerprint::Difference const& difference) {
  return stream << difference.text();
}

}  // namespace plinth
