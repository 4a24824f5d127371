-- Scripts hold elements safely, and let go of them.
local check = require("check")
local runtime, ext, data = tessel.internal.config.runtime, tessel.internal.ext, tessel.internal.config.data
local before = host.census().objects

do
  local model = plinth.Model()
  local entry = ext.ConfigEntry(model, {Key = "a", Data = {class = "tessel.internal.config.data.BooleanParamData"}})
  local content = entry.Data
  assert(rawequal(entry.Data, content) and entry.Data == content, "an element is one object")
  assert(entry ~= content)
  check.equal(entry:model(), model)

  -- Destroyed with all it contains, and still held.
  entry:destroy()
  check.equal(model:elementCount(), 0)
  for _, dead in ipairs({entry, content}) do
    check.equal(host.isvalid(dead), false)
    check.raises("Kestrel:class:InvalidHandle", dead.container, dead)
    check.raises("Kestrel:class:InvalidHandle", dead.uuid, dead)
    check.raises("Kestrel:class:InvalidHandle", dead.destroy, dead)
    assert(tostring(dead):find("destroyed"))
    assert(dead == dead)
  end
  check.raises("Kestrel:class:InvalidHandle", function() return entry.Key end)
  check.raises("Kestrel:class:InvalidHandle", function() return content.AllowedValues end)
  check.raises("Kestrel:class:InvalidHandle", function() entry.Key = "b" end)
  local other = ext.ConfigEntry(model)
  check.raises("Kestrel:class:InvalidHandle", function() other.Data = content end)
  check.equal(other.Data, nil)
end
check.equal(host.census().objects, before, "nothing holds what a script has let go of")

-- An element keeps its model going.
local entry = ext.ConfigEntry(plinth.Model(), {Key = "alone"})
host.census()
check.equal(entry.Key, "alone")
check.equal(entry:model():elementCount(), 1)
local values = ext.ConfigProfile(plinth.Model()).Values
host.census()
check.equal(#values, 0)

-- Elements that are walked and dropped are let go of.
local model = plinth.Model()
local state = runtime.ConfigurationState(model)
for i = 1, 1000 do state:createIntoParams({Key = "k" .. i}) end
local held = host.census().objects
for _, param in pairs(state.Params) do param.TypeName = "t" end
check.equal(host.census().objects, held, "neither the map nor its elements are held")
check.equal(#model:elements(), 1001)

-- A failed construction leaves nothing.
for _ = 1, 100 do pcall(data.DoubleParamData, model, {Value = "x"}) end
check.equal(host.census().objects, held)
check.equal(model:elementCount(), 1001)
