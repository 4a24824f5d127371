// What holds for every class of the model, checked on every class that can be instantiated, by reflection.
#include <gmock/gmock.h>

#include <boost/dynamic_bitset.hpp>
#include <boost/optional.hpp>

#include "model/specimen.hpp"
#include "plinth/ChangeSet.hpp"
#include "plinth/ProxyId.hpp"
#include "plinth/collections/ElementMapBase.hpp"
#include "plinth/collections/ReferenceSequence.hpp"
#include "plinth/collections/ReferenceSet.hpp"
#include "plinth/collections/SubsetView.hpp"
#include "plinth/diagnostics/Census.hpp"

using namespace support;  // NOLINT: the vocabulary of these checks

namespace {

namespace meta = plinth::meta;
using plinth::ReflectionPrivateTag;
using plinth::Storage;
using tessel::frame::ClassTable;

ClassTable const& tableOf(ModelElement const& element) {
  return static_cast<tessel::frame::Element const&>(*element).classTable();
}

/// The value that a class stamps on the property, where it does; `withBases` also looks at what its bases stamp.
boost::optional<int> stampOf(ClassTable const& table, PropertyImpl const& property, bool withBases) {
  for (ClassTable const* each = &table; each != nullptr; each = withBases ? each->base : nullptr) {
    for (std::size_t i = 0; i < each->stampCount; ++i) {
      auto const& stamp = each->stamps[i];
      if (stamp.declaringClass->properties[stamp.position].property == &property) return stamp.value;
    }
  }
  return boost::none;
}

/// The text of the value that a new element of this class has: the stamp, the metamodel's default, or the type's zero.
std::string expectedText(PropertyImpl const& property, boost::optional<int> const& stamp) {
  auto const& text = property.defaultValue();
  if (auto const* const enumeration = dynamic_cast<meta::EnumImpl const*>(property.type())) {
    auto const& first = enumeration->getLiterals().front()->getName();
    std::u16string const name = stamp ? enumeration->findByValue(*stamp)->getName() : text ? *text : first;
    return {name.begin(), name.end()};
  }
  if (property.valueFlags() == meta::OPTIONAL) return "none";
  if (property.type() == plinth::StandardTypes::stringMeta()) return plinth::quoted(text ? *text : u"");
  if (property.type() == plinth::StandardTypes::booleanMeta()) return text && *text == u"true" ? "true" : "false";
  double const number = text ? std::stod(std::string(text->begin(), text->end())) : 0.0;
  return plinth::valueText(Value::make<double>({plinth::StandardTypes::realMeta(), meta::SINGLE}, number));
}

TEST(EveryClass, MadeByCreateOrByABuilderStandsAtTheDefaultsOfTheMetamodel) {
  forEveryClass([](Specimen& s) {
    ClassTable const& table = tableOf(s.element);
    Specimen created(s.metaClass);
    created.element = tessel::frame::createElement(table, created.model, {});
    for (PropertyImpl* property : s.properties) {
      SCOPED_TRACE(plinth::quoted(property->getName()));
      if (property->isMany() || isElementTyped(*property) || isHostArray(*property)) {
        EXPECT_EQ(s.text(*property), created.text(*property));
        EXPECT_FALSE(s.element->hasPropertyValue(Property(property)));
        continue;
      }
      EXPECT_EQ(s.text(*property), expectedText(*property, stampOf(table, *property, false)));
      EXPECT_EQ(created.text(*property), expectedText(*property, stampOf(table, *property, true)));
    }
  });
}

TEST(EveryClass, NumbersItsPropertiesAlongItsBases) {
  forEveryClass([](Specimen& s) {
    int index = 0;
    for (PropertyImpl* property : s.properties) {
      EXPECT_EQ(property->index(), property->isDerived() ? 0 : ++index);
      if (!property->isDerived()) {
        EXPECT_EQ(s.element->getPropertyByIndex(static_cast<unsigned long>(index)).impl(), property);
      }
      EXPECT_NE(property->owningType(), nullptr);
      EXPECT_NE(property->type(), nullptr);
      EXPECT_TRUE(property->isQualificationUnique());
    }
    auto const last = static_cast<unsigned long>(index);
    EXPECT_TRUE(s.element->getPropertyByIndex(0).isEmpty());
    EXPECT_TRUE(s.element->getPropertyByIndex(last + 1).isEmpty());
    std::unique_ptr<plinth::Changes> const changes(core(*s.element).createChanges());
    EXPECT_EQ(changes->changeBits().size(), last);
    std::unique_ptr<Storage> const storage(core(*s.element).createStorage());
    EXPECT_EQ(storage->changeBits().size(), last + 1);
    EXPECT_EQ(s.metaClass.instantiateBuilder(s.model)->setMask().size(), last + 1);
  });
}

TEST(EveryProperty, HoldsWhatItIsGivenAndSaysSo) {
  forEveryProperty([](Specimen& s, PropertyImpl& property) {
    bool const isPlain = !property.isMany() && !isElementTyped(property);
    bool const alwaysHas = isPlain && property.valueFlags() == meta::SINGLE && !isHostArray(property);
    EXPECT_EQ(s.element->hasPropertyValue(Property(&property)), alwaysHas);
    std::string const before = s.text(property);
    s.specimens.change(s.element, property);
    EXPECT_NE(s.text(property), before);
    EXPECT_TRUE(s.element->hasPropertyValue(Property(&property)));
    if (property.isMany()) return;
    Value const value = s.specimens.forProperty(property, s.element);
    s.element->setPropertyValue(Property(&property), value);
    EXPECT_EQ(s.text(property), Specimen::textOf(value, property));
  });
}

TEST(EveryProperty, GivenTheValueThatItHoldsOpensNothing) {
  forEveryProperty([](Specimen& s, PropertyImpl& property) {
    if (property.isMany() || isHostArray(property)) return;
    for (int round = 0; round < 2; ++round) {  // at its default, then at another value
      CommitCount commits(s.model);
      s.element->setPropertyValue(Property(&property), s.get(property));
      EXPECT_EQ(commits.take(), 0);
      auto transaction = s.model.beginTransaction();
      s.element->setPropertyValue(Property(&property), s.get(property));
      EXPECT_EQ(s.model->undoSize(), 0U);
      s.specimens.change(s.element, property);
      transaction.commit();
    }
  });
}

TEST(EveryProperty, TellsItsOldValueAndIsTakenBack) {
  forEveryProperty([](Specimen& s, PropertyImpl& property) {
    s.specimens.change(s.element, property);
    std::string const old = s.text(property);
    auto const index = static_cast<unsigned long>(property.index());
    int told = 0;
    auto const listening = s.model.addListener([&](plinth::ChangeSet const& changes) {
      for (Storage const* record : changes.changed()) {
        if (record->element() != s.element) continue;
        ++told;
        EXPECT_EQ(record->bits(), std::uint64_t{1} << index);
        Value const value = record->getOldValue(Property(&property), ReflectionPrivateTag::PUBLIC_ACCESS);
        EXPECT_EQ(Specimen::textOf(value, property), old);
      }
    });
    Snapshot const before(s.model);
    {
      auto const transaction = s.model.beginTransaction();
      s.specimens.change(s.element, property);
      EXPECT_NE(s.text(property), old);
    }
    EXPECT_TRUE(before.isBack());
    EXPECT_EQ(told, 0);
    auto transaction = s.model.beginTransaction();
    s.specimens.change(s.element, property);
    transaction.commit();
    EXPECT_EQ(told, 1);
  });
}

TEST(EveryProperty, ThatComesBackToItsOldValueIsNotTold) {
  forEveryProperty([](Specimen& s, PropertyImpl& property) {
    bool told = false;
    auto const listening = s.model.addListener([&](plinth::ChangeSet const& changes) {
      for (Storage const* record : changes.changed()) told = told || record->element() == s.element;
    });
    Value const old = s.get(property);
    auto transaction = s.model.beginTransaction();
    s.specimens.change(s.element, property);
    if (!property.isMany()) {
      s.element->setPropertyValue(Property(&property), old);
    } else if (isElementTyped(property)) {
      Specimens::membersOf(s.element, property).clear();
    } else {
      Specimens::valuesOf(s.element, property).clear();
    }
    transaction.commit();
    EXPECT_FALSE(told);
  });
}

TEST(EveryProperty, RefusesOtherTypesShapesAndOwnersWithNothingChanged) {
  forEveryProperty([](Specimen& s, PropertyImpl& property) {
    Snapshot const before(s.model);
    Property const handle(&property);
    bool const isReal = property.type() == plinth::StandardTypes::realMeta();
    auto* const otherType = isReal ? plinth::StandardTypes::stringMeta() : plinth::StandardTypes::realMeta();
    Value const wrongType = s.specimens.plain(*otherType);
    Value const wrongShape({property.type(), meta::SEQUENCE});
    if (property.isMany()) {
      EXPECT_EQ(raised([&] { s.element->setPropertyValue(handle, wrongType); }), "NoSuchProperty");
    } else {
      EXPECT_EQ(raised([&] { s.element->setPropertyValue(handle, wrongType); }), "CannotCastIncompatibleTypes");
      EXPECT_EQ(raised([&] { s.element->setPropertyValue(handle, wrongShape); }), "CannotCastIncompatibleTypes");
    }
    auto const builder = s.metaClass.instantiateBuilder(s.model);
    auto const mask = builder->setMask();
    EXPECT_THAT(raised([&] { builder->setOrAdd(handle, wrongType); }),
                testing::AnyOf("CannotCastIncompatibleTypes", "NoSuchProperty"));
    EXPECT_EQ(builder->setMask(), mask);
    EXPECT_TRUE(before.isBack());
  });
  forEveryClass([](Specimen& s) {
    auto const* const foreign = plinth::meta::MetaRegistry::getInstance()
                                    .findType("tessel.internal.config.data.EnumOption")
                                    ->ownProperties()
                                    .front();
    for (Property const& property : {Property(const_cast<PropertyImpl*>(foreign)), Property()}) {
      EXPECT_EQ(raised([&] { s.element->hasPropertyValue(property); }), "NoSuchProperty");
      EXPECT_EQ(raised([&] { s.element->getPropertyValue(property); }), "NoSuchProperty");
      EXPECT_EQ(raised([&] { s.element->setPropertyValue(property, Value()); }), "NoSuchProperty");
    }
    for (PropertyImpl* property : s.properties) {
      if (!property->isDerived()) continue;
      EXPECT_EQ(raised([&] { s.element->setPropertyValue(Property(property), Value()); }), "CannotSetReadOnlyProperty");
    }
  });
}

/// Adds as the typed operations of the collection do.
void addTyped(plinth::ReferenceCollection& members, ModelElement const& element) {
  if (auto* const sequence = dynamic_cast<plinth::ReferenceSequence*>(&members)) {
    sequence->insertElement(0, element);
  } else if (auto* const set = dynamic_cast<plinth::ReferenceSet*>(&members)) {
    set->addElement(element);
  } else if (auto* const map = dynamic_cast<plinth::ElementMapBase*>(&members)) {
    map->insertElement(element, plinth::CollisionResolution::KEEP);
  } else {
    dynamic_cast<plinth::SubsetView&>(members).addElement(element);
  }
}

TEST(EveryClass, RefusesDestroyedTargetsAndOnlyItsGenericInterfaceIgnoresThem) {
  forEveryClass([](Specimen& s) {
    for (PropertyImpl* property : s.properties) {
      if (!isElementTyped(*property)) continue;
      SCOPED_TRACE(plinth::quoted(property->getName()));
      for (bool const isElsewhere : {false, true}) {
        Model const home = isElsewhere ? Model::create() : s.model;
        ModelElement const dead = Specimens(home).builder(*property->type())->create();
        dead->destroy();
        Value const value = Value::createElementValue(Property(property), dead);
        Snapshot const before(s.model);
        if (property->isMany()) {
          auto& members = Specimens::membersOf(s.element, *property);
          members.genericAdd(dead);
          members.getGenericInterface()->genericEnsureAt(dead, 0);
          addTyped(members, {});
          EXPECT_EQ(raised([&] { addTyped(members, dead); }), "CannotAddNonExistentObject");
        } else {
          for (auto const* tag : {&ReflectionPrivateTag::PUBLIC_ACCESS, &ReflectionPrivateTag::IN_MEMORY_ONLY}) {
            EXPECT_EQ(raised([&] { s.element->setPropertyValue(Property(property), value, *tag); }),
                      "CannotAddNonExistentObject");
          }
        }
        if (!property->isComposite() && !property->isDerived()) {
          auto const builder = s.metaClass.instantiateBuilder(s.model);
          builder->setOrAdd(Property(property), value);
          EXPECT_EQ(raised([&] { builder->create(); }), "CannotAddNonExistentObject");
        }
        EXPECT_TRUE(before.isBack());
      }
    }
  });
}

TEST(EveryProperty, OfAProxyOrADeadElementRefusesToBeSetOrReadAsACollection) {
  forEveryProperty([](Specimen& s, PropertyImpl& property) {
    auto const proxy = s.model->createProxy(s.element->getMetaClass(), s.element->getPersistentProxyId(true));
    if (isElementTyped(property)) {
      ModelElement const member = s.specimens.builder(*property.type())->create();
      EXPECT_EQ(raised([&] { core(*proxy).inverseAdd(*member, property); }), "CannotModifyProxy");
      EXPECT_EQ(raised([&] { core(*proxy).inverseRemove(*member, property); }), "CannotModifyProxy");
    }
    if (property.isMany()) {
      for (auto const* tag : {&ReflectionPrivateTag::PUBLIC_ACCESS, &ReflectionPrivateTag::IN_MEMORY_ONLY,
                              &ReflectionPrivateTag::NO_PROXY_RESOLVE}) {
        EXPECT_EQ(raised([&] { proxy->getPropertyValue(Property(&property), *tag); }), "CannotModifyProxy");
      }
      return;
    }
    Value const value = s.specimens.forProperty(property, s.element);
    EXPECT_EQ(raised([&] { proxy->setPropertyValue(Property(&property), value); }), "CannotModifyProxy");
    EXPECT_EQ(s.model->level(), 0U);
    s.element->destroy();
    EXPECT_EQ(raised([&] { s.element->setPropertyValue(Property(&property), value); }), "CannotModifyDestroyedElement");
  });
}

TEST(EveryClass, BuiltWithAllItsPropertiesEqualsOneThatWasSet) {
  forEveryClass([](Specimen& s) {
    auto const builder = s.metaClass.instantiateBuilder(s.model);
    Specimens twin(s.model);  // counts as the other does
    for (PropertyImpl* property : s.properties) {
      if (property->isDerived()) continue;
      if (isElementTyped(*property) && property->isComposite()) {
        builder->setOrAdd(Property(property), twin.builder(*property->type()));
      } else if (isElementTyped(*property)) {
        builder->setOrAdd(Property(property),
                          Value::createElementValue(Property(property), twin.builder(*property->type())->create()));
      } else if (property->isMany()) {
        builder->setOrAdd(Property(property), s.specimens.plain(*property->type()));
      } else {
        builder->setOrAdd(Property(property), s.specimens.forProperty(*property, s.element));
      }
    }
    ModelElement const built = builder->create();
    for (PropertyImpl* property : s.properties) {
      SCOPED_TRACE(plinth::quoted(property->getName()));
      if (property->isDerived()) continue;
      EXPECT_TRUE(built->hasPropertyValue(Property(property)));
      EXPECT_EQ(builder->isSet(static_cast<unsigned long>(property->index())), true);
      if (isElementTyped(*property)) continue;
      Value const present = built->getPropertyValue(Property(property));
      if (property->isMany()) {
        for (auto const& each :
             static_cast<plinth::AbstractPrimitiveCollection const*>(present.content())->getAllValues()) {
          Specimens::valuesOf(s.element, *property).genericAdd(each);
        }
      } else {
        s.element->setPropertyValue(Property(property), present);
      }
      EXPECT_EQ(s.text(*property), Specimen::textOf(present, *property));
    }
  });
}

TEST(EveryClass, TornDownTakesItsChildrenAndLeavesNoLinkBehind) {
  forEveryClass([](Specimen& s) {
    s.specimens.changeAll(s.element);
    std::vector<plinth::ModelElementImpl*> contained;
    core(*s.element).collectContained(contained);
    std::vector<ModelElement> children;
    for (auto* child : contained) children.emplace_back(child);
    Snapshot const before(s.model);
    {
      auto const transaction = s.model.beginTransaction();
      s.element->destroy();
      EXPECT_TRUE(isSound(s.model));
    }
    EXPECT_TRUE(before.isBack());
    EXPECT_TRUE(s.element);
    std::size_t const count = s.model->elementCount();
    s.element->destroy();
    EXPECT_EQ(s.model->elementCount(), count - 1 - children.size());
    for (auto const& child : children) EXPECT_FALSE(child);
    EXPECT_EQ(core(*s.element.impl()).refCount(), 1U) << "only the handle of this test is left";
  });
}

TEST(EveryClass, GivesCollectionsByTheShapeOfAProperty) {
  MetaPackageTessel_config_datamodel::getInstance();
  for (ClassImpl const* metaClass : concreteClasses()) {
    for (PropertyImpl* property : metaClass->allProperties()) {
      auto const factory = property->type()->collectionFactory();
      if (factory == nullptr) continue;
      std::unique_ptr<plinth::AbstractOwnedCollection> const collection(factory({}, Property(property)));
      if (isElementTyped(*property)) {
        auto* const view = static_cast<plinth::ReferenceCollection&>(*collection).getGenericInterface();
        EXPECT_EQ(view->isSequenceInterface(), property->isOrdered());
        EXPECT_FALSE(view->isMapInterface());
      } else {
        auto const kind = static_cast<plinth::AbstractPrimitiveCollection&>(*collection).getKind();
        EXPECT_EQ(kind, property->isOrdered() ? plinth::PrimitiveKind::SEQUENCE : plinth::PrimitiveKind::SET);
      }
    }
  }
}

}  // namespace
