// What does a call cost that begins and ends as text, with nothing remembered from the one before:
// find `add`, hand it "3.5" and "4.25", get "7.75"?

#include <cstring>
#include <string_view>

#ifdef KVL_BENCH_LUA
#include <lua.hpp>
#endif
#ifdef KVL_BENCH_TCL
#include <tcl.h>
#endif

#include "Bench.h"
#include "KVLCodeContext.h"
#include "KVLCodeEnv.h"
#include "Numbers.h"

namespace kvlbench {

namespace {

constexpr const char* Workload = "call by text";
constexpr const char* Left = "3.5";
constexpr const char* Right = "4.25";
constexpr std::string_view Sum = "7.75";
// Functions beside the one that is called.
constexpr int NbOthers = 100;

std::string NameOfOther(int i) {
  return "function" + std::to_string(i);
}

void CallOurs(benchmark::State& state) {
  const KVLSmartPtr<KVLCodeEnv> types = new KVLCodeEnv("types");
  types->Add(KVLSmartPtr<KVLCodeObject>(new NumberType<DoubleValue>(DoubleName)), "");
  const KVLSmartPtr<KVLCodeEnv> conversions = new KVLCodeEnv("conversions");
  const KVLSmartPtr<KVLCodeEnv> functions = new KVLCodeEnv("functions");
  functions->Add(KVLSmartPtr<KVLCodeObject>(new AddFunction("add")), "");
  for (int i = 0; i < NbOthers; ++i) {
    functions->Add(KVLSmartPtr<KVLCodeObject>(new AddFunction(NameOfOther(i).c_str())), "");
  }
  const KVLCodeContext context(*types, *conversions);

  bool right = true;
  for (auto _ : state) {
    const KVLSmartPtr<KVLCodeObject> object = functions->FindObject("add");
    const KVLCodeFunction* const function = object->AsFunction();
    KVLVector<MRBUnicodeString> texts;
    texts.Reserve(2);
    texts.Append(Left);
    texts.Append(Right);
    MRBUnicodeString result;
    const long code = function->ParseAndCall(context, texts, result);
    right &= code == KVLResult_Success && result == Sum.data();
  }
  Require(right, "call by text");
}

// The compiler does not know the two texts.
void CallByHand(benchmark::State& state) {
  bool right = true;
  for (auto _ : state) {
    std::string_view leftText = Left;
    std::string_view rightText = Right;
    benchmark::DoNotOptimize(leftText);
    benchmark::DoNotOptimize(rightText);
    double left = 0;
    double other = 0;
    std::from_chars(leftText.data(), leftText.data() + leftText.size(), left);
    std::from_chars(rightText.data(), rightText.data() + rightText.size(), other);
    char sum[32];
    const std::to_chars_result written = std::to_chars(sum, sum + sizeof(sum), left + other);
    right &= std::string_view(sum, static_cast<std::size_t>(written.ptr - sum)) == Sum;
  }
  Require(right, "call by hand");
}

#ifdef KVL_BENCH_LUA
int AddInLua(lua_State* lua) {
  lua_pushnumber(lua, luaL_checknumber(lua, 1) + luaL_checknumber(lua, 2));
  return 1;
}

void CallLua(benchmark::State& state) {
  lua_State* const lua = luaL_newstate();
  luaL_openlibs(lua);
  lua_register(lua, "add", AddInLua);
  for (int i = 0; i < NbOthers; ++i)
    lua_register(lua, NameOfOther(i).c_str(), AddInLua);

  bool right = true;
  for (auto _ : state) {
    lua_getglobal(lua, "add");
    lua_pushstring(lua, Left);
    lua_pushstring(lua, Right);
    const int code = lua_pcall(lua, 2, 1, 0);
    std::size_t length = 0;
    const char* const text = lua_tolstring(lua, -1, &length);
    right &= code == LUA_OK && std::string_view(text, length) == Sum;
    lua_pop(lua, 1);
  }
  Require(right, "call of Lua");
  lua_close(lua);
}
#endif

#ifdef KVL_BENCH_TCL
int AddInTcl(ClientData, Tcl_Interp* interpreter, int nb, Tcl_Obj* const* words) {
  double left = 0;
  double right = 0;
  if (nb != 3 || Tcl_GetDoubleFromObj(interpreter, words[1], &left) != TCL_OK ||
      Tcl_GetDoubleFromObj(interpreter, words[2], &right) != TCL_OK) {
    return TCL_ERROR;
  }
  Tcl_SetObjResult(interpreter, Tcl_NewDoubleObj(left + right));
  return TCL_OK;
}

void CallTcl(benchmark::State& state) {
  Tcl_Interp* const interpreter = Tcl_CreateInterp();
  Tcl_CreateObjCommand(interpreter, "add", AddInTcl, nullptr, nullptr);
  for (int i = 0; i < NbOthers; ++i) {
    Tcl_CreateObjCommand(interpreter, NameOfOther(i).c_str(), AddInTcl, nullptr, nullptr);
  }

  bool right = true;
  for (auto _ : state) {
    Tcl_Obj* words[] = {Tcl_NewStringObj("add", -1), Tcl_NewStringObj(Left, -1),
                        Tcl_NewStringObj(Right, -1)};
    for (Tcl_Obj* const word : words)
      Tcl_IncrRefCount(word);
    const int code = Tcl_EvalObjv(interpreter, 3, words, 0);
    right &= code == TCL_OK && Tcl_GetStringResult(interpreter) == Sum;
    for (Tcl_Obj* const word : words)
      Tcl_DecrRefCount(word);
  }
  Require(right, "call of Tcl");
  Tcl_DeleteInterp(interpreter);
}
#endif

}  // namespace

void RegisterBenches() {
  Add(Workload, Ours, CallOurs);
  Add(Workload, Floor, CallByHand);
#ifdef KVL_BENCH_LUA
  Add(Workload, "Lua", CallLua);
#endif
#ifdef KVL_BENCH_TCL
  Add(Workload, "Tcl", CallTcl);
#endif
}

}  // namespace kvlbench
