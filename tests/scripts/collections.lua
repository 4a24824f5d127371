-- Sets, maps and derived views are objects that a script walks and changes.
local check = require("check")
local runtime, ext = tessel.internal.config.runtime, tessel.internal.ext
local model = plinth.Model()

-- Maps.
local profile = ext.ConfigProfile(model)
local values = profile.Values
check.equal(host.class(values), "plinth.Map")
assert(rawequal(values, profile.Values), "a collection is one object")
for _, key in ipairs({"b", "a", "c"}) do profile:createIntoValues({Key = key}) end
check.equal(#values, 3)
check.equal(check.join(values:keys()), "a b c")
local walked = ""
for key, entry in pairs(values) do walked = walked .. key .. entry.Key end
check.equal(walked, "aabbcc")
check.equal(values:get("a"), values:at("a"))
check.equal(values:get("x"), nil)
local entry = values:get("a")
check.equal(values:contains(entry), true)
entry.Key = "z"
check.equal(values:get("z"), entry, "a key that changes moves its element")
values:remove(entry)
check.equal(#values, 2)
check.equal(entry:container(), nil)
values:add(entry)
check.equal(entry:container(), profile)
check.refused("plinth:messages:UniquenessConstraint", model, function() return entry.Key end,
  function() entry.Key = "b" end)
local twin = ext.ConfigEntry(model, {Key = "b"})
check.refused("plinth:messages:UniquenessConstraint", model, function() return #values end,
  function() values:add(twin) end)
check.refused("plinth:messages:CannotAddIncompatibleTypes", model, function() return #values end,
  function() values:add(profile) end)
check.raises("Kestrel:class:ReadOnlyProperty", function() profile.Values = {} end)
check.refused("Kestrel:class:InvalidHandle", model, function() return #values end, function() values:add(nil) end)
check.refused("Kestrel:class:WrongType", model, function() return #values end, function() values:add("b") end)
local other = ext.ConfigEntry(model, {Key = "o"})
for _, method in ipairs({"add", "remove", "contains"}) do
  check.refused("Kestrel:class:WrongType", model, function() return #values end,
    function() values[method](values, {other, twin}) end)
end
local hint = check.raises("Kestrel:class:NoSuchMember", function() return values.speed end)
assert(hint.sentence:find("'get'"), hint.sentence)
check.raises("Kestrel:class:WrongArgumentCount", values.add, values)
check.raises("Kestrel:class:WrongType", values.get, values, 5)
values:clear()
check.equal(#values, 0)
check.equal(#values:values(), 0)

-- Sets, and views that narrow them.
local perspective = runtime.PerspectiveState(model)
local param, category = runtime.ParamState(model), runtime.CategoryState(model)
check.equal(host.class(perspective.Members), "plinth.Set")
perspective.Members:add(param)
perspective.Members:add(category)
perspective.Members:add(param)
check.equal(#perspective.Members, 2)
check.equal(#perspective.MemberParams, 1)
local seen = 0
for i, member in pairs(perspective.Members) do
  seen = seen + i
  perspective.Members:remove(member)
end
check.equal(seen, 3, "a walk goes over what was there when it began")
check.equal(#perspective.Members, 0)
check.refused("plinth:messages:CannotAddIncompatibleTypes", model, function() return #perspective.Members end,
  function() perspective.MemberParams:add(category) end)

-- What goes through a view reaches the collection behind it.
category.Params:add(param)
check.equal(category.Contents[1], param)
check.equal(param.Category, category)
category.Params:clear()
check.equal(#category.Contents, 0)

-- A map of values is an array.
local schema = tessel.internal.config.schema
local controller = schema.ControllerDef()
controller.Id, controller.Class = "main", "app.Main"
local definition = schema.SchemaData(model, {Controllers = {controller}})
check.equal(#definition.Controllers, 1)
check.equal(definition.Controllers[1], controller)
check.raises("Kestrel:class:ReadOnlyProperty", function() definition.Controllers = {} end)

-- A collection object keeps its element, not its life.
local kept = ext.ConfigProfile(model, {Values = {{Key = "k"}}}).Values
check.equal(#kept, 1)
local owner = kept:get("k"):container()
owner:destroy()
check.equal(host.isvalid(kept), false)
check.raises("Kestrel:class:InvalidHandle", function() return #kept end)
check.raises("Kestrel:class:InvalidHandle", function() for _ in pairs(kept) do end end)

-- Members that are destroyed stay listed where nothing points back. They can be found and taken out, and nothing else:
-- in each collection the same.
local sets = {perspective.Members, perspective.MemberParams}
for _, set in ipairs(sets) do
  local alive, dead, other = runtime.ParamState(model), runtime.ParamState(model), runtime.ParamState(model)
  for _, member in ipairs({alive, dead, other}) do perspective.Members:add(member) end
  dead:destroy()
  other:destroy()
  check.equal(#perspective.Members, 3)
  for _, action in ipairs({set.contains, set.add}) do check.raises("Kestrel:class:InvalidHandle", action, set, dead) end
  for _, member in pairs(perspective.Members) do
    if not host.isvalid(member) then set:remove(member) end
  end
  check.equal(check.join(perspective.Members:values()), tostring(alive))
  set:remove(dead)
  check.raises("Kestrel:class:InvalidHandle", set.remove, set, nil)
  perspective.Members:clear()
end
local keyed = ext.ConfigProfile(model, {Values = {{Key = "a"}}})
local goneKey = ext.ConfigEntry(model)
goneKey:destroy()
for _, method in ipairs({"contains", "add"}) do
  check.raises("Kestrel:class:InvalidHandle", keyed.Values[method], keyed.Values, goneKey)
end
keyed.Values:remove(goneKey)
check.equal(keyed.Values:contains(nil), false)

-- A walk leaves out what is taken away on the way, in whatever manner, and gives the rest once: against a random model.
math.randomseed(20)
for round = 1, 60 do
  local owner = runtime.ConfigurationState(model)
  local view = runtime.PerspectiveState(model)
  for i = 1, 8 do view.Members:add(owner:createIntoParams({Key = "k" .. i})) end
  local collection = ({owner.Params, view.Members, view.MemberParams})[round % 3 + 1]
  local isGone, walkedOnce = {}, {}
  local ways = {
    function(param) param:destroy() end,
    function(param) if round % 3 == 0 then owner.Params:remove(param) else view.Members:remove(param) end end,
    function(param) if round % 3 ~= 0 then view.Members:remove(param) else param:destroy() end end,
  }
  for _, param in pairs(collection) do
    assert(not isGone[param] and not walkedOnce[param], "round " .. round)
    walkedOnce[param] = true
    for _ = 1, math.random(0, 2) do
      local taken = collection:values()[math.random(#collection)]
      local way = math.random(#ways)
      -- One that is destroyed stays a member of what doesn't point back.
      if taken and host.isvalid(taken) and not (way == 1 and round % 3 ~= 0) then
        isGone[taken] = true
        ways[way](taken)
      end
    end
  end
  for _, param in ipairs(collection:values()) do assert(walkedOnce[param], "round " .. round) end
end

-- The same of every collection of every class, whatever it takes: a member that is destroyed is gone, or can be taken
-- out, and no other method takes it.
local concrete, swept, lingering = {}, 0, 0
for _, name in ipairs({"data", "expr", "runtime", "schema"}) do
  local package = tessel.internal.config[name]
  for _, class in ipairs(host.classes(package)) do
    local made, element = pcall(function() return package[class](model) end)
    if made and host.isa(element, "plinth.ModelElement") then table.insert(concrete, package[class]) end
  end
end
for _, class in ipairs(concrete) do
  for _, property in ipairs(host.properties(class)) do
    local collection = class(model)[property]
    if type(collection) == "userdata" and host.class(collection):find("^plinth%.[SM][eau]") then
      for _, memberClass in ipairs(concrete) do
        local member = memberClass(model)
        if pcall(collection.add, collection, member) and collection:contains(member) then
          swept = swept + 1
          member:destroy()
          if #collection ~= 0 then lingering = lingering + 1 end
          for _, method in ipairs({"add", "contains"}) do
            check.raises("Kestrel:class:InvalidHandle", collection[method], collection, member)
          end
          collection:remove(member)
          check.equal(#collection, 0, tostring(class) .. "." .. property)
        end
      end
    end
  end
end
assert(swept > 20 and lingering > 0, swept .. " and " .. lingering)
