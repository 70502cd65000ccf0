#include "KVLShellCommand.h"
#include "KVLShellComplete.h"

namespace {

KVLShellOutcome Run(const KVLShellArguments& arguments, KVLShellWork& work,
                    KVLShellAnswer& answer) {
  const MRBUnicodeString line = arguments.GetCount() > 0 ? arguments[0].text : MRBUnicodeString();
  const KVLShellCompletion completion = KVLShellComplete(line, work.session);
  KVLShellNode words = KVLShellNode::NewList();
  MRBUnicodeString text;
  for (const MRBUnicodeString& word : completion.words) {
    words.Append(word);
    text += word + "\n";
  }
  answer.result = KVLShellNode::NewRecord();
  answer.result.Set("replace_from", completion.replaceFrom);
  answer.result.Set("words", words);
  answer.result.ShowAs(text);
  answer.layout = KVLShellAnswer::Verbatim;
  return KVLShellOutcome();
}

}  // namespace

const KVLShellCommand KVLShellCompleteCommand = {"complete",
                                                 "complete LINE",
                                                 "tells what a line may go on with",
                                                 "  LINE is all that follows one blank, up to the "
                                                 "end of the line. What is told are whole words\n"
                                                 "  that may stand in place of the last one; one "
                                                 "that ends with \"/\", \"(\", \"=\" or a blank is "
                                                 "to be\n"
                                                 "  gone on with.\n",
                                                 KVLShellStyle_Rest,
                                                 Run,
                                                 0,
                                                 -1,
                                                 {},
                                                 {}};
