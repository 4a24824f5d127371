// What a user's program sees of the library across its boundary: each exception that the library throws is caught by
// its own class, those of other libraries' classes too.
#include <boost/lexical_cast.hpp>
#include <cstdio>
#include <kestrel/Array.hpp>
#include <plinth/Messages.hpp>
#include <plinth/Model.hpp>
#include <plinth/meta/Serializers.hpp>
#include <tessel_config_datamodel/ext/ConfigProfile.hpp>
#include <tessel_config_datamodel/ext/ConfigStore.hpp>
#include <tessel_config_datamodel/runtime/TagType.hpp>
#if __has_include(<corvid/HostError.hpp>)
#include <corvid/HostError.hpp>
#include <corvid/Invocation.hpp>
#include <tessel_config_datamodel/bridge/EntryPoints.hpp>
#include <tessel_config_datamodel/bridge/ext/ConfigProfileWrapper.hpp>
#endif

namespace ext = tessel::internal::ext;

namespace {

int uncaught = 0;

template <class E, class Function>
void expectCaught(char const* name, Function&& function) {
  try {
    function();
    std::printf("%s: nothing was thrown\n", name);
  } catch (E const& error) {
    std::printf("%s: %s\n", name, error.what());
    return;
  } catch (std::exception const& error) {
    std::printf("%s: not caught by its class: %s\n", name, error.what());
  }
  ++uncaught;
}

void addTwoProfilesOfOneName() {
  auto const model = plinth::Model::create();
  auto store = ext::ConfigStore::create(model, {});
  for (int i = 0; i < 2; ++i) {
    auto profile = ext::ConfigProfile::create(model, {});
    profile->setId(u"twice");
    store->getProfilesMutable()->insert(profile);
  }
}

void parseUnknownLiteral() {
  plinth::meta::Type const type(plinth::MetaTypeOf<tessel::internal::config::runtime::TagType>::type());
  auto const* const serializer = plinth::meta::PropertySerializerRegistry::getInstance().propertySerializer(type, "");
  serializer->parseValue(u"no literal", type);
}

}  // namespace

int main() {
  using Message = groundwork::except::Exception<plinth::messages::UniquenessConstraint, std::exception>;
  expectCaught<Message>("message", addTwoProfilesOfOneName);
  expectCaught<boost::bad_lexical_cast>("parsing", parseUnknownLiteral);
  expectCaught<kestrel::ArrayError>("array", [] { return kestrel::createNumeric<double>({~std::size_t{0}, 1}); });
#if __has_include(<corvid/HostError.hpp>)
  MLInitialize_tessel_config_datamodel();
  auto const name = corvid::internal::makeInterned("tessel.internal.ext.ConfigProfile");
  corvid::CorvidClass& profileClass = corvid::CorvidClass::requireClass(name);
  expectCaught<corvid::HostError>("host", [&] { return corvid::construct(profileClass, {}); });
  MLTerminate_tessel_config_datamodel();
#endif
  return uncaught;
}
