#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include "KVLShellCommand.h"
#include "KVLShellExport.h"
#include "KVLShellJson.h"
#include "KVLShellPath.h"
#include "KVLShellTree.h"
#include "KVLStringOperations.h"

namespace {

namespace fs = std::filesystem;

KVLShellOutcome Unwritten(const std::string& fileName, const std::string& why, int position) {
  return KVLShellOutcome(KVLResult_Failure,
                         "export: cannot write '" + KVLShellPrintable(KVLShellText(fileName)) +
                             "': " + KVLShellText(why),
                         position);
}

// Writes the bytes as they are, and notes the file among the `written`.
KVLShellOutcome WriteFile(const std::string& fileName, const std::string& text, int position,
                          KVLShellNode& written) {
  std::ofstream stream(fs::u8path(fileName), std::ios::binary);
  stream.write(text.data(), static_cast<std::streamsize>(text.size()));
  stream.close();
  if (!stream) return Unwritten(fileName, std::strerror(errno), position);
  written.Append(KVLShellText(fileName));
  return KVLShellOutcome();
}

KVLShellOutcome WritePages(const std::string& folder, const KVLShellModel& model, int position,
                           KVLShellNode& written) {
  std::error_code error;
  fs::create_directories(fs::u8path(folder), error);
  if (error) return Unwritten(folder, error.message(), position);
  for (const KVLShellExportPage& page : KVLShellExportPages(model)) {
    const std::string fileName = KVLShellJoinPath(folder, page.fileName);
    const KVLShellOutcome outcome = WriteFile(fileName, page.text, position, written);
    if (!outcome.IsSuccess()) return outcome;
  }
  return KVLShellOutcome();
}

MRBUnicodeString TextIn(const MRBUnicodeString& format, const KVLShellModel& model) {
  if (format == "json") return KVLShellJsonOf(KVLShellExportNode(model), 2) + "\n";
  if (format == "html") return KVLShellText(KVLShellExportHtml(model));
  return KVLShellText(KVLShellExportMarkdown(model));
}

// Puts the text itself in the answer.
void Show(const MRBUnicodeString& format, const KVLShellModel& model, KVLShellAnswer& answer) {
  answer.layout = KVLShellAnswer::Verbatim;
  if (format == "json") {
    answer.result = KVLShellExportNode(model);
    answer.result.ShowAs(KVLShellJsonOf(answer.result, 2));
    return;
  }
  const MRBUnicodeString text = TextIn(format, model);
  answer.result = KVLShellNode::NewRecord();
  answer.result.Set("format", format);
  answer.result.Set("text", text);
  answer.result.ShowAs(text);
}

KVLShellOutcome Run(const KVLShellArguments& arguments, KVLShellWork&, KVLShellAnswer& answer) {
  const MRBUnicodeString path = arguments.GetCount() > 0 ? arguments[0].text : MRBUnicodeString();
  const KVLShellPlace place = KVLShellFind(path);
  if (!place.IsFound()) {
    return KVLShellNotFound("environment or object", path, arguments[0].position);
  }
  const KVLShellModel model =
      KVLShellPartOfModel(KVLShellReadModel(KVLCodeEnv::GetDefault()), KVLShellBytes(place.path));
  const KVLShellWord* const formatWord = arguments.ValueOf("--format");
  const MRBUnicodeString format = formatWord ? formatWord->text : MRBUnicodeString("md");
  const KVLShellWord* const output = arguments.ValueOf("--output");
  if (!output) {
    Show(format, model, answer);
    return KVLShellOutcome();
  }
  KVLShellNode written = KVLShellNode::NewList();
  const bool isFolder = format == "md" && !KVLStringOperations::EndsWith(output->text, ".md");
  const KVLShellOutcome outcome =
      isFolder ? WritePages(KVLShellBytes(output->text), model, output->position, written)
               : WriteFile(KVLShellBytes(output->text), KVLShellBytes(TextIn(format, model)),
                           output->position, written);
  answer.result = std::move(written);
  answer.layout = KVLShellAnswer::Lines;
  return outcome;
}

}  // namespace

const KVLShellCommand KVLShellExportCommand = {
    "export",
    "export [--format FORMAT] [--output FILE] [PATH]",
    "describes the registry, or what is below PATH",
    "  As reference pages (md, which is the default), as data (json), or as one page for a "
    "browser\n"
    "  (html), which needs nothing else. With --output, into FILE, whose name is told; for md "
    "into\n"
    "  a folder, a page for each module, unless FILE ends with \".md\".\n"
    "    export math\n"
    "    export --format html --output registry.html\n",
    KVLShellStyle_Words,
    Run,
    0,
    1,
    {KVLShellWord_Path},
    {{"--format", "FORMAT", "json|md|html", KVLShellWord_Other},
     {"--output", "FILE", nullptr, KVLShellWord_Other}}};
