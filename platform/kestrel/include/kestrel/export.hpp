// Visibility of the host array layer: everything is hidden in the shared library but what carries this mark.
#pragma once

#define KESTREL_EXPORT __attribute__((visibility("default")))
