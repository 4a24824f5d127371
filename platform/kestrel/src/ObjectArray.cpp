#include "kestrel/ObjectArray.hpp"

#include "ArrayData.hpp"

namespace kestrel {

ObjectRef Object::copyForContainment() { return ObjectRef(this); }

OwnedArray createObjects(Identifier className, Dimensions dimensions) {
  std::size_t const count = detail::checkedCount(dimensions, sizeof(ObjectRef));
  OwnedArray array = detail::makeArray<detail::Objects>(ClassId::Object, dimensions, count);
  array->ownClass = className;
  return array;
}

OwnedArray createObject(ObjectRef object) {
  if (!object) throw ArrayError("Kestrel:array:NoObject", "An object array of one element needs an object.");
  OwnedArray array = createObjects(object->className(), SCALAR);
  setObject(*array, 0, std::move(object));
  return array;
}

Object* soleObject(kestrel_array const& array) noexcept {
  auto const* const objects = std::get_if<detail::Objects>(&array.store);
  return objects != nullptr && objects->size() == 1 ? objects->front().get() : nullptr;
}

ObjectRef const& object(kestrel_array const& array, std::size_t index) {
  return detail::slotAt<detail::Objects>(array, index, "object");
}

void setObject(kestrel_array& array, std::size_t index, ObjectRef object) {
  detail::slotAt<detail::Objects>(array, index, "object") = std::move(object);
}

void setObjectClass(kestrel_array& array, Identifier className) {
  detail::storeAs<detail::Objects>(array, "object");
  array.ownClass = className;
}

}  // namespace kestrel
