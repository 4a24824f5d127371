// From host structs to builders.
#include <algorithm>
#include <boost/uuid/string_generator.hpp>
#include <deque>
#include <string>
#include <vector>

#include "ModelErrors.hpp"
#include "corvid/CorvidTypeRepository.hpp"
#include "corvid/HostError.hpp"
#include "corvid/factory/SelfTraits.hpp"
#include "corvid/factory/ValueShape.hpp"
#include "groundwork/Unicode.hpp"
#include "kestrel/Array.hpp"
#include "plinth/Value.hpp"
#include "plinth/bridge/Construct.hpp"
#include "plinth/bridge/ElementBinding.hpp"
#include "plinth/bridge/MetaMarshalerRegistry.hpp"
#include "plinth/meta/MetaRegistry.hpp"

namespace plinth::bridge::detail {
namespace {

using corvid::HostError;

/// The field that names a subclass; no property has a name in lower case.
constexpr char const* CLASS_FIELD = "class";

meta::Class findClass(std::string const& name, meta::Class const& declared) {
  auto const& registry = meta::MetaRegistry::getInstance();
  meta::Type type = registry.findType(name);
  std::string const& declaredName = declared->narrowName();
  if (type.isEmpty()) type = registry.findType(declaredName.substr(0, declaredName.rfind('.') + 1) + name);
  if (type.isEmpty()) reportException(messages::NoSuchType(groundwork::toUtf16(name)));
  auto* const metaClass = dynamic_cast<meta::ClassImpl*>(type.impl());
  if (metaClass == nullptr || !metaClass->conformsTo(*declared.impl()))
    reportException(messages::CannotAddIncompatibleTypes(declared->getQualifiedName(), type->getQualifiedName()));
  return meta::Class(metaClass);
}

/// The UTF-8 form of a text; nothing for one that is not well formed, of which the conversion leaves out a part.
boost::optional<std::string> exactUtf8(std::u16string_view text) {
  std::string utf8 = groundwork::toUtf8(text);
  return groundwork::toUtf16(utf8) == text ? boost::make_optional(std::move(utf8)) : boost::none;
}

/// The class that a struct names, or the declared one. Raises WrongType for a field that is no text.
meta::Class classToBuild(kestrel_array const& hostStruct, std::size_t index, meta::Class const& declared) {
  kestrel_array const* const named =
      kestrel::hasField(hostStruct, CLASS_FIELD) ? kestrel::field(hostStruct, index, CLASS_FIELD) : nullptr;
  if (named == nullptr || kestrel::isEmpty(*named)) return declared;
  kestrel::OwnedArray made;
  auto const& name = corvid::CorvidTypeRepository::coerce(corvid::factory::detail::stringScalarType(), *named, made);
  std::u16string const text(kestrel::scalarText(name));
  auto const utf8 = exactUtf8(text);
  if (!utf8) reportException(messages::NoSuchType(text));
  return findClass(*utf8, declared);
}

/// A front end that has one form for both can't tell a struct without fields from a list without elements.
bool isEmptyTable(kestrel_array const& value) {
  return kestrel::isStruct(value) && kestrel::isScalar(value) && kestrel::fieldNames(value).empty();
}

/// One struct on its way into a builder, and the way to it from the struct that all began with.
struct Level {
  Level const* parent;
  meta::Property property;
  kestrel_array const* hostStruct;
  std::size_t index;
  ModelElementBuilder* builder;
};

/// "Property 'Params': Property 'Data'"; of a long way the two ends.
std::string placeOf(Level const& level, meta::Property const& property) {
  constexpr std::size_t SHOWN_AT_EACH_END = 8;
  std::vector<meta::Property> way{property};
  for (Level const* each = &level; each->parent != nullptr; each = each->parent) way.push_back(each->property);
  std::string place;
  for (std::size_t i = way.size(); i-- > 0;) {
    bool const isShown = i < SHOWN_AT_EACH_END || i + SHOWN_AT_EACH_END >= way.size();
    if (isShown) place += "Property '" + memberName(*way[i].impl()).text() + (i == 0 ? "'" : "': ");
    if (i == SHOWN_AT_EACH_END && way.size() > 2 * SHOWN_AT_EACH_END) place += "...: ";
  }
  return place;
}

/// Gives the fields of structs to builders. Structs within structs wait in a list for their turn: they may be nested
/// deeper than a stack is long.
class FieldReader {
 public:
  explicit FieldReader(Model const& model) : m_model(model) {}

