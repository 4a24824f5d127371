-- createInto methods make an element inside a containment of another one.
local check = require("check")
local runtime, data, schema = tessel.internal.config.runtime, tessel.internal.config.data, tessel.internal.config.schema
local UUID, OTHER = "3b241101-e2bb-4255-8caf-4136c566a962", "3b241101-e2bb-4255-8caf-4136c566a963"

local model = plinth.Model()
local state = runtime.ConfigurationState(model)

-- With nothing, a struct, a UUID, or both in this order.
local plain = state:createIntoCategories()
local named = state:createIntoParams({Key = "a"})
local known = state:createIntoParams(UUID)
local both = state:createIntoParams({Key = "c"}, OTHER)
check.equal(state.Categories[1], plain)
check.equal(named.Key .. known:uuid() .. both.Key .. both:uuid(), "a" .. UUID .. "c" .. OTHER)
check.equal(check.join(state.Params:keys()), " a c")

-- A single containment is replaced; one of an abstract class names its own.
local first = named:createIntoData({class = "BooleanParamData", Value = true})
check.equal(named.Data, first)
local second = named:createIntoData({class = "tessel.internal.config.data.IntegerParamData", Value = 5})
check.equal(named.Data.Value, 5)
check.equal(first:container(), nil)
check.equal(second:container(), named)

-- Inherited through the superclass; elements of sibling models are made as any other.
local message = named:createIntoMessages({Text = "look", Severity = 1})
check.equal(named.Messages[1].Text, "look")
check.equal(message.Severity, 1)
local production = state:createIntoProductions({Key = "p"})
local script = production:createIntoScript({Name = "build", Text = "x = 1"})
check.equal(production.Script, script)
check.equal(script.Text, "x = 1")
production:createIntoMetadata({Property = "origin", Value = {1, 2, 3}})
check.equal(check.join(production.Metadata:get("origin").Value), "1 2 3")

local definition = schema.SchemaData(model):createIntoParams({Key = "a"})
local controller = definition:createIntoControllers({Id = "main"})
controller:createIntoUpdate({Method = "update", DynamicArgCount = 2})
check.equal(definition.Controllers[1].Update.Method, "update")
check.equal(definition.Controllers[1].Initialize, nil)

local function refused(identifier, action)
  return check.refused(identifier, model, function() return #state.Params end, action)
end
refused("plinth:messages:InvalidValue", function() state:createIntoParams(OTHER, {Key = "d"}) end)
refused("plinth:messages:InvalidValue", function() state:createIntoParams({Key = "d"}, {Key = "e"}) end)
refused("plinth:messages:InvalidValue", function() state:createIntoParams({Key = "d"}, "no uuid") end)
refused("plinth:messages:InvalidValue", function() state:createIntoParams("no uuid") end)
refused("plinth:messages:InvalidValue", function() state:createIntoParams(5) end)
refused("plinth:messages:NoSuchProperty", function() state:createIntoParams({Colour = 1}) end)
refused("plinth:messages:CannotCreateAbstractClass", function() named:createIntoData() end)
refused("Kestrel:class:WrongArgumentCount", function() state:createIntoParams({}, UUID, 1) end)

-- A key that is taken: the element is made and stays, outside of any container.
local before = model:elementCount()
check.raises("plinth:messages:UniquenessConstraint", function() state:createIntoParams({Key = "a"}) end)
check.equal(model:elementCount(), before + 1)
check.equal(#state.Params, 3)

-- A self that is gone.
state:destroy()
check.raises("Kestrel:class:InvalidHandle", function() state:createIntoParams() end)
