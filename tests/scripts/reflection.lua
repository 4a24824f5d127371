-- Classes tell what they are.
local check = require("check")
local ext, data, runtime = tessel.internal.ext, tessel.internal.config.data, tessel.internal.config.runtime

local class = data.DoubleParamData.StaticMetaClass()
check.equal(class.Name, "DoubleParamData")
check.equal(class.QualifiedName, "tessel.internal.config.data.DoubleParamData")
check.equal(class.IsAbstract, false)
check.equal(class.Superclass.QualifiedName, "tessel.internal.config.data.NumericParamData")
check.equal(class.Superclass.IsAbstract, true)
check.equal(class:conformsTo("tessel.internal.config.data.ParamData"), true)
check.equal(class:conformsTo(runtime.ParamState.StaticMetaClass()), false)
local names = " " .. check.join(class:properties()) .. " "
for _, name in ipairs({"Enabled", "Name", "Min", "Value", "AllowedValues"}) do assert(names:find(" " .. name .. " "), name) end
assert(rawequal(class, data.DoubleParamData(plinth.Model()):metaClass()))

-- Hidden classes and properties work and are left out of listings.
local listed = table.concat(host.classes(tessel.internal.ext), " ")
check.equal(listed, "")
local entry = ext.ConfigEntry(plinth.Model(), {Key = "k"})
check.equal(entry.Key, "k")
check.equal(table.concat(host.properties(entry), " "), "")
local methods = " " .. table.concat(host.methods(entry), " ") .. " "
assert(methods:find(" createIntoData ") and methods:find(" destroy ") and not methods:find("StaticMetaClass"))
check.equal(table.concat(host.properties(data.DoubleParamData), " "),
  "Value AllowedValues Min Max StepSize IncludeMin IncludeMax Refreshable Name Description Help Enabled Visible")
assert(host.isa(entry, "plinth.ModelElement"))
check.raises("Kestrel:class:NoSuchMember", function() return entry.Colour end)
check.raises("plinth:messages:CannotModifyFrozenModel", class.destroy, class)
check.raises("plinth:messages:NoSuchProperty", entry.hasValue, entry, "Colour")

-- What has no class of its own among the host's is shown as the nearest that has one.
local package = class:container()
check.equal(host.class(package), "plinth.ModelElement")
check.equal(package:metaClass().QualifiedName, "plinth.meta.Package")
assert(#class:model():elements() > 67)