  void readAll(ModelElementBuilder& builder, kestrel_array const& hostStruct, std::size_t index) {
    m_levels.push_back({nullptr, meta::Property(), &hostStruct, index, &builder});
    for (std::size_t next = 0; next < m_levels.size(); ++next) read(m_levels[next]);
  }

 private:
  void read(Level const& level) {
    for (std::string const& name : kestrel::fieldNames(*level.hostStruct)) {
      if (name == CLASS_FIELD) continue;
      kestrel_array const* const value = kestrel::field(*level.hostStruct, level.index, name);
      meta::Property const property = requireProperty(level, name);
      // Only of a text is the empty one a value.
      if (value == nullptr || (kestrel::isEmpty(*value) && !kestrel::isText(*value))) continue;
      at(level, property, [&] { give(level, property, *value); });
    }
  }

  /// Errors speak of values and types alone: here they get the names of the properties.
  template <class Action>
  static void at(Level const& level, meta::Property const& property, Action const& action) {
    try {
      action();
    } catch (...) {
      rethrowAt(placeOf(level, property));
    }
  }

  static meta::Property requireProperty(Level const& level, std::string const& name) {
    std::u16string const wideName = groundwork::toUtf16(name);
    bool const isWhole = groundwork::toUtf8(wideName) == name;
    meta::PropertyImpl* const property = isWhole ? level.builder->getMetaClass()->findProperty(wideName) : nullptr;
    if (property == nullptr) refuseField(level, isWhole ? wideName : wideName + u'\xfffd');
    return meta::Property(property);
  }

  [[noreturn]] static void refuseField(Level const& level, std::u16string name) {
    // A sentence is told as a C string.
    std::replace(name.begin(), name.end(), u'\0', u'\xfffd');
    try {
      reportException(messages::NoSuchProperty(name, level.builder->getMetaClass()->getQualifiedName()));
    } catch (...) {
      if (level.parent == nullptr) throw;
      rethrowAt(placeOf(*level.parent, level.property));
    }
  }

  void give(Level const& level, meta::Property const& property, kestrel_array const& value) {
    if (property->isMany() && isEmptyTable(value)) return;
    if (dynamic_cast<meta::ClassImpl const*>(property->type()) == nullptr) {
      giveValues(*level.builder, property, value);
    } else if (property->isComposite()) {
      giveChildren(level, property, value);
    } else {
      giveElements(*level.builder, property, value);
    }
  }

  static void giveValues(ModelElementBuilder& builder, meta::Property const& property, kestrel_array const& value) {
    auto const& marshaler = MetaMarshalerRegistry::getInstance().getPropertyMarshaler(property->getType());
    if (!property->isMany()) return builder.setOrAdd(property, marshaler.fromKestrelArray(value));
    for (Value const& each : marshaler.toValueVector(value)) builder.setOrAdd(property, each);
  }

  static void giveElements(ModelElementBuilder& builder, meta::Property const& property, kestrel_array const& value) {
    requireOneUnlessMany(property, value);
    kestrel::OwnedArray made;
    kestrel_array const& objects = corvid::CorvidTypeRepository::coerce(hostName(*property->type()), value, made);
    for (std::size_t i = 0; i < kestrel::numberOfElements(objects); ++i) {
      auto const element = corvid::factory::impl::selfOf<ModelElement>(objects, i);
      corvid::factory::impl::validateSelfPointer<ModelElement>(element);
      builder.setOrAdd(property, Value::createElementValue(property, element));
    }
  }

