#include "plinth/collections/PrimitiveSequence.hpp"

namespace plinth {

template class PrimitiveCollection<bool, std::vector<bool>>;
template class PrimitiveCollection<double, std::vector<double>>;
template class PrimitiveCollection<long, std::vector<long>>;
template class PrimitiveCollection<unsigned int, std::vector<unsigned int>>;
template class PrimitiveCollection<std::u16string, std::vector<std::u16string>>;
template class PrimitiveSequence<bool>;
template class PrimitiveSequence<double>;
template class PrimitiveSequence<long>;
template class PrimitiveSequence<unsigned int>;
template class PrimitiveSequence<std::u16string>;

}  // namespace plinth
