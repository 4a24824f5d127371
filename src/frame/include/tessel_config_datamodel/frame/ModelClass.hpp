// What the header of a generated class needs of the scheme: handles, the root of the elements, fields and accessors.
// Its builder and what queries ask of it have headers of their own. What holds for the accessors of every class:
//
// A setter refuses a proxy with CannotModifyProxy and a destroyed element with CannotModifyDestroyedElement before
// anything changes, does nothing where the value is there already, and otherwise announces the change, which its
// transaction can take back. A setter of one element raises CannotCreateCrossModelAssociation and
// CannotAddNonExistentObject; an empty handle clears. That of a contained child also raises CannotContainAncestor, and
// takes the child from any other container; a child that is let go stays in the model. `createInto...` builds a child
// into its property, in one transaction, and raises what building it and adding it raise. A setter of a host array
// stores a copy and compares by pointer; null clears.
//
// On a proxy attributes read as their defaults and collections raise CannotModifyProxy; a getter of an element resolves
// the proxy that it finds, and gives it where it can't. Collections are never null, the one for changes is the same,
// and their `has` asks for members without making one. O(1) but for copies of values.
// Thread rule: the model's thread.
#pragma once

#include "tessel_config_datamodel/frame/Fields.hpp"
#include "tessel_config_datamodel/frame/Handles.hpp"
