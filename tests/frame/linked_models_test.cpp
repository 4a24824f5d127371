// Several named models whose elements are linked by opposites, containments and plain references, within a model and
// across, with proxies, loaders that misbehave, elements that leave memory, frozen models, listeners, failing
// allocations and nested transactions: random steps, and after each one every model is sound, what was refused has
// changed nothing, and what was rolled back is as before.
#include <gtest/gtest.h>

#include <boost/uuid/uuid_io.hpp>
#include <deque>
#include <list>
#include <map>
#include <optional>
#include <random>
#include <set>

#include "plinth/ChangeSet.hpp"
#include "plinth/ElementDirectory.hpp"
#include "plinth/FailurePoint.hpp"
#include "plinth/Freezer.hpp"
#include "plinth/ModelDirectory.hpp"
#include "plinth/ProxyId.hpp"
#include "plinth/diagnostics/ValueText.hpp"
#include "plinth/sample_model.hpp"
#include "support/checks.hpp"
#include "support/random_sequences.hpp"
#include "support/specimens.hpp"

namespace {

using plinth::Model;
using plinth::ModelDirectory;
using plinth::ModelElement;
using plinth::ProxyId;
using plinth::ReferenceCollection;
using plinth::ReflectionPrivateTag;
using plinth::Value;
using plinth::meta::ClassImpl;
using plinth::meta::Property;
using plinth::meta::PropertyImpl;

enum Op {
  CREATE,
  PROXY,
  LINK,
  SET,
  TAKE,
  READ,
  REPLACE_PROXY,
  REKEY,
  DESTROY,
  UNLOAD,
  BEGIN,
  COMMIT,
  ROLL_BACK,
  FREEZE,
  OPS
};
char const* const opNames[OPS] = {"CREATE", "PROXY",   "LINK",   "SET",   "TAKE",   "READ",      "REPLACE_PROXY",
                                  "REKEY",  "DESTROY", "UNLOAD", "BEGIN", "COMMIT", "ROLL_BACK", "FREEZE"};

/// The numbers choose among what there is, so that a step means something in any state.
struct Step {
  Op op;
  unsigned a, b, c, d;
  unsigned fail;  ///< the passage of a failure point that fails; 0: none
  friend std::ostream& operator<<(std::ostream& stream, Step const& step) {
    return stream << "{" << opNames[step.op] << ", " << step.a << ", " << step.b << ", " << step.c << ", " << step.d
                  << ", " << step.fail << "}";
  }
};

/// What a run has come to; the keys of refusals are among it.
using Coverage = std::map<std::string, unsigned long>;

std::vector<plinth::meta::Class> const& classes() {
  static auto const* const all = new std::vector<plinth::meta::Class>{
      sample::runtime::ParamState::metaClass(),         sample::runtime::CategoryState::metaClass(),
      sample::runtime::TagState::metaClass(),           sample::runtime::PerspectiveState::metaClass(),
      sample::runtime::ConfigurationState::metaClass(), sample::ext::ConfigEntry::metaClass(),
      sample::ext::ConfigProfile::metaClass(),          sample::data::DoubleParamData::metaClass(),
      sample::expr::NumericOperation::metaClass()};
  return *all;
}

/// The properties of a class that hold elements, and that some class above has elements for.
std::vector<PropertyImpl*> const& links(ClassImpl const& metaClass) {
  static auto* const known = new std::map<ClassImpl const*, std::vector<PropertyImpl*>>();
  auto const [at, isNew] = known->try_emplace(&metaClass);
  if (isNew) {
    for (PropertyImpl* property : metaClass.allProperties()) {
      auto const fits = [&](auto const& each) { return each->conformsTo(*property->type()); };
      bool const isOfUse = !property->isDerived() && support::isElementTyped(*property) &&
                           std::any_of(classes().begin(), classes().end(), fits);
      if (isOfUse) at->second.push_back(property);
    }
  }
  return at->second;
}

class World {
 public:
  World(unsigned seed, Coverage& coverage)
      : m_coverage(coverage), m_proxiesInContainments(seed % 2 == 0), m_loads(seed) {
    for (char16_t const* name : {u"a", u"b", u"c"}) add(name);
    if (seed % 3 == 0) {
      for (Place& place : m_models) {
        m_listeners.push_back(place.model.addListener([this](plinth::ChangeSet const&) { ++m_coverage["told"]; }));
      }
    }
    ModelDirectory::getInstance().setLoader([this](std::u16string const& name) { return load(name); });
  }
  World(World const&) = delete;
  World& operator=(World const&) = delete;
  ~World() {
    while (!m_open.empty()) m_open.erase(m_open.begin());
    ModelDirectory::getInstance().setLoader({});
  }

