// Everything that a user of host arrays needs, in one include.
#pragma once

#include "kestrel/array_base.hpp"
#include "kestrel/array_error.hpp"
#include "kestrel/numeric_array.hpp"
#include "kestrel/object_array.hpp"
#include "kestrel/struct_array.hpp"
#include "kestrel/text_array.hpp"
