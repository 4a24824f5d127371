// Everything that a user of host arrays needs, in one include.
#pragma once

#include "kestrel/ArrayBase.hpp"
#include "kestrel/ArrayError.hpp"
#include "kestrel/NumericArray.hpp"
#include "kestrel/ObjectArray.hpp"
#include "kestrel/StructArray.hpp"
#include "kestrel/TextArray.hpp"