  /// What is wrong after the step, or the empty text.
  std::string run(Step const& step) {
    std::string const before = state();
    m_loaded = false;
    std::string const refusal = attempt(step);
    ++m_coverage[opNames[step.op]];
    if (!refusal.empty()) ++m_coverage[refusal];
    bool const isOneStep = step.op != LINK && !m_loaded;
    if (m_wrong.empty() && !refusal.empty() && isOneStep) expectSame(before, state(), "the refusal " + refusal);
    if (auto const findings = plinth::verifyNamedModels(); m_wrong.empty() && !findings.empty()) {
      m_wrong = std::to_string(findings.size()) + " findings, the first: " + findings.front().text();
    }
    return m_wrong.empty() ? m_wrong : m_wrong + "\nafter " + opNames[step.op] + " of " + m_told + " " + refusal;
  }

 private:
  struct Place {
    Model model;
    std::optional<Model::Freezer> freezer;
  };
  struct Open {
    std::size_t model;
    plinth::Transaction transaction;
    std::string before;
  };

  Model add(std::u16string const& name) {
    m_models.emplace_back();
    m_models.back().model = Model::create();
    m_models.back().model->setName(name);
    return m_models.back().model;
  }

  std::string attempt(Step const& step) {
#ifdef TESSEL_FAILURE_POINTS
    if (step.fail != 0) plinth::armFailurePoint("", step.fail);
#endif
    std::string const refusal = support::raised([&] { perform(step); });
#ifdef TESSEL_FAILURE_POINTS
    if (plinth::disarmFailurePoint()) ++m_coverage["failed"];
#endif
    return refusal;
  }

  void perform(Step const& step) {
    Place& place = m_models[step.a % m_models.size()];
    bool const isAny = step.a % 16 == 0;  // dead ones and proxies too
    ModelElement const element =
        pick(step.b, [&](ModelElement const& each) { return isAny || (each && !each->isProxy()); });
    switch (step.op) {
      case CREATE:
        return create(place.model, step.b, step.c);
      case PROXY:
        return createProxy(place.model, step);
      case BEGIN:
        return begin(step.a % m_models.size());
      case COMMIT:
      case ROLL_BACK:
        return end(step);
      case FREEZE:
        if (place.freezer) {
          place.freezer.reset();
        } else if (step.c % 8 == 0) {
          place.freezer.emplace(place.model);
        }
        return;
      default:
        if (!element.isEmpty()) change(step, place, element);
    }
  }

