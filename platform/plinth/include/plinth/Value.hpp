// The reflective value of one property: a type, a shape and a content that the value owns or only points at.
//
// A value carries the four functions of its content's C++ type, so that code that knows no types can copy, compare,
// hash and delete it. Contents of up to eight bytes stand in the value itself. The value of a many-valued property is
// the element's live collection. Ownership: a managed value owns its content; an unmanaged one is valid as long as what
// it points at. Thread rule: one value belongs to one thread at a time.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <new>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

#include "plinth/Hashing.hpp"
#include "plinth/Messages.hpp"
#include "plinth/MetaTypeOf.hpp"
#include "plinth/meta/Property.hpp"

namespace plinth {

class AbstractOwnedCollection;
class AbstractPrimitiveCollection;
class ReferenceCollection;

/// Type, shape and ownership of a value.
class ValueMeta {
 public:
  ValueMeta() noexcept = default;
  /// The property's type and shape; no type for an empty handle.
  explicit ValueMeta(meta::Property const& property) noexcept {
    if (!property.isEmpty()) *this = ValueMeta(*property.impl());
  }
  explicit ValueMeta(meta::PropertyImpl const& property) noexcept
      : m_type(property.type()), m_flags(property.valueFlags()) {}
  ValueMeta(meta::TypeImpl* type, meta::ValueFlags flags) noexcept : m_type(type), m_flags(flags) {}

  meta::Type getType() const noexcept { return meta::Type(m_type); }
  meta::TypeImpl* type() const noexcept { return m_type; }
  meta::ValueFlags flags() const noexcept { return m_flags; }
  bool isOptionalEmpty() const noexcept { return m_optionalEmpty; }
  bool isManaged() const noexcept { return m_managed; }
  /// Whether the content is a collection of the model, live or with old values.
  bool isCollection() const noexcept { return m_collection; }
  ValueMeta& setUnmanaged() noexcept {
    m_managed = false;
    return *this;
  }
  ValueMeta& setOptionalEmpty() noexcept {
    m_optionalEmpty = true;
    return *this;
  }

 private:
  friend class Value;
  void forgetCollection() noexcept {
    if (!m_collection) return;
    m_collection = false;
    m_managed = true;
  }
  meta::TypeImpl* m_type = nullptr;
  meta::ValueFlags m_flags = meta::SINGLE;
  bool m_optionalEmpty = false;
  bool m_managed = true;
  bool m_collection = false;
};

class TESSEL_EXPORT Value {
 public:
  /// A value of no type.
  Value() noexcept = default;
  /// A value of that type and shape with no content, and so no collection either.
  explicit Value(ValueMeta const& meta) noexcept : m_meta(meta) { m_meta.forgetCollection(); }
  /// A value that points at a collection.
  Value(ValueMeta const& meta, AbstractOwnedCollection& collection) noexcept;

  Value(Value const& other);
  /// Leaves `other` a value of no type.
  Value(Value&& other) noexcept;
  Value& operator=(Value other) noexcept;
  ~Value() { reset(); }

  /// A managed value with a copy of `content`. Raises CannotCastIncompatibleTypes unless T is of that type and shape.
  template <class T>
  static Value make(ValueMeta const& meta, T content);
  /// The same for whoever knows that T fits: a value whose T does not reads memory that isn't there.
  template <class T>
  static Value makeUnchecked(ValueMeta const& meta, T content);
  /// A value that points at a content which whoever releases it deletes. Raises as make does, and then deletes it.
  template <class T>
  static Value makeUnmanaged(ValueMeta const& meta, std::unique_ptr<T> content);
  /// A value for that property. A plain `content` is, for an optional property, a value that is present, and for one of
  /// many values, one of them. Raises CannotCastIncompatibleTypes for a content of another type, and NoSuchProperty for
  /// an empty handle.
  template <class T>
  static Value createPrimitiveValue(meta::Property const& property, T const& content);
  /// A value for that property with a counted handle; its type is the element's class, or the property's for an empty
  /// or dead handle, which may be of a subclass. Raises CannotCastIncompatibleTypes and NoSuchProperty.
  template <class T>
  static Value createElementValue(meta::Property const& property, T const& element);

  ValueMeta const& meta() const noexcept { return m_meta; }
  bool isEmpty() const noexcept { return m_content == nullptr; }
  /// The content, which is of the C++ type that checkCompatible passes. A collection is reached by the two below.
  void const* content() const noexcept { return m_content; }
  /// The collection of plain values, or of elements, that this is the value of: what changes it changes the element.
  /// Raise CannotCastIncompatibleTypes for any other value.
  AbstractPrimitiveCollection& primitiveCollection() const;
  ReferenceCollection& referenceCollection() const;

  /// Raises CannotCastIncompatibleTypes unless this is a value of T: shape and type.
  template <class T>
  void checkCompatible() const;
  /// Raises CannotCastIncompatibleTypes: `expected` is what is needed in the place of this value.
  [[noreturn]] void reportIncompatible(ValueMeta const& expected) const;
  /// A copy of the content, of a collection's values for a vector or set; T's default where there is none. Raises as
  /// checkCompatible does.
  template <class T>
  T getValue() const;
  /// Deletes what an unmanaged value made by makeUnmanaged points at; copies of it point nowhere then. Leaves any value
  /// without content.
  void release() noexcept;

