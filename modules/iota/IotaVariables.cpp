#include <stdexcept>
#include <string>

#include "IotaFile.h"
#include "KVLKit.h"

namespace {

using Names = KVLVector<MRBUnicodeString>;
using ValuePtr = KVLSmartPtr<KVLCodeValue>;

KVLCodeSession& SessionOf(KVLCodeSession* session) {
  if (!session) throw std::runtime_error("there is no session");
  return *session;
}

std::string Quoted(const MRBUnicodeString& text) {
  return std::string("'") + text.ConvertToChar() + "'";
}

ValuePtr Find(const KVLCodeSession& session, const MRBUnicodeString& name) {
  ValuePtr value = session.FindVariable(name);
  if (!value) throw std::invalid_argument("there is no variable " + Quoted(name));
  return value;
}

// What is handed out or in is a copy: a variable is changed by its name alone.
ValuePtr CopyOf(const KVLCodeContext& context, const KVLCodeValue& value,
                const MRBUnicodeString& name) {
  ValuePtr copy = value.Copy(context, name);
  if (!copy) {
    throw std::invalid_argument("a value of the type " + Quoted(value.GetTypeName()) +
                                " cannot be copied");
  }
  return copy;
}

void Set(const KVLCodeContext& context, KVLCodeSession* given, const MRBUnicodeString& name,
         const kvl::Any& value) {
  KVLCodeSession& session = SessionOf(given);
  if (!value) throw std::invalid_argument("there is no value");
  if (!iota::IsName(name) || KVLFailed(session.SetVariable(name, CopyOf(context, *value, name)))) {
    throw std::invalid_argument(Quoted(name) + " is no name of a variable");
  }
}

kvl::Any Get(const KVLCodeContext& context, KVLCodeSession* session, const MRBUnicodeString& name) {
  return CopyOf(context, *Find(SessionOf(session), name), name);
}

bool Exists(KVLCodeSession* session, const MRBUnicodeString& name) {
  return !SessionOf(session).FindVariable(name).IsNull();
}

void Unset(KVLCodeSession* session, const MRBUnicodeString& name) {
  if (!SessionOf(session).RemoveVariable(name)) {
    throw std::invalid_argument("there is no variable " + Quoted(name));
  }
}

Names List(KVLCodeSession* session) {
  Names names;
  SessionOf(session).GetVariableNames(names);
  return names;
}

int Save(const KVLCodeContext& context, KVLCodeSession* session, const MRBUnicodeString& file) {
  KVLVector<iota::Variable> variables;
  for (const MRBUnicodeString& name : List(session)) {
    if (session->IsInterrupted()) throw std::runtime_error("interrupted");
    variables.Append(iota::Variable{name, Find(*session, name)});
  }
  iota::ReplaceFile(file, iota::Write(context, variables));
  return variables.GetCount();
}

int Restore(const KVLCodeContext& context, KVLCodeSession* session, const MRBUnicodeString& file) {
  KVLCodeSession& target = SessionOf(session);
  const KVLVector<iota::Variable> variables = iota::Read(context, iota::ReadFile(file));
  for (const iota::Variable& variable : variables) {
    if (KVLFailed(target.SetVariable(variable.name, variable.value))) {
      throw std::runtime_error(Quoted(variable.name) + " was refused by the session");
    }
  }
  return variables.GetCount();
}

}  // namespace

KVL_DOC("var", "The variables of the session. Without a session each of these functions fails.");

KVL_FUNCTION("var/set", "name, value",
             "Gives the variable the value, and makes it where it is not there. Fails for a name "
             "that is none, and for no value.",
             Set);
KVL_FUNCTION("var/get", "name", "The value of the variable. Fails when there is none.", Get);
KVL_FUNCTION("var/exists", "name", "Whether there is such a variable.", Exists);
KVL_FUNCTION("var/unset", "name", "Takes the variable away. Fails when there is none.", Unset);
KVL_FUNCTION("var/list", "", "The names of all variables, sorted.", List);
KVL_FUNCTION("var/save", "file",
             "Writes all variables with their types to the file, whose former content is replaced "
             "at once or not at all, and returns their number. Fails when a value has no text that "
             "reads back, and when the file cannot be written.",
             Save);
KVL_FUNCTION("var/restore", "file",
             "Sets the variables that var/save has written to the file, and returns their number; "
             "others stay. Fails when the file cannot be read, and then no variable changes.",
             Restore);