  /// A list may hold lists; those that are left to do stand with the next one last.
  void giveChildren(Level const& level, meta::Property const& property, kestrel_array const& value) {
    std::vector<kestrel_array const*> open{&value};
    while (!open.empty()) {
      kestrel_array const& each = *open.back();
      open.pop_back();
      if (kestrel::isObject(each)) refuseElement(level, property);
      requireOneUnlessMany(property, each);
      if (kestrel::baseClass(each) == kestrel::ClassId::Cell) {
        for (std::size_t i = kestrel::numberOfElements(each); i-- > 0;)
          if (kestrel::cell(each, i) != nullptr) open.push_back(kestrel::cell(each, i));
      } else {
        giveStructs(level, property, each);
      }
    }
  }

  void giveStructs(Level const& level, meta::Property const& property, kestrel_array const& structs) {
    if (!kestrel::isStruct(structs))
      throw HostError(corvid::ErrorKey::WRONG_TYPE, "Expected a struct of initial values, or a list of them, not " +
                                                        corvid::describeValue(structs) + ".");
    meta::Class const declared(static_cast<meta::ClassImpl*>(property->type()));
    for (std::size_t i = 0; i < kestrel::numberOfElements(structs); ++i) {
      auto child = classToBuild(structs, i, declared)->instantiateBuilder(m_model);
      m_levels.push_back({&level, property, &structs, i, child.get()});
      level.builder->setOrAdd(property, std::move(child));
    }
  }

  static void requireOneUnlessMany(meta::Property const& property, kestrel_array const& value) {
    if (property->isMany() || kestrel::numberOfElements(value) <= 1 || kestrel::isText(value)) return;
    throw HostError(corvid::ErrorKey::WRONG_TYPE, "Expected one value, not " + corvid::describeValue(value) + ".");
  }

  /// A builder makes what its element contains.
  [[noreturn]] static void refuseElement(Level const& level, meta::Property const& property) {
    detail::reportCause(
        messages::NoSuchProperty(property->getName(), level.builder->getMetaClass()->getQualifiedName()),
        "an element that is made contains new elements only, each given as a struct of initial values; one that exists "
        "is put in afterwards.");
  }

  Model const& m_model;
  std::deque<Level> m_levels;
};

}  // namespace

std::unique_ptr<ModelElementBuilder> createBuilderFromStruct(kestrel_array const& hostStruct, std::size_t index,
                                                             Model const& model, meta::Class const& metaClass) {
  if (index >= kestrel::numberOfElements(hostStruct))
    reportInvalidValue("there are no initial values in " + corvid::describeValue(hostStruct) + ".");
  auto builder = classToBuild(hostStruct, index, metaClass)->instantiateBuilder(model);
  FieldReader(model).readAll(*builder, hostStruct, index);
  return builder;
}

std::unique_ptr<ModelElementBuilder> createBuilderFromStructFirst(kestrel_array const& hostStruct, std::size_t index,
                                                                  Model const& model, meta::Class const& metaClass) {
  return createBuilderFromStruct(hostStruct, index, model, metaClass);
}

boost::optional<boost::uuids::uuid> extractUuid(kestrel_array const& array) {
  if (!kestrel::isOneText(array)) return boost::none;
  auto const text = exactUtf8(kestrel::scalarText(array));
  if (!text) return boost::none;
  try {
    return boost::uuids::string_generator()(*text);
  } catch (std::runtime_error const&) {
    return boost::none;
  }
}

boost::uuids::uuid requireUuid(kestrel_array const& array) {
  auto const uuid = extractUuid(array);
  if (!uuid) reportInvalidValue("expected the text of a UUID, not " + corvid::describeValue(array) + ".");
  return *uuid;
}

bool isInitialStruct(kestrel_array const& array) { return kestrel::isStruct(array) && kestrel::isScalar(array); }

}  // namespace plinth::bridge::detail
