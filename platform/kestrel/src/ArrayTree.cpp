// Arrays with all that they hold: copies, memory, and their end. Arrays may be nested deeper than a stack is long, so
// that none of these calls itself.
#include "ArrayData.hpp"
#include "kestrel/ArrayBase.hpp"
#include "kestrel/ArrayMemory.hpp"

namespace kestrel {
namespace {

using detail::cellsOf;

// Makes a copy of an array from its store, with null in all its cells and fields.
struct StoreCopier {
  kestrel_array const& original;

  template <class T, class... Arguments>
  OwnedArray make(Arguments&&... arguments) const {
    return detail::makeArray<T>(original.id, original.dimensions, std::forward<Arguments>(arguments)...);
  }
  OwnedArray operator()(detail::Plain const& plain) const { return make<detail::Plain>(plain); }
  OwnedArray operator()(detail::Strings const& strings) const { return make<detail::Strings>(strings); }
  OwnedArray operator()(detail::Cells const& cells) const { return make<detail::Cells>(cells.size()); }
  OwnedArray operator()(detail::Fields const& fields) const {
    return make<detail::Fields>(fields.names, detail::Cells(fields.values.size()));
  }
  OwnedArray operator()(detail::Objects const& objects) const {
    detail::Objects copies;
    copies.reserve(objects.size());
    for (ObjectRef const& object : objects) copies.push_back(object ? object->copyForContainment() : nullptr);
    return make<detail::Objects>(std::move(copies));
  }
};

OwnedArray copyAlone(kestrel_array const& original) {
  OwnedArray copy = std::visit(StoreCopier{original}, original.store);
  copy->ownClass = original.ownClass;
  return copy;
}

// A script object with its native, at the least.
constexpr std::size_t OBJECT_BYTES = 256;

std::size_t bytesAlone(kestrel_array const& array) {
  std::size_t bytes = sizeof array;
  if (auto const* const plain = std::get_if<detail::Plain>(&array.store)) return bytes + plain->size();
  if (auto const* const objects = std::get_if<detail::Objects>(&array.store))
    return bytes + objects->size() * (sizeof(ObjectRef) + OBJECT_BYTES);
  if (auto const* const strings = std::get_if<detail::Strings>(&array.store)) {
    bytes += strings->capacity() * sizeof(MaybeString);
    for (MaybeString const& text : *strings) bytes += text ? text->capacity() * sizeof(char16_t) : 0;
    return bytes;
  }
  return bytes + cellsOf(array)->capacity() * sizeof(OwnedArray);
}

// Arrays that wait for their end, linked by what they need no more, since memory for a list may be lacking.
class Doomed {
 public:
  void add(kestrel_array* array) noexcept {
    detail::Cells const* const cells = cellsOf(*array);
    if (cells == nullptr || cells->empty()) {
      delete array;
      return;
    }
    array->dimensions.rows = reinterpret_cast<std::size_t>(m_first);
    m_first = array;
  }
  void endAll() noexcept {
    while (m_first != nullptr) {
      std::unique_ptr<kestrel_array> const array(m_first);
      m_first = reinterpret_cast<kestrel_array*>(array->dimensions.rows);
      for (OwnedArray& cell : *cellsOf(*array))
        if (cell != nullptr) add(cell.release());
    }
  }

 private:
  static_assert(sizeof(kestrel_array*) <= sizeof(std::size_t));
  kestrel_array* m_first = nullptr;
};

}  // namespace

void destroy(kestrel_array* array) noexcept {
  if (array == nullptr) return;
  Doomed doomed;
  doomed.add(array);
  doomed.endAll();
}

OwnedArray deepCopy(kestrel_array const* array) {
  if (array == nullptr) return nullptr;
  OwnedArray copy = copyAlone(*array);
  std::vector<std::pair<detail::Cells const*, detail::Cells*>> open;
  auto const copyLater = [&](kestrel_array const& from, kestrel_array& to) {
    if (auto const* const cells = cellsOf(from); cells != nullptr && !cells->empty())
      open.emplace_back(cells, cellsOf(to));
  };
  copyLater(*array, *copy);
  while (!open.empty()) {
    auto const [from, to] = open.back();
    open.pop_back();
    for (std::size_t i = 0; i < from->size(); ++i) {
      if ((*from)[i] == nullptr) continue;
      (*to)[i] = copyAlone(*(*from)[i]);
      copyLater(*(*from)[i], *(*to)[i]);
    }
  }
  return copy;
}

std::size_t heldBytes(kestrel_array const& array) {
  std::size_t bytes = bytesAlone(array);
  std::vector<detail::Cells const*> open;
  auto const addLater = [&](kestrel_array const& each) {
    if (auto const* const cells = cellsOf(each); cells != nullptr && !cells->empty()) open.push_back(cells);
  };
  addLater(array);
  while (!open.empty()) {
    detail::Cells const& cells = *open.back();
    open.pop_back();
    for (OwnedArray const& cell : cells) {
      if (cell == nullptr) continue;
      bytes += bytesAlone(*cell);
      addLater(*cell);
    }
  }
  return bytes;
}

}  // namespace kestrel
