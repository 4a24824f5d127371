#include "tessel_config_datamodel/meta/Datatype.hpp"

#include <ostream>

#include "plinth/diagnostics/ValueText.hpp"

namespace tessel::metamodel {

std::ostream& printValue(std::ostream& stream, plinth::Value const& value) {
  return stream << plinth::valueText(value);
}

}  // namespace tessel::metamodel
