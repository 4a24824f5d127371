// What the header of a generated class needs of the scheme: handles, the root of the elements, fields and accessors.
// Its builder and what queries ask of it have headers of their own.
// Thread rule: see each header.
#pragma once

#include "tessel_config_datamodel/frame/Fields.hpp"
#include "tessel_config_datamodel/frame/Handles.hpp"