  /// Equal contents by the type's own comparison; values of different types or shapes differ, and so do a collection
  /// and a copy of its values.
  friend TESSEL_EXPORT bool operator==(Value const& left, Value const& right);
  friend bool operator!=(Value const& left, Value const& right) { return !(left == right); }
  /// The text of valueText, for tests and debuggers.
  friend TESSEL_EXPORT std::ostream& operator<<(std::ostream& stream, Value const& value);
  std::uint64_t hash() const;

  template <class T>
  static void genericDeleter(void* content) {
    delete static_cast<T*>(content);
  }
  template <class T>
  static void* genericCloner(void const* content) {
    return new T(*static_cast<T const*>(content));
  }
  template <class T>
  static bool genericComparator(void const* left, void const* right) {
    if (left == nullptr || right == nullptr) return left == right;
    return *static_cast<T const*>(left) == *static_cast<T const*>(right);
  }
  template <class T>
  static std::uint64_t genericHasher(void* content) {
    return hashValue(*static_cast<T const*>(content));
  }

 private:
  struct Functions {
    void (*deleter)(void*);
    void* (*cloner)(void const*);
    bool (*comparator)(void const*, void const*);
    std::uint64_t (*hasher)(void*);
    void (*copyInPlace)(void* to, void const* from);  ///< null: the content stands on the heap
    void (*destroyInPlace)(void* content);
  };
  static constexpr std::size_t IN_PLACE = 8;
  static constexpr std::size_t IN_PLACE_ALIGNMENT = alignof(void*);
  template <class T>
  static constexpr bool standsInPlace = sizeof(T) <= IN_PLACE &&
                                        alignof(T) <= IN_PLACE_ALIGNMENT&& std::is_nothrow_move_constructible_v<T>;
  template <class T>
  static Functions const& functionsOf() noexcept;
  /// Raises NoSuchProperty for an empty handle.
  static ValueMeta metaOf(meta::Property const& property);
  /// Raises CannotCastIncompatibleTypes unless a content T can be given where `meta` is needed.
  template <class T>
  static void requireFitting(ValueMeta const& meta);
  void reset() noexcept;
  AbstractOwnedCollection& requireCollection(bool ofElements) const;
  /// The container of a collection of values. Raises CannotCastIncompatibleTypes unless it is of that type.
  void const* collectionValues(std::type_info const& container) const;

  ValueMeta m_meta;
  void* m_content = nullptr;
  Functions const* m_functions = nullptr;
  alignas(IN_PLACE_ALIGNMENT) std::byte m_inPlace[IN_PLACE];
};

/// Says which values are ones of T: `static ValueMeta expected()`, and `static bool accepts(ValueMeta const&)`.
template <class T, class = void>
struct ValueTraits;

namespace detail {

template <class T, class = void>
inline constexpr bool hasMetaType = false;
template <class T>
inline constexpr bool hasMetaType<T, std::void_t<decltype(MetaTypeOf<T>::type())>> = true;

/// One type and one shape.
template <class T, meta::ValueFlags FLAGS>
struct ExactValueTraits {
  static ValueMeta expected() { return {type(), FLAGS}; }
  static bool accepts(ValueMeta const& meta) { return meta.flags() == FLAGS && meta.type() == type(); }

