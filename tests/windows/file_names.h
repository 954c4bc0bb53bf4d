// Names that a file may have on Windows, and that programs have trouble with.
#pragma once

#include <string>
#include <vector>

namespace kelto::test {

/// Forty names of BMP files, in UTF-8: scripts large and old, letters beyond 16 bits, marks that
/// combine, names that differ by a mark or by how it is written, the longest that there are, and
/// signs that shells and patterns read.
inline std::vector<std::string> FileNames() {
  std::string wide;
  for (int i = 0; i < 81; ++i) wide += "写";
  return {// Latin: beside its look-alikes of the code page, inside it, and of one look in two
          // spellings.
          "Łódź.bmp", "Lódz.bmp", "Fête.bmp", "\u00e9t\u00e9.bmp", "e\u0301te\u0301.bmp",
          "ẞtraße.bmp", "Ảnh đẹp.bmp", "Фото.bmp", "φωτογραφία.bmp", "լուսանկար.bmp", "ფოტო.bmp",
          "תמונה.bmp", "صورة.bmp", "फ़ोटो.bmp", "ছবি.bmp", "ఫోటో.bmp", "புகைப்படம்.bmp", "ภาพถ่าย.bmp",
          "ፎቶ.bmp", "写真.bmp", "写真カメラ.bmp", "사진.bmp", "ꌺꂿ.bmp",
          // Beyond 16 bits: Han, cuneiform, hieroglyphs of two lands, Tangut, pictures.
          "\U00020BB7.bmp", "\U00012000\U00012040.bmp", "\U00013000\U00013050.bmp",
          "\U00014400\U00014401.bmp", "\U00017000\U00017001.bmp", "📷🏞️.bmp",
          "👨‍👩‍👧.bmp",
          // As long as a name gets after which a film and its record are named, in units here and
          // in bytes below Wine.
          std::string(241, 'n') + ".bmp", wide + ".bmp",
          // What shells, patterns, options and devices are written with.
          "a b  c.bmp", " begins blank.bmp", "-dash.bmp", "100%.bmp", "a&b^c;(d).bmp",
          "it's #@!{}[]$~`.bmp", "name..with.dots.jpg.bmp", "CONSOLE.bmp"};
}

/// A folder's name that no code page has all letters of.
inline constexpr const char* kFolderName = "Bilder Łódź 写真 📷";

}  // namespace kelto::test
