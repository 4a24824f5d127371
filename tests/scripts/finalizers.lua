-- What Lua does with objects and arrays in its own time: finalizers of scripts, in any order and at the very end, and the
-- memory behind what has been dropped.
local check = require("check")
local runtime, data = tessel.internal.config.runtime, tessel.internal.config.data
local model = plinth.Model()
local state = runtime.ConfigurationState(model, {Params = {{Key = "a", Data = {class = "DoubleParamData"}}}})
local holder = data.DoubleParamData(model, {AllowedValues = {1, 2, 3}})
local method = tessel.internal.config.schema.MethodRef(model, {ConstantArgs = {a = 1, nested = {b = {1}}}})

-- Rows that are read and dropped, of each kind that Lua sees nothing of, don't pile up.
local function piledUp(count, kilobytes, read)
  local dropped, alive = setmetatable({}, {__mode = "v"}), 0
  for i = 1, count do dropped[i] = read() end
  for _ in pairs(dropped) do alive = alive + 1 end
  assert(alive * kilobytes < 40000, alive .. " of " .. count .. " are still there")
end
local row, texts, tree = {}, {}, {}
for i = 1, 100000 do row[i] = i + 0.5 end
for i = 1, 10000 do texts[i] = "a text that lies in memory of its own " .. i end
for i = 1, 5000 do tree[i] = {k = i} end
holder.AllowedValues = row
local strings = data.StringArrayParamData(model, {AllowedValues = texts})
method.ConstantArgs = tree
for i = 1, 2000 do state:createIntoTags({Id = "t" .. i}) end
for _, mode in ipairs({"incremental", "generational"}) do
  collectgarbage(mode)
  piledUp(100, 800, function() return holder.AllowedValues end)
  piledUp(80, 1000, function() return strings.AllowedValues end)
  piledUp(40, 2000, function() return method.ConstantArgs end)
  piledUp(40, 2000, function() return method.ConstantArgs[7] end)
  piledUp(120, 500, function() return state.Tags:values() end)
end
collectgarbage("incremental")
collectgarbage("stop")
local kept = holder.AllowedValues
check.equal(#kept, 100000, "a collector that a script has stopped stays so")
check.equal(collectgarbage("isrunning"), false)
collectgarbage("restart")
method.ConstantArgs = {a = 1, nested = {b = {1}}}

-- Each of these runs when the interpreter closes, before and behind the finalizers of what it touches. A finalizer's
-- errors are warnings: what ran to its end says so in a file.
local trace = {}
local function atTheEnd(name, action)
  trace[#trace + 1] = setmetatable({}, {__gc = function()
    local succeeded, failure = pcall(action)
    local isNamed = type(failure) == "table" and failure.identifier == "Kestrel:class:InvalidHandle"
    if not succeeded and not isNamed then
      io.stderr:write(name, ": ", tostring(failure), "\n")
      os.exit(1)
    end
  end})
end
local used
local actions = {
  row = function() return used.row[1] + #used.row, tostring(used.row), used.row == used.row end,
  walk = function() for _ in pairs(used.row) do end end,
  record = function() used.record.a = 2 end,
  nested = function() return used.nested.b, pairs(used.nested), #used.nested, next(used.nested) end,
  element = function() return used.element.Key, tostring(used.element), used.element:uuid() end,
  given = function() holder.AllowedValues = used.row end,
  fetch = function() used.fetched = state.Params:get("a").Data end,
  new = function() used.model = plinth.Model() used.made = runtime.ParamState(used.model, {Key = "made"}) end,
  transaction = function() used.open = used.model:beginTransaction() end,
  nothing = function() return method.ConstantArgs.nested.b end,
}
for name, action in pairs(actions) do atTheEnd(name .. ", early", action) end
used = {row = holder.AllowedValues, record = method.ConstantArgs, nested = method.ConstantArgs.nested,
  element = state.Params:get("a"), model = plinth.Model()}
for name, action in pairs(actions) do atTheEnd(name .. ", late", action) end
KEPT = {trace, used}

-- In a collection of garbage as well.
for _ = 1, 3 do
  setmetatable({element = state.Params:get("a")}, {__gc = function(self)
    check.equal(self.element.Key, "a")
    check.equal(#holder.AllowedValues, 100000)
  end})
  host.census()
end
