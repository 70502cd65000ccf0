#include "KVLShellAnswer.h"

#include <algorithm>
#include <cstring>

#include "KVLShellOutcome.h"
#include "KVLStringOperations.h"

namespace {

constexpr int WidestColumn = 40;  // bytes; a longer cell moves its own line only
constexpr int ColumnGap = 2;
constexpr int LeastTitleWidth = 13;

constexpr char Bold[] = "\x1B[1m";
constexpr char Blue[] = "\x1B[34m";
constexpr char Plain[] = "\x1B[0m";

bool IsContinuation(char character) {
  return (static_cast<unsigned char>(character) & 0xC0) == 0x80;
}

// The number of characters of a UTF-8 text.
int WidthOf(const MRBUnicodeString& text) {
  const char* const bytes = text.ConvertToChar();
  int width = 0;
  for (int i = 0; i < text.GetLengthInByte(); ++i)
    width += IsContinuation(bytes[i]) ? 0 : 1;
  return width;
}

void AppendBlanks(int count, MRBUnicodeString& text) {
  static constexpr char blanks[] = "                                ";
  constexpr int most = static_cast<int>(sizeof(blanks)) - 1;
  for (; count > most; count -= most)
    text += MRBUnicodeString(blanks, most);
  if (count > 0) text += MRBUnicodeString(blanks, count);
}

// The text of a cell, which `made` holds when it is not there yet.
const MRBUnicodeString& CellText(const KVLShellNode& record, const char* column,
                                 MRBUnicodeString& made) {
  const KVLShellNode* const field = record.Find(column);
  if (!field) {
    made = MRBUnicodeString();
    return made;
  }
  const bool isText = field->GetKind() == KVLShellNode::Text;
  if (isText && !KVLShellNeedsEscapes(field->GetText())) return field->GetText();
  made = KVLShellEscaped(field->ToText());
  return made;
}

// Writes rows whose cells stand below one another.
class Grid {
 public:
  Grid(const std::vector<KVLShellNode>& rowRecords, const char* const* columnNames, bool colored)
      : records(rowRecords), columns(columnNames), isColored(colored) {
    while (columns[nbColumns])
      ++nbColumns;
    widths.resize(static_cast<std::size_t>(nbColumns));
  }

  MRBUnicodeString Write() {
    MRBUnicodeString made;
    for (const KVLShellNode& record : records) {
      for (int i = 0; i < nbColumns; ++i) {
        const int width = WidthOf(CellText(record, columns[i], made));
        if (width <= WidestColumn) WidthAt(i) = std::max(WidthAt(i), width);
      }
    }
    MRBUnicodeString text;
    for (const KVLShellNode& record : records)
      WriteRow(record, text);
    return text;
  }

 private:
  int& WidthAt(int column) { return widths[static_cast<std::size_t>(column)]; }

  // Blanks are written before a cell that is not empty, so that none ends the row.
  void WriteRow(const KVLShellNode& record, MRBUnicodeString& text) {
    MRBUnicodeString made;
    int nbBlanks = 0;
    for (int i = 0; i < nbColumns; ++i) {
      const MRBUnicodeString& cell = CellText(record, columns[i], made);
      if (!cell.IsEmpty()) {
        AppendBlanks(nbBlanks, text);
        nbBlanks = 0;
        const bool isEnv = isColored && i == 0 && KVLStringOperations::EndsWith(cell, "/");
        if (isEnv) text += Blue;
        text += cell;
        if (isEnv) text += Plain;
      }
      nbBlanks += std::max(0, WidthAt(i) - WidthOf(cell)) + ColumnGap;
    }
    text += "\n";
  }

