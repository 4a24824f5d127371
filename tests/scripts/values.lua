-- Each shape of a property's value is read and written.
local check = require("check")
local data, expr, runtime = tessel.internal.config.data, tessel.internal.config.expr, tessel.internal.config.runtime
local schema, util, ext = tessel.internal.config.schema, tessel.internal.util, tessel.internal.ext
local model = plinth.Model()

-- Booleans: any number is one.
local flag = data.BooleanParamData(model)
flag.Value = true
check.equal(flag.Value, true)
flag.Value = 0
check.equal(flag.Value, false)
flag.Value = 2.5
check.equal(flag.Value, true)

-- Numbers, without loss.
local number = data.DoubleParamData(model)
number.Value = 3
check.equal(math.type(number.Value), "float")
number.Value = 0.1
check.equal(number.Value, 0.1)
check.refused("Kestrel:class:ValueOutOfRange", model, function() return number.Value end,
  function() number.Value = 9007199254740993 end)
local integer = data.IntegerParamData(model)
integer.Value = math.mininteger
check.equal(integer.Value, math.mininteger)
integer.Value = 12.0
check.equal(math.type(integer.Value), "integer")
check.refused("Kestrel:class:ValueOutOfRange", model, function() return integer.Value end,
  function() integer.Value = 1.5 end)
local store = ext.ConfigStore(model)
store.Version = math.maxinteger
check.equal(store.Version, math.maxinteger)
store.Version = 2^63
check.equal(tostring(store.Version), "1 by 1 uint64 [9223372036854775808]")
local far = store.Version
store.Version = 1
store.Version = far
check.equal(store.Version, far)
check.refused("Kestrel:class:ValueOutOfRange", model, function() return store.Version end,
  function() store.Version = -1 end)

-- Optional numbers: absent is nil.
local texts = data.StringArrayParamData(model)
check.equal(texts.MaxLength, nil)
texts.MaxLength = 4
check.equal(texts.MaxLength, 4)
texts.MaxLength = nil
check.equal(texts.MaxLength, nil)
check.equal(texts:hasValue("MaxLength"), false)

-- Texts, also outside the basic plane; an optional one can't be cleared by scripts.
local text = data.StringParamData(model)
text.Value = "Größe 🐈"
check.equal(text.Value, "Größe 🐈")
check.equal(text.Name, "")
check.equal(text:hasValue("Name"), false)
text.Name = ""
check.equal(text:hasValue("Name"), true)
check.refused("Kestrel:class:WrongType", model, function() return text.Name end, function() text.Name = nil end)
check.refused("Kestrel:class:WrongType", model, function() return text.Value end, function() text.Value = 5 end)

-- An optional value object.
check.equal(text.Help, nil)
local place = util.DocRef()
place.Document, place.Topic = "manual", "start"
text.Help = place
check.equal(text.Help, place)
place.Topic = "end"
check.equal(text.Help.Topic, "start", "the element keeps a copy")
text.Help = nil
check.equal(text.Help, nil)

-- One element: empty, the same object again, the class checked.
local param = runtime.ParamState(model)
check.equal(param.Data, nil)
param.Data = text
assert(rawequal(param.Data, text))
param.Data = nil
check.equal(text:container(), nil)
check.refused("Kestrel:class:WrongType", model, function() return param.Data end, function() param.Data = param end)
check.refused("Kestrel:class:WrongType", model, function() return param.Category end, function() param.Category = 1 end)
local elsewhere = runtime.CategoryState(plinth.Model())
check.refused("plinth:messages:CannotCreateCrossModelAssociation", model, function() return param.Category end,
  function() param.Category = elsewhere end)

-- Rows of values.
flag.AllowedValues = {true, false, true}
check.equal(check.join(flag.AllowedValues), "true false true")
number.AllowedValues = {1, 2.5}
check.equal(check.join(number.AllowedValues), "1.0 2.5")
check.equal(host.class(number.AllowedValues), "double")
number.AllowedValues = {7}
check.equal(#number.AllowedValues, 1, "a row of one is a row")
number.AllowedValues = 8
check.equal(check.join(number.AllowedValues), "8.0")
number.AllowedValues = {}
check.equal(#number.AllowedValues, 0)
integer.AllowedValues = {1, -2, math.maxinteger}
check.equal(integer.AllowedValues[3], math.maxinteger)
texts.AllowedValues = {"a", "a", ""}
check.equal(check.join(texts.AllowedValues), "a a ")
texts.AllowedValues = "one"
check.equal(check.join(texts.AllowedValues), "one")
texts.AllowedValues = {}
check.equal(#texts.AllowedValues, 0)
local perspective = schema.SchemaData(model)
perspective.NonPerspectiveOrdinals = {0, 4294967295}
check.equal(perspective.NonPerspectiveOrdinals[2], 4294967295)
check.refused("Kestrel:class:ValueOutOfRange", model, function() return #perspective.NonPerspectiveOrdinals end,
  function() perspective.NonPerspectiveOrdinals = {1, 4294967296} end)
check.refused("Kestrel:class:WrongType", model, function() return #integer.AllowedValues end,
  function() integer.AllowedValues = {"x"} end)
check.refused("Kestrel:class:WrongType", model, function() return #texts.AllowedValues end,
  function() texts.AllowedValues = {"x", 1} end)

-- Rows of value objects: copies in, copies out.
local choice = data.EnumParamData(model)
local red, blue = data.EnumOption(), data.EnumOption()
red.Value, red.DisplayValue, blue.Value = "r", "Red", "b"
choice.AllowedValues = {red, blue, red}
red.Value = "changed"
check.equal(choice.AllowedValues[1].Value .. choice.AllowedValues[2].Value .. choice.AllowedValues[3].Value, "rbr")
choice.AllowedValues[1].Value = "lost"
check.equal(choice.AllowedValues[1].Value, "r")
check.refused("Kestrel:class:WrongType", model, function() return #choice.AllowedValues end,
  function() choice.AllowedValues = {red, util.DocRef()} end)

-- Host arrays: whatever a script has.
local constant = expr.BooleanConstant(model)
local method = schema.MethodRef(model)
check.equal(method.ConstantArgs, nil)
method.ConstantArgs = {a = 1, list = {1, 2}, text = "x", nested = {{b = true}}}
check.equal(method.ConstantArgs.a + #method.ConstantArgs.list, 3)
check.equal(method.ConstantArgs.nested[1].b, true)
method.ConstantArgs = host.array("uint8", {1, 255})
check.equal(host.class(method.ConstantArgs), "uint8")
method.ConstantArgs = {red, blue}
check.equal(method.ConstantArgs[2], blue)
method.ConstantArgs = nil
check.equal(method.ConstantArgs, nil)

-- But no handle, which would keep its model alive by what the model holds itself.
local started = model:beginTransaction()
for _, handle in ipairs({constant, model, started, ext.ConfigProfile(model).Values}) do
  for _, value in ipairs({handle, {handle}, {x = {1, handle}}}) do
    check.refused("Kestrel:class:WrongType", model, function() return method.ConstantArgs end,
      function() method.ConstantArgs = value end)
  end
end
started:close()
check.refused("Kestrel:class:WrongType", model, function() return nil end,
  function() schema.MethodRef(model, {ConstantArgs = {constant}}) end)
