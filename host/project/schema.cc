#include "host/project/schema.h"

#include <nlohmann/json.hpp>

#include "host/base/error.h"
#include "host/project/validator.h"

namespace kelto::host {
namespace {

using nlohmann::json;

const json& SchemaDocument() {
  static const json document = json::parse(ProjectSchemaText());
  return document;
}

}  // namespace

void CheckProject(const json& document) {
  static const Validator validator(SchemaDocument());
  const std::string diagnostic = validator.FirstDiagnostic(document);
  if (!diagnostic.empty()) throw Error(diagnostic);
}

}  // namespace kelto::host