  const std::vector<KVLShellNode>& records;
  const char* const* columns;
  const bool isColored;
  int nbColumns = 0;
  std::vector<int> widths;
};

MRBUnicodeString TitleOf(const char* fieldName) {
  MRBUnicodeString title;
  for (const char* byte = fieldName; *byte; ++byte)
    title += MRBUnicodeString(*byte == '_' ? " " : byte, 1);
  return title;
}

// "parameter" of "parameters".
MRBUnicodeString SingularOf(const MRBUnicodeString& title) {
  const int last = title.GetLengthInByte() - 1;
  return KVLStringOperations::EndsWith(title, "s") ? title.SubString(0, last) : title;
}

void WriteEntry(const MRBUnicodeString& entryTitle, int titleWidth, const KVLShellNode& node,
                bool isColored, MRBUnicodeString& text) {
  MRBUnicodeString title = entryTitle + ":";
  const int width = WidthOf(title);
  if (isColored) title = Bold + title + Plain;
  text += title;
  AppendBlanks(titleWidth - width, text);
  text += KVLShellEscaped(node.ToText());
  text += "\n";
}

void WriteValue(const KVLShellNode& value, MRBUnicodeString& text) {
  const KVLShellNode* const type = value.Find("type");
  if (!type || type->GetText() != "void") text += value.ToText() + "\n";
  if (const KVLShellNode* const outputs = value.Find("outputs")) {
    for (const KVLShellNode& output : outputs->GetItems())
      text += output.Find("name")->ToText() + " = " + output.Find("text")->ToText() + "\n";
  }
  if (const KVLShellNode* const seconds = value.Find("seconds")) {
    text += seconds->ToText() + "\n";
  }
}

void WriteSheet(const KVLShellNode& record, bool isColored, MRBUnicodeString& text) {
  int width = LeastTitleWidth;
  for (const KVLShellNode& field : record.GetFields())
    width = std::max(width, WidthOf(TitleOf(field.GetName())) + 2);
  for (const KVLShellNode& field : record.GetFields()) {
    if (field.GetKind() == KVLShellNode::Null) continue;
    if (field.GetKind() != KVLShellNode::List || !field.GetText().IsEmpty()) {
      WriteEntry(TitleOf(field.GetName()), width, field, isColored, text);
      continue;
    }
    for (const KVLShellNode& item : field.GetItems())
      WriteEntry(SingularOf(TitleOf(field.GetName())), width, item, isColored, text);
  }
}

}  // namespace

KVLShellNode KVLShellNode::NewList() {
  KVLShellNode node;
  node.kind = List;
  return node;
}

KVLShellNode KVLShellNode::NewRecord() {
  KVLShellNode node;
  node.kind = Record;
  return node;
}

KVLShellNode KVLShellNode::NewValue(const MRBUnicodeString& typeName,
                                    const MRBUnicodeString& valueText) {
  KVLShellNode node = NewRecord();
  node.Set("type", typeName);
  node.Set("text", valueText);
  node.ShowAs(valueText);
  return node;
}

KVLShellNode& KVLShellNode::Append(KVLShellNode item) {
  children.push_back(std::move(item));
  return children.back();
}

KVLShellNode& KVLShellNode::Set(const char* fieldName, KVLShellNode content) {
  constexpr std::size_t UsualCount = 3;
  if (children.empty()) children.reserve(UsualCount);
  children.push_back(std::move(content));
  children.back().name = fieldName;
  return children.back();
}

KVLShellNode& KVLShellNode::ShowAs(const MRBUnicodeString& shown) {
  text = shown;
  return *this;
}

const KVLShellNode* KVLShellNode::Find(const char* fieldName) const {
  for (const KVLShellNode& field : children)
    if (field.name && std::strcmp(field.name, fieldName) == 0) return &field;
  return nullptr;
}

MRBUnicodeString KVLShellNode::ToText() const {
  if (!text.IsEmpty()) return text;
  switch (kind) {
    case Null:
    case Text:
    case Record:
      break;
    case Bool:
      return integer ? "yes" : "no";
    case Integer: {
      MRBUnicodeString number;
      number.BuildFromNum(static_cast<long>(integer), "%ld");
      return number;
    }
    case Real: {
      MRBUnicodeString number;
      number.BuildFromNum(real, "%g");
      return number;
    }
    case List: {
      MRBUnicodeString joined;
      for (const KVLShellNode& item : children) {
        if (!joined.IsEmpty()) joined += ", ";
        joined += item.ToText();
      }
      return joined;
    }
  }
  return text;
}

MRBUnicodeString KVLShellTextOf(const KVLShellAnswer& answer, bool isColored) {
  MRBUnicodeString text;
  switch (answer.layout) {
    case KVLShellAnswer::Silent:
      break;
    case KVLShellAnswer::Value:
      WriteValue(answer.result, text);
      break;
    case KVLShellAnswer::Verbatim:
      text = answer.result.ToText();
      if (!text.IsEmpty() && !KVLStringOperations::EndsWith(text, "\n")) text += "\n";
      break;
    case KVLShellAnswer::Lines:
      for (const KVLShellNode& item : answer.result.GetItems())
        text += KVLShellEscaped(item.ToText()) + "\n";
      break;
    case KVLShellAnswer::Table:
      text = Grid(answer.result.GetItems(), answer.columns, isColored).Write();
      break;
    case KVLShellAnswer::Sheet:
      if (answer.result.GetKind() == KVLShellNode::Record) {
        WriteSheet(answer.result, isColored, text);
        break;
      }
      for (const KVLShellNode& item : answer.result.GetItems())
        WriteSheet(item, isColored, text);
      break;
  }
  return text;
}
