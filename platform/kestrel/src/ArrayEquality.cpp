// Equality of contents, store by store.
#include <cmath>
#include <vector>

#include "ArrayData.hpp"
#include "kestrel/ArrayBase.hpp"
#include "kestrel/NumericArray.hpp"

namespace kestrel {
namespace {

template <class T>
bool equalFloating(kestrel_array const& left, kestrel_array const& right) {
  T const* const first = data<T>(left);
  return std::equal(first, first + numberOfElements(left), data<T>(right),
                    [](T a, T b) { return a == b || (std::isnan(a) && std::isnan(b)); });
}

struct Pair {
  kestrel_array const* left;
  kestrel_array const* right;
};

// Called with arrays of one class and the same dimensions. What they hold is left to be compared: arrays may be nested
// deeper than a stack is long.
struct StoreEquality {
  kestrel_array const& left;
  kestrel_array const& right;
  std::vector<Pair>& open;

  bool operator()(detail::Plain const& plain) const {
    if (left.id == ClassId::Double) return equalFloating<double>(left, right);
    if (left.id == ClassId::Single) return equalFloating<float>(left, right);
    return plain == std::get<detail::Plain>(right.store);
  }
  bool operator()(detail::Strings const& strings) const { return strings == std::get<detail::Strings>(right.store); }
  bool operator()(detail::Cells const& cells) const { return defer(cells, std::get<detail::Cells>(right.store)); }
  bool operator()(detail::Fields const& fields) const {
    auto const& others = std::get<detail::Fields>(right.store);
    return fields.names == others.names && defer(fields.values, others.values);
  }
  bool operator()(detail::Objects const& objects) const {
    auto const& others = std::get<detail::Objects>(right.store);
    return std::equal(objects.begin(), objects.end(), others.begin(),
                      [](ObjectRef const& a, ObjectRef const& b) { return a == b || (a && b && a->equals(*b)); });
  }

  bool defer(detail::Cells const& cells, detail::Cells const& others) const {
    if (cells.size() != others.size()) return false;
    for (std::size_t i = 0; i < cells.size(); ++i) open.push_back({cells[i].get(), others[i].get()});
    return true;
  }
};

bool equalAlone(Pair const& pair, std::vector<Pair>& open) {
  auto const [left, right] = pair;
  if (left == right) return true;
  if (left == nullptr || right == nullptr) return false;
  if (left->id != right->id || left->ownClass != right->ownClass || left->dimensions != right->dimensions) return false;
  return std::visit(StoreEquality{*left, *right, open}, left->store);
}

}  // namespace

bool equalContents(kestrel_array const* left, kestrel_array const* right) {
  std::vector<Pair> open;
  if (!equalAlone({left, right}, open)) return false;
  while (!open.empty()) {
    Pair const pair = open.back();
    open.pop_back();
    if (!equalAlone(pair, open)) return false;
  }
  return true;
}

}  // namespace kestrel
