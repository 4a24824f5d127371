// Equality of contents, store by store.
#include <cmath>

#include "array_data.hpp"
#include "kestrel/array_base.hpp"
#include "kestrel/numeric_array.hpp"

namespace kestrel {
namespace {

template <class T>
bool equalFloating(kestrel_array const& left, kestrel_array const& right) {
  T const* const first = data<T>(left);
  return std::equal(first, first + numberOfElements(left), data<T>(right),
                    [](T a, T b) { return a == b || (std::isnan(a) && std::isnan(b)); });
}

bool equalCells(detail::Cells const& left, detail::Cells const& right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](OwnedArray const& a, OwnedArray const& b) { return equalContents(a.get(), b.get()); });
}

// Called with arrays of one class and the same dimensions.
struct StoreEquality {
  kestrel_array const& left;
  kestrel_array const& right;

  bool operator()(detail::Plain const& plain) const {
    if (left.id == ClassId::Double) return equalFloating<double>(left, right);
    if (left.id == ClassId::Single) return equalFloating<float>(left, right);
    return plain == std::get<detail::Plain>(right.store);
  }
  bool operator()(detail::Strings const& strings) const { return strings == std::get<detail::Strings>(right.store); }
  bool operator()(detail::Cells const& cells) const { return equalCells(cells, std::get<detail::Cells>(right.store)); }
  bool operator()(detail::Fields const& fields) const {
    auto const& others = std::get<detail::Fields>(right.store);
    return fields.names == others.names && equalCells(fields.values, others.values);
  }
  bool operator()(detail::Objects const& objects) const {
    auto const& others = std::get<detail::Objects>(right.store);
    return std::equal(objects.begin(), objects.end(), others.begin(),
                      [](ObjectRef const& a, ObjectRef const& b) { return a == b || (a && b && a->equals(*b)); });
  }
};

}  // namespace

bool equalContents(kestrel_array const* left, kestrel_array const* right) {
  if (left == right) return true;
  if (left == nullptr || right == nullptr) return false;
  if (left->id != right->id || left->ownClass != right->ownClass || left->dimensions != right->dimensions) return false;
  return std::visit(StoreEquality{*left, *right}, left->store);
}

}  // namespace kestrel
