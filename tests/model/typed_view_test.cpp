// Typed members against reflection, and the typed members of builders: every property of every class, by views that are
// generated from the tables, so that a new row is covered the day it is written.
#include "model/typed_view.hpp"

#include <gtest/gtest.h>

#include <boost/dynamic_bitset.hpp>

#include "model/specimen.hpp"
#include "plinth/ChangeSet.hpp"

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
/// Without type stamps, which only the class's own builder gives.
std::unique_ptr<typed::ElementBuilder> builderFor(Specimen& s, PropertyImpl& property) {
  return viewOf(property).builder(implOf(s.element).classTable(), s.model);
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
    auto const builder = builderFor(s, property);
    Specimen made(s.metaClass);
    made.model = s.model;
    made.element = builder->create();
    auto const others = made.textsBeside(property);
    auto expected = builder->setMask();
    expected.set(static_cast<std::size_t>(property.index()));
    auto const values = valuesFor(s, property);
    std::size_t count = 4;
    if (view.give != nullptr) {
      EXPECT_TRUE(view.give(*builder, values));
    } else {
      count = property.isMany() ? 2 : 1;
      for (std::size_t i = 0; i < count; ++i) EXPECT_TRUE(view.giveChild(*builder, childFor(s, property)));
    }
    EXPECT_EQ(builder->setMask(), expected);
    if (view.given != nullptr && view.give != nullptr) {
      EXPECT_EQ(view.given(*builder, Property(&property)), Specimen::textOf(values[0], property));
    }

    made.element = builder->create();
    EXPECT_EQ(made.textsBeside(property), others);
    if (property.isMany()) {
      EXPECT_EQ(sizeOf(made.element, property), count);
      EXPECT_TRUE(view.clear(*builder));
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
      auto const builder = builderFor(s, property);
      viewOf(property).give(*builder, values);
      Snapshot const before(s.model);
      EXPECT_EQ(raised([&] { builder->create(); }), "CannotAddNonExistentObject");
      EXPECT_TRUE(before.isBack());
    }
  });
}

}  // namespace
