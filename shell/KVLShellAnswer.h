#ifndef KVL_SHELL_ANSWER_H
#define KVL_SHELL_ANSWER_H

#include <utility>
#include <vector>

#include "MRBUnicodeString.h"

/// A piece of what a command answers: the one source of its text and of its JSON.
///
/// Names of fields are borrowed for ever: they are literals. They are written as in JSON,
/// "converts_to"; texts show "converts to".
class KVLShellNode {
 public:
  enum Kind { Null, Bool, Integer, Real, Text, List, Record };

  KVLShellNode() = default;
  KVLShellNode(const MRBUnicodeString& content) : kind(Text), text(content) {}
  KVLShellNode(MRBUnicodeString&& content) : kind(Text), text(std::move(content)) {}
  KVLShellNode(const char* content) : kind(Text), text(content) {}
  KVLShellNode(bool truth) : kind(Bool), integer(truth ? 1 : 0) {}
  KVLShellNode(int number) : kind(Integer), integer(number) {}
  KVLShellNode(long long number) : kind(Integer), integer(number) {}
  KVLShellNode(double number) : kind(Real), real(number) {}
  static KVLShellNode NewList();
  static KVLShellNode NewRecord();
  /// A record of "type" and "text" that texts show as the text.
  static KVLShellNode NewValue(const MRBUnicodeString& typeName, const MRBUnicodeString& valueText);

  /// Makes room for as many items of a list.
  void Reserve(int count) { children.reserve(static_cast<std::size_t>(count)); }
  /// Adds to a list, and returns what was added; valid until the next one.
  KVLShellNode& Append(KVLShellNode item);
  /// Adds a field to a record, and returns it; valid until the next one.
  KVLShellNode& Set(const char* fieldName, KVLShellNode content);
  /// What texts show in place of a list, a record, a number or a truth value.
  KVLShellNode& ShowAs(const MRBUnicodeString& shown);

  Kind GetKind() const { return kind; }
  bool GetBool() const { return integer != 0; }
  long long GetInteger() const { return integer; }
  double GetReal() const { return real; }
  /// The text, or what `ShowAs` was given.
  const MRBUnicodeString& GetText() const { return text; }
  /// Of a field: its name; else null.
  const char* GetName() const { return name; }
  /// The items of a list.
  const std::vector<KVLShellNode>& GetItems() const { return children; }
  /// The fields of a record, in the order in which they were set.
  const std::vector<KVLShellNode>& GetFields() const { return children; }
  /// The field of that name, or null.
  const KVLShellNode* Find(const char* fieldName) const;
  /// As a text shows it, on one line or several.
  MRBUnicodeString ToText() const;

 private:
  Kind kind = Null;
  const char* name = nullptr;
  union {
    long long integer = 0;
    double real;
  };
  MRBUnicodeString text;
  std::vector<KVLShellNode> children;
};

/// What a command found out, and how a text shows it. JSON shows `result` whole.
struct KVLShellAnswer {
  enum Layout {
    Silent,    ///< nothing
    Value,     ///< a value on a line, unless it is void; then its field "outputs", if it has one:
               ///< "name = text" for each record in the list; then its "seconds"
    Verbatim,  ///< the text of `result`, with a newline behind it unless it has one or is empty
    Lines,     ///< the text of each item of the list `result` on a line, escaped
    Table,     ///< a row for each record in the list `result`, with the fields `columns`
    Sheet      ///< "name: text" for each field of the record `result`, or of each record in the
               ///< list; for a field that is a list, on a line for each item, with the name in the
               ///< singular
  };

  KVLShellNode result;
  Layout layout = Silent;
  const char* const* columns = nullptr;  ///< names of fields, ended by null; borrowed
};

/// The answer as a text shows it: whole lines, each with its newline; empty for a silent one.
/// Colours are those of terminals.
MRBUnicodeString KVLShellTextOf(const KVLShellAnswer& answer, bool isColored);

#endif
