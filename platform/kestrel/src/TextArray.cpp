#include "kestrel/TextArray.hpp"

#include <cstring>

#include "ArrayData.hpp"
#include "kestrel/NumericArray.hpp"

namespace kestrel {

OwnedArray createChar(std::u16string_view text) {
  OwnedArray array = detail::createPlain(ClassId::Char, row(text.size()));
  std::copy(text.begin(), text.end(), mutableData<char16_t>(*array));
  return array;
}

std::u16string_view charText(kestrel_array const& array) { return {data<char16_t>(array), numberOfElements(array)}; }

OwnedArray createStrings(Dimensions dimensions) {
  std::size_t const count = detail::checkedCount(dimensions, sizeof(MaybeString));
  return detail::makeArray<detail::Strings>(ClassId::String, dimensions, count);
}

OwnedArray createString(std::u16string_view text) {
  OwnedArray array = createStrings(SCALAR);
  setStringElement(*array, 0, std::u16string(text));
  return array;
}

OwnedArray createStringRow(std::vector<std::u16string> const& texts) {
  return detail::makeArray<detail::Strings>(ClassId::String, row(texts.size()), texts.begin(), texts.end());
}

MaybeString const& stringElement(kestrel_array const& array, std::size_t index) {
  return detail::slotAt<detail::Strings>(array, index, "string");
}

void setStringElement(kestrel_array& array, std::size_t index, MaybeString text) {
  detail::slotAt<detail::Strings>(array, index, "string") = std::move(text);
}

bool isOneText(kestrel_array const& array) noexcept {
  if (baseClass(array) == ClassId::Char) return true;
  auto const* const strings = std::get_if<detail::Strings>(&array.store);
  return strings != nullptr && strings->size() == 1 && strings->front().has_value();
}

std::u16string_view scalarText(kestrel_array const& array) {
  if (isOneText(array)) return baseClass(array) == ClassId::Char ? charText(array) : *stringElement(array);
  throw ArrayError("Kestrel:array:NotOneText", "Expected a char array or one string that is not missing, not " +
                                                   std::to_string(numberOfElements(array)) + " elements of class " +
                                                   className(array).text() + ".");
}

}  // namespace kestrel