  void change(Step const& step, Place& place, ModelElement const& element) {
    m_told = nameOf(element);
    if (step.op == DESTROY) return element->destroy();
    if (step.op == UNLOAD) return (step.c % 8 == 0 || !element ? place.model : element->getModel())->unload(element);
    if (step.op == READ) return read(element);
    if (step.op == REKEY) return rekey(element, step.c);
    if (step.op == LINK) return link(element, step);
    auto const& properties = links(*element->getMetaClass().impl());
    if (properties.empty()) return;
    PropertyImpl& property = *properties[step.c % properties.size()];
    bool const isAny = step.d % 16 == 0;
    bool const isProxy = step.d % 2 == 0 && (m_proxiesInContainments || !property.isComposite());
    ModelElement const target = pick(step.d, [&](ModelElement const& each) {
      if (each && !each->getMetaClass()->conformsTo(*property.type())) return false;
      if (each && each->isProxy() && !isProxy) return false;
      return isAny ||
             (each && each->isProxy() == isProxy && core(*each).modelIdentity() == core(*element).modelIdentity());
    });
    m_reading = {element, &property};
    m_told = nameOf(element) + "." + plinth::quoted(property.getName()) + ", target " + nameOf(target);
    if (property.isMany()) {
      changeMembers(step, element, property, target);
    } else if (step.op != REPLACE_PROXY) {
      bool const resolves = step.a % 2 == 0;
      element->setPropertyValue(
          Property(&property),
          Value::createElementValue(Property(&property), step.op == TAKE ? ModelElement() : target),
          resolves ? ReflectionPrivateTag::PUBLIC_ACCESS : ReflectionPrivateTag::NO_PROXY_RESOLVE);
    }
  }

  /// Both ends of an opposite get a proxy of each other, as when two models are loaded.
  void link(ModelElement const& element, Step const& step) {
    for (PropertyImpl* property : links(*element->getMetaClass().impl())) {
      PropertyImpl* const opposite = property->opposite();
      if (opposite == nullptr) continue;
      ModelElement const far = pick(step.d, [&](ModelElement const& each) {
        return each && !each->isProxy() && each->getMetaClass()->conformsTo(*property->type());
      });
      if (far.isEmpty() || !far->getMetaClass()->conformsTo(*opposite->owningType())) continue;
      m_reading = {element, property};
      put(element, *property, far);
      if (far) put(far, *opposite, element);
      return;
    }
  }
  static void put(ModelElement const& element, PropertyImpl& property, ModelElement const& far) {
    if (!element || !far) return;
    auto const model = element->getModel();
    bool const isLocal = core(*far).modelIdentity() == core(*element).modelIdentity();
    auto const proxy = model->createProxy(far->getMetaClass(), far->getPersistentProxyId(isLocal));
    if (property.isMany()) {
      auto const value = element->getPropertyValue(Property(&property), ReflectionPrivateTag::IN_MEMORY_ONLY);
      value.referenceCollection().genericAdd(proxy);
    } else {
      element->setPropertyValue(Property(&property), Value::createElementValue(Property(&property), proxy),
                                ReflectionPrivateTag::NO_PROXY_RESOLVE);
    }
  }

  void changeMembers(Step const& step, ModelElement const& element, PropertyImpl& property,
                     ModelElement const& target) {
    auto const* const tag =
        step.a % 2 == 0 ? &ReflectionPrivateTag::IN_MEMORY_ONLY : &ReflectionPrivateTag::PUBLIC_ACCESS;
    ReferenceCollection& collection = element->getPropertyValue(Property(&property), *tag).referenceCollection();
    if (element->isProxy()) m_wrong = "a proxy gives a collection away";
    auto& view = *collection.getGenericInterface();
    std::uint32_t const size = view.genericSize();
    auto* const sequence =
        view.isSequenceInterface() && size > 0 ? static_cast<plinth::GenericSequenceInterface*>(&view) : nullptr;
    std::uint32_t const at = size == 0 ? 0 : step.d % size;
    unsigned const way = step.b / 7 % 4;
    if (step.op == REPLACE_PROXY) {
      collection.replaceProxy(target);
    } else if (step.op == SET) {
      if (sequence == nullptr || way == 0) {
        view.genericAdd(target);
      } else if (way == 1) {
        sequence->genericInsert(target, at);
      } else if (way == 2) {
        sequence->genericReplace(target, at);
      } else {
        sequence->genericEnsureAt(target, at);
      }
    } else if (way == 0 && step.d % 4 == 0) {
      view.genericClear();
    } else if (sequence != nullptr && way == 1) {
      sequence->genericRemoveAt(at);
    } else {
      auto const members = collection.getAllValuesAndProxies();
      view.genericRemove(members.empty() ? target : members[step.d % members.size()]);
    }
  }

