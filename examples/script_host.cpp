// A script host: an application that has a model and lets its users write Lua on it. The library makes its classes
// known to the host when it is initialised; the front in tools/script puts Lua on the host, with no line that knows a
// class.
#include <Interpreter.hpp>
#include <iostream>

// The library's entries for a host.
extern "C" void MLInitialize_tessel_config_datamodel();
extern "C" void MLTerminate_tessel_config_datamodel();

namespace {

// What a user might write. A transaction is closed, and taken back, when its variable goes out of scope uncommitted.
constexpr char const* SETUP = R"lua(
local runtime = tessel.internal.config.runtime
model = plinth.Model()
state = runtime.ConfigurationState(model, {Params = {
  {Key = "speed", Data = {class = "DoubleParamData", Value = 2.5}},
  {Key = "name", Data = {class = "StringParamData", Value = "mill"}},
}})
for _, key in ipairs({"name", "speed"}) do
  print(key .. " = " .. tostring(state.Params:get(key).Data.Value))
end
)lua";

constexpr char const* ATTEMPT = R"lua(
local speed = state.Params:get("speed").Data
do
  local transaction <close> = model:beginTransaction()
  speed.Value = 9
  print("inside the transaction: " .. speed.Value)
end
print("after it: " .. speed.Value)
)lua";

constexpr char const* MISTAKE = R"lua(
state.Params:get("speed").Data.Value = "fast"
)lua";

}  // namespace

int main() {
  MLInitialize_tessel_config_datamodel();
  bool isSound = false;
  {
    // Scripts share one interpreter, and its globals. What goes wrong in one is written here, with its line.
    luafront::Interpreter interpreter(std::cout, std::cout);
    isSound = interpreter.runText(SETUP, "=setup") && interpreter.runText(ATTEMPT, "=attempt");
    bool const isRefused = !interpreter.runText(MISTAKE, "=mistake");
    isSound = isSound && isRefused && interpreter.runText("print('the host goes on')", "=end");
  }
  MLTerminate_tessel_config_datamodel();
  return isSound ? 0 : 1;
}
