#include "IotaFile.h"

#include <chrono>
#include <climits>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

#include "KVLCodeListValue.h"
#include "KVLKitValue.h"

namespace iota {

namespace {

namespace fs = std::filesystem;

using Elements = KVLCodeListValue::Elements;
using ValuePtr = KVLSmartPtr<KVLCodeValue>;

constexpr char Header[] = "kvl-variables 1\n";
constexpr int DeepestNesting = 100;

std::string Quoted(const MRBUnicodeString& text) {
  return std::string("'") + text.ConvertToChar() + "'";
}

ValuePtr MakeValue(const KVLCodeContext& context, const MRBUnicodeString& typeName,
                   const MRBUnicodeString& valueName) {
  // A name with "/" would lead deeper, and the lookup would make what it leads through.
  const bool isName = !typeName.IsEmpty() && typeName.FindPosition("/", 0) == 0;
  const KVLSmartPtr<const KVLCodeType> type =
      isName ? context.GetTypeFromName(typeName) : KVLSmartPtr<const KVLCodeType>();
  ValuePtr value = type ? type->CreateValue(valueName) : nullptr;
  if (!value) throw std::runtime_error("the type " + Quoted(typeName) + " makes no value");
  return value;
}

bool IsAny(const KVLCodeValue& value) {
  return value.GetTypeName() == "any";
}

void WriteValue(const KVLCodeContext& context, const KVLCodeValue& value, int depth,
                MRBUnicodeString& text);

void WriteElements(const KVLCodeContext& context, const Elements& elements, int depth,
                   MRBUnicodeString& text) {
  text += "[";
  for (int i = 0; i < elements.GetCount(); ++i) {
    if (i > 0) text += ", ";
    if (!elements[i]) throw std::runtime_error("it holds a list with an empty place");
    WriteValue(context, *elements[i], depth + 1, text);
  }
  text += "]";
}

void WritePlain(const KVLCodeContext& context, const KVLCodeValue& value, MRBUnicodeString& text) {
  MRBUnicodeString valueText;
  MRBUnicodeString textBack;
  if (KVLFailed(value.GetValueStr(context, valueText))) {
    throw std::runtime_error("a value of the type " + Quoted(value.GetTypeName()) + " has no text");
  }
  const ValuePtr back = MakeValue(context, value.GetTypeName(), "");
  if (KVLFailed(back->SetValueStr(context, valueText)) ||
      KVLFailed(back->GetValueStr(context, textBack)) || textBack != valueText) {
    throw std::runtime_error("the text of a value of the type " + Quoted(value.GetTypeName()) +
                             " does not read back");
  }
  text += kvl::Quote(valueText);
}

void WriteValue(const KVLCodeContext& context, const KVLCodeValue& value, int depth,
                MRBUnicodeString& text) {
  if (depth > DeepestNesting) throw std::runtime_error("it nests deeper than 100");
  text += kvl::Quote(value.GetTypeName()) + " ";
  const auto* const list = dynamic_cast<const KVLCodeListValue*>(&value);
  if (!list && !IsAny(value)) return WritePlain(context, value, text);
  const void* const data = value.GetValuePtr();
  if (!data) {
    text += "-";
  } else if (list) {
    WriteElements(context, *static_cast<const Elements*>(data), depth, text);
  } else {
    text += "{";
    WriteValue(context, *kvl::Unwrapped(value), depth + 1, text);
    text += "}";
  }
}

// Reads along one line.
class Reader {
 public:
  Reader(const KVLCodeContext& readContext, const MRBUnicodeString& line)
      : context(readContext), next(line), end(next + line.GetLengthInByte()) {}

  MRBUnicodeString ReadName() {
    const char* const begin = next;
    while (next < end && *next != ' ')
      ++next;
    return MRBUnicodeString(begin, static_cast<int>(next - begin));
  }

  ValuePtr ReadValue(const MRBUnicodeString& valueName, int depth) {
    if (depth > DeepestNesting) throw std::runtime_error("it nests deeper than 100");
    const MRBUnicodeString typeName = ReadQuoted();
    Expect(' ');
    const ValuePtr value = MakeValue(context, typeName, valueName);
    if (Take('-')) {
      value->Reset();
    } else if (Take('[')) {
      ReadElements(*value, depth);
    } else if (Take('{')) {
      if (!IsAny(*value)) throw std::runtime_error(Quoted(typeName) + " is not \"any\"");
      ExpectSuccess(*value, value->AssignFrom(context, *ReadValue("", depth + 1)));
      Expect('}');
    } else {
      ExpectSuccess(*value, value->SetValueStr(context, ReadQuoted()));
    }
    return value;
  }

  void Expect(char byte) {
    if (!Take(byte)) {
      throw std::runtime_error(std::string("there should be a '") + byte + "'");
    }
  }
  void ExpectEnd() const {
    if (next != end) throw std::runtime_error("there is something behind the value");
  }

 private:
  bool Take(char byte) {
    if (next == end || *next != byte) return false;
    ++next;
    return true;
  }

  MRBUnicodeString ReadQuoted() {
    const char* const begin = next;
    Expect('"');
    while (next < end && *next != '"')
      next += *next == '\\' && next + 1 < end ? 2 : 1;
    Expect('"');
    MRBUnicodeString text;
    if (KVLFailed(kvl::Unquote(MRBUnicodeString(begin, static_cast<int>(next - begin)), text))) {
      throw std::runtime_error("a text is not quoted as it should be");
    }
    return text;
  }