  void read(ModelElement const& element) {
    for (PropertyImpl* property : links(*element->getMetaClass().impl())) {
      m_reading = {element, property};
      Value const value = element->getPropertyValue(Property(property));
      if (!element) return;  // a loader has destroyed it
      if (!property->isMany()) continue;
      if (element->isProxy()) m_wrong = "a proxy's collection can be read";
      ReferenceCollection& collection = value.referenceCollection();
      collection.resolveLocal();
      for (ModelElement const& member : collection.getAllValues()) {
        if (member->isProxy()) m_wrong = "a proxy among the values";
        static_cast<void>(collection.getGenericInterface()->genericContains(member));
      }
    }
  }

  static void rekey(ModelElement const& element, unsigned number) {
    for (char16_t const* name : {u"Key", u"Id"}) {
      PropertyImpl* const key = element->getMetaClass()->findProperty(name);
      if (key == nullptr) continue;
      element->setPropertyValue(Property(key),
                                Value::createPrimitiveValue<std::u16string>(
                                    Property(key), std::u16string(1, static_cast<char16_t>(u'a' + number % 3))));
    }
  }

  /// Few names of each class and model, so that what has gone comes again under its old one.
  static boost::uuids::uuid uuidOf(Model const& model, ClassImpl const& metaClass, unsigned number) {
    std::string const name(model->name().begin(), model->name().end());
    return sample::nameUuid(name + metaClass.narrowName() + std::to_string(number % 3));
  }

  void create(Model const& model, unsigned classNumber, unsigned number) {
    auto const& metaClass = classes()[classNumber % classes().size()];
    auto transaction = model.beginTransaction();
    auto const made = metaClass->instantiateBuilder(model)->create(uuidOf(model, *metaClass.impl(), number));
    rekey(made, number);
    transaction.commit();
    m_pool.push_back(made);
  }

  void createProxy(Model const& model, Step const& step) {
    auto const& metaClass = classes()[step.b % classes().size()];
    char16_t const* const names[] = {u"a", u"b", u"c", u"x", u"y", u"nowhere"};
    bool const isLocal = step.c % 3 == 0;
    std::u16string const name = isLocal ? model->name() : names[step.c / 3 % std::size(names)];
    std::string const text = to_string(
        sample::nameUuid(std::string(name.begin(), name.end()) + metaClass->narrowName() + std::to_string(step.d % 3)));
    ProxyId id{metaClass->getQualifiedName(), {text.begin(), text.end()}, boost::none};
    if (!isLocal) id.model = name;
    m_pool.push_back(model->createProxy(metaClass, id));
  }

  void begin(std::size_t model) {
    if (m_open.size() >= 5) return;
    m_open.push_back({model, m_models[model].model.beginTransaction(), stateOf(m_models[model].model)});
  }

  void end(Step const& step) {
    if (m_open.empty()) return;
    // Mostly the innermost; also others, which is refused or takes the inner ones along.
    std::size_t const number = step.b % 4 == 0 ? step.c % m_open.size() : m_open.size() - 1;
    auto const at = std::next(m_open.begin(), static_cast<std::ptrdiff_t>(number));
    if (step.op == COMMIT) {
      at->transaction.commit();
      m_open.erase(at);
      return;
    }
    bool const wasOpen = at->transaction.isOpen();
    std::string const before = at->before;
    Model const model = m_models[at->model].model;
    m_open.erase(at);
    if (wasOpen) expectSame(before, stateOf(model), "a rollback");
  }

