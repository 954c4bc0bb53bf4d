// A project in a folder of its own, laid out as nobody's program lays it out.
#pragma once

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "editor/document/document.h"

namespace kelto::editor {

inline constexpr const char* kHandMade =
    "{\n"
    "    \"image\": \"photo.jpg\",\n"
    "    \"motion\" : \"fly\",\n"
    "    \"film\": { \"height\": 1080,   \"width\": 1920 },\n"
    "    \"views\": [\n"
    "        { \"view\": \"0,0,1600,900\",   \"hold\": 1.0, \"go\": 2 },\n"
    "        { \"view\": \"400,300,800,450\", \"go\": 3, \"hold\": 0.50 },\n"
    "        { \"view\": \"100,100,320,180\", \"hold\": 1 }\n"
    "    ],\n"
    "    \"parameters\": {\"levels\": {\"value\": 1}}\n"
    "}\n";

class Sample {
 public:
  explicit Sample(const std::string& text = kHandMade)
      : folder_(std::filesystem::temp_directory_path() /
                ("kelto-editor-" + std::to_string(getpid()) + "-" + std::to_string(++count_))) {
    std::filesystem::create_directories(folder_);
    std::ofstream(Path(), std::ios::binary) << text;
  }
  ~Sample() { std::filesystem::remove_all(folder_); }
  Sample(const Sample&) = delete;
  Sample& operator=(const Sample&) = delete;

  std::string Folder() const { return folder_.string(); }
  std::string Path() const { return (folder_ / "tour.json").string(); }
  Document Opened() const { return ReadDocument(Path()); }

 private:
  static inline int count_ = 0;
  std::filesystem::path folder_;
};

}  // namespace kelto::editor
