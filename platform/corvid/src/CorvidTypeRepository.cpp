#include "corvid/CorvidTypeRepository.hpp"

#include "Coercion.hpp"
#include "HostState.hpp"
#include "corvid/HostError.hpp"

namespace corvid {
namespace {

std::pair<Identifier, Identifier> conversionKey(std::string_view from, std::string_view to) {
  return {internal::makeInterned(from), internal::makeInterned(to)};
}

CorvidTypeConverter* findConversion(std::pair<Identifier, Identifier> const& key) {
  auto const& conversions = hostState().conversions;
  auto const found = conversions.find(key);
  return found == conversions.end() ? nullptr : found->second.get();
}

}  // namespace

CorvidTypeConverter* CorvidTypeRepository::getConversion(std::string_view from, std::string_view to) {
  return findConversion(conversionKey(from, to));
}

std::unique_ptr<CorvidTypeConverter> CorvidTypeRepository::removeConversion(std::string_view from,
                                                                            std::string_view to) {
  auto& conversions = hostState().conversions;
  auto const found = conversions.find(conversionKey(from, to));
  if (found == conversions.end()) return nullptr;
  std::unique_ptr<CorvidTypeConverter> converter = std::move(found->second);
  conversions.erase(found);
  return converter;
}

void CorvidTypeRepository::addConversion(std::string_view from, std::string_view to,
                                         std::unique_ptr<CorvidTypeConverter> converter) {
  bool const added = hostState().conversions.try_emplace(conversionKey(from, to), std::move(converter)).second;
  if (!added)
    throw HostError(ErrorKey::DUPLICATE_NAME,
                    "The host has a conversion from '" + std::string(from) + "' to '" + std::string(to) + "' already.");
}

void CorvidTypeRepository::requireType(Identifier type) { dataType(type); }

kestrel_array const* coerceOrNull(Identifier type, kestrel_array const& value, kestrel::OwnedArray& holder) {
  static Identifier const any = internal::makeInterned("any");
  DataType const& wanted = dataType(type);
  if (conforms(wanted, value)) return &value;
  if (CorvidTypeConverter const* const converter = findConversion({any, type})) {
    holder = converter->convert(value);
    if (holder != nullptr && conforms(wanted, *holder)) return holder.get();
  }
  holder = convertBuiltIn(wanted, value);
  return holder.get();
}

kestrel_array const& CorvidTypeRepository::coerce(Identifier type, kestrel_array const& value,
                                                  kestrel::OwnedArray& holder) {
  if (kestrel_array const* const coerced = coerceOrNull(type, value, holder)) return *coerced;
  DataType const& wanted = dataType(type);
  bool const isRow = wanted.shape == DataType::Shape::Vector;
  throw wrongType(wanted, isRow ? Multiplicity::Many : Multiplicity::Single, value);
}

}  // namespace corvid
