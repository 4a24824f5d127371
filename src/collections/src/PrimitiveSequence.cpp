#include "plinth/collections/PrimitiveSequence.hpp"

namespace plinth {

template class PrimitiveSequence<bool>;
template class PrimitiveSequence<double>;
template class PrimitiveSequence<long>;
template class PrimitiveSequence<unsigned int>;
template class PrimitiveSequence<std::u16string>;

}  // namespace plinth