 private:
  static meta::TypeImpl* type() {
    static_assert(hasMetaType<T>,
                  "no type of the metamodel stands for this C++ type: a value is a bool, double, int, "
                  "long, unsigned long, unsigned int, std::u16string, enumeration, datatype or handle");
    return MetaTypeOf<T>::type();
  }
};

template <class T>
inline constexpr bool isMany = false;
template <class T>
inline constexpr bool isMany<std::vector<T>> = true;
template <class T>
inline constexpr bool isMany<std::set<T>> = true;
template <class T>
inline constexpr bool isOptional = false;
template <class T>
inline constexpr bool isOptional<boost::optional<T>> = true;

}  // namespace detail

template <class T, class>
struct ValueTraits : detail::ExactValueTraits<T, meta::SINGLE> {};
template <class T>
struct ValueTraits<boost::optional<T>> : detail::ExactValueTraits<T, meta::OPTIONAL> {};
template <class T>
struct ValueTraits<std::vector<T>> : detail::ExactValueTraits<T, meta::SEQUENCE> {};
template <class T>
struct ValueTraits<std::set<T>> : detail::ExactValueTraits<T, meta::SET> {};
/// An element of the class or below it.
template <class T>
struct ValueTraits<T, std::enable_if_t<std::is_base_of_v<ModelElement, T>>> {
  static ValueMeta expected() { return {T::metaClass().impl(), meta::SINGLE}; }
  static bool accepts(ValueMeta const& meta) {
    return meta.flags() < meta::SEQUENCE && meta.type() != nullptr && meta.type()->isClass() &&
           static_cast<meta::ClassImpl const*>(meta.type())->conformsTo(*T::metaClass().impl());
  }
};

template <class T>
Value::Functions const& Value::functionsOf() noexcept {
  static constexpr bool inPlace = standsInPlace<T>;
  static constexpr Functions functions{
      &genericDeleter<T>,
      &genericCloner<T>,
      &genericComparator<T>,
      &genericHasher<T>,
      inPlace ? +[](void* to, void const* from) { ::new (to) T(*static_cast<T const*>(from)); }
              : static_cast<void (*)(void*, void const*)>(nullptr),
      inPlace ? +[](void* content) { static_cast<T*>(content)->~T(); } : static_cast<void (*)(void*)>(nullptr)};
  return functions;
}

template <class T>
void Value::requireFitting(ValueMeta const& meta) {
  if (!ValueTraits<T>::accepts(meta)) Value(ValueTraits<T>::expected()).reportIncompatible(meta);
}

template <class T>
Value Value::make(ValueMeta const& meta, T content) {
  requireFitting<T>(meta);
  return makeUnchecked<T>(meta, std::move(content));
}

template <class T>
Value Value::makeUnmanaged(ValueMeta const& meta, std::unique_ptr<T> content) {
  requireFitting<T>(meta);
  Value value(meta);
  value.m_meta.setUnmanaged();
  value.m_content = content.release();
  value.m_functions = &functionsOf<T>();
  return value;
}

template <class T>
Value Value::createElementValue(meta::Property const& property, T const& element) {
  ValueMeta const meta = metaOf(property);
  if (element) return make<T>(ValueMeta(element->getMetaClass().impl(), meta::SINGLE), element);
  ValueMeta const absent(meta.type(), meta::SINGLE);
  return T::metaClass()->conformsTo(*meta.type()) ? makeUnchecked<T>(absent, element) : make<T>(absent, element);
}

template <class T>
Value Value::createPrimitiveValue(meta::Property const& property, T const& content) {
  ValueMeta const meta = metaOf(property);
  if constexpr (!detail::isOptional<T> && !detail::isMany<T>) {
    if (meta.flags() == meta::OPTIONAL) return make<boost::optional<T>>(meta, content);
    return make<T>(ValueMeta(meta.type(), meta::SINGLE), content);
  } else {
    return make<T>(meta, content);
  }
}

template <class T>
Value Value::makeUnchecked(ValueMeta const& meta, T content) {
  Value value(meta);
  if constexpr (detail::isOptional<T>) {
    value.m_meta.m_optionalEmpty = !content;
    if (!content) return value;
  }
  if constexpr (standsInPlace<T>) {
    value.m_content = ::new (value.m_inPlace) T(std::move(content));
  } else {
    value.m_content = new T(std::move(content));
  }
  value.m_functions = &functionsOf<T>();
  return value;
}

template <class T>
void Value::checkCompatible() const {
  if (!ValueTraits<T>::accepts(m_meta)) reportIncompatible(ValueTraits<T>::expected());
}

template <class T>
T Value::getValue() const {
  checkCompatible<T>();
  if constexpr (detail::isMany<T>) {
    if (m_meta.isCollection()) return *static_cast<T const*>(collectionValues(typeid(T)));
  }
  return m_content == nullptr || m_meta.isOptionalEmpty() ? T() : *static_cast<T const*>(m_content);
}

/// The handles of the foundation's primitive types, looked up by name at first use.
struct TESSEL_EXPORT StandardTypes {
  static meta::TypeImpl* booleanMeta();
  static meta::TypeImpl* stringMeta();
  static meta::TypeImpl* realMeta();
  static meta::TypeImpl* integerMeta();
  static meta::TypeImpl* integer64Meta();
  static meta::TypeImpl* uInteger64Meta();
  static meta::TypeImpl* unlimitedNaturalMeta();
  static meta::TypeImpl* kestrelArrayMeta();
};

template <>
struct MetaTypeOf<bool> {
  static meta::TypeImpl* type() { return StandardTypes::booleanMeta(); }
};
template <>
struct MetaTypeOf<std::u16string> {
  static meta::TypeImpl* type() { return StandardTypes::stringMeta(); }
};
template <>
struct MetaTypeOf<double> {
  static meta::TypeImpl* type() { return StandardTypes::realMeta(); }
};
template <>
struct MetaTypeOf<int> {
  static meta::TypeImpl* type() { return StandardTypes::integerMeta(); }
};
template <>
struct MetaTypeOf<long> {
  static meta::TypeImpl* type() { return StandardTypes::integer64Meta(); }
};
template <>
struct MetaTypeOf<unsigned long> {
  static meta::TypeImpl* type() { return StandardTypes::uInteger64Meta(); }
};
template <>
struct MetaTypeOf<unsigned int> {
  static meta::TypeImpl* type() { return StandardTypes::unlimitedNaturalMeta(); }
};

namespace internal {
/// Whether `type` is an enumeration.
TESSEL_EXPORT bool isEnumType(meta::Type const& type);
}  // namespace internal

}  // namespace plinth
