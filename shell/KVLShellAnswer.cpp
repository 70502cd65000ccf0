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

// Writes rows whose cells stand below one another.
class Grid {
 public:
  Grid(const std::vector<KVLShellNode>& rowRecords, const char* const* columnNames, bool colored)
      : records(rowRecords), columns(columnNames), isColored(colored) {}

  MRBUnicodeString Write() {
    std::vector<std::vector<MRBUnicodeString>> rows;
    rows.reserve(records.size());
    for (const KVLShellNode& record : records)
      rows.push_back(CellsOf(record));
    MRBUnicodeString text;
    for (const std::vector<MRBUnicodeString>& cells : rows)
      WriteRow(cells, text);
    return text;
  }

 private:
  std::vector<MRBUnicodeString> CellsOf(const KVLShellNode& record) {
    std::vector<MRBUnicodeString> cells;
    for (int i = 0; columns[i]; ++i) {
      const KVLShellNode* const field = record.Find(columns[i]);
      cells.push_back(field ? KVLShellEscaped(field->ToText()) : MRBUnicodeString());
      if (static_cast<int>(widths.size()) <= i) widths.push_back(0);
      const int width = WidthOf(cells.back());
      int& widest = widths[static_cast<std::size_t>(i)];
      if (width <= WidestColumn) widest = std::max(widest, width);
    }
    while (!cells.empty() && cells.back().IsEmpty())
      cells.pop_back();
    return cells;
  }

  void WriteRow(const std::vector<MRBUnicodeString>& cells, MRBUnicodeString& text) const {
    for (std::size_t i = 0; i < cells.size(); ++i) {
      const bool isEnv = isColored && i == 0 && KVLStringOperations::EndsWith(cells[i], "/");
      if (isEnv) text += Blue;
      text += cells[i];
      if (isEnv) text += Plain;
      if (i + 1 < cells.size()) AppendBlanks(widths[i] - WidthOf(cells[i]) + ColumnGap, text);
    }
    text += "\n";
  }

  const std::vector<KVLShellNode>& records;
  const char* const* columns;
  const bool isColored;
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
    text += seconds->ToText() + " s\n";
  }
}

void WriteSheet(const KVLShellNode& record, bool isColored, MRBUnicodeString& text) {
  int width = LeastTitleWidth;
  for (const KVLShellNode::Field& field : record.GetFields())
    width = std::max(width, WidthOf(TitleOf(field.first)) + 2);
  for (const KVLShellNode::Field& field : record.GetFields()) {
    const KVLShellNode& node = field.second;
    if (node.GetKind() == KVLShellNode::Null) continue;
    if (node.GetKind() != KVLShellNode::List || !node.GetText().IsEmpty()) {
      WriteEntry(TitleOf(field.first), width, node, isColored, text);
      continue;
    }
    for (const KVLShellNode& item : node.GetItems())
      WriteEntry(SingularOf(TitleOf(field.first)), width, item, isColored, text);
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
  items.push_back(std::move(item));
  return items.back();
}

KVLShellNode& KVLShellNode::Set(const char* fieldName, KVLShellNode content) {
  fields.emplace_back(fieldName, std::move(content));
  return fields.back().second;
}

KVLShellNode& KVLShellNode::ShowAs(const MRBUnicodeString& shown) {
  text = shown;
  return *this;
}

const KVLShellNode* KVLShellNode::Find(const char* fieldName) const {
  for (const Field& field : fields)
    if (std::strcmp(field.first, fieldName) == 0) return &field.second;
  return nullptr;
}

MRBUnicodeString KVLShellNode::ToText() const {
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
      if (!text.IsEmpty()) break;
      MRBUnicodeString joined;
      for (const KVLShellNode& item : items) {
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
        text += item.ToText() + "\n";
      break;
    case KVLShellAnswer::Table:
      text = Grid(answer.result.GetItems(), answer.columns, isColored).Write();
      break;
    case KVLShellAnswer::Sheet:
      if (answer.result.GetKind() == KVLShellNode::Record) {
        WriteSheet(answer.result, isColored, text);
      }
      for (const KVLShellNode& item : answer.result.GetItems())
        WriteSheet(item, isColored, text);
      break;
  }
  return text;
}
