// Marshalers of the types of a model: value datatypes, which cross as copies, and enumerations, which are also given by
// the text of a literal. Ownership and thread rule: see ValueMarshaler.hpp.
#pragma once

#include "plinth/bridge/TypedValueMarshaler.hpp"

namespace plinth::bridge {

template <class T>
class PolicyBasedValueMarshaler : public TypedValueMarshaler<T, void> {
 public:
  using TypedValueMarshaler<T, void>::TypedValueMarshaler;

  Value fromHost(kestrel_array const& array) const override {
    if (kestrel::isEmpty(array)) return Value(this->metaOf(meta::SINGLE));
    return TypedValueMarshaler<T, void>::fromHost(array);
  }
  Value fromKestrelArray(kestrel_array const& array) const override {
    kestrel::OwnedArray made;
    return fromHost(detail::coerceToOne(this->rowDataType(), array, made));
  }

 protected:
  std::vector<T> rowFromHost(kestrel_array const& array) const override {
    kestrel::OwnedArray made;
    return RowShape<T>::fromHost(detail::coerceToClass(this->rowDataType(), array, made));
  }
};

template <class E>
class PolicyBasedEnumValueMarshaler : public PolicyBasedValueMarshaler<E> {
 public:
  using PolicyBasedValueMarshaler<E>::PolicyBasedValueMarshaler;

  /// A text becomes the member of that name; an array of another class counts as the number 0.
  Value fromHost(kestrel_array const& array) const override {
    if (kestrel::baseClass(array) == kestrel::ClassId::Char || isStringArray(array)) {
      kestrel::OwnedArray const member = detail::memberFromText(this->rowDataType(), array);
      if (member != nullptr && kestrel::numberOfElements(*member) < 2) return plain(*member);
    }
    return plain(array);
  }

  virtual bool isStringArray(kestrel_array const& array) const {
    return kestrel::baseClass(array) == kestrel::ClassId::String;
  }

 private:
  Value plain(kestrel_array const& array) const {
    if (kestrel::isEmpty(array)) return Value(this->metaOf(meta::SINGLE));
    bool const isMember = kestrel::className(array) == hostNameOf<E>();
    return Value::make<E>(this->metaOf(meta::SINGLE), isMember ? RowShape<E>::fromHost(array).front() : E{});
  }
};

}  // namespace plinth::bridge