  /// A model that is not in memory: does what loaders may do, and perhaps comes.
  Model load(std::u16string const& name) {
    m_loaded = true;
    if (name == u"nowhere" || m_loading) return {};
    m_loading = true;
    struct End {
      ~End() { *loading = false; }
      bool* loading;
    } const end{&m_loading};
    unsigned const number = ++m_loads;
    ++m_coverage["loader asked"];
    auto const [element, property] = m_reading;
    auto const meddle = [&, reader = element, read = property](Op op) {
      if (!reader || read == nullptr) return;
      ++m_coverage["loader meddled"];
      static_cast<void>(support::raised([&] { change({op, 0, number, 0, number, 0}, m_models[0], reader); }));
    };
    switch (number % 8) {
      case 0:
        ++m_coverage["loader raised"];
        throw std::runtime_error("loader");
      case 1:
        return {};
      case 2:
        meddle(SET);
        break;
      case 3:
        meddle(TAKE);
        break;
      case 4:
        meddle(DESTROY);
        break;
      case 5:
        meddle(UNLOAD);
        break;
      case 6: {
        // What is done here goes again, whatever is under way further up.
        if (!element) break;
        auto const transaction = element->getModel().beginTransaction();
        classes()[number % classes().size()]->instantiateBuilder(element->getModel())->create()->destroy();
        meddle(SET);
        meddle(DESTROY);
        break;
      }
      default:
        for (Place& place : m_models) {
          if (place.model->level() == 0 && !place.freezer) place.freezer.emplace(place.model);
        }
    }
    if (number % 16 >= 8) return {};
    Model const model = add(name);
    for (unsigned i = 0; i < classes().size(); ++i) {
      create(model, i, 0);
      create(model, i, 1);
    }
    // Some of them list those that may name them.
    for (ModelElement const& each : std::vector<ModelElement>(m_pool.end() - 18, m_pool.end())) {
      for (PropertyImpl* far : links(*each->getMetaClass().impl())) {
        bool const fits = element && far->opposite() != nullptr && element->getMetaClass()->conformsTo(*far->type());
        if (fits) put(each, *far, element);
      }
    }
    return model;
  }

  static std::string nameOf(ModelElement const& element) {
    if (element.isEmpty()) return "nothing";
    std::string const uuid = to_string(element->getUuid()).substr(0, 8);
    if (!element) return "dead " + uuid;
    auto const name = element->getModel()->name();
    return std::string(name.begin(), name.end()) + ":" + element->getMetaClass()->narrowName() + " " + uuid +
           (element->isProxy() ? " (proxy)" : "") + (core(*element).isProvisional() ? " (new)" : "");
  }

  template <class Fits>
  ModelElement pick(unsigned number, Fits const& fits) const {
    for (std::size_t i = 0; i < m_pool.size(); ++i) {
      ModelElement const& each = m_pool[(number * 7 + i) % m_pool.size()];
      if (fits(each)) return each;
    }
    return {};
  }

  /// What the model holds, with a proxy no other than what it names: resolving one is no change.
  std::string stateOf(Model const& model) const {
    std::set<std::string> lines;
    for (ClassImpl const* metaClass : model->directory().classes()) {
      for (plinth::ModelElementImpl const* element : model->directory().elementsOf(*metaClass)) {
        lines.insert(lineOf(*element));
      }
    }
    std::string text;
    for (std::string const& line : lines) text += line + "\n";
    return text;
  }

