// Classes seen by a front end: members through inheritance, listings, methods with signatures, enumerations.
#include "corvid/Callable.hpp"
#include "corvid/CorvidClass.hpp"
#include "host_fixture.hpp"

namespace corvid {
namespace {

using internal::makeInterned;

template <class Infos>
std::vector<std::string> namesOf(Infos const& infos) {
  std::vector<std::string> names;
  for (auto const& info : infos) names.push_back(info->getName().text());
  return names;
}

using Classes = HostTest;

TEST_F(Classes, inheritMembersButNoConstructors) {
  CorvidClass& cat = classNamed("zoo.residents.Cat");
  EXPECT_TRUE(cat.isSubclassOf(makeInterned("zoo.residents.Animal")));
  EXPECT_TRUE(cat.isSubclassOf(cat.getFullName()));
  EXPECT_FALSE(animalClass().isSubclassOf(cat.getFullName()));
  EXPECT_EQ(cat.lineage(), (std::vector<CorvidClass const*>{&cat, &animalClass()}));
  EXPECT_EQ(cat.findProperty(makeInterned("Weight")), animalClass().findProperty(makeInterned("Weight")));
  EXPECT_TRUE(cat.getMethods(makeInterned("Animal")).empty());
  EXPECT_EQ(cat.getMethods(makeInterned("feed")).size(), 1u);
  EXPECT_TRUE(animalClass().getMethods(makeInterned("purr")).empty());
}

TEST_F(Classes, listWhatAScriptCanNameWithoutHiddenMembers) {
  CorvidClass const& cat = classNamed("zoo.residents.Cat");
  EXPECT_EQ(namesOf(cat.listProperties()),
            (std::vector<std::string>{"Name", "Weight", "Tame", "Age", "Diet", "Mother", "Offspring", "Herd"}));
  EXPECT_EQ(namesOf(cat.listMethods()), (std::vector<std::string>{"purr", "feed", "die", "trial", "sing"}));
  EXPECT_TRUE(kestrel::element<bool>(*get(newAnimal(), "Alive"))) << "a hidden property is there for who names it";
  EXPECT_TRUE(classNamed("zoo.residents.Ghost").getInfo().isHidden());
}

TEST_F(Classes, methodsTakeTheirArgumentsInTheTypesOfTheSignature) {
  kestrel::OwnedArray const cat = newAnimal("zoo.residents.Cat");
  auto const three = kestrel::createScalar<std::int64_t>(3);
  auto const note = kestrel::createString(u"supper");
  EXPECT_EQ(kestrel::element<double>(*call(cat, "feed", {three.get()})), 4.0);
  EXPECT_EQ(kestrel::element<double>(*call(cat, "feed", {three.get(), note.get()})), 7.0);
  EXPECT_EQ(kestrel::charText(*call(cat, "purr")), u"purr");
  EXPECT_EQ(kestrel::element<double>(*invoke(animalClass(), makeInterned("count"), {})), 1.0);
  EXPECT_EQ(invoke(animalClass(), makeInterned("feed"), {cat.get(), three.get()}, false), nullptr)
      << "no result is made that nobody wants";
}

TEST_F(Classes, aCallThatDoesNotFitTheSignatureIsANamedErrorAndReachesNoNative) {
  kestrel::OwnedArray const cat = newAnimal("zoo.residents.Cat");
  kestrel::OwnedArray const animal = newAnimal();
  auto const three = kestrel::createScalar(3.0);
  auto const text = kestrel::createChar(u"much");
  auto const pair = kestrel::createRow<double>({1, 2});
  EXPECT_EQ(errorOf([&] { call(cat, "feed"); }), "Kestrel:class:WrongArgumentCount");
  EXPECT_EQ(errorOf([&] {
              call(cat, "feed", {three.get(), text.get(), text.get()});
            }),
            "Kestrel:class:WrongArgumentCount");
  EXPECT_EQ(errorOf([&] { call(cat, "feed", {text.get()}); }), "Kestrel:class:WrongType");
  EXPECT_EQ(errorOf([&] { call(cat, "feed", {pair.get()}); }), "Kestrel:class:WrongType");
  EXPECT_EQ(errorOf([&] { call(cat, "trial", {three.get()}); }), "Kestrel:class:WrongType");
  EXPECT_EQ(errorOf([&] { call(animal, "purr"); }), "Kestrel:class:NoSuchMember");
  EXPECT_EQ(errorOf([&] { invoke(classNamed("zoo.residents.Cat"), makeInterned("purr"), {animal.get()}); }),
            "Kestrel:class:WrongType");
  EXPECT_EQ(errorOf([&] {
              invoke(animalClass(), makeInterned("feed"), {three.get(), three.get()});
            }),
            "Kestrel:class:WrongType");
  EXPECT_EQ(errorOf([&] { call(cat, "sing"); }), "Kestrel:class:NotImplemented");
  EXPECT_EQ(kestrel::element<double>(*get(cat, "Weight")), 1.0);
}

TEST_F(Classes, anOptionalArgumentIsConvertedOrLeftToTheMethodToJudge) {
  Identifier const look = makeInterned("look");
  auto const text = kestrel::createString(u"text");
  auto const number = kestrel::createScalar<std::int64_t>(1);
  auto const seen = [&](Inputs const& inputs) {
    return std::u16string(kestrel::charText(*invoke(animalClass(), look, inputs)));
  };
  EXPECT_EQ(seen({number.get(), text.get(), number.get()}), u"int64 char double ");
  EXPECT_EQ(seen({number.get(), number.get(), text.get()}), u"int64 int64 string ");
}

TEST_F(Classes, abstractClassesHaveNoObjects) {
  EXPECT_EQ(errorOf([] { return construct(classNamed("zoo.residents.Ghost"), {}); }), "Kestrel:class:AbstractClass");
  auto const number = kestrel::createScalar(1.0);
  EXPECT_EQ(errorOf([&] {
              return construct(animalClass(), {number.get(), number.get(), number.get()});
            }),
            "Kestrel:class:WrongArgumentCount");
}

TEST_F(Classes, aMethodThatTakesAFunctionIsGivenOneAndSeesItsErrors) {
  class Doubler final : public Callable {
   public:
    explicit Doubler(bool fails) : m_fails(fails) {}
    void addRef() noexcept override { ++m_references; }
    void release() noexcept override {
      if (--m_references == 0) delete this;
    }
    std::vector<kestrel::OwnedArray> call(Inputs const& inputs) override {
      auto const& weight = requireProperty(*classOf(*inputs.at(0)), makeInterned("Weight"));
      setProperty(*inputs[0], weight, *kestrel::createScalar(20.0));
      if (m_fails) throw std::runtime_error("the script failed");
      std::vector<kestrel::OwnedArray> results;
      results.push_back(kestrel::createScalar(2.0));
      return results;
    }

   private:
    int m_references = 0;
    bool m_fails;
  };

  kestrel::OwnedArray const animal = newAnimal();
  auto const failing = kestrel::createObject(kestrel::ObjectRef(new Doubler(true)));
  EXPECT_EQ(errorOf([&] { call(animal, "trial", {failing.get()}); }), "Kestrel:native:Exception");
  EXPECT_EQ(kestrel::element<double>(*get(animal, "Weight")), 1.0);
  auto const working = kestrel::createObject(kestrel::ObjectRef(new Doubler(false)));
  EXPECT_EQ(kestrel::element<double>(*call(animal, "trial", {working.get()})), 2.0);
  EXPECT_EQ(kestrel::element<double>(*get(animal, "Weight")), 20.0);
}

TEST_F(Classes, enumerationsAreMadeFromMembersTextAndNumbers) {
  CorvidClass& diet = classNamed("zoo.residents.Diet");
  EXPECT_EQ(diet.getUnderlyingType().text(), "int32");
  EXPECT_EQ(namesOf(diet.getEnumValues()), (std::vector<std::string>{"PLANTS", "MEAT", "EVERYTHING"}));
  auto const made = [&](kestrel::OwnedArray const& from) { return construct(diet, {from.get()}); };
  kestrel::OwnedArray const meat = made(kestrel::createChar(u"MEAT"));
  EXPECT_EQ(kestrel::className(*meat), diet.getFullName());
  EXPECT_EQ(kestrel::element<std::int32_t>(*meat), 2);
  EXPECT_TRUE(kestrel::equalContents(made(meat).get(), meat.get()));
  EXPECT_TRUE(kestrel::equalContents(made(kestrel::createScalar(2.0)).get(), meat.get()));
  EXPECT_EQ(kestrel::element<std::int32_t>(*invoke(diet, makeInterned("getValue"), {meat.get()})), 2);
  auto const text = kestrel::createChar(u"EVERYTHING");
  EXPECT_EQ(kestrel::element<std::int32_t>(*invoke(diet, makeInterned("getValue"), {text.get()})), 5);
  auto const number = kestrel::createScalar(7.0);
  EXPECT_EQ(kestrel::element<std::int32_t>(*invoke(diet, makeInterned("getValue"), {number.get()})), 0)
      << "a method that judges its own self is given what could not be converted";
  EXPECT_EQ(errorOf([&] { made(kestrel::createChar(u"STONES")); }), "Kestrel:class:WrongType");
  EXPECT_EQ(errorOf([&] { made(kestrel::createScalar(1.5)); }), "Kestrel:class:ValueOutOfRange");
  EXPECT_EQ(errorOf([&] { return construct(diet, {}); }), "Kestrel:class:WrongArgumentCount");
}

}  // namespace
}  // namespace corvid
