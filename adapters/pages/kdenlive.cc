#include "adapters/pages/kdenlive.h"

#include <sstream>
#include <string_view>

namespace kelto::pages {
namespace {

std::string Escaped(std::string_view text) {
  std::string escaped;
  for (const char letter : text) {
    switch (letter) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      default:
        escaped += letter;
    }
  }
  return escaped;
}

const char* TypeOf(Widget widget) {
  switch (widget) {
    case Widget::kFile:
      return "url";
    case Widget::kSlider:
      return "animated";
    case Widget::kChoice:
      return "list";
    case Widget::kLine:
      return "keywords";  // the one with a line to type into
  }
  return "";
}

/// The words of a list: their own, and as they are shown.
void WriteWords(const Control& control, Language language, std::string& words, std::string& names) {
  for (const Word& word : control.words) {
    const bool first = names.empty();
    words.append(first ? "" : ";").append(word.word);
    names.append(first ? "" : ",").append(word.name.In(language));
  }
}

void WriteControl(const Control& control, Language language, std::ostream& out) {
  const frei0r::Parameter& parameter = control.parameter();
  std::string words, names;
  WriteWords(control, language, words, names);
  out << "    <parameter type=\"" << TypeOf(control.widget) << "\" name=\"" << parameter.name
      << "\" default=\"";
  if (control.widget == Widget::kSlider) {
    out << parameter.number << "\" min=\"" << control.least << "\" max=\"" << control.most
        << "\" factor=\"" << kPercent << "\" decimals=\"1\" suffix=\"%";
  } else {
    out << Escaped(parameter.text);
  }
  if (control.widget == Widget::kChoice) out << "\" paramlist=\"" << Escaped(words);
  if (control.widget == Widget::kFile) out << "\" filter=\"*";
  if (control.widget == Widget::kLine) out << "\" paramlist=\"1@0,0;2@0,0";
  out << "\">\n        <name>" << Escaped(control.name.In(language)) << "</name>\n";
  if (control.widget == Widget::kChoice) {
    out << "        <paramlistdisplay>" << Escaped(names) << "</paramlistdisplay>\n";
  }
  if (control.widget == Widget::kLine) {
    out << "        <paramlistdisplay>1,2</paramlistdisplay>\n";
  }
  out << "        <comment>" << Escaped(control.hint.In(language)) << "</comment>\n"
      << "    </parameter>\n";
}

}  // namespace

std::string KdenlivePage(Language language) {
  const std::string service = std::string("frei0r.") + NameOf(frei0r::Role::kFilter);
  std::ostringstream out;
  out.imbue(std::locale::classic());
  out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE kpartgui>\n"
      << "<effect LC_NUMERIC=\"C\" tag=\"" << service << "\" id=\"" << service << "\">\n"
      << "    <name>" << Escaped(kTitle.In(language)) << "</name>\n"
      << "    <description>" << Escaped(kSummary.In(language)) << "</description>\n"
      << "    <author>Kelto</author>\n";
  for (const Control& control : Controls()) WriteControl(control, language, out);
  out << "</effect>\n";
  return out.str();
}

}  // namespace kelto::pages
