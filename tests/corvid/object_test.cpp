// Script objects: one for each native, counted, stale when the native is gone; values are owned and copied.
#include <stdexcept>

#include "corvid/factory/BindingRegistry.hpp"
#include "corvid/factory/Marshaler.hpp"
#include "groundwork/Message.hpp"
#include "host_fixture.hpp"

namespace corvid {
namespace {

using factory::basic::BindingRegistry;
using internal::makeInterned;

using Objects = HostTest;

TEST_F(Objects, ofOneNativeAreOneObjectThatLetsGoOfItInTheEnd) {
  kestrel::OwnedArray child = newAnimal();
  kestrel::OwnedArray cat = newAnimal("zoo.residents.Cat");
  set(child, "Mother", cat);
  EXPECT_EQ(kestrel::object(*get(child, "Mother")), kestrel::object(*cat));
  EXPECT_TRUE(kestrel::equalContents(get(child, "Mother").get(), cat.get()));
  EXPECT_EQ(kestrel::className(*get(child, "Mother")).text(), "zoo.residents.Cat");
  EXPECT_FALSE(kestrel::equalContents(child.get(), newAnimal().get()));

  cat.reset();
  EXPECT_EQ(liveObjectCount(), 1);
  EXPECT_EQ(zoo::Animal::instances, 2) << "the child holds its mother, the script does not";
  EXPECT_EQ(kestrel::className(*get(child, "Mother")).text(), "zoo.residents.Cat");
  child.reset();
  EXPECT_EQ(zoo::Animal::instances, 0);
}

TEST_F(Objects, whoseNativeDiedRaiseANamedErrorForEveryUse) {
  kestrel::OwnedArray const cat = newAnimal("zoo.residents.Cat");
  kestrel::OwnedArray const child = newAnimal();
  call(cat, "die");
  EXPECT_FALSE(isLive(*cat));
  auto const number = kestrel::createScalar(1.0);
  EXPECT_EQ(errorOf([&] { get(cat, "Weight"); }), "Kestrel:class:InvalidHandle");
  EXPECT_EQ(errorOf([&] { set(cat, "Weight", number); }), "Kestrel:class:InvalidHandle");
  EXPECT_EQ(errorOf([&] { call(cat, "purr"); }), "Kestrel:class:InvalidHandle");
  EXPECT_EQ(errorOf([&] { set(child, "Mother", cat); }), "Kestrel:class:InvalidHandle");
}

TEST_F(Objects, partedFromTheirNativeAreStaleAndKeepNothing) {
  kestrel::OwnedArray const cat = newAnimal("zoo.residents.Cat");
  void* const native = kestrel::object(*cat)->native(makeInterned("zoo.residents.Animal"));
  EXPECT_TRUE(BindingRegistry::remove(native));
  static_cast<zoo::Animal*>(native)->removeRef();
  EXPECT_FALSE(BindingRegistry::remove(native));
  EXPECT_EQ(zoo::Animal::instances, 0);
  EXPECT_EQ(errorOf([&] { get(cat, "Weight"); }), "Kestrel:class:InvalidHandle");
  kestrel::OwnedArray const child = newAnimal();
  EXPECT_EQ(errorOf([&] { set(child, "Mother", cat); }), "Kestrel:class:InvalidHandle");
}

TEST_F(Objects, constructedForANativeThatIsKnownAlreadyAreTheKnownOne) {
  kestrel::OwnedArray const cat = newAnimal("zoo.residents.Cat");
  kestrel::OwnedArray const same = construct(animalClass(), {cat.get()});
  EXPECT_EQ(kestrel::object(*same), kestrel::object(*cat));
  EXPECT_EQ(kestrel::className(*same).text(), "zoo.residents.Cat");
  EXPECT_EQ(liveObjectCount(), 1);
}

TEST_F(Objects, areReadAndWrittenInEveryShapeOfValue) {
  kestrel::OwnedArray const cat = newAnimal("zoo.residents.Cat");
  set(cat, "Name", kestrel::createString(u"Tom"));
  EXPECT_EQ(kestrel::charText(*get(cat, "Name")), u"Tom");
  set(cat, "Tame", kestrel::createScalar(0.5));
  EXPECT_TRUE(kestrel::element<bool>(*get(cat, "Tame"))) << "any number but zero is true";

  EXPECT_EQ(kestrel::dimensions(*get(cat, "Age")), kestrel::EMPTY);
  EXPECT_EQ(kestrel::baseClass(*get(cat, "Age")), kestrel::ClassId::UInt32);
  set(cat, "Age", kestrel::createScalar<std::int64_t>(4));
  EXPECT_EQ(kestrel::element<std::uint32_t>(*get(cat, "Age")), 4u);
  set(cat, "Age", kestrel::createEmpty(kestrel::ClassId::Double));
  EXPECT_TRUE(kestrel::isEmpty(*get(cat, "Age")));

  set(cat, "Diet", kestrel::createChar(u"MEAT"));
  EXPECT_EQ(kestrel::element<std::int32_t>(*get(cat, "Diet")), 2);
  set(cat, "Mother", newAnimal());
  EXPECT_EQ(kestrel::className(*get(cat, "Mother")).text(), "zoo.residents.Animal");
  set(cat, "Mother", kestrel::createEmpty(kestrel::ClassId::Double));
  EXPECT_TRUE(kestrel::isEmpty(*get(cat, "Mother")));
}

TEST_F(Objects, inAnArrayAreOfTheirOwnClassesUnderTheCommonOne) {
  kestrel::OwnedArray const mother = newAnimal();
  kestrel::OwnedArray const none = get(mother, "Offspring");
  EXPECT_TRUE(kestrel::isEmpty(*none));
  EXPECT_EQ(kestrel::className(*none).text(), "zoo.residents.Animal");

  kestrel::OwnedArray const family = kestrel::createObjects(makeInterned(kestrel::HETEROGENEOUS), kestrel::row(2));
  kestrel::setObject(*family, 0, kestrel::object(*newAnimal("zoo.residents.Cat")));
  kestrel::setObject(*family, 1, kestrel::object(*newAnimal("zoo.residents.Cat")));
  set(mother, "Offspring", family);
  EXPECT_EQ(kestrel::className(*get(mother, "Offspring")).text(), "zoo.residents.Cat");
  EXPECT_TRUE(kestrel::object(*get(mother, "Offspring"), 1) == kestrel::object(*family, 1));
  kestrel::setObject(*family, 1, kestrel::object(*newAnimal()));
  set(mother, "Offspring", family);
  EXPECT_EQ(kestrel::className(*get(mother, "Offspring")).text(), "zoo.residents.Animal");
  set(mother, "Offspring", kestrel::createEmpty(kestrel::ClassId::Cell));
  EXPECT_TRUE(kestrel::isEmpty(*get(mother, "Offspring")));
}

TEST_F(Objects, refuseWrongValuesUnderANameAndStayAsTheyWere) {
  kestrel::OwnedArray const cat = newAnimal("zoo.residents.Cat");
  kestrel::OwnedArray const two = kestrel::createObjects(makeInterned("zoo.residents.Cat"), kestrel::row(2));
  kestrel::setObject(*two, 0, kestrel::object(*cat));
  kestrel::setObject(*two, 1, kestrel::object(*cat));
  struct Row {
    char const* property;
    kestrel::OwnedArray value;
    char const* error;
  };
  Row const rows[] = {{"Weight", kestrel::createChar(u"1"), "Kestrel:class:WrongType"},
                      {"Weight", kestrel::createEmpty(kestrel::ClassId::Double), "Kestrel:class:WrongType"},
                      {"Name", kestrel::createScalar(1.0), "Kestrel:class:WrongType"},
                      {"Name", kestrel::createStrings(kestrel::SCALAR), "Kestrel:class:WrongType"},
                      {"Name", kestrel::createChar(u"Nobody"), "Kestrel:native:Exception"},
                      {"Age", kestrel::createScalar(-1.0), "Kestrel:class:ValueOutOfRange"},
                      {"Age", kestrel::createScalar(4.5), "Kestrel:class:ValueOutOfRange"},
                      {"Age", kestrel::createScalar(4294967296.0), "Kestrel:class:ValueOutOfRange"},
                      {"Diet", kestrel::createChar(u"STONES"), "Kestrel:class:WrongType"},
                      {"Mother", kestrel::createScalar(1.0), "Kestrel:class:WrongType"},
                      {"Mother", construct(classNamed("zoo.residents.Place"), {}), "Kestrel:class:WrongType"},
                      {"Mother", kestrel::deepCopy(two.get()), "Kestrel:class:WrongType"},
                      {"Herd", kestrel::createScalar(1.0), "Kestrel:class:ReadOnlyProperty"},
                      {"Colour", kestrel::createScalar(1.0), "Kestrel:class:NoSuchMember"}};
  for (Row const& row : rows) EXPECT_EQ(errorOf([&] { set(cat, row.property, row.value); }), row.error) << row.property;
  EXPECT_EQ(kestrel::element<double>(*get(cat, "Weight")), 1.0);
  EXPECT_TRUE(kestrel::isEmpty(*get(cat, "Age")));
  EXPECT_EQ(errorOf([&] { get(two, "Weight"); }), "Kestrel:class:WrongType");
}

TEST_F(Objects, ofARowAreNotTakenForOneByAMethod) {
  CorvidClass& placeClass = classNamed("zoo.residents.Place");
  kestrel::OwnedArray const place = construct(placeClass, {});
  kestrel::OwnedArray const two = kestrel::createObjects(placeClass.getFullName(), kestrel::row(2));
  kestrel::setObject(*two, 0, kestrel::object(*place));
  kestrel::setObject(*two, 1, kestrel::object(*place));
  EXPECT_EQ(errorOf([&] {
              invoke(placeClass, makeInterned("eq"), {place.get(), two.get()});
            }),
            "Kestrel:class:WrongType");
  EXPECT_TRUE(kestrel::element<bool>(*invoke(placeClass, makeInterned("eq"), {place.get(), place.get()})));
}

TEST_F(Objects, countArgumentsAsACallerDoes) {
  kestrel::OwnedArray const cat = newAnimal("zoo.residents.Cat");
  auto const sentence = [&](char const* method, Inputs const& inputs) {
    try {
      invoke(*classOf(*cat), makeInterned(method), inputs);
    } catch (HostError const& error) {
      return std::string(error.what());
    }
    return std::string();
  };
  EXPECT_EQ(sentence("feed", {cat.get()}), "WrongArgumentCount: 'feed' takes 1 to 2 arguments, not 0.");
  EXPECT_EQ(sentence("purr", {cat.get(), cat.get()}), "WrongArgumentCount: 'purr' takes 0 arguments, not 1.");
  EXPECT_EQ(sentence("purr", {}), "WrongArgumentCount: 'purr' was called without its object.");
  EXPECT_EQ(sentence("count", {cat.get()}), "WrongArgumentCount: 'count' takes 0 arguments, not 1.");
}

TEST_F(Objects, thatAreValuesAreCopiedAndComparedByContent) {
  CorvidClass& placeClass = classNamed("zoo.residents.Place");
  kestrel::OwnedArray const place = construct(placeClass, {});
  set(place, "Latitude", kestrel::createScalar(52.5));
  kestrel::OwnedArray const copy = kestrel::deepCopy(place.get());
  EXPECT_NE(kestrel::object(*copy), kestrel::object(*place));
  EXPECT_TRUE(kestrel::equalContents(copy.get(), place.get()));
  set(copy, "Latitude", kestrel::createScalar(1.0));
  EXPECT_EQ(kestrel::element<double>(*get(place, "Latitude")), 52.5);
  EXPECT_FALSE(kestrel::equalContents(copy.get(), place.get()));

  auto const copier = &factory::Marshaler<factory::DataTypePolicy>::copier<zoo::Place>;
  auto announced = BindingRegistry::announceWithoutStoring(new zoo::Place{1, 0}, placeClass.getFullName(), copier);
  EXPECT_TRUE(kestrel::equalContents(announced.get(), copy.get()));
  EXPECT_TRUE(kestrel::equalContents(kestrel::deepCopy(announced.get()).get(), copy.get()));

  kestrel::OwnedArray const animal = newAnimal();
  EXPECT_EQ(kestrel::object(*kestrel::deepCopy(animal.get())), kestrel::object(*animal)) << "a handle is shared";
}

TEST_F(Objects, ofAnUnknownClassAreNotBound) {
  zoo::AnimalHandle const animal(new zoo::Animal);
  bool isNew = true;
  EXPECT_EQ(errorOf([&] { return BindingRegistry::announce(animal.get(), makeInterned("zoo.Dodo"), isNew); }),
            "Kestrel:class:NoSuchClass");
  EXPECT_FALSE(isNew);
  EXPECT_FALSE(BindingRegistry::remove(animal.get()));
  EXPECT_TRUE(kestrel::isEmpty(*BindingRegistry::announce(nullptr, makeInterned("zoo.residents.Cat"), isNew)));
}

TEST(ErrorDescriptions, carryTheIdentifierAndTheSentenceOfWhatWasRaised) {
  using groundwork::except::Exception;
  Exception<groundwork::MessageRecord, std::exception> modelError({{}, "zoo:messages", "CageIsFull"},
                                                                  "CageIsFull: No.");
  modelError.get_error_id() = {"zoo:messages", "CageIsFull"};
  EXPECT_EQ(describeError(modelError).identifier, "zoo:messages:CageIsFull");
  EXPECT_EQ(describeError(modelError).sentence, "CageIsFull: No.");
  EXPECT_EQ(describeError(kestrel::ArrayError("Kestrel:array:WrongClass", "No.")).identifier,
            "Kestrel:array:WrongClass");
  EXPECT_EQ(describeError(std::bad_alloc()).identifier, "Kestrel:native:OutOfMemory");
  EXPECT_EQ(describeError(std::runtime_error("No.")).sentence, "No.");
  HostError const hostError(ErrorKey::NO_SUCH_CLASS, "There is no class 'zoo.Dodo'.");
  EXPECT_EQ(describeError(hostError).identifier, "Kestrel:class:NoSuchClass");
  EXPECT_STREQ(hostError.what(), "NoSuchClass: There is no class 'zoo.Dodo'.");
}

}  // namespace
}  // namespace corvid
