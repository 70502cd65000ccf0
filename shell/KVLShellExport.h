#ifndef KVL_SHELL_EXPORT_H
#define KVL_SHELL_EXPORT_H

#include <string>
#include <vector>

#include "KVLShellAnswer.h"
#include "KVLShellModel.h"

/// The forms in which a registry is handed out. All of them are UTF-8: bytes that are not become
/// U+FFFD, as control characters do where the form has no place for them.

/// One record, whose fields docs/export.md lists.
KVLShellNode KVLShellExportNode(const KVLShellModel& model);

/// A record of "file", "line" and "detail" for each place; what is not known is null.
KVLShellNode KVLShellPlacesNode(const std::vector<KVLShellModelPlace>& places);

/// Reference pages in one text.
std::string KVLShellExportMarkdown(const KVLShellModel& model);

/// A file of its own.
struct KVLShellExportPage {
  std::string fileName;  ///< of lower-case letters, digits, "-" and "_", ending in ".md"
  std::string text;
};

/// The same as one page for each module, and for each topmost environment with objects of no known
/// module; "index.md", which leads to the others, comes first.
std::vector<KVLShellExportPage> KVLShellExportPages(const KVLShellModel& model);

/// One page that refers to nothing outside itself.
std::string KVLShellExportHtml(const KVLShellModel& model);

#endif
