-- Elements are constructed from models, tables of initial values and UUIDs.
local check = require("check")
local runtime, data, ext = tessel.internal.config.runtime, tessel.internal.config.data, tessel.internal.ext
local UUID, OTHER = "3b241101-e2bb-4255-8caf-4136c566a962", "3b241101-e2bb-4255-8caf-4136c566a963"

local model = plinth.Model()
check.equal(model:elementCount(), 0)

-- The two optional arguments in either order.
local one = ext.ConfigEntry(model, UUID, {Key = "a"})
local two = ext.ConfigEntry(model, {Key = "b"}, OTHER)
check.equal(one:uuid() .. one.Key .. two:uuid() .. two.Key, UUID .. "a" .. OTHER .. "b")
assert(ext.ConfigEntry(model):uuid() ~= ext.ConfigEntry(model):uuid(), "without a UUID each element gets its own")
check.equal(model:findElement(UUID), one)
check.equal(model:findElement("3b241101-e2bb-4255-8caf-4136c566a964"), nil)
check.equal(#model:elements(), 4)
check.equal(#model:elements("tessel.internal.ext.ConfigEntry"), 4)
check.equal(#model:elements(ext.ConfigStore.StaticMetaClass()), 0)

-- A whole tree from one table. A contained element of an abstract class names its own.
local state = runtime.ConfigurationState(model, {
  Preinitialized = true,
  Params = {
    {Key = "speed", TypeName = "double", Data = {class = "tessel.internal.config.data.DoubleParamData", Value = 2.5,
      AllowedValues = {1, 2.5}, Name = "Speed", Help = tessel.internal.util.DocRef()}},
    {Key = "name", Data = {class = "tessel.internal.config.data.StringParamData", Value = "x"}},
  },
  Categories = {{Key = "top"}},
  Tags = {Id = "t", Type = "OWNER"},
})
check.equal(state.Preinitialized, true)
check.equal(check.join(state.Params:keys()), "name speed")
local speed = state.Params:get("speed")
check.equal(speed.Data.Value, 2.5)
check.equal(check.join(speed.Data.AllowedValues), "1.0 2.5")
check.equal(speed.Data.Name, "Speed")
check.equal(speed.Data.Help, tessel.internal.util.DocRef())
check.equal(speed:container(), state)
check.equal(speed:containmentProperty(), "Params")
check.equal(state.Categories[1].Key, "top")
check.equal(state.Tags:get("t").Type, "OWNER")

-- References are given as objects, together with what they need.
local category = runtime.CategoryState(model, {Contents = {speed}})
check.equal(speed.Category, category)
check.equal(category.Contents[1], speed)

-- A subclass answers for the class that was constructed.
local numeric = data.UserVisibleData(model, {class = "IntegerParamData", Value = 7})
assert(host.isa(numeric, "tessel.internal.config.data.IntegerParamData"))
check.equal(numeric.Value, 7)

-- Every row of what is refused; nothing is left behind.
local function refused(identifier, action)
  return check.refused(identifier, model, function() return state.Preinitialized end, action)
end
refused("plinth:messages:CannotCreateWithoutModel", function() ext.ConfigEntry(nil) end)
refused("Kestrel:class:WrongArgumentCount", function() ext.ConfigEntry() end)
refused("Kestrel:class:WrongArgumentCount", function() ext.ConfigEntry(model, {}, UUID, 1) end)
refused("Kestrel:class:WrongArgumentCount", function() model:elementCount(1) end)
refused("Kestrel:class:WrongType", function() model:transaction(5) end)
refused("Kestrel:class:WrongType", function() ext.ConfigEntry({Key = "a"}) end)
refused("plinth:messages:InvalidValue", function() ext.ConfigEntry(model, {Key = "a"}, {Key = "b"}) end)
refused("plinth:messages:InvalidValue", function() ext.ConfigEntry(model, UUID, OTHER) end)
refused("plinth:messages:InvalidValue", function() ext.ConfigEntry(model, "no uuid") end)
refused("plinth:messages:InvalidValue", function() ext.ConfigEntry(model, 5) end)
refused("plinth:messages:UniquenessConstraint", function() ext.ConfigEntry(model, UUID) end)
refused("Kestrel:class:AbstractClass", function() data.ParamData(model) end)
refused("plinth:messages:InvalidValue", function() model:findElement("no uuid") end)
refused("plinth:messages:NoSuchType", function() model:elements("no.such.Class") end)

local unknown = refused("plinth:messages:NoSuchProperty", function() ext.ConfigEntry(model, {Key = "a", Colour = 1}) end)
assert(unknown.sentence:find('"Colour"') and unknown.sentence:find('"tessel.internal.ext.ConfigEntry"'), unknown.sentence)
local wrong = refused("Kestrel:class:WrongType", function() runtime.ParamState(model, {Key = 5}) end)
assert(wrong.sentence:find("Property 'Key': Expected a string, not the number 5", 1, true), wrong.sentence)
refused("plinth:messages:CannotCreateAbstractClass", function() runtime.ParamState(model, {Data = {Refreshable = true}}) end)
refused("plinth:messages:CannotAddIncompatibleTypes",
  function() runtime.ParamState(model, {Data = {class = "tessel.internal.ext.ConfigEntry"}}) end)
refused("plinth:messages:NoSuchType", function() runtime.ParamState(model, {Data = {class = "Dodo"}}) end)
refused("Kestrel:class:WrongType", function() runtime.ParamState(model, {class = 5}) end)
refused("Kestrel:class:WrongType", function() runtime.ParamState(model, {Data = 5}) end)
refused("Kestrel:class:WrongType", function() runtime.CategoryState(model, {Contents = {model}}) end)
refused("plinth:messages:UniquenessConstraint",
  function() runtime.ConfigurationState(model, {Params = {{Key = "same"}, {Key = "same"}}}) end)

-- A table without elements is a list where many are asked for, and a struct among the elements of a list.
local empty = runtime.ConfigurationState(model, {Params = {}, GlobalMessages = {}, Tags = {}})
check.equal(#empty.Params + #empty.GlobalMessages + #empty.Tags, 0)
local expr = tessel.internal.config.expr
check.equal(#expr.NumericOperation(model, {Operands = {}}).Operands, 0)
check.equal(#data.DoubleParamData(model, {AllowedValues = {}}).AllowedValues, 0)
check.equal(#runtime.CategoryState(model, {Contents = {}}).Contents, 0)
check.equal(#runtime.ConfigurationState(model, {GlobalMessages = {{}, {}}}).GlobalMessages, 2)
check.equal(runtime.ConfigurationState(model, {Params = {{}}}).Params:get("").Key, "")

-- Where one value is asked for, a list of several is none.
local first, second = ext.ConfigStore(model), ext.ConfigStore(model)
check.equal(runtime.ConfigurationState(model, {ConfigStore = {first}}).ConfigStore, first)
refused("Kestrel:class:WrongType", function() runtime.ConfigurationState(model, {ConfigStore = {first, second}}) end)
refused("Kestrel:class:WrongType",
  function() runtime.ParamState(model, {Data = {{class = "DoubleParamData"}, {class = "StringParamData"}}}) end)
refused("Kestrel:class:WrongType", function() runtime.TagState(model, {Type = {"ROLE", "OWNER"}}) end)
refused("Kestrel:class:WrongType", function() runtime.TagState(model, {Type = runtime.TagType({1, 4})}) end)
refused("Kestrel:class:WrongType",
  function() data.StringParamData(model, {Help = {tessel.internal.util.DocRef(), tessel.internal.util.DocRef()}}) end)
refused("Kestrel:class:WrongType", function() runtime.TagState({model, plinth.Model()}) end)

-- The empty text is no literal; of a text it is a value.
refused("Kestrel:class:WrongType", function() expr.NumericOperation(model, {Operator = ""}) end)
check.equal(data.StringParamData(model, {Name = ""}):hasValue("Name"), true)

-- Names are taken whole.
refused("plinth:messages:NoSuchProperty", function() data.DoubleParamData(model, {["Value\0x"] = 7}) end)
refused("Kestrel:class:WrongType", function() data.DoubleParamData(model, {["Va\xfflue"] = 7}) end)

-- Errors tell the way to the field, whoever raises them.
local nested = refused("plinth:messages:NoSuchProperty", function()
  runtime.ConfigurationState(model, {Params = {{Data = {class = "DoubleParamData", Valu = 2}}}})
end)
assert(nested.sentence:find("^NoSuchProperty: Property 'Params': Property 'Data': "), nested.sentence)
local loose = runtime.ParamState(model)
local existing = refused("plinth:messages:NoSuchProperty",
  function() runtime.ConfigurationState(model, {Params = {loose}}) end)
assert(existing.sentence:find("Property 'Params'") and existing.sentence:find("as a struct"), existing.sentence)
local argument = refused("plinth:messages:InvalidValue", function() runtime.TagState(model, {Id = "a"}, {Id = "b"}) end)
assert(argument.sentence:find("'TagState'") and argument.sentence:find("argument 3"), argument.sentence)

-- A nil stands for an optional argument that is left out, wherever it stands.
for _, arguments in ipairs({{n = 1}, {n = 2}, {UUID, n = 2}, {nil, UUID, n = 2}, {{Key = "k"}, n = 2},
  {nil, {Key = "k"}, n = 2}, {{Key = "k"}, UUID, n = 2}}) do
  local given = {table.unpack(arguments, 1, arguments.n)}
  local hasUuid = given[1] == UUID or given[2] == UUID
  local hasKey = type(given[1]) == "table" or type(given[2]) == "table"
  local made = ext.ConfigEntry(plinth.Model(), table.unpack(arguments, 1, arguments.n))
  check.equal(made.Key, hasKey and "k" or "")
  check.equal(made:uuid() == UUID, hasUuid)
  made = runtime.ConfigurationState(plinth.Model()):createIntoParams(table.unpack(arguments, 1, arguments.n))
  check.equal(made.Key, hasKey and "k" or "")
  check.equal(made:uuid() == UUID, hasUuid)
end
check.equal(#model:elements(nil), model:elementCount())

-- Classes stand for their names.
local typed = runtime.ParamState(model, {Data = {class = data.DoubleParamData}})
assert(host.isa(typed.Data, data.DoubleParamData))
check.equal(#model:elements(data.DoubleParamData), #model:elements("tessel.internal.config.data.DoubleParamData"))
