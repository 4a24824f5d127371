// Visibility of the host class system: everything is hidden in the shared library but what carries this mark.
#pragma once

#define CORVID_EXPORT __attribute__((visibility("default")))
