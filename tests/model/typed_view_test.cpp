// Typed members against reflection, and the typed members of builders: every property of every class, by views that are
// generated from the tables, so that a new row is covered the day it is written.
#include "model/typed_view.hpp"

#include <gtest/gtest.h>

#include "model/specimen.hpp"

using namespace support;  // NOLINT: the vocabulary of these checks

namespace {

using plinth::ReflectionPrivateTag;

/// The view of the property in the class that declares it.
typed::PropertyView const& viewOf(PropertyImpl const& property) {
  for (typed::ClassView const& each : typed::classes()) {
    if (each.metaClass().impl() != property.owningType()) continue;
    for (typed::PropertyView const& view : each.properties) {
      if (view.name == property.getName()) return view;
    }
  }
  throw std::logic_error("no typed view of " + plinth::quoted(property.qualifiedName()));
}

tessel::frame::Element& implOf(ModelElement const& element) { return static_cast<tessel::frame::Element&>(*element); }
tessel::frame::ElementBuilder& implOf(std::unique_ptr<plinth::ModelElementBuilder> const& builder) {
  return static_cast<tessel::frame::ElementBuilder&>(*builder);
}

/// The collection as reflection gives it.
plinth::AbstractOwnedCollection* collectionOf(ModelElement const& element, PropertyImpl& property) {
  if (isElementTyped(property)) return &Specimens::membersOf(element, property);
  return &Specimens::valuesOf(element, property);
}

std::size_t sizeOf(ModelElement const& element, PropertyImpl& property) {
  return isElementTyped(property) ? Specimens::membersOf(element, property).getAllValuesAndProxies().size()
                                  : Specimens::valuesOf(element, property).getAllValues().size();
}

/// Records of `element` that its model tells, with the old values of `property`.
class Told {
 public:
  Told(ModelElement element, PropertyImpl& property)
      : m_registration(element->getModel().addListener([this, element, &property](plinth::ChangeSet const& changes) {
          for (plinth::Storage const* record : changes.changed()) {
            if (record->element() != element) continue;
            bits |= record->bits();
            if (property.isMany() || !record->isChanged(static_cast<unsigned long>(property.index()))) continue;
            Value const old = record->getOldValue(Property(&property), ReflectionPrivateTag::NO_PROXY_RESOLVE);
            oldText = Specimen::textOf(old, property);
          }
        })) {}
  std::uint64_t bits = 0;
  std::string oldText;