  std::string lineOf(plinth::ModelElementImpl const& element) const {
    std::string line = to_string(element.getUuid()) + " " + element.getMetaClass()->narrowName();
    for (PropertyImpl* property : links(*element.getMetaClass().impl())) {
      // Resolving a proxy in a containment moves its element, which is a change like any other.
      if (property->isComposite() && m_proxiesInContainments) continue;
      std::vector<std::string> members;
      auto const note = [&](ModelElement const& member) {
        if (!member.isEmpty()) members.push_back(to_string(member->getUuid()));
      };
      if (auto const* const collection = property->isMany() ? core(element).referenceCollection(*property) : nullptr) {
        for (ModelElement const& member : collection->getAllValuesAndProxies()) note(member);
      } else if (!property->isMany()) {
        auto const value = element.getPropertyValue(Property(property), ReflectionPrivateTag::IN_MEMORY_ONLY);
        note(value.getValue<ModelElement>());
      }
      // Nor is it one that a proxy goes whose element is in already.
      if (property->isUnique() || property->valueFlags() != plinth::meta::SEQUENCE)
        std::sort(members.begin(), members.end());
      if (property->isUnique()) members.erase(std::unique(members.begin(), members.end()), members.end());
      for (std::string const& member : members) line += " " + member.substr(0, 8);
      line += ";";
    }
    return line;
  }

  std::string state() const {
    std::string text;
    for (Place const& place : m_models) text += stateOf(place.model);
    return text;
  }

  void expectSame(std::string const& before, std::string const& after, std::string const& what) {
    if (before != after && m_wrong.empty())
      m_wrong = what + " has left a change: before\n" + before + "after\n" + after;
  }

  Coverage& m_coverage;
  bool m_proxiesInContainments;
  std::deque<Place> m_models;
  std::vector<plinth::ListenerRegistration> m_listeners;
  std::vector<ModelElement> m_pool;  ///< live, dead, and proxies
  std::list<Open> m_open;
  std::pair<ModelElement, PropertyImpl*> m_reading;
  unsigned m_loads;  ///< of models, counted on from the seed: what a loader does comes in turn
  bool m_loading = false, m_loaded = false;
  std::string m_wrong;
  std::string m_told = "nothing";
};

std::vector<Step> randomSteps(unsigned seed, std::size_t count) {
  // How often each operation comes, in the order of Op.
  constexpr double weights[OPS] = {10, 6, 10, 20, 8, 10, 2, 3, 3, 3, 6, 4, 5, 5};
  std::mt19937 random(seed);
  std::discrete_distribution<int> ops(std::begin(weights), std::end(weights));
  std::uniform_int_distribution<unsigned> numbers(0, 1023);
  std::vector<Step> steps;
  for (std::size_t i = 0; i < count; ++i) {
    Op const op = i < 40 ? (i % 4 == 3 ? PROXY : CREATE) : static_cast<Op>(ops(random));
    unsigned const a = numbers(random), b = numbers(random), c = numbers(random), d = numbers(random);
    unsigned const chance = numbers(random);
    steps.push_back({op, a, b, c, d, i >= 40 && chance < 128 ? 1 + chance % 5 : 0});
  }
  return steps;
}

TEST(LinkedModels, StaySoundUnderRandomStepsAndComeBackWhole) {
  support::ExtentOfRun const extent = support::extentOfRun({1, 60, 400});
  Coverage coverage;
  for (unsigned seed = extent.first; seed < extent.first + extent.count; ++seed) {
    support::RandomSequences<Step> const sequences([&](std::vector<Step> const& steps, std::size_t& position) {
      World world(seed, coverage);
      for (position = 0; position < steps.size(); ++position) {
        std::string wrong = world.run(steps[position]);
        if (!wrong.empty()) return wrong;
      }
      return std::string();
    });
    ASSERT_TRUE(sequences.hold(randomSteps(seed, extent.steps), extent.apart)) << "seed " << seed;
  }
  if (extent.apart || extent.count < 50) return;  // a short run need not come by everything
  for (char const* what :
       {"CannotModifyProxy", "CannotCreateCrossModelAssociation", "OtherModelInTransaction", "CannotModifyFrozenModel",
        "CannotUnloadForeignElement", "TransactionNotInnermost", "UniquenessConstraint", "loader", "loader meddled"}) {
    EXPECT_GT(coverage[what], 0U) << what;
  }
  if (std::getenv("TESSEL_SEEDS") != nullptr) {
    for (auto const& [what, count] : coverage) std::cout << what << ": " << count << '\n';
  }
}

}  // namespace
