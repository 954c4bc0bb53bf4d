#include "adapters/pages/shotcut.h"

#include <sstream>

#include "adapters/pages/controls.h"

namespace kelto::pages {
namespace {

/// A text of the page in single quotation marks.
std::string Quoted(const std::string& text) {
  std::string quoted = "'";
  for (const char letter : text) {
    if (letter == '\'' || letter == '\\') quoted += '\\';
    quoted += letter;
  }
  return quoted + "'";
}

/// An expression: the text in the user's language.
std::string Shown(const Text& text) {
  return "german ? " + Quoted(text.german) + " : " + Quoted(text.english);
}

constexpr const char* kLanguage =
    "    readonly property bool german: Qt.locale().name.indexOf('de') === 0\n";

class Page {
 public:
  Page() { out_.imbue(std::locale::classic()); }
  template <typename Part>
  Page& operator<<(const Part& part) {
    out_ << part;
    return *this;
  }
  std::string Text() const { return out_.str(); }

 private:
  std::ostringstream out_;
};

std::string ListOfSliders(const char* before, const char* after) {
  std::string list;
  for (const Control& control : Controls()) {
    if (control.widget != Widget::kSlider) continue;
    list += (list.empty() ? "" : ", ") + std::string(before) + control.parameter().name + after;
  }
  return "[" + list + "]";
}

/// What a control shows when the filter, or the place in it, has changed.
void WriteReading(const Control& control, Page& page) {
  const std::string name = control.parameter().name;
  switch (control.widget) {
    case Widget::kSlider:
      page << "        " << name << "Slider.value = filter.getDouble('" << name << "', position) * "
           << kPercent << ";\n        " << name
           << "Keys.checked = filter.animateIn <= 0 && filter.animateOut <= 0"
           << " && filter.keyframeCount('" << name << "') > 0;\n";
      break;
    case Widget::kChoice:
      page << "        " << name << "Combo.currentIndex = Math.max(0, " << name
           << "Combo.words.indexOf(filter.get('" << name << "')));\n";
      break;
    case Widget::kFile:
    case Widget::kLine:
      page << "        if (!" << name << "Line.activeFocus)\n            " << name
           << "Line.text = filter.get('" << name << "');\n";
      break;
  }
}

void WriteDefault(const Control& control, Page& page) {
  const frei0r::Parameter& parameter = control.parameter();
  if (control.widget == Widget::kSlider) {
    page << "            filter.set('" << parameter.name << "', " << parameter.number << ");\n";
  } else if (*parameter.text != '\0') {
    page << "            filter.set('" << parameter.name << "', " << Quoted(parameter.text)
         << ");\n";
  }
}

void WriteSlider(const Control& control, Page& page) {
  const frei0r::Parameter& parameter = control.parameter();
  const std::string name = parameter.name;
  page
      << "        Shotcut.SliderSpinner {\n            id: " << name << "Slider\n"
      << "            objectName: '" << name << "'\n            minimumValue: " << control.least
      << "\n            maximumValue: " << control.most
      << "\n            decimals: 1\n            suffix: ' %'\n            onValueChanged: updateFilter('"
      << name << "', value / " << kPercent << ", " << name << "Keys, getPosition())\n        }\n"
      << "        Shotcut.UndoButton {\n            onClicked: " << name
      << "Slider.value = " << parameter.number * kPercent << "\n        }\n"
      << "        Shotcut.KeyframesButton {\n            id: " << name
      << "Keys\n            onToggled: {\n                setEnabled(true);\n"
      << "                toggleKeyframes(checked, '" << name << "', " << name << "Slider.value / "
      << kPercent << ");\n            }\n        }\n";
}

void WriteChoice(const Control& control, Page& page) {
  const std::string name = control.parameter().name;
  std::string words, english, german;
  for (const Word& word : control.words) {
    const char* comma = english.empty() ? "" : ", ";
    words.append(comma).append(Quoted(word.word));
    english.append(comma).append(Quoted(word.name.english));
    german.append(comma).append(Quoted(word.name.german));
  }
  page << "        Shotcut.ComboBox {\n            id: " << name << "Combo\n"
       << "            property var words: [" << words << "]\n"
       << "            implicitWidth: 180\n            Layout.columnSpan: 3\n"
       << "            model: german ? [" << german << "] : [" << english << "]\n"
       << "            onActivated: filter.set('" << name << "', words[currentIndex])\n        }\n";
}

void WriteLine(const Control& control, Page& page) {
  const std::string name = control.parameter().name;
  const bool file = control.widget == Widget::kFile;
  page << "        TextField {\n            id: " << name
       << "Line\n            selectByMouse: true\n"
       << "            Layout.fillWidth: true\n            Layout.columnSpan: " << (file ? 1 : 3)
       << "\n            onEditingFinished: {\n                if (text !== filter.get('" << name
       << "'))\n                    filter.set('" << name
       << "', text);\n            }\n        }\n";
  if (!file) return;
  page
      << "        Shotcut.Button {\n            text: " << Shown({"Choose...", "Wählen ..."})
      << "\n            Layout.columnSpan: 2\n            onClicked: photoDialog.open()\n        }\n";
}

void WriteRow(const Control& control, Page& page) {
  page << "        Label {\n            text: " << Shown(control.name)
       << "\n            Layout.alignment: Qt.AlignRight\n            Shotcut.HoverTip {\n"
       << "                text: " << Shown(control.hint) << "\n            }\n        }\n";
  switch (control.widget) {
    case Widget::kSlider:
      return WriteSlider(control, page);
    case Widget::kChoice:
      return WriteChoice(control, page);
    case Widget::kFile:
    case Widget::kLine:
      return WriteLine(control, page);
  }
}

constexpr const char* kImports =
    "import QtQuick 2.12\nimport QtQuick.Controls 2.12\nimport QtQuick.Dialogs 1.2\n"
    "import QtQuick.Layouts 1.12\nimport Shotcut.Controls 1.0 as Shotcut\n"
    "import org.shotcut.qml 1.0 as Shotcut\n\n";

constexpr const char* kDialog = R"(
    Shotcut.File {
        id: photoFile
    }
    FileDialog {
        id: photoDialog
        modality: application.dialogModality
        folder: 'file:///' + settings.openPath
        onAccepted: {
            photoFile.url = fileUrl;
            settings.openPath = photoFile.path;
            filenameLine.text = photoFile.filePath;
            filter.set('filename', photoFile.filePath);
        }
    }
)";

constexpr const char* kConnections = R"(
    Connections {
        target: filter
        function onChanged() { setControls(); }
        function onPropertyChanged(name) { setControls(); }
        function onInChanged() { updateSimpleKeyframes(); }
        function onOutChanged() { updateSimpleKeyframes(); }
        function onAnimateInChanged() { updateSimpleKeyframes(); }
        function onAnimateOutChanged() { updateSimpleKeyframes(); }
    }
    Connections {
        target: producer
        function onPositionChanged() { setControls(); }
    }
}
)";

}  // namespace