  void ReadElements(KVLCodeValue& value, int depth) {
    auto* const list = dynamic_cast<KVLCodeListValue*>(&value);
    MRBUnicodeString elementType;
    const KVLSmartPtr<const KVLCodeType> type = value.GetType(context);
    if (!list || !type || !type->IsList(&elementType)) {
      throw std::runtime_error(Quoted(value.GetTypeName()) + " is no list");
    }
    const bool isAny = elementType == "any" || elementType == KVLTypeName_Unknown;
    Elements elements;
    while (!Take(']')) {
      if (!elements.IsEmpty()) {
        Expect(',');
        Expect(' ');
      }
      elements.Append(ReadValue("", depth + 1));
      if (!isAny && elements[elements.GetCount() - 1]->GetTypeName() != elementType) {
        throw std::runtime_error("an element is no " + Quoted(elementType));
      }
    }
    list->MakeOwnElements() = std::move(elements);
  }

  static void ExpectSuccess(const KVLCodeValue& value, long result) {
    if (KVLFailed(result)) {
      throw std::runtime_error("a value of the type " + Quoted(value.GetTypeName()) +
                               " does not take what is given");
    }
  }

  const KVLCodeContext& context;
  const char* next;
  const char* const end;
};

bool IsLetter(char byte) {
  return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || byte == '_';
}

Variable ReadLine(const KVLCodeContext& context, const MRBUnicodeString& line) {
  Reader reader(context, line);
  Variable variable;
  variable.name = reader.ReadName();
  if (!IsName(variable.name)) throw std::runtime_error(Quoted(variable.name) + " is no name");
  reader.Expect(' ');
  variable.value = reader.ReadValue(variable.name, 0);
  reader.ExpectEnd();
  return variable;
}

// File names are UTF-8 on every platform.
fs::path PathOf(const MRBUnicodeString& file) {
  if (file.IsEmpty()) throw std::invalid_argument("the file has no name");
  return fs::u8path(std::string(file, static_cast<std::size_t>(file.GetLengthInByte())));
}

// Beside `path`, so that it can be renamed, and not used by another process.
fs::path TemporaryPathFor(const fs::path& path) {
  const auto ticks = std::chrono::steady_clock::now().time_since_epoch().count();
  fs::path temporary = path;
  temporary += "." + std::to_string(ticks) + ".new";
  return temporary;
}

}  // namespace

bool IsName(const MRBUnicodeString& text) {
  for (int i = 0; i < text.GetLengthInByte(); ++i) {
    const char byte = text[static_cast<std::size_t>(i)];
    if (!IsLetter(byte) && (i == 0 || byte < '0' || byte > '9')) return false;
  }
  return !text.IsEmpty();
}

MRBUnicodeString Write(const KVLCodeContext& context, const KVLVector<Variable>& variables) {
  MRBUnicodeString text = Header;
  for (const Variable& variable : variables) {
    text += variable.name + " ";
    try {
      WriteValue(context, *variable.value, 0, text);
    } catch (const std::runtime_error& error) {
      throw std::runtime_error(Quoted(variable.name) + " cannot be saved: " + error.what());
    }
    text += "\n";
  }
  return text;
}

KVLVector<Variable> Read(const KVLCodeContext& context, const MRBUnicodeString& text) {
  if (!KVLStringOperations::StartsWith(text, Header)) {
    throw std::runtime_error("these are no saved variables");
  }
  KVLVector<Variable> variables;
  int number = 0;
  for (const MRBUnicodeString& line : KVLStringOperations::Split(text, "\n")) {
    if (++number == 1) continue;
    try {
      variables.Append(ReadLine(context, line));
    } catch (const std::runtime_error& error) {
      throw std::runtime_error("line " + std::to_string(number) + ": " + error.what());
    }
  }
  return variables;
}

MRBUnicodeString ReadFile(const MRBUnicodeString& file) {
  std::ifstream stream(PathOf(file), std::ios::binary);
  MRBUnicodeString text;
  char block[4096];
  while (stream.read(block, sizeof(block)) || stream.gcount() > 0) {
    if (text.GetLengthInByte() > INT_MAX - 2 * static_cast<int>(sizeof(block))) {
      throw std::runtime_error(Quoted(file) + " is too large");
    }
    text += MRBUnicodeString(block, static_cast<int>(stream.gcount()));
  }
  // A directory opens, but cannot be read.
  if (!stream.eof() || stream.bad()) {
    throw std::runtime_error(Quoted(file) + " cannot be read");
  }
  return text;
}

void ReplaceFile(const MRBUnicodeString& file, const MRBUnicodeString& text) {
  fs::path path = PathOf(file);
  std::error_code error;
  const fs::file_status before = fs::status(path, error);
  const bool isThere = fs::exists(before);
  if (isThere && !fs::is_regular_file(before)) {
    throw std::runtime_error(Quoted(file) + " is no plain file");
  }
  // What a link leads to is replaced, not the link.
  if (isThere && fs::is_symlink(fs::symlink_status(path, error))) {
    path = fs::canonical(path, error);
    if (error) throw std::runtime_error(Quoted(file) + " cannot be written");
  }
  const fs::path temporary = TemporaryPathFor(path);
  {
    std::ofstream stream(temporary, std::ios::binary | std::ios::trunc);
    // Before anything is in it, so that nobody reads what was private.
    if (stream && isThere) {
      fs::permissions(temporary, before.permissions(), error);
      if (error) stream.setstate(std::ios::failbit);
    }
    stream.write(text, text.GetLengthInByte());
    stream.close();
    if (stream) {
      fs::rename(temporary, path, error);
      if (!error) return;
    }
  }
  fs::remove(temporary, error);
  throw std::runtime_error(Quoted(file) + " cannot be written");
}

}  // namespace iota
