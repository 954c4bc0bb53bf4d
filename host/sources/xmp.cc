#include "host/sources/xmp.h"

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>
#include <optional>

#include "host/options/number.h"

namespace kelto::host {
namespace {

constexpr std::string_view kBegin = "<x:xmpmeta", kEnd = "</x:xmpmeta>";
constexpr int kDeepest = 40;
constexpr size_t kMostRegions = 1000;

struct FreeDocument {
  void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
};
struct FreeXmlText {
  void operator()(xmlChar* text) const { xmlFree(text); }
};
using XmlText = std::unique_ptr<xmlChar, FreeXmlText>;

std::string StringOf(const XmlText& text) {
  return text ? reinterpret_cast<const char*>(text.get()) : "";
}

bool IsNamed(const xmlNode& node, const char* name) {
  return node.type == XML_ELEMENT_NODE &&
         std::string_view(reinterpret_cast<const char*>(node.name)) == name;
}

/// Calls `use` for every element below `node`, this one first.
void ForEachElement(const xmlNode* node, int depth,
                    const std::function<void(const xmlNode&)>& use) {
  if (node == nullptr || node->type != XML_ELEMENT_NODE || depth > kDeepest) return;
  use(*node);
  for (const xmlNode* child = node->children; child != nullptr; child = child->next) {
    ForEachElement(child, depth + 1, use);
  }
}

/// The first element called `name` below `node`; null when there is none.
const xmlNode* Below(const xmlNode& node, const char* name) {
  const xmlNode* found = nullptr;
  ForEachElement(&node, 0, [&](const xmlNode& one) {
    if (found == nullptr && &one != &node && IsNamed(one, name)) found = &one;
  });
  return found;
}

/// A property, which XMP writes as an attribute or as an element.
std::string Property(const xmlNode& node, const char* name) {
  std::string text;
  const auto* key = reinterpret_cast<const xmlChar*>(name);
  ForEachElement(&node, 0, [&](const xmlNode& one) {
    if (!text.empty()) return;
    auto* element = const_cast<xmlNode*>(&one);
    for (const xmlAttr* attribute = one.properties; attribute != nullptr;
         attribute = attribute->next) {
      if (xmlStrEqual(attribute->name, key) != 0) {
        text = StringOf(XmlText(xmlNodeListGetString(one.doc, attribute->children, 1)));
      }
    }
    if (text.empty() && IsNamed(one, name)) text = StringOf(XmlText(xmlNodeGetContent(element)));
  });
  return text;
}

double NumberOf(const xmlNode& node, const char* name) {
  return ParseNumber(Property(node, name)).value_or(std::nan(""));
}

/// The text of an rdf:Alt in the language "x-default", else its first.
std::string DefaultText(const xmlNode& node) {
  std::string first, byDefault;
  ForEachElement(&node, 0, [&](const xmlNode& one) {
    if (!IsNamed(one, "li")) return;
    auto* element = const_cast<xmlNode*>(&one);
    const std::string text = StringOf(XmlText(xmlNodeGetContent(element)));
    const std::string language =
        StringOf(XmlText(xmlGetProp(element, reinterpret_cast<const xmlChar*>("lang"))));
    if (first.empty()) first = text;
    if (byDefault.empty() && language == "x-default") byDefault = text;
  });
  return byDefault.empty() ? first : byDefault;
}

/// Cut at the photo's edges; nothing where little remains, or where numbers are missing.
std::optional<FaceRegion> Within(double left, double top, double width, double height) {
  if (!std::isfinite(left + top + width + height)) return std::nullopt;
  const double right = std::min(1.0, left + width), bottom = std::min(1.0, top + height);
  left = std::max(0.0, left);
  top = std::max(0.0, top);
  constexpr double kLeast = 0.001;
  if (!(right - left >= kLeast) || !(bottom - top >= kLeast)) return std::nullopt;
  return FaceRegion{left, top, right - left, bottom - top};
}

/// A region of the Metadata Working Group: the area's x and y are its centre.
std::optional<FaceRegion> WorkingGroupFace(const xmlNode& region) {
  const xmlNode* area = Below(region, "Area");
  if (area == nullptr) return std::nullopt;
  const std::string type = Property(region, "Type"), unit = Property(*area, "unit");
  if ((!type.empty() && type != "Face") || (!unit.empty() && unit != "normalized")) {
    return std::nullopt;
  }
  const double width = NumberOf(*area, "w"), height = NumberOf(*area, "h");
  return Within(NumberOf(*area, "x") - width / 2, NumberOf(*area, "y") - height / 2, width, height);
}

/// A rectangle of IPTC's image regions, whose x and y are its corner.
std::optional<FaceRegion> IptcFace(const xmlNode& region) {
  const xmlNode* boundary = Below(region, "RegionBoundary");
  if (boundary == nullptr || Property(*boundary, "rbShape") != "rectangle" ||
      Property(*boundary, "rbUnit") != "relative") {
    return std::nullopt;
  }
  // Regions are of anything; those that name somebody are people.
  const std::string kind = Property(region, "rCtype");
  if (Below(region, "PersonInImage") == nullptr && kind.find("human") == std::string::npos &&
      kind.find("face") == std::string::npos) {
    return std::nullopt;
  }
  return Within(NumberOf(*boundary, "rbX"), NumberOf(*boundary, "rbY"), NumberOf(*boundary, "rbW"),
                NumberOf(*boundary, "rbH"));
}

void AddFaces(const xmlNode& list, std::optional<FaceRegion> (*read)(const xmlNode&),
              std::vector<FaceRegion>& faces) {
  ForEachElement(&list, 0, [&](const xmlNode& item) {
    // The lists' own items; what a region holds is in lists, too.
    if (!IsNamed(item, "li") || faces.size() >= kMostRegions) return;
    if (const auto face = read(item)) faces.push_back(*face);
  });
}

}  // namespace

std::string_view XmpPacketIn(std::string_view bytes) {
  const size_t begin = bytes.find(kBegin);
  if (begin == std::string_view::npos) return {};
  const size_t end = bytes.find(kEnd, begin);
  if (end == std::string_view::npos) return {};
  return bytes.substr(begin, end + kEnd.size() - begin);
}

XmpNotes ReadXmp(std::string_view packet) {
  XmpNotes notes;
  constexpr size_t kLongest = size_t{8} << 20;
  if (packet.empty() || packet.size() > kLongest) return notes;
  const std::unique_ptr<xmlDoc, FreeDocument> document(
      xmlReadMemory(packet.data(), static_cast<int>(packet.size()), nullptr, nullptr,
                    XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING));
  const xmlNode* root = document ? xmlDocGetRootElement(document.get()) : nullptr;
  if (root == nullptr) return notes;
  if (const xmlNode* description = Below(*root, "description")) {
    notes.description = DefaultText(*description);
  }
  for (const char* name : {"DateTimeOriginal", "DateCreated", "CreateDate"}) {
    if (notes.date.empty()) notes.date = Property(*root, name);
  }
  if (const xmlNode* list = Below(*root, "RegionList")) {
    AddFaces(*list, WorkingGroupFace, notes.faces);
  }
  if (const xmlNode* applied = Below(*root, "AppliedToDimensions")) {
    notes.appliedWidth = NumberOf(*applied, "w");
    notes.appliedHeight = NumberOf(*applied, "h");
  }
  if (notes.faces.empty()) {
    if (const xmlNode* list = Below(*root, "ImageRegion")) AddFaces(*list, IptcFace, notes.faces);
  }
  return notes;
}

}  // namespace kelto::host
