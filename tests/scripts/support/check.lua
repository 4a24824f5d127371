-- What the scripts share: equality with a readable failure, and errors by identifier, sentence and line.
local check = {}

function check.equal(actual, expected, what)
  if actual ~= expected then
    error(string.format("%sexpected %s, got %s", what and what .. ": " or "", tostring(expected), tostring(actual)), 2)
  end
end

-- The elements of an array, or of any list, as one text.
function check.join(list)
  local texts = {}
  for i = 1, #list do texts[i] = tostring(list[i]) end
  return table.concat(texts, " ")
end

-- Runs a function that has to raise an error of that identifier, and gives the error.
function check.raises(identifier, action, ...)
  local succeeded, failure = pcall(action, ...)
  if succeeded then error("expected " .. identifier .. ", but nothing was raised", 2) end
  local actual = type(failure) == "table" and failure.identifier or tostring(failure)
  if actual ~= identifier then error("expected " .. identifier .. ", got " .. tostring(failure), 2) end
  assert(#failure.sentence > 20 and failure.sentence:find("%.$"), failure.sentence)
  return failure
end

-- Runs an action that has to be refused and to leave the model as it was: the number of elements, and what `look` sees.
function check.refused(identifier, model, look, action)
  local count, seen = model:elementCount(), look()
  local failure = check.raises(identifier, action)
  check.equal(model:elementCount(), count, "elements after a refusal")
  check.equal(look(), seen, "the value after a refusal")
  return failure
end

return check
