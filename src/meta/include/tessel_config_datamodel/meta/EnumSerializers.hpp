// The three text forms of an enumeration: by name, by value ("ID") and by public identifier ("PublicID").
// Ownership: the serializer registry owns serializers. Thread rule: no state after construction.
#pragma once

#include <boost/optional.hpp>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "plinth/meta/Serializers.hpp"

namespace tessel::metamodel {

namespace detail {

// What does not depend on the enumeration's C++ type. Parsing raises boost::bad_lexical_cast.
TESSEL_EXPORT std::u16string literalName(plinth::meta::Enum const& type, int value);
TESSEL_EXPORT int parseLiteralName(plinth::meta::Enum const& type, std::u16string const& text);
TESSEL_EXPORT std::u16string literalValue(int value);
TESSEL_EXPORT int parseLiteralValue(plinth::meta::Enum const& type, std::u16string const& text);
TESSEL_EXPORT std::u16string publicIdentifier(plinth::meta::Enum const& type, int value);
TESSEL_EXPORT int parsePublicIdentifier(plinth::meta::Enum const& type, std::u16string const& text);

}  // namespace detail

/// What the forms share; each gives the two protected operations.
template <class E>
class DefaultPropertySerializer : public plinth::meta::PropertySerializer {
 public:
  using Value = plinth::Value;
  using ValueMeta = plinth::ValueMeta;
  using Type = plinth::meta::Type;

  explicit DefaultPropertySerializer(plinth::meta::Enum type) : m_enum(std::move(type)) {}

  std::u16string serializeOptionalValue(Value const& value) const final {
    auto const content = value.getValue<boost::optional<E>>();
    return content ? serialize(*content) : std::u16string();
  }
  Value toOptionalValue(Value const& value) const final {
    return Value::make<boost::optional<E>>(ValueMeta(m_enum.impl(), plinth::meta::OPTIONAL), value.getValue<E>());
  }
  std::u16string serializeValue(Value const& value) const final { return serialize(value.getValue<E>()); }
  Value parseValue(std::u16string const& text, Type const& type) const final {
    return Value::make<E>(ValueMeta(type.impl(), plinth::meta::SINGLE), parse(text));
  }
  Value parseOptionalValue(std::u16string const& text, Type const& type) const final {
    return Value::make<boost::optional<E>>(ValueMeta(type.impl(), plinth::meta::OPTIONAL), parse(text));
  }
  Value createEmptyOptionalValue(Type const& type) const final {
    return Value::make<boost::optional<E>>(ValueMeta(type.impl(), plinth::meta::OPTIONAL), boost::none);
  }
  Value createDefaultValue(Type const& type) const final {
    return Value::make<E>(ValueMeta(type.impl(), plinth::meta::SINGLE), static_cast<E>(0));
  }
  void releaseValue(Value& value) const final { value.release(); }
  Value combineAsUnmanagedSequenceValue(Type const& type, std::vector<Value> const& values) const final {
    auto combined = std::make_unique<std::vector<E>>();
    for (Value const& value : values) combined->push_back(value.getValue<E>());
    return Value::makeUnmanaged(ValueMeta(type.impl(), plinth::meta::SEQUENCE), std::move(combined));
  }
  Value combineAsUnmanagedSetValue(Type const& type, std::vector<Value> const& values) const final {
    auto combined = std::make_unique<std::set<E>>();
    for (Value const& value : values) combined->insert(value.getValue<E>());
    return Value::makeUnmanaged(ValueMeta(type.impl(), plinth::meta::SET), std::move(combined));
  }

 protected:
  virtual std::u16string serialize(E value) const = 0;
  virtual E parse(std::u16string const& text) const = 0;
  plinth::meta::Enum const& type() const noexcept { return m_enum; }

 private:
  plinth::meta::Enum m_enum;
};

template <class E>
class EnumPropertySerializerAsName final : public DefaultPropertySerializer<E> {
 public:
  using DefaultPropertySerializer<E>::DefaultPropertySerializer;

 protected:
  std::u16string serialize(E value) const override {
    return detail::literalName(this->type(), static_cast<int>(value));
  }
  E parse(std::u16string const& text) const override {
    return static_cast<E>(detail::parseLiteralName(this->type(), text));
  }
};

template <class E>
class EnumPropertySerializerAsValue final : public DefaultPropertySerializer<E> {
 public:
  using DefaultPropertySerializer<E>::DefaultPropertySerializer;

 protected:
  std::u16string serialize(E value) const override { return detail::literalValue(static_cast<int>(value)); }
  E parse(std::u16string const& text) const override {
    return static_cast<E>(detail::parseLiteralValue(this->type(), text));
  }
};

template <class E>
class EnumPropertySerializerAsPublicId final : public DefaultPropertySerializer<E> {
 public:
  using DefaultPropertySerializer<E>::DefaultPropertySerializer;

 protected:
  std::u16string serialize(E value) const override {
    return detail::publicIdentifier(this->type(), static_cast<int>(value));
  }
  E parse(std::u16string const& text) const override {
    return static_cast<E>(detail::parsePublicIdentifier(this->type(), text));
  }
};

template <class E>
void registerEnumSerializers(plinth::meta::PropertySerializerRegistry& registry, plinth::meta::Enum const& type) {
  registry.registerPropertySerializer(type, std::make_unique<EnumPropertySerializerAsName<E>>(type), "");
  registry.registerPropertySerializer(type, std::make_unique<EnumPropertySerializerAsValue<E>>(type), "ID");
  registry.registerPropertySerializer(type, std::make_unique<EnumPropertySerializerAsPublicId<E>>(type), "PublicID");
}

}  // namespace tessel::metamodel
