#include "KVLShellExportText.h"

namespace {

constexpr char Replacement[] = "\xEF\xBF\xBD";  // U+FFFD

// The length of the well-formed character at `i`, or 0. Overlong forms, halves of pairs and what
// lies above U+10FFFF are not well-formed.
std::size_t CharacterLength(const std::string& bytes, std::size_t i) {
  const auto byte = [&](std::size_t k) {
    return k < bytes.size() ? static_cast<unsigned char>(bytes[k]) : 0u;
  };
  const unsigned lead = byte(i);
  if (lead < 0x80) return 1;
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4) return 0;
  const unsigned lowest = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
  const unsigned highest = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
  if (byte(i + 1) < lowest || byte(i + 1) > highest) return 0;
  for (std::size_t k = 2; k < length; ++k)
    if ((byte(i + k) & 0xC0) != 0x80) return 0;
  return length;
}

bool IsControl(char c) {
  const unsigned char byte = static_cast<unsigned char>(c);
  return (byte < 0x20 && c != '\t' && c != '\n') || byte == 0x7F;
}

}  // namespace

std::string KVLShellUtf8(const std::string& bytes) {
  std::string text;
  text.reserve(bytes.size());
  for (std::size_t i = 0; i < bytes.size();) {
    const std::size_t length = CharacterLength(bytes, i);
    if (length == 0 || IsControl(bytes[i])) {
      text += Replacement;
      ++i;
    } else {
      text.append(bytes, i, length);
      i += length;
    }
  }
  return text;
}

std::string KVLShellHtmlText(const std::string& bytes) {
  std::string html;
  for (const char c : KVLShellUtf8(bytes)) {
    switch (c) {
      case '&':
        html += "&amp;";
        break;
      case '<':
        html += "&lt;";
        break;
      case '>':
        html += "&gt;";
        break;
      case '"':
        html += "&quot;";
        break;
      case '\'':
        html += "&#39;";
        break;
      default:
        html += c;
    }
  }
  return html;
}

std::string KVLShellPlaceText(const KVLShellModelPlace& place) {
  std::string text = place.file;
  if (place.line >= 1) text += (text.empty() ? "line " : ":") + std::to_string(place.line);
  if (!place.detail.empty()) text += (text.empty() ? "<" : " <") + place.detail + ">";
  return text;
}

const char* KVLShellDirectionText(const KVLShellModelParam& param) {
  if (param.isInput) return param.isOutput ? "in/out" : "in";
  return param.isOutput ? "out" : "none";
}

std::string KVLShellCountText(std::size_t count, const std::string& noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}
