#include "tessel_config_datamodel/frame/HostArrayText.hpp"

#include <array>
#include <charconv>
#include <cmath>

#include "plinth/ValueText.hpp"
#include "tessel_config_datamodel/frame/HostArray.hpp"

namespace tessel::frame {
namespace {

using kestrel::ClassId;

template <class T>
std::string numberText(T value) {
  if constexpr (std::is_same_v<T, bool>) {
    return value ? "true" : "false";
  } else {
    if constexpr (std::is_floating_point_v<T>) {
      if (std::isnan(value)) return "nan";
    }
    std::array<char, 32> digits{};
    return {digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr};
  }
}

template <class T>
std::string plainText(kestrel_array const& array, std::size_t index) {
  return numberText(kestrel::element<T>(array, index));
}

std::string stringText(kestrel_array const& array, std::size_t index) {
  kestrel::MaybeString const& text = kestrel::stringElement(array, index);
  return text ? plinth::quoted(*text) : "missing";
}

std::string cellText(kestrel_array const& array, std::size_t index) {
  return hostArrayText(kestrel::cell(array, index));
}

std::string fieldsText(kestrel_array const& array, std::size_t index) {
  std::string text;
  for (std::string const& name : kestrel::fieldNames(array)) {
    text += (text.empty() ? "" : ", ") + name + ": " + hostArrayText(kestrel::field(array, index, name));
  }
  return kestrel::numberOfElements(array) == 1 ? text : "{" + text + "}";
}

std::string objectText(kestrel_array const& array, std::size_t index) {
  kestrel::ObjectRef const& object = kestrel::object(array, index);
  return object ? object->className().text() : "none";
}

using ElementText = std::string (*)(kestrel_array const& array, std::size_t index);

/// Null for a char array, whose elements are one text.
ElementText elementText(ClassId id) noexcept {
  switch (id) {
    case ClassId::Cell:
      return &cellText;
    case ClassId::Struct:
      return &fieldsText;
    case ClassId::Logical:
      return &plainText<bool>;
    case ClassId::Char:
      return nullptr;
    case ClassId::String:
      return &stringText;
    case ClassId::Double:
      return &plainText<double>;
    case ClassId::Single:
      return &plainText<float>;
    case ClassId::Int8:
      return &plainText<std::int8_t>;
    case ClassId::UInt8:
      return &plainText<std::uint8_t>;
    case ClassId::Int16:
      return &plainText<std::int16_t>;
    case ClassId::UInt16:
      return &plainText<std::uint16_t>;
    case ClassId::Int32:
      return &plainText<std::int32_t>;
    case ClassId::UInt32:
      return &plainText<std::uint32_t>;
    case ClassId::Int64:
      return &plainText<std::int64_t>;
    case ClassId::UInt64:
      return &plainText<std::uint64_t>;
    case ClassId::Object:
      return &objectText;
  }
  return nullptr;
}

std::string headText(kestrel_array const& array) {
  std::string text = kestrel::className(array).text();
  bool const isBuiltInBased = (kestrel::classIdentifier(array) & kestrel::BUILT_IN_BASED_FLAG) != 0;
  if (isBuiltInBased) text += ":" + kestrel::nameOf(kestrel::baseClass(array)).text();
  kestrel::Dimensions const dimensions = kestrel::dimensions(array);
  if (dimensions == kestrel::SCALAR) return text;
  return text + "[" + std::to_string(dimensions.rows) + "," + std::to_string(dimensions.columns) + "]";
}

}  // namespace

std::string hostArrayText(kestrel_array const* array) {
  if (array == nullptr) return "none";
  std::string text = headText(*array) + "{";
  ElementText const elementOf = elementText(kestrel::baseClass(*array));
  if (elementOf == nullptr) return text + plinth::quoted(kestrel::charText(*array)) + "}";
  for (std::size_t i = 0; i < kestrel::numberOfElements(*array); ++i) {
    if (i > 0) text += ", ";
    text += elementOf(*array, i);
  }
  return text + "}";
}

std::string hostArrayValueText(plinth::Value const& value) {
  if (value.meta().type() != plinth::StandardTypes::kestrelArrayMeta()) return "#" + std::to_string(value.hash());
  auto const* const content = static_cast<HostArray const*>(value.content());
  return hostArrayText(content == nullptr ? nullptr : content->get());
}

}  // namespace tessel::frame
