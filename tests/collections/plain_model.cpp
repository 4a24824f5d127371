#include "plain_model.hpp"

#include <algorithm>

namespace collections_test {
namespace {

bool isControllable(Kind kind) { return kind == Kind::PARAM || kind == Kind::CATEGORY; }

bool has(Numbers const& numbers, int id) { return std::count(numbers.begin(), numbers.end(), id) != 0; }

void drop(Numbers& numbers, int id) { numbers.erase(std::remove(numbers.begin(), numbers.end(), id), numbers.end()); }

void dropFirst(Numbers& numbers, int id) {
  auto const at = std::find(numbers.begin(), numbers.end(), id);
  if (at != numbers.end()) numbers.erase(at);
}

}  // namespace

bool owns(Kind kind, Feature feature) {
  switch (feature) {
    case Feature::PROFILES:
      return kind == Kind::STORE;
    case Feature::VALUES:
      return kind == Kind::PROFILE;
    case Feature::OPERANDS:
      return kind == Kind::OPERATION;
    case Feature::CONTENTS:
      return kind == Kind::CATEGORY;
    case Feature::TAGS_OF:
      return isControllable(kind);
    case Feature::TAGGED:
      return kind == Kind::TAG;
    case Feature::MEMBERS:
      return kind == Kind::PERSPECTIVE;
    default:
      return kind == Kind::CONFIGURATION;
  }
}

bool accepts(Feature feature, Kind kind) {
  switch (feature) {
    case Feature::PROFILES:
      return kind == Kind::PROFILE;
    case Feature::VALUES:
      return kind == Kind::ENTRY;
    case Feature::OPERANDS:
      return kind == Kind::OPERATION;
    case Feature::CATEGORIES:
      return kind == Kind::CATEGORY;
    case Feature::PARAMS:
      return kind == Kind::PARAM;
    case Feature::TAGS:
    case Feature::TAGS_OF:
      return kind == Kind::TAG;
    case Feature::PERSPECTIVES:
      return kind == Kind::PERSPECTIVE;
    default:
      return isControllable(kind);
  }
}

Numbers PlainModel::contents(Place const& place) const {
  Numbers found;
  if (place.second == Feature::TAGGED) {
    for (auto const& [where, tags] : m_lists) {
      if (where.second == Feature::TAGS_OF && has(tags, place.first)) found.push_back(where.first);
    }
  } else if (m_lists.count(place) != 0) {
    found = m_lists.at(place);
  }
  if (isMap(place.second)) {
    std::sort(found.begin(), found.end(), [&](int a, int b) { return items.at(a).key < items.at(b).key; });
  } else if (!isSequence(place.second)) {
    std::sort(found.begin(), found.end());
  }
  return found;
}

std::set<int> PlainModel::proxiesIn(Place const& place) const {
  auto const found = m_proxies.find(place);
  return found == m_proxies.end() ? std::set<int>() : found->second;
}

int PlainModel::categoryOf(int id) const {
  for (auto const& [where, members] : m_lists) {
    if (where.second == Feature::CONTENTS && has(members, id)) return where.first;
  }
  return -1;
}

bool PlainModel::liesIn(int id, int candidate) const {
  while (id != candidate) {
    auto const above = containers.find(id);
    if (above == containers.end()) return false;
    id = above->second.first;
  }
  return true;
}

int PlainModel::bearerOf(Place const& place, std::u16string const& key) const {
  for (int const member : contents(place)) {
    if (items.at(member).key == key) return member;
  }
  return -1;
}

/// What becomes of an element that has been taken out of a list.
void PlainModel::leave(int id, Place const& place) {
  auto const held = containers.find(id);
  if (held != containers.end() && held->second == place && !has(m_lists[place], id)) containers.erase(held);
}

/// Everything about a new member but its place in the list.
void PlainModel::moveInto(Place const& place, int id) {
  if (place.second == Feature::CONTENTS) setCategory(id, -1);
  if (!isComposite(place.second)) return;
  auto const old = containers.find(id);
  if (old != containers.end() && old->second != place) drop(m_lists[old->second], id);
  containers[id] = place;
}

std::string PlainModel::put(Place const& place, std::size_t at, int id, Collision collision) {
  if (isUnique(place.second) && has(contents(place), id)) return "";
  if (place.second == Feature::TAGGED) {
    m_lists[{id, Feature::TAGS_OF}].push_back(place.first);
    return "";
  }
  Numbers& members = m_lists[place];
  if (isMap(place.second)) {
    int const bearer = bearerOf(place, items.at(id).key);
    if (bearer >= 0 && collision == Collision::RAISE) return "UniquenessConstraint";
    if (bearer >= 0 && collision == Collision::KEEP) return "";
    if (bearer >= 0) remove(place, bearer);
    at = members.size();
  }
  if (isComposite(place.second) && liesIn(place.first, id)) return "CannotContainAncestor";
  moveInto(place, id);
  members.insert(members.begin() + static_cast<std::ptrdiff_t>(std::min(at, members.size())), id);
  return "";
}

std::string PlainModel::replace(Place const& place, std::size_t at, int id) {
  Numbers& members = m_lists[place];
  int const old = members[at];
  if (old == id) return "";
  if (isUnique(place.second) && has(members, id)) return "CannotAddSecondObject";
  if (isComposite(place.second) && liesIn(place.first, id)) return "CannotContainAncestor";
  moveInto(place, id);
  members[at] = id;
  leave(old, place);
  return "";
}

std::string PlainModel::ensureAt(Place const& place, std::size_t at, int id) {
  Numbers& members = m_lists[place];
  if (!isUnique(place.second) || !has(members, id)) return put(place, at, id);
  if (at < members.size())
    std::iter_swap(std::find(members.begin(), members.end(), id), members.begin() + static_cast<std::ptrdiff_t>(at));
  return "";
}

void PlainModel::remove(Place const& place, int id) {
  if (id < 0 && !isSequence(place.second)) {
    m_proxies[place].erase(~id);
  } else if (place.second == Feature::TAGGED) {
    drop(m_lists[{id, Feature::TAGS_OF}], place.first);
  } else {
    dropFirst(m_lists[place], id);
    leave(id, place);
  }
}

void PlainModel::eraseAt(Place const& place, std::size_t at) {
  Numbers& members = m_lists[place];
  int const id = members[at];
  members.erase(members.begin() + static_cast<std::ptrdiff_t>(at));
  leave(id, place);
}

void PlainModel::clear(Place const& place) {
  for (int const id : contents(place)) remove(place, id);
  m_proxies.erase(place);
}

std::string PlainModel::rekey(int id, std::u16string const& key) {
  if (items.at(id).key == key) return "";
  auto const place = containers.find(id);
  if (place != containers.end() && isMap(place->second.second) && bearerOf(place->second, key) >= 0) {
    return "UniquenessConstraint";
  }
  items.at(id).key = key;
  return "";
}

void PlainModel::setCategory(int id, int category) {
  int const old = categoryOf(id);
  if (old == category) return;
  if (old >= 0) drop(m_lists[{old, Feature::CONTENTS}], id);
  if (category >= 0) m_lists[{category, Feature::CONTENTS}].push_back(id);
}

void PlainModel::addProxy(Place const& place, int id) {
  if (isSequence(place.second)) {
    m_lists[place].push_back(~id);
  } else {
    m_proxies[place].insert(id);
  }
}

void PlainModel::resolve(Place const& place) {
  if (isSequence(place.second)) return;
  for (int const id : proxiesIn(place)) {
    if (isLive(id) && put(place, 0, id).empty()) m_proxies[place].erase(id);
  }
}

void PlainModel::destroy(int id) {
  auto const held = containers.find(id);
  if (held != containers.end()) drop(m_lists[held->second], id);
  Numbers doomed{id};
  for (std::size_t i = 0; i < doomed.size(); ++i) {
    for (auto const& [child, place] : containers) {
      if (place.first == doomed[i]) doomed.push_back(child);
    }
  }
  for (int const each : doomed) {
    items.at(each).live = false;
    containers.erase(each);
    active.erase(each);
    for (int feature = 0; feature < static_cast<int>(Feature::COUNT); ++feature) {
      m_lists.erase({each, static_cast<Feature>(feature)});
      m_proxies.erase({each, static_cast<Feature>(feature)});
    }
    for (auto& [where, members] : m_lists) {
      if (where.second == Feature::CONTENTS || where.second == Feature::TAGS_OF) drop(members, each);
    }
  }
}

}  // namespace collections_test