std::string ShotcutMeta() {
  Page page;
  page
      << "import QtQuick 2.0\nimport org.shotcut.qml 1.0\n\nMetadata {\n"
      << kLanguage << "    type: Metadata.Filter\n    objectName: '"
      << NameOf(frei0r::Role::kFilter) << "'\n    name: " << Shown(kTitle)
      << "\n    keywords: 'photo picture still pan zoom foto bild schwenk kelto'\n    mlt_service: 'frei0r."
      << NameOf(frei0r::Role::kFilter) << "'\n    qml: 'ui.qml'\n    keyframes {\n"
      << "        allowAnimateIn: true\n        allowAnimateOut: true\n        simpleProperties: "
      << ListOfSliders("'", "'") << "\n        parameters: [";
  const char* comma = "";
  for (const Control& control : Controls()) {
    if (control.widget != Widget::kSlider) continue;
    page << comma << "\n            Parameter {\n                name: " << Shown(control.name)
         << "\n                property: '" << control.parameter().name
         << "'\n                isCurve: true\n                minimum: "
         << control.least / kPercent << "\n                maximum: " << control.most / kPercent
         << "\n            }";
    comma = ",";
  }
  page << "\n        ]\n    }\n}\n";
  return page.Text();
}

std::string ShotcutPage() {
  Page page;
  std::string defaults;
  for (const Control& control : Controls()) {
    if (control.widget != Widget::kSlider) continue;
    std::ostringstream number;
    number.imbue(std::locale::classic());
    number << control.parameter().number;
    defaults += (defaults.empty() ? "" : ", ") + number.str();
  }
  page << kImports << "Shotcut.KeyframableFilter {\n"
       << kLanguage << "\n    keyframableParameters: " << ListOfSliders("'", "'") << "\n";
  for (const char* values : {"startValues", "middleValues", "endValues"}) {
    page << "    " << values << ": [" << defaults << "]\n";
  }
  page << "    width: 400\n    height: 560\n\n    function setControls() {\n"
       << "        var position = getPosition();\n        blockUpdate = true;\n";
  for (const Control& control : Controls()) WriteReading(control, page);
  page
      << "        blockUpdate = false;\n        setEnabled(isSimpleKeyframesActive());\n    }\n\n"
      << "    function setEnabled(enabled) {\n        var sliders = " << ListOfSliders("", "Slider")
      << ";\n        for (var i = 0; i < sliders.length; ++i)\n            sliders[i].enabled = enabled;\n"
      << "    }\n\n    function updateSimpleKeyframes() {\n";
  for (const Control& control : Controls()) {
    if (control.widget != Widget::kSlider) continue;
    const char* name = control.parameter().name;
    page << "        updateFilter('" << name << "', " << name << "Slider.value / " << kPercent
         << ", " << name << "Keys, null);\n";
  }
  page << "    }\n\n    Component.onCompleted: {\n        if (filter.isNew) {\n";
  for (const Control& control : Controls()) WriteDefault(control, page);
  page
      << "        }\n        setControls();\n    }\n"
      << kDialog
      << "\n    GridLayout {\n        anchors.fill: parent\n        anchors.margins: 8\n        columns: 4\n\n";
  const Text* group = nullptr;
  for (const Control& control : Controls()) {
    if (control.group != group) {
      page << "        Label {\n            text: " << Shown(*control.group)
           << "\n            font.bold: true\n            Layout.columnSpan: 4\n        }\n";
      group = control.group;
    }
    WriteRow(control, page);
  }
  page << "        Item {\n            Layout.fillHeight: true\n        }\n    }\n" << kConnections;
  return page.Text();
}

}  // namespace kelto::pages
