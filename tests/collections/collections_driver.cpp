#include "collections_driver.hpp"

#include <algorithm>
#include <boost/uuid/uuid_io.hpp>
#include <ostream>
#include <tessel_config_datamodel/ext/ConfigProfile.hpp>
#include <tessel_config_datamodel/ext/ConfigStore.hpp>
#include <tessel_config_datamodel/runtime/CategoryState.hpp>

#include "plinth/ChangeSet.hpp"
#include "plinth/FailurePoint.hpp"
#include "plinth/ProxyId.hpp"
#include "real_model.hpp"

namespace collections_test {

using plinth::element_cast;
using plinth::ElementMapBase;
using plinth::ModelElement;
using plinth::ReferenceCollection;
using plinth::ReferenceSequence;
using namespace tessel::internal;
using namespace tessel::internal::config::runtime;

namespace {

constexpr std::size_t MOST_ELEMENTS = 40;
constexpr std::size_t MOST_LEVELS = 4;

char const* const opNames[] = {
    "CREATE",    "ADD",   "INSERT",  "REPLACE",      "ENSURE_AT",  "INSERT_KEEPING", "INSERT_REPLACING", "REMOVE",
    "ERASE",     "CLEAR", "REKEY",   "SET_CATEGORY", "SET_ACTIVE", "SUBSET_ADD",     "SUBSET_REMOVE",    "SUBSET_CLEAR",
    "ADD_PROXY", "LOAD",  "RESOLVE", "DESTROY",      "BEGIN",      "COMMIT",         "ROLL_BACK"};

Feature featureOf(unsigned number) { return static_cast<Feature>(number % Coverage::FEATURES); }

std::u16string keyFrom(unsigned number) { return std::u16string(number % 3, static_cast<char16_t>(u'a' + number % 4)); }

#ifdef TESSEL_FAILURE_POINTS
void arm(Step const& step) {
  if (step.fail != 0) plinth::armFailurePoint("", step.fail);
}
bool disarm() { return plinth::disarmFailurePoint(); }
#else
void arm(Step const&) {}
bool disarm() { return false; }
#endif

/// As an expectation that raises nothing.
template <class Change>
auto quietly(Change const& change) {
  return [change](PlainModel& plain) {
    change(plain);
    return std::string();
  };
}

}  // namespace

std::ostream& operator<<(std::ostream& stream, Step const& step) {
  return stream << "{Op::" << opNames[at(step.op)] << ", " << step.a << ", " << step.b << ", " << step.c << ", "
                << step.d << ", " << step.fail << "}";
}

Driver::Driver(bool listens, Coverage& coverage) : m_coverage(coverage) {
  if (listens) m_registration = m_model.addListener([this](plinth::ChangeSet const& changes) { listen(changes); });
}

Driver::~Driver() {
  if (!m_transactions.empty()) m_transactions.front().reset();  // with the inner ones still open
}

std::string Driver::run(Step const& step) {
  switch (step.op) {
    case Op::CREATE:
      create(step);
      break;
    case Op::ADD:
    case Op::INSERT:
    case Op::REPLACE:
    case Op::ENSURE_AT:
    case Op::INSERT_KEEPING:
    case Op::INSERT_REPLACING:
      put(step);
      break;
    case Op::SUBSET_ADD:
    case Op::SUBSET_REMOVE:
    case Op::SUBSET_CLEAR:
      subset(step);
      break;
    case Op::ADD_PROXY:
      addProxy(step);
      break;
    case Op::LOAD:
      load(step);
      break;
    case Op::BEGIN:
      begin();
      break;
    case Op::COMMIT:
      commit(step);
      break;
    case Op::ROLL_BACK:
      rollBack(step);
      break;
    case Op::REMOVE:
    case Op::ERASE:
    case Op::CLEAR:
    case Op::RESOLVE:
      takeOut(step);
      break;
    case Op::DESTROY:
      destroy(step);
      break;
    default:
      set(step);
  }
  compare();
  return m_difference;
}

void Driver::fail(std::string const& difference) {
  if (m_difference.empty()) m_difference = difference;
}

// What a step chooses.

int Driver::pick(std::function<bool(Kind)> const& fits, unsigned number) const {
  Numbers candidates;
  for (auto const& [id, item] : m_plain.items) {
    if (item.live && fits(item.kind)) candidates.push_back(id);
  }
  return candidates.empty() ? -1 : candidates[number % candidates.size()];
}

/// The collection behind a place; asking for it resolves proxies, like any public access by reflection.
ReferenceCollection& Driver::access(Place const& place) {
  ModelElement const owner = m_handles.at(place.first);
  auto const before = m_plain.proxiesIn(place).size();
  m_base = m_transactions.empty() ? m_plain : m_base;
  plinth::Value value = owner->getPropertyValue(propertyOf(owner, nameOf(place.second)));
  m_plain.resolve(place);
  m_coverage.proxiesResolved += before - m_plain.proxiesIn(place).size();
  return value.referenceCollection();
}

ReferenceCollection* Driver::present(Place const& place) const {
  ModelElement const& owner = m_handles.at(place.first);
  return core(*owner).referenceCollection(*propertyOf(owner, nameOf(place.second)).impl());
}

ModelElement Driver::handleOf(ReferenceCollection& collection, int id) const {
  for (ModelElement const& member : collection.getAllValuesAndProxies()) {
    if (idOf(member) == id) return member;
  }
  auto const found = m_handles.find(id);
  return found == m_handles.end() ? ModelElement() : found->second;
}

// Doing it.

void Driver::perform(Step const& step, Real const& real, Plain const& plain) {
  PlainModel expected = m_plain;
  std::string const message = plain(expected);
  if (m_transactions.empty()) m_base = m_plain;
  m_told.clear();
  std::string raised;
  arm(step);
  try {
    real();
  } catch (groundwork::except::IMsgIDException const& exception) {
    raised = exception.get_error_id().key;
  } catch (std::bad_alloc const&) {
    raised = "out of memory";
  }
  bool const failed = disarm();
  if (failed) {
    ++m_coverage.failed[at(step.op)];
    if (raised != "out of memory") fail("a failure was lost: " + raised);
    return;
  }
  if (raised != message) fail("message: expected " + message + ", found " + raised);
  ++(message.empty() ? m_coverage.done : m_coverage.refused)[at(step.op)];
  if (!message.empty()) return;
  if (m_transactions.empty()) expected.touched.clear();
  for (auto const& [id, item] : expected.items) {
    for (std::size_t i = 0; item.live && m_plain.isLive(id) && i < Coverage::FEATURES; ++i) {
      Place const place{id, static_cast<Feature>(i)};
      bool const changes = owns(item.kind, place.second) && expected.contents(place) != m_plain.contents(place);
      if (changes) expected.touched.insert(place);
    }
  }
  m_plain = std::move(expected);
  if (m_transactions.empty()) checkTold(m_base);
}

void Driver::create(Step const& step) {
  auto const kind = static_cast<Kind>(step.a % at(Kind::COUNT));
  std::size_t const live = static_cast<std::size_t>(
      std::count_if(m_plain.items.begin(), m_plain.items.end(), [](auto const& i) { return i.second.live; }));
  if (live >= MOST_ELEMENTS) return;
  int const id = m_next++;
  perform(
      step, [&] { m_handles[id] = createElement(m_model, kind, id); },
      [&](PlainModel& plain) {
        plain.items[id] = {kind, true, u""};
        return "";
      });
  if (!m_plain.isLive(id)) m_handles.erase(id);
}

void Driver::put(Step const& step) {
  Feature const feature = featureOf(step.a);
  int const owner = pick([&](Kind kind) { return owns(kind, feature); }, step.b);
  int const id = pick([&](Kind kind) { return accepts(feature, kind); }, step.c);
  if (owner < 0 || id < 0) return;
  Place const place{owner, feature};
  ReferenceCollection& collection = access(place);
  ModelElement const element = m_handles.at(id);
  std::size_t const size = m_plain.contents(place).size();
  bool const inserts = step.op == Op::INSERT || step.op == Op::ENSURE_AT;
  std::size_t position = step.op == Op::REPLACE ? (size == 0 ? 0 : step.d % size)
                         : inserts              ? step.d % (size + 1)
                                                : size;
  if (m_plain.containers.count(id) != 0 && isComposite(feature) && m_plain.containers.at(id) != place)
    ++m_coverage.crossedContainers;
  auto const index = static_cast<std::uint32_t>(position);
  auto collision = Collision::RAISE;
  Real real;
  if (isSequence(feature)) {
    auto& sequence = static_cast<ReferenceSequence&>(collection);
    if (step.op == Op::REPLACE) {
      if (size == 0) return;
      real = [&] { sequence.replaceAt(position, element); };
    } else if (step.op == Op::ENSURE_AT) {
      if (position == size && size != 0) position = size - 1;
      real = [&, at = static_cast<std::uint32_t>(position)] {
        sequence.getGenericInterface()->genericEnsureAt(element, at);
      };
    } else if (step.op == Op::INSERT) {
      real = [&] {
        static_cast<plinth::GenericSequenceInterface*>(sequence.getGenericInterface())->genericInsert(element, index);
      };
    } else {
      real = [&] { sequence.addElement(element); };
    }
  } else if (isMap(feature) && step.op != Op::ADD) {
    if (step.op == Op::INSERT_KEEPING) collision = Collision::KEEP;
    if (step.op == Op::INSERT_REPLACING) collision = Collision::REPLACE;
    real = [&] {
      static_cast<ElementMapBase&>(collection)
          .insertElement(element, static_cast<plinth::CollisionResolution>(collision));
    };
  } else {
    real = [&] { collection.getGenericInterface()->genericAdd(element); };
  }
  perform(step, real, [&](PlainModel& plain) {
    if (isSequence(feature) && step.op == Op::REPLACE) return plain.replace(place, position, id);
    if (isSequence(feature) && step.op == Op::ENSURE_AT) return plain.ensureAt(place, position, id);
    return plain.put(place, position, id, collision);
  });
  auto const members = m_plain.contents(place);
  if (std::count(members.begin(), members.end(), id) > 1) ++m_coverage.repeatedMembers;
}

void Driver::takeOut(Step const& step) {
  Feature const feature = featureOf(step.a);
  int const owner = pick([&](Kind kind) { return owns(kind, feature); }, step.b);
  if (owner < 0) return;
  Place const place{owner, feature};
  ReferenceCollection& collection = access(place);
  Numbers members = m_plain.contents(place);
  if (step.op == Op::RESOLVE) {
    ++m_coverage.done[at(step.op)];
  } else if (step.op == Op::CLEAR) {
    perform(
        step, [&] { collection.clear(); }, quietly([&](PlainModel& plain) { plain.clear(place); }));
  } else if (step.op == Op::ERASE) {
    if (!isSequence(feature) || members.empty()) return;
    std::size_t const index = step.c % members.size();
    std::size_t const count = step.d % 2 == 0 ? 1 : step.d / 2 % (members.size() - index + 1);
    perform(
        step, [&] { static_cast<ReferenceSequence&>(collection).eraseRange(index, index + count); },
        quietly([&](PlainModel& plain) {
          for (std::size_t i = 0; i < count; ++i) plain.eraseAt(place, index);
        }));
  } else {
    for (int const proxy : m_plain.proxiesIn(place)) members.push_back(~proxy);
    int const stranger = pick([&](Kind kind) { return accepts(feature, kind); }, step.d);
    int const id = members.empty() || step.d % 8 == 0 ? stranger : members[step.c % members.size()];
    if (id == -1) return;
    ModelElement const element = handleOf(collection, id);
    perform(
        step,
        [&] {
          if (isSequence(feature)) {
            static_cast<ReferenceSequence&>(collection).removeElement(element);
          } else {
            static_cast<plinth::ReferenceAssociative&>(collection).removeMember(element);
          }
        },
        quietly([&](PlainModel& plain) { plain.remove(place, id); }));
  }
}

void Driver::set(Step const& step) {
  if (step.op == Op::REKEY) {
    int const id = pick(&hasKey, step.b);
    if (id < 0) return;
    if (m_plain.containers.count(id) != 0) access(m_plain.containers.at(id));
    std::u16string const key = keyFrom(step.c);
    perform(
        step, [&] { setKey(m_handles.at(id), m_plain.items.at(id).kind, key); },
        [&](PlainModel& plain) { return plain.rekey(id, key); });
  } else if (step.op == Op::SET_CATEGORY) {
    int const id = pick([](Kind kind) { return owns(kind, Feature::TAGS_OF); }, step.b);
    int const category = step.d % 5 == 0 ? -1 : pick([](Kind kind) { return kind == Kind::CATEGORY; }, step.c);
    if (id < 0) return;
    auto const target = category < 0 ? CategoryState() : element_cast<CategoryState>(m_handles.at(category));
    perform(
        step, [&] { element_cast<ControllableState>(m_handles.at(id))->setCategory(target); },
        quietly([&](PlainModel& plain) { plain.setCategory(id, category); }));
  } else {
    int const id = pick([](Kind kind) { return kind == Kind::STORE; }, step.b);
    int const profile = pick([](Kind kind) { return kind == Kind::PROFILE; }, step.c);
    if (id < 0 || profile < 0) return;
    auto const store = element_cast<ext::ConfigStore>(m_handles.at(id));
    perform(
        step, [&] { store->setActiveProfile(element_cast<ext::ConfigProfile>(m_handles.at(profile))); },
        quietly([&](PlainModel& plain) { plain.active[id] = profile; }));
  }
}

void Driver::destroy(Step const& step) {
  int const id = pick([](Kind) { return true; }, step.a);
  if (id < 0) return;
  perform(
      step, [&] { m_handles.at(id)->destroy(); }, quietly([&](PlainModel& plain) { plain.destroy(id); }));
}

void Driver::subset(Step const& step) {
  View const& view = views[step.a % std::size(views)];
  int const owner = pick([&](Kind kind) { return owns(kind, view.parent); }, step.b);
  int const id = pick([&](Kind kind) { return kind == view.kind; }, step.c);
  if (owner < 0 || id < 0) return;
  Place const place{owner, view.parent};
  access(place);
  ModelElement const holder = m_handles.at(owner);
  auto& collection = holder->getPropertyValue(propertyOf(holder, view.name)).referenceCollection();
  if (step.op == Op::SUBSET_ADD) {
    perform(
        step, [&] { collection.genericAdd(m_handles.at(id)); },
        [&](PlainModel& plain) { return plain.put(place, plain.contents(place).size(), id); });
  } else if (step.op == Op::SUBSET_REMOVE) {
    perform(
        step, [&] { collection.genericRemove(m_handles.at(id)); },
        [&](PlainModel& plain) { return plain.remove(place, id), ""; });
  } else {
    perform(
        step, [&] { collection.clear(); },
        [&](PlainModel& plain) {
          for (int const member : plain.contents(place)) {
            if (isShown(plain, member, view)) plain.remove(place, member);
          }
          return "";
        });
  }
}

void Driver::addProxy(Step const& step) {
  // In sequences the proxies stay what they are; those of maps and sets come to life with LOAD. One at a time in each,
  // since the order of a proxy table is nobody's business.
  constexpr Feature places[] = {Feature::OPERANDS, Feature::CONTENTS, Feature::TAGS_OF,
                                Feature::VALUES,   Feature::PARAMS,   Feature::MEMBERS};
  Feature const feature = places[step.a % std::size(places)];
  int const owner = pick([&](Kind kind) { return owns(kind, feature); }, step.b);
  Place const place{owner, feature};
  if (owner < 0 || !m_plain.proxiesIn(place).empty()) return;
  Kind kind = Kind::PARAM;
  if (feature == Feature::OPERANDS) kind = Kind::OPERATION;
  if (feature == Feature::TAGS_OF) kind = Kind::TAG;
  if (feature == Feature::VALUES) kind = Kind::ENTRY;
  ReferenceCollection& collection = access(place);
  int const id = m_next++;
  auto const& metaClass = classOf(kind);
  std::string const uuid = to_string(uuidOf(id));
  ModelElement const proxy =
      m_model->createProxy(metaClass, {metaClass->getQualifiedName(), {uuid.begin(), uuid.end()}, boost::none});
  perform(
      step, [&] { collection.genericAdd(proxy); },
      [&](PlainModel& plain) {
        plain.items[id] = {kind, false, u""};
        return plain.addProxy(place, id), "";
      });
  if (!isSequence(feature)) m_ghosts.insert(id);
}

void Driver::load(Step const& step) {
  if (m_ghosts.empty()) return;
  int const id = *std::next(m_ghosts.begin(), static_cast<std::ptrdiff_t>(step.a % m_ghosts.size()));
  auto const item = m_plain.items.find(id);
  if (item == m_plain.items.end() || item->second.live || m_handles.count(id) != 0) return;
  perform(
      step, [&] { m_handles[id] = createElement(m_model, item->second.kind, id); },
      [&](PlainModel& plain) { return plain.items[id].live = true, ""; });
  if (!m_plain.isLive(id)) m_handles.erase(id);
}

void Driver::begin() {
  if (m_transactions.size() == MOST_LEVELS) return;
  if (m_transactions.empty()) m_plain.touched.clear();
  if (m_transactions.empty()) m_base = m_plain;
  m_transactions.push_back(std::make_unique<plinth::Transaction>(m_model.beginTransaction()));
  m_snapshots.push_back(m_plain);
  m_fingerprints.push_back(plinth::Fingerprint::of(m_model));
  ++m_coverage.done[at(Op::BEGIN)];
}

void Driver::commit(Step const& step) {
  if (m_transactions.empty()) return;
  std::size_t const depth = m_transactions.size();
  m_told.clear();
  arm(step);
  bool committed = true;
  try {
    m_transactions.back()->commit();
  } catch (std::bad_alloc const&) {
    committed = false;
  }
  if (disarm() == committed) fail("a failure in commit was lost");
  if (!committed) {
    ++m_coverage.failed[at(Op::COMMIT)];
    Step back{Op::ROLL_BACK, static_cast<unsigned>(depth - 1), 0, 0, 0, 0};
    rollBack(back);
    return;
  }
  ++m_coverage.done[at(Op::COMMIT)];
  ++m_coverage.committedAt[depth];
  m_transactions.pop_back();
  m_snapshots.pop_back();
  m_fingerprints.pop_back();
  if (m_transactions.empty()) checkTold(m_base);
}

/// Takes back the innermost levels down to one of them, by ending that one with the inner ones still open.
void Driver::rollBack(Step const& step) {
  if (m_transactions.empty()) return;
  std::size_t const depth = step.a % m_transactions.size();
  ++m_coverage.done[at(Op::ROLL_BACK)];
  ++m_coverage.rolledBackLevels[m_transactions.size() - depth];
  m_transactions[depth].reset();
  m_transactions.resize(depth);
  PlainModel const undone = std::exchange(m_plain, m_snapshots[depth]);
  noteRollBack(undone);
  if (auto const difference = diff(m_fingerprints[depth], plinth::Fingerprint::of(m_model)))
    fail("after a rollback, " + difference->text());
  m_snapshots.resize(depth);
  m_fingerprints.erase(m_fingerprints.begin() + static_cast<std::ptrdiff_t>(depth), m_fingerprints.end());
}

void Driver::noteRollBack(PlainModel const& undone) {
  for (auto const& [id, item] : undone.items) {
    if (item.live && !m_plain.isLive(id)) {  // created in what was taken back
      if (m_handles.at(id)) fail("element " + text(id) + " lives on after the rollback of its creation");
      m_handles.erase(id);
      continue;
    }
    if (!m_plain.isLive(id)) continue;
    if (!item.live) ++m_coverage.reborn;
    for (std::size_t i = 0; i < Coverage::FEATURES; ++i) {
      Place const place{id, static_cast<Feature>(i)};
      if (item.live && undone.contents(place) != m_plain.contents(place)) ++m_coverage.rolledBack[i];
    }
  }
}

}  // namespace collections_test