 private:
  plinth::ListenerRegistration m_registration;
};

std::uint64_t bitOf(PropertyImpl const& property) { return std::uint64_t{1} << property.index(); }

/// Other values than the property has by default, fit for its builder; four for a property of many.
typed::Values valuesFor(Specimen& s, PropertyImpl& property) {
  typed::Values values;
  for (std::size_t i = 0; i < (property.isMany() ? 4 : 1); ++i) {
    bool const isPlainMany = property.isMany() && !isElementTyped(property);
    values.push_back(isPlainMany ? s.specimens.plain(*property.type()) : s.specimens.forProperty(property, s.element));
  }
  return values;
}

/// A builder of a child, with a key of its own where the property asks for one; none for plain values.
typed::Child childFor(Specimen& s, PropertyImpl& property) {
  if (!isElementTyped(property)) return nullptr;
  auto child = s.specimens.builder(*property.type());
  if (PropertyImpl* const key = property.qualifiedBy()) child->setOrAdd(Property(key), s.specimens.plain(*key->type()));
  return child;
}

TEST(TypedClass, NamesItselfAndItsProperties) {
  MetaPackageTessel_config_datamodel::getInstance();
  auto const model = Model::create();
  for (typed::ClassView const& each : typed::classes()) {
    ClassImpl const& metaClass = *each.metaClass().impl();
    SCOPED_TRACE(metaClass.narrowName());
    EXPECT_EQ(each.uuid(), metaClass.getUuid());
    EXPECT_EQ(each.create == nullptr, metaClass.isAbstract());
    if (each.create != nullptr) {
      ModelElement const made = each.create(model);
      EXPECT_EQ(made->getMetaClass(), each.metaClass());
      EXPECT_EQ(each.self(implOf(made)), made);
    }
    auto const all = metaClass.allProperties();
    for (auto const& [name, property] : each.queried()) {
      SCOPED_TRACE(plinth::quoted(name));
      EXPECT_EQ(property->getName(), name);
      EXPECT_EQ(std::count(all.begin(), all.end(), property.impl()), 1);
    }
  }
}

TEST(TypedProperty, WrittenIsReadByReflectionAndToldUnderItsIndex) {
  forEveryProperty([](Specimen& s, PropertyImpl& property) {
    if (property.isMany()) return;
    Value const value = s.specimens.forProperty(property, s.element);
    std::string const old = s.text(property);
    auto const others = s.textsBeside(property);
    Told told(s.element, property);
    viewOf(property).set(implOf(s.element), value);
    EXPECT_EQ(s.text(property), Specimen::textOf(value, property));
    EXPECT_EQ(s.textsBeside(property), others);
    EXPECT_EQ(told.bits, bitOf(property));
    EXPECT_EQ(told.oldText, old);
  });
}

TEST(TypedProperty, ReadsWhatReflectionWrote) {
  forEveryProperty([](Specimen& s, PropertyImpl& property) {
    typed::PropertyView const& view = viewOf(property);
    auto& element = implOf(s.element);
    EXPECT_FALSE(view.has != nullptr && view.has(element));
    s.specimens.change(s.element, property);
    EXPECT_TRUE(view.has == nullptr || view.has(element));
    if (property.isMany()) {
      EXPECT_EQ(view.collection(element), collectionOf(s.element, property));
      EXPECT_EQ(view.mutableCollection(element), collectionOf(s.element, property));
      return;
    }
    EXPECT_EQ(view.get(element, Property(&property)), s.text(property));
    if (view.basicSet == nullptr) return;
    // Past the container and the far end: the former target comes back before anybody looks there.
    auto const former = s.get(property).getValue<ModelElement>();
    Told told(s.element, property);
    view.basicSet(element, {});
    EXPECT_FALSE(view.has(element));
    view.basicSet(element, former);
    EXPECT_EQ(view.get(element, Property(&property)), s.text(property));
    EXPECT_EQ(told.bits, 0U);
  });
}

TEST(TypedProperty, MakesChildrenIntoItself) {
  forEveryProperty([](Specimen& s, PropertyImpl& property) {
    typed::PropertyView const& view = viewOf(property);
    ASSERT_EQ(view.createInto != nullptr, property.isComposite() && isElementTyped(property));
    if (view.createInto == nullptr) return;
    Told told(s.element, property);
    ModelElement const child = view.createInto(implOf(s.element), childFor(s, property));
    EXPECT_EQ(child->container(), s.element);
    EXPECT_EQ(child->containmentFeature().impl(), &property);
    EXPECT_TRUE(view.has(implOf(s.element)));
    EXPECT_EQ(told.bits, bitOf(property));
  });
}

TEST(TypedProperty, ThatIsDerivedShowsItsOwnCollection) {
  forEveryClass([](Specimen& s) {
    for (PropertyImpl* property : s.properties) {
      if (!property->isDerived()) continue;
      typed::PropertyView const& view = viewOf(*property);
      EXPECT_FALSE(view.has(implOf(s.element)));
      EXPECT_EQ(view.collection(implOf(s.element)), collectionOf(s.element, *property));
      EXPECT_EQ(view.mutableCollection(implOf(s.element)), collectionOf(s.element, *property));
      Specimens::membersOf(s.element, *property).genericAdd(s.specimens.builder(*property->type())->create());
      EXPECT_TRUE(view.has(implOf(s.element)));
    }
  });
}

TEST(TypedBuilder, HandsWhatItIsGivenToTheElement) {
  forEveryProperty([](Specimen& s, PropertyImpl& property) {
    typed::PropertyView const& view = viewOf(property);
    auto const builder = s.metaClass.instantiateBuilder(s.model);
    auto& impl = implOf(builder);
    auto expected = builder->setMask();
    expected.set(static_cast<std::size_t>(property.index()));
    auto const values = valuesFor(s, property);
    std::size_t count = 4;
    if (view.give != nullptr) {
      view.give(impl, values);
    } else {
      count = property.isMany() ? 2 : 1;
      for (std::size_t i = 0; i < count; ++i) view.giveChild(impl, childFor(s, property));
    }
    EXPECT_EQ(builder->setMask(), expected);
    if (view.given != nullptr && view.give != nullptr) {
      EXPECT_EQ(view.given(impl, Property(&property)), Specimen::textOf(values[0], property));
    }

    Specimen made(s.metaClass);
    auto const others = made.textsBeside(property);
    made.model = s.model;
    made.element = builder->create();
    EXPECT_EQ(made.textsBeside(property), others);
    if (property.isMany()) {
      EXPECT_EQ(sizeOf(made.element, property), count);
      view.clear(impl);
      EXPECT_EQ(sizeOf(builder->create(), property), 0U);
    } else if (view.give != nullptr) {
      EXPECT_EQ(made.text(property), Specimen::textOf(values[0], property));
    } else {
      EXPECT_EQ(made.get(property).getValue<ModelElement>()->containmentFeature().impl(), &property);
    }
  });
}

TEST(TypedBuilder, RefusesADestroyedTargetWhicheverWayItIsGiven) {
  forEveryProperty([](Specimen& s, PropertyImpl& property) {
    if (!isElementTyped(property) || property.isComposite()) return;
    for (std::size_t dead = 0; dead < (property.isMany() ? 4 : 1); ++dead) {
      auto const values = valuesFor(s, property);
      values[dead].getValue<ModelElement>()->destroy();
      auto const builder = s.metaClass.instantiateBuilder(s.model);
      viewOf(property).give(implOf(builder), values);
      Snapshot const before(s.model);
      EXPECT_EQ(raised([&] { builder->create(); }), "CannotAddNonExistentObject");
      EXPECT_TRUE(before.isBack());
    }
  });
}

TEST(TypedBuilder, ChainsTheSameOperations) {
  forEveryProperty([](Specimen& s, PropertyImpl& property) {
    auto const chained = viewOf(property).chain(s.model, valuesFor(s, property), childFor(s, property));
    EXPECT_TRUE(chained.givesBuilder);
    EXPECT_EQ(chained.mask.count(), 1U);
    EXPECT_TRUE(chained.mask.test(static_cast<std::size_t>(property.index())));
  });
}

}  // namespace
