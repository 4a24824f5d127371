// Short names for the packages of the model that this program works with.
#pragma once

#include <plinth/Model.hpp>

namespace tessel::internal::config::data {}
namespace tessel::internal::config::expr {}
namespace tessel::internal::config::runtime {}
namespace tessel::internal::config::schema {}
namespace tessel::internal::ext {}
namespace tessel::internal::script {}

namespace kconfig {

namespace data = tessel::internal::config::data;
namespace expr = tessel::internal::config::expr;
namespace runtime = tessel::internal::config::runtime;
namespace schema = tessel::internal::config::schema;
namespace ext = tessel::internal::ext;
namespace script = tessel::internal::script;

}  // namespace kconfig
