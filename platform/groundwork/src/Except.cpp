#include "groundwork/Except.hpp"

namespace groundwork::except {

IMsgIDException::~IMsgIDException() = default;

void bad_alloc() { throw std::bad_alloc(); }

}  // namespace groundwork::except
