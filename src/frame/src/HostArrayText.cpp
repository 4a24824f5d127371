#include "tessel_config_datamodel/frame/HostArrayText.hpp"

#include <array>
#include <charconv>
#include <cmath>
#include <vector>

#include "plinth/diagnostics/ValueText.hpp"
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

std::string objectText(kestrel_array const& array, std::size_t index) {
  kestrel::ObjectRef const& object = kestrel::object(array, index);
  return object ? object->className().text() : "none";
}

using ElementText = std::string (*)(kestrel_array const& array, std::size_t index);

/// Null for a char array, whose elements are one text, and for arrays that hold others.
ElementText elementText(ClassId id) noexcept {
  switch (id) {
    case ClassId::Cell:
    case ClassId::Struct:
    case ClassId::Char:
      return nullptr;
    case ClassId::Logical:
      return &plainText<bool>;
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

/// Writes arrays with all that they hold. They may be nested deeper than a stack is long: those that are begun wait in
/// a list for what they hold.
class ArrayWriter {
 public:
  std::string write(kestrel_array const& array) {
    begin(&array);
    while (!m_begun.empty()) goOn();
    return std::move(m_text);
  }

 private:
  struct Begun {
    kestrel_array const* array;
    std::size_t next = 0;  ///< counts cells, or the fields of all elements
  };

  void begin(kestrel_array const* array) {
    if (array == nullptr) {
      m_text += "none";
      return;
    }
    m_text += headText(*array) + "{";
    ClassId const id = kestrel::baseClass(*array);
    if (id == ClassId::Cell || id == ClassId::Struct) {
      m_begun.push_back({array});
      return;
    }
    ElementText const elementOf = elementText(id);
    if (elementOf == nullptr) m_text += plinth::quoted(kestrel::charText(*array));
    for (std::size_t i = 0; elementOf != nullptr && i < kestrel::numberOfElements(*array); ++i)
      m_text += (i > 0 ? ", " : "") + elementOf(*array, i);
    m_text += "}";
  }

  void goOn() {
    Begun& begun = m_begun.back();
    bool const isCell = kestrel::baseClass(*begun.array) == ClassId::Cell;
    std::size_t const width = isCell ? 1 : kestrel::fieldNames(*begun.array).size();
    std::size_t const elements = kestrel::numberOfElements(*begun.array);
    bool const isBraced = !isCell && elements != 1;
    if (width == 0 || begun.next == elements * width) {
      if (isBraced && elements > 0) m_text += width == 0 ? bracesOf(elements) : "}";
      m_text += "}";
      m_begun.pop_back();
      return;
    }
    std::size_t const element = begun.next / width;
    std::size_t const field = begun.next % width;
    ++begun.next;
    if (isBraced && field == 0) m_text += element == 0 ? "{" : "}, {";
    if (isBraced ? field > 0 : element + field > 0) m_text += ", ";
    if (isCell) return begin(kestrel::cell(*begun.array, element));
    std::string const& name = kestrel::fieldNames(*begun.array)[field];
    m_text += name + ": ";
    begin(kestrel::field(*begun.array, element, name));
  }

  /// Elements without fields.
  static std::string bracesOf(std::size_t elements) {
    std::string text = "{}";
    for (std::size_t i = 1; i < elements; ++i) text += ", {}";
    return text;
  }

  std::string m_text;
  std::vector<Begun> m_begun;
};

}  // namespace

std::string hostArrayText(kestrel_array const* array) {
  return array == nullptr ? "none" : ArrayWriter().write(*array);
}

std::string hostArrayValueText(plinth::Value const& value) {
  if (value.meta().type() != plinth::StandardTypes::kestrelArrayMeta()) return "#" + std::to_string(value.hash());
  auto const* const content = static_cast<HostArray const*>(value.content());
  return hostArrayText(content == nullptr ? nullptr : content->get());
}

}  // namespace tessel::frame
