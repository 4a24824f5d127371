-- A struct or list that a property holds is read as a table that stays in step with the property.
local check = require("check")
local schema, runtime, util = tessel.internal.config.schema, tessel.internal.config.runtime, tessel.internal.util
local model = plinth.Model()
local entry = schema.MethodRef(model)

-- Every way to change one, each on its own copy of the same value; what it changes is in the property afterwards.
local function text(value)
  if type(value) ~= "table" then return tostring(value) end
  local parts = {}
  for key, each in pairs(value) do parts[#parts + 1] = tostring(key) .. "=" .. text(each) end
  table.sort(parts)
  return "{" .. table.concat(parts, ",") .. "}"
end
local function fresh() return {a = 1, deep = {deeper = {x = true}}, list = {{k = 1}, {k = 2}, "three"}, row = {1, 2}} end
local ways = {
  ["field"] = {function(v) v.a = 2 end, function(v) v.a = 2 end},
  ["new field"] = {function(v) v.b = "new" end, function(v) v.b = "new" end},
  ["no field"] = {function(v) v.a = nil end, function(v) v.a = nil end},
  ["deep field"] = {function(v) v.deep.deeper.x = {1, "y"} end, function(v) v.deep.deeper.x = {1, "y"} end},
  ["in a list"] = {function(v) v.list[2].k = "two" end, function(v) v.list[2].k = "two" end},
  ["element"] = {function(v) v.list[1] = {other = 1} end, function(v) v.list[1] = {other = 1} end},
  ["appended"] = {function(v) v.list[4] = {k = 4} end, function(v) v.list[4] = {k = 4} end},
  ["inserted"] = {function(v) table.insert(v.list, 2, "between") end, function(v) table.insert(v.list, 2, "between") end},
  ["removed"] = {function(v) table.remove(v.list, 1) end, function(v) table.remove(v.list, 1) end},
  ["last removed"] = {function(v) v.list[#v.list] = nil end, function(v) v.list[3] = nil end},
  ["row"] = {function(v) v.row = {7} end, function(v) v.row = 7 end},
  ["record as value"] = {function(v) v.a = v.deep end, function(v) v.a = {deeper = {x = true}} end},
  ["kept part"] = {function(v) local part = v.deep.deeper v.deep.other = 1 part.x = 5 end,
    function(v) v.deep = {other = 1, deeper = {x = 5}} end},
  ["while walking"] = {function(v) for key in pairs(v) do v[key] = nil end end, function(v) for key in pairs(v) do v[key] = nil end end},
}
for what, way in pairs(ways) do
  local expected = fresh()
  way[2](expected)
  entry.ConstantArgs = expected
  local wanted = text(entry.ConstantArgs)
  entry.ConstantArgs = fresh()
  local read = entry.ConstantArgs
  way[1](read)
  check.equal(text(entry.ConstantArgs), wanted, what)
  check.equal(text(read), wanted, what .. ", read before")
end

-- It is a table to whatever looks at it.
entry.ConstantArgs = fresh()
local value = entry.ConstantArgs
check.equal(type(value), "table")
check.equal(value.deep, value.deep)
check.equal(value.none, nil)
check.equal(#value.list, 3)
check.equal(value.list[4], nil)
check.equal(select("#", table.unpack(value.list)), 3)
local seen = 0
for _, each in ipairs(value.list) do seen = seen + 1 end
for _, each in next, value do seen = seen + 1 end
for _, each in next, value.list do seen = seen + 1 end
check.equal(seen, 3 + 4 + 3)
check.equal(next({}), nil)
check.equal(next({5}), 1)

-- A change is an assignment: refused as one, whole, and in its transaction.
local function refused(identifier, action)
  return check.refused(identifier, model, function() return text(entry.ConstantArgs) end, action)
end
local failure = refused("Kestrel:class:WrongType", function() value.a = entry end)
assert(failure.sentence:find("'ConstantArgs' of 'tessel.internal.config.schema.MethodRef'", 1, true), failure.sentence)
refused("Kestrel:class:WrongType", function() value.list[9] = 1 end)
refused("Kestrel:class:WrongType", function() value.list.name = 1 end)
refused("Kestrel:class:WrongType", function() value[1] = 1 end)
refused("Kestrel:class:WrongType", function() value["a\xff"] = 1 end)
refused("Kestrel:class:ReadOnlyProperty", function() value.row[1] = 5 end)
pcall(model.transaction, model, function() value.a = 100 error("no") end)
check.equal(entry.ConstantArgs.a, 1)

-- One that was read before another assignment has nothing to be in step with.
failure = refused("Kestrel:class:StaleValue", function() value.a = 5 end)
assert(failure.sentence:find("read it again"), failure.sentence)
value = entry.ConstantArgs
entry.ConstantArgs = nil
refused("Kestrel:class:StaleValue", function() value.a = 5 end)
entry.ConstantArgs = value
check.equal(entry.ConstantArgs.deep.deeper.x, true)
value = entry.ConstantArgs
entry:destroy()
check.raises("Kestrel:class:InvalidHandle", function() value.a = 5 end)
check.equal(value.a, 1)

-- A table does not stand for what comes in its place.
local lists = schema.MethodRef(model, {ConstantArgs = {list = {{n = 1}, {n = 2}, {n = 3}}}})
local list = lists.ConstantArgs.list
local first, third = list[1], list[3]
list[1] = {n = 4}
check.raises("Kestrel:class:StaleValue", function() return first.n end)
third.n = 5
check.equal(lists.ConstantArgs.list[3].n, 5)
check.raises("Kestrel:class:StaleValue", function() list[1], list[2] = list[2], list[1] end)
check.raises("Kestrel:class:StaleValue", function() table.sort(list, function(a, b) return a.n > b.n end) end)

-- Deep values, read step by step; to a table they go to a told depth.
local deep = schema.MethodRef(model)
deep.ConstantArgs = {}
local nest = 1
for _ = 1, 900 do nest = {n = nest} end
deep.ConstantArgs = nest
local depth, at = 0, deep.ConstantArgs
while type(at) == "table" do depth, at = depth + 1, at.n end
check.equal(depth, 900)
for _ = 1, 200 do nest = {nest} end
failure = check.raises("Kestrel:class:WrongType", function() deep.ConstantArgs = nest end)
assert(failure.sentence:find("1000"), failure.sentence)
for _ = 1, 150 do deep.ConstantArgs = {n = deep.ConstantArgs} end

-- Random changes of records against the same changes of plain tables.
local function same(record, plain)
  if type(record) ~= "table" or type(plain) ~= "table" then return record == plain end
  for key, each in pairs(record) do if not same(each, plain[key]) then return false end end
  for key in pairs(plain) do if record[key] == nil then return false end end
  return true
end
local function random(depth)
  local kind = math.random(depth < 4 and 4 or 2)
  if kind == 1 then return math.random(10) elseif kind == 2 then return "s" .. math.random(5) end
  local made = kind == 3 and {} or {{x = 1}}
  for _ = 1, math.random(3) do made[kind == 3 and "f" .. math.random(4) or #made + 1] = random(depth + 1) end
  return made
end
math.randomseed(22)
local entered, plain = schema.MethodRef(model), {start = 1}
entered.ConstantArgs = plain
local record = entered.ConstantArgs
for step = 1, 1000 do
  if math.random(10) == 1 then record = entered.ConstantArgs end
  local left, right = record, plain
  while math.random(3) > 1 do
    local keys = {}
    for key, each in pairs(right) do if type(each) == "table" then table.insert(keys, key) end end
    if #keys == 0 then break end
    local key = keys[math.random(#keys)]
    left, right = left[key], right[key]
  end
  if #right > 1 and math.random(4) == 1 then
    table.remove(left)
    table.remove(right)
  else
    local key = #right > 0 and math.random(#right + 1) or "f" .. math.random(4)
    right[key] = random(2)
    left[key] = right[key]
  end
  assert(same(record, plain) and same(entered.ConstantArgs, plain), "step " .. step)
end
